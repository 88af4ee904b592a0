#pragma once

#include "core/screen/DetectionContent.h"
#include "detection/FaceResult.h"
#include "tools/analysis/Audience.h"
#include "tools/analysis/Decider.h"
#include "tools/analysis/Entry.h"
#include "tools/analysis/Silence.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QVector>

#include <array>
#include <map>
#include <optional>

namespace Analysis {

constexpr int HoursOfDay = 24;
constexpr int DaysOfWeek = 7; ///< Monday is the first

/// How often something happened.
struct Tally
{
    qint64 count = 0;
    std::array<qint64, HoursOfDay> hours{}; ///< by local hour, as far as there is a time
    QDateTime first;
    QDateTime last;
};

/// Values by key, for a limited number of keys: all that come later share one value.
template <typename Key, typename Value, std::size_t Limit>
class BoundedMap
{
public:
    Value &operator[](const Key &key)
    {
        const auto found = m_values.find(key);
        if (found != m_values.end())
            return found->second;
        return m_values.size() < Limit ? m_values[key] : m_others;
    }

    Value value(const Key &key) const
    {
        const auto found = m_values.find(key);
        return found == m_values.end() ? Value() : found->second;
    }

    const std::map<Key, Value> &values() const { return m_values; }
    const Value &others() const { return m_others; } ///< what the later keys share

private:
    std::map<Key, Value> m_values;
    Value m_others;
};

/// What one day had.
struct DayTotals
{
    qint64 frames = 0;
    qint64 faces = 0;
    qint64 determined = 0;
    qint64 restricted = 0;
    qint64 sensorErrors = 0;
};

/// What logs and recordings come to. Hours and days are those of the source's local time.
///
/// Its size has a limit: messages are cut, and of keys beyond a BoundedMap's limit the sum is kept.
struct Totals
{
    static constexpr int MaxMessageLength = 200; ///< characters

    using Sequences = BoundedMap<int, Tally, 1000>; ///< by number
    using Messages = BoundedMap<QString, Tally, 50>;

    qint64 frames = 0;
    qint64 framesWithFaces = 0;
    qint64 recordedFrames = 0; ///< those that come from recordings
    qint64 faces = 0; ///< a face counts in each of its frames
    std::array<Audience, HoursOfDay> facesByHour{};
    Audience untimedFaces{}; ///< those of frames without a time
    std::array<std::array<qint64, HoursOfDay>, DaysOfWeek> facesByWeekday{};

    qint64 determined = 0;
    qint64 restricted = 0;
    Sequences determinedSequences;
    Sequences restrictedSequences;

    qint64 sensorErrors = 0; ///< lines in which the sensor program reports a failure
    Messages sensorErrorMessages;
    qint64 errors = 0; ///< of the plug-in's own
    Messages errorMessages;

    qint64 starts = 0; ///< of the sensor program
    qint64 stops = 0; ///< likewise
    qint64 restarts = 0; ///< starts without a stop since the start before
    Silences silences;

    /// With a plan: whom no content fits.
    std::optional<Audience> unmatched;

    BoundedMap<QDate, DayTotals, 1000> days;
    QDateTime first; ///< of all entries
    QDateTime last; ///< likewise
    int timeToleranceMs = 0; ///< of the entry with the largest one
    qint64 unreadable = 0; ///< places

    Audience audience() const; ///< all faces
};

/// Counts what entries tell.
///
/// A log says what was determined and restricted; for a recording it is decided by the plan, and
/// without one nothing is.
class TotalsCounter
{
public:
    /// More than @p silenceMs between two frames is a silence.
    explicit TotalsCounter(
        const std::optional<Plan> &plan = {}, qint64 silenceMs = LongestFrameGapMs);

    void add(const Entry &entry);
    const Totals &totals() const { return m_totals; }

private:
    Q_DISABLE_COPY(TotalsCounter)

    void takeTime(const Entry &entry);
    void addFrame(const Entry &entry);
    void addDecidedFrame(const Entry &entry);
    void addFace(const PluginKrHvcP2::FaceResult &face, bool isMatched);
    void addSensorErrors(const Entry &entry);
    void addSilence(const Entry &frame);
    void addDetermined(int number, const QDateTime &time);
    void addRestricted(int number, const QDateTime &time);
    void count(Tally &tally, const QDateTime &time) const;

    Totals m_totals;
    PluginKrHvcP2::DetectionContents m_contents;
    std::optional<Decider> m_decider; // with a plan
    qint64 m_silenceMs;

    // Of the entry at hand; -1: it has no time.
    int m_hour = -1;
    int m_weekday = -1;
    qint64 m_dayNumber = -1;
    DayTotals *m_day; // where its day is counted; never null

    DayTotals m_noDay; // of entries without a time
    QDateTime m_lastFrame;
    bool m_isStopped = false; // since the last frame
    bool m_isRunning = false; // started, and not stopped since
};

} // namespace Analysis
