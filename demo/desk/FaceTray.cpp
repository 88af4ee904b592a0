#include "demo/desk/FaceTray.h"

#include "demo/desk/FaceLabel.h"
#include "demo/desk/FacePainter.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace Desk {

namespace {

// In lines of the labels' font.
constexpr qreal Height = 3.2;
constexpr qreal HeadRadius = 0.9;
constexpr qreal Gap = 0.6;
constexpr QRgb Strip = 0xc8161b21;
constexpr QRgb Faint = 0xff9aa5b1;

QString tr(const char *text)
{
    return QCoreApplication::translate("Desk::FaceTray", text);
}

LabelDetail detailOf(const FaceMark &mark)
{
    return mark.hasDecided() ? FullLabel : ShortLabel;
}

FaceLabel labelIn(const SensorLayout &layout)
{
    return FaceLabel(layout.labelFont, layout.labelWidth);
}

} // namespace

FaceTray::FaceTray(const FaceMarks &marks, const SensorLayout &layout)
    : m_layout(layout)
    , m_line(QFontMetricsF(layout.labelFont).height())
{
    std::copy_if(marks.faces.cbegin(), marks.faces.cend(), std::back_inserter(m_faces),
        [](const FaceMark &mark) { return !mark.place; });
    if (m_faces.isEmpty())
        return;
    m_area = layout.geometry.area();
    m_area.setTop(std::max(m_area.top(), m_area.bottom() - Height * m_line));
}

void FaceTray::paint(QPainter &painter) const
{
    if (isEmpty())
        return;
    painter.fillRect(m_area, QColor::fromRgba(Strip));
    const QFontMetricsF metrics(m_layout.labelFont);
    const auto write = [&](const QString &text, qreal left) {
        painter.setFont(m_layout.labelFont);
        painter.setPen(QColor::fromRgb(Faint));
        painter.drawText(
            m_area.adjusted(left - m_area.left(), 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text);
        return left + metrics.horizontalAdvance(text) + Gap * m_line;
    };
    qreal left = write(tr("Place unknown:"), m_area.left() + Gap * m_line);
    const qreal room = m_area.right() - metrics.horizontalAdvance(QStringLiteral("+99"));
    for (int i = 0; i < m_faces.size(); ++i) {
        if (left + width(m_faces.at(i)) > room) {
            write(QStringLiteral("+%1").arg(m_faces.size() - i), left);
            return;
        }
        left = paintFace(painter, m_faces.at(i), left);
    }
}

qreal FaceTray::paintFace(QPainter &painter, const FaceMark &mark, qreal left) const
{
    const qreal middle = m_area.center().y();
    const qreal radius = HeadRadius * m_line;
    FacePainter(&painter, m_layout.labelFont).paint(mark, {left + radius, middle}, radius);
    const FaceLabel label = labelIn(m_layout);
    const QSizeF size = label.size(mark, detailOf(mark));
    label.paint(painter, mark, detailOf(mark),
        {QPointF(left + (2 * HeadRadius + Gap / 2) * m_line, middle - size.height() / 2), size});
    return left + width(mark);
}

qreal FaceTray::width(const FaceMark &mark) const
{
    return labelIn(m_layout).size(mark, detailOf(mark)).width()
        + (2 * HeadRadius + 1.5 * Gap) * m_line;
}

} // namespace Desk
