#pragma once

#include "host/KrPluginStage.h"

#include <QVariantMap>

namespace Soak {

/// The parameter map of a screen whose contents share out the ages between them.
QVariantMap screen(int contents);

/// A stage with that screen and one more for each of its contents, linked to it.
Kora::KrPluginStage stage(int contents);

} // namespace Soak
