#include "log/PluginLogger.h"

#include "log/LogFormat.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTextStream>
#include <QTimer>

#include <mutex>
#include <utility>

namespace PluginKrHvcP2 {

namespace {

Q_LOGGING_CATEGORY(krhvcLog, "krhvcp2.log", QtWarningMsg)

constexpr qint64 StaleLockAgeMs = 30000;
constexpr int WaitTurnMs = 20;
constexpr std::size_t MaxPendingRecords = 1000;
constexpr qint64 MaxPendingBytes = 1 << 20;

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

/// The lock file is truncated when it is taken; a link could make us empty somebody's file.
bool mayTruncate(const QString &path)
{
    return !QFileInfo(path).isSymLink() && isFileOrAbsent(path);
}

/// Lets the calling thread's events run for one turn.
void waitOneTurn()
{
    QElapsedTimer turn;
    turn.start();
    // Without an application timers do not run, and the loop would never come back.
    if (QCoreApplication::instance() != nullptr && !QCoreApplication::closingDown()) {
        QEventLoop loop;
        QTimer::singleShot(WaitTurnMs, &loop, &QEventLoop::quit);
        loop.exec();
    }
    // Once quit() has been called, new loops return at once: do not spin.
    const qint64 rest = WaitTurnMs - turn.elapsed();
    if (rest > 0)
        QThread::msleep(static_cast<unsigned long>(rest));
}

} // namespace

QMap<int, QString> defaultLevelNames()
{
    return {
        {NoLogging, QStringLiteral("NoLogging")},
        {Critical, QStringLiteral("Critical")},
        {Error, QStringLiteral("Error")},
        {Warning, QStringLiteral("Warning")},
        {Notice, QStringLiteral("Notice")},
        {Information, QStringLiteral("Information")},
    };
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
    const LogSettings current = settings();
    if (level > current.maxLevel)
        return true;

    if (m_mutex.isHeldByCurrentThread()) {
        keepForLater(message, level);
        return true;
    }

    // One deadline for both waits, so that a caller behind a waiting thread is not held twice.
    const QDeadlineTimer deadline(qMax(0, timeoutMs));
    if (!m_mutex.tryLock(static_cast<int>(deadline.remainingTime())))
        return false;
    const std::unique_lock<OwnedMutex> lock(m_mutex, std::adopt_lock);

    const bool written = writeLocked(current, {message, level}, deadline);
    dropPending();
    return written;
}

bool PluginLogger::writeError(const QString &message)
{
    return write(message, Error, DefaultTimeoutMs);
}

bool PluginLogger::writeCritical(const QString &message)
{
    return write(message, Critical, DefaultTimeoutMs);
}

void PluginLogger::keepForLater(const QString &message, int level)
{
    m_pending.push_back({message, level});
    m_pendingBytes += byteSize(message);
    while (m_pending.size() > MaxPendingRecords
        || (m_pendingBytes > MaxPendingBytes && m_pending.size() > 1)) {
        m_pendingBytes -= byteSize(m_pending.front().message);
        m_pending.pop_front();
        ++m_droppedRecords;
    }
}

void PluginLogger::dropPending()
{
    m_droppedRecords += m_pending.size();
    m_pending.clear();
    m_pendingBytes = 0;
    if (m_droppedRecords > 0)
        qCDebug(krhvcLog, "%llu log records were lost", m_droppedRecords);
    m_droppedRecords = 0;
}

bool PluginLogger::writeLocked(
    const LogSettings &settings, const PendingRecord &first, const QDeadlineTimer &deadline)
{
    QDir directory(settings.directory);
    if (!directory.exists()) {
        if (!directory.mkpath(directory.absolutePath()))
            return false;
        directory.refresh();
    }

    const QString lockPath = directory.absoluteFilePath(LogFormat::lockFileName(settings.baseName));
    if (!takeLockFile(lockPath, deadline))
        return false;

    cleanUpDaily(settings);
    const bool written = appendRecord(settings, directory, first);
    if (written) {
        // Nothing from here on runs an event loop, so the queue does not grow under our hands.
        std::deque<PendingRecord> pending;
        pending.swap(m_pending);
        m_pendingBytes = 0;
        for (const PendingRecord &record : pending) {
            if (!appendRecord(settings, directory, record))
                ++m_droppedRecords;
        }
    }

    QFile::remove(lockPath);
    return written;
}

bool PluginLogger::appendRecord(
    const LogSettings &settings, const QDir &directory, const PendingRecord &record) const
{
    const QDateTime now = m_clock();
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

bool PluginLogger::takeLockFile(const QString &path, const QDeadlineTimer &deadline) const
{
    if (!mayTruncate(path))
        return false;

    const QFileInfo info(path);
    if (info.exists() && info.lastModified().msecsTo(m_clock()) <= StaleLockAgeMs) {
        while (QFileInfo::exists(path)) {
            if (deadline.hasExpired())
                return false;
            waitOneTurn();
        }
        if (!mayTruncate(path))
            return false;
    }

    QFile lockFile(path);
    return lockFile.open(QIODevice::WriteOnly);
}

void PluginLogger::cleanUpDaily(const LogSettings &settings)
{
    QDir directory(settings.directory);
    if (settings.directory.isEmpty() || !directory.exists())
        return;

    const QDateTime now = m_clock();
    if (m_lastCleanup.isValid() && m_lastCleanup.date() == now.date())
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

} // namespace PluginKrHvcP2
