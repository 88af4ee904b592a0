#include "demo/desk/SensorGeometry.h"

namespace Desk {

SensorGeometry SensorGeometry::fittedInto(const QRectF &room)
{
    if (room.isEmpty())
        return {};
    QRectF area({}, SensorPicture.scaled(room.size(), Qt::KeepAspectRatio));
    area.moveCenter(room.center());
    return SensorGeometry(area);
}

qreal SensorGeometry::scale() const
{
    return m_area.width() / SensorPicture.width();
}

QPointF SensorGeometry::toWidget(const QPointF &point) const
{
    return m_area.topLeft() + point * scale();
}

QPointF SensorGeometry::toSensor(const QPointF &point) const
{
    const qreal factor = scale();
    return factor > 0 ? (point - m_area.topLeft()) / factor : QPointF();
}

qreal SensorGeometry::toSensor(qreal length) const
{
    const qreal factor = scale();
    return factor > 0 ? length / factor : 0;
}

bool isInPicture(const QPointF &point)
{
    return QRectF({}, SensorPicture).contains(point);
}

} // namespace Desk
