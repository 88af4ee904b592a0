#pragma once

namespace PluginKrHvcP2 {

/// The values that a number may have, both ends inclusive.
struct IntegerRange
{
    int minimum = 0;
    int maximum = 0;

    constexpr bool contains(int value) const { return minimum <= value && value <= maximum; }
};

} // namespace PluginKrHvcP2
