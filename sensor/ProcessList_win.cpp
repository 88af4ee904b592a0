#include "sensor/ProcessList.h"

#include <algorithm>
#include <cwctype>

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

} // namespace

std::vector<ProcessId> find(const std::string &fileName)
{
    std::vector<ProcessId> ids;
    const Handle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    if (!snapshot.isValid())
        return ids;

    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(snapshot.get(), &entry); more != FALSE;
         more = Process32NextW(snapshot.get(), &entry)) {
        if (equalsIgnoringCase(entry.szExeFile, fileName))
            ids.push_back(entry.th32ProcessID);
    }
    return ids;
}

bool end(ProcessId id, const std::string &fileName)
{
    const Handle process(OpenProcess(PROCESS_TERMINATE, FALSE, id));
    if (!process.isValid())
        return false;
    // While the handle is open the id cannot be given to another process.
    const std::vector<ProcessId> ids = find(fileName);
    return std::find(ids.begin(), ids.end(), id) != ids.end()
        && TerminateProcess(process.get(), static_cast<UINT>(-1)) != FALSE;
}

} // namespace PluginKrHvcP2::ProcessList
