#include "ConsoleWindow.h"

namespace Player {

void closeOwnConsoleWindow()
{
    // There are none: a terminal is never opened for a program.
}

} // namespace Player
