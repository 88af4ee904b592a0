#pragma once

#include "sensor/KrHvcController.h"
#include "sensor/ProcessList.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>
#include <QVector>

#include <algorithm>
#include <csignal>

/// For everything that must happen sooner or later, on a busy machine too.
constexpr int Patience = 20000;

const QString ErrorStart = QStringLiteral("error: Error occured in the process controller. ");

/// A directory for a sensor program. The stand-ins are shell scripts, one for each behaviour; they
/// note their process ids.
class SensorDirectory
{
public:
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
        QFile file(filePath(fileName));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    }

    QByteArray read(const QString &fileName) const
    {
        QFile file(filePath(fileName));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Puts a script in place of the sensor program. It knows its directory as $dir.
    bool install(const QByteArray &script, const QString &name = QStringLiteral("HvcCon.exe")) const
    {
        // A new file each time: a script that still runs is read while it runs.
        QFile::remove(filePath(name));
        return write(name,
                   "#!/bin/sh\n"
                   "ulimit -c 0\n"
                   "dir=${0%/*}\n"
                   "echo $$ >> \"$dir/pids\"\n"
                       + script + '\n')
            && QFile::setPermissions(filePath(name),
                QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup
                    | QFile::ExeGroup);
    }

    /// The processes that were ever started here, oldest first.
    QVector<pid_t> startedCopies() const
    {
        QVector<pid_t> ids;
        const auto lines = read(QStringLiteral("pids")).split('\n');
        for (const QByteArray &line : lines) {
            if (!line.isEmpty())
                ids << line.toInt();
        }
        return ids;
    }

    QVector<pid_t> livingCopies() const
    {
        QVector<pid_t> ids;
        const auto started = startedCopies();
        for (const pid_t id : started) {
            if (::kill(id, 0) == 0)
                ids << id;
        }
        return ids;
    }

private:
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

/// Waits without running the event loop.
template <typename Condition>
bool blockUntil(Condition condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > Patience)
            return false;
        QThread::msleep(5);
    }
    return true;
}

/// True when no sensor program runs on this machine, whoever may have started it.
inline bool noSensorProgramRuns()
{
    return PluginKrHvcP2::ProcessList::find(PluginKrHvcP2::KrHvcController::ProgramName).empty();
}

// What the stand-ins do. All of them say something first, so that a test knows that they are up.
namespace StandIn {

const QByteArray EndsOnKey = "printf ready\ndd bs=1 count=1 >/dev/null 2>&1";
const QByteArray IgnoresEverything
    = "trap '' TERM INT HUP\nprintf ready\nwhile :; do read line || sleep 1; done";

const QByteArray ClosesItsInput = "exec 0<&-\nprintf ready\nwhile :; do sleep 1; done";

/// Says more on demand, by the files "go" and "done".
const QByteArray SaysMoreLater = "printf ready\n"
                                 "while [ ! -e \"$dir/go\" ]; do sleep 0.05; done\n"
                                 "printf more\n"
                                 ": > \"$dir/done\"\n"
                                 "while read line; do :; done";

} // namespace StandIn
