#include "demo/desk/FacePainter.h"

#include "demo/desk/FaceLabel.h"

#include <QFontMetricsF>
#include <QLineF>
#include <QPainter>
#include <QPainterPath>
#include <QTransform>
#include <QtMath>

#include <algorithm>
#include <array>
#include <cmath>

namespace Desk {

using Analysis::DecidedFace;

namespace {

constexpr qreal LeastRadius = 7;
constexpr int ShownRanks = 3; // on the smallest heads, too
constexpr qreal StraightTip = 0.06; // up to here it counts as a look into the sensor
// On a head of radius 1 that looks at the sensor: its front, and the eyes beside and above it.
constexpr qreal Front = 0.8;
constexpr qreal EyeAside = 0.36;
constexpr qreal EyeAbove = 0.18;
constexpr QRgb Dark = 0xff171c22; // what faces stand before
constexpr QRgb Ink = 0xfff2f5f8;
constexpr QRgb Badge = 0xff0e1216;
constexpr QRgb BadgeText = 0xffc3ccd6;

QColor withAlpha(QColor color, int alpha)
{
    color.setAlpha(alpha);
    return color;
}

/// @p color as it looks on the dark when it covers so much of it.
QColor onDark(const QColor &color, qreal share)
{
    const QColor dark = QColor::fromRgb(Dark);
    const auto mixed
        = [share](int part, int darkPart) { return qRound(part * share + darkPart * (1 - share)); };
    return {mixed(color.red(), dark.red()), mixed(color.green(), dark.green()),
        mixed(color.blue(), dark.blue())};
}

QColor fillColor(const FaceMark &mark)
{
    if (mark.hasDecided())
        return onDark(mark.color, 0.6);
    return onDark(mark.color, mark.sequence > 0 ? 0.32 : 0.16);
}

/// The line around the head: what is further from being played is fainter.
struct Outline
{
    QColor color;
    qreal width = 1; // as a share of what is usual
};

Outline outlineOf(const FaceMark &mark)
{
    const QColor color = lineColor(mark.color);
    switch (mark.outcome) {
    case DecidedFace::Sent:
        return {color, 1.6};
    case DecidedFace::Restricted:
        return {color, 1};
    case DecidedFace::Cut:
        return {onDark(color, 0.75), 0.75};
    case DecidedFace::NothingFits:
        break;
    }
    return {onDark(mark.color, 0.6), 0.75};
}

/// A disc with a line around it. To fill two discs takes a fraction of the time that it takes to
/// draw the line.
void paintDisc(QPainter &painter, const QPointF &center, qreal radius, const QColor &line,
    qreal lineWidth, const QColor &fill)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(line);
    painter.drawEllipse(center, radius + lineWidth / 2, radius + lineWidth / 2);
    painter.setBrush(fill);
    painter.drawEllipse(center, radius - lineWidth / 2, radius - lineWidth / 2);
}

qreal across(qreal part)
{
    return std::sqrt(std::max(0.0, 1 - part * part));
}

} // namespace

FacePainter::FacePainter(QPainter *painter, const QFont &font)
    : m_painter(painter)
    , m_font(font)
    , m_badgeRadius(QFontMetricsF(font).height() * 0.58)
{ }

void FacePainter::paint(const FaceMark &mark, const QPointF &center, qreal radius)
{
    m_mark = mark;
    m_center = center;
    m_radius = std::max(LeastRadius, radius);
    paintHead();
    if (mark.gaze) {
        paintEyes();
        paintGaze();
    }
    paintRank();
}

void FacePainter::paintHead()
{
    const Outline outline = outlineOf(m_mark);
    const qreal width = qBound(1.2, m_radius * 0.045, 4.0) * outline.width;
    const QColor fill = fillColor(m_mark);
    if (m_mark.outcome == DecidedFace::Restricted) {
        m_painter->setPen(QPen(outline.color, width, Qt::DashLine, Qt::FlatCap));
        m_painter->setBrush(fill);
        m_painter->drawEllipse(m_center, m_radius, m_radius);
        return;
    }
    if (m_mark.hasDecided())
        paintHalo(outline.color, width);
    paintDisc(*m_painter, m_center, m_radius, outline.color, width, fill);
}

void FacePainter::paintHalo(const QColor &color, qreal width)
{
    m_painter->setPen(Qt::NoPen);
    m_painter->setBrush(withAlpha(color, 45));
    for (int ring = 3; ring >= 1; --ring) {
        const qreal radius = m_radius + width / 2 + ring * width;
        m_painter->drawEllipse(m_center, radius, radius);
    }
}

