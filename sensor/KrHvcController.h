#pragma once

#include <QBasicTimer>
#include <QMutex>
#include <QObject>
#include <QProcess>
#include <QString>

#include <memory>

namespace PluginKrHvcP2 {

/// Keeps the sensor program running as a child process and passes its output on, unparsed.
///
/// A program that ends or fails to start is started again 5 s later. Other processes of the same
/// name are ended first: a copy left over from an earlier run holds the COM port.
/// Belongs to one thread; only the flag that stop() sets is guarded against others.
class KrHvcController : public QObject
{
    Q_OBJECT

public:
    /// Bare file name of the sensor program, also the name that copies of it are found by.
    static constexpr char ProgramName[] = "HvcCon.exe";

    /// @p directory holds the sensor program.
    explicit KrHvcController(const QString &directory, QObject *parent = nullptr);
    ~KrHvcController() override;

    // What the next process is started with.
    int port() const { return m_port; } ///< COM port number, initially 3
    void setPort(int port) { m_port = port; }
    int speed() const { return m_speed; } ///< baud, initially 921600
    void setSpeed(int speed) { m_speed = speed; }
    void setInterval(int interval) { m_interval = interval; } ///< milliseconds, initially 500

    // The host and the plug-in connect by name and index: keep the order of signals and slots.
signals:
    void started(); ///< the process is running
    void startingFailed(const QString &msg); ///< never emitted
    void errorOccured(const QString &msg); ///< the process failed; @p msg is for people
    void criticalErrorOccured(const QString &msg); ///< never emitted
    void stopped(); ///< stop() has let a process go
    void dataReceived(const QString &data); ///< one read of standard output, as it arrived

public slots:
    void start();
    void stop(); ///< waits at most 1 s for the program to take its stop key

private slots:
    void onReadyReadStandardOutput();
    void onReadyReadStandardError();
    void onProcessFinished(int result, QProcess::ExitStatus exitStatus);
    void onProcessErrorOccured(QProcess::ProcessError error);
    void onProcessStateChanged(QProcess::ProcessState state);
    void killAndStartProcess();
    void startProcess();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    struct SignalStack;
    class SignalScope;

    bool isStopRequested();
    void setStopRequested(bool stopRequested);
    bool detach(QProcess *process);
    QProcess *createProcess();
    void schedule(QBasicTimer &timer, int delayMs);
    void forgetSchedule();

    QProcess *m_process = nullptr; // child of this
    const QString m_directory;
    bool m_stopRequested = false;
    bool m_startInProgress = false;
    bool m_startMissed = false; // one was asked for while another was in progress
    QBasicTimer m_restartTimer; // after the end of a process
    QBasicTimer m_staleCopyTimer; // before the copies that were found are ended
    QBasicTimer m_afterKillTimer; // after they were
    QMutex m_stateMutex; // guards m_stopRequested
    QMutex m_spareMutex; // reserved; nothing locks it
    int m_interval = 500;
    int m_port = 3;
    int m_speed = 921600;
    std::shared_ptr<SignalStack> m_signalStack; // outlives this while a signal is being handled
};

} // namespace PluginKrHvcP2
