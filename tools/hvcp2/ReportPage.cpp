#include "tools/hvcp2/ReportPage.h"

#include "tools/analysis/Coverage.h"
#include "tools/hvcp2/Chart.h"
#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/CoverageSvg.h"
#include "tools/hvcp2/Markup.h"
#include "tools/hvcp2/Words.h"

#include <QXmlStreamWriter>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace Hvcp2 {

using namespace Analysis;

namespace {

const QString Title = QStringLiteral("What the screen saw and did");
constexpr int MaxDaysInChart = 62;
constexpr int NamedFiles = 3;
constexpr int MaxRoomyColumns = 9; // of a table beside a picture

// HTML takes it as it is, without the escapes of XML; so there must be none to make.
constexpr auto Style = R"(
:root { color-scheme: light dark;
 --page: #f3f5f8; --card: #ffffff; --ink: #1b1f24; --muted: #57606a; --line: #d5dbe1; --accent: #0b5fa5;
 --female: #9b2d6f; --male: #2f86c4; --unknown: #7d8590; --sent: #1a7f5a; --held: #b7741a; --bad: #c2202c; }
@media screen and (prefers-color-scheme: dark) { :root {
 --page: #0d1117; --card: #161b22; --ink: #e6edf3; --muted: #9aa4af; --line: #30363d; --accent: #6cb2ff;
 --female: #e58abf; --male: #4aa3df; --unknown: #8b949e; --sent: #3fb68b; --held: #e3b341; --bad: #ff7b72; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--page); color: var(--ink); line-height: 1.5;
 font: 16px/1.5 'Segoe UI', 'Helvetica Neue', 'DejaVu Sans', Arial, sans-serif; }
header, main, footer { max-width: 75rem; margin: 0 auto; padding: 0 1rem; }
header { padding-top: 2rem; }
h1 { font-size: 1.9rem; line-height: 1.2; margin: 0 0 .3rem; }
h2 { font-size: 1.3rem; margin: 0 0 .6rem; }
h3 { font-size: 1.05rem; margin: 1.6rem 0 .4rem; }
p { margin: .4rem 0; max-width: 65ch; }
.muted, caption, footer { color: var(--muted); }
a { color: var(--accent); }
nav ul { display: flex; flex-wrap: wrap; gap: .2rem 1.1rem; list-style: none; margin: 1rem 0 0; padding: 0; }
nav a { display: inline-block; padding: .2rem 0; }
.figures { display: grid; grid-template-columns: repeat(auto-fill, minmax(10.5rem, 1fr)); gap: .75rem; margin: 1.2rem 0; }
.figures div { background: var(--card); border: 1px solid var(--line); border-radius: .6rem; padding: .7rem .9rem; }
.figures dt { color: var(--muted); font-size: .85rem; }
.figures dd { margin: 0; font-size: 1.55rem; font-weight: 600; font-variant-numeric: tabular-nums; }
.figures dd.more { font-size: .85rem; font-weight: 400; color: var(--muted); }
section { background: var(--card); border: 1px solid var(--line); border-radius: .8rem; padding: 1.2rem; margin: 1.1rem 0; }
.pair { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 26rem), 1fr)); gap: 1rem 2rem; align-items: start; }
.pair div, .pair figure { min-width: 0; }
figure { margin: 0; }
figcaption { font-weight: 600; margin-bottom: .4rem; }
svg.chart { display: block; width: 100%; height: auto; min-width: 18rem; max-width: 30rem; }
.chart text { font-family: inherit; font-size: 12px; fill: var(--ink); }
.chart .muted { fill: var(--muted); }
.chart .grid { stroke: var(--line); }
.chart .heat { fill: var(--accent); }
.chart .none { fill: none; stroke: var(--line); }
.chart rect.female { fill: var(--female); stroke: var(--card); }
.chart rect.male { fill: var(--male); stroke: var(--card); }
.chart rect.unknown { fill: var(--unknown); stroke: var(--card); }
.chart rect.sent { fill: var(--sent); stroke: var(--card); }
.chart rect.held { fill: var(--held); stroke: var(--card); }
.chart rect.bad { fill: var(--bad); }
.chart rect.faces { fill: var(--accent); }
.scroll { overflow-x: auto; margin-bottom: .8rem; container-type: inline-size; background:
 linear-gradient(to right, var(--card) 1rem, transparent) 0 0 / 2.5rem 100% no-repeat local,
 linear-gradient(to left, var(--card) 1rem, transparent) 100% 0 / 2.5rem 100% no-repeat local,
 linear-gradient(to right, var(--line), transparent) 0 0 / .8rem 100% no-repeat scroll,
 linear-gradient(to left, var(--line), transparent) 100% 0 / .8rem 100% no-repeat scroll; }
