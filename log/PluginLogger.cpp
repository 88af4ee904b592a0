#include "log/PluginLogger.h"

#include "host/KrPluginLogLevel.h"
#include "log/LockFile.h"
#include "log/LogFormat.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QLoggingCategory>
#include <QScopeGuard>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>

namespace PluginKrHvcP2 {

namespace {

Q_LOGGING_CATEGORY(krhvcLog, "krhvcp2.log", QtWarningMsg)

constexpr int WaitTurnMs = 20;
// Enough for 35 faces at 40 frames a second over the longest wait.
constexpr std::size_t MaxQueuedRecords = 4000;
constexpr qint64 MaxQueuedBytes = qint64{8} * 1024 * 1024;

qint64 byteSize(const QString &text)
{
    return text.size() * static_cast<qint64>(sizeof(QChar));
}

/// A FIFO or device in place of a file would block the open, and with it the host.
bool isFileOrAbsent(const QString &path)
{
    const QFileInfo info(path);
    return !info.exists() || info.isFile();
}

/// Lets the calling thread's events run for one turn. False when the loop was ended from outside:
/// the application is ending, and new loops would return at once.
bool runEventsForOneTurn()
{
    QEventLoop loop;
    QTimer turn;
    turn.setSingleShot(true);
    QObject::connect(&turn, SIGNAL(timeout()), &loop, SLOT(quit()));
    turn.start(WaitTurnMs);
    loop.exec();
    return !turn.isActive();
}

/// Among the process's last static destructors Qt's calendar has gone already: a record would have
/// no time, and its file no date.
bool canTellTime()
{
    return QCoreApplication::instance() != nullptr
        || !QLocale::c().toString(QDate(2000, 1, 1), QLocale::ShortFormat).isEmpty();
}

/// Without an application timers do not run, and an event loop would never come back.
bool canRunEvents()
{
    return QCoreApplication::instance() != nullptr && !QCoreApplication::closingDown();
}

} // namespace

QMap<int, QString> defaultLevelNames()
{
    QMap<int, QString> names;
    for (const char *name : Kora::LogLevel::Names)
        names.insert(names.size(), QString::fromLatin1(name));
    return names;
}

PluginLogger &PluginLogger::instance()
{
    // Never destroyed: the plug-in object may be deleted, and log its end, among the process's
    // static destructors.
    static auto *const logger = new PluginLogger;
    return *logger;
}

PluginLogger::PluginLogger(Clock clock)
    : m_clock(std::move(clock))
{ }

LogSettings PluginLogger::settings() const
{
    const QMutexLocker locker(&m_settingsMutex);
    return m_settings;
}

void PluginLogger::setSettings(const LogSettings &settings)
{
    const QMutexLocker locker(&m_settingsMutex);
    m_settings = settings;
}

bool PluginLogger::write(const QString &message, int level, int timeoutMs)
{
    if (isFiltered(level))
        return true;

    Record record{message, level, timeoutMs, {}, nullptr};
    if (m_mutex.isHeldByCurrentThread()) {
        // The write that waits below us takes it along; but it cannot look at the lock file as long
        // as its loop runs, say, a dialog of the host.
        record.age.start();
        enqueue(std::move(record));
        QString awaitedLock;
        tryToWrite(awaitedLock);
        return true;
    }

    const std::unique_lock<OwnedMutex> lock(m_mutex);
    return writeLocked(std::move(record), Waiting::RunsEvents);
}

bool PluginLogger::writeWithoutEvents(const QString &message, int level, int timeoutMs)
{
    if (m_mutex.isHeldByCurrentThread())
        return write(message, level, timeoutMs); // does not wait
    if (isFiltered(level))
        return true;

    if (!m_mutex.tryLock(std::max(0, timeoutMs)))
        return false;
    const std::unique_lock<OwnedMutex> lock(m_mutex, std::adopt_lock);
    return writeLocked({message, level, timeoutMs, {}, nullptr}, Waiting::RunsNoEvents);
}

bool PluginLogger::writeError(const QString &message)
{
    return write(message, Error, DefaultTimeoutMs);
}

bool PluginLogger::writeCritical(const QString &message)
{
    return write(message, Critical, DefaultTimeoutMs);
}

bool PluginLogger::isFiltered(int level) const
{
    const QMutexLocker locker(&m_settingsMutex);
    return level > m_settings.maxLevel;
}

/// Writes @p record and whatever else is queued, waiting for the lock file when it has to.
bool PluginLogger::writeLocked(Record record, Waiting waiting)
{
    std::optional<bool> outcome; // also set by calls that arrive in the wait
    record.outcome = &outcome;
    const int timeoutMs = record.timeoutMs;
    enqueue(std::move(record));
    const auto withdrawn = qScopeGuard([&] {
        withdraw(&outcome);
        reportLostRecords();
    });

    QString awaitedLock;
    QElapsedTimer stopwatch;
    while (!outcome && tryToWrite(awaitedLock) == Attempt::Locked) {
        if (!stopwatch.isValid())
            stopwatch.start();
        if (stopwatch.elapsed() > timeoutMs)
            break;
        if (waiting == Waiting::RunsNoEvents || !canRunEvents())
            QThread::msleep(WaitTurnMs);
        else if (!runEventsForOneTurn())
            break;
    }
    return outcome.value_or(false);
}

void PluginLogger::enqueue(Record record)
{
    m_queuedBytes += byteSize(record.message);
    m_queue.push_back(std::move(record));
    while (m_queue.size() > MaxQueuedRecords
        || (m_queuedBytes > MaxQueuedBytes && m_queue.size() > 1)) {
        // The oldest goes, but never one that somebody is waiting for.
        const auto oldest
            = m_queue.front().outcome == nullptr ? m_queue.begin() : std::next(m_queue.begin());
        takeRecord(oldest);
        ++m_lostRecords;
    }
}

/// Takes back the record whose caller gives up; the others stay for as long as they may.
void PluginLogger::withdraw(const std::optional<bool> *outcome)
{
    const auto own = std::find_if(m_queue.begin(), m_queue.end(),
        [=](const Record &record) { return record.outcome == outcome; });
    if (own != m_queue.end())
        takeRecord(own);
}

PluginLogger::Record PluginLogger::takeRecord(const std::deque<Record>::iterator &position)
{
    Record record = std::move(*position);
    m_queue.erase(position);
    m_queuedBytes -= byteSize(record.message);
    return record;
}

/// Writes the queue when the lock file can be had at once. @p awaitedLock is the lock that the
/// caller waits for; its age was judged when that began.
PluginLogger::Attempt PluginLogger::tryToWrite(QString &awaitedLock)
{
    if (!canTellTime())
        return Attempt::Failed;

    // Settings that change in a wait hold for all that is written after it.
    const LogSettings current = settings();
    QDir directory(current.directory);
    if (!directory.exists()) {
        if (!directory.mkpath(directory.absolutePath()))
            return Attempt::Failed;
        directory.refresh();
    }

    const QString lockPath = directory.absoluteFilePath(LogFormat::lockFileName(current.baseName));
    const LockFile::Found lock = LockFile::look(lockPath, m_clock);
    switch (lock.state) {
    case LockFile::State::Absent:
        break;
    case LockFile::State::Young:
        awaitedLock = lockPath;
        return Attempt::Locked;
    case LockFile::State::Stale:
        if (lockPath == awaitedLock)
            return Attempt::Locked;
        break;
    case LockFile::State::Unusable:
        return Attempt::Failed;
    }
    if (!LockFile::take(lockPath, lock))
        return Attempt::Failed;

    const QDateTime now = m_clock();
    cleanUpDaily(current, now);
    writeQueue(current, directory, now);
    QFile::remove(lockPath);
    return Attempt::Written;
}

/// Nothing here runs an event loop, so the queue does not grow meanwhile.
void PluginLogger::writeQueue(
    const LogSettings &settings, const QDir &directory, const QDateTime &now)
{
    while (!m_queue.empty()) {
        const Record record = takeRecord(m_queue.begin());
        const bool isWanted = record.outcome != nullptr || !record.isExpired();
        const bool written = isWanted && appendRecord(settings, directory, now, record);
        if (record.outcome != nullptr)
            *record.outcome = written;
        else if (!written)
            ++m_lostRecords;
    }
}

bool PluginLogger::appendRecord(
    const LogSettings &settings, const QDir &directory, const QDateTime &now, const Record &record)
{
    const QString path = directory.absoluteFilePath(
        LogFormat::logFileName(settings.baseName, now.date(), settings.extension));
    if (!isFileOrAbsent(path))
        return false;

    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        return false;

    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    stream << LogFormat::record(
        settings.style, now, settings.levelNames.value(record.level), record.message);
    stream.flush();
    const bool written = stream.status() == QTextStream::Ok && file.flush();
    file.close();
    return written && file.error() == QFileDevice::NoError;
}

void PluginLogger::cleanUpDaily(const LogSettings &settings, const QDateTime &now)
{
    if (m_lastCleanup.isValid() && m_lastCleanup.date() == now.date())
        return;
    QDir directory(settings.directory);
    if (settings.directory.isEmpty() || !directory.exists() || QCoreApplication::closingDown())
        return;
    m_lastCleanup = now;

    const QStringList fileNames
        = directory.entryList({QStringLiteral("*.%1").arg(settings.extension)},
            QDir::Files | QDir::NoDotAndDotDot, QDir::Name | QDir::Reversed);
    const QDate oldestKept = now.date().addDays(-static_cast<qint64>(settings.retentionDays));
    const QStringList expired = LogFormat::expiredFiles(fileNames, settings.extension, oldestKept);
    for (const QString &fileName : expired)
        directory.remove(fileName); // one that cannot be deleted is tried again tomorrow
}

void PluginLogger::reportLostRecords()
{
    if (m_lostRecords > 0)
        qCDebug(krhvcLog, "%llu log records were lost", m_lostRecords);
    m_lostRecords = 0;
}

} // namespace PluginKrHvcP2
