#include "demo/desk/FaceLabel.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <array>

namespace Desk {

namespace {

constexpr qreal LeastLightness = 0.62; // of a line on the dark
constexpr QRgb Plate = 0xc00b0e12;
constexpr QRgb Grey = 0xff9aa5b1;

/// The numbers and letters of @p reading, and its '*'.
void add(QVector<LabelPart> &parts, const MarkReading &reading, bool isShort)
{
    if (!parts.isEmpty())
        parts.append({isShort ? QStringLiteral(" ") : QStringLiteral("  "), reading.color});
    parts.append({isShort ? reading.shortText : reading.text, reading.color});
    if (reading.isSettled)
        parts.append({QStringLiteral("*"), QColor::fromRgb(ReadingColors::Settled)});
}

QString sequenceText(const FaceMark &mark)
{
    return QStringLiteral("#%1").arg(mark.sequence);
}

QString joined(const QString &a, const QString &b)
{
    return QStringLiteral("%1 %2").arg(a, b).trimmed();
}

QString outcomeText(const FaceMark &mark, LabelDetail detail)
{
    if (mark.hasDecided())
        return detail == FullLabel ? joined(sequenceText(mark), mark.content) : sequenceText(mark);
    if (detail == LeastLabel)
        return {};
    const QString &note = detail == FullLabel ? mark.note : mark.shortNote;
    return mark.sequence > 0 ? joined(sequenceText(mark), note) : note;
}

} // namespace

QString LabelText::readingsText() const
{
    QString text;
    for (const LabelPart &part : readings)
        text += part.text;
    return text;
}

LabelText labelText(const FaceMark &mark, LabelDetail detail)
{
    LabelText text;
    add(text.readings, mark.age, detail != FullLabel);
    if (detail != LeastLabel)
        add(text.readings, mark.gender, detail != FullLabel);
    text.outcome = outcomeText(mark, detail);
    return text;
}

FaceLabel::FaceLabel(const QFont &font, qreal maxWidth)
    : m_font(font)
    , m_maxWidth(maxWidth)
    , m_lineHeight(QFontMetricsF(font).height())
    , m_padding(m_lineHeight * 0.3)
{ }

QSizeF FaceLabel::size(const FaceMark &mark, LabelDetail detail) const
{
    const LabelText text = labelText(mark, detail);
    const QFontMetricsF metrics(m_font);
    qreal width = metrics.horizontalAdvance(text.readingsText());
    qreal height = m_lineHeight;
    if (!text.outcome.isEmpty()) {
        width = std::max(width, outcomeWidth(mark, text.outcome));
        height += m_lineHeight;
    }
    return {std::min(width, m_maxWidth) + 2 * m_padding, height + m_padding};
}

void FaceLabel::paint(
    QPainter &painter, const FaceMark &mark, LabelDetail detail, const QRectF &rect) const
{
    const LabelText text = labelText(mark, detail);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgba(Plate));
    painter.drawRoundedRect(rect, m_padding, m_padding);

    painter.setFont(m_font);
    QRectF line = rect.adjusted(m_padding, m_padding / 2, -m_padding, 0);
    line.setHeight(m_lineHeight);
    paintReadings(painter, text.readings, line);
    if (!text.outcome.isEmpty())
        paintOutcome(painter, mark, text.outcome, line.translated(0, m_lineHeight));
}

QString FaceLabel::fitted(const QString &text, qreal width) const
{
    return QFontMetricsF(m_font).elidedText(text, Qt::ElideRight, width);
}

/// What has decided has a mark in front and a colour around.
qreal FaceLabel::outcomeWidth(const FaceMark &mark, const QString &text) const
{
    const qreal width = QFontMetricsF(m_font).horizontalAdvance(text);
    return mark.hasDecided() ? width + m_lineHeight : width;
}

void FaceLabel::paintReadings(
    QPainter &painter, const QVector<LabelPart> &parts, const QRectF &line) const
{
    const QFontMetricsF metrics(m_font);
    qreal width = 0;
    for (const LabelPart &part : parts)
        width += metrics.horizontalAdvance(part.text);
    QPointF position(line.center().x() - width / 2, line.top() + metrics.ascent());
    for (const LabelPart &part : parts) {
        painter.setPen(part.color);
        painter.drawText(position, part.text);
        position.rx() += metrics.horizontalAdvance(part.text);
    }
}

void FaceLabel::paintOutcome(
    QPainter &painter, const FaceMark &mark, const QString &text, const QRectF &line) const
{
    if (!mark.hasDecided()) {
        painter.setPen(mark.sequence > 0 ? lineColor(mark.color) : QColor::fromRgb(Grey));
        painter.drawText(line, Qt::AlignCenter, fitted(text, m_maxWidth));
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(mark.color);
    const QRectF pill = line.adjusted(-m_padding / 2, 0, m_padding / 2, 0);
    painter.drawRoundedRect(pill, m_padding, m_padding);

    const QColor ink = inkOn(mark.color);
    const QString shown = fitted(text, m_maxWidth - m_lineHeight);
    const qreal width = QFontMetricsF(m_font).horizontalAdvance(shown);
    const qreal left = line.center().x() - (width + m_lineHeight * 0.8) / 2;
    const qreal unit = m_lineHeight * 0.5; // of the triangle that says "plays"
    const qreal middle = line.center().y();
    painter.setBrush(ink);
    const std::array<QPointF, 3> triangle{
        {{left, middle - unit / 2}, {left + unit * 0.85, middle}, {left, middle + unit / 2}}};
    painter.drawConvexPolygon(triangle.data(), static_cast<int>(triangle.size()));
    painter.setPen(ink);
    painter.drawText(line.adjusted(left - line.left() + m_lineHeight * 0.8, 0, m_lineHeight, 0),
        Qt::AlignLeft | Qt::AlignVCenter, shown);
}

QColor lineColor(const QColor &color)
{
    if (color.lightnessF() >= LeastLightness)
        return color;
    return QColor::fromHslF(
        std::max<qreal>(0, color.hslHueF()), color.hslSaturationF(), LeastLightness);
}

QColor inkOn(const QColor &color)
{
    const qreal light = 0.299 * color.redF() + 0.587 * color.greenF() + 0.114 * color.blueF();
    return light > 0.6 ? Qt::black : Qt::white;
}

} // namespace Desk