.scroll svg.coverage { min-width: 44rem; max-width: 100%; height: auto; display: block; }
.scroll:focus-visible, a:focus-visible { outline: 2px solid var(--accent); outline-offset: 2px; }
.scroll .coverage .page { fill: none; }
table { border-collapse: collapse; width: 100%; font-size: .9rem; font-variant-numeric: tabular-nums; }
caption { text-align: left; padding-bottom: .3rem; white-space: normal; position: sticky; left: 0; max-width: 100cqw; }
th, td { text-align: left; padding: .18rem .55rem; border-bottom: 1px solid var(--line); vertical-align: top; white-space: nowrap; }
thead th { border-bottom: 2px solid var(--line); }
tbody th { font-weight: 400; }
thead th, .long { white-space: normal; }
.long { min-width: 10rem; overflow-wrap: anywhere; }
th.n, td.n { text-align: right; }
.dense { font-size: .82rem; }
.dense th, .dense td { padding: .18rem .3rem; }
.dense thead th { white-space: nowrap; }
td.zero { color: var(--muted); }
footer { font-size: .85rem; padding-bottom: 2rem; overflow-wrap: anywhere; }
@media (max-width: 40rem) { section { padding: .8rem; } }
@page { size: A4; margin: 14mm; }
@media print {
 body { background: none; font-size: 10pt; }
 header, main, footer { max-width: none; padding: 0; }
 header { padding-top: 0; }
 nav { display: none; }
 section { border: 0; padding: 0; margin: 1.4rem 0; }
 .figures { grid-template-columns: repeat(4, 1fr); }
 .pair { grid-template-columns: 2fr 3fr; gap: 1rem; break-inside: avoid; }
 svg.chart { min-width: 0; max-width: none; overflow: visible; }
 .chart text { font-size: 13px; }
 .scroll { overflow: visible; background: none; }
 .scroll svg.coverage { min-width: 0; width: 100%; }
 table { font-size: 7.5pt; }
 .dense { font-size: 7pt; }
 th, td, .dense th, .dense td { padding: .06rem .2rem; }
 h2, h3, figcaption, caption { break-after: avoid; }
 figure, tr, .figures div { break-inside: avoid; }
 thead { break-after: avoid; }
 figcaption, caption { font-size: 8pt; }
 svg, .figures div { print-color-adjust: exact; -webkit-print-color-adjust: exact; }
}
)";

struct Table
{
    QString id;
    QString caption;
    QStringList heading;
    int textColumns = 1; ///< the first ones; numbers are behind them
    QVector<QStringList> rows;
    int longColumn = -1; ///< texts that may take several lines; -1: none
};

QString number(qint64 value)
{
    return groupedNumber(value);
}

template <typename Counts>
QVector<qint64> listOf(const Counts &counts)
{
    QVector<qint64> list;
    std::copy(counts.cbegin(), counts.cend(), std::back_inserter(list));
    return list;
}

qint64 sumOfList(const QVector<qint64> &list)
{
    return std::accumulate(list.cbegin(), list.cend(), qint64{0});
}

QStringList hourWords()
{
    QStringList words;
    for (int hour = 0; hour < HoursOfDay; ++hour)
        words << hourWord(hour);
    return words;
}

QStringList bandWords()
{
    QStringList words;
    for (int band = 0; band < AgeBands; ++band)
        words << bandKey(band);
    return words;
}

class Page
{
public:
    Page(const Report &report, QByteArray *html)
        : m_report(report)
        , m_totals(report.totals)
        , m_writer(html)
        , m_markup(m_writer)
    { }

