#include "tools/analysis/SlidingBuffer.h"

#include <QIODevice>

#include <algorithm>
#include <cstring>

namespace Analysis {

namespace {

constexpr int ReadSize = 256 * 1024; // bytes; stays in a processor's cache

/// In strides whose count fits into a byte: compilers turn them into vector code.
qint64 countLines(const char *begin, const char *end)
{
    constexpr std::ptrdiff_t Stride = 240;
    qint64 lines = 0;
    while (begin != end) {
        const char *const strideEnd = begin + std::min(Stride, end - begin);
        unsigned char inStride = 0;
        for (; begin != strideEnd; ++begin)
            inStride = static_cast<unsigned char>(inStride + (*begin == '\n' ? 1 : 0));
        lines += inStride;
    }
    return lines;
}

} // namespace

SlidingBuffer::SlidingBuffer(QIODevice *device, const Position &start, int capacity)
    : m_device(device)
    , m_position(start)
    , m_capacity(capacity)
    , m_bytes(new char[static_cast<std::size_t>(capacity)]) // not touched before it is needed
{ }

bool SlidingBuffer::more()
{
    if (m_isAtEnd || size() == m_capacity)
        return false;
    if (m_capacity - m_end < std::min(ReadSize, m_capacity - size())) {
        std::memmove(m_bytes.get(), begin(), static_cast<std::size_t>(size()));
        m_end = size();
        m_begin = 0;
    }
    const qint64 count
        = m_device->read(m_bytes.get() + m_end, std::min(ReadSize, m_capacity - m_end));
    m_isAtEnd = count <= 0;
    m_end += static_cast<int>(std::max<qint64>(0, count));
    return !m_isAtEnd;
}

void SlidingBuffer::drop(int count)
{
    m_position.line += countLines(begin(), begin() + count);
    m_position.offset += count;
    m_begin += count;
}

} // namespace Analysis
