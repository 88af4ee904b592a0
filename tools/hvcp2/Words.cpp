#include "tools/hvcp2/Words.h"

#include "core/screen/Gender.h"
#include "tools/hvcp2/ConsoleText.h"

namespace Hvcp2 {

using namespace Analysis;
using PluginKrHvcP2::EntryReason;
using PluginKrHvcP2::Gender;

QString reasonWord(EntryReason reason)
{
    switch (reason) {
    case EntryReason::TakesPart:
        return QStringLiteral("takes part");
    case EntryReason::NoScreenId:
        return QStringLiteral("no screen id");
    case EntryReason::NoLowestAge:
        return QStringLiteral("no lowest age");
    case EntryReason::NoHighestAge:
        return QStringLiteral("no highest age");
    case EntryReason::NoGender:
        return QStringLiteral("no gender");
    case EntryReason::AgesReversed:
        return QStringLiteral("ages reversed");
    case EntryReason::NoOwnEvent:
        return QStringLiteral("no own event");
    case EntryReason::NoLinkingScreen:
        return QStringLiteral("no linking screen");
    }
    return {};
}

QString fitWord(Choice::Fit fit)
{
    switch (fit) {
    case Choice::Nothing:
        return QStringLiteral("nothing");
    case Choice::Full:
        return QStringLiteral("fits");
    case Choice::ByDefault:
        return QStringLiteral("default");
    case Choice::ByAge:
        return QStringLiteral("age alone");
    }
    return {};
}

QString genderWord(Gender gender)
{
    const QString word = PluginKrHvcP2::genderToText(gender);
    return word.isEmpty() ? QStringLiteral("unknown") : word;
}

QString agesWord(const AgeRange &ages)
{
    const QString from = QString::number(ages.from);
    return ages.from == ages.to ? from : from + QLatin1Char('-') + QString::number(ages.to);
}

QString asKey(QString word)
{
    return word.replace(QLatin1Char(' '), QLatin1Char('-'));
}

QString contentWord(const Plan &plan, int number)
{
    return QStringLiteral("#%1 %2")
        .arg(QString::number(number), printable(plan.name(number)))
        .trimmed();
}

QString screenWord(const Plan &plan)
{
    const QString name = printable(plan.screenName);
    const QString screen = QStringLiteral("%1, screen %2")
                               .arg(printable(plan.title), QString::number(plan.screenId));
    return name.isEmpty() ? screen : screen + QLatin1String(" (") + name + QLatin1Char(')');
}

} // namespace Hvcp2
