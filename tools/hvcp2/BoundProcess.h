#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

namespace Hvcp2 {

/// A process in this one's place: it shares standard input and standard error with this one, and
/// ends when this one ends in whatever way. Its standard output is read here, without buffering:
/// what is not read yet keeps the process waiting.
class BoundProcess : public QProcess
{
    Q_OBJECT

public:
    explicit BoundProcess(QObject *parent = nullptr);
    ~BoundProcess() override;

    /// Starts @p program, an absolute path; from then on Ctrl+C and files that may not grow any
    /// more end the process, but not this one. False, and the reason in errorString(), when that
    /// fails.
    bool begin(const QString &program, const QStringList &arguments);

    /// Waits for the next piece of its output; empty at the end, when the process has ended, too.
    QByteArray readOutput();

    /// Writes all of @p bytes to this process's standard output, and waits as long as the reader
    /// needs. False when nobody is left to read.
    static bool writeOutput(const QByteArray &bytes);

    /// Ends this process as the finished @p process has ended: with its exit status, or by the same
    /// signal.
    [[noreturn]] static void endLike(const QProcess &process);

protected:
#ifndef Q_OS_WIN
    void setupChildProcess() override;
#endif

private:
    Q_DISABLE_COPY(BoundProcess)

#ifdef Q_OS_WIN
    // QProcess reads ahead without end there.
    void *m_readEnd = nullptr; // of the pipe that is the process's standard output
    void *m_handle = nullptr; // of the process
#endif
};

} // namespace Hvcp2
