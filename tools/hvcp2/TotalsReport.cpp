#include "tools/hvcp2/TotalsReport.h"

#include "tools/analysis/Coverage.h"
#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/CoverageReport.h"
#include "tools/hvcp2/Words.h"

#include <QJsonArray>
#include <QLocale>

#include <algorithm>
#include <set>

namespace Hvcp2 {

using namespace Analysis;

namespace {

constexpr int ListedInText = 10; // the terminal is for the first look
constexpr int MessageColumns = 40;

QJsonValue jsonOf(qint64 number)
{
    return {static_cast<double>(number)};
}

QJsonValue jsonOf(const QDateTime &time, const Report &report)
{
    return timeJson(time, report.totals.timeToleranceMs);
}

QJsonArray jsonOf(const std::array<qint64, HoursOfDay> &hours)
{
    QJsonArray array;
    for (const qint64 count : hours)
        array.append(jsonOf(count));
    return array;
}

QJsonValue shareJson(qint64 part, qint64 whole)
{
    if (whole == 0)
        return {};
    return static_cast<double>(part) / static_cast<double>(whole);
}

/// By gender, and in it by age band.
QJsonObject jsonOf(const Audience &audience)
{
    QJsonObject genders;
    for (std::size_t gender = 0; gender < CoveredGenders.size(); ++gender) {
        QJsonObject bands;
        for (std::size_t band = 0; band < AgeBands; ++band)
            bands.insert(bandKey(static_cast<int>(band)), jsonOf(audience.at(gender).at(band)));
        genders.insert(genderWord(CoveredGenders.at(gender)), bands);
    }
    return genders;
}

QJsonObject countsJson(const Totals::Sequences &sequences)
{
    QJsonObject counts;
    for (const auto &[number, tally] : sequences.values())
        counts.insert(QString::number(number), jsonOf(tally.count));
    return counts;
}

QJsonArray sequencesJson(const Report &report)
{
    QJsonArray array;
    const QVector<ReportedSequence> sequences = reportedSequences(report);
    for (const ReportedSequence &sequence : sequences) {
        array.append(QJsonObject{
            {QStringLiteral("number"), sequence.number},
            {QStringLiteral("name"),
                report.plan ? QJsonValue(report.plan->name(sequence.number)) : QJsonValue()},
            {QStringLiteral("determined"), jsonOf(sequence.determined.count)},
            {QStringLiteral("restricted"), jsonOf(sequence.restricted.count)},
            {QStringLiteral("heldBackShare"),
                shareJson(sequence.restricted.count, sequence.determined.count)},
            {QStringLiteral("determinedByHour"), jsonOf(sequence.determined.hours)},
            {QStringLiteral("restrictedByHour"), jsonOf(sequence.restricted.hours)},
        });
    }
    return array;
}

QJsonObject messageJson(const Report &report, const QJsonValue &message, const Tally &tally)
{
    return {{QStringLiteral("message"), message}, {QStringLiteral("count"), jsonOf(tally.count)},
        {QStringLiteral("byHour"), jsonOf(tally.hours)},
        {QStringLiteral("first"), jsonOf(tally.first, report)},
        {QStringLiteral("last"), jsonOf(tally.last, report)}};
}

/// The sum of those that had no room is the last one, without a message.
QJsonArray messagesJson(const Report &report, const Totals::Messages &messages)
{
    QJsonArray array;
    for (const auto &[message, tally] : messages.values())
        array.append(messageJson(report, message, tally));
    if (messages.others().count > 0)
        array.append(messageJson(report, QJsonValue(), messages.others()));
    return array;
}

QJsonObject silencesJson(const Report &report)
{
    const Silences &silences = report.totals.silences;
    QJsonArray longest;
    for (const Silence &silence : silences.longest) {
        longest.append(QJsonObject{{QStringLiteral("from"), jsonOf(silence.from, report)},
            {QStringLiteral("to"), jsonOf(silence.to, report)},
            {QStringLiteral("ms"), jsonOf(silence.ms())},
            {QStringLiteral("stopped"), silence.isStopped}});
    }
    return {{QStringLiteral("longerThanMs"), jsonOf(report.silenceMs)},
        {QStringLiteral("count"), jsonOf(silences.count)},
        {QStringLiteral("ms"), jsonOf(silences.ms)}, {QStringLiteral("longest"), longest}};
}

QJsonObject dayJson(const QJsonValue &date, const DayTotals &day)
{
    return {{QStringLiteral("date"), date}, {QStringLiteral("frames"), jsonOf(day.frames)},
        {QStringLiteral("faces"), jsonOf(day.faces)},
        {QStringLiteral("determined"), jsonOf(day.determined)},
        {QStringLiteral("restricted"), jsonOf(day.restricted)},
        {QStringLiteral("sensorErrors"), jsonOf(day.sensorErrors)}};
}

/// As messagesJson().
QJsonArray daysJson(const Totals &totals)
{
    QJsonArray array;
    for (const auto &[date, day] : totals.days.values())
        array.append(dayJson(date.toString(Qt::ISODate), day));
    const DayTotals &others = totals.days.others();
    if (others.frames > 0 || others.determined > 0 || others.restricted > 0)
        array.append(dayJson(QJsonValue(), others));
    return array;
}

QJsonObject totalsJson(const Report &report)
{
    const Totals &totals = report.totals;
    const Audience audience = totals.audience();
    QJsonArray hours;
    for (const Audience &hour : totals.facesByHour)
        hours.append(jsonOf(hour));
    QJsonArray weekdays;
    for (const auto &day : totals.facesByWeekday)
        weekdays.append(jsonOf(day));
    return {
        {QStringLiteral("first"), jsonOf(totals.first, report)},
        {QStringLiteral("last"), jsonOf(totals.last, report)},
        {QStringLiteral("frames"), jsonOf(totals.frames)},
        {QStringLiteral("framesWithFaces"), jsonOf(totals.framesWithFaces)},
        {QStringLiteral("faces"), jsonOf(totals.faces)},
        {QStringLiteral("female"), jsonOf(sumOf(audience, PluginKrHvcP2::Female))},
        {QStringLiteral("male"), jsonOf(sumOf(audience, PluginKrHvcP2::Male))},
        {QStringLiteral("unknownGender"), jsonOf(sumOf(audience, PluginKrHvcP2::UnknownGender))},
        {QStringLiteral("facesByAge"), jsonOf(audience)},
        {QStringLiteral("facesByHour"), hours},
        {QStringLiteral("facesByWeekday"), weekdays},
        {QStringLiteral("determined"), countsJson(totals.determinedSequences)},
        {QStringLiteral("restricted"), countsJson(totals.restrictedSequences)},
        {QStringLiteral("allDetermined"), jsonOf(totals.determined)},
        {QStringLiteral("allRestricted"), jsonOf(totals.restricted)},
        {QStringLiteral("heldBackShare"), shareJson(totals.restricted, totals.determined)},
        {QStringLiteral("sequences"), sequencesJson(report)},
        {QStringLiteral("unmatched"),
            totals.unmatched ? jsonOf(sumOf(*totals.unmatched)) : QJsonValue()},
        {QStringLiteral("unmatchedByAge"),
            totals.unmatched ? QJsonValue(jsonOf(*totals.unmatched)) : QJsonValue()},
        {QStringLiteral("sensorErrors"), jsonOf(totals.sensorErrors)},
        {QStringLiteral("sensorErrorMessages"), messagesJson(report, totals.sensorErrorMessages)},
        {QStringLiteral("errors"), jsonOf(totals.errors)},
        {QStringLiteral("errorMessages"), messagesJson(report, totals.errorMessages)},
        {QStringLiteral("starts"), jsonOf(totals.starts)},
        {QStringLiteral("stops"), jsonOf(totals.stops)},
        {QStringLiteral("restarts"), jsonOf(totals.restarts)},
        {QStringLiteral("silences"), silencesJson(report)},
        {QStringLiteral("days"), daysJson(totals)},
        {QStringLiteral("unreadable"), jsonOf(totals.unreadable)},
    };
}

QString line(const QString &label, const QString &value)
{
    return QLatin1String("  ") + label.leftJustified(18) + value + QLatin1Char('\n');
}

QString line(const QString &label, qint64 number, const QString &more = {})
{
    return line(label, QString::number(number).rightJustified(10) + more);
}

QString shareText(qint64 part, qint64 whole)
{
    return QLatin1String("  ") + shareWord(part, whole).rightJustified(7);
}

QString headingText(const Report &report, const Paint &paint)
{
    const Totals &totals = report.totals;
    QString text = totals.first.isNull()
        ? QStringLiteral("No times")
        : QStringLiteral("%1 to %2")
              .arg(reportTime(report, totals.first), reportTime(report, totals.last));
    text = paint.heading(text) + QLatin1Char('\n');
    if (report.plan)
        text += paint.heading(screenWord(*report.plan)) + QLatin1Char('\n');
    return text;
}

QString figuresText(const Report &report)
{
    const Totals &totals = report.totals;
    const Audience audience = totals.audience();
    QString text = line(QStringLiteral("Frames"), totals.frames)
        + line(QStringLiteral("  with faces"), totals.framesWithFaces,
            shareText(totals.framesWithFaces, totals.frames))
        + line(QStringLiteral("Faces"), totals.faces);
    for (const PluginKrHvcP2::Gender gender : CoveredGenders) {
        const qint64 faces = sumOf(audience, gender);
        text += line(
            QLatin1String("  ") + genderWord(gender), faces, shareText(faces, totals.faces));
    }
    if (totals.unmatched) {
        const qint64 faces = sumOf(*totals.unmatched);
        text += line(QStringLiteral("No content fits"), faces, shareText(faces, totals.faces));
    }
    text += line(QStringLiteral("Determined"), totals.determined)
        + line(QStringLiteral("  held back"), totals.restricted,
            shareText(totals.restricted, totals.determined))
        + line(QStringLiteral("Sensor errors"), totals.sensorErrors)
        + line(QStringLiteral("Plug-in errors"), totals.errors)
        + line(QStringLiteral("Starts"), totals.starts)
        + line(QStringLiteral("  without a stop"), totals.restarts)
        + line(QStringLiteral("Stops"), totals.stops)
        + line(QStringLiteral("Silent times"), totals.silences.count,
            totals.silences.count == 0 ? QString()
                                       : QLatin1String("  ") + durationWord(totals.silences.ms))
        + line(QStringLiteral("Unreadable places"), totals.unreadable);
    return text;
}

/// A row for each audience that has faces.
class AudienceTable
{
public:
    explicit AudienceTable(const QString &heading)
    {
        QStringList cells{heading};
        for (const PluginKrHvcP2::Gender gender : CoveredGenders) {
            m_table.alignRight(cells.size());
            cells << genderWord(gender);
        }
        m_table.alignRight(cells.size());
        m_table.addRow(cells << QStringLiteral("all"));
    }

