#include "sensor/KrHvcController.h"

#include "sensor/ProcessList.h"

#include <QDir>
#include <QLoggingCategory>
#include <QMutexLocker>
#include <QPointer>
#include <QTimerEvent>
#include <QVector>

#include <utility>

namespace PluginKrHvcP2 {

namespace {

Q_LOGGING_CATEGORY(krhvcSensor, "krhvcp2.sensor", QtWarningMsg)

constexpr int RestartDelayMs = 5000;
constexpr int StaleCopyDelayMs = 5000;
constexpr int AfterKillDelayMs = 100;
constexpr int StopKeyTimeoutMs = 1000;
constexpr char StopKey[] = " ";

quint32 receivedChunks = 0; // for the trace only

/// To start a QProcess itself, Qt on Linux makes a quicker system call than for a class derived
/// from it, and does not see it fail: the process stays "starting" with the id -1, which to end
/// means to end every process of the user, and watches a descriptor that may be anybody's.
class SensorProcess : public QProcess
{
public:
    using QProcess::QProcess;
};

} // namespace

/// The process's functions and signals that are on the stack now. Their receivers run host code and
/// event loops, which may let the process go or delete the controller; a process let go in that
/// time is kept until the last of them has returned, since its own code goes on below them.
struct KrHvcController::SignalStack
{
    int depth = 0;
    QVector<QProcess *> retired; // ended, without parent
};

class KrHvcController::SignalScope
{
public:
    explicit SignalScope(std::shared_ptr<SignalStack> stack)
        : m_stack(std::move(stack))
    {
        ++m_stack->depth;
    }

    ~SignalScope()
    {
        if (--m_stack->depth > 0)
            return;
        const QVector<QProcess *> retired = std::exchange(m_stack->retired, {});
        for (QProcess *process : retired)
            process->deleteLater();
    }

private:
    Q_DISABLE_COPY(SignalScope)

    const std::shared_ptr<SignalStack> m_stack;
};

KrHvcController::KrHvcController(const QString &directory, QObject *parent)
    : QObject(parent)
    , m_directory(directory)
    , m_signalStack(std::make_shared<SignalStack>())
{ }

KrHvcController::~KrHvcController()
{
    if (m_process != nullptr && detach(m_process))
        delete m_process;
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
        QProcess *const process = m_process;
        const SignalScope scope(m_signalStack);
        process->write(StopKey);
        process->waitForBytesWritten(StopKeyTimeoutMs);
        // Output that arrives in the wait runs the receivers of dataReceived().
        if (!self || process != m_process)
            return;
    }

    QProcess *const process = std::exchange(m_process, nullptr);
    if (process->state() != QProcess::NotRunning)
        schedule(m_restartTimer, RestartDelayMs); // its end will not arrive here
    if (detach(process))
        process->deleteLater();
    emit stopped();
}

void KrHvcController::onReadyReadStandardOutput()
{
    if (m_process == nullptr)
        return;
    const SignalScope scope(m_signalStack);
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
    const SignalScope scope(m_signalStack);
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
    const SignalScope scope(m_signalStack);
    qCDebug(krhvcSensor) << "Process State Changed:" << state;

    switch (state) {
    case QProcess::NotRunning:
        schedule(m_restartTimer, RestartDelayMs);
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
    schedule(m_afterKillTimer, AfterKillDelayMs);
}

void KrHvcController::startProcess()
{
    if (isStopRequested())
        return;
    if (m_startInProgress) {
        m_startMissed = true;
        return;
    }

    m_startInProgress = true;
    if (m_process != nullptr) {
        if (m_process->state() == QProcess::Running) {
            m_startInProgress = false;
            return;
        }
        QProcess *const process = std::exchange(m_process, nullptr);
        if (detach(process))
            delete process; // ends it when it was still starting
    }

    if (!ProcessList::find(ProgramName).empty()) {
        schedule(m_staleCopyTimer, StaleCopyDelayMs);
        m_startInProgress = false;
        return;
    }

    const QString program = QDir(m_directory).absoluteFilePath(QLatin1String(ProgramName));
    const QStringList arguments{
        QString::number(m_port), QString::number(m_speed), QString::number(m_interval)};
    m_process = createProcess();
    forgetSchedule(); // a look for copies would find this process

    // Where a failure is reported from within start(), its receivers may delete this.
    const QPointer<KrHvcController> self(this);
    const SignalScope scope(m_signalStack);
    m_process->start(program, arguments, QIODevice::ReadWrite | QIODevice::Unbuffered);
    if (!self)
        return;
    m_startInProgress = false;
    const bool startMissed = std::exchange(m_startMissed, false);
    const bool letGo = m_process == nullptr && startMissed; // stopped, and started again
    // Not every failure is a change of state; one that is has scheduled this already.
    const bool failed = m_process != nullptr && m_process->state() == QProcess::NotRunning;
    if (letGo || failed)
        schedule(m_restartTimer, RestartDelayMs);
}

void KrHvcController::timerEvent(QTimerEvent *event)
{
    const int id = event->timerId();
    if (id == m_staleCopyTimer.timerId()) {
        m_staleCopyTimer.stop();
        killAndStartProcess();
    } else if (id == m_restartTimer.timerId()) {
        m_restartTimer.stop();
        startProcess();
    } else if (id == m_afterKillTimer.timerId()) {
        m_afterKillTimer.stop();
        startProcess();
    }
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

/// Lets nothing of @p process arrive here any more. True when the caller may delete it; else it has
/// been ended and is deleted once none of its signals is on the stack.
bool KrHvcController::detach(QProcess *process)
{
    process->disconnect(this); // a later process must not be taken for this one
    if (m_signalStack->depth == 0)
        return true;
    process->setParent(nullptr);
    process->kill();
    m_signalStack->retired.append(process);
    return false;
}

/// What is scheduled already stays as it is.
void KrHvcController::schedule(QBasicTimer &timer, int delayMs)
{
    if (!timer.isActive())
        timer.start(delayMs, this);
}

void KrHvcController::forgetSchedule()
{
    for (QBasicTimer *timer : {&m_restartTimer, &m_staleCopyTimer, &m_afterKillTimer})
        timer->stop();
}

// Blanks within SIGNAL and SLOT would not be the normalised form.
// clang-format off
QProcess *KrHvcController::createProcess()
{
    auto *process = new SensorProcess(this);
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
