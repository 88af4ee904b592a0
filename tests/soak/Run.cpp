#include "Run.h"

#include "Table.h"

#include <QThread>

namespace Soak {

namespace {

constexpr int StepMs = 5;
constexpr int Lines = 20; // one at every 5 %
constexpr int LongestTimerMs = 1000; // of one that is about to run out and not to stay
constexpr int LongestSilenceMs = 60000; // far above the 10 s of a log that stays locked

} // namespace

Run::Run(const Options &options)
    : m_options(options)
    , m_events(schedule(options.frames, options.seed))
    , m_host(options.rate)
{
    connect(&m_host, &Host::complained, this, &Run::complain);
    connect(&m_timer, &QTimer::timeout, this, &Run::step);
}

void Run::start()
{
    printHeader();
    m_clock.start();
    m_sinceFrame.start();
    m_host.start();
    m_timer.start(StepMs);
}

void Run::step()
{
    watch();
    switch (m_state) {
    case Flowing:
        flow();
        break;
    case ComingToRest:
        comeToRest();
        break;
    case Resting:
        rest();
        break;
    }
}

/// A run that gets no further ends.
void Run::watch()
{
    const int frames = m_host.frames();
    if (frames > m_lastFrames) {
        m_lastFrames = frames;
        m_sinceFrame.restart();
    } else if (m_sinceFrame.elapsed() > LongestSilenceMs) {
        complain(QStringLiteral("no frame has come for %1 s").arg(LongestSilenceMs / 1000));
        finish();
    }
}

void Run::flow()
{
    const int frames = m_host.frames();
    if (frames >= m_options.frames * qint64{m_samples.size() + 1} / Lines) {
        m_state = ComingToRest;
        return;
    }
    while (m_nextEvent < m_events.size() && m_events.at(m_nextEvent).frame <= frames)
        m_host.perform(m_events.at(m_nextEvent++));
}

/// Lets what has been begun come to its end first.
void Run::comeToRest()
{
    const bool isNested = QThread::currentThread()->loopLevel() > 1; // by the plug-in
    if (isNested || !m_host.isIdle())
        return;
    m_liveItems = m_host.itemCount();
    m_host.rest();
    m_state = Resting;
}

void Run::rest()
{
    if (!m_host.isStill()) {
        m_sinceStill.invalidate();
        return;
    }
    if (!m_sinceStill.isValid())
        m_sinceStill.start();
    if (m_host.timerCount() > 0 && !m_sinceStill.hasExpired(LongestTimerMs))
        return;
    m_sinceStill.invalidate();

    Sample sample;
    sample.frame = m_host.frames();
    sample.seconds = static_cast<double>(m_clock.elapsed()) / 1000;
    sample.liveItems = m_liveItems;
    m_host.measure(sample);
    m_samples.append(sample);
    printLine(sample);

    if (m_samples.size() == Lines) {
        finish();
        return;
    }
    m_host.start();
    m_state = Flowing;
}

void Run::complain(const QString &reason)
{
    m_complaints += reason;
}

void Run::finish()
{
    m_timer.stop();
    emit finished();
}

} // namespace Soak
