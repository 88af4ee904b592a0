#pragma once

#include "monitor/OfflineTextDocument.h"

#include <QColor>
#include <QFont>
#include <QGraphicsTextItem>

#include <memory>

namespace PluginKrHvcP2::Private {

/// The font of everything on the panel. Nothing of the application's font gets into it.
QFont panelFont(int pointSize, int weight = -1);

/// An empty document in that font.
std::unique_ptr<OfflineTextDocument> panelDocument();

/// A text on the panel: a title, a label or a sliding message, with a background of its own.
class KrTextItem_Private : public QGraphicsTextItem
{
    Q_OBJECT
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor)
    Q_PROPERTY(QPointF pos READ pos WRITE setPos)

public:
    explicit KrTextItem_Private(const QString &text, QGraphicsItem *parent = nullptr);
    explicit KrTextItem_Private(QGraphicsItem *parent = nullptr);
    /// Shows @p document as it is.
    explicit KrTextItem_Private(
        std::unique_ptr<OfflineTextDocument> document, QGraphicsItem *parent = nullptr);

    QColor backgroundColor() const { return m_backgroundColor; }
    Q_INVOKABLE void setBackgroundColor(const QColor &color);

    /// Which way the panel lets the item travel, as a set of MoveDirection bits.
    int direction() const { return m_direction; }
    void setDirection(int direction) { m_direction = direction; }

    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    QColor m_backgroundColor{255, 255, 255, 0};
    int m_direction = 2;
};

} // namespace PluginKrHvcP2::Private
