#include "demo/player/Playback.h"

#include <algorithm>
#include <limits>

namespace Player {

Playback::Playback(QObject *parent)
    : QObject(parent)
{
    m_clock.start();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Playback::advance);
}

void Playback::setRules(const Programme::Rules &rules)
{
    m_programme = Programme(rules);
}

void Playback::begin()
{
    m_runs = true;
    advance();
}

void Playback::end()
{
    m_runs = false;
    m_timer.stop();
}

void Playback::request(const Programme::Item &item)
{
    if (!m_runs)
        return;
    const std::optional<Programme::Item> start = m_programme.request(item, m_clock.elapsed());
    schedule();
    if (start)
        emit started(*start);
    else
        emit postponed(item);
}

void Playback::dropBehind(int lastSequence)
{
    m_programme.dropBehind(lastSequence);
    schedule();
}

qint64 Playback::waitingTime() const
{
    return m_programme.waiting() ? m_programme.untilAdvance(m_clock.elapsed()).value_or(0) : 0;
}

void Playback::advance()
{
    const std::optional<Programme::Item> start = m_programme.advance(m_clock.elapsed());
    schedule();
    if (start)
        emit started(*start);
}

void Playback::schedule()
{
    const std::optional<qint64> delay = m_programme.untilAdvance(m_clock.elapsed());
    if (!m_runs || !delay) {
        m_timer.stop();
        return;
    }
    constexpr qint64 Longest = std::numeric_limits<int>::max(); // then it is asked again
    m_timer.start(static_cast<int>(std::min(*delay, Longest)));
}

} // namespace Player
