#include "tools/hvcp2/ReportCsv.h"

#include "tools/hvcp2/Csv.h"
#include "tools/hvcp2/Words.h"

#include <numeric>
#include <utility>

namespace Hvcp2 {

using namespace Analysis;

namespace {

const QString Unknown = QStringLiteral("unknown");
const QString Faces = QStringLiteral("faces");
const QString Unmatched = QStringLiteral("unmatched");
const QString Determined = QStringLiteral("determined");
const QString Restricted = QStringLiteral("restricted");
const QString SensorErrors = QStringLiteral("sensorErrors");

/// What a figure counts; what is empty is not told apart.
struct Part
{
    QString date;
    QString weekday;
    QString hour;
    QString gender;
    QString ageFrom;
    QString sequence;
    QString name; // of the sequence
};

class Figures
{
public:
    void add(const QString &figure, qint64 value, const Part &part = {})
    {
        m_table += csvLine({figure, part.date, part.weekday, part.hour, part.gender, part.ageFrom,
            part.sequence, part.name, QString::number(value)});
    }

    /// Of many parts those that have something are enough.
    void addSome(const QString &figure, qint64 value, const Part &part)
    {
        if (value != 0)
            add(figure, value, part);
    }

    const QString &table() const { return m_table; }

private:
    QString m_table
        = csvLine({QStringLiteral("figure"), QStringLiteral("date"), QStringLiteral("weekday"),
            QStringLiteral("hour"), QStringLiteral("gender"), QStringLiteral("ageFrom"),
            QStringLiteral("sequence"), QStringLiteral("name"), QStringLiteral("value")});
};

void addTotals(const Totals &totals, Figures *figures)
{
    figures->add(QStringLiteral("frames"), totals.frames);
    figures->add(QStringLiteral("framesWithFaces"), totals.framesWithFaces);
    figures->add(Faces, totals.faces);
    if (totals.unmatched)
        figures->add(Unmatched, sumOf(*totals.unmatched));
    figures->add(Determined, totals.determined);
    figures->add(Restricted, totals.restricted);
    figures->add(SensorErrors, totals.sensorErrors);
    figures->add(QStringLiteral("errors"), totals.errors);
    figures->add(QStringLiteral("starts"), totals.starts);
    figures->add(QStringLiteral("restarts"), totals.restarts);
    figures->add(QStringLiteral("stops"), totals.stops);
    figures->add(QStringLiteral("silences"), totals.silences.count);
    figures->add(QStringLiteral("silenceMs"), totals.silences.ms);
    figures->add(QStringLiteral("unreadable"), totals.unreadable);
}

void addAudience(
    const QString &figure, const QString &hour, const Audience &audience, Figures *figures)
{
    Part part;
    part.hour = hour;
    for (std::size_t gender = 0; gender < CoveredGenders.size(); ++gender) {
        part.gender = genderWord(CoveredGenders.at(gender));
        for (std::size_t band = 0; band < AgeBands; ++band) {
            part.ageFrom = bandStart(static_cast<int>(band));
            figures->addSome(figure, audience.at(gender).at(band), part);
        }
    }
}

void addFaces(const Totals &totals, Figures *figures)
{
    for (int hour = 0; hour < HoursOfDay; ++hour) {
        addAudience(
            Faces, hourWord(hour), totals.facesByHour.at(static_cast<std::size_t>(hour)), figures);
    }
    addAudience(Faces, Unknown, totals.untimedFaces, figures);
    if (totals.unmatched)
        addAudience(Unmatched, QString(), *totals.unmatched, figures);

    Part part;
    for (int day = 0; day < DaysOfWeek; ++day) {
        part.weekday = weekdayWord(day);
        for (int hour = 0; hour < HoursOfDay; ++hour) {
            part.hour = hourWord(hour);
            figures->addSome(Faces,
                totals.facesByWeekday.at(static_cast<std::size_t>(day))
                    .at(static_cast<std::size_t>(hour)),
                part);
        }
    }
}

void addTally(const QString &figure, const Tally &tally, Part part, Figures *figures)
{
    figures->add(figure, tally.count, part);
    for (int hour = 0; hour < HoursOfDay; ++hour) {
        part.hour = hourWord(hour);
        figures->addSome(figure, tally.hours.at(static_cast<std::size_t>(hour)), part);
    }
    part.hour = Unknown;
    figures->addSome(figure,
        std::accumulate(tally.hours.cbegin(), tally.hours.cend(), tally.count, std::minus<>()),
        part);
}

void addSequences(const Report &report, Figures *figures)
{
    const QVector<ReportedSequence> sequences = reportedSequences(report);
    for (const ReportedSequence &sequence : sequences) {
        Part part;
        part.sequence = QString::number(sequence.number);
        part.name = report.plan ? report.plan->name(sequence.number) : QString();
        addTally(Determined, sequence.determined, part, figures);
        addTally(Restricted, sequence.restricted, part, figures);
    }
}

void addDay(const QString &date, const DayTotals &day, Figures *figures)
{
    Part part;
    part.date = date;
    figures->addSome(QStringLiteral("frames"), day.frames, part);
    figures->addSome(Faces, day.faces, part);
    figures->addSome(Determined, day.determined, part);
    figures->addSome(Restricted, day.restricted, part);
    figures->addSome(SensorErrors, day.sensorErrors, part);
}

} // namespace

QString reportCsv(const Report &report)
{
    Figures figures;
    addTotals(report.totals, &figures);
    addFaces(report.totals, &figures);
    addSequences(report, &figures);
    for (const auto &[date, day] : report.totals.days.values())
        addDay(date.toString(Qt::ISODate), day, &figures);
    addDay(QStringLiteral("later"), report.totals.days.others(), &figures);
    return figures.table();
}

} // namespace Hvcp2