    void addRow(const QString &label, const std::array<qint64, CoveredGenders.size()> &faces)
    {
        qint64 all = 0;
        QStringList cells{label};
        for (const qint64 count : faces) {
            all += count;
            cells << QString::number(count);
        }
        if (all > 0)
            m_table.addRow(cells << QString::number(all));
    }

    QString toText(const Paint &paint) const { return m_table.toText(paint); }

private:
    TextTable m_table;
};

QString hoursText(const Totals &totals, const Paint &paint)
{
    AudienceTable table(QStringLiteral("Faces by hour"));
    for (int hour = 0; hour < HoursOfDay; ++hour) {
        const Audience &audience = totals.facesByHour.at(static_cast<std::size_t>(hour));
        table.addRow(hourWord(hour),
            {sumOf(audience, CoveredGenders[0]), sumOf(audience, CoveredGenders[1]),
                sumOf(audience, CoveredGenders[2])});
    }
    return table.toText(paint);
}

QString agesText(const Totals &totals, const Paint &paint)
{
    AudienceTable table(QStringLiteral("Faces by age"));
    const Audience audience = totals.audience();
    for (std::size_t band = 0; band < AgeBands; ++band) {
        table.addRow(bandWord(static_cast<int>(band)),
            {audience[0].at(band), audience[1].at(band), audience[2].at(band)});
    }
    return table.toText(paint);
}

QString sequencesText(const Report &report, const Paint &paint)
{
    TextTable table;
    table.addRow({QStringLiteral("Sequence"), QStringLiteral("determined"),
        QStringLiteral("held back"), QStringLiteral("share")});
    table.limit(0, MessageColumns);
    for (int column = 1; column <= 3; ++column)
        table.alignRight(column);
    const QVector<ReportedSequence> sequences = reportedSequences(report);
    for (const ReportedSequence &sequence : sequences) {
        table.addRow({sequence.word, QString::number(sequence.determined.count),
            QString::number(sequence.restricted.count),
            shareWord(sequence.restricted.count, sequence.determined.count)});
    }
    return table.toText(paint);
}

QString messagesText(const Report &report, const QString &heading, const Totals::Messages &messages,
    const Paint &paint)
{
    TextTable table;
    table.addRow({heading, QStringLiteral("times"), QStringLiteral("last")});
    table.limit(0, MessageColumns);
    table.alignRight(1);
    for (const auto &[message, tally] : messages.values()) {
        table.addRow(
            {printable(message), QString::number(tally.count), reportTime(report, tally.last)});
    }
    if (messages.others().count > 0) {
        table.addRow({QStringLiteral("others"), QString::number(messages.others().count),
            reportTime(report, messages.others().last)});
    }
    return table.toText(paint);
}

QString silencesText(const Report &report, const Paint &paint)
{
    QVector<Silence> longest = report.totals.silences.longest;
    std::stable_sort(longest.begin(), longest.end(),
        [](const Silence &a, const Silence &b) { return a.ms() > b.ms(); });
    TextTable table;
    table.addRow(
        {QStringLiteral("Longest silent times"), QStringLiteral("without frames"), QString()});
    table.alignRight(1);
    for (int i = 0; i < qMin(longest.size(), ListedInText); ++i) {
        const Silence &silence = longest.at(i);
        table.addRow({reportTime(report, silence.from), durationWord(silence.ms()),
            silence.isStopped ? QStringLiteral("stopped") : QString()});
    }
    return table.toText(paint);
}

QString notesText(const Report &report, const Paint &paint)
{
    QString text
        = paint.heading(QStringLiteral("What these figures cannot tell:")) + QLatin1Char('\n');
    const QStringList notes = reportNotes(report);
    for (const QString &note : notes)
        text += QLatin1String("- ") + wrapped(note, 2).mid(2);
    return text;
}

} // namespace

QVector<ReportedSequence> reportedSequences(const Report &report)
{
    const Totals &totals = report.totals;
    std::set<int> numbers;
    for (const auto &[number, tally] : totals.determinedSequences.values())
        numbers.insert(number);
    for (const auto &[number, tally] : totals.restrictedSequences.values())
        numbers.insert(number);
    if (report.plan) {
        for (const PluginKrHvcP2::DetectionContent &content : report.plan->contents)
            numbers.insert(content.sequenceNumber);
    }
    QVector<ReportedSequence> sequences;
    for (const int number : numbers) {
        const QString word = report.plan ? contentWord(*report.plan, number)
                                         : QLatin1Char('#') + QString::number(number);
        sequences.append({number, word, totals.determinedSequences.value(number),
            totals.restrictedSequences.value(number)});
    }
    return sequences;
}

QString bandKey(int band)
{
    if (band == UnknownAgeBand)
        return QStringLiteral("unknown");
    const AgeRange ages = agesOfBand(band);
    return band == UnknownAgeBand - 1 ? QString::number(ages.from) + QLatin1Char('+')
                                      : agesWord(ages);
}

QString bandStart(int band)
{
    return band == UnknownAgeBand ? bandKey(band) : QString::number(agesOfBand(band).from);
}

QString bandWord(int band)
{
    return band == UnknownAgeBand - 1 ? QStringLiteral("%1 and over").arg(agesOfBand(band).from)
                                      : bandKey(band);
}

QString hourWord(int hour)
{
    return twoDigits(hour) + QLatin1String(":00");
}

QString weekdayWord(int day)
{
    return QLocale::c().dayName(day + 1);
}

QString shareWord(qint64 part, qint64 whole)
{
    if (whole == 0)
        return QStringLiteral("-");
    const double percent = 100.0 * static_cast<double>(part) / static_cast<double>(whole);
    return QString::number(percent, 'f', 1) + QLatin1String(" %");
}

QString reportTime(const Report &report, const QDateTime &time)
{
    return timeWord(time, report.totals.timeToleranceMs);
}

QStringList reportNotes(const Report &report)
{
    const Totals &totals = report.totals;
    const bool hasLog = totals.timeToleranceMs > 0;
    const bool hasRecording = totals.recordedFrames > 0;
    QStringList notes{
        QStringLiteral("How many people there were: a face counts in each frame in which it is "
                       "seen, and the sensor does not follow a person from frame to frame. Who "
                       "stays longer counts more often. Faces are not visitors."),
        QStringLiteral("How old they are and which gender they have: both are guesses of the "
                       "sensor, which may change from one frame to the next. A face without a "
                       "guess is among the unknown ones."),
        QStringLiteral("Whether anybody looked at the screen, and whether it showed what was "
                       "requested: a determined sequence is a request to the host, less those "
                       "that were held back because it had been started too recently."),
        QStringLiteral("Why there was a silent time: the shop may have been closed, the screen "
                       "switched off or the sensor unplugged. Before the first frame and behind "
                       "the last one nothing is known."),
    };
    if (hasLog) {
        notes << QStringLiteral("What happened within a second: the times of logs are whole "
                                "seconds, in the local time of the screen. When the clocks are "
                                "set back, one hour of that day holds two.");
    }
    if (hasRecording && report.plan) {
        notes << QStringLiteral("What the plug-in really requested for recorded frames: a "
                                "recording does not say. It was worked out with the stage file, "
                                "as if nothing had been started before the first frame.");
    }
    if (hasRecording && !report.plan) {
        notes << QStringLiteral("What was requested for recorded frames: a recording does not "
                                "say. With a stage file it can be worked out.");
    }
    if (hasRecording) {
        notes << QStringLiteral("The local time of recorded frames: the times of recordings are "
                                "in UTC; frames without one follow each other from the year 1970 "
                                "on.");
    }
    if (hasLog && report.plan) {
        notes << QStringLiteral("Whom no content fitted at the time: that was worked out with the "
                                "stage file as it is now.");
    }
    return notes;
}

QString reportText(const Report &report, const Paint &paint)
{
    const Totals &totals = report.totals;
    const QLatin1Char blank('\n');
    QString text = headingText(report, paint) + blank + figuresText(report) + blank;
    if (totals.faces > 0)
        text += hoursText(totals, paint) + blank + agesText(totals, paint) + blank;
    if (totals.determined > 0 || totals.restricted > 0)
        text += sequencesText(report, paint) + blank;
    if (totals.sensorErrors > 0) {
        text += messagesText(
                    report, QStringLiteral("Sensor errors"), totals.sensorErrorMessages, paint)
            + blank;
    }
    if (totals.errors > 0) {
        text += messagesText(report, QStringLiteral("Plug-in errors"), totals.errorMessages, paint)
            + blank;
    }
    if (totals.silences.count > 0)
        text += silencesText(report, paint) + blank;
    return text + notesText(report, paint);
}

QJsonObject reportJson(const Report &report)
{
    QJsonObject document{
        {QStringLiteral("files"), QJsonArray::fromStringList(report.files)},
        {QStringLiteral("totals"), totalsJson(report)},
        {QStringLiteral("notes"), QJsonArray::fromStringList(reportNotes(report))},
    };
    if (report.plan)
        document.insert(QStringLiteral("coverage"),
            coverageJson(*report.plan, coverageOf(report.plan->contents)));
    return document;
}

} // namespace Hvcp2
