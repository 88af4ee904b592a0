#include "ResidentMemory.h"

#include <windows.h>

#include <psapi.h>

namespace Bench {

qint64 residentMemory()
{
    PROCESS_MEMORY_COUNTERS counters{};
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters)))
        return 0;
    return static_cast<qint64>(counters.WorkingSetSize);
}

} // namespace Bench
