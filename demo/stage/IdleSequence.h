#pragma once

namespace Stage {

/// The sequence of a screen that returns when no other one has been started for a while.
struct IdleSequence
{
    static constexpr int DefaultAfter = 20; // seconds
    static constexpr int MinAfter = 1;
    static constexpr int MaxAfter = 86400;

    int sequence = 0; ///< counted from 1; 0: none
    int after = DefaultAfter; ///< seconds since the last start
};

} // namespace Stage
