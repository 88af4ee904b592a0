#pragma once

#include <QMainWindow>

class QLabel;
class QPushButton;
class QTreeView;

namespace Player {

class StagePlayer;

/// The stage beside a pane with the plug-in's data, the controls and the events.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(StagePlayer *player, QWidget *parent = nullptr); ///< not owned

    static void applyTheme(); ///< dark colours for the whole application

public slots:
    void showPluginInformation(); ///< call it when the plug-in is loaded and has begun

private:
    QWidget *createPane();
    QWidget *createHeader();
    QWidget *createStatusRow();
    QWidget *createControls();
    QWidget *createEventList();
    void showStatus(int status);
    void showCurrent();

    StagePlayer *m_player; // not owned
    // children of this
    QLabel *m_icon = nullptr;
    QLabel *m_name = nullptr;
    QLabel *m_vendor = nullptr;
    QLabel *m_description = nullptr;
    QLabel *m_status = nullptr;
    QLabel *m_current = nullptr;
    QLabel *m_files = nullptr;
    QTreeView *m_events = nullptr;
};

} // namespace Player
