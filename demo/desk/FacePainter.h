#pragma once

#include "demo/desk/FaceMarks.h"

#include <QFont>
#include <QPointF>

class QPainter;

namespace Desk {

/// Paints faces: a head in the colour of its content, turned as it is, an arrow where it looks, and
/// its rank.
class FacePainter
{
public:
    FacePainter(QPainter *painter, const QFont &font); ///< of the ranks; the painter is not owned

    /// @p radius is that of the head; very small ones are painted larger.
    void paint(const FaceMark &mark, const QPointF &center, qreal radius);

private:
    void paintHead();
    void paintHalo(const QColor &color, qreal width);
    void paintEyes();
    void paintGaze();
    void paintArrow(const QPointF &from, const QPointF &to);
    void paintRank();

    QPainter *m_painter;
    QFont m_font;
    qreal m_badgeRadius;
    // of the face at hand
    FaceMark m_mark;
    QPointF m_center;
    qreal m_radius = 0;
};

/// Somebody's outline, where nobody is.
void paintNobody(QPainter &painter, const QRectF &area);

} // namespace Desk
