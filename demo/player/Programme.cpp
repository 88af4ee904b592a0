#include "demo/player/Programme.h"

#include <algorithm>

namespace Player {

std::optional<Programme::Item> Programme::request(const Item &item, qint64 now)
{
    if (!mustPlayOn(now))
        return start(item, now);
    m_waiting = item;
    return std::nullopt;
}

std::optional<Programme::Item> Programme::advance(qint64 now)
{
    if (untilAdvance(now) != 0)
        return std::nullopt;
    // Without a duration it is over at once, for whoever comes.
    return start(m_waiting.value_or(Item{m_rules.idleSequence, StartReason::Idle, 0}), now);
}

std::optional<qint64> Programme::untilAdvance(qint64 now) const
{
    qint64 due = now;
    if (m_waiting)
        due = end();
    else if (!hasIdle() || isIdle())
        return std::nullopt;
    else if (m_playing)
        due = std::max(m_startTime + m_rules.idleAfter, end());
    return std::max(due - now, qint64(0));
}

void Programme::dropBehind(int last)
{
    if (m_playing && m_playing->sequence > last)
        m_playing.reset();
    if (m_waiting && m_waiting->sequence > last)
        m_waiting.reset();
    if (m_rules.idleSequence > last)
        m_rules.idleSequence = 0;
}

/// From when on something else may start.
qint64 Programme::end() const
{
    const bool playsOn = m_playing && m_rules.switching == Switching::AtEnd;
    return m_startTime + (playsOn ? m_playing->duration : 0);
}

Programme::Item Programme::start(const Item &item, qint64 now)
{
    m_playing = item;
    m_startTime = now;
    m_waiting.reset();
    return item;
}

} // namespace Player
