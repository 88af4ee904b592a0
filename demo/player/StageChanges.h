#pragma once

#include <QStringList>
#include <QVariantMap>

namespace Player {

/// What differs between two parameter maps of a screen, a line for the settings and for each
/// content: "settings: interval 1000 -> 500", "content #3: age-max 24 -> 29", "content #9 added".
QStringList describeChanges(const QVariantMap &before, const QVariantMap &after);

} // namespace Player
