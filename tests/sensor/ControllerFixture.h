#pragma once

#include "sensor/KrHvcController.h"
#include "sensor/ProcessList.h"
#include "tests/support/Files.h"
#include "tests/support/SensorProgram.h"
#include "tests/support/Waiting.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

#include <algorithm>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

const QString ErrorStart = QStringLiteral("error: Error occured in the process controller. ");

/// A directory for a sensor program. Copies of one native program stand in for it; each is told
/// what to do by a file beside it and notes its process id.
class SensorDirectory
{
public:
    using ProcessId = KrTest::ProcessId;

    explicit SensorDirectory(const QString &subdirectory = QString())
        : m_path(subdirectory.isEmpty() ? m_directory.path() : m_directory.filePath(subdirectory))
    {
        QDir().mkpath(m_path);
    }

    QString path() const { return m_path; }
    QString filePath(const QString &fileName) const { return QDir(m_path).filePath(fileName); }
    bool exists(const QString &fileName) const { return QFile::exists(filePath(fileName)); }

    bool write(const QString &fileName, const QByteArray &content = {}) const
    {
        return KrTest::writeFile(filePath(fileName), content);
    }

    QByteArray read(const QString &fileName) const { return KrTest::readFile(filePath(fileName)); }

    /// Puts a stand-in there, as installStandIn() does.
    bool install(
        const QByteArray &commands, const QString &name = QStringLiteral("HvcCon.exe")) const
    {
        return KrTest::installStandIn(m_path, commands, name);
    }

    /// The processes that were ever started here, oldest first.
    QVector<ProcessId> startedCopies() const { return KrTest::startedStandIns(m_path); }

    QVector<ProcessId> livingCopies() const
    {
        QVector<ProcessId> ids;
        const auto started = startedCopies();
        for (const ProcessId id : started) {
            if (isThere(id))
                ids << id;
        }
        return ids;
    }

private:
    static bool isThere(ProcessId id)
    {
#ifdef Q_OS_UNIX
        return ::kill(static_cast<pid_t>(id), 0) == 0; // one that nobody has waited for, too
#else
        const auto ids
            = PluginKrHvcP2::ProcessList::find(PluginKrHvcP2::KrHvcController::ProgramName);
        return std::find(ids.begin(), ids.end(), id) != ids.end();
#endif
    }

    const QTemporaryDir m_directory;
    const QString m_path;
};

/// A controller and everything that it has said.
///
/// Output of a quick program may be delivered before the news that it runs; the log puts that
/// right.
class WatchedController
{
public:
    explicit WatchedController(const QString &directory)
        : controller(new PluginKrHvcP2::KrHvcController(directory))
    {
        using PluginKrHvcP2::KrHvcController;
        m_clock.start();
        QObject::connect(
            controller, &KrHvcController::started, &m_context, [this] { noteStarted(); });
        QObject::connect(controller, &KrHvcController::startingFailed, &m_context,
            [this](const QString &msg) { note(QStringLiteral("starting failed: ") + msg); });
        QObject::connect(controller, &KrHvcController::errorOccured, &m_context,
            [this](const QString &msg) { note(QStringLiteral("error: ") + msg); });
        QObject::connect(controller, &KrHvcController::criticalErrorOccured, &m_context,
            [this](const QString &msg) { note(QStringLiteral("critical: ") + msg); });
        QObject::connect(controller, &KrHvcController::stopped, &m_context,
            [this] { note(QStringLiteral("stopped")); });
        QObject::connect(controller, &KrHvcController::dataReceived, &m_context,
            [this](const QString &data) { noteData(data); });
    }
    ~WatchedController() { delete controller; }

    qint64 elapsed() const { return m_clock.elapsed(); } ///< milliseconds since construction

    QPointer<PluginKrHvcP2::KrHvcController> controller; // owned
    QStringList log;
    QVector<qint64> times; // of the entries of log, as elapsed()

    PluginKrHvcP2::KrHvcController *operator->() const { return controller; }

private:
    Q_DISABLE_COPY(WatchedController)

    void note(const QString &entry)
    {
        log << entry;
        times << m_clock.elapsed();
    }

    void noteStarted()
    {
        log.insert(log.size() - m_earlyData, QStringLiteral("started"));
        times.insert(times.size() - m_earlyData, m_clock.elapsed());
        m_earlyData = 0;
    }

    void noteData(const QString &data)
    {
        const auto processes = controller->findChildren<QProcess *>();
        for (const QProcess *process : processes)
            m_earlyData += process->state() == QProcess::Starting ? 1 : 0;
        note(QStringLiteral("data: ") + data);
    }

    QElapsedTimer m_clock;
    QObject m_context;
    int m_earlyData = 0; // entries at the end of log that the next "started" belongs before
};

/// @p log less the entries that begin with @p start.
inline QStringList without(QStringList log, const QString &start)
{
    const auto isOne = [&start](const QString &entry) { return entry.startsWith(start); };
    log.erase(std::remove_if(log.begin(), log.end(), isOne), log.end());
    return log;
}

// What the stand-ins do. All of them say something first, so that a test knows that they are up.
namespace StandIn {

const QByteArray EndsOnKey = "say ready\nkey";
const QByteArray NeverReads = "say ready\nforever";
const QByteArray IgnoresEverything = "ignore-signals\nsay ready\ndrain\nforever";
const QByteArray IsSuspended = "say ready\nsuspend\nforever";
const QByteArray ClosesItsInput = "close 0\nsay ready\nforever";

/// Says more on demand, by the files "go" and "done".
const QByteArray SaysMoreLater = "say ready\nwait go\nsay more\ntouch done\ndrain";

} // namespace StandIn
