#pragma once

#include "demo/simulator/Recording.h"

#include <QByteArray>
#include <QString>

#include <deque>
#include <optional>

class QIODevice;

namespace Simulation {

/// Something in a recording, in the order of its lines: a block, or a line that is wrong.
struct RecordedPart
{
    Recording::Block block; ///< when there is no problem
    QString problem; ///< empty: none
    qint64 line = 1; ///< counted from 1; where it begins
    qint64 offset = 0; ///< bytes before that line

    bool isProblem() const { return !problem.isEmpty(); }
};

/// Cuts a recording into its blocks while it reads them, so that its size does not matter.
///
/// Behind a problem one may go on: a block without a usable time stamp has the time of the one
/// before, another line that is wrong is left out.
class RecordingReader
{
public:
    /// @p device has to outlive this. A block with more than @p maxBlockBytes is a problem.
    RecordingReader(QIODevice *device, int maxBlockBytes);

    std::optional<RecordedPart> next(); ///< nothing at the end
    /// Whether the first line of @p bytes makes a recording one with times.
    static bool beginsWithTime(const QByteArray &bytes);
    static bool isFaceCount(const QByteArray &trimmedLine); ///< the first line of a frame

    /// Whether the blocks have times; known with the first.
    bool isTimed() const { return m_isTimed; }

private:
    bool readLine();
    void takeLine();
    void takeTimeStamp(const QByteArray &trimmedLine);
    void takeText();
    void startBlock(qint64 timeMs);
    void finishBlock();

    QIODevice *m_device;
    int m_maxBlockBytes;

    QByteArray m_line; // or the next piece of a very long one
    bool m_isLineStart = true; // of m_line
    bool m_isLineEnd = true;
    qint64 m_lineNumber = 0;
    qint64 m_lineOffset = 0;
    qint64 m_nextOffset = 0;

    bool m_isTimed = false;
    bool m_isCounted = false; // a block has its face count
    bool m_isTooLong = false; // the block at hand
    std::optional<RecordedPart> m_part; // the block at hand
    std::optional<RecordedPart> m_leftOut; // the first such line within the block at hand
    std::deque<RecordedPart> m_ready;
};

} // namespace Simulation
