#include "tools/analysis/RecordedFrames.h"

#include <utility>

namespace Analysis {

using Simulation::RecordedPart;
using Simulation::RecordingReader;

RecordedFrames::RecordedFrames(QIODevice *device, const Position &start)
    : m_start(start)
    , m_position(start)
    , m_reader(device, MaxBlockBytes)
    , m_times(timesFileName(start.file))
{ }

std::optional<Entry> RecordedFrames::next()
{
    if (m_waiting)
        return std::exchange(m_waiting, std::nullopt);
    const std::optional<RecordedPart> part = m_reader.next();
    if (!part)
        return std::nullopt;
    m_position = {m_start.file, m_start.line + part->line - 1, m_start.offset + part->offset};
    Entry entry;
    entry.position = m_position;
    if (part->isProblem()) {
        entry.text = part->problem;
        return entry;
    }
    entry.kind = Entry::Frame;
    entry.text = QString::fromUtf8(part->block.text);
    entry.time = timeOf(*part);
    const qint64 line = m_times.takeUnreadableLine();
    if (line == 0)
        return entry;
    m_waiting = entry;
    Entry problem;
    problem.position = {timesFileName(m_start.file), line, 0};
    problem.text = tr("this is no time of a recording");
    return problem;
}

QDateTime RecordedFrames::timeOf(const RecordedPart &part)
{
    const std::optional<qint64> timeMs = m_reader.isTimed() ? std::make_optional(part.block.timeMs)
                                                            : m_times.timeAt(m_position.offset);
    return timeMs ? QDateTime::fromMSecsSinceEpoch(*timeMs, Qt::UTC) : QDateTime();
}

bool RecordedFrames::isRecording(const QByteArray &bytes)
{
    const QByteArray text = bytes.toLower().trimmed();
    return RecordingReader::beginsWithTime(bytes) || text.contains("face result count:")
        || text.startsWith("failed ");
}

} // namespace Analysis
