#pragma once

#include <QWidget>

class QLabel;

namespace Player {

class StageDesk;
class StagePlayer;

/// What the plug-in is and does, what a host knows of it, and the buttons that control it.
class ControlPane : public QWidget
{
    Q_OBJECT

public:
    /// Neither @p player nor @p desk is owned.
    ControlPane(StagePlayer *player, StageDesk *desk, QWidget *parent = nullptr);

    void showPluginInformation();

private:
    QWidget *createHeader();
    QWidget *createStatusRow();
    QWidget *createControls();
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
};

} // namespace Player