    void write()
    {
        m_writer.writeDTD(QStringLiteral("<!DOCTYPE html>")); // first of all for a browser
        m_writer.setAutoFormatting(true);
        m_writer.setAutoFormattingIndent(1);
        m_markup.start("html");
        m_writer.writeDefaultNamespace(QStringLiteral("http://www.w3.org/1999/xhtml"));
        m_markup.attribute("lang", "en");
        writeHead();
        m_markup.start("body");
        writeHeader();
        m_markup.start("main");
        writeFigures();
        writeHours();
        writeAges();
        writeWeekdays();
        writeSequences();
        writeHeldBack();
        writeUnmatched();
        writeErrors();
        writeProcess();
        writeDays();
        writeCoverageMap();
        writeNotes();
        m_markup.end();
        writeFooter();
        m_writer.writeEndDocument();
    }

private:
    struct Section
    {
        const char *id;
        QString title;
    };

    /// Those that the page has, in their order.
    QVector<Section> sections() const
    {
        QVector<Section> sections{{"hours", QStringLiteral("Faces by hour")},
            {"ages", QStringLiteral("Faces by age and gender")},
            {"week", QStringLiteral("Faces by weekday and hour")},
            {"sequences", QStringLiteral("Determined sequences by hour")},
            {"held-back", QStringLiteral("Share held back")}};
        if (m_totals.unmatched)
            sections.append({"unmatched", QStringLiteral("Viewers whom no content fits")});
        sections += {{"errors", QStringLiteral("Errors")},
            {"process", QStringLiteral("Restarts and silent times")},
            {"days", QStringLiteral("Day by day")}};
        if (m_report.plan)
            sections.append({"coverage-map", QStringLiteral("Who gets what")});
        sections.append({"notes", QStringLiteral("What these figures cannot tell")});
        return sections;
    }

    void startSection(const char *id)
    {
        const QVector<Section> all = sections();
        const auto section = std::find_if(all.cbegin(), all.cend(),
            [id](const Section &each) { return qstrcmp(each.id, id) == 0; });
        m_markup.start("section");
        m_markup.attribute("id", id);
        m_markup.attribute("aria-labelledby", QLatin1String(id) + QLatin1String("-heading"));
        m_markup.start("h2");
        m_markup.attribute("id", QLatin1String(id) + QLatin1String("-heading"));
        m_markup.text(section->title);
        m_markup.end();
    }

    void endSection() { m_markup.end(); }

    void paragraph(const QString &text) { m_markup.element("p", text); }

    QString period() const
    {
        if (m_totals.first.isNull())
            return QStringLiteral("There is nothing with a time.");
        return QStringLiteral("%1 to %2")
            .arg(reportTime(m_report, m_totals.first), reportTime(m_report, m_totals.last));
    }

    void writeHead()
    {
        m_markup.start("head");
        m_markup.start("meta");
        m_markup.attribute("charset", "utf-8");
        m_markup.end();
        m_markup.start("meta");
        m_markup.attribute("name", "viewport");
        m_markup.attribute("content", "width=device-width, initial-scale=1");
        m_markup.end();
        m_markup.start("meta");
        m_markup.attribute("name", "color-scheme");
        m_markup.attribute("content", "light dark");
        m_markup.end();
        m_markup.element("title",
            Title + QLatin1String(": ") + (m_report.plan ? screenWord(*m_report.plan) : period()));
        m_markup.element("style", QString::fromLatin1(Style));
        m_markup.end();
    }

    void writeHeader()
    {
        m_markup.start("header");
        m_markup.element("h1", Title);
        if (m_report.plan)
            paragraph(screenWord(*m_report.plan));
        paragraph(period());
        m_markup.start("nav");
        m_markup.attribute("aria-label", "Sections");
        m_markup.start("ul");
        const QVector<Section> all = sections();
        for (const Section &section : all) {
            m_markup.start("li");
            m_markup.start("a");
            m_markup.attribute("href", QLatin1Char('#') + QLatin1String(section.id));
            m_markup.text(section.title);
            m_markup.end();
            m_markup.end();
        }
        m_markup.end();
        m_markup.end();
        m_markup.end();
    }

