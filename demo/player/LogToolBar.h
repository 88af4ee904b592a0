#pragma once

#include <QList>
#include <QToolBar>

class QAction;
class QLabel;

namespace Player {

class LogDesk;
class StagePlayer;

/// Opens and closes a day of the log; while one is open, what it is looked through with.
class LogToolBar : public QToolBar
{
    Q_OBJECT

public:
    /// Neither @p player nor @p log is owned.
    LogToolBar(StagePlayer *player, LogDesk *log, QWidget *parent = nullptr);

    bool open(const QString &fileName); ///< false after a message
    QList<QAction *> menuActions() const { return {m_open, m_close}; }

private:
    QAction *createAction(const QString &name, const QString &text);
    void openChosen();
    void onOpenChanged(bool isOpen);
    void onReading(int percent);

    StagePlayer *m_player; // not owned
    LogDesk *m_log; // not owned
    // children of this
    QAction *m_open;
    QAction *m_close;
    QWidget *m_bar = nullptr;
    QLabel *m_problems = nullptr;
};

} // namespace Player
