#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>

namespace Desk {

class LogDay;

/// Which frame of a log is looked at, and the playing of it. Silences of more than a minute are
/// left out.
class LogPlayhead : public QObject
{
    Q_OBJECT

public:
    static constexpr int MaxSpeed = 60;

    explicit LogPlayhead(QObject *parent = nullptr);

    /// Plays @p day from now on, null for none; it is not owned. Stands before its first frame.
    void setDay(const LogDay *day);
    const LogDay *day() const { return m_day; }

    qint64 number() const { return m_number; } ///< of the frame; 0: none was chosen yet
    bool isPlaying() const { return m_isPlaying; }
    int speed() const { return m_speed; }
    void setSpeed(int speed) { m_speed = qBound(1, speed, MaxSpeed); } ///< times as fast as it was

    void showFrame(qint64 number); ///< or the nearest that there is
    void step(qint64 frames); ///< on, or back when it is negative
    void moveTo(qint64 passedMs); ///< since the first frame
    void moveBy(qint64 ms); ///< by one frame at least
    void setPlaying(bool isPlaying); ///< behind the last frame it begins with the first one

    /// Plays on by @p ms milliseconds of the watch of whoever looks at it.
    void advance(qint64 ms);

signals:
    void moved(qint64 number);
    void playingChanged(bool isPlaying);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    bool hasFrames() const;
    void go(qint64 number);
    void settle();

    const LogDay *m_day = nullptr; // not owned
    qint64 m_number = 0;
    qint64 m_passedMs = 0; // of the day; between two frames while it plays
    int m_speed = 1;
    bool m_isPlaying = false;
    QBasicTimer m_timer;
    QElapsedTimer m_watch; // since the last turn
};

} // namespace Desk
