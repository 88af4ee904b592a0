#include "tools/hvcp2/BoundProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace Hvcp2 {

namespace {

const pid_t OwnId = ::getpid();

} // namespace

BoundProcess::BoundProcess(QObject *parent)
    : QProcess(parent)
{
    setProcessChannelMode(ForwardedErrorChannel);
    setInputChannelMode(ForwardedInputChannel);
}

BoundProcess::~BoundProcess() = default;

// In the new process, where only system calls are safe.
void BoundProcess::setupChildProcess()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != OwnId)
        ::_exit(EXIT_FAILURE); // the parent has ended before
}

bool BoundProcess::begin(const QString &program, const QStringList &arguments)
{
    start(program, arguments, QIODevice::ReadOnly | QIODevice::Unbuffered);
    if (!waitForStarted(-1))
        return false;
    for (const int signal : {SIGINT, SIGQUIT, SIGXFSZ})
        std::signal(signal, SIG_IGN);
    return true;
}

QByteArray BoundProcess::readOutput()
{
    while (bytesAvailable() == 0 && waitForReadyRead(-1)) { }
    QByteArray bytes = readAllStandardOutput();
    if (bytes.isEmpty())
        waitForFinished(-1); // it may have closed its output only
    return bytes;
}

bool BoundProcess::writeOutput(const QByteArray &bytes)
{
    const char *next = bytes.constData();
    auto left = static_cast<size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = ::write(STDOUT_FILENO, next, left);
        if (written > 0) {
            next += written;
            left -= static_cast<size_t>(written);
        } else if (written < 0 && errno == EAGAIN) {
            pollfd output{STDOUT_FILENO, POLLOUT, 0};
            ::poll(&output, 1, -1);
        } else if (written == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

void BoundProcess::endLike(const QProcess &process)
{
    if (process.exitStatus() == QProcess::CrashExit) {
        const int signal = process.exitCode();
        const rlimit noDump{0, 0}; // the program's own is enough
        ::setrlimit(RLIMIT_CORE, &noDump);
        std::signal(signal, SIG_DFL);
        ::raise(signal);
    }
    ::_exit(process.exitCode());
}

} // namespace Hvcp2
