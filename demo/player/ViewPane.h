#pragma once

#include "demo/desk/ShownFrame.h"

#include <QList>
#include <QWidget>

class QAction;
class QLabel;
class QTabWidget;

namespace Desk {
class SensorView;
}

namespace Player {

class StageDesk;
class StagePlayer;

/// The views beside the stage, a tab for each, which all show the same frame: the newest one, or
/// one that was picked, and then a bar says so. While a log is open it is a frame of that.
class ViewPane : public QWidget
{
    Q_OBJECT

public:
    /// Neither @p player nor @p desk is owned.
    ViewPane(StagePlayer *player, StageDesk *desk, QWidget *parent = nullptr);

    QList<QAction *> tabActions() const { return m_tabActions; } ///< one for each tab, with a key
    Desk::SensorView *sensorView() const { return m_sensorView; }
    void showSensorView(); ///< its tab, with the newest frame and the keyboard

signals:
    void contentActivated(int number); ///< somebody wants to see or edit it; counted from 1

private:
    void addView(QWidget *view, const QString &title);
    template <typename View>
    void addFrameView(View *view, const QString &title);
    void createPickedBar();
    QWidget *createLogEvents();
    void addEvents(StagePlayer *player);
    void addSensorView();
    void addDecisionView();
    void addCoverageView();

    StageDesk *m_desk; // not owned
    QList<QAction *> m_tabActions;
    // children of this
    QWidget *m_pickedBar = nullptr;
    QLabel *m_picked = nullptr;
    QTabWidget *m_tabs = nullptr;
    Desk::SensorView *m_sensorView = nullptr;
};

} // namespace Player
