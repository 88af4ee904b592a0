#include "tests/support/OwnProcess.h"

#include <QDir>

#include <cstdint>
#include <ctime>
#include <string>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <psapi.h>

namespace KrTest {

int openHandles()
{
    // By asking for each: GetProcessHandleCount() is not honest everywhere. Handles are multiples
    // of four, and the lowest free one is given out first.
    constexpr std::uintptr_t last = 0x8000;
    int count = 0;
    for (std::uintptr_t value = 4; value <= last; value += 4) {
        DWORD flags = 0;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): that is what a handle is
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE)
            ++count;
    }
    return count;
}

double processorSeconds()
{
    // The C library's clock() counts the time of day there.
    FILETIME unused = {};
    FILETIME kernel = {};
    FILETIME user = {};
    if (GetProcessTimes(GetCurrentProcess(), &unused, &unused, &kernel, &user) == FALSE)
        return -1;
    constexpr double unit = 1e-7; // 100 ns
    const auto ticks = [](const FILETIME &time) {
        return double((std::uint64_t(time.dwHighDateTime) << 32U) | time.dwLowDateTime);
    };
    return (ticks(kernel) + ticks(user)) * unit;
}

double stolenSeconds()
{
    return 0;
}

qint64 residentMemory()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    if (GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters)) == FALSE)
        return 0;
    return static_cast<qint64>(counters.WorkingSetSize);
}

qint64 allocatedMemory()
{
    return 0;
}

bool isMapped(const QString &fileName)
{
    const std::wstring name = QDir::toNativeSeparators(fileName).toStdWString();
    return GetModuleHandleW(name.c_str()) != nullptr;
}

void setTimeZone(const QByteArray &name)
{
    qputenv("TZ", name);
    _tzset();
}

} // namespace KrTest
