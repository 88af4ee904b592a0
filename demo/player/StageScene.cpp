#include "demo/player/StageScene.h"

#include "demo/player/CardItem.h"
#include "host/KrPluginGraphicsItem.h"

#include <QEvent>
#include <QImage>
#include <QPainter>
#include <QPropertyAnimation>

#include <algorithm>

namespace Player {

namespace {

constexpr int FadeDuration = 450; // ms
constexpr qreal PanelZ = 1; // cards lie at 0

bool hasRunningAnimation(const QObject *object)
{
    if (!object)
        return false;
    const auto animations = object->findChildren<QAbstractAnimation *>();
    return std::any_of(
        animations.cbegin(), animations.cend(), [](const QAbstractAnimation *animation) {
            return animation->state() == QAbstractAnimation::Running;
        });
}

} // namespace

StageScene::StageScene(QObject *parent)
    : QGraphicsScene(parent)
{
    setBackgroundBrush(Qt::black);
    setSceneRect({QPointF(), m_size});
}

StageScene::~StageScene()
{
    removePanel();
}

void StageScene::setStageSize(const QSizeF &size)
{
    if (size.isEmpty() || size == m_size)
        return;
    m_size = size;
    setSceneRect({QPointF(), m_size});
    layOut();
}

void StageScene::setPanel(Kora::KrPluginGraphicsItem *panel)
{
    removePanel();
    m_panel = panel;
    if (!m_panel)
        return;
    m_panelObject = dynamic_cast<QObject *>(m_panel);
    m_panel->setZValue(PanelZ);
    addItem(m_panel);
    layOut();
}

void StageScene::removePanel()
{
    if (m_panelObject && m_panel->scene() == this)
        removeItem(m_panel);
    m_panel = nullptr;
    m_panelObject.clear();
}

void StageScene::adaptToPanel()
{
    layOut();
    update();
}

void StageScene::showContent(const StageContent &content, int count)
{
    if (m_card && m_card->content() == content && m_card->count() == count)
        return;
    CardItem *const previous = m_card;
    m_card = new CardItem(content, count);
    addItem(m_card);
    layOut();
    if (!previous)
        return;
    // The new card, added last, lies over the old one and fades in.
    m_card->setOpacity(0);
    auto *const fade = new QPropertyAnimation(m_card, "opacity", m_card);
    fade->setDuration(FadeDuration);
    fade->setStartValue(0.0);
    fade->setEndValue(1.0);
    connect(fade, &QPropertyAnimation::finished, previous, &QObject::deleteLater);
    // A card that goes while it still fades in must take the one below with it.
    connect(m_card, &QObject::destroyed, previous, &QObject::deleteLater);
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

int StageScene::shownNumber() const
{
    return m_card ? m_card->content().number : -1;
}

bool StageScene::isMoving() const
{
    return hasRunningAnimation(m_card) || hasRunningAnimation(m_panelObject);
}

QImage StageScene::toImage()
{
    QImage image(m_size.toSize(), QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    render(&painter);
    return image;
}

QRectF StageScene::panelArea(const QSizeF &size)
{
    // A face's longest line needs some 450 pixels; more room is better left to the card.
    const qreal margin = size.height() * 0.045;
    const qreal width = qMax(size.width() * 0.38, qMin(size.width() * 0.46, 480.0));
    return {size.width() - width - margin, margin, width, size.height() - 2 * margin};
}

QRectF StageScene::textArea(const QSizeF &size, bool withPanel)
{
    const qreal margin = size.height() * 0.08;
    const qreal right = withPanel ? panelArea(size).left() - margin * 0.6 : size.width() - margin;
    return {margin, margin, right - margin, size.height() - 2 * margin};
}

bool StageScene::event(QEvent *event)
{
    if (event->type() != QEvent::GraphicsSceneMouseRelease)
        return QGraphicsScene::event(event);
    const QPointer<StageScene> guard(this); // the panel's buttons end in host code
    ++m_clicks;
    const bool handled = QGraphicsScene::event(event);
    if (guard)
        --m_clicks;
    return handled;
}

void StageScene::layOut()
{
    if (m_card)
        m_card->setGeometry(m_size, textArea(m_size, isPanelVisible()));
    if (!m_panelObject)
        return;
    const QRectF area = panelArea(m_size);
    m_panel->setPos(area.topLeft());
    m_panel->setItemSize(area.size());
}

bool StageScene::isPanelVisible() const
{
    return m_panelObject && m_panel->isVisible();
}

} // namespace Player
