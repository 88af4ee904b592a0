#include "demo/desk/LogPlayhead.h"

#include "demo/desk/LogDay.h"
#include "tools/analysis/Silence.h"

#include <QTimerEvent>

namespace Desk {

namespace {

constexpr int TurnMs = 40;

} // namespace

LogPlayhead::LogPlayhead(QObject *parent)
    : QObject(parent)
{ }

void LogPlayhead::setDay(const LogDay *day)
{
    setPlaying(false);
    m_day = day;
    m_number = 0;
    m_passedMs = 0;
}

bool LogPlayhead::hasFrames() const
{
    return m_day && m_day->count() > 0;
}

void LogPlayhead::showFrame(qint64 number)
{
    if (!hasFrames())
        return;
    go(qBound<qint64>(1, number, m_day->count()));
    settle();
}

void LogPlayhead::step(qint64 frames)
{
    showFrame(m_number + frames);
}

void LogPlayhead::moveTo(qint64 passedMs)
{
    if (hasFrames())
        showFrame(m_day->frameAt(passedMs));
}

void LogPlayhead::moveBy(qint64 ms)
{
    if (!hasFrames() || m_number == 0)
        return;
    const qint64 number = m_day->frameAt(m_day->passedMs(m_number) + ms);
    const qint64 step = ms < 0 ? -1 : 1;
    showFrame(number == m_number ? m_number + step : number);
}

void LogPlayhead::setPlaying(bool isPlaying)
{
    isPlaying = isPlaying && hasFrames();
    if (isPlaying == m_isPlaying)
        return;
    m_isPlaying = isPlaying;
    if (isPlaying) {
        m_watch.start();
        m_timer.start(TurnMs, this);
    } else {
        m_timer.stop();
    }
    emit playingChanged(isPlaying);
    if (isPlaying && (m_number == 0 || m_number == m_day->count()))
        showFrame(1);
}

void LogPlayhead::advance(qint64 ms)
{
    if (!m_isPlaying)
        return;
    m_passedMs += ms * m_speed;
    const qint64 number = m_day->frameAt(m_passedMs);
    if (number == m_day->count()) {
        setPlaying(false);
        showFrame(number);
        return;
    }
    const qint64 next = m_day->passedMs(number + 1);
    if (next - m_day->passedMs(number) <= Analysis::LongestFrameGapMs) {
        go(number);
        return;
    }
    // Behind a silence it goes on as soon as the last frame before that has been seen.
    if (number == m_number)
        showFrame(number + 1);
    else
        go(number);
}

void LogPlayhead::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_timer.timerId())
        advance(m_watch.restart());
    else
        QObject::timerEvent(event);
}

/// The time that has passed may be later.
void LogPlayhead::go(qint64 number)
{
    if (number == m_number)
        return;
    m_number = number;
    emit moved(number);
}

void LogPlayhead::settle()
{
    if (m_number > 0) // whoever was told may have taken the day away
        m_passedMs = m_day->passedMs(m_number);
}

} // namespace Desk
