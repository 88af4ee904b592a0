#include "StandinPlatform.h"

#include <vector>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace Platform {

namespace {

HANDLE standardHandle(int stream)
{
    switch (stream) {
    case 0:
        return GetStdHandle(STD_INPUT_HANDLE);
    case 1:
        return GetStdHandle(STD_OUTPUT_HANDLE);
    default:
        return GetStdHandle(STD_ERROR_HANDLE);
    }
}

} // namespace

void prepare()
{
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    // To the end of the process right away; a debugger would come in between, and be heard.
    SetUnhandledExceptionFilter(
        [](EXCEPTION_POINTERS *) -> LONG { return EXCEPTION_EXECUTE_HANDLER; });
}

std::filesystem::path executable()
{
    std::vector<wchar_t> name(32768); // the longest path there is
    const DWORD size = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    return std::wstring(name.data(), size);
}

unsigned long processId()
{
    return GetCurrentProcessId();
}

bool readByte(char &byte)
{
    DWORD count = 0;
    return ReadFile(standardHandle(0), &byte, 1, &count, nullptr) != FALSE && count == 1;
}

void write(int stream, const char *bytes, std::size_t size)
{
    while (size > 0) {
        DWORD count = 0;
        if (WriteFile(standardHandle(stream), bytes, static_cast<DWORD>(size), &count, nullptr)
                == FALSE
            || count == 0)
            return;
        bytes += count;
        size -= count;
    }
}

void close(int stream)
{
    CloseHandle(standardHandle(stream));
}

void ignorePoliteSignals()
{
    SetConsoleCtrlHandler(nullptr, TRUE); // Ctrl+C; there is nothing else
}

void suspend()
{
    SuspendThread(GetCurrentThread()); // the only one
}

void crash(const std::string &kind)
{
    if (kind == "memory")
        RaiseException(STATUS_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    constexpr UINT failFast = 0xC0000409; // what abort() of the system's own C library gives
    TerminateProcess(GetCurrentProcess(), kind == "abort" ? failFast : STATUS_CONTROL_C_EXIT);
    ExitProcess(1);
}

void spawn(const std::filesystem::path &program)
{
    std::wstring command = L'"' + program.wstring() + L'"';
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
            &startup, &process)
        == FALSE)
        return;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

void waitBesideThread(const std::string & /*name*/)
{
    char byte = 0;
    readByte(byte);
}

} // namespace Platform
