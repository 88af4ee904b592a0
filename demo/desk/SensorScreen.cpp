#include "demo/desk/SensorScreen.h"

#include "demo/desk/FacePainter.h"

#include <QCoreApplication>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

namespace Desk {

namespace {

constexpr qreal Margin = 6;
constexpr qreal GridStep = 200; // pixels of the sensor
constexpr qreal UsualHeight = 600; // of a picture in which labels have the widget's font
constexpr qreal LabelShare = 0.34; // of the picture's width
constexpr qreal LeastLabelLines = 12; // heights of a line: enough for all but long names
constexpr int FewFaces = 8;
constexpr int SomeFaces = 20;
constexpr QRgb Faint = 0xff9aa5b1;
constexpr QRgb Amber = 0xffe2a33a;
constexpr QRgb Red = 0xffff6b60;

QString tr(const char *text)
{
    return QCoreApplication::translate("Desk::SensorScreen", text);
}

QFont scaled(QFont font, qreal factor)
{
    font.setPixelSize(std::max(7, qRound(QFontInfo(font).pixelSize() * factor)));
    return font;
}

QColor messageColor(SensorMessage::Kind kind)
{
    switch (kind) {
    case SensorMessage::Failure:
        return QColor::fromRgb(Red);
    case SensorMessage::Stale:
        return QColor::fromRgb(Amber);
    default:
        return QColor::fromRgb(Faint);
    }
}

void paintGrid(QPainter &painter, const SensorGeometry &geometry)
{
    painter.setPen(QColor(255, 255, 255, 11));
    const QRectF &area = geometry.area();
    for (int step = 1; step * GridStep < SensorPicture.width(); ++step) {
        const qreal offset = geometry.toWidget(step * GridStep);
        painter.drawLine(
            area.topLeft() + QPointF(offset, 0), area.bottomLeft() + QPointF(offset, 0));
        if (offset < area.height())
            painter.drawLine(
                area.topLeft() + QPointF(0, offset), area.topRight() + QPointF(0, offset));
    }
}

/// As in the finder of a camera.
void paintCorners(QPainter &painter, const QRectF &area)
{
    const qreal length = area.height() * 0.06;
    painter.setPen(QPen(QColor(255, 255, 255, 90), std::max(1.5, area.height() * 0.004)));
    const QRectF frame = area.adjusted(4, 4, -4, -4);
    const auto paint = [&](const QPointF &corner, qreal right, qreal down) {
        painter.drawLine(corner, corner + QPointF(0, down * length));
        painter.drawLine(corner, corner + QPointF(right * length, 0));
    };
    paint(frame.topLeft(), 1, 1);
    paint(frame.topRight(), -1, 1);
    paint(frame.bottomLeft(), 1, -1);
    paint(frame.bottomRight(), -1, -1);
}

/// Lines of text below each other: the title, and what explains it.
struct MessageText
{
    MessageText(const SensorMessage &message, const SensorLayout &layout)
        : titleFont(scaled(layout.labelFont, 1.35))
        , lineFont(layout.labelFont)
        , title(message.title)
    {
        titleFont.setBold(true);
        const QFontMetricsF titleMetrics(titleFont);
        const QFontMetricsF lineMetrics(lineFont);
        const qreal room = layout.geometry.area().width() * 0.86;
        title = titleMetrics.elidedText(title, Qt::ElideRight, room);
        size = {titleMetrics.horizontalAdvance(title), titleMetrics.height()};
        for (const QString &line : message.lines) {
            lines << lineMetrics.elidedText(line, Qt::ElideRight, room);
            size.rwidth() = std::max(size.width(), lineMetrics.horizontalAdvance(lines.last()));
            size.rheight() += lineMetrics.height();
        }
    }

    void paint(QPainter &painter, QRectF rect, const QColor &color) const
    {
        painter.setFont(titleFont);
        painter.setPen(color);
        painter.drawText(rect, Qt::AlignHCenter | Qt::AlignTop, title);
        rect.setTop(rect.top() + QFontMetricsF(titleFont).height());
        painter.setFont(lineFont);
        painter.setPen(QColor::fromRgb(Faint));
        for (const QString &line : lines) {
            painter.drawText(rect, Qt::AlignHCenter | Qt::AlignTop, line);
            rect.setTop(rect.top() + QFontMetricsF(lineFont).height());
        }
    }

