#pragma once

#include "demo/simulator/RecordingReader.h"
#include "tools/analysis/EntryReader.h"
#include "tools/analysis/RecordingTimes.h"

#include <QCoreApplication>

namespace Analysis {

/// Reads the blocks of a recording of the sensor program's output as frames.
///
/// Their times are in UTC: those of its time stamps, by which a recording that counts from 0 begins
/// with the year 1970, or, where it has none, those of the file beside it. Without either frames
/// have no time.
class RecordedFrames : public EntryReader
{
    Q_DECLARE_TR_FUNCTIONS(RecordedFrames)

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
    QDateTime timeOf(const Simulation::RecordedPart &part);

    Position m_start;
    Position m_position;
    Simulation::RecordingReader m_reader;
    RecordingTimes m_times;
    std::optional<Entry> m_waiting; // behind a problem with its time
};

} // namespace Analysis
