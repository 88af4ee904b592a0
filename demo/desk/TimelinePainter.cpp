#include "demo/desk/TimelinePainter.h"

#include "demo/desk/ContentLook.h"
#include "demo/desk/CoverageText.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cstddef>

namespace Desk {

using namespace Analysis;

namespace {

constexpr QRgb RestrictedColor = 0xffffc23d;
constexpr QRgb SilenceColor = 0xff8a5a5f;
constexpr qint64 MinuteMs = 60000;
constexpr qreal SmallestLine = 0.85; // heights of a line of text

QString tr(const char *text)
{
    return QCoreApplication::translate("Desk::TimelinePainter", text);
}

/// Hues like those of the panel; the older, the darker.
QColor viewerColor(std::size_t gender, int age)
{
    const bool isAgeKnown = age != TimelineUnknownAge;
    const int lightness = isAgeKnown ? 205 - age * 27 : 120;
    switch (CoveredGenders.at(gender)) {
    case PluginKrHvcP2::Female:
        return QColor::fromHsl(328, isAgeKnown ? 200 : 70, lightness);
    case PluginKrHvcP2::Male:
        return QColor::fromHsl(205, isAgeKnown ? 180 : 60, lightness);
    default:
        return QColor::fromHsl(0, 0, lightness);
    }
}

QColor withAlpha(QColor color, qreal alpha)
{
    color.setAlphaF(alpha);
    return color;
}

} // namespace

TimelinePainter::TimelinePainter(const Plan &plan, const TimelineModel &model,
    const TimelineGeometry &geometry, const QPalette &palette, QPainter *painter)
    : m_plan(plan)
    , m_model(model)
    , m_geometry(geometry)
    , m_painter(painter)
    , m_em(QFontMetricsF(painter->font()).height())
    , m_highest(timelineScale(model.mostViewers()))
    , m_text(palette.color(QPalette::Text))
    , m_faintText(withAlpha(m_text, 0.65))
{ }

void TimelinePainter::draw()
{
    drawNames();
    drawScale();
    if (m_model.isNull())
        return;
    drawSilences();
    drawViewers();
    drawMarks();
    drawPlayed();
    drawTimes();
    const QRectF &columns = m_geometry.columns;
    const QString highest = QString::number(m_highest);
    drawText({columns.left() + 0.2 * m_em, columns.top(), 3 * m_em, m_em},
        Qt::AlignLeft | Qt::AlignTop, highest, m_faintText);
}

QString TimelinePainter::heldBackText()
{
    return tr("Held back");
}

void TimelinePainter::drawNames()
{
    const qreal step = m_geometry.names.height() / 4;
    QRectF line = m_geometry.names;
    line.setHeight(step);
    const auto draw = [&](const QString &name, const QColor &color) {
        m_painter->fillRect(
            QRectF(line.left(), line.center().y() - 0.3 * m_em, 0.6 * m_em, 0.6 * m_em), color);
        drawText(line.adjusted(m_em, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, name, m_faintText);
        line.translate(0, step);
    };
    if (step >= SmallestLine * m_em) {
        for (std::size_t gender = 0; gender < CoveredGenders.size(); ++gender)
            draw(genderName(CoveredGenders.at(gender)), viewerColor(gender, 2));
        draw(heldBackText(), QColor(RestrictedColor));
    }
    QRectF strip = m_geometry.names;
    strip.setTop(m_geometry.strip.top());
    strip.setBottom(m_geometry.strip.bottom());
    drawText(strip, Qt::AlignLeft | Qt::AlignVCenter, tr("Played"), m_faintText);
}

void TimelinePainter::drawScale()
{
    const QRectF &columns = m_geometry.columns;
    for (const int viewers : {m_highest, m_highest / 2, 0}) {
        const qreal y = columns.bottom() - columns.height() * viewers / m_highest;
        m_painter->setPen(QPen(withAlpha(m_text, viewers == 0 ? 0.45 : 0.12), 1));
        m_painter->drawLine(QPointF(columns.left(), y), QPointF(columns.right(), y));
    }
}

void TimelinePainter::drawSilences()
{
    const QVector<bool> silences = m_model.silences();
    for (int begin = 0, end = 0; begin < silences.size(); begin = end) {
        while (end < silences.size() && silences.at(end) == silences.at(begin))
            ++end;
        if (!silences.at(begin))
            continue;
        const QRectF rect(QPointF(m_geometry.xOf(begin), m_geometry.columns.top()),
            QPointF(m_geometry.xOf(end), m_geometry.marks.bottom() - 1));
        m_painter->fillRect(rect, withAlpha(QColor(SilenceColor), 0.18));
        m_painter->fillRect(rect, QBrush(withAlpha(QColor(SilenceColor), 0.8), Qt::BDiagPattern));
        const QString text = tr("no frames");
        const qreal width = QFontMetricsF(m_painter->font()).horizontalAdvance(text) + m_em;
        if (width > rect.width())
            continue;
        const QRectF plate(
            rect.center().x() - width / 2, rect.center().y() - 0.6 * m_em, width, 1.2 * m_em);
        m_painter->fillRect(plate, QColor(0, 0, 0, 190));
        drawText(plate, Qt::AlignCenter, text, m_faintText);
    }
}

void TimelinePainter::drawViewers()
{
    for (int position = 0; position < TimelineModel::BucketCount; ++position) {
        const ViewerCounts &counts = m_model.bucket(position).counts;
        int viewers = 0;
        for (std::size_t gender = 0; gender < counts.size(); ++gender) {
            for (int age = 0; age <= TimelineUnknownAge; ++age) {
                const int count = counts.at(gender).at(static_cast<std::size_t>(age));
                if (count == 0)
                    continue;
                m_painter->fillRect(m_geometry.columnRect(position, viewers, count, m_highest),
                    viewerColor(gender, age));
                viewers += count;
            }
        }
    }
}

void TimelinePainter::drawMarks()
{
    const QRectF &marks = m_geometry.marks;
    const qreal height = marks.height() / 2;
    for (int position = 0; position < TimelineModel::BucketCount; ++position) {
        if (m_model.bucket(position).restricted == 0)
            continue;
        const QRectF bucket = m_geometry.bucketRect(position);
        m_painter->fillRect(QRectF(bucket.left(), marks.center().y() - height / 2,
                                std::max(1.0, bucket.width() - 1), height),
            QColor(RestrictedColor));
    }
}

void TimelinePainter::drawPlayed()
{
    const QRectF &strip = m_geometry.strip;
    m_painter->fillRect(strip, withAlpha(m_text, 0.06));
    const QFontMetricsF metrics(m_painter->font());
    const QVector<PlayedSequence> played = m_model.played();
    for (const PlayedSequence &sequence : played) {
        QRectF rect = strip;
        rect.setLeft(m_geometry.xOf(sequence.from));
        rect.setRight(m_geometry.xOf(sequence.to));
        const QColor color = contentColor(m_plan, sequence.number);
        m_painter->fillRect(rect, color);
        m_painter->fillRect(QRectF(rect.left(), rect.top(), 1, rect.height()), Qt::black);
        const QRectF room = rect.adjusted(0.25 * m_em, 0, -0.25 * m_em, 0);
        const QString number = QLatin1Char('#') + QString::number(sequence.number);
        const QString full = contentTitle(m_plan, sequence.number);
        const bool isNarrow = metrics.horizontalAdvance(full) > room.width();
        if (metrics.horizontalAdvance(number) <= room.width()) {
            drawText(room, Qt::AlignLeft | Qt::AlignVCenter, isNarrow ? number : full,
                contentInk(color));
        }
    }
}

void TimelinePainter::drawTimes()
{
    const qreal minuteWidth = m_geometry.xOf(static_cast<qreal>(MinuteMs) / TimelineModel::BucketMs)
        - m_geometry.xOf(0);
    const qreal labelWidth
        = QFontMetricsF(m_painter->font()).horizontalAdvance(QStringLiteral("00:00")) + m_em;
    const int step = minuteWidth >= labelWidth ? 1 : 2 * minuteWidth >= labelWidth ? 2 : 5;
    for (int position = 0; position < TimelineModel::BucketCount; ++position) {
        const qint64 beginMs = m_model.bucket(position).beginMs;
        const qint64 minuteMs = (beginMs + MinuteMs - 1) / MinuteMs * MinuteMs;
        if (minuteMs - beginMs >= TimelineModel::BucketMs)
            continue;
        const QTime time = QDateTime::fromMSecsSinceEpoch(minuteMs).time();
        const qreal x = m_geometry.xOf(
            position + static_cast<qreal>(minuteMs - beginMs) / TimelineModel::BucketMs);
        m_painter->setPen(QPen(withAlpha(m_text, 0.3), 1));
        m_painter->drawLine(
            QPointF(x, m_geometry.times.top()), QPointF(x, m_geometry.times.top() + 0.2 * m_em));
        const QRectF label(x - labelWidth / 2, m_geometry.times.top() + 0.1 * m_em, labelWidth,
            m_geometry.times.height());
        if (time.minute() % step == 0 && label.right() <= m_geometry.times.right() + m_em / 2)
            drawText(label, Qt::AlignCenter, time.toString(QStringLiteral("HH:mm")), m_faintText);
    }
}

void TimelinePainter::drawPointer(int position, const QColor &color)
{
    m_painter->setPen(QPen(color, 1));
    m_painter->setBrush(withAlpha(color, 0.2));
    m_painter->drawRect(m_geometry.bucketRect(position).adjusted(-0.5, 0.5, 0.5, -0.5));
}

void TimelinePainter::drawMoment(const QDateTime &time)
{
    for (int position = 0; position < TimelineModel::BucketCount && !m_model.isNull(); ++position) {
        const TimelineBucket &bucket = m_model.bucket(position);
        const qint64 ms = time.toMSecsSinceEpoch() - bucket.beginMs;
        if (ms < 0 || ms >= TimelineModel::BucketMs)
            continue;
        const qreal x = m_geometry.xOf(position + 0.5);
        m_painter->setPen(QPen(m_text, 2));
        m_painter->drawLine(
            QPointF(x, m_geometry.columns.top()), QPointF(x, m_geometry.strip.bottom()));
        const qreal arm = 0.35 * m_em;
        const QPointF top(x, m_geometry.columns.top() + arm);
        m_painter->setPen(Qt::NoPen);
        m_painter->setBrush(m_text);
        m_painter->drawConvexPolygon(
            QPolygonF({top, top + QPointF(-arm, -arm), top + QPointF(arm, -arm)}));
        return;
    }
}

void TimelinePainter::drawText(
    const QRectF &rect, int flags, const QString &text, const QColor &color)
{
    m_painter->setPen(color);
    m_painter->drawText(rect, flags | Qt::TextSingleLine, text);
}

} // namespace Desk
