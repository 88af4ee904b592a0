#pragma once

namespace Player {

/// Closes the console window that the system has opened for this program alone, as Windows does on
/// a double click. A console that it was started from stays, and redirected output as well.
void closeOwnConsoleWindow();

} // namespace Player
