#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace Desk {

/// The sensor's picture in its own pixels; (0, 0) is at the top left.
constexpr QSizeF SensorPicture{1600, 1200};

/// Where the sensor's picture lies in a widget, and what that does to places and lengths.
class SensorGeometry
{
public:
    SensorGeometry() = default; ///< of a picture without a size

    /// The whole picture, as large as it can be in the middle of @p room.
    static SensorGeometry fittedInto(const QRectF &room);

    const QRectF &area() const { return m_area; } ///< of the picture, in the widget
    qreal scale() const; ///< widget pixels for one of the sensor's; 0 when there is no room

    QPointF toWidget(const QPointF &point) const;
    qreal toWidget(qreal length) const { return length * scale(); }
    /// Points outside of area() lie outside of the picture; (0, 0) when there is no room.
    QPointF toSensor(const QPointF &point) const;
    qreal toSensor(qreal length) const; ///< 0 when there is no room

private:
    explicit SensorGeometry(const QRectF &area)
        : m_area(area)
    { }

    QRectF m_area;
};

/// Whether a face with its centre there is one that the sensor can see.
bool isInPicture(const QPointF &point);

} // namespace Desk