    void figure(const char *id, const QString &name, const QString &value, const QString &more = {})
    {
        m_markup.start("div");
        m_markup.element("dt", name);
        m_markup.start("dd");
        m_markup.attribute("id", QLatin1String("figure-") + QLatin1String(id));
        m_markup.text(value);
        m_markup.end();
        if (!more.isEmpty()) {
            m_markup.start("dd");
            m_markup.attribute("class", "more");
            m_markup.text(more);
            m_markup.end();
        }
        m_markup.end();
    }

    void writeFigures()
    {
        const Audience audience = m_totals.audience();
        const auto ofFaces = [&](qint64 faces) -> QString {
            return shareWord(faces, m_totals.faces) + QLatin1String(" of the faces");
        };
        const auto gender = [&](const char *id, const QString &name, PluginKrHvcP2::Gender which) {
            const qint64 faces = sumOf(audience, which);
            figure(id, name, number(faces), ofFaces(faces));
        };
        m_markup.start("dl");
        m_markup.attribute("class", "figures");
        figure("frames", QStringLiteral("Frames"), number(m_totals.frames),
            shareWord(m_totals.framesWithFaces, m_totals.frames) + QLatin1String(" with faces"));
        figure("faces", QStringLiteral("Faces"), number(m_totals.faces),
            QStringLiteral("once in each frame"));
        gender("female", QStringLiteral("Female"), PluginKrHvcP2::Female);
        gender("male", QStringLiteral("Male"), PluginKrHvcP2::Male);
        gender("unknownGender", QStringLiteral("Gender unknown"), PluginKrHvcP2::UnknownGender);
        if (m_totals.unmatched) {
            const qint64 faces = sumOf(*m_totals.unmatched);
            figure("unmatched", QStringLiteral("No content fits"), number(faces), ofFaces(faces));
        }
        figure(
            "allDetermined", QStringLiteral("Determined sequences"), number(m_totals.determined));
        figure("allRestricted", QStringLiteral("Held back"), number(m_totals.restricted),
            shareWord(m_totals.restricted, m_totals.determined)
                + QLatin1String(" of the determined"));
        figure("sensorErrors", QStringLiteral("Sensor errors"), number(m_totals.sensorErrors));
        figure("errors", QStringLiteral("Plug-in errors"), number(m_totals.errors));
        figure("restarts", QStringLiteral("Restarts"), number(m_totals.restarts));
        figure("silences", QStringLiteral("Silent times"), number(m_totals.silences.count),
            m_totals.silences.count == 0 ? QString() : durationWord(m_totals.silences.ms));
        m_markup.end();
        m_markup.start("p");
        m_markup.text(QStringLiteral("A face counts in each frame in which it is seen, so faces "
                                     "are not visitors. "));
        m_markup.start("a");
        m_markup.attribute("href", "#notes");
        m_markup.text(QStringLiteral("What else these figures cannot tell"));
        m_markup.end();
        m_markup.end();
    }

    /// What is wider than a phone moves on its own; with the keys, too.
    void startScrolling(const QString &labelId)
    {
        m_markup.start("div");
        m_markup.attribute("class", "scroll");
        m_markup.attribute("tabindex", "0");
        m_markup.attribute("role", "region");
        m_markup.attribute("aria-labelledby", labelId);
    }

    void write(const Table &table)
    {
        const QString captionId = table.id + QLatin1String("-caption");
        startScrolling(captionId);
        m_markup.start("table");
        m_markup.attribute("id", table.id);
        if (table.heading.size() > MaxRoomyColumns)
            m_markup.attribute("class", "dense");
        m_markup.start("caption");
        m_markup.attribute("id", captionId);
        m_markup.text(table.caption);
        m_markup.end();
        m_markup.start("thead");
        m_markup.start("tr");
        for (int column = 0; column < table.heading.size(); ++column)
            cell("th", "col", column >= table.textColumns ? "n" : "", table.heading.at(column));
        m_markup.end();
        m_markup.end();
        m_markup.start("tbody");
        for (const QStringList &row : table.rows) {
            m_markup.start("tr");
            cell("th", "row", table.longColumn == 0 ? "long" : "", row.constFirst());
            for (int column = 1; column < row.size(); ++column) {
                const bool isNumber = column >= table.textColumns;
                const bool isZero = isNumber && row.at(column) == QLatin1String("0");
                const char *const textClass = column == table.longColumn ? "long" : "";
                cell("td", "", isZero ? "n zero" : (isNumber ? "n" : textClass), row.at(column));
            }
            m_markup.end();
        }
        m_markup.end();
        m_markup.end();
        m_markup.end();
    }

