#pragma once

#include <functional>

namespace KrTest {

/// Milliseconds for everything that must happen sooner or later. A loaded machine starts a program
/// slowly, and one left by somebody else costs 5.1 s more.
constexpr int Patience = 30000;

/// Waits for @p condition while this thread handles no events; QTRY_* would let everything go on.
/// False when it does not come true.
bool waitWithoutEvents(const std::function<bool()> &condition);

} // namespace KrTest
