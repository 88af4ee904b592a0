#include "demo/player/Platform.h"

#include <QFile>

namespace Player {

void closeOwnConsoleWindow()
{
    // There are none: a terminal is never opened for a program.
}

void setPathVariable(const char *name, const QString &path)
{
    if (path.isEmpty())
        qunsetenv(name);
    else
        qputenv(name, QFile::encodeName(path));
}

} // namespace Player
