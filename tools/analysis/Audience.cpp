#include "tools/analysis/Audience.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace Analysis {

using PluginKrHvcP2::Gender;

namespace {

constexpr int YearsPerBand = 10;

template <typename Counts>
qint64 sumOfCounts(const Counts &counts)
{
    return std::accumulate(counts.cbegin(), counts.cend(), qint64{0});
}

} // namespace

int ageBandOf(int age)
{
    return age < 0 ? UnknownAgeBand : std::min(age / YearsPerBand, UnknownAgeBand - 1);
}

AgeRange agesOfBand(int band)
{
    const int from = band * YearsPerBand;
    const bool isLast = band == UnknownAgeBand - 1;
    return {from, isLast ? std::numeric_limits<int>::max() : from + YearsPerBand - 1};
}

qint64 sumOf(const Audience &audience)
{
    return std::accumulate(audience.cbegin(), audience.cend(), qint64{0},
        [](qint64 sum, const auto &bands) { return sum + sumOfCounts(bands); });
}

qint64 sumOf(const Audience &audience, Gender gender)
{
    return sumOfCounts(audience.at(coveredPosition(gender)));
}

qint64 &faceCount(Audience &audience, int gender, int age)
{
    return audience.at(coveredPosition(gender)).at(static_cast<std::size_t>(ageBandOf(age)));
}

} // namespace Analysis
