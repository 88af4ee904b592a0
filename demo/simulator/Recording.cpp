#include "demo/simulator/Recording.h"

#include <QtNumeric>

namespace Simulation {

namespace {

// A hundred years: room for a clock's time, and far from where its nanoseconds overflow.
constexpr qint64 MaxTimeMs = 36525 * Q_INT64_C(86400000);

/// True for '@' and a number of any form and size, also for one that is no time.
bool isTimeStamp(const QByteArray &trimmedLine)
{
    if (!trimmedLine.startsWith('@'))
        return false;
    bool ok = false;
    const double number = trimmedLine.mid(1).toDouble(&ok);
    return ok || qIsInf(number);
}

std::optional<qint64> stampedTime(const QByteArray &trimmedLine)
{
    bool ok = false;
    const qint64 timeMs = trimmedLine.mid(1).toLongLong(&ok);
    if (!ok || timeMs < 0 || timeMs > MaxTimeMs)
        return std::nullopt;
    return timeMs;
}

bool isFaceCount(const QByteArray &trimmedLine)
{
    return trimmedLine.toLower().startsWith("face result count:");
}

} // namespace

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
    Recording recording;
    bool counted = false; // the current block has its face count
    int lineNumber = 0;
    for (int begin = 0; begin < text.size();) {
        const int newline = text.indexOf('\n', begin);
        const int end = newline < 0 ? text.size() : newline + 1;
        const QByteArray line = text.mid(begin, end - begin);
        const QByteArray trimmed = line.trimmed();
        begin = end;
        ++lineNumber;

        const auto fail = [&](const QString &reason) {
            *error = QStringLiteral("%1:%2: %3").arg(name, QString::number(lineNumber), reason);
            return std::nullopt;
        };
        QVector<Recording::Block> &blocks = recording.blocks;
        if (isTimeStamp(trimmed)) {
            const std::optional<qint64> timeMs = stampedTime(trimmed);
            if (!timeMs)
                return fail(QStringLiteral("the time stamp must be a whole number from 0 to %1")
                                .arg(MaxTimeMs));
            if (blocks.isEmpty())
                recording.timed = true;
            else if (!recording.timed)
                return fail(
                    QStringLiteral("a time stamp in a recording that does not begin with one"));
            else if (*timeMs < blocks.last().timeMs)
                return fail(QStringLiteral("the time stamp is earlier than the one before"));
            blocks.append(Recording::Block{*timeMs, QByteArray()});
            continue;
        }
        const bool startsBlock = !recording.timed && counted && isFaceCount(trimmed);
        if (blocks.isEmpty() || startsBlock)
            blocks.append(Recording::Block());
        counted = counted || isFaceCount(trimmed);
        blocks.last().text += line;
    }
    if (recording.blocks.isEmpty()) {
        *error = QStringLiteral("%1: the recording is empty").arg(name);
        return std::nullopt;
    }
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
