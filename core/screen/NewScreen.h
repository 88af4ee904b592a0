#pragma once

#include <QVariantMap>

namespace PluginKrHvcP2 {

/// The parameter map @p screen with the settings and the two contents that a new screen gets: women
/// and men of 20 to 30. Foreign keys stay.
QVariantMap newScreen(QVariantMap screen);

} // namespace PluginKrHvcP2
