#pragma once

#include <QGraphicsView>

namespace Player {

class StageScene;

/// Shows the stage as large as the room allows, always 16 to 9.
class StageView : public QGraphicsView
{
    Q_OBJECT

public:
    explicit StageView(StageScene *scene, QWidget *parent = nullptr); ///< @p scene is not owned

    /// The largest 16:9 size, in whole pixels, that fits @p room.
    static QSize fittingSize(const QSize &room);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    StageScene *m_scene; // not owned
};

} // namespace Player
