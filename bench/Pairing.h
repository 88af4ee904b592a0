#pragma once

#include <functional>
#include <vector>

namespace Bench {

using Step = std::function<void()>;

/// One of two things whose costs are compared.
struct Side
{
    std::vector<Step> steps; ///< timed, in this order
    Step cleanUp; ///< not timed; empty: nothing to do
};

/// What both sides took, each the median over the pairs of one run.
struct Comparison
{
    double ours = 0; ///< microseconds
    double yardstick = 0; ///< microseconds

    double ratio() const { return ours / yardstick; }
};

constexpr int Pairs = 201;
constexpr int Runs = 3;

/// Compares @p ours with @p yardstick, which take turns, so that whatever else the machine does
/// meets both. One comparison for each of our steps, counted from the first step's beginning to
/// that one's end, against the yardstick's to the same step or its last one; that of the worst run.
std::vector<Comparison> compare(const Side &ours, const Side &yardstick, int pairs = Pairs);

/// @p work as often as it takes for a clock to measure it.
Step repeated(const Step &work, int times);

/// How often @p work has to be repeated for a sample of about a quarter of a millisecond.
int repetitions(const Step &work);

} // namespace Bench
