#pragma once

#include "demo/desk/LogDay.h"
#include "demo/desk/LogPlayhead.h"
#include "demo/player/EventLog.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

#include <memory>

namespace Desk {
class FrameHistory;
class ShownFrame;
} // namespace Desk

namespace Player {

class StagePlayer;

/// A day of the plug-in's log in the place of its frames. While one is open the player rests, and
/// the stage shows what played.
class LogDesk : public QObject
{
    Q_OBJECT

public:
    /// None of them is owned. The log is decided by the plan of @p history, anew when that changes.
    LogDesk(StagePlayer *player, const Desk::FrameHistory *history, Desk::ShownFrame *shown,
        QObject *parent = nullptr);

    /// Shows the first frame and reads on in the turns of the event loop. False, with "file:
    /// reason" in @p error, when it is no log; then all stays as it was.
    bool open(const QString &fileName, QString *error);
    void close(); ///< the plug-in begins anew

    bool isOpen() const { return bool(m_day); }
    const Desk::LogDay &day() const { return *m_day; } ///< of an open one
    Desk::LogPlayhead &playhead() { return m_playhead; }

    /// What the log tells near the shown frame, and the last row up to that; -1: none.
    EventLog &records() { return m_records; }
    int currentRow() const;
    void showFrameOfRow(int row);
    void showMoment(const QDateTime &moment); ///< the frame nearest to it

signals:
    void openChanged(bool isOpen);
    void reading(int percent); ///< 100 when all has been read
    void frameShown(const Desk::SeenFrame &frame);
    void failed(const QString &message); ///< the file cannot be read again

private:
    void begin(std::unique_ptr<Desk::LogDay> day);
    void decideAnew();
    void readOn();
    void show(qint64 number);
    bool takeRecords(qint64 number, QString *error);

    StagePlayer *m_player; // not owned
    const Desk::FrameHistory *m_history; // not owned
    Desk::ShownFrame *m_shown; // not owned
    std::unique_ptr<Desk::LogDay> m_day;
    Desk::LogPlayhead m_playhead;
    qint64 m_wanted = 1; // frame that is shown as soon as it has been read
    QTimer m_turns; // while it is being read
    EventLog m_records;
    QVector<qint64> m_recordFrames; // by row
    qint64 m_recordPage = -1; // around which they lie; -1: to be taken anew
};

} // namespace Player
