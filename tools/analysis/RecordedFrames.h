#pragma once

#include "demo/simulator/RecordingReader.h"
#include "tools/analysis/EntryReader.h"

namespace Analysis {

/// Reads the blocks of a recording of the sensor program's output as frames. Their times are in
/// UTC; a recording that counts from 0 begins with the year 1970.
class RecordedFrames : public EntryReader
{
public:
    static constexpr int MaxBlockBytes = 1024 * 1024; ///< longer ones are Unknown

    /// The next byte of @p device, which has to outlive this, is the one at @p start.
    RecordedFrames(QIODevice *device, const Position &start);

    std::optional<Entry> next() override;
    /// Of the last block: it may have grown.
    Position position() const override { return m_position; }

    /// Whether there is a line of the sensor program or a time stamp in @p bytes, the beginning of
    /// a file.
    static bool isRecording(const QByteArray &bytes);

private:
    Position m_start;
    Position m_position;
    Simulation::RecordingReader m_reader;
};

} // namespace Analysis
