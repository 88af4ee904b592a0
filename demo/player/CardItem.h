#pragma once

#include "demo/player/StageContent.h"

#include <QGraphicsObject>
#include <QPixmap>

namespace Player {

/// The card of one sequence: its colour over the whole stage, number, name, title and picture.
class CardItem : public QGraphicsObject
{
    Q_OBJECT

public:
    /// @p count is the number of sequences of the screen.
    CardItem(const StageContent &content, int count, QGraphicsItem *parent = nullptr);

    const StageContent &content() const { return m_content; }
    int count() const { return m_count; }

    /// The texts and the picture keep inside @p textArea, the colour fills @p size.
    void setGeometry(const QSizeF &size, const QRectF &textArea);

    QRectF boundingRect() const override { return {QPointF(), m_size}; }
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    void loadPicture(const QSizeF &size);
    void paintBackground(QPainter *painter) const;
    void paintHeader(QPainter *painter, const QRectF &area) const;
    void paintTitle(QPainter *painter, const QRectF &area) const;
    void paintPosition(QPainter *painter, const QRectF &area) const;

    StageContent m_content;
    int m_count;
    QSizeF m_size;
    QRectF m_textArea;
    QPixmap m_picture; // scaled; null when there is none
};

} // namespace Player
