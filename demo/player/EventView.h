#pragma once

#include <QTreeView>

namespace Player {

class EventLog;
struct PlayerEvent;

/// The events of a log. Follows the newest one, unless the user has scrolled up to read.
class EventView : public QTreeView
{
    Q_OBJECT

public:
    explicit EventView(EventLog *log, QWidget *parent = nullptr); ///< @p log is not owned

signals:
    void picked(const Player::PlayerEvent &event); ///< clicked, or the return key on it

private:
    void follow();

    EventLog *m_log; // not owned
    bool m_follows = false; // with the row that comes next
};

} // namespace Player
