#pragma once

#include <QPointF>
#include <QSizeF>

namespace PluginKrHvcP2 {

/// Which way a message travels over the panel; a bit set.
enum MoveDirection {
    Leftwards = 1,
    Upwards = 2,
    Rightwards = 4,
    Downwards = 8,
};

/// The positions a message slides through, in panel coordinates.
struct SlidePath
{
    QPointF start;
    QPointF rest;
    QPointF exit;
};

/// Removes opposite directions that are both set and keeps every other bit. 0: the message is not
/// shown; one that has only bits without a way is, and stays where it enters.
int normalizedDirection(int direction);

bool movesOnlyHorizontally(int normalizedDirection);

/// The way of a text of the given height and ideal width; an axis without direction stays at 0.
SlidePath slidePath(
    int normalizedDirection, const QSizeF &panel, qreal idealWidth, qreal textHeight);

} // namespace PluginKrHvcP2
