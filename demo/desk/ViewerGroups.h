#pragma once

#include "demo/desk/PlacedViewer.h"

#include <QString>
#include <QVector>

namespace Desk {

/// People who come together.
enum class ViewerGroup { Family, SchoolClass, RushHour };

QVector<ViewerGroup> viewerGroups(); ///< all of them, the smallest first
QString groupName(ViewerGroup group); ///< for the user, for example "A family"

/// The people of @p group, without ids. They stand in their own order, all together there where
/// they cover the fewest of those who are @p present; entirely within the sensor's image.
QVector<PlacedViewer> placeGroup(ViewerGroup group, const QVector<PlacedViewer> &present);

} // namespace Desk
