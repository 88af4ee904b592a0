#pragma once

#include "demo/desk/FaceMarks.h"
#include "demo/desk/LabelPlaces.h"

#include <QFont>
#include <QSizeF>

class QPainter;

namespace Desk {

/// A piece of a line in one colour.
struct LabelPart
{
    QString text;
    QColor color;
};

/// What the label of a face says.
struct LabelText
{
    QVector<LabelPart> readings; ///< age and gender; the parts follow each other without a gap
    QString outcome; ///< the line below; may be empty

    QString readingsText() const; ///< all parts
};

LabelText labelText(const FaceMark &mark, LabelDetail detail);

/// Measures and paints the labels of faces.
class FaceLabel
{
public:
    explicit FaceLabel(const QFont &font, qreal maxWidth); ///< longer lines are cut

    QSizeF size(const FaceMark &mark, LabelDetail detail) const;
    void paint(
        QPainter &painter, const FaceMark &mark, LabelDetail detail, const QRectF &rect) const;

private:
    QString fitted(const QString &text, qreal width) const;
    qreal outcomeWidth(const FaceMark &mark, const QString &text) const;
    void paintReadings(
        QPainter &painter, const QVector<LabelPart> &parts, const QRectF &line) const;
    void paintOutcome(
        QPainter &painter, const FaceMark &mark, const QString &text, const QRectF &line) const;

    QFont m_font;
    qreal m_maxWidth;
    qreal m_lineHeight;
    qreal m_padding;
};

/// @p color, so light that a line of it stands out from the dark.
QColor lineColor(const QColor &color);
/// Black or white, whichever is easier to read on @p color.
QColor inkOn(const QColor &color);

} // namespace Desk
