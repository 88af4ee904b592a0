#include "demo/desk/TimelineModel.h"

#include <algorithm>
#include <iterator>

namespace Desk {

using namespace Analysis;

namespace {

std::size_t agePosition(int age)
{
    if (age < 0)
        return TimelineUnknownAge;
    const auto it = std::find_if(TimelineAges.cbegin(), TimelineAges.cend(),
        [age](const AgeRange &ages) { return age <= ages.to; });
    return static_cast<std::size_t>(std::distance(TimelineAges.cbegin(), it));
}

ViewerCounts countsOf(const Decision &decision)
{
    ViewerCounts counts{};
    for (const DecidedFace &face : decision.faces) {
        ++counts.at(coveredPosition(face.evaluation.gender)).at(agePosition(face.evaluation.age));
    }
    return counts;
}

} // namespace

void TimelineModel::addFrame(const SeenFrame &frame)
{
    const Decision &decision = frame.decision;
    if (!decision.time.isValid())
        return;
    TimelineBucket &bucket = at(advance(decision.time));
    if (bucket.frames == 0 || decision.faces.size() > bucket.viewers) {
        bucket.momentMs = decision.time.toMSecsSinceEpoch();
        bucket.viewers = decision.faces.size();
        bucket.counts = countsOf(decision);
    }
    ++bucket.frames;
    bucket.restricted
        += static_cast<int>(std::count_if(decision.faces.cbegin(), decision.faces.cend(),
            [](const DecidedFace &face) { return face.outcome == DecidedFace::Restricted; }));
}

void TimelineModel::sequenceStarted(int number, const QDateTime &time)
{
    if (!time.isValid())
        return;
    const qint64 index = advance(time);
    TimelineBucket &bucket = at(index);
    ++bucket.starts;
    bucket.startMs = time.toMSecsSinceEpoch();
    bucket.playing = number;
    for (qint64 later = index + 1; later <= m_newest && at(later).starts == 0; ++later)
        at(later).playing = number;
}

void TimelineModel::setNow(const QDateTime &time)
{
    if (time.isValid())
        advance(time);
}

void TimelineModel::clear()
{
    const int intervalMs = m_intervalMs;
    *this = {};
    m_intervalMs = intervalMs;
}

const TimelineBucket &TimelineModel::bucket(int position) const
{
    return m_buckets.at(static_cast<std::size_t>(qMax<qint64>(0, indexOf(position)) % BucketCount));
}

int TimelineModel::positionAtIndex(qint64 index) const
{
    const qint64 position = index - indexOf(0);
    return position >= 0 && position < BucketCount ? static_cast<int>(position) : -1;
}

int TimelineModel::mostViewers() const
{
    const auto it = std::max_element(m_buckets.cbegin(), m_buckets.cend(),
        [](const TimelineBucket &a, const TimelineBucket &b) { return a.viewers < b.viewers; });
    return it->viewers;
}

QVector<bool> TimelineModel::silences() const
{
    QVector<bool> silences(BucketCount, true);
    const auto allowed = static_cast<int>(2LL * m_intervalMs / BucketMs);
    int last = -1; // position with frames
    for (int position = 0; position < BucketCount; ++position) {
        if (indexOf(position) < m_first)
            silences[position] = false;
        if (bucket(position).frames == 0)
            continue;
        if (last >= 0 && position - last - 1 <= allowed)
            std::fill(silences.begin() + last, silences.begin() + position, false);
        silences[position] = false;
        last = position;
    }
    // The newest bucket has not ended; its frames may still come.
    if (last >= 0 && BucketCount - 2 - last <= allowed)
        std::fill(silences.begin() + last, silences.end(), false);
    return silences;
}

QVector<PlayedSequence> TimelineModel::played() const
{
    QVector<PlayedSequence> played;
    int playing = 0;
    for (int position = 0; position < BucketCount; ++position) {
        const TimelineBucket &current = bucket(position);
        if (current.playing == playing)
            continue;
        playing = current.playing;
        const qreal part = current.starts == 0
            ? 0
            : qBound(0.0, static_cast<qreal>(current.startMs - current.beginMs) / BucketMs, 1.0);
        if (!played.isEmpty() && played.last().to < 0)
            played.last().to = position + part;
        if (playing != 0)
            played.append({playing, position + part, -1});
    }
    if (!played.isEmpty() && played.last().to < 0)
        played.last().to = qMax(positionOfNow(), played.last().from);
    return played;
}

qreal TimelineModel::positionOfNow() const
{
    return BucketCount - 1 + static_cast<qreal>(m_nowMs % BucketMs) / BucketMs;
}

int TimelineModel::nearestWithFrames(int position, int reach) const
{
    for (int distance = 0; distance <= reach; ++distance) {
        for (const int candidate : {position - distance, position + distance}) {
            if (candidate >= 0 && candidate < BucketCount && bucket(candidate).frames > 0)
                return candidate;
        }
    }
    return -1;
}

int TimelineModel::nextWithFrames(int position, int step) const
{
    for (int next = position + step; next >= 0 && next < BucketCount; next += step) {
        if (bucket(next).frames > 0)
            return next;
    }
    return -1;
}

qint64 TimelineModel::advance(const QDateTime &time)
{
    const qint64 clockMs = time.toMSecsSinceEpoch();
    if (isNull()) {
        m_setBackMs = qMax<qint64>(0, BucketCount * BucketMs - clockMs); // indexes begin with 0
        m_nowMs = clockMs + m_setBackMs;
        m_first = m_nowMs / BucketMs;
        m_newest = m_first - BucketCount;
    }
    // What comes a little late belongs where it was; more than that is a clock that was set back.
    if (clockMs + m_setBackMs < m_nowMs - BucketMs)
        m_setBackMs = m_nowMs - clockMs;
    const qint64 passedMs = clockMs + m_setBackMs;
    m_nowMs = qMax(m_nowMs, passedMs);

    const qint64 newest = m_nowMs / BucketMs;
    for (qint64 index = qMax(m_newest + 1, newest - BucketCount + 1); index <= newest; ++index)
        append(index);
    return passedMs / BucketMs;
}

void TimelineModel::append(qint64 index)
{
    const int playing = isNull() ? 0 : at(m_newest).playing;
    m_newest = index;
    at(index) = {};
    at(index).beginMs = index * BucketMs - m_setBackMs;
    at(index).playing = playing;
}

TimelineBucket &TimelineModel::at(qint64 index)
{
    return m_buckets.at(static_cast<std::size_t>(index % BucketCount));
}

} // namespace Desk