    void cell(const char *element, const char *scope, const char *styleClass, const QString &text)
    {
        m_markup.start(element);
        if (*scope != '\0')
            m_markup.attribute("scope", scope);
        if (*styleClass != '\0')
            m_markup.attribute("class", styleClass);
        m_markup.text(text);
        m_markup.end();
    }

    template <typename Chart>
    void writeFigure(const Chart &chart)
    {
        m_markup.start("figure");
        m_markup.start("figcaption");
        m_markup.attribute("id", chart.id + QLatin1String("-caption"));
        m_markup.text(chart.title);
        m_markup.end();
        startScrolling(chart.id + QLatin1String("-caption"));
        writeChart(chart, m_markup);
        m_markup.end();
        m_markup.end();
    }

    /// The table is beside the picture where there is room, else under it.
    template <typename Chart>
    void writePair(const Chart &chart, const Table &table)
    {
        m_markup.start("div");
        m_markup.attribute("class", "pair");
        writeFigure(chart);
        write(table);
        m_markup.end();
    }

    /// Those hours of @p values in which something is not 0, each with its sum where there is more
    /// than one column.
    static QVector<QStringList> hourRows(const QVector<QVector<qint64>> &values)
    {
        QVector<QStringList> rows;
        for (int hour = 0; hour < HoursOfDay; ++hour) {
            QStringList row{hourWord(hour)};
            qint64 sum = 0;
            for (const QVector<qint64> &column : values) {
                row << number(column.at(hour));
                sum += column.at(hour);
            }
            if (values.size() > 1)
                row << number(sum);
            if (sum > 0)
                rows.append(row);
        }
        return rows;
    }

    QVector<Series> genderSeries() const
    {
        return {{QStringLiteral("female"), "female", {}}, {QStringLiteral("male"), "male", {}},
            {QStringLiteral("unknown"), "unknown", {}}};
    }

    QStringList genderHeading(const QString &first) const
    {
        return {first, QStringLiteral("Female"), QStringLiteral("Male"), QStringLiteral("Unknown"),
            QStringLiteral("All")};
    }

    void writeHours()
    {
        startSection("hours");
        if (m_totals.faces == 0) {
            paragraph(QStringLiteral("No face was seen."));
            endSection();
            return;
        }
        QVector<Series> series = genderSeries();
        QVector<QVector<qint64>> columns;
        for (int gender = 0; gender < series.size(); ++gender) {
            for (const Audience &hour : m_totals.facesByHour)
                series[gender].values.append(
                    sumOf(hour, CoveredGenders.at(static_cast<std::size_t>(gender))));
            columns.append(series.at(gender).values);
        }
        writePair(BarChart{QStringLiteral("chart-hours"),
                      QStringLiteral("Faces by hour of the day and gender"), hourWords(), series},
            Table{QStringLiteral("table-hours"),
                QStringLiteral("Faces by hour and gender; hours without a face are left out"),
                genderHeading(QStringLiteral("Hour")), 1, hourRows(columns)});
        for (int gender = 0; gender < series.size(); ++gender) {
            if (sumOfList(columns.at(gender)) > 0)
                writeHoursOf(static_cast<std::size_t>(gender), series.at(gender).name);
        }
        endSection();
    }

    /// By hour and age.
    void writeHoursOf(std::size_t gender, const QString &name)
    {
        QVector<QVector<qint64>> bands;
        for (std::size_t band = 0; band < AgeBands; ++band) {
            QVector<qint64> hours;
            for (const Audience &hour : m_totals.facesByHour)
                hours.append(hour.at(gender).at(band));
            bands.append(hours);
        }
        const QString label = gender + 1 == CoveredGenders.size()
            ? QStringLiteral("Gender unknown")
            : name.at(0).toUpper() + name.mid(1);
        m_markup.element("h3", label);
        writePair(HeatMap{QLatin1String("chart-hours-") + name,
                      QStringLiteral("%1: faces by hour of the day and age").arg(label),
                      bandWords(), hourWords(), bands},
            Table{QLatin1String("table-hours-") + name,
                QStringLiteral("%1: faces by hour and age").arg(label),
                QStringList(QStringLiteral("Hour")) + bandWords()
                    + QStringList(QStringLiteral("All")),
                1, hourRows(bands)});
    }

