#include "monitor/KrTextItem_Private.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

namespace PluginKrHvcP2::Private {

QFont panelFont(int pointSize, int weight)
{
    // No literal: Qt's font cache keeps the name when this library has been unloaded.
    return {QString::fromLatin1("Yu Gothic"), pointSize, weight};
}

std::unique_ptr<OfflineTextDocument> panelDocument()
{
    auto document = std::make_unique<OfflineTextDocument>();
    document->setDefaultFont(panelFont(11));
    return document;
}

KrTextItem_Private::KrTextItem_Private(const QString &text, QGraphicsItem *parent)
    : KrTextItem_Private(parent)
{
    setPlainText(text);
}

KrTextItem_Private::KrTextItem_Private(QGraphicsItem *parent)
    : KrTextItem_Private(panelDocument(), parent)
{ }

KrTextItem_Private::KrTextItem_Private(
    std::unique_ptr<OfflineTextDocument> document, QGraphicsItem *parent)
    : QGraphicsTextItem(parent)
{
    document->setParent(this);
    setDocument(document.release());
    setDefaultTextColor(Qt::white);
    setFlag(ItemUsesExtendedStyleOption); // what is outside of the view is not drawn
}

void KrTextItem_Private::setBackgroundColor(const QColor &color)
{
    m_backgroundColor = color;
    update();
}

void KrTextItem_Private::paint(
    QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    // What the panel cuts off need not be drawn: of a message of many faces that is most of it.
    // One unit more, for what is smoothed at the edge.
    QStyleOptionGraphicsItem visible(*option);
    if (visible.exposedRect.isEmpty())
        visible.exposedRect = boundingRect();
    if (parentItem() != nullptr && parentItem()->flags().testFlag(ItemClipsChildrenToShape))
        visible.exposedRect
            &= mapRectFromParent(parentItem()->boundingRect().adjusted(-1, -1, 1, 1));
    if (visible.exposedRect.isEmpty())
        return;
    painter->fillRect(boundingRect(), m_backgroundColor);
    QGraphicsTextItem::paint(painter, &visible, widget);
}

} // namespace PluginKrHvcP2::Private
