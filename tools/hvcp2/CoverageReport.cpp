#include "tools/hvcp2/CoverageReport.h"

#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/Csv.h"
#include "tools/hvcp2/Words.h"

#include <QJsonArray>

#include <algorithm>

namespace Hvcp2 {

using namespace Analysis;

namespace {

constexpr int YearsPerColumn = 2;
constexpr int TickStep = 10; // years
constexpr int LabelColumns = 9;

QChar fill(Choice::Fit fit)
{
    switch (fit) {
    case Choice::Full:
        return QLatin1Char('=');
    case Choice::ByDefault:
        return QLatin1Char('-');
    case Choice::ByAge:
        return QLatin1Char('~');
    case Choice::Nothing:
        break;
    }
    return QLatin1Char('.');
}

/// What a column of the map shows: of its ages the first, but never hides one that gets nothing.
QVector<Choice> columnsOfMap(const GenderCoverage &coverage)
{
    QVector<Choice> columns;
    for (int first = 0; first < coverage.ages.size(); first += YearsPerColumn) {
        const auto ages = coverage.ages.mid(first, YearsPerColumn);
        const bool hasHole = ages.contains(Choice());
        columns.append(hasHole ? Choice() : ages.constFirst());
    }
    return columns;
}

/// "#3====" for a content in @p length columns; without its number where there is no room for it.
QString segment(const Plan &plan, const Choice &choice, int length, const Paint &paint)
{
    QString text(length, fill(choice.fit));
    if (choice.fit == Choice::Nothing)
        return paint.warning(text);
    const QString number = QLatin1Char('#') + QString::number(choice.number);
    if (number.size() < length)
        text.replace(0, number.size(), number);
    return paint.on(plan.entries.at(choice.number - 1).color, text);
}

QString barText(const Plan &plan, const GenderCoverage &coverage, const Paint &paint)
{
    const QVector<Choice> columns = columnsOfMap(coverage);
    QString text;
    for (int begin = 0, end = 0; begin < columns.size(); begin = end) {
        while (end < columns.size() && columns.at(end) == columns.at(begin))
            ++end;
        text += segment(plan, columns.at(begin), end - begin, paint);
    }
    return text;
}

QString labelled(const QString &label, const QString &text)
{
    return QLatin1String("  ") + label.leftJustified(LabelColumns) + text + QLatin1Char('\n');
}

QString mapText(const Plan &plan, const Coverage &coverage, const Paint &paint)
{
    QString numbers;
    QString ticks;
    for (int age = LowestCoveredAge; age <= HighestCoveredAge; age += TickStep) {
        const bool isLast = age + TickStep > HighestCoveredAge;
        const int columns = isLast ? 0 : TickStep / YearsPerColumn;
        numbers += QString::number(age).leftJustified(columns);
        ticks += QStringLiteral("|").leftJustified(columns);
    }
    QString text = labelled(QStringLiteral("Age"), numbers) + labelled(QString(), ticks);
    for (const GenderCoverage &row : coverage.genders)
        text += labelled(genderWord(row.gender), barText(plan, row, paint));
    text += QLatin1Char('\n')
        + labelled(QString(),
            QStringLiteral("= fits   - default   ~ age alone   . nothing   (2 years a column)"));
    return text;
}

QString choiceText(const Plan &plan, const Choice &choice)
{
    if (choice.fit == Choice::Nothing)
        return fitWord(choice.fit);
    if (choice.fit == Choice::Full)
        return contentWord(plan, choice.number);
    return QStringLiteral("#%1 %2").arg(
        QString::number(choice.number), QLatin1Char('(') + fitWord(choice.fit) + QLatin1Char(')'));
}

/// The ages at which any gender begins to get something else, and the age behind the last one.
QVector<int> borders(const Coverage &coverage)
{
    QVector<int> borders{HighestCoveredAge + 1};
    for (const GenderCoverage &row : coverage.genders) {
        const QVector<Band> bands = row.bands();
        for (const Band &band : bands)
            borders.append(band.ages.from);
    }
    std::sort(borders.begin(), borders.end());
    borders.erase(std::unique(borders.begin(), borders.end()), borders.end());
    return borders;
}

QString bandsText(const Plan &plan, const Coverage &coverage, const Paint &paint)
{
    TextTable table;
    QStringList heading{QStringLiteral("Ages")};
    for (const GenderCoverage &row : coverage.genders)
        heading << genderWord(row.gender);
    table.addRow(heading);
    for (int column = 1; column < heading.size(); ++column)
        table.limit(column, 21);
    const auto addRow = [&](const QString &ages, const auto &choiceOf) {
        QStringList cells{ages};
        for (const GenderCoverage &row : coverage.genders)
            cells << choiceText(plan, choiceOf(row));
        table.addRow(cells);
    };
    const QVector<int> from = borders(coverage);
    for (int i = 0; i + 1 < from.size(); ++i) {
        addRow(agesWord({from.at(i), from.at(i + 1) - 1}),
            [&](const GenderCoverage &row) { return row.ages.at(from.at(i) - LowestCoveredAge); });
    }
    addRow(QStringLiteral("unknown"), [](const GenderCoverage &row) { return row.unknownAge; });
    return table.toText(paint);
}

QString countsText(const Coverage &coverage, const Paint &paint)
{
    TextTable table;
    QStringList heading{QStringLiteral("Ages that")};
    const auto fits = {Choice::Full, Choice::ByDefault, Choice::ByAge, Choice::Nothing};
    for (const Choice::Fit fit : fits) {
        table.alignRight(heading.size());
        heading << fitWord(fit);
    }
    table.addRow(heading);
    for (const GenderCoverage &row : coverage.genders) {
        QStringList cells{genderWord(row.gender)};
        for (const Choice::Fit fit : fits)
            cells << QString::number(row.count(fit));
        table.addRow(cells);
    }
    return table.toText(paint);
}

QString numbersText(const QVector<int> &numbers)
{
    QStringList texts;
    for (const int number : numbers)
        texts << QLatin1Char('#') + QString::number(number);
    return texts.join(QLatin1String(", "));
}

QString holesSentence(const GenderCoverage &coverage)
{
    QStringList ages;
    const QVector<AgeRange> holes = coverage.holes();
    for (const AgeRange &range : holes)
        ages << agesWord(range);
    const QString gender = coverage.gender == PluginKrHvcP2::UnknownGender
        ? QStringLiteral("gender unknown")
        : genderWord(coverage.gender);
    return QStringLiteral("Nothing fits: %1, ages %2").arg(gender, ages.join(QLatin1String(", ")));
}

QString unreachedSentence(const Plan &plan, const Reach &reach)
{
    const QString reason = reach.hiddenBy.isEmpty()
        ? QStringLiteral("it is for ages above %1").arg(HighestCoveredAge)
        : QStringLiteral("its viewers get %1").arg(numbersText(reach.hiddenBy));
    return QStringLiteral("%1 reaches nobody: %2").arg(contentWord(plan, reach.number), reason);
}

QString fallbackSentence(const Plan &plan, const Reach &reach)
{
    QStringList ways;
    if (reach.byDefault > 0)
        ways << QStringLiteral("as a default");
    if (reach.byAge > 0)
        ways << QStringLiteral("by their age");
    return QStringLiteral("%1 reaches people only %2")
        .arg(contentWord(plan, reach.number), ways.join(QLatin1String(" and ")));
}

/// More ages get a default than a content that fits.
bool leansOnDefaults(const GenderCoverage &coverage)
{
    return coverage.count(Choice::ByDefault) > coverage.count(Choice::Full);
}

QString findingsText(const Plan &plan, const Coverage &coverage, const Paint &paint)
{
    const QStringList findings = coverageFindings(plan, coverage);
    if (findings.isEmpty()) {
        return paint.good(
                   QStringLiteral("Everybody gets a content, and every content reaches somebody."))
            + QLatin1Char('\n');
    }
    QString text = paint.heading(QStringLiteral("Worth a look:")) + QLatin1Char('\n');
    for (const QString &finding : findings)
        text += QLatin1String("  ") + finding + QLatin1Char('\n');
    return text;
}

QJsonValue numberJson(const Choice &choice)
{
    return choice.fit == Choice::Nothing ? QJsonValue() : QJsonValue(choice.number);
}

template <typename List, typename ToJson>
QJsonArray arrayOf(const List &list, ToJson toJson)
{
    QJsonArray array;
    for (const auto &element : list)
        array.append(toJson(element));
    return array;
}

QJsonValue bandJson(const Band &band)
{
    return QJsonObject{{QStringLiteral("from"), band.ages.from},
        {QStringLiteral("to"), band.ages.to}, {QStringLiteral("content"), numberJson(band.choice)},
        {QStringLiteral("fit"), asKey(fitWord(band.choice.fit))}};
}

QJsonObject reachJson(const Plan &plan, const Reach &reach)
{
    return {{QStringLiteral("number"), reach.number},
        {QStringLiteral("name"), plan.name(reach.number)}, {QStringLiteral("fits"), reach.full},
        {QStringLiteral("default"), reach.byDefault}, {QStringLiteral("ageAlone"), reach.byAge}};
}

} // namespace

QStringList coverageFindings(const Plan &plan, const Coverage &coverage)
{
    QStringList findings;
    for (const GenderCoverage &row : coverage.genders) {
        if (row.count(Choice::Nothing) > 0)
            findings << holesSentence(row);
    }
    for (const Reach &reach : coverage.contents) {
        if (reach.isNobody())
            findings << unreachedSentence(plan, reach);
    }
    for (const Reach &reach : coverage.contents) {
        if (reach.isOnlyFallback())
            findings << fallbackSentence(plan, reach);
    }
    for (const GenderCoverage &row : coverage.genders) {
        if (leansOnDefaults(row)) {
            findings << QStringLiteral("Defaults do most of the work: %1, %2 of %3 ages")
                            .arg(genderWord(row.gender),
                                QString::number(row.count(Choice::ByDefault)),
                                QString::number(row.ages.size()));
        }
    }
    for (const PlannedContent &entry : plan.entries) {
        if (!entry.takesPart()) {
            findings << QStringLiteral("%1 takes no part: %2")
                            .arg(contentWord(plan, entry.number), reasonWord(entry.reason));
        }
    }
    return findings;
}

QString coverageText(const Plan &plan, const Coverage &coverage, const Paint &paint)
{
    const QString blank(QLatin1Char('\n'));
    return paint.heading(screenWord(plan)) + QLatin1String("\n\n") + mapText(plan, coverage, paint)
        + blank + bandsText(plan, coverage, paint) + blank + countsText(coverage, paint) + blank
        + findingsText(plan, coverage, paint);
}

QString coverageCsv(const Plan &plan, const Coverage &coverage)
{
    QString table
        = csvLine({QStringLiteral("gender"), QStringLiteral("ageFrom"), QStringLiteral("ageTo"),
            QStringLiteral("content"), QStringLiteral("name"), QStringLiteral("fit")});
    const auto addRow = [&](PluginKrHvcP2::Gender gender, const QString &from, const QString &to,
                            const Choice &choice) {
        const bool hasContent = choice.fit != Choice::Nothing;
        table += csvLine(
            {genderWord(gender), from, to, hasContent ? QString::number(choice.number) : QString(),
                hasContent ? plan.name(choice.number) : QString(), asKey(fitWord(choice.fit))});
    };
    const QString unknown = QStringLiteral("unknown");
    for (const GenderCoverage &row : coverage.genders) {
        const QVector<Band> bands = row.bands();
        for (const Band &band : bands) {
            addRow(row.gender, QString::number(band.ages.from), QString::number(band.ages.to),
                band.choice);
        }
        addRow(row.gender, unknown, unknown, row.unknownAge);
    }
    return table;
}

QJsonObject coverageJson(const Plan &plan, const Coverage &coverage)
{
    QJsonObject bands;
    QJsonObject unknownAge;
    QJsonObject document{
        {QStringLiteral("file"), plan.fileName},
        {QStringLiteral("title"), plan.title},
        {QStringLiteral("screen"), plan.screenId},
        {QStringLiteral("screenName"), plan.screenName},
    };
    for (const GenderCoverage &row : coverage.genders) {
        const QString gender = genderWord(row.gender);
        document.insert(gender, arrayOf(row.ages, numberJson));
        bands.insert(gender, arrayOf(row.bands(), bandJson));
        unknownAge.insert(gender, numberJson(row.unknownAge));
    }
    const auto toNumber = [](int number) { return QJsonValue(number); };
    document.insert(QStringLiteral("bands"), bands);
    document.insert(QStringLiteral("unknownAge"), unknownAge);
    document.insert(QStringLiteral("contents"),
        arrayOf(coverage.contents, [&](const Reach &reach) { return reachJson(plan, reach); }));
    document.insert(QStringLiteral("unreached"), arrayOf(coverage.unreached(), toNumber));
    document.insert(QStringLiteral("onlyFallbacks"), arrayOf(coverage.onlyFallbacks(), toNumber));
    return document;
}

} // namespace Hvcp2
