#include "ConsoleWindow.h"

#include <array>
#include <windows.h>

namespace Player {

void closeOwnConsoleWindow()
{
    std::array<DWORD, 2> processes = {}; // two are as good as many
    if (GetConsoleProcessList(processes.data(), static_cast<DWORD>(processes.size())) == 1)
        FreeConsole();
}

} // namespace Player
