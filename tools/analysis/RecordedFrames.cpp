#include "tools/analysis/RecordedFrames.h"

namespace Analysis {

using Simulation::RecordedPart;
using Simulation::RecordingReader;

RecordedFrames::RecordedFrames(QIODevice *device, const Position &start)
    : m_start(start)
    , m_position(start)
    , m_reader(device, MaxBlockBytes)
{ }

std::optional<Entry> RecordedFrames::next()
{
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
    if (m_reader.isTimed())
        entry.time = QDateTime::fromMSecsSinceEpoch(part->block.timeMs, Qt::UTC);
    return entry;
}

bool RecordedFrames::isRecording(const QByteArray &bytes)
{
    const QByteArray text = bytes.toLower().trimmed();
    return RecordingReader::beginsWithTime(bytes) || text.contains("face result count:")
        || text.startsWith("failed ");
}

} // namespace Analysis
