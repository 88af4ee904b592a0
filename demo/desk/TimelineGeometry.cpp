#include "demo/desk/TimelineGeometry.h"

#include "demo/desk/TimelineModel.h"

#include <algorithm>

namespace Desk {

namespace {

// In heights of a line of text.
constexpr qreal Padding = 0.4;
constexpr qreal TimesHeight = 1.1;
constexpr qreal StripHeight = 1.3;
constexpr qreal MarksHeight = 0.6;

constexpr int LowestScale = 4; // viewers

} // namespace

qreal TimelineGeometry::xOf(qreal position) const
{
    return columns.left() + position * columns.width() / TimelineModel::BucketCount;
}

int TimelineGeometry::positionAt(qreal x) const
{
    if (columns.width() <= 0)
        return TimelineModel::BucketCount - 1;
    const qreal position = (x - columns.left()) * TimelineModel::BucketCount / columns.width();
    return static_cast<int>(std::clamp(position, 0.0, TimelineModel::BucketCount - 1.0));
}

QRectF TimelineGeometry::bucketRect(int position) const
{
    return {QPointF(xOf(position), columns.top()), QPointF(xOf(position + 1), strip.bottom())};
}

QRectF TimelineGeometry::columnRect(int position, int first, int count, int highest) const
{
    const qreal step = columns.height() / std::max(1, highest);
    const qreal bottom = columns.bottom() - first * step;
    return {QPointF(xOf(position), bottom - count * step), QPointF(xOf(position + 1), bottom)};
}

TimelineGeometry timelineGeometry(const QSizeF &size, qreal lineHeight, qreal namesWidth)
{
    const qreal padding = Padding * lineHeight;
    const qreal left = padding + namesWidth + padding;
    const qreal width = std::max(0.0, size.width() - left - padding);
    const qreal bottom = size.height() - padding / 2;
    TimelineGeometry geometry;
    geometry.times = {left, bottom - TimesHeight * lineHeight, width, TimesHeight * lineHeight};
    geometry.strip
        = {left, geometry.times.top() - StripHeight * lineHeight, width, StripHeight * lineHeight};
    geometry.marks
        = {left, geometry.strip.top() - MarksHeight * lineHeight, width, MarksHeight * lineHeight};
    geometry.columns = {left, padding, width, std::max(0.0, geometry.marks.top() - padding)};
    geometry.names = {padding, padding, namesWidth, std::max(0.0, geometry.strip.top() - padding)};
    return geometry;
}

int timelineScale(int viewers)
{
    const int even = viewers + viewers % 2; // half of it is a line, too
    return std::max(LowestScale, even);
}

} // namespace Desk
