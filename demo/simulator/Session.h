#pragma once

#include "demo/simulator/FramePlan.h"
#include "demo/simulator/StopKey.h"

#include <QFile>

#include <functional>

namespace Simulation {

/// Plays frame after frame on standard output until something ends the program.
class Session
{
public:
    using Source = std::function<FramePlan(qint64 frame)>;

    struct Settings
    {
        StopKey::Settings stopKey;
        qint64 frames = 0; ///< ends after so many; 0: never
    };

    /// @p recordFile, when it is open, gets every block with the time at which it was due.
    Session(const Settings &settings, QFile &recordFile);

    /// Returns the program's exit status.
    int run(const Source &source);

private:
    enum class Outcome { Next, Stopped, Ended };

    Outcome perform(const Step &step);
    int finish() const;

    Settings m_settings;
    QFile &m_recordFile;
    QFile m_output;
    QFile m_errorOutput;
    StopKey m_stopKey;
    int m_status = 0;
};

} // namespace Simulation
