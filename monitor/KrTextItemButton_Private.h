#pragma once

#include "monitor/KrTextItem_Private.h"

namespace PluginKrHvcP2::Private {

/// A text that reacts to the pointer like a button.
class KrTextItemButton_Private : public KrTextItem_Private
{
    Q_OBJECT
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor)

public:
    explicit KrTextItemButton_Private(const QString &text, QGraphicsItem *parent = nullptr);

    qreal documentWidth() const; ///< of the laid out text, in panel coordinates
    qreal documentHeight() const; ///< of the laid out text, in panel coordinates

    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

signals:
    /// A mouse button was released after a press on this item. @p object is the item itself.
    void clicked(QObject *object);

protected:
    void hoverEnterEvent(QGraphicsSceneHoverEvent *event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent *event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;

private:
    void fadeBackgroundTo(const QColor &color);
};

} // namespace PluginKrHvcP2::Private
