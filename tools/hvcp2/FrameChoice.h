#pragma once

#include "tools/analysis/Replay.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QDateTime>
#include <QString>
#include <QVector>

#include <optional>

namespace Hvcp2 {

/// A moment as a user names it.
struct GivenTime
{
    QDateTime moment; ///< with its zone; null: it is a wall clock's
    QDate date; ///< of the wall clock; null: the first day that has the time
    QTime time;
    int precisionMs = 1; ///< of the time
};

/// "2018-02-01 09:30:00", also with milliseconds, "09:30", "09:30:00" or "2018-02-01T09:30:00Z".
std::optional<GivenTime> givenTime(const QString &text);

/// Finds the frame that --at and --frame name, without them the last one for which something was
/// sent, or else the last one.
class FrameChoice
{
public:
    static constexpr int NamedNeighbours = 10;

    /// Nothing, and the reason in @p error, when the options make no sense.
    static std::optional<FrameChoice> fromOptions(const QCommandLineParser &given, QString *error);

    /// Looks at the next frame. False when no later one can change the choice.
    bool take(const Analysis::ReplayedFrame &frame);

    const std::optional<Analysis::ReplayedFrame> &chosen() const { return m_chosen; }
    QString objection() const; ///< why there is none

    /// Other frames of the same second as the chosen one, when that was named by its time: the
    /// numbers of the first ones, and how many there are.
    const QVector<qint64> &neighbours() const { return m_neighbours; }
    qint64 neighbourCount() const { return m_neighbourCount; }

private:
    bool takeAtTime(const Analysis::ReplayedFrame &frame);
    bool isReached(const QDateTime &time);

    QString m_timeText; // as it was given
    std::optional<GivenTime> m_time;
    std::optional<qint64> m_number;
    qint64 m_frames = 0; // so far
    bool m_isSent = false; // something, for the chosen one
    std::optional<Analysis::ReplayedFrame> m_chosen;
    QVector<qint64> m_neighbours;
    qint64 m_neighbourCount = 0;
};

QCommandLineOption atOption();
QCommandLineOption frameOption();

} // namespace Hvcp2
