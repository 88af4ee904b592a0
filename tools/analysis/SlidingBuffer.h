#pragma once

#include "tools/analysis/Entry.h"

#include <memory>

class QIODevice;

namespace Analysis {

/// A window of constant size that moves over the bytes of a device, and knows where it is.
class SlidingBuffer
{
public:
    /// The next byte of @p device, which has to outlive this, is the one at @p start.
    SlidingBuffer(QIODevice *device, const Position &start, int capacity);

    const char *begin() const { return m_bytes.get() + m_begin; }
    const char *end() const { return m_bytes.get() + m_end; }
    int size() const { return m_end - m_begin; }
    bool isEmpty() const { return m_begin == m_end; }

    /// Reads more bytes behind end(). False when the window is full or the device has ended.
    /// Pointers into the window are invalid afterwards.
    bool more();
    bool isAtEnd() const { return m_isAtEnd; } ///< the device has ended or failed

    void drop(int count); ///< from the front
    const Position &position() const { return m_position; } ///< of begin()

private:
    QIODevice *m_device;
    Position m_position;
    int m_capacity;
    std::unique_ptr<char[]> m_bytes;
    int m_begin = 0;
    int m_end = 0;
    bool m_isAtEnd = false;
};

} // namespace Analysis
