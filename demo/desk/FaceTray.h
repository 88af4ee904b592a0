#pragma once

#include "demo/desk/FaceMarks.h"
#include "demo/desk/SensorScreen.h"

class QPainter;

namespace Desk {

/// The row at the bottom of the picture for faces of which the sensor tells no place in it: they
/// count in the decision like all others.
class FaceTray
{
public:
    FaceTray(const FaceMarks &marks, const SensorLayout &layout);

    bool isEmpty() const { return m_faces.isEmpty(); }
    const QRectF &area() const { return m_area; } ///< empty when the tray is
    void paint(QPainter &painter) const;

private:
    qreal paintFace(QPainter &painter, const FaceMark &mark, qreal left) const;
    qreal width(const FaceMark &mark) const;

    QVector<FaceMark> m_faces;
    SensorLayout m_layout;
    qreal m_line;
    QRectF m_area;
};

} // namespace Desk
