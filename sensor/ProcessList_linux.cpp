#include "sensor/ProcessList.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace PluginKrHvcP2::ProcessList {

namespace {

namespace fs = std::filesystem;

bool equalsIgnoringCase(const std::string &a, const std::string &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
        [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

fs::path processDirectory(ProcessId id)
{
    return fs::path("/proc") / std::to_string(id);
}

/// Command name and state of a process: /proc/<id>/stat reads "id (command) state ...".
struct ProcessState
{
    std::string command;
    char state = 'X';

    bool isAlive() const { return state != 'Z' && state != 'X' && state != 'x'; }
};

std::optional<ProcessState> readState(ProcessId id)
{
    std::ifstream file(processDirectory(id) / "stat");
    std::string text;
    // Reading fails when the process ends after the opening; iterators of the buffer would throw.
    std::getline(file, text, '\0');
    const auto open = text.find('(');
    const auto close = text.rfind(')'); // the command may hold parentheses itself
    if (open == std::string::npos || close == std::string::npos || close < open
        || close + 2 >= text.size())
        return std::nullopt;
    return ProcessState{text.substr(open + 1, close - open - 1), text[close + 2]};
}

/// Bare name of the executable; empty when it may not be read.
std::string executableName(ProcessId id)
{
    static const std::string deletedMark = " (deleted)";
    std::error_code error;
    std::string name = fs::read_symlink(processDirectory(id) / "exe", error).filename().string();
    if (name.size() > deletedMark.size()
        && name.compare(name.size() - deletedMark.size(), deletedMark.size(), deletedMark) == 0)
        name.erase(name.size() - deletedMark.size());
    return name;
}

bool isRunning(ProcessId id, const std::string &fileName)
{
    const std::optional<ProcessState> state = readState(id);
    if (!state || !state->isAlive())
        return false;
    // A script runs in its interpreter's executable, under its own command name.
    return equalsIgnoringCase(executableName(id), fileName)
        || equalsIgnoringCase(state->command, fileName);
}

#ifdef SYS_pidfd_open
class FileDescriptor
{
public:
    explicit FileDescriptor(int fd)
        : m_fd(fd)
    { }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor()
    {
        if (isValid())
            ::close(m_fd);
    }

    bool isValid() const { return m_fd >= 0; }
    int get() const { return m_fd; }

private:
    int m_fd;
};
#endif

} // namespace

std::vector<ProcessId> find(const std::string &fileName)
{
    std::vector<ProcessId> ids;
    std::error_code error;
    const auto ownId = static_cast<ProcessId>(::getpid());
    for (fs::directory_iterator it("/proc", error), end; !error && it != end; it.increment(error)) {
        const std::string entry = it->path().filename().string();
        ProcessId id = 0;
        const auto [last, result] = std::from_chars(entry.data(), entry.data() + entry.size(), id);
        const bool isProcess = result == std::errc() && last == entry.data() + entry.size();
        if (isProcess && id != ownId && isRunning(id, fileName))
            ids.push_back(id);
    }
    return ids;
}

bool end(ProcessId id, const std::string &fileName)
{
    if (id == static_cast<ProcessId>(::getpid()))
        return false;
#ifdef SYS_pidfd_open
    // A descriptor stays with its process, so nothing can slip in between test and signal.
    const FileDescriptor process(static_cast<int>(::syscall(SYS_pidfd_open, id, 0)));
    if (process.isValid()) {
        return isRunning(id, fileName)
            && ::syscall(SYS_pidfd_send_signal, process.get(), SIGKILL, nullptr, 0) == 0;
    }
    if (errno == ESRCH)
        return false;
#endif
    return isRunning(id, fileName) && ::kill(static_cast<pid_t>(id), SIGKILL) == 0;
}

} // namespace PluginKrHvcP2::ProcessList