    QFont titleFont;
    QFont lineFont;
    QString title;
    QStringList lines;
    QSizeF size;
};

} // namespace

SensorLayout SensorLayout::of(const QSizeF &size, const QFont &font, int faces)
{
    SensorLayout layout;
    layout.footerFont = scaled(font, qBound(0.8, size.height() / UsualHeight, 1.2));
    const qreal line = QFontMetricsF(layout.footerFont).height() + 2;
    const QRectF room(Margin, Margin, size.width() - 2 * Margin, size.height() - line - Margin - 3);
    layout.geometry = SensorGeometry::fittedInto(room);
    const QRectF &area = layout.geometry.area();
    layout.footer = {area.left() + 2, area.bottom() + 2, area.width() - 4, line};
    const qreal crowding = faces <= FewFaces ? 1 : (faces <= SomeFaces ? 0.9 : 0.8);
    layout.labelFont = scaled(font, qBound(0.7, area.height() / UsualHeight, 1.6) * crowding);
    const qreal least = LeastLabelLines * QFontMetricsF(layout.labelFont).height();
    layout.labelWidth = std::min(area.width() * 0.9, std::max(area.width() * LabelShare, least));
    return layout;
}

void paintBackground(QPainter &painter, const SensorLayout &layout, const QPalette &palette)
{
    const QRectF &area = layout.geometry.area();
    painter.fillRect(painter.viewport(), palette.color(QPalette::Window));
    if (area.isEmpty())
        return;
    QLinearGradient gradient(area.topLeft(), area.bottomLeft());
    gradient.setColorAt(0, QColor(0x20, 0x28, 0x31));
    gradient.setColorAt(1, QColor(0x10, 0x14, 0x19));
    painter.fillRect(area, gradient);
    paintGrid(painter, layout.geometry);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    paintCorners(painter, area);
}

void paintFooter(QPainter &painter, const SensorLayout &layout, const QPalette &palette,
    const FaceMarks &marks, const SensorState &state)
{
    QString left = tr("Faces: %1").arg(marks.count());
    if (marks.leftOut > 0)
        left += tr(", %1 of them not shown").arg(marks.leftOut);
    painter.setFont(layout.footerFont);
    painter.setPen(palette.color(QPalette::Disabled, QPalette::WindowText));
    painter.drawText(layout.footer, Qt::AlignLeft | Qt::AlignVCenter, left);

    QString right;
    if (state.intervalMs > 0)
        right = tr("A frame every %1").arg(spanText(state.intervalMs));
    painter.drawText(layout.footer, Qt::AlignRight | Qt::AlignVCenter, right);
    if (state.restarts > 0) {
        painter.setPen(QColor::fromRgb(Amber));
        painter.drawText(layout.footer, Qt::AlignCenter, tr("Restarts: %1").arg(state.restarts));
    }
}

void paintMessage(
    QPainter &painter, const SensorLayout &layout, const SensorMessage &message, bool hasFaces)
{
    const QRectF &area = layout.geometry.area();
    if (message.kind == SensorMessage::None || area.isEmpty())
        return;
    const MessageText text(message, layout);
    const qreal padding = QFontMetricsF(text.lineFont).height() * 0.6;
    QRectF plate({}, text.size + QSizeF(4, 2) * padding);
    plate.moveCenter(area.center());
    const bool isAlarm
        = message.kind == SensorMessage::Failure || message.kind == SensorMessage::Stale;
    if (isAlarm) {
        if (hasFaces)
            plate.moveTop(area.top() + padding);
        const QColor color = messageColor(message.kind);
        painter.setPen(QPen(color, 1.5));
        painter.setBrush(QColor(0x0b, 0x0e, 0x12, 225));
        painter.drawRoundedRect(plate, padding / 2, padding / 2);
    } else {
        const qreal height = area.height() * 0.3;
        plate.moveTop(area.center().y() + area.height() * 0.1);
        paintNobody(painter, {area.left(), plate.top() - height, area.width(), height});
    }
    text.paint(painter, plate.adjusted(0, padding, 0, 0), messageColor(message.kind));
}

} // namespace Desk
