#include "tools/analysis/Totals.h"

#include "detection/Determination.h"
#include "detection/SensorOutputParser.h"
#include "tools/analysis/ReportText.h"

#include <algorithm>

namespace Analysis {

using namespace PluginKrHvcP2;

namespace {

constexpr qint64 MsPerHour = 3600000;
constexpr qint64 MsPerDay = HoursOfDay * MsPerHour;
constexpr int UnknownAge = -1;
constexpr int FirstWeekday = 3; // 1 January 1970 was a Thursday

/// Milliseconds since 1970 as the clock on the wall has them.
qint64 localMs(const QDateTime &time)
{
    return time.toMSecsSinceEpoch() + qint64{time.offsetFromUtc()} * 1000;
}

qint64 dayNumberOf(qint64 localMs)
{
    return localMs >= 0 ? localMs / MsPerDay : (localMs + 1) / MsPerDay - 1;
}

void count(const FaceResult &face, Audience &audience)
{
    ++faceCount(audience, face.gender ? face.gender->value : UnknownGender,
        face.age ? face.age->value : UnknownAge);
}

void add(const Audience &from, Audience *to)
{
    for (std::size_t gender = 0; gender < from.size(); ++gender) {
        for (std::size_t band = 0; band < AgeBands; ++band)
            to->at(gender).at(band) += from.at(gender).at(band);
    }
}

} // namespace

Audience Totals::audience() const
{
    Audience all = untimedFaces;
    for (const Audience &hour : facesByHour)
        add(hour, &all);
    return all;
}

TotalsCounter::TotalsCounter(const std::optional<Plan> &plan, qint64 silenceMs)
    : m_silenceMs(silenceMs)
    , m_day(&m_noDay)
{
    if (!plan)
        return;
    m_contents = plan->contents;
    m_decider.emplace(*plan);
    m_totals.unmatched = Audience();
}

void TotalsCounter::add(const Entry &entry)
{
    takeTime(entry);
    switch (entry.kind) {
    case Entry::Unknown:
        ++m_totals.unreadable;
        break;
    case Entry::Frame:
        addFrame(entry);
        break;
    case Entry::Determined:
        for (const int number : entry.numbers)
            addDetermined(number, entry.time);
        break;
    case Entry::Restricted:
        addRestricted(entry.number, entry.time);
        break;
    case Entry::Started:
        ++m_totals.starts;
        m_totals.restarts += m_isRunning ? 1 : 0;
        m_isRunning = true;
        break;
    case Entry::Stopped:
        ++m_totals.stops;
        m_isRunning = false;
        m_isStopped = true;
        break;
    case Entry::Error:
        ++m_totals.errors;
        count(m_totals.errorMessages[entry.text.left(Totals::MaxMessageLength)], entry.time);
        break;
    }
}

void TotalsCounter::takeTime(const Entry &entry)
{
    if (entry.time.isNull()) {
        m_hour = m_weekday = -1;
        m_dayNumber = -1;
        m_day = &m_noDay;
        return;
    }
    const qint64 ms = localMs(entry.time);
    const qint64 day = dayNumberOf(ms);
    m_hour = static_cast<int>((ms - day * MsPerDay) / MsPerHour);
    if (m_day == &m_noDay || day != m_dayNumber) {
        m_dayNumber = day;
        m_weekday = static_cast<int>(((day + FirstWeekday) % DaysOfWeek + DaysOfWeek) % DaysOfWeek);
        m_day = &m_totals.days[entry.time.date()];
    }
    if (m_totals.first.isNull())
        m_totals.first = entry.time;
    m_totals.last = entry.time;
    m_totals.timeToleranceMs = std::max(m_totals.timeToleranceMs, entry.timeToleranceMs);
}

void TotalsCounter::addFrame(const Entry &entry)
{
    const qint64 faces = m_totals.faces;
    addSilence(entry);
    ++m_totals.frames;
    ++m_day->frames;
    const bool isRecorded = entry.isRecorded();
    m_totals.recordedFrames += isRecorded ? 1 : 0;
    if (m_decider && isRecorded) {
        addDecidedFrame(entry);
    } else {
        const SensorFrame frame = SensorOutputParser::parseUnseen(entry.text, entry.time);
        for (const FaceResult &face : frame.faces)
            addFace(face, !m_decider || matchContent(face, m_contents).isValid());
        if (frame.errorSeen)
            addSensorErrors(entry);
    }
    m_totals.framesWithFaces += m_totals.faces > faces ? 1 : 0;
}

void TotalsCounter::addDecidedFrame(const Entry &entry)
{
    const Decision decision = m_decider->decide(entry.text, entry.time);
    for (const DecidedFace &decided : decision.faces) {
        addFace(decided.face, decided.outcome != DecidedFace::NothingFits);
        if (decided.outcome == DecidedFace::Sent || decided.outcome == DecidedFace::Restricted)
            addDetermined(decided.sequence, entry.time);
        if (decided.outcome == DecidedFace::Restricted)
            addRestricted(decided.sequence, entry.time);
    }
    if (decision.errorSeen)
        addSensorErrors(entry);
}

void TotalsCounter::addFace(const FaceResult &face, bool isMatched)
{
    ++m_totals.faces;
    ++m_day->faces;
    if (m_hour >= 0) {
        const auto hour = static_cast<std::size_t>(m_hour);
        Analysis::count(face, m_totals.facesByHour.at(hour));
        ++m_totals.facesByWeekday.at(static_cast<std::size_t>(m_weekday)).at(hour);
    } else {
        Analysis::count(face, m_totals.untimedFaces);
    }
    if (!isMatched)
        Analysis::count(face, *m_totals.unmatched);
}

void TotalsCounter::addSensorErrors(const Entry &entry)
{
    const QStringList failures = failuresIn(entry.text);
    for (const QString &line : failures) {
        ++m_totals.sensorErrors;
        ++m_day->sensorErrors;
        count(m_totals.sensorErrorMessages[line.left(Totals::MaxMessageLength)], entry.time);
    }
}

void TotalsCounter::addSilence(const Entry &frame)
{
    const bool isStopped = m_isStopped;
    m_isStopped = false;
    if (frame.time.isNull())
        return;
    const Silence silence{m_lastFrame, frame.time, isStopped};
    m_lastFrame = frame.time;
    if (!silence.from.isNull() && silence.ms() > m_silenceMs)
        m_totals.silences.add(silence);
}

void TotalsCounter::addDetermined(int number, const QDateTime &time)
{
    ++m_totals.determined;
    ++m_day->determined;
    count(m_totals.determinedSequences[number], time);
}

void TotalsCounter::addRestricted(int number, const QDateTime &time)
{
    ++m_totals.restricted;
    ++m_day->restricted;
    count(m_totals.restrictedSequences[number], time);
}

void TotalsCounter::count(Tally &tally, const QDateTime &time) const
{
    ++tally.count;
    if (m_hour < 0)
        return;
    ++tally.hours.at(static_cast<std::size_t>(m_hour));
    if (tally.first.isNull())
        tally.first = time;
    tally.last = time;
}

} // namespace Analysis
