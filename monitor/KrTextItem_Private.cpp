#include "monitor/KrTextItem_Private.h"

#include "monitor/OfflineTextDocument.h"

#include <QFont>
#include <QPainter>

namespace PluginKrHvcP2::Private {

KrTextItem_Private::KrTextItem_Private(const QString &text, QGraphicsItem *parent)
    : KrTextItem_Private(parent)
{
    setPlainText(text);
}

KrTextItem_Private::KrTextItem_Private(QGraphicsItem *parent)
    : QGraphicsTextItem(parent)
{
    setDocument(new OfflineTextDocument(this));
    QFont itemFont = font();
    itemFont.setFamily(QStringLiteral("Yu Gothic"));
    itemFont.setPointSize(11);
    setFont(itemFont);
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
