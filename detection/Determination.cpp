#include "detection/Determination.h"

#include <algorithm>
#include <utility>

namespace PluginKrHvcP2 {

namespace {

constexpr double DirectionWeight = 0.5;

constexpr double FullFitBonus = 1.5;
constexpr double FullFitBonusMarkedGender = 1.65;
constexpr double FullFitMarkedAgeFactor = 1.1;
constexpr double DefaultBonus = 1.0;
constexpr double DefaultBonusMarkedGender = 1.1;
constexpr double AgeFitBonus = 0.5;
constexpr double AgeFitBonusMarkedAge = 0.55;

/// Position of the last element equal to @p value; -1 when there is none.
int lastPosition(const QVector<int> &sorted, int value)
{
    const auto it = std::upper_bound(sorted.cbegin(), sorted.cend(), value);
    const bool found = it != sorted.cbegin() && *(it - 1) == value;
    return found ? static_cast<int>(it - sorted.cbegin()) - 1 : -1;
}

/// Position of the first element equal to @p value; -1 when there is none.
int firstPosition(const QVector<int> &sorted, int value)
{
    const auto it = std::lower_bound(sorted.cbegin(), sorted.cend(), value);
    const bool found = it != sorted.cend() && *it == value;
    return found ? static_cast<int>(it - sorted.cbegin()) : -1;
}

} // namespace

ContentMatch matchContent(const FaceResult &face, const DetectionContents &contents)
{
    const Measured<int> age = face.age.value_or(Measured<int>{-1});
    const Measured<int> gender = face.gender.value_or(Measured<int>{UnknownGender});

    int defaultFit = -1;
    int ageFit = -1;
    for (int position = 0; position < contents.size(); ++position) {
        const DetectionContent &content = contents.at(position);
        const bool coversAge = content.coversAge(age.value);
        if ((content.genders & gender.value) == 0) {
            if (coversAge)
                ageFit = position;
        } else if (coversAge) {
            double bonus = gender.marked ? FullFitBonusMarkedGender : FullFitBonus;
            if (age.marked)
                bonus *= FullFitMarkedAgeFactor;
            return {position, bonus};
        } else if (content.isDefault) {
            defaultFit = position;
        }
    }

    if (defaultFit >= 0)
        return {defaultFit, gender.marked ? DefaultBonusMarkedGender : DefaultBonus};
    if (ageFit >= 0)
        return {ageFit, age.marked ? AgeFitBonusMarkedAge : AgeFitBonus};
    return {};
}

Prominence::Prominence(QVector<int> sizes, QVector<int> directionValues)
    : m_sizes(std::move(sizes))
    , m_directionValues(std::move(directionValues))
{
    std::sort(m_sizes.begin(), m_sizes.end());
    std::sort(m_directionValues.begin(), m_directionValues.end());
}

int Prominence::sizeRank(const FaceResult &face) const
{
    return lastPosition(m_sizes, face.size());
}

int Prominence::directionRank(const FaceResult &face) const
{
    return m_directionValues.size() - firstPosition(m_directionValues, face.directionValue());
}

double Prominence::score(const FaceResult &face) const
{
    return sizeRank(face) + directionRank(face) * DirectionWeight;
}

QList<CalculatedData> determineSequences(const QList<FaceResult> &faces, QVector<int> sizes,
    QVector<int> directionValues, const DetectionContents &contents)
{
    if (faces.isEmpty())
        return {};

    const Prominence prominence(std::move(sizes), std::move(directionValues));
    QList<CalculatedData> results;
    for (const FaceResult &face : faces) {
        const ContentMatch match = matchContent(face, contents);
        if (!match.isValid())
            continue;
        CalculatedData result;
        result.faceIndex = face.index;
        result.score = prominence.score(face) + match.bonus;
        result.seqNumber = contents.at(match.position).sequenceNumber;
        result.restrictionKeys = contents.at(match.position).identifiers;
        result.time = face.time;
        results.append(result);
    }

    std::stable_sort(
        results.begin(), results.end(), [](const CalculatedData &a, const CalculatedData &b) {
            return a.score != b.score ? a.score > b.score : a.faceIndex > b.faceIndex;
        });
    return results;
}

} // namespace PluginKrHvcP2
