#include "demo/desk/PlacingView.h"

#include "demo/desk/PlacingText.h"
#include "demo/desk/SensorScreen.h"
#include "demo/desk/ViewerDesk.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace Desk {

namespace {

constexpr int ArrowStep = 20; // pixels of the sensor
constexpr double WheelStep = 120; // eighths of a degree that are one notch
constexpr qreal LeastRadius = 7; // as faces are drawn
constexpr qreal Distance = 3; // of a ring from the face within it
constexpr qreal RingWidth = 1.2;
constexpr qreal SelectedWidth = 2.6;
constexpr QRgb Ring = 0xb0ffffff;
constexpr QRgb Ground = 0x18ffffff; // shows who has not been seen yet
constexpr QRgb Plate = 0xe10b0e12;
constexpr QRgb PlateText = 0xfff2f5f8;

QPointF pointerOf(const QWheelEvent &event)
{
#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
    return event.position();
#else
    return event.posF();
#endif
}

QPoint centerOf(const PlacedViewer &viewer)
{
    return {viewer.position.x, viewer.position.y};
}

} // namespace

PlacingView::PlacingView(ViewerDesk *desk, QWidget *parent)
    : QWidget(parent)
    , m_desk(desk)
{
    setAccessibleName(tr("Desk of viewers"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    connect(desk, &ViewerDesk::changed, this, &PlacingView::showDesk);
    connect(desk, &ViewerDesk::selectionChanged, this, &PlacingView::showDesk);
}

SensorGeometry PlacingView::sensorGeometry() const
{
    return SensorLayout::of(size(), font(), 0).geometry;
}

void PlacingView::showDesk()
{
    if (!isVisible())
        return;
    setAccessibleDescription(spokenText(*m_desk));
    update();
}

void PlacingView::showEvent(QShowEvent *event)
{
    showDesk(); // what has been missed
    QWidget::showEvent(event);
}

QPoint PlacingView::toSensor(const QPointF &position) const
{
    return sensorGeometry().toSensor(position).toPoint();
}

/// From the last one Tab leads on to the next widget.
bool PlacingView::focusNextPrevChild(bool next)
{
    if (isLastOne(next))
        return QWidget::focusNextPrevChild(next);
    m_desk->selectNext(next ? 1 : -1);
    return true;
}

bool PlacingView::isLastOne(bool forward) const
{
    const QVector<PlacedViewer> viewers = m_desk->viewers();
    if (viewers.isEmpty())
        return true;
    const PlacedViewer &end = forward ? viewers.constLast() : viewers.constFirst();
    return end.id == m_desk->selected();
}

void PlacingView::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = (event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier)) == 0;
    if (!isPlain || !(moveByKey(event->key()) || handleKey(event->key())))
        QWidget::keyPressEvent(event);
}

bool PlacingView::moveByKey(int key)
{
    const auto move = [this](int right, int down) {
        m_desk->moveBy(m_desk->selected(), QPoint(right, down) * ArrowStep);
        return true;
    };
    switch (key) {
    case Qt::Key_Left:
        return move(-1, 0);
    case Qt::Key_Right:
        return move(1, 0);
    case Qt::Key_Up:
        return move(0, -1);
    case Qt::Key_Down:
        return move(0, 1);
    default:
        return false;
    }
}

bool PlacingView::handleKey(int key)
{
    const int selected = m_desk->selected();
    switch (key) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: // where + needs Shift
        m_desk->bringNearer(selected, 1);
        return true;
    case Qt::Key_Minus:
        m_desk->bringNearer(selected, -1);
        return true;
    case Qt::Key_Insert:
        m_desk->add(m_desk->freePlace());
        return true;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        m_desk->remove(selected);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (selected != 0)
            emit detailsWanted();
        return true;
    default:
        return false;
    }
}

void PlacingView::mousePressEvent(QMouseEvent *event)
{
    const QPointF position = event->localPos();
    if (event->button() != Qt::LeftButton || !sensorGeometry().area().contains(position)) {
        event->ignore();
        return;
    }
    const QPoint point = toSensor(position);
    m_dragged = m_desk->viewerAt(point);
    if (m_dragged == 0)
        m_dragged = m_desk->add(point);
    m_grip = point - centerOf(m_desk->viewer(m_dragged));
    m_desk->select(m_dragged);
    showCursorAt(position);
}

void PlacingView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_dragged != 0 && event->buttons().testFlag(Qt::LeftButton))
        m_desk->moveTo(m_dragged, toSensor(event->localPos()) - m_grip);
    else
        showCursorAt(event->localPos());
}

void PlacingView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        m_dragged = 0;
    else
        event->ignore();
}

/// Whom the pointer is on comes nearer, or else the selected one.
void PlacingView::wheelEvent(QWheelEvent *event)
{
    const int pointed = m_desk->viewerAt(toSensor(pointerOf(*event)));
    if (pointed != 0)
        m_desk->select(pointed);
    m_desk->bringNearer(m_desk->selected(), event->angleDelta().y() / WheelStep);
    event->accept();
}

void PlacingView::showCursorAt(const QPointF &position)
{
    if (!sensorGeometry().area().contains(position))
        unsetCursor();
    else
        setCursor(m_desk->viewerAt(toSensor(position)) == 0 ? Qt::CrossCursor : Qt::SizeAllCursor);
}

void PlacingView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const SensorLayout layout = SensorLayout::of(size(), font(), 0);
    painter.setClipRect(layout.geometry.area());
    const QVector<PlacedViewer> viewers = m_desk->farthestFirst();
    for (const PlacedViewer &viewer : viewers)
        paintViewer(painter, layout.geometry, viewer);
    paintHint(painter, layout);
}

void PlacingView::paintViewer(
    QPainter &painter, const SensorGeometry &geometry, const PlacedViewer &viewer) const
{
    const qreal radius
        = std::max(LeastRadius, geometry.toWidget(qreal(viewer.position.size)) / 2) + Distance;
    if (viewer.id == m_desk->selected()) {
        const Qt::PenStyle style = hasFocus() ? Qt::SolidLine : Qt::DashLine;
        painter.setPen(QPen(palette().color(QPalette::Highlight), SelectedWidth, style));
    } else {
        painter.setPen(QPen(QColor::fromRgba(Ring), RingWidth));
    }
    painter.setBrush(QColor::fromRgba(Ground));
    painter.drawEllipse(geometry.toWidget(QPointF(centerOf(viewer))), radius, radius);
}

void PlacingView::paintHint(QPainter &painter, const SensorLayout &layout) const
{
    const QString hint = placingHint(*m_desk);
    if (hint.isEmpty())
        return;
    const QRectF &area = layout.geometry.area();
    const QFontMetricsF metrics(layout.labelFont);
    const qreal padding = metrics.height() * 0.5;
    const QString text
        = metrics.elidedText(hint, Qt::ElideRight, std::max(0.0, area.width() - 4 * padding));
    QRectF plate(0, area.top() + padding, metrics.horizontalAdvance(text) + 2 * padding,
        metrics.height() + padding);
    plate.moveLeft(area.center().x() - plate.width() / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgba(Plate));
    painter.drawRoundedRect(plate, padding, padding);
    painter.setFont(layout.labelFont);
    painter.setPen(QColor::fromRgb(PlateText));
    painter.drawText(plate, Qt::AlignCenter, text);
}

} // namespace Desk
