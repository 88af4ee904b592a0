#pragma once

#include <QMutex>
#include <QObject>
#include <QProcess>
#include <QString>

namespace PluginKrHvcP2 {

/// Keeps the sensor program running as a child process and passes its output on, unparsed.
///
/// A program that ends or fails to start is started again 5 s later. Other processes of the same
/// name are ended first: a copy left over from an earlier run holds the COM port.
/// start() and stop() only set a flag before they touch the process; everything else belongs to
/// the thread that owns the controller.
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

private:
    class SignalScope;

    bool isStopRequested();
    void setStopRequested(bool stopRequested);
    void deleteEndedProcess();
    QProcess *createProcess();

    QProcess *m_process = nullptr; // child of this
    const QString m_directory;
    bool m_stopRequested = false;
    bool m_startInProgress = false;
    QMutex m_stateMutex; // guards m_stopRequested
    QMutex m_spareMutex; // reserved; nothing locks it
    int m_interval = 500;
    int m_port = 3;
    int m_speed = 921600;
    int m_signalDepth = 0; // slots called by the process that are on the stack now
};

} // namespace PluginKrHvcP2
