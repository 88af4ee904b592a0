#include "demo/simulator/Session.h"

#include "demo/simulator/Platform.h"
#include "demo/simulator/Recording.h"

#include <algorithm>
#include <thread>

namespace Simulation {

namespace {

using Milliseconds = std::chrono::milliseconds;

} // namespace

Session::Session(const Settings &settings, QFile &recordFile)
    : m_settings(settings)
    , m_recordFile(recordFile)
    , m_stopKey(settings.stopKey)
{
    // By number and unbuffered: stdio would cut a large block into pieces of its own size.
    m_output.open(1, QIODevice::WriteOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
    m_errorOutput.open(2, QIODevice::WriteOnly | QIODevice::Unbuffered);
}

int Session::run(const Source &source)
{
    StopKey::Clock::time_point due = StopKey::Clock::now();
    qint64 dueMs = 0; // by the plans alone, so that a recording does not depend on the machine
    for (qint64 frame = 0; m_settings.frames == 0 || frame < m_settings.frames; ++frame) {
        if (m_stopKey.waitUntil(due))
            return finish();
        const FramePlan plan = source(frame);
        const QByteArray output = plan.output();
        if (m_recordFile.isOpen() && !output.isEmpty()) {
            m_recordFile.write(recordedBlock(dueMs, output));
            m_recordFile.flush();
        }
        for (const Step &step : plan.steps) {
            switch (perform(step)) {
            case Outcome::Next:
                break;
            case Outcome::Stopped:
                return finish();
            case Outcome::Ended:
                return m_status;
            }
        }
        dueMs += plan.nextAfterMs;
        // A reader that was slow gets no burst of the frames that it has missed.
        due = std::max(due + Milliseconds(plan.nextAfterMs), StopKey::Clock::now());
    }
    return m_status;
}

Session::Outcome Session::perform(const Step &step)
{
    switch (step.kind) {
    case Step::Write:
        if (m_output.isOpen() && m_output.write(step.data) != step.data.size())
            return Outcome::Ended; // nobody is left to read
        return Outcome::Next;
    case Step::WriteError:
        m_errorOutput.write(step.data);
        return Outcome::Next;
    case Step::Wait:
        return m_stopKey.waitUntil(StopKey::Clock::now() + Milliseconds(step.value))
            ? Outcome::Stopped
            : Outcome::Next;
    case Step::CloseOutput:
        m_output.close();
        return Outcome::Next;
    case Step::Exit:
        m_status = step.value;
        return Outcome::Ended;
    case Step::Crash:
        crash();
    }
    return Outcome::Next;
}

int Session::finish() const
{
    std::this_thread::sleep_for(Milliseconds(m_settings.stopKey.delayMs));
    return m_status;
}

} // namespace Simulation
