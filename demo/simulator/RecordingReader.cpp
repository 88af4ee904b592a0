#include "demo/simulator/RecordingReader.h"

#include <QIODevice>
#include <QtNumeric>

#include <algorithm>
#include <utility>

namespace Simulation {

namespace {

// A hundred years: room for a clock's time, and far from where its nanoseconds overflow.
constexpr qint64 MaxTimeMs = 36525 * Q_INT64_C(86400000);
constexpr int MaxPieceBytes = 65536;

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

/// Whether @p line has to be looked at: most lines are neither a time stamp nor a face count.
bool mayPartBlocks(const QByteArray &line)
{
    const auto first = std::find_if_not(
        line.cbegin(), line.cend(), [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); });
    return first != line.cend() && (*first == '@' || *first == 'F' || *first == 'f');
}

} // namespace

RecordingReader::RecordingReader(QIODevice *device, int maxBlockBytes)
    : m_device(device)
    , m_maxBlockBytes(maxBlockBytes)
{
    m_line.reserve(MaxPieceBytes); // and kept
}

bool RecordingReader::beginsWithTime(const QByteArray &bytes)
{
    return isTimeStamp(bytes.left(bytes.indexOf('\n')).trimmed());
}

bool RecordingReader::isFaceCount(const QByteArray &trimmedLine)
{
    return trimmedLine.toLower().startsWith("face result count:");
}

std::optional<RecordedPart> RecordingReader::next()
{
    while (m_ready.empty() && readLine())
        takeLine();
    if (m_ready.empty())
        finishBlock();
    if (m_ready.empty())
        return std::nullopt;
    RecordedPart part = std::move(m_ready.front());
    m_ready.pop_front();
    return part;
}

bool RecordingReader::readLine()
{
    m_isLineStart = m_isLineEnd;
    m_line.resize(MaxPieceBytes);
    const qint64 size = m_device->readLine(m_line.data(), m_line.size());
    m_line.resize(static_cast<int>(std::max<qint64>(0, size)));
    m_isLineEnd = m_line.endsWith('\n');
    if (m_isLineStart) {
        ++m_lineNumber;
        m_lineOffset = m_nextOffset;
    }
    m_nextOffset += m_line.size();
    return !m_line.isEmpty();
}

void RecordingReader::takeLine()
{
    const QByteArray trimmed
        = m_isLineStart && mayPartBlocks(m_line) ? m_line.trimmed() : QByteArray();
    if (isTimeStamp(trimmed)) {
        takeTimeStamp(trimmed);
        return;
    }
    const bool hasCount = isFaceCount(trimmed);
    if (!m_part || (hasCount && m_isCounted && !m_isTimed))
        startBlock(m_part ? m_part->block.timeMs : 0);
    m_isCounted = m_isCounted || hasCount;
    takeText();
}

void RecordingReader::takeTimeStamp(const QByteArray &trimmedLine)
{
    const std::optional<qint64> timeMs = stampedTime(trimmedLine);
    const bool isFirst = !m_part;
    const qint64 earlierMs = m_part ? m_part->block.timeMs : 0;
    QString problem;
    if (!timeMs)
        problem
            = QStringLiteral("the time stamp must be a whole number from 0 to %1").arg(MaxTimeMs);
    else if (!isFirst && !m_isTimed)
        problem = QStringLiteral("a time stamp in a recording that does not begin with one");
    else if (*timeMs < earlierMs)
        problem = QStringLiteral("the time stamp is earlier than the one before");

    m_isTimed = m_isTimed || isFirst;
    if (m_isTimed)
        startBlock(problem.isEmpty() ? *timeMs : earlierMs);
    if (problem.isEmpty())
        return;
    const RecordedPart part{{}, problem, m_lineNumber, m_lineOffset};
    if (m_isTimed)
        m_ready.push_back(part);
    else if (!m_leftOut)
        m_leftOut = part;
}

void RecordingReader::takeText()
{
    QByteArray &text = m_part->block.text;
    if (m_isTooLong)
        return;
    if (text.size() > m_maxBlockBytes - m_line.size()) {
        m_isTooLong = true;
        text.clear();
        RecordedPart part = *m_part;
        part.problem = QStringLiteral("the block is longer than %1 bytes").arg(m_maxBlockBytes);
        m_ready.push_back(part);
        return;
    }
    text += m_line;
}

void RecordingReader::startBlock(qint64 timeMs)
{
    finishBlock();
    m_isTooLong = false;
    m_part = RecordedPart{{timeMs, QByteArray()}, QString(), m_lineNumber, m_lineOffset};
}

void RecordingReader::finishBlock()
{
    if (m_part && !m_isTooLong)
        m_ready.push_back(*std::exchange(m_part, std::nullopt));
    m_part.reset();
    if (m_leftOut)
        m_ready.push_back(*std::exchange(m_leftOut, std::nullopt));
}

} // namespace Simulation
