#include "sensor/ProcessList.h"

#include <algorithm>
#include <cwctype>
#include <optional>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <tlhelp32.h>

namespace PluginKrHvcP2::ProcessList {

namespace {

class Handle
{
public:
    explicit Handle(HANDLE handle)
        : m_handle(handle)
    { }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    ~Handle()
    {
        if (isValid())
            CloseHandle(m_handle);
    }

    // Snapshots fail with INVALID_HANDLE_VALUE, OpenProcess with null.
    bool isValid() const { return m_handle != nullptr && m_handle != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return m_handle; }

private:
    HANDLE m_handle;
};

bool equalsIgnoringCase(const std::wstring &a, const std::string &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](wchar_t x, char y) {
        return std::towlower(static_cast<std::wint_t>(x))
            == std::towlower(static_cast<std::wint_t>(y));
    });
}

/// What find() gives; nothing when the system's list cannot be read.
std::optional<std::vector<ProcessId>> tryFind(const std::string &fileName)
{
    const Handle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    if (!snapshot.isValid() || Process32FirstW(snapshot.get(), &entry) == FALSE)
        return std::nullopt;

    std::vector<ProcessId> ids;
    do {
        if (entry.th32ProcessID != GetCurrentProcessId()
            && equalsIgnoringCase(entry.szExeFile, fileName))
            ids.push_back(entry.th32ProcessID);
    } while (Process32NextW(snapshot.get(), &entry) != FALSE);
    return ids;
}

} // namespace

std::vector<ProcessId> find(const std::string &fileName)
{
    return tryFind(fileName).value_or(std::vector<ProcessId>());
}

bool end(ProcessId id, const std::string &fileName)
{
    if (id == GetCurrentProcessId())
        return false;
    const Handle process(OpenProcess(PROCESS_TERMINATE, FALSE, id));
    if (!process.isValid())
        return false;
    // While the handle is open the id cannot be given to another process. Where the list cannot be
    // read any more, it is that of a moment ago that counts.
    const auto ids = tryFind(fileName);
    if (ids && std::find(ids->begin(), ids->end(), id) == ids->end())
        return false;
    return TerminateProcess(process.get(), static_cast<UINT>(-1)) != FALSE;
}

} // namespace PluginKrHvcP2::ProcessList
