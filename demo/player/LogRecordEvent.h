#pragma once

#include "demo/desk/LogDay.h"
#include "demo/player/EventLog.h"

namespace Player {

/// What a log tells, as a line of the list of events. Sequences have their names in @p plan.
PlayerEvent eventOf(const Analysis::Entry &record, const Analysis::Plan &plan);

} // namespace Player
