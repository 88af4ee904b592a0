#include "sensor/KrHvcController.h"

#include "sensor/ProcessList.h"

#include <QDir>
#include <QLoggingCategory>
#include <QMutexLocker>
#include <QPointer>
#include <QTimer>

namespace PluginKrHvcP2 {

namespace {

Q_LOGGING_CATEGORY(krhvcSensor, "krhvcp2.sensor", QtWarningMsg)

constexpr int RestartDelayMs = 5000;
constexpr int StaleCopyDelayMs = 5000;
constexpr int AfterKillDelayMs = 100;
constexpr int StopKeyTimeoutMs = 1000;
constexpr char StopKey[] = " ";

quint32 receivedChunks = 0; // for the trace only

} // namespace

/// Marks that a signal of the process is being handled. Its receivers run host code and event
/// loops, which may delete the controller; the process itself must outlive its own signal.
class KrHvcController::SignalScope
{
public:
    explicit SignalScope(KrHvcController *controller)
        : m_controller(controller)
    {
        ++m_controller->m_signalDepth;
    }
    ~SignalScope()
    {
        if (m_controller)
            --m_controller->m_signalDepth;
    }

private:
    Q_DISABLE_COPY(SignalScope)

    QPointer<KrHvcController> m_controller;
};

KrHvcController::KrHvcController(const QString &directory, QObject *parent)
    : QObject(parent)
    , m_directory(directory)
{ }

KrHvcController::~KrHvcController()
{
    if (m_signalDepth == 0)
        return; // the process goes with its parent

    const auto processes = findChildren<QProcess *>(QString(), Qt::FindDirectChildrenOnly);
    for (QProcess *process : processes) {
        process->disconnect(this);
        process->setParent(nullptr);
        process->kill();
        process->deleteLater();
    }
}

void KrHvcController::start()
{
    qCDebug(krhvcSensor, "Start!!!");
    setStopRequested(false);
    startProcess();
}

void KrHvcController::stop()
{
    setStopRequested(true);
    if (m_process == nullptr)
        return;

    if (m_process->state() == QProcess::Running) {
        const QPointer<KrHvcController> self(this);
        const QPointer<QProcess> process(m_process);
        process->write(StopKey);
        process->waitForBytesWritten(StopKeyTimeoutMs);
        // Output that arrives in the wait runs the receivers of dataReceived().
        if (!self || !process || process != m_process)
            return;
    }

    m_process->disconnect(this); // a later process must not be taken for this one
    m_process->deleteLater();
    m_process = nullptr;
    // A receiver that called start() in the wait found the process still running.
    if (!isStopRequested())
        QTimer::singleShot(RestartDelayMs, this, SLOT(startProcess()));
    emit stopped();
}

void KrHvcController::onReadyReadStandardOutput()
{
    if (m_process == nullptr)
        return;
    const SignalScope scope(this);
    const QByteArray bytes = m_process->readAllStandardOutput();
    const QString text = QString::fromUtf8(bytes.constData(), bytes.size()); // keeps NULs
    qCDebug(krhvcSensor).noquote() << text;
    ++receivedChunks;
    qCDebug(krhvcSensor) << "data received." << receivedChunks;
    emit dataReceived(text);
}

void KrHvcController::onReadyReadStandardError()
{
    if (m_process == nullptr)
        return;
    const QByteArray bytes = m_process->readAllStandardError();
    qCDebug(krhvcSensor).noquote() << QString::fromUtf8(bytes.constData(), bytes.size());
}

void KrHvcController::onProcessFinished(int result, QProcess::ExitStatus exitStatus)
{
    qCDebug(krhvcSensor) << "Process Finished:" << result << " ExitStatus:" << exitStatus;
}

void KrHvcController::onProcessErrorOccured(QProcess::ProcessError error)
{
    const SignalScope scope(this);
    qCDebug(krhvcSensor) << "Process Error:" << error;

    QString reason = tr("Unknown error.");
    switch (error) {
    case QProcess::FailedToStart:
        reason = tr("Failed to start.");
        break;
    case QProcess::Crashed:
        // Copies are ended with the exit code -1 on purpose.
        if (m_process == nullptr || m_process->exitCode() == -1)
            return;
        reason = tr("Crashed.");
        break;
    case QProcess::Timedout:
        reason = tr("Timeout.");
        break;
    case QProcess::ReadError:
        reason = tr("Read error.");
        break;
    case QProcess::WriteError:
        reason = tr("Write error.");
        break;
    case QProcess::UnknownError:
        break;
    }
    emit errorOccured(tr("Error occured in the process controller. ") + reason);
}

void KrHvcController::onProcessStateChanged(QProcess::ProcessState state)
{
    const SignalScope scope(this);
    qCDebug(krhvcSensor) << "Process State Changed:" << state;

    switch (state) {
    case QProcess::NotRunning:
        QTimer::singleShot(RestartDelayMs, this, SLOT(startProcess()));
        break;
    case QProcess::Running:
        emit started();
        break;
    case QProcess::Starting:
        break;
    }
}

void KrHvcController::killAndStartProcess()
{
    for (const ProcessList::ProcessId id : ProcessList::find(ProgramName))
        ProcessList::end(id, ProgramName); // one that survives is found again
    QTimer::singleShot(AfterKillDelayMs, this, SLOT(startProcess()));
}

void KrHvcController::startProcess()
{
    if (isStopRequested() || m_startInProgress)
        return;

    m_startInProgress = true;
    if (m_process != nullptr) {
        if (m_process->state() == QProcess::Running) {
            m_startInProgress = false;
            return;
        }
        deleteEndedProcess();
    }

    if (!ProcessList::find(ProgramName).empty()) {
        QTimer::singleShot(StaleCopyDelayMs, this, SLOT(killAndStartProcess()));
        m_startInProgress = false;
        return;
    }

    const QString program = QDir(m_directory).absoluteFilePath(QLatin1String(ProgramName));
    const QStringList arguments{
        QString::number(m_port), QString::number(m_speed), QString::number(m_interval)};
    m_process = createProcess();

    // Where a failure is reported from within start(), its receivers may delete this.
    const QPointer<KrHvcController> self(this);
    const SignalScope scope(this);
    m_process->start(program, arguments, QIODevice::ReadWrite | QIODevice::Unbuffered);
    if (self)
        m_startInProgress = false;
}

bool KrHvcController::isStopRequested()
{
    const QMutexLocker locker(&m_stateMutex);
    return m_stopRequested;
}

void KrHvcController::setStopRequested(bool stopRequested)
{
    const QMutexLocker locker(&m_stateMutex);
    m_stopRequested = stopRequested;
}

void KrHvcController::deleteEndedProcess()
{
    QProcess *process = m_process;
    m_process = nullptr;
    process->disconnect(this);
    if (m_signalDepth == 0)
        delete process; // ends it when it was still starting
    else
        process->deleteLater();
}

// Blanks within SIGNAL and SLOT would not be the normalised form.
// clang-format off
QProcess *KrHvcController::createProcess()
{
    auto *process = new QProcess(this);
    bool ok = connect(process, SIGNAL(readyReadStandardOutput()),
                      this, SLOT(onReadyReadStandardOutput()));
    ok = connect(process, SIGNAL(readyReadStandardError()),
                 this, SLOT(onReadyReadStandardError())) && ok;
    ok = connect(process, SIGNAL(finished(int,QProcess::ExitStatus)),
                 this, SLOT(onProcessFinished(int,QProcess::ExitStatus))) && ok;
    ok = connect(process, SIGNAL(error(QProcess::ProcessError)),
                 this, SLOT(onProcessErrorOccured(QProcess::ProcessError))) && ok;
    ok = connect(process, SIGNAL(stateChanged(QProcess::ProcessState)),
                 this, SLOT(onProcessStateChanged(QProcess::ProcessState))) && ok;
    Q_ASSERT_X(ok, Q_FUNC_INFO, "a QProcess signature does not match");
    Q_UNUSED(ok)
    return process;
}
// clang-format on

} // namespace PluginKrHvcP2
