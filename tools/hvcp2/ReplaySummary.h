#pragma once

#include "tools/analysis/Plan.h"
#include "tools/analysis/Replay.h"

#include <QDateTime>
#include <QMap>
#include <QSet>
#include <QVector>

namespace Hvcp2 {

/// What became of the faces that got one sequence.
struct SequenceCounts
{
    qint64 sent = 0;
    qint64 restricted = 0;
    qint64 cut = 0;
};

/// Where a log tells otherwise about a frame.
struct DifferentFrame
{
    qint64 number = 0;
    Analysis::Position position;
    QDateTime time;
    int timeToleranceMs = 0;
    QVector<Analysis::LoggedRequest> expected; ///< of the plan
    QVector<Analysis::LoggedRequest> logged;
};

/// The figures of a replay, in constant memory.
class ReplaySummary
{
public:
    static constexpr int NamedDifferences = 20;
    static constexpr int NamedStrangers = 20;

    explicit ReplaySummary(const Analysis::Plan &plan);

    void add(const Analysis::ReplayedFrame &frame);

    qint64 frames() const { return m_frames; }
    QDateTime first() const { return m_first; } ///< null without frames
    QDateTime last() const { return m_last; }
    int timeToleranceMs() const { return m_timeToleranceMs; } ///< of these two
    SequenceCounts countsOf(int sequence) const { return m_counts.value(sequence); }
    qint64 sent() const { return m_sent; }

    qint64 toldByLog() const { return m_toldByLog; } ///< requests of which the times tell nothing
    qint64 unsure() const { return m_unsure; } ///< likewise, nor does a log

    qint64 loggedFrames() const { return m_loggedFrames; } ///< that a log tells about
    qint64 loggedRequests() const { return m_loggedRequests; }
    qint64 differing() const { return m_differing; } ///< of the logged frames
    qint64 explainable() const { return m_explainable; } ///< besides: Difference::Explainable
    const QVector<DifferentFrame> &differences() const { return m_differences; } ///< the first ones
    int mostAtOnce() const { return m_mostAtOnce; } ///< requests for one frame, in the log
    /// Sequences of the log that are no content of the plan, by number; the first ones.
    QVector<int> strangers() const;

private:
    void count(const Analysis::DecidedFace &face);
    void compare(const Analysis::ReplayedFrame &frame);

    QSet<int> m_known; // sequences of the plan
    qint64 m_frames = 0;
    QDateTime m_first;
    QDateTime m_last;
    int m_timeToleranceMs = 0;
    QMap<int, SequenceCounts> m_counts;
    qint64 m_sent = 0;
    qint64 m_toldByLog = 0;
    qint64 m_unsure = 0;
    qint64 m_loggedFrames = 0;
    qint64 m_loggedRequests = 0;
    qint64 m_differing = 0;
    qint64 m_explainable = 0;
    QVector<DifferentFrame> m_differences;
    int m_mostAtOnce = 0;
    QSet<int> m_strangers;
};

} // namespace Hvcp2