    /// Faces of @p audience by age and gender.
    void writeAudience(const QString &id, const QString &title, const Audience &audience)
    {
        QVector<Series> series = genderSeries();
        QVector<QStringList> rows;
        for (int gender = 0; gender < series.size(); ++gender)
            series[gender].values = listOf(audience.at(static_cast<std::size_t>(gender)));
        for (int band = 0; band < AgeBands; ++band) {
            QStringList row{bandWord(band)};
            qint64 sum = 0;
            for (const Series &each : qAsConst(series)) {
                row << number(each.values.at(band));
                sum += each.values.at(band);
            }
            rows.append(row << number(sum));
        }
        writePair(BarChart{QLatin1String("chart-") + id, title, bandWords(), series},
            Table{QLatin1String("table-") + id, title, genderHeading(QStringLiteral("Age")), 1,
                rows});
    }

    void writeAges()
    {
        startSection("ages");
        if (m_totals.faces == 0)
            paragraph(QStringLiteral("No face was seen."));
        else
            writeAudience(QStringLiteral("ages"),
                QStringLiteral("Faces by age, in years, and gender"), m_totals.audience());
        endSection();
    }

    void writeWeekdays()
    {
        startSection("week");
        QVector<QVector<qint64>> days;
        QStringList names;
        for (const auto &hours : m_totals.facesByWeekday) {
            names << weekdayWord(names.size());
            days.append(listOf(hours));
        }
        QStringList heading{QStringLiteral("Hour")};
        for (const QString &name : qAsConst(names))
            heading << name.left(3);
        writePair(
            HeatMap{QStringLiteral("chart-week"),
                QStringLiteral("Faces by weekday and hour of the day"), names, hourWords(), days},
            Table{QStringLiteral("table-week"),
                QStringLiteral("Faces by hour and weekday; hours without a face are left out"),
                heading << QStringLiteral("All"), 1, hourRows(days)});
        endSection();
    }

    void writeSequences()
    {
        startSection("sequences");
        const QVector<ReportedSequence> sequences = reportedSequences(m_report);
        if (m_totals.determined == 0) {
            paragraph(QStringLiteral("No sequence was determined."));
            endSection();
            return;
        }
        HeatMap map{QStringLiteral("chart-sequences"),
            QStringLiteral("Determined sequences by hour of the day"), {}, hourWords(), {}};
        QStringList heading{QStringLiteral("Hour")};
        for (const ReportedSequence &sequence : sequences) {
            map.rows << sequence.word;
            map.values.append(listOf(sequence.determined.hours));
            heading << QLatin1Char('#') + QString::number(sequence.number);
        }
        if (sequences.size() > 1)
            heading << QStringLiteral("All");
        writePair(map,
            Table{QStringLiteral("table-sequences"),
                QStringLiteral("Determined sequences by hour and number; hours without one are "
                               "left out"),
                heading, 1, hourRows(map.values)});
        endSection();
    }

    void writeHeldBack()
    {
        startSection("held-back");
        const QVector<ReportedSequence> sequences = reportedSequences(m_report);
        if (m_totals.determined == 0 && m_totals.restricted == 0) {
            paragraph(QStringLiteral("No sequence was determined, and none held back."));
            endSection();
            return;
        }
        BarChart chart{QStringLiteral("chart-held-back"),
            QStringLiteral("Determined sequences: sent on and held back"), {},
            {{QStringLiteral("sent on"), "sent", {}}, {QStringLiteral("held back"), "held", {}}}};
        Table table{QStringLiteral("table-held-back"),
            QStringLiteral("Determined sequences, and how many of them were held back because they "
                           "had been started too recently"),
            {QStringLiteral("Sequence"), QStringLiteral("Determined"), QStringLiteral("Held back"),
                QStringLiteral("Share")},
            1, {}, 0};
        for (const ReportedSequence &sequence : sequences) {
            const qint64 determined = sequence.determined.count;
            const qint64 restricted = sequence.restricted.count;
            chart.places << QLatin1Char('#') + QString::number(sequence.number);
            chart.series[0].values << std::max<qint64>(0, determined - restricted);
            chart.series[1].values << restricted;
            table.rows.append({sequence.word, number(determined), number(restricted),
                shareWord(restricted, determined)});
        }
        writePair(chart, table);
        endSection();
    }

