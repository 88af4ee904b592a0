#include "monitor/KrTextItemButton_Private.h"

#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QPropertyAnimation>
#include <QTextDocument>
#include <QTextOption>

namespace PluginKrHvcP2::Private {

namespace {

constexpr int FadeMs = 150;
constexpr QRgb IdleColor = qRgba(0, 0, 0, 127);
constexpr QRgb HoverColor = qRgba(72, 72, 72, 127);
constexpr QRgb PressedColor = qRgba(127, 127, 127, 127);

} // namespace

KrTextItemButton_Private::KrTextItemButton_Private(const QString &text, QGraphicsItem *parent)
    : KrTextItem_Private(text, parent)
{
    setBackgroundColor(QColor::fromRgba(IdleColor));

    QTextOption option = document()->defaultTextOption();
    option.setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    document()->setDefaultTextOption(option);

    setDefaultTextColor(QColor(255, 204, 102, 255));
    setFont(panelFont(10));
}

qreal KrTextItemButton_Private::documentWidth() const
{
    return document()->size().width();
}

qreal KrTextItemButton_Private::documentHeight() const
{
    return document()->size().height();
}

void KrTextItemButton_Private::paint(
    QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    KrTextItem_Private::paint(painter, option, widget);
    const QRectF frame = boundingRect();
    painter->setPen(QPen(QColor(198, 198, 198, 127), 1));
    painter->drawRects(&frame, 1);
}

void KrTextItemButton_Private::hoverEnterEvent(QGraphicsSceneHoverEvent *event)
{
    KrTextItem_Private::hoverEnterEvent(event);
    fadeBackgroundTo(QColor::fromRgba(HoverColor));
    event->accept();
}

void KrTextItemButton_Private::hoverLeaveEvent(QGraphicsSceneHoverEvent *event)
{
    KrTextItem_Private::hoverLeaveEvent(event);
    fadeBackgroundTo(QColor::fromRgba(IdleColor));
    event->accept();
}

void KrTextItemButton_Private::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    KrTextItem_Private::mousePressEvent(event);
    fadeBackgroundTo(QColor::fromRgba(PressedColor));
    event->accept(); // only an accepted press brings the release
}

void KrTextItemButton_Private::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    KrTextItem_Private::mouseReleaseEvent(event);
    fadeBackgroundTo(QColor::fromRgba(HoverColor));
    event->accept();
    emit clicked(this); // last: the receiver may delete the panel
}

void KrTextItemButton_Private::fadeBackgroundTo(const QColor &color)
{
    auto *animation = new QPropertyAnimation(this, QByteArrayLiteral("backgroundColor"), this);
    animation->setDuration(FadeMs);
    animation->setStartValue(backgroundColor());
    animation->setEndValue(color);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

} // namespace PluginKrHvcP2::Private
