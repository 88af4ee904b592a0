#pragma once

/// Ctrl+C, which ends a command between two entries, so that no file stays half written.
namespace Hvcp2 {

/// From now on the first Ctrl+C is only remembered; a second one ends the program at once.
void watchInterruption();
bool isInterrupted();

} // namespace Hvcp2
