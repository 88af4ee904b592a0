#pragma once

#include "demo/simulator/Scenario.h"

#include <QByteArray>

namespace Simulation {

/// Ends every block, so that the program's console always shows it last.
extern const char *const EndPrompt;

/// The block of text for one frame, line ends included; a pure function of its arguments.
/// @p frame counts from 0, its time is frame * @p intervalMs. Faults have no effect here.
QByteArray renderFrame(const Scenario &scenario, qint64 frame, int intervalMs);

} // namespace Simulation
