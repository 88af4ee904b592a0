#include "tools/hvcp2/BoundProcess.h"

#include <QCoreApplication>

#include <array>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace Hvcp2 {

namespace {

constexpr DWORD PieceBytes = 65536; // read at once, and what the pipe holds

/// Puts this process into a job that ends with it; what it starts from now on is in there, too.
void endTogether()
{
    static HANDLE job = CreateJobObjectW(nullptr, nullptr); // never closed but by the end
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    // Where the system grants no job, only this process's end in good order ends the other one.
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    AssignProcessToJobObject(job, GetCurrentProcess());
}

/// Takes Ctrl+C, which the other process gets by itself.
BOOL WINAPI onConsoleEvent(DWORD event)
{
    return event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
}

/// The pipe's end that is read without blocking; null when the system has no more.
HANDLE createPipe(const QString &name)
{
    HANDLE pipe = CreateNamedPipeW(reinterpret_cast<const wchar_t *>(name.utf16()),
        PIPE_ACCESS_INBOUND | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
        PIPE_TYPE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, 1, 0, PieceBytes, 0, nullptr);
    return pipe == INVALID_HANDLE_VALUE ? nullptr : pipe;
}

/// The other end of the pipe, which a process can inherit; null when there is none.
HANDLE openPipe(const QString &name)
{
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    HANDLE pipe = CreateFileW(reinterpret_cast<const wchar_t *>(name.utf16()), GENERIC_WRITE, 0,
        &inherited, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    return pipe == INVALID_HANDLE_VALUE ? nullptr : pipe;
}

/// Waits for the next piece in @p pipe, which is empty where somebody has written nothing. False at
/// the end: of the pipe, or of @p process, which others may keep the pipe open behind.
bool readPiece(HANDLE pipe, HANDLE process, QByteArray *piece)
{
    piece->resize(PieceBytes);
    DWORD size = 0;
    OVERLAPPED reading = {};
    reading.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    bool ok = ReadFile(pipe, piece->data(), PieceBytes, nullptr, &reading) != FALSE
        || GetLastError() == ERROR_IO_PENDING;
    if (ok) {
        const std::array<HANDLE, 2> either{reading.hEvent, process};
        const DWORD count = process == nullptr ? 1 : 2;
        if (WaitForMultipleObjects(count, either.data(), FALSE, INFINITE) != WAIT_OBJECT_0)
            CancelIo(pipe);
        ok = GetOverlappedResult(pipe, &reading, &size, TRUE) != FALSE;
    }
    CloseHandle(reading.hEvent);
    piece->resize(static_cast<int>(size));
    return ok;
}

} // namespace

BoundProcess::BoundProcess(QObject *parent)
    : QProcess(parent)
{
    setProcessChannelMode(ForwardedChannels);
    setInputChannelMode(ForwardedInputChannel);
}

BoundProcess::~BoundProcess()
{
    for (HANDLE handle : {m_readEnd, m_handle}) {
        if (handle != nullptr)
            CloseHandle(handle);
    }
}

bool BoundProcess::begin(const QString &program, const QStringList &arguments)
{
    const QString name
        = QStringLiteral(R"(\\.\pipe\hvcp2-record-%1)").arg(QCoreApplication::applicationPid());
    m_readEnd = createPipe(name);
    HANDLE writeEnd = openPipe(name);
    if (m_readEnd == nullptr || writeEnd == nullptr) {
        setErrorString(QStringLiteral("no pipe can be made"));
        return false;
    }
    endTogether();
    setCreateProcessArgumentsModifier([writeEnd](QProcess::CreateProcessArguments *given) {
        given->startupInfo->hStdOutput = writeEnd;
    });
    start(program, arguments, QIODevice::ReadOnly);
    CloseHandle(writeEnd); // the process has it
    if (!waitForStarted(-1))
        return false;
    m_handle = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(processId()));
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
    return true;
}

QByteArray BoundProcess::readOutput()
{
    QByteArray bytes;
    while (bytes.isEmpty() && readPiece(m_readEnd, m_handle, &bytes)) { }
    if (bytes.isEmpty())
        waitForFinished(-1); // it may have closed its output only
    return bytes;
}

bool BoundProcess::writeOutput(const QByteArray &bytes)
{
    const char *next = bytes.constData();
    auto left = static_cast<DWORD>(bytes.size());
    while (left > 0) {
        DWORD written = 0;
        if (WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), next, left, &written, nullptr) == FALSE)
            return false;
        next += written;
        left -= written;
    }
    return true;
}

void BoundProcess::endLike(const QProcess &process)
{
    // Also after a crash: its exit code is what tells one.
    ExitProcess(static_cast<UINT>(process.exitCode()));
}

} // namespace Hvcp2
