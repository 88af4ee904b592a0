#pragma once

#include "demo/player/StageContent.h"

#include <QGraphicsScene>
#include <QPointer>
#include <QSizeF>

namespace Kora {
class KrPluginGraphicsItem;
} // namespace Kora

namespace Player {

class CardItem;

/// The stage: the card of the playing sequence and over it the plug-in's panel.
class StageScene : public QGraphicsScene
{
    Q_OBJECT

public:
    explicit StageScene(QObject *parent = nullptr);
    ~StageScene() override;

    void setStageSize(const QSizeF &size); ///< lays everything out anew
    QSizeF stageSize() const { return m_size; }

    /// Shows the panel; it stays its owner's. Take it off before its owner goes.
    void setPanel(Kora::KrPluginGraphicsItem *panel);
    void removePanel();
    void adaptToPanel(); ///< call it when the panel was shown or hidden

    /// Fades to the card of @p content, one of @p count. The same card again changes nothing.
    void showContent(const StageContent &content, int count);
    int shownNumber() const; ///< of the card that is shown or fading in; -1 before any

    bool isHandlingClick() const { return m_clicks > 0; } ///< an item is at work because of one
    bool isMoving() const; ///< a card fades, or something slides over the panel
    QImage toImage(); ///< the stage in its size

    /// Where the panel stands on a stage of @p size.
    static QRectF panelArea(const QSizeF &size);
    /// Where a card may put its texts when the panel is shown, or hidden.
    static QRectF textArea(const QSizeF &size, bool withPanel);

protected:
    bool event(QEvent *event) override;

private:
    void layOut();
    bool isPanelVisible() const;

    QSizeF m_size{1280, 720};
    Kora::KrPluginGraphicsItem *m_panel = nullptr; // not owned
    QPointer<QObject> m_panelObject; // tells that the panel has gone
    CardItem *m_card = nullptr; // owned by the scene
    int m_clicks = 0; // being handled, one below the other
};

} // namespace Player
