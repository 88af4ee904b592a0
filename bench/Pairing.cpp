#include "Pairing.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace Bench {

namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;
using Samples = std::vector<double>;

constexpr int WarmUpPairs = 5;
constexpr double SampleUs = 250;
constexpr int MaxRepetitions = 10000;

/// Appends to each of @p samples the time from the beginning to the end of that step.
void sample(const Side &side, std::vector<Samples> &samples)
{
    const Clock::time_point start = Clock::now();
    for (std::size_t i = 0; i < side.steps.size(); ++i) {
        side.steps[i]();
        samples[i].push_back(Microseconds(Clock::now() - start).count());
    }
    if (side.cleanUp)
        side.cleanUp();
}

double median(Samples &samples)
{
    const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::nth_element(samples.begin(), middle, samples.end());
    return *middle;
}

std::vector<Comparison> run(const Side &ours, const Side &yardstick, int pairs)
{
    std::vector<Samples> oursTaken(ours.steps.size());
    std::vector<Samples> yardstickTaken(yardstick.steps.size());
    for (int i = 0; i < pairs; ++i) {
        sample(ours, oursTaken);
        sample(yardstick, yardstickTaken);
    }

    std::vector<Comparison> comparisons;
    for (std::size_t i = 0; i < oursTaken.size(); ++i) {
        const std::size_t last = yardstickTaken.size() - 1;
        comparisons.push_back({median(oursTaken[i]), median(yardstickTaken[std::min(i, last)])});
    }
    return comparisons;
}

} // namespace

std::vector<Comparison> compare(const Side &ours, const Side &yardstick, int pairs)
{
    run(ours, yardstick, WarmUpPairs);
    std::vector<Comparison> worst = run(ours, yardstick, pairs);
    for (int i = 1; i < Runs; ++i) {
        const std::vector<Comparison> next = run(ours, yardstick, pairs);
        for (std::size_t step = 0; step < worst.size(); ++step) {
            if (next[step].ratio() > worst[step].ratio())
                worst[step] = next[step];
        }
    }
    return worst;
}

Step repeated(const Step &work, int times)
{
    return [=] {
        for (int i = 0; i < times; ++i)
            work();
    };
}

int repetitions(const Step &work)
{
    std::vector<Samples> samples(1);
    for (int i = 0; i < WarmUpPairs; ++i)
        sample({{work}, {}}, samples);
    const double once = *std::min_element(samples[0].cbegin(), samples[0].cend());
    return static_cast<int>(std::clamp(std::ceil(SampleUs / once), 1.0, double{MaxRepetitions}));
}

} // namespace Bench
