#include "demo/desk/CoveragePainter.h"

#include "demo/desk/ContentLook.h"
#include "demo/desk/CoverageText.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace Desk {

using namespace Analysis;

namespace {

constexpr int TickStep = 10; // years
constexpr int MinElided = 12; // characters of a name that still help
constexpr QRgb HoleFill = 0xff451b20;
constexpr QRgb HoleInk = 0xffff7b72;
constexpr QRgb KeyColor = 0xff6e7781;

QString tr(const char *text)
{
    return QCoreApplication::translate("Desk::CoveragePainter", text);
}

/// @p ink, two thirds of it.
QColor fainter(const QColor &ink, const QColor &background)
{
    const auto mixed = [](int a, int b) { return (2 * a + b) / 3; };
    return {mixed(ink.red(), background.red()), mixed(ink.green(), background.green()),
        mixed(ink.blue(), background.blue())};
}

QColor withAlpha(QColor color, qreal alpha)
{
    color.setAlphaF(alpha);
    return color;
}

QColor markColor(DecidedFace::Outcome outcome)
{
    switch (outcome) {
    case DecidedFace::Sent:
        return Qt::white;
    case DecidedFace::Restricted:
        return {0xff, 0xc2, 0x3d};
    case DecidedFace::Cut:
        return {0x9f, 0xb4, 0xc8};
    case DecidedFace::NothingFits:
        break;
    }
    return {0x4b, 0x53, 0x5c};
}

QString markText(DecidedFace::Outcome outcome)
{
    switch (outcome) {
    case DecidedFace::Sent:
        return tr("viewer: starts it");
    case DecidedFace::Restricted:
        return tr("viewer: too soon");
    case DecidedFace::Cut:
        return tr("viewer: behind others");
    case DecidedFace::NothingFits:
        break;
    }
    return tr("viewer: gets nothing");
}

} // namespace

CoveragePainter::CoveragePainter(
    const Plan &plan, const CoverageMap &map, const QPalette &palette, QPainter *painter)
    : m_plan(plan)
    , m_map(map)
    , m_palette(palette)
    , m_painter(painter)
    , m_em(QFontMetricsF(painter->font()).height())
    , m_text(palette.color(QPalette::Text))
    , m_faintText(fainter(m_text, palette.color(QPalette::Base)))
{
    m_painter->setRenderHint(QPainter::Antialiasing);
}

void CoveragePainter::drawMap()
{
    drawAxis();
    drawGenders();
    for (const CoverageItem &item : m_map.items()) {
        if (item.kind == CoverageItem::Content)
            drawContent(item);
        else
            drawBand(item);
    }
    drawKey();
    if (!m_map.moreRect().isNull()) {
        drawText(m_map.moreRect(), Qt::AlignLeft | Qt::AlignVCenter,
            tr("and %1 more").arg(m_map.hiddenContents()), m_faintText);
    }
}

void CoveragePainter::drawAxis()
{
    const QRectF axis = m_map.axisRect();
    const QFontMetricsF metrics(m_painter->font());
    const qreal step = m_map.xOf(TickStep) - m_map.xOf(0);
    const bool isNarrow = step < metrics.horizontalAdvance(QStringLiteral("0000"));
    for (int age = LowestCoveredAge; age <= HighestCoveredAge; age += TickStep) {
        const qreal x = m_map.xOf(age);
        m_painter->setPen(QPen(withAlpha(m_text, 0.25), 1));
        m_painter->drawLine(QPointF(x, axis.bottom() - 0.25 * m_em), QPointF(x, axis.bottom()));
        if (isNarrow && age % (2 * TickStep) != 0)
            continue;
        drawText({x - step, axis.top(), 2 * step, axis.height() - 0.25 * m_em},
            Qt::AlignHCenter | Qt::AlignTop | Qt::TextDontClip, QString::number(age), m_faintText);
    }
    QRectF unknown = m_map.unknownAgeRect(0);
    unknown.setTop(axis.top());
    unknown.setBottom(axis.bottom() - 0.25 * m_em);
    drawText(unknown, Qt::AlignHCenter | Qt::AlignTop, QStringLiteral("?"), m_faintText);
}

void CoveragePainter::drawGenders()
{
    for (int line = 0; line < m_map.coverage().genders.size(); ++line) {
        QRectF rect = m_map.rowRect(line);
        rect.setLeft(m_map.keyRect().left());
        rect.setRight(m_map.axisRect().left());
        if (m_map.labelHeight() > 0)
            rect.setHeight(m_map.labelHeight());
        drawText(rect, Qt::AlignLeft | Qt::AlignVCenter,
            genderName(m_map.coverage().genders.at(line).gender), m_text);
    }
}

