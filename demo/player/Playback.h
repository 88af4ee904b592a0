#pragma once

#include "demo/player/Programme.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace Player {

/// A Programme with a clock: tells when a sequence starts.
class Playback : public QObject
{
    Q_OBJECT

public:
    explicit Playback(QObject *parent = nullptr);

    void setRules(const Programme::Rules &rules); ///< before begin()
    void begin(); ///< starts the idle sequence
    void end(); ///< nothing starts from now on

    void request(const Programme::Item &item);
    void dropBehind(int lastSequence); ///< as Programme has it

    const Programme &programme() const { return m_programme; }
    qint64 waitingTime() const; ///< milliseconds until what waits starts; 0: nothing waits

signals:
    void started(const Player::Programme::Item &item);
    void postponed(const Player::Programme::Item &item); ///< a request has to wait

private:
    void advance();
    void schedule();

    Programme m_programme;
    QElapsedTimer m_clock;
    QTimer m_timer; // for advance()
    bool m_runs = false;
};

} // namespace Player
