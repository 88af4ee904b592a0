#include "demo/desk/CoverageText.h"

#include "demo/desk/ContentLook.h"
#include "tools/analysis/Words.h"

#include <QCoreApplication>

#include <algorithm>

namespace Desk {

using namespace Analysis;
using PluginKrHvcP2::EntryReason;

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Desk::CoverageText", text);
}

QString numbersText(const QVector<int> &numbers)
{
    QStringList texts;
    for (const int number : numbers)
        texts << QLatin1Char('#') + QString::number(number);
    return texts.join(QLatin1String(", "));
}

QString audienceText(const PluginKrHvcP2::DetectionContent &content)
{
    const QString ages = agesWord({content.ageMin, content.ageMax});
    const QString audience = content.genders == PluginKrHvcP2::BothGenders
        ? tr("%1, everybody").arg(ages)
        : QStringLiteral("%1, %2").arg(ages, genderName(content.genders).toLower());
    return content.isDefault ? tr("%1, default").arg(audience) : audience;
}

QString reasonText(EntryReason reason)
{
    switch (reason) {
    case EntryReason::TakesPart:
        break;
    case EntryReason::NoScreenId:
        return tr("the screen has no id");
    case EntryReason::NoLowestAge:
        return tr("no lowest age");
    case EntryReason::NoHighestAge:
        return tr("no highest age");
    case EntryReason::NoGender:
        return tr("no gender");
    case EntryReason::AgesReversed:
        return tr("ages reversed");
    case EntryReason::NoOwnEvent:
        return tr("no event opens it to other screens");
    case EntryReason::NoLinkingScreen:
        return tr("no screen is linked to it");
    }
    return {};
}

/// The reach of content @p number; of nobody when it takes no part.
Reach reachOf(const Coverage &coverage, int number)
{
    const auto it = std::find_if(coverage.contents.cbegin(), coverage.contents.cend(),
        [number](const Reach &reach) { return reach.number == number; });
    return it == coverage.contents.cend() ? Reach() : *it;
}

QString unreachedText(const Reach &reach)
{
    return reach.hiddenBy.isEmpty()
        ? tr("reaches nobody: it is for ages above %1").arg(HighestCoveredAge)
        : tr("reaches nobody: its viewers get %1").arg(numbersText(reach.hiddenBy));
}

QString reachText(const Reach &reach)
{
    QStringList ways;
    if (reach.full > 0)
        ways << tr("%1 that it fits").arg(reach.full);
    if (reach.byDefault > 0)
        ways << tr("%1 as a default").arg(reach.byDefault);
    if (reach.byAge > 0)
        ways << tr("%1 by the age alone").arg(reach.byAge);
    return tr("Ages that get it: %1").arg(ways.join(QLatin1String(", ")));
}

QStringList contentLines(const Plan &plan, const Coverage &coverage, int number)
{
    QStringList lines{contentTitle(plan, number)};
    const PlannedContent &entry = plan.entries.at(number - 1);
    if (!entry.takesPart())
        return lines << contentNote(plan, coverage, number);
    lines << audienceText(entry.content);
    const Reach reach = reachOf(coverage, number);
    return lines << (reach.isNobody() ? contentNote(plan, coverage, number) : reachText(reach));
}

QString whyText(const CoverageItem &item)
{
    const bool isAgeKnown = item.kind == CoverageItem::Ages;
    const bool isGenderKnown = item.gender != PluginKrHvcP2::UnknownGender;
    switch (item.choice.fit) {
    case Choice::Full:
        return tr("The first content for this gender and age.");
    case Choice::ByDefault:
        return isAgeKnown
            ? tr("No content is for this gender and age: the last default of the gender.")
            : tr("Without an age: the last default of the gender.");
    case Choice::ByAge:
        return isGenderKnown ? tr("No content is for this gender: the last one for the age.")
                             : tr("Without a gender: the last content for the age.");
    case Choice::Nothing:
        break;
    }
    if (!isGenderKnown)
        return isAgeKnown ? tr("No content is for this age.")
                          : tr("Neither gender nor age was measured.");
    return isAgeKnown ? tr("No content is for this age, and the gender has no default.")
                      : tr("The gender has no default.");
}

QString outcomeText(const DecidedFace &face)
{
    switch (face.outcome) {
    case DecidedFace::NothingFits:
        break;
    case DecidedFace::Cut:
        return tr("not among the first faces of the frame");
    case DecidedFace::Restricted:
        return tr("held back, it was started too recently");
    case DecidedFace::Sent:
        return tr("started");
    }
    return {};
}

} // namespace

QString genderName(int gender)
{
    switch (gender) {
    case PluginKrHvcP2::Female:
        return tr("Female");
    case PluginKrHvcP2::Male:
        return tr("Male");
    default:
        return tr("Unknown");
    }
}

QString fitText(Choice::Fit fit)
{
    switch (fit) {
    case Choice::Full:
        return tr("fits gender and age");
    case Choice::ByDefault:
        return tr("default of the gender");
    case Choice::ByAge:
        return tr("fits the age alone");
    case Choice::Nothing:
        break;
    }
    return tr("nothing fits");
}

QString contentNote(const Plan &plan, const Coverage &coverage, int number)
{
    const PlannedContent &entry = plan.entries.at(number - 1);
    if (!entry.takesPart())
        return tr("takes no part: %1").arg(reasonText(entry.reason));
    const Reach reach = reachOf(coverage, number);
    return reach.isNobody() ? unreachedText(reach) : audienceText(entry.content);
}

QStringList itemLines(const Plan &plan, const Coverage &coverage, const CoverageItem &item)
{
    if (item.kind == CoverageItem::Content)
        return contentLines(plan, coverage, item.number);
    const QString gender = item.gender == PluginKrHvcP2::UnknownGender ? tr("Gender unknown")
                                                                       : genderName(item.gender);
    const QString viewers = item.kind == CoverageItem::UnknownAge
        ? tr("%1, age unknown").arg(gender)
        : tr("%1, %2 years").arg(gender, agesWord(item.ages));
    const QString content = item.number == 0 ? tr("Nothing") : contentTitle(plan, item.number);
    return {viewers, content, whyText(item)};
}

QStringList faceLines(const Plan &plan, const DecidedFace &face)
{
    const int age = face.evaluation.age;
    const QString gender = face.evaluation.gender == PluginKrHvcP2::UnknownGender
        ? tr("gender unknown")
        : genderName(face.evaluation.gender).toLower();
    const QString viewer = age < 0 ? tr("age unknown, %1").arg(gender)
                                   : tr("%1 years, %2").arg(QString::number(age), gender);
    QStringList lines{tr("Face %1: %2").arg(QString::number(face.face.index), viewer)};
    if (face.outcome == DecidedFace::NothingFits)
        return lines << tr("Nothing fits");
    return lines << contentTitle(plan, face.sequence) << outcomeText(face);
}

} // namespace Desk
