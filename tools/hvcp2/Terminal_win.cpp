#include "tools/hvcp2/Terminal.h"

#include <QtGlobal>

#include <windows.h>

#ifndef ENABLE_VIRTUAL_TERMINAL_PROCESSING
#define ENABLE_VIRTUAL_TERMINAL_PROCESSING 0x0004
#endif

namespace Hvcp2 {

Paint::Depth prepareStandardOutput()
{
    HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(output, &mode) == 0)
        return Paint::None; // a file or a pipe
    SetConsoleOutputCP(CP_UTF8);
    if (!qEnvironmentVariableIsEmpty("NO_COLOR"))
        return Paint::None;
    // Consoles before Windows 10 know no colours of this kind.
    const bool hasColors = SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
    return hasColors ? Paint::Full : Paint::None;
}

bool isStandardErrorTerminal()
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

} // namespace Hvcp2
