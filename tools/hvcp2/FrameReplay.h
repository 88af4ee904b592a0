#pragma once

#include "tools/analysis/Replay.h"
#include "tools/hvcp2/FrameInput.h"

#include <optional>

namespace Hvcp2 {

/// Replays the frames of a command line under a plan, one after another.
class FrameReplay
{
public:
    /// @p input has to outlive it.
    FrameReplay(const Analysis::Plan &plan, FrameInput &input);

    std::optional<Analysis::ReplayedFrame> next(); ///< nothing at the end

    const Analysis::Replay &replay() const { return m_replay; }

private:
    Analysis::Replay m_replay;
    FrameInput &m_input;
    qint64 m_unreadable = 0; // of the input, so far
};

} // namespace Hvcp2
