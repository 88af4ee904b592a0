#pragma once

#include <QList>
#include <QMainWindow>

class QAction;
class QLabel;
class QMenu;
class QRect;
class QSplitter;

namespace Player {

class ControlPane;
class LogToolBar;
class PlacingDesk;
class StageDesk;
class StagePlayer;

/// The stage beside a pane with the plug-in's data, the controls and the events, and menus for
/// the stage file and the plug-in's dialogs.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(StagePlayer *player, QWidget *parent = nullptr); ///< not owned

    /// One style for all systems. The dark colours are the window's own: a plug-in's dialogs may
    /// count on the usual ones.
    static void applyTheme();
    bool openLog(const QString &fileName); ///< a day of the log; false after a message

public slots:
    void showPluginInformation(); ///< call it when the plug-in is loaded and has begun

signals:
    void closed(); ///< by the user, changes saved or given up; also below a dialog

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void createMenus();
    void fillPluginMenu();
    void showStage();
    void showFiles();
    void editFromMenu(int index);
    void editContent(int index, const QRect &anchor);
    bool save();
    bool saveAs();
    bool saveInto(const QString &fileName);
    bool mayClose();
    void createLargeAction();
    void createParts();
    QWidget *createStagePart();
    QWidget *createPane();
    QWidget *createViews();

    StagePlayer *m_player; // not owned
    // children of this
    StageDesk *m_desk;
    LogToolBar *m_log;
    ControlPane *m_controls = nullptr;
    PlacingDesk *m_placing = nullptr;
    QLabel *m_files = nullptr;
    QSplitter *m_parts = nullptr;
    QWidget *m_stagePart = nullptr;
    QMenu *m_viewMenu = nullptr;
    QMenu *m_pluginMenu = nullptr;
    QMenu *m_editMenu = nullptr;
    QList<QAction *> m_editActions; // by sequence index
    bool m_asking = false;
};

} // namespace Player
