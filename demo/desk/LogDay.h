#pragma once

#include "demo/desk/SeenFrame.h"
#include "demo/desk/TimelineModel.h"
#include "tools/analysis/Plan.h"
#include "tools/analysis/Replay.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVector>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace Analysis {
class EntrySource;
} // namespace Analysis

namespace Desk {

/// What a log tells beside its frames: decisions, restrictions, the sensor program, and text that
/// cannot be read.
struct LogRecord
{
    qint64 frame = 0; ///< number of the frame before it; 0: there is none
    Analysis::Entry entry;
};

/// Frames of a log that lie behind each other, and what it tells between them.
struct LogPage
{
    QVector<SeenFrame> frames; ///< never empty
    QVector<LogRecord> records;

    bool contains(qint64 number) const
    {
        return number >= frames.first().number && number <= frames.last().number;
    }
};

/// A day of the plug-in's log, with what a plan makes of each frame as if all of them had come to
/// it one after another.
///
/// Read once, in pieces, it keeps times and places; what is looked at is read again. Frames are
/// counted from 1. When the clock was set back, what came later lies behind what came before all
/// the same.
class LogDay
{
    Q_DECLARE_TR_FUNCTIONS(LogDay)

public:
    static constexpr int FramesOfPage = 128;
    static constexpr int NamedProblems = 10;
    static constexpr qint64 StripMs = 300000; ///< as far the timeline moves at once

    /// Why @p fileName is no log, "file: reason" or "file:line: reason"; empty when it is one.
    static QString objection(const QString &fileName);
    /// Null with the objection in @p error.
    static std::unique_ptr<LogDay> open(
        const QString &fileName, const Analysis::Plan &plan, QString *error);
    ~LogDay();

    const QString &fileName() const { return m_fileName; } ///< absolute

    /// Reads the next @p entries of the file. False when that was the last of them.
    bool read(int entries);
    bool isRead() const { return !m_source; } ///< to its end
    int percentRead() const;
    /// The first places that could not be read, "file:line: reason", and how many there are.
    const QStringList &problems() const { return m_problems; }
    qint64 problemCount() const { return m_problemCount; }

    // Of what was read so far. Numbers are those of frames that are there.
    qint64 count() const { return static_cast<qint64>(m_frames.size()); }
    QDateTime time(qint64 number) const; ///< as the clock on the wall had it, in UTC's place
    qint64 passedMs(qint64 number) const { return at(number).passedMs; } ///< since the first frame
    qint64 lengthMs() const { return m_frames.empty() ? 0 : m_frames.back().passedMs; }
    int playing(qint64 number) const { return at(number).playing; } ///< sequence; 0: not known
    /// The last ten minutes before the frame, and up to StripMs behind it.
    const TimelineModel &timeline(qint64 number) const;

    /// The last frame up to then, or else the first one; 0 when there are none.
    qint64 frameAt(qint64 passedMs) const;
    /// The first frame of that time of day or later, or else the last one; 0 when there are none.
    qint64 frameAtTime(const QTime &time) const;
    /// The frame nearest to a moment of which a frame's decision told; 0 when there are none.
    qint64 frameAtMoment(const QDateTime &moment) const;

    /// Null, with "file: reason" in @p error, when the file is not any more what was read.
    std::shared_ptr<const LogPage> page(qint64 number, QString *error);
    std::optional<SeenFrame> frame(qint64 number, QString *error); ///< nothing likewise

private:
    /// What is kept of each frame.
    struct Mark
    {
        qint64 passedMs = 0;
        qint64 clockMs = 0; // on the wall
        int playing = 0;
    };

    /// Where frames can be read again from, and what the plug-in knew by then.
    struct Start
    {
        Analysis::Position position;
        Analysis::Replay replay;
    };

    struct Strip
    {
        qint64 lastFrame = 0;
        TimelineModel model;
    };

    LogDay(std::unique_ptr<Analysis::EntrySource> source, const QString &fileName,
        const Analysis::Plan &plan);
    Q_DISABLE_COPY(LogDay)

    const Mark &at(qint64 number) const { return m_frames.at(static_cast<size_t>(number - 1)); }
    void take(const Analysis::Entry &entry);
    void takeProblem(const Analysis::Entry &entry);
    void append(const Analysis::ReplayedFrame &frame);
    qint64 passedAt(const QDateTime &time);
    void spreadLastSecond();
    std::shared_ptr<const LogPage> readPage(size_t index, QString *error) const;

    QString m_fileName;
    std::unique_ptr<Analysis::EntrySource> m_source; // until it was read
    Analysis::Replay m_replay;
    TimelineModel m_timeline;
    qint64 m_begun = 0; // frames, the last of which may wait for its decision
    qint64 m_clockLeadMs = 0; // of the clock, before the time that has passed
    int m_playing = 0;

    std::vector<Mark> m_frames;
    std::vector<Start> m_pageStarts; // by page
    std::vector<Strip> m_strips; // but for the last one
    std::deque<std::shared_ptr<const LogPage>> m_pages; // looked at last, newest first
    QStringList m_problems;
    qint64 m_problemCount = 0;
};

} // namespace Desk
