#pragma once

#include "core/screen/DetectionContent.h"
#include "core/screen/Gender.h"
#include "detection/FaceEvaluation.h"

#include <QVector>

#include <array>
#include <cstddef>

namespace Analysis {

constexpr int LowestCoveredAge = 0; ///< years
constexpr int HighestCoveredAge = 100; ///< years, inclusive
constexpr int CoveredAges = HighestCoveredAge - LowestCoveredAge + 1;

/// The genders of a face that a coverage looks at, in this order.
constexpr std::array<PluginKrHvcP2::Gender, 3> CoveredGenders{
    PluginKrHvcP2::Female, PluginKrHvcP2::Male, PluginKrHvcP2::UnknownGender};

/// The position of @p gender in CoveredGenders; what is neither female nor male is unknown.
std::size_t coveredPosition(int gender);

/// The ages @p from to @p to, in years, both inclusive.
struct AgeRange
{
    int from = 0;
    int to = 0;

    friend bool operator==(const AgeRange &a, const AgeRange &b)
    {
        return a.from == b.from && a.to == b.to;
    }
};

/// What viewers of one gender and age get.
struct Choice
{
    enum Fit { Nothing, Full, ByDefault, ByAge };

    int number = 0; ///< of the content; 0: nothing fits
    Fit fit = Nothing;

    friend bool operator==(const Choice &a, const Choice &b)
    {
        return a.number == b.number && a.fit == b.fit;
    }
};

/// Neighbouring ages that get the same.
struct Band
{
    AgeRange ages;
    Choice choice;
};

/// What viewers of one gender get.
struct GenderCoverage
{
    PluginKrHvcP2::Gender gender = PluginKrHvcP2::UnknownGender;
    QVector<Choice> ages; ///< at position p: age LowestCoveredAge + p
    Choice unknownAge; ///< when the age was not measured

    QVector<Band> bands() const; ///< by rising age, together all ages
    QVector<AgeRange> holes() const; ///< the ages for which nothing fits
    int count(Choice::Fit fit) const; ///< ages that get their content like that
};

/// Whom one content reaches.
struct Reach
{
    int number = 0;
    int full = 0; ///< ages, those of all genders added up
    int byDefault = 0; ///< likewise; a gender without a measured age counts as one more
    int byAge = 0; ///< likewise
    /// When it reaches nobody: the contents that those who fit gender and age get instead, by
    /// rising number. None when there are no such viewers of the covered ages.
    QVector<int> hiddenBy;

    bool isNobody() const { return full == 0 && byDefault == 0 && byAge == 0; }
    bool isOnlyFallback() const { return full == 0 && !isNobody(); }
};

/// Who gets what.
struct Coverage
{
    QVector<GenderCoverage> genders; ///< as CoveredGenders
    QVector<Reach> contents; ///< those that take part, in their order

    /// Whether nothing fits viewers whose gender is known. The others can only be reached through
    /// contents for their age: no content is the default for them.
    bool hasHoles() const;
    QVector<int> unreached() const; ///< numbers of the contents that reach nobody
    QVector<int> onlyFallbacks() const; ///< of those that fit nobody, but are shown to somebody
};

Coverage coverageOf(const PluginKrHvcP2::DetectionContents &contents);

} // namespace Analysis
