#pragma once

#include "Pairing.h"

namespace Bench {

/// Lets the events run for @p ms milliseconds and calls @p afterEach after each turn, every 5 ms at
/// least.
void runEvents(int ms, const Step &afterEach = {});

} // namespace Bench