/// They move over the head as over a ball; the one behind it is not seen.
void FacePainter::paintEyes()
{
    const QPointF tip = m_mark.gaze->tip;
    const qreal towardsSensor = across(std::min(1.0, std::hypot(tip.x(), tip.y())));
    QTransform roll;
    roll.rotate(m_mark.roll);
    m_painter->setPen(Qt::NoPen);
    m_painter->setBrush(QColor::fromRgb(Ink));
    const qreal size = std::max(1.1, m_radius * 0.085);
    for (const int side : {-1, 1}) {
        if (Front * towardsSensor - EyeAside * side * tip.x() < 0)
            continue;
        const QPointF aside
            = roll.map(QPointF(side * EyeAside * across(tip.x()), -EyeAbove * across(tip.y())));
        m_painter->drawEllipse(m_center + (tip * Front + aside) * m_radius, size, size * 1.25);
    }
}

void FacePainter::paintGaze()
{
    const QPointF tip = m_mark.gaze->tip;
    const qreal length = std::hypot(tip.x(), tip.y());
    const qreal width = qBound(1.4, m_radius * 0.05, 4.0);
    const Qt::PenStyle style = m_mark.gaze->isWhole ? Qt::SolidLine : Qt::DotLine;
    m_painter->setPen(QPen(QColor::fromRgb(Ink), width, style, Qt::FlatCap));
    m_painter->setBrush(Qt::NoBrush);
    const QPointF from = m_center + tip * Front * m_radius;
    if (length < StraightTip) {
        const qreal ring = std::max(2.2, m_radius * 0.12);
        m_painter->drawEllipse(from, ring, ring);
        return;
    }
    paintArrow(from, from + tip / length * (0.45 + 0.55 * length) * m_radius);
}

void FacePainter::paintArrow(const QPointF &from, const QPointF &to)
{
    const QLineF line(from, to);
    const qreal head = std::max(5.0, m_radius * 0.17);
    const QPointF back = -(to - from) / line.length() * head;
    const QPointF aside = QPointF(-back.y(), back.x()) * 0.55;
    m_painter->drawLine(from, to + back * 0.8);
    m_painter->setPen(Qt::NoPen);
    m_painter->setBrush(QColor::fromRgb(Ink));
    const std::array<QPointF, 3> tip{{to, to + back + aside, to + back - aside}};
    m_painter->drawConvexPolygon(tip.data(), static_cast<int>(tip.size()));
}

/// At the upper left of the head; a small one has no room for any but the first ones.
void FacePainter::paintRank()
{
    const bool isFirst = m_mark.rank == 1;
    if (m_mark.rank > ShownRanks && m_radius < 1.5 * m_badgeRadius)
        return;
    const qreal aside = (m_radius + m_badgeRadius * 0.4) * M_SQRT1_2;
    const QPointF center = m_center - QPointF(aside, aside);
    const QColor ground = QColor::fromRgb(isFirst ? Ink : Badge);
    paintDisc(*m_painter, center, m_badgeRadius, isFirst ? ground : QColor::fromRgb(BadgeText), 1,
        ground);
    QFont font = m_font;
    font.setBold(isFirst);
    m_painter->setFont(font);
    m_painter->setPen(isFirst ? Qt::black : QColor::fromRgb(BadgeText));
    const QRectF box(center - QPointF(1, 1) * m_badgeRadius, QSizeF(2, 2) * m_badgeRadius);
    m_painter->drawText(box, Qt::AlignCenter, QString::number(m_mark.rank));
}

void paintNobody(QPainter &painter, const QRectF &area)
{
    const qreal unit = area.height() / 10;
    const QPointF top(area.center().x(), area.top());
    QPainterPath path;
    path.addEllipse(top + QPointF(0, unit * 2.6), unit * 2.2, unit * 2.5);
    path.moveTo(top + QPointF(-unit * 4.6, unit * 10));
    path.cubicTo(top + QPointF(-unit * 4.4, unit * 5), top + QPointF(unit * 4.4, unit * 5),
        top + QPointF(unit * 4.6, unit * 10));
    painter.setPen(
        QPen(QColor(255, 255, 255, 46), std::max(1.5, unit * 0.28), Qt::DashLine, Qt::RoundCap));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
}

} // namespace Desk
