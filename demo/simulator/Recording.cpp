#include "demo/simulator/Recording.h"

#include "demo/simulator/RecordingReader.h"

#include <QBuffer>

#include <limits>

namespace Simulation {

FramePlan Recording::planFrame(qint64 frame, int intervalMs) const
{
    const int i = static_cast<int>(frame % blocks.size());
    const bool last = i + 1 == blocks.size();
    FramePlan plan;
    plan.steps.append({Step::Write, blocks.at(i).text, 0});
    plan.nextAfterMs = timed && !last ? blocks.at(i + 1).timeMs - blocks.at(i).timeMs : intervalMs;
    return plan;
}

std::optional<Recording> parseRecording(const QByteArray &text, const QString &name, QString *error)
{
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    RecordingReader reader(&buffer, std::numeric_limits<int>::max());
    Recording recording;
    while (const std::optional<RecordedPart> part = reader.next()) {
        if (part->isProblem()) {
            *error
                = QStringLiteral("%1:%2: %3").arg(name, QString::number(part->line), part->problem);
            return std::nullopt;
        }
        recording.blocks.append(part->block);
    }
    if (recording.blocks.isEmpty()) {
        *error = QStringLiteral("%1: the recording is empty").arg(name);
        return std::nullopt;
    }
    recording.timed = reader.isTimed();
    return recording;
}

QByteArray recordedBlock(qint64 timeMs, const QByteArray &text)
{
    QByteArray block = '@' + QByteArray::number(timeMs) + '\n' + text;
    if (!block.endsWith('\n'))
        block += '\n';
    return block;
}

} // namespace Simulation
