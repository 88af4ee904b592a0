#include "demo/desk/CoverageView.h"

#include "demo/desk/ContentLook.h"
#include "demo/desk/CoveragePainter.h"
#include "demo/desk/CoverageText.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <optional>

namespace Desk {

using namespace Analysis;

namespace {

std::optional<CoverageMap::Direction> directionOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return CoverageMap::Left;
    case Qt::Key_Right:
        return CoverageMap::Right;
    case Qt::Key_Up:
        return CoverageMap::Up;
    case Qt::Key_Down:
        return CoverageMap::Down;
    case Qt::Key_Home:
        return CoverageMap::First;
    case Qt::Key_End:
        return CoverageMap::Last;
    default:
        return std::nullopt;
    }
}

CoverageFont measured(const QFont &font)
{
    const QFontMetricsF metrics(font);
    CoverageFont lengths{metrics.height(), 0};
    for (const PluginKrHvcP2::Gender gender : CoveredGenders) {
        lengths.labelWidth
            = qMax(lengths.labelWidth, metrics.horizontalAdvance(genderName(gender)));
    }
    return lengths;
}

} // namespace

CoverageView::CoverageView(QWidget *parent)
    : QWidget(parent)
{
    setAccessibleName(tr("Coverage: which content a viewer gets"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QSize CoverageView::sizeHint() const
{
    const int em = fontMetrics().height();
    return {48 * em, 28 * em};
}

QSize CoverageView::minimumSizeHint() const
{
    const int em = fontMetrics().height();
    return {18 * em, 14 * em};
}

void CoverageView::setPlan(const Plan &plan)
{
    m_plan = plan;
    m_map = CoverageMap(plan);
    m_current = -1;
    layOutMap();
}

void CoverageView::showFrame(const SeenFrame &frame)
{
    m_decision = frame.decision;
    update(); // does nothing while hidden
}

void CoverageView::clear()
{
    m_decision = {};
    update();
}

bool CoverageView::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto *const help = static_cast<QHelpEvent *>(event);
    QToolTip::showText(help->globalPos(), toolTipOf(linesAt(help->pos())), this);
    return true;
}

void CoverageView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, picture());
    drawOutlines(&painter);
    CoveragePainter(m_plan, m_map, palette(), &painter).drawMarks(m_decision);
}

void CoverageView::resizeEvent(QResizeEvent * /*event*/)
{
    layOutMap();
}

void CoverageView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::PaletteChange:
    case QEvent::LanguageChange:
    case QEvent::StyleChange:
        layOutMap();
        break;
    default:
        break;
    }
}

void CoverageView::hideEvent(QHideEvent * /*event*/)
{
    m_picture = {};
}

void CoverageView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        activate(m_current);
        return;
    }
    const std::optional<CoverageMap::Direction> direction = directionOf(event->key());
    if (!direction) {
        QWidget::keyPressEvent(event);
        return;
    }
    setCurrent(m_map.neighbour(m_current, *direction));
    if (m_current < 0)
        return;
    const CoverageItem &item = m_map.items().at(m_current);
    QToolTip::showText(mapToGlobal(item.rect.bottomLeft().toPoint()),
        toolTipOf(itemLines(m_plan, m_map.coverage(), item)), this);
}

void CoverageView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_pressed = m_map.itemAt(event->localPos());
    setCurrent(m_pressed);
}

void CoverageView::mouseMoveEvent(QMouseEvent *event)
{
    setHovered(m_map.itemAt(event->localPos()));
}

void CoverageView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const int pressed = m_pressed;
    m_pressed = -1;
    if (pressed >= 0 && m_map.itemAt(event->localPos()) == pressed)
        activate(pressed); // nothing after it: this may have gone
}

void CoverageView::leaveEvent(QEvent * /*event*/)
{
    setHovered(-1);
}

void CoverageView::focusInEvent(QFocusEvent *event)
{
    const Qt::FocusReason reason = event->reason();
    if (m_current < 0 && (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason))
        setCurrent(m_map.neighbour(-1, CoverageMap::First));
    QWidget::focusInEvent(event);
}

void CoverageView::layOutMap()
{
    m_map.layOut(size(), measured(font()));
    m_current = qMin(m_current, m_map.items().size() - 1); // some may have no room any more
    m_hovered = -1;
    m_pressed = -1;
    m_picture = {};
    update();
}

void CoverageView::setCurrent(int item)
{
    if (item == m_current)
        return;
    m_current = item;
    if (item >= 0) {
        setAccessibleDescription(
            itemLines(m_plan, m_map.coverage(), m_map.items().at(item)).join(QLatin1Char('\n')));
    }
    update();
}

void CoverageView::setHovered(int item)
{
    if (item == m_hovered)
        return;
    m_hovered = item;
    const bool opens = item >= 0 && m_map.items().at(item).number > 0;
    setCursor(opens ? Qt::PointingHandCursor : Qt::ArrowCursor);
    update();
}

void CoverageView::activate(int item)
{
    if (item < 0 || item >= m_map.items().size())
        return;
    const int number = m_map.items().at(item).number;
    if (number > 0)
        emit contentActivated(number);
}

QStringList CoverageView::linesAt(const QPointF &point) const
{
    const int face = m_map.faceAt(point, m_map.marks(m_decision));
    if (face >= 0)
        return faceLines(m_plan, m_decision.faces.at(face));
    const int item = m_map.itemAt(point);
    return item < 0 ? QStringList() : itemLines(m_plan, m_map.coverage(), m_map.items().at(item));
}

const QPixmap &CoverageView::picture()
{
    const qreal ratio = devicePixelRatioF();
    if (!m_picture.isNull() && qFuzzyCompare(m_picture.devicePixelRatio(), ratio))
        return m_picture;
    m_picture = QPixmap(size() * ratio);
    m_picture.setDevicePixelRatio(ratio);
    m_picture.fill(palette().color(QPalette::Base));
    QPainter painter(&m_picture);
    painter.setFont(font());
    CoveragePainter(m_plan, m_map, palette(), &painter).drawMap();
    return m_picture;
}

/// Around all parts of the content that is pointed at, and around the part that is chosen.
void CoverageView::drawOutlines(QPainter *painter) const
{
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    const auto draw = [painter](const QRectF &rect) {
        painter->drawRoundedRect(rect.adjusted(1, 1, -1, -1), 3, 3);
    };
    const QVector<CoverageItem> &items = m_map.items();
    painter->setPen(QPen(palette().color(QPalette::BrightText), 2));
    const int number = m_hovered < 0 ? 0 : items.at(m_hovered).number;
    for (const CoverageItem &item : items) {
        if (number > 0 && item.number == number)
            draw(item.rect);
    }
    if (!hasFocus() || m_current < 0)
        return;
    painter->setPen(QPen(Qt::black, 4));
    draw(items.at(m_current).rect);
    painter->setPen(QPen(palette().color(QPalette::BrightText), 2, Qt::DotLine));
    draw(items.at(m_current).rect);
}

} // namespace Desk
