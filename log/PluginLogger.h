#pragma once

#include "log/LogDivision.h"
#include "log/OwnedMutex.h"

#include <QDateTime>
#include <QMap>
#include <QString>

#include <deque>
#include <functional>

class QDeadlineTimer;
class QDir;

namespace PluginKrHvcP2 {

/// The untranslated names of all levels, by LogDivision.
QMap<int, QString> defaultLevelNames();

/// What the log writer writes, and where.
struct LogSettings
{
    int style = 0; ///< 0: one line a record, any other value: a framed block
    int maxLevel = Information; ///< highest LogDivision that is written
    QString directory; ///< created when missing; empty: the process's current directory
    QString baseName = QStringLiteral("plugin"); ///< stem of the file names
    QString extension = QStringLiteral("txt"); ///< without dot
    int retentionDays = 30; ///< files dated earlier than this many days ago are deleted daily
    QMap<int, QString> levelNames = defaultLevelNames(); ///< text printed for each LogDivision
};

/// The process-wide log writer: one file a day, shared with other processes by a lock file.
///
/// Any thread may write. While a write waits for the lock file it spins the event loop of its
/// thread; a write that arrives on that thread meanwhile is kept and written by the waiting one,
/// behind its own record, or lost with it. A record's time is that of its writing, so that the
/// times in a file never go back.
class PluginLogger
{
public:
    using Clock = std::function<QDateTime()>; ///< returns the current local date and time

    static PluginLogger &instance();

    explicit PluginLogger(Clock clock = &QDateTime::currentDateTime);

    LogSettings settings() const;
    void setSettings(const LogSettings &settings); ///< takes effect with the next write

    /// Writes @p message at the LogDivision @p level, waiting at most @p timeoutMs milliseconds
    /// for other writers. True when it was written, filtered out by its level or kept for the
    /// write that is waiting on this thread; false when nothing was written.
    bool write(const QString &message, int level, int timeoutMs);
    bool writeError(const QString &message); ///< write() at level Error
    bool writeCritical(const QString &message); ///< write() at level Critical

    /// How long every caller of ours lets a write wait, in milliseconds.
    static constexpr int DefaultTimeoutMs = 10000;

private:
    Q_DISABLE_COPY(PluginLogger)

    struct PendingRecord
    {
        QString message;
        int level = 0;
    };

    void keepForLater(const QString &message, int level);
    void dropPending();
    bool writeLocked(
        const LogSettings &settings, const PendingRecord &first, const QDeadlineTimer &deadline);
    bool appendRecord(
        const LogSettings &settings, const QDir &directory, const PendingRecord &record) const;
    bool takeLockFile(const QString &path, const QDeadlineTimer &deadline) const;
    void cleanUpDaily(const LogSettings &settings);

    const Clock m_clock;

    mutable QMutex m_settingsMutex; // guards m_settings
    LogSettings m_settings;

    OwnedMutex m_mutex; // held for a whole write; guards everything below
    QDateTime m_lastCleanup;
    std::deque<PendingRecord> m_pending; // arrived on the thread that waits inside write()
    qint64 m_pendingBytes = 0;
    quint64 m_droppedRecords = 0;
};

} // namespace PluginKrHvcP2
