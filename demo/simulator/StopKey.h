#pragma once

#include <chrono>
#include <memory>

namespace Simulation {

/// Watches standard input for the space that ends the program.
///
/// A thread does the reading, since a blocking read is the only one that pipes and consoles of
/// every platform have in common. It is never joined: it may sit in that read for ever.
class StopKey
{
public:
    using Clock = std::chrono::steady_clock;

    struct Settings
    {
        bool ignoreKey = false;
        bool endOfInputStops = true;
        int delayMs = 0; ///< what the caller may need to end after the key
    };

    explicit StopKey(const Settings &settings);

    /// Returns at @p time with false, or at once with true when the program is to end.
    bool waitUntil(Clock::time_point time) const;

private:
    struct State;
    std::shared_ptr<State> m_state; // shared with the thread, which may outlive this
};

} // namespace Simulation
