#include "demo/player/Platform.h"

#include <array>
#include <cstdlib>

#include <windows.h>

namespace Player {

void closeOwnConsoleWindow()
{
    std::array<DWORD, 2> processes = {}; // two are as good as many
    if (GetConsoleProcessList(processes.data(), static_cast<DWORD>(processes.size())) == 1)
        FreeConsole();
}

void setPathVariable(const char *name, const QString &path)
{
    // qputenv() would take the bytes for text of the system's code page.
    _wputenv_s(QString::fromLatin1(name).toStdWString().c_str(), path.toStdWString().c_str());
}

} // namespace Player