void CoveragePainter::drawBand(const CoverageItem &item)
{
    drawFit(item.rect.adjusted(0.5, 0, -0.5, 0), item.choice, contentColor(m_plan, item.number));
    drawBandLabel(item);
}

void CoveragePainter::drawFit(const QRectF &rect, const Choice &choice, const QColor &color)
{
    const bool isHole = choice.fit == Choice::Nothing;
    const qreal radius = std::min(0.2 * m_em, rect.width() / 4);
    QPainterPath shape;
    shape.addRoundedRect(rect, radius, radius);
    m_painter->save();
    m_painter->fillPath(shape, isHole ? QColor(HoleFill) : color);
    m_painter->setClipPath(shape);
    if (isHole)
        drawStripes(rect, withAlpha(QColor(HoleInk), 0.75), 0.08 * m_em, 0.45 * m_em);
    else if (choice.fit == Choice::ByDefault)
        drawStripes(rect, withAlpha(contentInk(color), 0.3), 0.18 * m_em, 0.7 * m_em);
    else if (choice.fit == Choice::ByAge)
        drawDots(rect, withAlpha(contentInk(color), 0.45));
    m_painter->restore();
    if (!isHole)
        return;
    m_painter->setPen(QPen(QColor(HoleInk), 1, Qt::DashLine));
    m_painter->setBrush(Qt::NoBrush);
    m_painter->drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

void CoveragePainter::drawStripes(const QRectF &rect, const QColor &color, qreal width, qreal step)
{
    m_painter->setPen(QPen(color, width));
    // All bands share one raster: stripes go on across neighbours.
    const auto first = static_cast<int>(std::floor((rect.left() + rect.top()) / step));
    const auto last = static_cast<int>(std::ceil((rect.right() + rect.bottom()) / step));
    for (int i = first; i <= last; ++i) {
        const qreal sum = i * step; // of x and y on the stripe
        m_painter->drawLine(
            QPointF(sum - rect.top(), rect.top()), QPointF(sum - rect.bottom(), rect.bottom()));
    }
}

void CoveragePainter::drawDots(const QRectF &rect, const QColor &color)
{
    const qreal step = 0.5 * m_em;
    m_painter->setPen(Qt::NoPen);
    m_painter->setBrush(color);
    const QPointF first = rect.topLeft() + QPointF(step / 2, step / 2);
    const auto lines = static_cast<int>(std::ceil(rect.height() / step));
    const auto columns = static_cast<int>(std::ceil(rect.width() / step));
    for (int line = 0; line < lines; ++line) {
        for (int column = 0; column < columns; ++column) {
            m_painter->drawEllipse(first + QPointF(column * step, line * step), step / 4, step / 4);
        }
    }
}

void CoveragePainter::drawBandLabel(const CoverageItem &item)
{
    const QFontMetricsF metrics(m_painter->font());
    const bool isHole = item.choice.fit == Choice::Nothing;
    const qreal room = item.rect.width() - 0.5 * m_em;
    const QString full = isHole ? fitText(Choice::Nothing) : contentTitle(m_plan, item.number);
    QString label = metrics.elidedText(full, Qt::ElideRight, room);
    if (label != full && (isHole || label.size() < MinElided))
        label = isHole ? QString() : QLatin1Char('#') + QString::number(item.number);
    const qreal width = metrics.horizontalAdvance(label);
    if (label.isEmpty() || width > item.rect.width() - 2)
        return;

    QRectF rect = item.rect;
    if (m_map.labelHeight() > 0)
        rect.setHeight(m_map.labelHeight());
    const QColor color = contentColor(m_plan, item.number);
    if (item.choice.fit != Choice::Full) { // letters are not read well over a pattern
        const qreal plate = std::min(item.rect.width(), width + 0.5 * m_em);
        m_painter->setPen(Qt::NoPen);
        m_painter->setBrush(isHole ? QColor(HoleFill) : color);
        const QRectF behind(
            rect.center().x() - plate / 2, rect.center().y() - 0.55 * m_em, plate, 1.1 * m_em);
        m_painter->drawRoundedRect(behind, 0.2 * m_em, 0.2 * m_em);
    }
    drawText(rect, Qt::AlignCenter, label, isHole ? QColor(HoleInk) : contentInk(color));
}

void CoveragePainter::drawKey()
{
    const auto fits = {Choice::Full, Choice::ByDefault, Choice::ByAge, Choice::Nothing};
    const auto outcomes
        = {DecidedFace::Sent, DecidedFace::Restricted, DecidedFace::Cut, DecidedFace::NothingFits};
    int part = 0;
    const auto place = [&] {
        const QRectF rect = m_map.keyPartRect(part);
        ++part;
        return rect;
    };
    const auto drawMeaning = [&](QRectF rect, const QString &meaning) {
        rect.adjust(2.1 * m_em, 0, -0.3 * m_em, 0);
        drawText(rect, Qt::AlignLeft | Qt::AlignVCenter,
            QFontMetricsF(m_painter->font()).elidedText(meaning, Qt::ElideRight, rect.width()),
            m_faintText);
    };
    for (const Choice::Fit fit : fits) {
        if (part >= m_map.keyParts())
            return;
        const QRectF rect = place();
        drawFit({rect.left(), rect.center().y() - 0.5 * m_em, 1.7 * m_em, m_em}, {0, fit},
            QColor(KeyColor));
        drawMeaning(rect, fitText(fit));
    }
    for (const DecidedFace::Outcome outcome : outcomes) {
        if (part >= m_map.keyParts())
            return;
        const QRectF rect = place();
        drawMark({rect.left() + 0.85 * m_em, rect.center().y()}, outcome);
        drawMeaning(rect, markText(outcome));
    }
}

void CoveragePainter::drawContent(const CoverageItem &item)
{
    const bool needsLook = m_map.needsLook(item.number);
    const QColor color = contentColor(m_plan, item.number);
    const qreal swatch = 0.35 * m_em;
    QRectF rect = item.rect;
    m_painter->setPen(Qt::NoPen);
    m_painter->setBrush(needsLook ? QColor(HoleFill) : m_palette.color(QPalette::AlternateBase));
    m_painter->drawRoundedRect(rect, 0.2 * m_em, 0.2 * m_em);
    m_painter->setBrush(color);
    m_painter->drawRect(QRectF(rect.topLeft(), QSizeF(swatch, rect.height())));
    if (needsLook) {
        m_painter->setPen(QPen(QColor(HoleInk), 1, Qt::DashLine));
        m_painter->setBrush(Qt::NoBrush);
        m_painter->drawRect(rect.adjusted(0.5, 0.5, -0.5, -0.5));
    }

    rect.adjust(swatch + 0.4 * m_em, 0, -0.2 * m_em, 0);
    const QFontMetricsF metrics(m_painter->font());
    const auto draw = [&](const QRectF &line, const QString &text, const QColor &ink) {
        drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
            metrics.elidedText(text, Qt::ElideRight, line.width()), ink);
    };
    const QColor ink = needsLook ? QColor(HoleInk) : m_text;
    const QString title = contentTitle(m_plan, item.number);
    if (!m_map.hasNotes()) {
        draw(rect, title, ink);
        return;
    }
    const qreal half = rect.height() / 2;
    draw({rect.left(), rect.top() + 0.1 * m_em, rect.width(), half}, title, ink);
    draw({rect.left(), rect.top() + half - 0.1 * m_em, rect.width(), half},
        contentNote(m_plan, m_map.coverage(), item.number),
        needsLook ? QColor(HoleInk) : m_faintText);
}

