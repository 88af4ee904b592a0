#include "demo/simulator/StopKey.h"

#include <QFile>

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace Simulation {

struct StopKey::State
{
    std::mutex mutex;
    std::condition_variable changed;
    bool stopped = false; // guarded by mutex
    QFile input; // the thread's alone, once it runs; not stdio, whose locks exit() waits for
};

namespace {

/// Returns when the program is to end; false when nothing will ever ask for it.
bool readStopKey(QFile &input, const StopKey::Settings &settings)
{
    char key = 0;
    while (input.read(&key, 1) == 1) {
        if (key == ' ' && !settings.ignoreKey)
            return true;
    }
    return settings.endOfInputStops;
}

} // namespace

StopKey::StopKey(const Settings &settings)
    : m_state(std::make_shared<State>())
{
    if (!m_state->input.open(0, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return;
    std::thread([settings, state = m_state] {
        if (!readStopKey(state->input, settings))
            return;
        {
            const std::lock_guard<std::mutex> lock(state->mutex);
            state->stopped = true;
        }
        state->changed.notify_all();
        // The program may hang in a write that nobody reads; then this thread ends it.
        std::this_thread::sleep_for(std::chrono::milliseconds(settings.delayMs + 1000));
        std::_Exit(EXIT_SUCCESS);
    }).detach();
}

bool StopKey::waitUntil(Clock::time_point time) const
{
    std::unique_lock<std::mutex> lock(m_state->mutex);
    return m_state->changed.wait_until(lock, time, [this] { return m_state->stopped; });
}

} // namespace Simulation
