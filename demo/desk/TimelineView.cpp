#include "demo/desk/TimelineView.h"

#include "demo/desk/ContentLook.h"
#include "demo/desk/CoverageText.h"
#include "demo/desk/TimelinePainter.h"
#include "demo/desk/TimelineText.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

namespace Desk {

using namespace Analysis;

namespace {

constexpr int ClockMs = 1000;
constexpr int ClickReach = 2; // buckets

} // namespace

TimelineView::TimelineView(QWidget *parent)
    : QWidget(parent)
{
    setAccessibleName(tr("Timeline: the last ten minutes"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize TimelineView::sizeHint() const
{
    const int em = fontMetrics().height();
    return {48 * em, em * 13 / 2};
}

QSize TimelineView::minimumSizeHint() const
{
    const int em = fontMetrics().height();
    return {16 * em, 5 * em};
}

TimelineGeometry TimelineView::geometryOfParts() const
{
    const QFontMetricsF metrics(font());
    qreal namesWidth = metrics.horizontalAdvance(TimelinePainter::heldBackText());
    for (const PluginKrHvcP2::Gender gender : CoveredGenders)
        namesWidth = qMax(namesWidth, metrics.horizontalAdvance(genderName(gender)));
    return timelineGeometry(size(), metrics.height(), namesWidth + metrics.height());
}

void TimelineView::setFollowsClock(bool follows)
{
    m_followsClock = follows;
    updateTimer();
}

void TimelineView::setPlan(const Plan &plan)
{
    m_plan = plan;
    m_model.setInterval(plan.settings.interval);
    update();
}

void TimelineView::addFrame(const SeenFrame &frame)
{
    m_model.addFrame(frame);
    update(); // does nothing while hidden
}

void TimelineView::sequenceStarted(int number, const QDateTime &time)
{
    m_model.sequenceStarted(number, time);
    update();
}

void TimelineView::setNow(const QDateTime &time)
{
    m_model.setNow(time);
    update();
}

void TimelineView::showModel(const TimelineModel &model)
{
    m_model = model;
    m_hovered = -1;
    update();
}

void TimelineView::markMoment(const QDateTime &time)
{
    m_marked = time;
    update();
}

void TimelineView::clear()
{
    m_model.clear();
    m_hovered = -1;
    m_cursor = -1;
    m_marked = {};
    update();
}

bool TimelineView::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto *const help = static_cast<QHelpEvent *>(event);
    QToolTip::showText(help->globalPos(), toolTipOf(linesOf(positionAt(help->pos()))), this);
    return true;
}

void TimelineView::paintEvent(QPaintEvent * /*event*/)
{
    const TimelineGeometry geometry = geometryOfParts();
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    TimelinePainter timeline(m_plan, m_model, geometry, palette(), &painter);
    timeline.draw();
    const QColor color = palette().color(QPalette::BrightText);
    if (m_hovered >= 0)
        timeline.drawPointer(m_hovered, color);
    const int cursor = m_model.positionAtIndex(m_cursor);
    if (hasFocus() && m_cursor >= 0 && cursor >= 0)
        timeline.drawPointer(cursor, color);
    if (m_marked.isValid())
        timeline.drawMoment(m_marked);
    if (!hasFocus())
        return;
    painter.setPen(palette().color(QPalette::Highlight));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void TimelineView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_timer.timerId())
        setNow(QDateTime::currentDateTime());
    else
        QWidget::timerEvent(event);
}

void TimelineView::showEvent(QShowEvent * /*event*/)
{
    if (m_followsClock)
        m_model.setNow(QDateTime::currentDateTime());
    updateTimer();
}

void TimelineView::hideEvent(QHideEvent * /*event*/)
{
    updateTimer();
}

void TimelineView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
        moveCursor(event->key());
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose(m_cursor < 0 ? -1 : m_model.positionAtIndex(m_cursor));
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void TimelineView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const int position = positionAt(event->localPos());
    const int chosen = position < 0 ? -1 : m_model.nearestWithFrames(position, ClickReach);
    if (chosen < 0)
        return;
    setCursorPosition(chosen);
    choose(chosen); // nothing after it: this may have gone
}

void TimelineView::mouseMoveEvent(QMouseEvent *event)
{
    setHovered(positionAt(event->localPos()));
}

void TimelineView::leaveEvent(QEvent * /*event*/)
{
    setHovered(-1);
}

int TimelineView::positionAt(const QPointF &point) const
{
    const TimelineGeometry geometry = geometryOfParts();
    const bool isBeside
        = point.x() < geometry.columns.left() || point.x() > geometry.columns.right();
    return m_model.isNull() || isBeside ? -1 : geometry.positionAt(point.x());
}

QStringList TimelineView::linesOf(int position) const
{
    if (position < 0)
        return {};
    return bucketLines(m_plan, m_model.bucket(position), m_model.silences().at(position));
}

void TimelineView::moveCursor(int key)
{
    const int position = m_cursor < 0 ? -1 : m_model.positionAtIndex(m_cursor);
    const bool isBack = key == Qt::Key_Left || key == Qt::Key_End;
    int from = position;
    if (position < 0 || key == Qt::Key_Home || key == Qt::Key_End)
        from = isBack ? TimelineModel::BucketCount : -1;
    const int next = m_model.nextWithFrames(from, isBack ? -1 : 1);
    if (next < 0)
        return;
    setCursorPosition(next);
    const QRectF rect = geometryOfParts().bucketRect(next);
    QToolTip::showText(mapToGlobal(rect.bottomLeft().toPoint()), toolTipOf(linesOf(next)), this);
}

void TimelineView::setCursorPosition(int position)
{
    m_cursor = m_model.indexOf(position);
    setAccessibleDescription(linesOf(position).join(QLatin1Char('\n')));
    update();
}

void TimelineView::choose(int position)
{
    if (position >= 0 && m_model.bucket(position).frames > 0)
        emit momentChosen(QDateTime::fromMSecsSinceEpoch(m_model.bucket(position).momentMs));
}

void TimelineView::setHovered(int position)
{
    if (position == m_hovered)
        return;
    m_hovered = position;
    update();
}

void TimelineView::updateTimer()
{
    if (m_followsClock && isVisible())
        m_timer.start(ClockMs, this);
    else
        m_timer.stop();
}

} // namespace Desk
