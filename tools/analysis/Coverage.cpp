#include "tools/analysis/Coverage.h"

#include <algorithm>
#include <iterator>

namespace Analysis {

using namespace PluginKrHvcP2;

namespace {

constexpr int UnknownAge = -1;

FaceResult faceOf(Gender gender, int age)
{
    FaceResult face;
    face.index = 0;
    if (gender != UnknownGender)
        face.gender = Measured<int>{gender};
    if (age != UnknownAge)
        face.age = Measured<int>{age};
    return face;
}

Choice::Fit fitOf(ContentReason reason)
{
    switch (reason) {
    case ContentReason::FullFit:
        return Choice::Full;
    case ContentReason::DefaultFit:
        return Choice::ByDefault;
    case ContentReason::AgeFit:
        return Choice::ByAge;
    default:
        return Choice::Nothing;
    }
}

Choice choiceFor(Gender gender, int age, const DetectionContents &contents)
{
    const FaceEvaluation evaluation = evaluateFace(faceOf(gender, age), contents);
    if (!evaluation.match.isValid())
        return {};
    const int position = evaluation.match.position;
    return {contents.at(position).sequenceNumber, fitOf(evaluation.reasons.at(position))};
}

void count(const Choice &choice, Reach &reach)
{
    if (choice.number != reach.number)
        return;
    reach.full += choice.fit == Choice::Full ? 1 : 0;
    reach.byDefault += choice.fit == Choice::ByDefault ? 1 : 0;
    reach.byAge += choice.fit == Choice::ByAge ? 1 : 0;
}

/// What those get whom @p content is meant for.
QVector<int> chosenInstead(const DetectionContent &content, const QVector<GenderCoverage> &genders)
{
    QVector<int> numbers;
    for (const GenderCoverage &coverage : genders) {
        if ((content.genders & coverage.gender) == 0)
            continue;
        for (int age = LowestCoveredAge; age <= HighestCoveredAge; ++age) {
            const int number = coverage.ages.at(age - LowestCoveredAge).number;
            if (content.coversAge(age) && !numbers.contains(number))
                numbers.append(number);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

Reach reachOf(const DetectionContent &content, const QVector<GenderCoverage> &genders)
{
    Reach reach;
    reach.number = content.sequenceNumber;
    for (const GenderCoverage &coverage : genders) {
        for (const Choice &choice : coverage.ages)
            count(choice, reach);
        count(coverage.unknownAge, reach);
    }
    if (reach.isNobody())
        reach.hiddenBy = chosenInstead(content, genders);
    return reach;
}

template <typename Predicate>
QVector<int> numbersOf(const QVector<Reach> &contents, Predicate isWanted)
{
    QVector<int> numbers;
    for (const Reach &reach : contents) {
        if (isWanted(reach))
            numbers.append(reach.number);
    }
    return numbers;
}

} // namespace

std::size_t coveredPosition(int gender)
{
    const auto last = CoveredGenders.cend() - 1;
    return static_cast<std::size_t>(
        std::distance(CoveredGenders.cbegin(), std::find(CoveredGenders.cbegin(), last, gender)));
}

QVector<Band> GenderCoverage::bands() const
{
    QVector<Band> bands;
    for (int i = 0; i < ages.size(); ++i) {
        const int age = LowestCoveredAge + i;
        if (!bands.isEmpty() && bands.last().choice == ages.at(i))
            bands.last().ages.to = age;
        else
            bands.append({{age, age}, ages.at(i)});
    }
    return bands;
}

QVector<AgeRange> GenderCoverage::holes() const
{
    QVector<AgeRange> holes;
    const QVector<Band> all = bands();
    for (const Band &band : all) {
        if (band.choice.fit == Choice::Nothing)
            holes.append(band.ages);
    }
    return holes;
}

int GenderCoverage::count(Choice::Fit fit) const
{
    return static_cast<int>(std::count_if(
        ages.cbegin(), ages.cend(), [fit](const Choice &choice) { return choice.fit == fit; }));
}

bool Coverage::hasHoles() const
{
    return std::any_of(genders.cbegin(), genders.cend(), [](const GenderCoverage &coverage) {
        return coverage.gender != UnknownGender && coverage.count(Choice::Nothing) > 0;
    });
}

QVector<int> Coverage::unreached() const
{
    return numbersOf(contents, [](const Reach &reach) { return reach.isNobody(); });
}

QVector<int> Coverage::onlyFallbacks() const
{
    return numbersOf(contents, [](const Reach &reach) { return reach.isOnlyFallback(); });
}

Coverage coverageOf(const DetectionContents &contents)
{
    Coverage coverage;
    for (const Gender gender : CoveredGenders) {
        GenderCoverage row;
        row.gender = gender;
        for (int age = LowestCoveredAge; age <= HighestCoveredAge; ++age)
            row.ages.append(choiceFor(gender, age, contents));
        row.unknownAge = choiceFor(gender, UnknownAge, contents);
        coverage.genders.append(row);
    }
    for (const DetectionContent &content : contents)
        coverage.contents.append(reachOf(content, coverage.genders));
    return coverage;
}

} // namespace Analysis
