#include "Judgement.h"

#include <algorithm>

namespace Soak {

namespace {

constexpr int FewestSamples = 8; // two a quarter
constexpr double Mebibyte = 1024 * 1024;

struct Count
{
    const char *name;
    int Sample::*member;
};

constexpr Count Counts[] = {
    {"items", &Sample::items},
    {"objects", &Sample::objects},
    {"timers", &Sample::timers},
    {"descriptors", &Sample::descriptors},
    {"children", &Sample::children},
};

/// Mebibytes. @p quarter is counted from 1.
double medianMemory(const QVector<Sample> &samples, int quarter)
{
    const int begin = samples.size() * (quarter - 1) / 4;
    const int end = samples.size() * quarter / 4;
    QVector<qint64> values;
    for (const Sample &sample : samples.mid(begin, end - begin))
        values.append(sample.memory);
    const auto middle = values.begin() + values.size() / 2;
    std::nth_element(values.begin(), middle, values.end());
    return static_cast<double>(*middle) / Mebibyte;
}

} // namespace

QStringList growth(const QVector<Sample> &samples, std::optional<double> memoryAllowance)
{
    if (samples.size() < FewestSamples)
        return {QStringLiteral("the run was too short to be judged")};

    QStringList sentences;
    if (memoryAllowance) {
        const double before = medianMemory(samples, 2);
        const double after = medianMemory(samples, 4);
        if (after - before > *memoryAllowance)
            sentences += QStringLiteral("memory: %1 MiB in the second quarter, %2 MiB in the last "
                                        "one, at most %3 MiB more would be noise")
                             .arg(before, 0, 'f', 2)
                             .arg(after, 0, 'f', 2)
                             .arg(*memoryAllowance, 0, 'f', 2);
    }
    const Sample &half = samples.at((samples.size() - 1) / 2);
    const Sample &end = samples.constLast();
    for (const Count &count : Counts) {
        if (end.*count.member > half.*count.member)
            sentences += QStringLiteral("%1: %2 at half time, %3 at the end")
                             .arg(QLatin1String(count.name))
                             .arg(half.*count.member)
                             .arg(end.*count.member);
    }
    return sentences;
}

} // namespace Soak
