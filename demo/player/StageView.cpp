#include "demo/player/StageView.h"

#include "demo/player/StageScene.h"

#include <QResizeEvent>

namespace Player {

StageView::StageView(StageScene *scene, QWidget *parent)
    : QGraphicsView(scene, parent)
    , m_scene(scene)
{
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setRenderHints(
        QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    setBackgroundBrush(QColor(0x0d, 0x10, 0x14));
    setMinimumSize(480, 270);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize StageView::fittingSize(const QSize &room)
{
    return QSize(16, 9).scaled(room, Qt::KeepAspectRatio);
}

void StageView::resizeEvent(QResizeEvent *event)
{
    m_scene->setStageSize(fittingSize(viewport()->size()));
    QGraphicsView::resizeEvent(event);
}

} // namespace Player
