#include "tools/hvcp2/FrameReplay.h"

namespace Hvcp2 {

using Analysis::Entry;
using Analysis::ReplayedFrame;

FrameReplay::FrameReplay(const Analysis::Plan &plan, FrameInput &input)
    : m_replay(plan)
    , m_input(input)
{ }

std::optional<ReplayedFrame> FrameReplay::next()
{
    while (const std::optional<Entry> entry = m_input.next()) {
        if (m_input.unreadable() != m_unreadable) {
            m_unreadable = m_input.unreadable();
            m_replay.skip();
        }
        if (std::optional<ReplayedFrame> frame = m_replay.take(*entry))
            return frame;
    }
    return m_replay.finish();
}

} // namespace Hvcp2
