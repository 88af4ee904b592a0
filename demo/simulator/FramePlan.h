#pragma once

#include "demo/simulator/Scenario.h"

#include <QByteArray>
#include <QVector>

namespace Simulation {

/// One thing that the program does for a frame.
struct Step
{
    enum Kind {
        Write, ///< `data` to standard output, in one piece
        WriteError, ///< `data` to standard error
        Wait, ///< `value` milliseconds
        CloseOutput, ///< standard output, for good
        Exit, ///< with status `value`
        Crash
    };

    Kind kind = Write;
    QByteArray data;
    int value = 0;
};

/// What the program does for one frame, and how long after its start the next frame is due.
struct FramePlan
{
    QVector<Step> steps;
    qint64 nextAfterMs = 0;

    /// All that the frame writes to standard output, joined.
    QByteArray output() const;
};

/// The frame's block with the scenario's faults worked in; a pure function of its arguments.
FramePlan planFrame(const Scenario &scenario, qint64 frame, int intervalMs);

} // namespace Simulation
