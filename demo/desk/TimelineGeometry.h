#pragma once

#include <QRectF>
#include <QSizeF>

namespace Desk {

/// Where the parts of a timeline lie in its picture, in pixels: columns of viewers, below them the
/// marks of held back requests, what played, and the times of day.
struct TimelineGeometry
{
    QRectF names; ///< beside columns and marks
    QRectF columns;
    QRectF marks;
    QRectF strip;
    QRectF times;

    qreal xOf(qreal position) const; ///< left edge of a bucket, which may be in parts
    int positionAt(qreal x) const; ///< of the bucket; the nearest one beside the columns
    QRectF bucketRect(int position) const; ///< from the columns to the strip
    /// Of viewers number @p first to @p first + @p count - 1 of a bucket, counted from 0 and from
    /// the bottom, when @p highest viewers reach to the top.
    QRectF columnRect(int position, int first, int count, int highest) const;
};

/// For a line of text of height @p lineHeight and names of width @p namesWidth.
TimelineGeometry timelineGeometry(const QSizeF &size, qreal lineHeight, qreal namesWidth);

/// The number of viewers that reaches to the top when there are at most @p viewers.
int timelineScale(int viewers);

} // namespace Desk
