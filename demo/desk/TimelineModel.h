#pragma once

#include "demo/desk/SeenFrame.h"
#include "tools/analysis/Coverage.h"

#include <QDateTime>
#include <QVector>

#include <array>
#include <limits>

namespace Desk {

constexpr int TimelineUnknownAge = 5;
/// The ages that the timeline tells apart, in years; behind them: not known.
constexpr std::array<Analysis::AgeRange, TimelineUnknownAge> TimelineAges{
    {{0, 12}, {13, 19}, {20, 39}, {40, 59}, {60, std::numeric_limits<int>::max()}}};

/// Viewers by gender, as CoveredGenders, and by age, as TimelineAges.
using ViewerCounts = std::array<std::array<int, TimelineUnknownAge + 1>, 3>;

/// What happened in a short while.
struct TimelineBucket
{
    qint64 beginMs = 0; ///< since the epoch, by the clock of that time
    int frames = 0;
    // Of the frame with the most viewers, the first of those:
    qint64 momentMs = 0; ///< when it came, since the epoch
    int viewers = 0;
    ViewerCounts counts{};

    int restricted = 0; ///< requests, those of all frames
    int playing = 0; ///< sequence at the end; 0: none
    int starts = 0;
    qint64 startMs = 0; ///< of the last one, since the epoch
};

/// A time in which the same sequence played.
struct PlayedSequence
{
    int number = 0;
    qreal from = 0; ///< position, with the part of a bucket
    qreal to = 0; ///< likewise, behind the end
};

/// The newest ten minutes in buckets, of which there are always as many. The position of the oldest
/// one is 0.
///
/// Time goes on by what is added and by setNow(). It never goes back: when the clock is set back,
/// what comes later lies behind what came before all the same.
class TimelineModel
{
public:
    static constexpr int BucketCount = 200;
    static constexpr qint64 BucketMs = 3000;

    /// Buckets stay without frames when frames come less often than that.
    void setInterval(int ms) { m_intervalMs = qMax(0, ms); }

    void addFrame(const SeenFrame &frame);
    void sequenceStarted(int number, const QDateTime &time); ///< 0: none plays any more
    void setNow(const QDateTime &time);
    void clear();

    bool isNull() const { return m_newest < 0; } ///< no time is known yet
    const TimelineBucket &bucket(int position) const;
    /// Counts all buckets there ever were, and so stays that of a bucket while time goes on.
    qint64 indexOf(int position) const { return m_newest - (BucketCount - 1) + position; }
    int positionAtIndex(qint64 index) const; ///< -1: not there any more

    int mostViewers() const;
    QVector<bool> silences() const; ///< for each position: frames did not come when they should
    QVector<PlayedSequence> played() const; ///< by rising time
    qreal positionOfNow() const; ///< behind the last bucket that has ended

    /// The nearest position with frames, at most @p reach buckets away; -1: none.
    int nearestWithFrames(int position, int reach) const;
    /// The next position with frames behind (@p step 1) or before (-1) @p position; -1: none.
    int nextWithFrames(int position, int step) const;

private:
    qint64 advance(const QDateTime &time); ///< index of the bucket of that time
    void append(qint64 index);
    TimelineBucket &at(qint64 index);

    std::array<TimelineBucket, BucketCount> m_buckets; // by index modulo BucketCount
    qint64 m_newest = -1; // index
    qint64 m_first = 0; // index of the first time that was known; nobody has watched before
    qint64 m_nowMs = 0; // time that has passed, to which the indexes belong
    qint64 m_setBackMs = 0; // by which the clock lags behind that
    int m_intervalMs = 0;
};

} // namespace Desk
