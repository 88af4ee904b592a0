#pragma once

#include "demo/desk/DeskRecorder.h"
#include "demo/desk/ViewerDesk.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <memory>

class QAction;
class QActionGroup;
class QMenu;
class QWidget;

namespace Desk {
class LiveFile;
class PlacingView;
} // namespace Desk

namespace Player {

class StagePlayer;
class ViewPane;

/// Viewers placed by hand: the menu, the desk over the sensor view and the form beside it. While it
/// is switched on, the plug-in's sensor program shows them instead of its own; before and after, it
/// is stopped and started again.
class PlacingDesk : public QObject
{
    Q_OBJECT

public:
    /// @p player and @p views are not owned. @p window, the parent, gets the menu.
    PlacingDesk(StagePlayer *player, ViewPane *views, QWidget *window);
    ~PlacingDesk() override; ///< the next sensor program shows its own viewers again

    QMenu *menu() const { return m_menu; }
    /// Hidden while nobody is placed; put it into a layout.
    QWidget *pane() const { return m_pane; }
    const Desk::ViewerDesk &viewers() const { return m_viewers; }
    void setAvailable(bool isAvailable); ///< switches it off where it makes no sense

signals:
    void told(const QString &message); ///< for the user

private:
    QAction *addAction(const QString &name, const QString &text);
    void createMenu();
    void createPane();
    void createView();
    void setPlacing(bool on);
    void begin();
    void end();
    void addGroup(Desk::ViewerGroup group);
    void takeChange();
    void saveScenario();

    StagePlayer *m_player; // not owned
    ViewPane *m_views; // not owned
    QWidget *m_window; // the parent
    QString m_ownLiveFile; // of the sensor program without the desk; empty: none

    Desk::ViewerDesk m_viewers;
    std::unique_ptr<Desk::LiveFile> m_liveFile; // while it is switched on
    Desk::DeskRecorder m_recorder;
    QElapsedTimer m_clock; // of the recorder
    bool m_isRecordingFull = false; // and the user knows

    // children of the window and its views
    QMenu *m_menu = nullptr;
    QWidget *m_pane = nullptr;
    Desk::PlacingView *m_view = nullptr;
    QAction *m_place = nullptr;
    QActionGroup *m_switches = nullptr; // whatever switches it on; a child of this
    QAction *m_removeAll = nullptr;
    QAction *m_save = nullptr;
};

} // namespace Player
