#include "tools/hvcp2/ContentTable.h"

#include "core/screen/Gender.h"
#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/Csv.h"
#include "tools/hvcp2/Words.h"

#include <QJsonArray>
#include <QStringList>

namespace Hvcp2 {

using namespace Analysis;

namespace {

QString ageText(int age, const QString &unknown)
{
    return age < 0 ? unknown : QString::number(age);
}

QString agesText(const PluginKrHvcP2::DetectionContent &content)
{
    const QString unknown = QStringLiteral("?");
    return ageText(content.ageMin, unknown) + QLatin1Char('-') + ageText(content.ageMax, unknown);
}

QString genderText(int genders)
{
    const QString text = PluginKrHvcP2::genderToText(genders);
    return text.isEmpty() ? QStringLiteral("?") : text;
}

QStringList screensOf(const PlannedContent &entry)
{
    QStringList screens;
    for (const int id : entry.content.identifiers)
        screens << QString::number(id);
    return screens;
}

QString partText(const PlannedContent &entry)
{
    if (!entry.takesPart())
        return QLatin1String("no: ") + reasonWord(entry.reason);
    const QStringList screens = screensOf(entry);
    return QLatin1String(screens.size() == 1 ? "yes, screen " : "yes, screens ")
        + screens.join(QLatin1String(", "));
}

QString tableText(const Plan &plan, const Paint &paint)
{
    TextTable table;
    table.addRow({QStringLiteral("#"), QStringLiteral("Name"), QStringLiteral("Ages"),
        QStringLiteral("Gender"), QStringLiteral("Default"), QStringLiteral("Takes part")});
    table.alignRight(0);
    table.limit(1, 26);
    table.limit(5, 21);
    for (const PlannedContent &entry : plan.entries) {
        table.addRow({QString::number(entry.number), printable(entry.name), agesText(entry.content),
            genderText(entry.content.genders),
            entry.content.isDefault ? QStringLiteral("yes") : QString(), partText(entry)});
    }
    return table.toText(paint);
}

/// Why a content takes no part, and below it where that stands in the file.
QString problemText(const Plan &plan, const PlannedContent &entry, const Paint &paint)
{
    const Demo::JsonProblem &problem = entry.problem;
    return QStringLiteral("  %1: %2\n      %3:%4:%5: %6\n%7")
        .arg(contentWord(plan, entry.number), paint.warning(reasonWord(entry.reason)),
            printable(plan.fileName), QString::number(problem.line),
            QString::number(problem.column), printable(problem.path.toString()),
            wrapped(printable(problem.reason), 6));
}

} // namespace

QString contentTableText(const Plan &plan, const Paint &paint)
{
    QString text = paint.heading(screenWord(plan)) + QLatin1String("\n\n");
    if (plan.entries.isEmpty())
        return text + QLatin1String("  The screen has no contents.\n");
    text += tableText(plan, paint) + QLatin1Char('\n');
    if (plan.takesPartEntirely())
        return text + paint.good(QStringLiteral("All contents take part.")) + QLatin1Char('\n');
    text += QStringLiteral("%1 of %2 contents take no part:\n")
                .arg(QString::number(plan.entries.size() - plan.contents.size()),
                    QString::number(plan.entries.size()));
    for (const PlannedContent &entry : plan.entries) {
        if (!entry.takesPart())
            text += QLatin1Char('\n') + problemText(plan, entry, paint);
    }
    return text;
}

QString contentTableCsv(const Plan &plan)
{
    QString table = csvLine({QStringLiteral("number"), QStringLiteral("name"),
        QStringLiteral("gender"), QStringLiteral("ageFrom"), QStringLiteral("ageTo"),
        QStringLiteral("default"), QStringLiteral("screens"), QStringLiteral("reason"),
        QStringLiteral("key"), QStringLiteral("line")});
    for (const PlannedContent &entry : plan.entries) {
        const bool hasProblem = !entry.takesPart();
        table += csvLine({QString::number(entry.number), entry.name,
            PluginKrHvcP2::genderToText(entry.content.genders),
            ageText(entry.content.ageMin, QString()), ageText(entry.content.ageMax, QString()),
            entry.content.isDefault ? QStringLiteral("yes") : QStringLiteral("no"),
            screensOf(entry).join(QLatin1Char(' ')), asKey(reasonWord(entry.reason)),
            hasProblem ? entry.problem.path.toString() : QString(),
            hasProblem ? QString::number(entry.problem.line) : QString()});
    }
    return table;
}

QJsonObject contentTableJson(const Plan &plan)
{
    QJsonArray contents;
    for (const PlannedContent &entry : plan.entries) {
        QJsonArray screens;
        for (const int id : entry.content.identifiers)
            screens.append(id);
        QJsonObject content{
            {QStringLiteral("number"), entry.number},
            {QStringLiteral("name"), entry.name},
            {QStringLiteral("ageMin"), entry.content.ageMin},
            {QStringLiteral("ageMax"), entry.content.ageMax},
            {QStringLiteral("gender"), PluginKrHvcP2::genderToText(entry.content.genders)},
            {QStringLiteral("default"), entry.content.isDefault},
            {QStringLiteral("screens"), screens},
            {QStringLiteral("takesPart"), entry.takesPart()},
            {QStringLiteral("reason"), asKey(reasonWord(entry.reason))},
        };
        if (!entry.takesPart()) {
            content.insert(QStringLiteral("key"), entry.problem.path.toString());
            content.insert(QStringLiteral("line"), entry.problem.line);
            content.insert(QStringLiteral("column"), entry.problem.column);
            content.insert(QStringLiteral("problem"), entry.problem.reason);
        }
        contents.append(content);
    }
    return {
        {QStringLiteral("file"), plan.fileName},
        {QStringLiteral("title"), plan.title},
        {QStringLiteral("screen"), plan.screenId},
        {QStringLiteral("screenName"), plan.screenName},
        {QStringLiteral("contents"), contents},
    };
}

} // namespace Hvcp2
