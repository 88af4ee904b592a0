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
    Entry entry;
    entry.position = {m_start.file, m_start.line + part->line - 1, m_start.offset + part->offset};
    if (part->isProblem()) {
        entry.text = part->problem;
        return entry;
    }
    m_position = entry.position; // not of a problem: what is wrong may be right without its block
    entry.kind = Entry::Frame;
    const QByteArray &text = part->block.text;
    entry.text = QString::fromUtf8(text.constData(), text.size()); // keeps NULs
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
