#pragma once

#include <QString>

namespace Player {

/// Closes the console window that the system has opened for this program alone, as Windows does on
/// a double click. A console that it was started from stays, and redirected output as well.
void closeOwnConsoleWindow();

/// Puts the file @p path into the environment of the processes to be started, whatever letters it
/// has; an empty one removes the variable @p name.
void setPathVariable(const char *name, const QString &path);

} // namespace Player
