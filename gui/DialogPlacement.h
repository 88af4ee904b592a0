#pragma once

#include <QPoint>
#include <QRect>

namespace PluginKrHvcP2 {

/// Stands for an anchor that the caller did not give: a point below the cursor.
QRect cursorAnchor(const QPoint &cursor);

/// Where to put the top left corner of a dialog beside @p anchor, so that @p horizontalRoom pixels
/// to its right and 300 below it lie on @p screen. All in global coordinates.
QPoint dialogPosition(const QRect &anchor, const QRect &screen, int horizontalRoom);

} // namespace PluginKrHvcP2