    void writeUnmatched()
    {
        if (!m_totals.unmatched)
            return;
        startSection("unmatched");
        const qint64 faces = sumOf(*m_totals.unmatched);
        if (faces == 0) {
            paragraph(QStringLiteral("Some content fitted each face."));
        } else {
            paragraph(
                QStringLiteral("%1 of %2 faces (%3) would have been shown nothing of their "
                               "own.")
                    .arg(number(faces), number(m_totals.faces), shareWord(faces, m_totals.faces)));
            writeAudience(QStringLiteral("unmatched"),
                QStringLiteral("Faces that no content fits, by age, in years, and gender"),
                *m_totals.unmatched);
        }
        endSection();
    }

    void writeMessages(const char *id, const QString &title, const Totals::Messages &messages)
    {
        Table table{QLatin1String("table-") + QLatin1String(id), title,
            {QStringLiteral("Number"), QStringLiteral("Message"), QStringLiteral("First"),
                QStringLiteral("Last"), QStringLiteral("Times")},
            4, {}, 1};
        HeatMap map{QLatin1String("chart-") + QLatin1String(id),
            title + QLatin1String(" by hour of the day"), {}, hourWords(), {}};
        QStringList heading{QStringLiteral("Hour")};
        const auto add = [&](const QString &message, const Tally &tally) {
            const QString position = QString::number(table.rows.size() + 1);
            table.rows.append({position, message, reportTime(m_report, tally.first),
                reportTime(m_report, tally.last), number(tally.count)});
            map.rows << position + QLatin1Char(' ') + message;
            map.values.append(listOf(tally.hours));
            heading << position;
        };
        for (const auto &[message, tally] : messages.values())
            add(printable(message), tally);
        if (messages.others().count > 0)
            add(QStringLiteral("(all others)"), messages.others());
        if (table.rows.isEmpty()) {
            paragraph(title + QLatin1String(": none."));
            return;
        }
        write(table);
        if (table.rows.size() > 1)
            heading << QStringLiteral("All");
        writePair(map,
            Table{table.id + QLatin1String("-hours"),
                title + QLatin1String(" by hour and number; hours without one are left out"),
                heading, 1, hourRows(map.values)});
    }

    void writeErrors()
    {
        startSection("errors");
        writeMessages(
            "sensor-errors", QStringLiteral("Errors of the sensor"), m_totals.sensorErrorMessages);
        writeMessages(
            "plugin-errors", QStringLiteral("Errors of the plug-in"), m_totals.errorMessages);
        endSection();
    }

    void writeProcess()
    {
        startSection("process");
        write(Table{QStringLiteral("table-process"), QStringLiteral("The sensor program"),
            {QStringLiteral("What"), QStringLiteral("Times")}, 1,
            {{QStringLiteral("Started"), number(m_totals.starts)},
                {QStringLiteral("Restarted: started without having been stopped"),
                    number(m_totals.restarts)},
                {QStringLiteral("Stopped"), number(m_totals.stops)}},
            0});
        const Silences &silences = m_totals.silences;
        const QString limit = durationWord(m_report.silenceMs);
        if (silences.count == 0) {
            paragraph(
                QStringLiteral("No frame came more than %1 after the one before.").arg(limit));
            endSection();
            return;
        }
        Table table{QStringLiteral("table-silences"),
            QStringLiteral("Times of more than %1 without a frame: %2, together %3")
                .arg(limit, number(silences.count), durationWord(silences.ms)),
            {QStringLiteral("From"), QStringLiteral("To"), QStringLiteral("Sensor program"),
                QStringLiteral("Length")},
            3, {}};
        if (silences.count > silences.longest.size())
            table.caption += QStringLiteral("; the longest %1").arg(silences.longest.size());
        for (const Silence &silence : silences.longest) {
            table.rows.append({reportTime(m_report, silence.from), reportTime(m_report, silence.to),
                silence.isStopped ? QStringLiteral("stopped") : QString(),
                durationWord(silence.ms())});
        }
        write(table);
        endSection();
    }

