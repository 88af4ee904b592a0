#include "gui/AudienceRules.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <tuple>

namespace PluginKrHvcP2 {

namespace {

void appendFreeRangesOf(int gender, const QVector<Audience> &rivals, QVector<Audience> &freeRanges)
{
    const auto append = [&](qint64 ageMin, qint64 ageMax) {
        const Audience range{static_cast<int>(ageMin), static_cast<int>(ageMax), gender, false};
        if (!freeRanges.contains(range))
            freeRanges.append(range);
    };

    const Audience &first = rivals.first();
    if (first.ageMin > LowestAge)
        append(LowestAge, first.ageMin - 1);
    if (first.ageMax >= HighestAge)
        return;

    qint64 start = qint64{first.ageMax} + 1; // stored ages may be anything
    for (auto it = std::next(rivals.cbegin()); it != rivals.cend(); ++it) {
        if (it->ageMin <= start && start <= it->ageMax) {
            start = qint64{it->ageMax} + 1;
        } else if (start < it->ageMin) {
            append(start, it->ageMin - 1);
            start = qint64{it->ageMax} + 1;
        }
    }
    if (start <= HighestAge)
        append(start, HighestAge);
}

/// How well a free range that touches @p current suits it; higher is better.
int matchPriority(const Audience &freeRange, const Audience &current)
{
    if (freeRange.gender == current.gender)
        return 3;
    if (!freeRange.sharesGenderWith(current))
        return 0;
    return freeRange.gender == Female ? 2 : 1;
}

bool touches(const Audience &freeRange, const Audience &current)
{
    return freeRange.contains(current.ageMin) || freeRange.contains(current.ageMax);
}

bool isNameInUse(const QString &name, const QVariantList &contents)
{
    return std::any_of(contents.cbegin(), contents.cend(),
        [&](const QVariant &entry) { return nameForEditing(entry.toMap()) == name; });
}

} // namespace

QVector<Audience> contentRanges(const QVariantList &contents)
{
    QVector<Audience> ranges;
    ranges.reserve(contents.size());
    std::transform(
        contents.cbegin(), contents.cend(), std::back_inserter(ranges), audienceForEditing);
    std::stable_sort(ranges.begin(), ranges.end(), [](const Audience &a, const Audience &b) {
        return std::tie(a.ageMin, a.ageMax) < std::tie(b.ageMin, b.ageMax);
    });
    return ranges;
}

QVector<Audience> freeRanges(const QVector<Audience> &sortedContents)
{
    QVector<Audience> result;
    for (const int gender : {Male, Female, BothGenders}) {
        QVector<Audience> rivals;
        std::copy_if(sortedContents.cbegin(), sortedContents.cend(), std::back_inserter(rivals),
            [=](const Audience &range) { return (range.gender & gender) != 0; });
        if (!rivals.isEmpty())
            appendFreeRangesOf(gender, rivals, result);
    }
    return result;
}

std::optional<Audience> nextRange(const Audience &current, const QVector<Audience> &freeRanges)
{
    if (freeRanges.isEmpty())
        return std::nullopt;

    std::array<std::optional<int>, 4> lastByPriority;
    for (int i = 0; i < freeRanges.size(); ++i) {
        if (touches(freeRanges.at(i), current))
            lastByPriority.at(matchPriority(freeRanges.at(i), current)) = i;
    }
    for (auto it = lastByPriority.crbegin(); it != lastByPriority.crend(); ++it) {
        if (*it)
            return freeRanges.at((**it + 1) % freeRanges.size());
    }

    // Nothing touches: the last one of the highest gender code.
    return *std::max_element(freeRanges.crbegin(), freeRanges.crend(),
        [](const Audience &a, const Audience &b) { return a.gender < b.gender; });
}

RangeConflicts findConflicts(const Audience &entered, const QVector<Audience> &others)
{
    RangeConflicts conflicts;
    for (const Audience &other : others) {
        if (!other.sharesGenderWith(entered))
            continue;
        conflicts.defaults = conflicts.defaults || (entered.isDefault && other.isDefault);
        conflicts.ages = conflicts.ages || touches(other, entered);
    }
    return conflicts;
}

Refusal findRefusal(const QString &name, const Audience &entered, const QVariantList &others)
{
    if (isNameInUse(name, others))
        return Refusal::NameInUse;
    const RangeConflicts conflicts = findConflicts(entered, contentRanges(others));
    if (conflicts.ages)
        return Refusal::AgesInUse;
    return conflicts.defaults ? Refusal::DefaultInUse : Refusal::None;
}

} // namespace PluginKrHvcP2
