#include "demo/player/TerminationNotifier.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace Player {

namespace {

constexpr std::array<int, 3> Signals{SIGINT, SIGTERM, SIGHUP};

// Written by the handler, which may only use what is safe in the middle of anything.
int writeEnd = -1;

extern "C" void onTerminationSignal(int /*signal*/)
{
    const int savedErrno = errno;
    const char byte = 0;
    const ssize_t written = ::write(writeEnd, &byte, 1);
    static_cast<void>(written); // a full pipe has told it already
    errno = savedErrno;
}

} // namespace

class TerminationNotifier::Backend
{
public:
    explicit Backend(TerminationNotifier *owner)
    {
        if (::pipe(m_ends.data()) != 0)
            return; // signals then end the process as usual
        for (const int end : m_ends) {
            // The sensor program must not inherit the pipe.
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
            ::fcntl(end, F_SETFL, O_NONBLOCK);
        }
        writeEnd = m_ends[1];
        m_notifier = std::make_unique<QSocketNotifier>(m_ends[0], QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, owner, [this, owner] {
            m_notifier->setEnabled(false);
            emit owner->requested();
        });

        struct sigaction action = {};
        action.sa_handler = onTerminationSignal;
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        sigemptyset(&action.sa_mask);
        for (const int signal : Signals) {
            struct sigaction present = {};
            ::sigaction(signal, nullptr, &present);
            if (signal == SIGHUP && present.sa_handler == SIG_IGN)
                continue; // started with nohup
            ::sigaction(signal, &action, nullptr);
        }
    }

    ~Backend()
    {
        if (!m_notifier)
            return;
        for (const int signal : Signals)
            ::signal(signal, SIG_DFL);
        writeEnd = -1;
        m_notifier.reset();
        for (const int end : m_ends)
            ::close(end);
    }

    Backend(const Backend &) = delete;
    Backend &operator=(const Backend &) = delete;

private:
    std::array<int, 2> m_ends{-1, -1};
    std::unique_ptr<QSocketNotifier> m_notifier;
};

TerminationNotifier::TerminationNotifier(QObject *parent)
    : QObject(parent)
    , m_backend(std::make_unique<Backend>(this))
{ }

TerminationNotifier::~TerminationNotifier() = default;

} // namespace Player
