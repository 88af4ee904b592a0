#include "demo/simulator/Platform.h"

#include <cstdlib>

#include <windows.h>

namespace Simulation {

bool standardInputIsStream()
{
    HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    if (input == nullptr || input == INVALID_HANDLE_VALUE)
        return false;
    DWORD mode = 0; // the null device is a character device too, but no console
    return GetFileType(input) == FILE_TYPE_PIPE || GetConsoleMode(input, &mode) != 0;
}

void crash()
{
    // An exit code of this kind is what tells a crash from an end; abort() would leave 3.
    TerminateProcess(GetCurrentProcess(), EXCEPTION_ACCESS_VIOLATION);
    std::abort(); // not reached
}

} // namespace Simulation
