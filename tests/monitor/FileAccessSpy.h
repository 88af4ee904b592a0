#pragma once

#include <QString>

#include <array>

#ifdef Q_OS_LINUX
#include <sys/inotify.h>
#include <unistd.h>
#endif

#ifdef Q_OS_LINUX
/// Notices every opening of a file.
class FileAccessSpy
{
public:
    static constexpr bool Watches = true;

    explicit FileAccessSpy(const QString &fileName)
        : m_queue(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        m_watch = ::inotify_add_watch(m_queue, qPrintable(fileName), IN_OPEN | IN_ACCESS);
    }
    ~FileAccessSpy()
    {
        if (m_queue >= 0)
            ::close(m_queue);
    }

    bool isValid() const { return m_queue >= 0 && m_watch >= 0; }

    /// True when the file was opened since the last call.
    bool takeAccess()
    {
        std::array<char, 4096> events;
        bool accessed = false;
        while (::read(m_queue, events.data(), events.size()) > 0)
            accessed = true;
        return accessed;
    }

private:
    Q_DISABLE_COPY(FileAccessSpy)

    int m_queue;
    int m_watch = -1;
};
#else
/// Nothing tells there who opens a file; the tests are left with what is painted.
class FileAccessSpy
{
public:
    static constexpr bool Watches = false;

    explicit FileAccessSpy(const QString & /*fileName*/) { }

    bool isValid() const { return true; }
    bool takeAccess() { return false; }
};
#endif