    void writeDays()
    {
        startSection("days");
        Table table{QStringLiteral("table-days"), QStringLiteral("What each day had"),
            {QStringLiteral("Day"), QStringLiteral("Frames"), QStringLiteral("Faces"),
                QStringLiteral("Determined"), QStringLiteral("Held back"),
                QStringLiteral("Sensor errors")},
            1, {}};
        BarChart chart{QStringLiteral("chart-days"), QStringLiteral("Faces by day"), {},
            {{QStringLiteral("faces"), "faces", {}}}};
        const auto addRow = [&](const QString &label, const DayTotals &day) {
            table.rows.append({label, number(day.frames), number(day.faces), number(day.determined),
                number(day.restricted), number(day.sensorErrors)});
        };
        for (const auto &[date, day] : m_totals.days.values()) {
            const QString label = date.toString(Qt::ISODate);
            addRow(label, day);
            chart.places << label.mid(5);
            chart.series[0].values << day.faces;
        }
        if (m_totals.days.others().frames > 0)
            addRow(QStringLiteral("(all others)"), m_totals.days.others());
        if (chart.places.size() > 1 && chart.places.size() <= MaxDaysInChart)
            writePair(chart, table);
        else
            write(table);
        endSection();
    }

    void writeCoverageMap()
    {
        if (!m_report.plan)
            return;
        const Coverage coverage = coverageOf(m_report.plan->contents);
        startSection("coverage-map");
        startScrolling(QStringLiteral("coverage-map-heading"));
        writeCoverage(*m_report.plan, coverage, m_writer);
        m_markup.end();
        Table table{QStringLiteral("table-coverage"), QStringLiteral("Which content viewers get"),
            {QStringLiteral("Gender"), QStringLiteral("Ages"), QStringLiteral("Content"),
                QStringLiteral("How it fits")},
            4, {}, 2};
        for (const GenderCoverage &row : coverage.genders) {
            const QVector<Band> bands = row.bands();
            for (const Band &band : bands)
                addChoice(genderWord(row.gender), agesWord(band.ages), band.choice, &table);
            addChoice(genderWord(row.gender), QStringLiteral("unknown"), row.unknownAge, &table);
        }
        write(table);
        endSection();
    }

    void addChoice(
        const QString &gender, const QString &ages, const Choice &choice, Table *table) const
    {
        const bool isNothing = choice.fit == Choice::Nothing;
        table->rows.append({gender, ages,
            isNothing ? QStringLiteral("none") : contentWord(*m_report.plan, choice.number),
            fitWord(choice.fit)});
    }

    void writeNotes()
    {
        startSection("notes");
        m_markup.start("ul");
        const QStringList notes = reportNotes(m_report);
        for (const QString &note : notes)
            m_markup.element("li", note);
        m_markup.end();
        endSection();
    }

    void writeFooter()
    {
        m_markup.start("footer");
        const QStringList &files = m_report.files;
        QString text = QStringLiteral("Read: ");
        if (files.size() <= NamedFiles)
            text += files.join(QLatin1String(", "));
        else
            text += QStringLiteral("%1 files, %2 to %3")
                        .arg(QString::number(files.size()), files.constFirst(), files.constLast());
        paragraph(printable(text));
        paragraph(m_totals.unreadable == 0 ? QStringLiteral("All of it could be read.")
                                           : QStringLiteral("Places that could not be read: %1.")
                                                 .arg(number(m_totals.unreadable)));
        m_markup.end();
    }

    const Report &m_report;
    const Totals &m_totals;
    QXmlStreamWriter m_writer;
    Markup m_markup;
};

} // namespace

QByteArray reportPage(const Report &report)
{
    QByteArray html;
    Page(report, &html).write();
    return html;
}

} // namespace Hvcp2
