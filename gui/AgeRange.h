#pragma once

#include "core/Gender.h"

#include <QVariant>
#include <QVector>

#include <optional>

namespace PluginKrHvcP2 {

constexpr int LowestAge = 0; ///< years
constexpr int HighestAge = 75; ///< years; stands for older viewers too

/// The viewers a content is meant for, or ages that no content of a gender covers yet.
struct AgeRange
{
    int ageMin = LowestAge; ///< years, inclusive
    int ageMax = HighestAge; ///< years, inclusive
    int gender = UnknownGender; ///< set of Gender bits
    bool isDefault = false;

    bool contains(int age) const { return ageMin <= age && age <= ageMax; }
    bool sharesGenderWith(const AgeRange &other) const { return (gender & other.gender) != 0; }
};

bool operator==(const AgeRange &a, const AgeRange &b);

/// The range of one entry of a screen's "contents" list; missing ages leave their side open.
AgeRange contentRange(const QVariant &entry);

/// The ranges of all entries of a "contents" list, sorted by lowest and then by highest age.
QVector<AgeRange> contentRanges(const QVariantList &contents);

/// The ages that no content covers yet, for each gender that has a content at all.
/// @p sortedContents is sorted as by contentRanges().
QVector<AgeRange> freeRanges(const QVector<AgeRange> &sortedContents);

/// The free range to propose after @p current: the one behind the best match that touches it, or
/// the last one of the widest gender. Nothing when there is no free range.
std::optional<AgeRange> nextRange(const AgeRange &current, const QVector<AgeRange> &freeRanges);

/// What keeps a content from being stored beside others.
struct RangeConflicts
{
    bool ages = false; ///< one of its ends lies within another range of a shared gender
    bool defaults = false; ///< another one is the default of a shared gender already
};

/// A range that merely encloses another one does not conflict with it.
RangeConflicts findConflicts(const AgeRange &entered, const QVector<AgeRange> &others);

} // namespace PluginKrHvcP2