void CoveragePainter::drawMarks(const Decision &decision)
{
    const QVector<CoverageMark> marks = m_map.marks(decision);
    // The most prominent face lies above the others.
    for (auto it = marks.crbegin(); it != marks.crend(); ++it)
        drawMark(it->center, decision.faces.at(it->face).outcome);
}

void CoveragePainter::drawMark(const QPointF &center, DecidedFace::Outcome outcome)
{
    const qreal radius = std::max(2.0, m_map.markRadius() - 1);
    const bool isSent = outcome == DecidedFace::Sent;
    m_painter->setPen(QPen(QColor(0, 0, 0, 200), isSent ? 3 : 1.5));
    m_painter->setBrush(markColor(outcome));
    m_painter->drawEllipse(center, radius, radius);
    if (isSent) {
        m_painter->setBrush(QColor(0x1d, 0x6f, 0xd1));
        m_painter->setPen(Qt::NoPen);
        m_painter->drawEllipse(center, radius / 2, radius / 2);
    }
    if (outcome != DecidedFace::NothingFits)
        return;
    const qreal arm = radius / 2;
    m_painter->setPen(QPen(QColor(HoleInk), 1.5));
    m_painter->drawLine(center - QPointF(arm, arm), center + QPointF(arm, arm));
    m_painter->drawLine(center - QPointF(arm, -arm), center + QPointF(arm, -arm));
}

void CoveragePainter::drawText(
    const QRectF &rect, int flags, const QString &text, const QColor &color)
{
    m_painter->setPen(color);
    m_painter->drawText(rect, flags | Qt::TextSingleLine, text);
}

} // namespace Desk
