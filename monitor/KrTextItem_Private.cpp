#include "monitor/KrTextItem_Private.h"

#include "monitor/OfflineTextDocument.h"

#include <QPainter>

namespace PluginKrHvcP2::Private {

QFont panelFont(int pointSize, int weight)
{
    // No literal: Qt's font cache keeps the name when this library has been unloaded.
    return {QString::fromLatin1("Yu Gothic"), pointSize, weight};
}

KrTextItem_Private::KrTextItem_Private(const QString &text, QGraphicsItem *parent)
    : KrTextItem_Private(parent)
{
    setPlainText(text);
}

KrTextItem_Private::KrTextItem_Private(QGraphicsItem *parent)
    : QGraphicsTextItem(parent)
{
    auto *document = new OfflineTextDocument(this);
    document->setDefaultFont(panelFont(11)); // before the item has it laid out
    setDocument(document);
    setDefaultTextColor(Qt::white);
}

void KrTextItem_Private::setBackgroundColor(const QColor &color)
{
    m_backgroundColor = color;
    update();
}

void KrTextItem_Private::paint(
    QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    painter->fillRect(boundingRect(), m_backgroundColor);
    QGraphicsTextItem::paint(painter, option, widget);
}

} // namespace PluginKrHvcP2::Private
