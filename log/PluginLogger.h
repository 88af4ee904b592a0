#pragma once

#include "log/LogDivision.h"
#include "log/OwnedMutex.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QMap>
#include <QString>

#include <deque>
#include <functional>
#include <optional>

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
/// thread; a write that arrives on that thread meanwhile joins the queue of the waiting one and
/// returns. Whoever gets the lock file first writes the whole queue, in the order of the calls. A
/// record's time and form are those of its writing, so that the times in a file never go back.
class PluginLogger
{
public:
    using Clock = std::function<QDateTime()>; ///< returns the current local date and time

    static PluginLogger &instance();

    explicit PluginLogger(Clock clock = &QDateTime::currentDateTime);

    LogSettings settings() const;
    void setSettings(const LogSettings &settings); ///< takes effect with the next write

    /// Writes @p message at the LogDivision @p level, waiting at most @p timeoutMs milliseconds
    /// for the lock file. True when it was written, filtered out by its level or left to the
    /// write that is waiting on this thread; false when nothing was written, also when the
    /// application ends in the wait.
    bool write(const QString &message, int level, int timeoutMs);

    /// As write(), for destructors: it runs no events, and @p timeoutMs bounds the whole call.
    bool writeWithoutEvents(const QString &message, int level, int timeoutMs);

    bool writeError(const QString &message); ///< write() at level Error
    bool writeCritical(const QString &message); ///< write() at level Critical

    /// How long every caller of ours lets a write wait, in milliseconds.
    static constexpr int DefaultTimeoutMs = 10000;

private:
    Q_DISABLE_COPY(PluginLogger)

    enum class Waiting { RunsEvents, RunsNoEvents };
    enum class Attempt { Written, Locked, Failed };

    struct Record
    {
        QString message;
        int level = 0;
        int timeoutMs = 0; // how long after its call it is still worth writing
        QElapsedTimer age; // since its call
        std::optional<bool> *outcome = nullptr; // of the call that waits for it; null: none does

        bool isExpired() const { return age.elapsed() > timeoutMs; }
    };

    bool isFiltered(int level) const;
    bool writeLocked(Record record, Waiting waiting);
    void enqueue(Record record);
    void withdraw(const std::optional<bool> *outcome);
    Record takeRecord(const std::deque<Record>::iterator &position);
    Attempt tryToWrite(QString &awaitedLock);
    void writeQueue(const LogSettings &settings, const QDir &directory, const QDateTime &now);
    static bool appendRecord(const LogSettings &settings, const QDir &directory,
        const QDateTime &now, const Record &record);
    void cleanUpDaily(const LogSettings &settings, const QDateTime &now);
    void reportLostRecords();

    const Clock m_clock;

    mutable QMutex m_settingsMutex; // guards m_settings
    LogSettings m_settings;

    OwnedMutex m_mutex; // held for a whole write; guards everything below
    QDateTime m_lastCleanup;
    std::deque<Record> m_queue; // in the order of the calls
    qint64 m_queuedBytes = 0;
    quint64 m_lostRecords = 0; // whose calls returned true; since the last report
};

} // namespace PluginKrHvcP2
