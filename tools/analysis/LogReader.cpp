#include "tools/analysis/LogReader.h"

#include "tools/analysis/LogMessage.h"

#include <QTextCodec>

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace Analysis {

namespace {

constexpr int LogToleranceMs = 999; // the log holds whole seconds
constexpr int LineWidth = 40; // of headers, at least, and end lines
constexpr int MaxHeaderBytes = 1024;
constexpr int Capacity = LogReader::MaxTextBytes + 512 * 1024; // room to read in large pieces

constexpr char StampForm[] = ">> 0000-00-00 00:00:00 ["; // a digit for each 0
constexpr int StampLength = sizeof(StampForm) - 1;
constexpr char EndLine[] = "===================================== <<";
static_assert(sizeof(EndLine) - 1 == LineWidth, "the end line's width");
// Stands where the end line belongs when that went into the text, to a marker "%1" or "%2" in it.
constexpr char MovedEndLine[] = "\n%3\n\n";
constexpr int MaxMovedEndLine = 8; // with carriage returns
constexpr char ByteOrderMark[] = "\xef\xbb\xbf";

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The number in @p length digits.
int number(const char *digits, int length)
{
    int result = 0;
    for (; length > 0; --length)
        result = 10 * result + (*digits++ - '0');
    return result;
}

const char *find(const char *begin, const char *end, char wanted)
{
    const void *const found = begin == end
        ? nullptr
        : std::memchr(begin, wanted, static_cast<std::size_t>(end - begin));
    return found == nullptr ? end : static_cast<const char *>(found);
}

bool hasStamp(const char *begin, const char *end)
{
    return end - begin >= LineWidth
        && std::equal(StampForm, StampForm + StampLength, begin,
            [](char form, char c) { return form == '0' ? isDigit(c) : form == c; });
}

using Header = LogReader::Header;

/// The header that begins at @p begin, if there is a whole one. @p end is that of all bytes.
Header readHeader(const char *begin, const char *end)
{
    if (!hasStamp(begin, end))
        return {};
    const char *const limit = begin + std::min<std::ptrdiff_t>(end - begin, MaxHeaderBytes + 2);
    const char *const newline = find(begin, limit, '\n');
    if (newline == limit)
        return {};
    const char *close = newline[-1] == '\r' ? newline - 1 : newline;
    if (close - begin < LineWidth || close - begin > MaxHeaderBytes)
        return {};
    while (close[-1] == '=')
        --close;
    --close;
    // Behind a header that was cut stands another one.
    const char *const level = begin + StampLength;
    if (*close != ']' || close < level || find(level, close, '[') != close)
        return {};

    Header header;
    header.date = QDate(number(begin + 3, 4), number(begin + 8, 2), number(begin + 11, 2));
    header.time = QTime(number(begin + 14, 2), number(begin + 17, 2), number(begin + 20, 2));
    if (!header.date.isValid() || !header.time.isValid())
        return {};
    header.levelSize = static_cast<int>(close - level);
    header.size = static_cast<int>(newline + 1 - begin);
    return header;
}

/// The first header, at the begin of a line or not, in [@p begin, @p end); @p end when there is
/// none.
const char *findHeader(const char *begin, const char *end)
{
    for (const char *p = find(begin, end, '>'); p != end; p = find(p + 1, end, '>')) {
        if (readHeader(p, end))
            return p;
    }
    return end;
}

bool isLineEnd(const char *p, const char *end)
{
    return p != end && (*p == '\n' || *p == '\r');
}

/// The first end line in [@p begin, @p end), which begins with a line; null when there is none.
/// Only at the file's end may its line break be missing.
const char *findEndLine(const char *begin, const char *end, bool isFileEnd)
{
    for (const char *p = find(begin, end, '<'); p != end; p = find(p + 1, end, '<')) {
        constexpr int Before = LineWidth - 2;
        const char *const line = p - Before;
        if (p - begin < Before || end - p < 2 || std::memcmp(line, EndLine, LineWidth) != 0
            || (line != begin && line[-1] != '\n'))
            continue;
        const char *const lineEnd = line + LineWidth;
        if (isLineEnd(lineEnd, end) || (lineEnd == end && isFileEnd))
            return line;
    }
    return nullptr;
}

bool hasMovedEndLine(const char *begin, const char *end)
{
    const int size = static_cast<int>(std::min<std::ptrdiff_t>(MaxMovedEndLine, end - begin));
    QByteArray tail(end - size, size);
    tail.replace("\r\n", "\n");
    return tail.endsWith(MovedEndLine);
}

/// Behind the last line feed in [@p begin, @p end).
const char *lineBegin(const char *begin, const char *end)
{
    while (end != begin && end[-1] != '\n')
        --end;
    return end;
}

/// The header in a record's text [@p begin, @p end) that cannot be text of the record; @p end when
/// there is none.
const char *findNextRecord(const char *begin, const char *end)
{
    const char *p = findHeader(begin, end);
    const char *const tab = p == end ? end : find(begin, end, '\t');
    for (; p != end; p = findHeader(p + 1, end)) {
        if (hasMovedEndLine(begin, p))
            return p;
        // With tabs it is the sensor program's own text, which may have any line. In the text of a
        // table such a line is the name of a row without a value: the line behind it is empty.
        const char *const behind = p + readHeader(p, end).size;
        if (p < tab && behind != end && !isLineEnd(behind, end))
            return p;
    }
    return end;
}

QString decode(const char *begin, const char *end, bool *isValid)
{
    const int size = static_cast<int>(end - begin);
    QString text = QString::fromUtf8(begin, size);
    // A text may hold the character that stands for broken ones; then they have to be counted.
    if (text.contains(QChar(QChar::ReplacementCharacter))) {
        QTextCodec::ConverterState state;
        QTextCodec::codecForName("UTF-8")->toUnicode(begin, size, &state);
        *isValid = state.invalidChars == 0 && state.remainingChars == 0;
    }
    return text;
}

} // namespace

LogReader::LogReader(QIODevice *device, const Position &start)
    : m_buffer(device, start, Capacity)
    , m_position(start)
{ }

std::optional<Entry> LogReader::next()
{
    skipByteOrderMark();
    skipBlankLines();
    while (m_buffer.size() < MaxHeaderBytes + 2 && m_buffer.more()) { }
    if (m_buffer.isEmpty())
        return std::nullopt;
    if (const Header header = readHeader(m_buffer.begin(), m_buffer.end()))
        return readRecord(header);
    return readForeignText(tr("this is no record of the plug-in"));
}

bool LogReader::isLog(const QByteArray &bytes)
{
    return findHeader(bytes.cbegin(), bytes.cend()) != bytes.cend();
}

/// An editor may have put one there.
void LogReader::skipByteOrderMark()
{
    if (m_buffer.position().offset > 0)
        return;
    constexpr int Length = sizeof(ByteOrderMark) - 1;
    while (m_buffer.size() < Length && m_buffer.more()) { }
    if (m_buffer.size() >= Length
        && std::equal(ByteOrderMark, ByteOrderMark + Length, m_buffer.begin()))
        pass(Length);
}

void LogReader::skipBlankLines()
{
    do {
        const char *const first = std::find_if_not(
            m_buffer.begin(), m_buffer.end(), [](char c) { return c == '\n' || c == '\r'; });
        pass(first - m_buffer.begin());
    } while (m_buffer.isEmpty() && m_buffer.more());
}

/// The record with @p header, which is at the front of the buffer.
Entry LogReader::readRecord(const Header &header)
{
    const char *endLine = nullptr;
    for (;;) {
        endLine = findEndLine(m_buffer.begin() + header.size, m_buffer.end(), m_buffer.isAtEnd());
        const bool isTooLong = m_buffer.size() - header.size > MaxTextBytes;
        if (endLine != nullptr || m_buffer.isAtEnd() || isTooLong)
            break;
        m_buffer.more();
    }

    const char *const text = m_buffer.begin() + header.size;
    const char *const textEnd = endLine == nullptr ? m_buffer.end() : endLine;
    const char *const nextRecord = findNextRecord(text, textEnd);
    if (nextRecord != textEnd || (endLine == nullptr && hasMovedEndLine(text, textEnd))) {
        Entry entry = hasMovedEndLine(text, nextRecord)
            ? readText(header, text, find(nextRecord - MaxMovedEndLine, nextRecord, '%'))
            : cutRecord(header);
        pass(nextRecord - m_buffer.begin());
        return entry;
    }
    if (textEnd - text > MaxTextBytes)
        return readForeignText(tr("the record is longer than %1 bytes").arg(MaxTextBytes));
    if (endLine == nullptr) {
        Entry entry = cutRecord(header);
        m_buffer.drop(m_buffer.size()); // not passed: the plug-in may be writing it
        return entry;
    }
    Entry entry = readText(header, text, endLine);
    pass(endLine + LineWidth - m_buffer.begin());
    return entry;
}

/// All that is in front of the next header but the one, if any, at the front of the buffer.
Entry LogReader::readForeignText(const QString &reason)
{
    Entry entry;
    entry.position = m_buffer.position();
    entry.text = reason;
    std::ptrdiff_t from = 1;
    for (;;) {
        const char *const header = findHeader(m_buffer.begin() + from, m_buffer.end());
        if (header != m_buffer.end()) {
            pass(header - m_buffer.begin());
            return entry;
        }
        if (m_buffer.isAtEnd())
            break;
        // One may have begun.
        const std::ptrdiff_t passed
            = std::max<std::ptrdiff_t>(0, m_buffer.size() - MaxHeaderBytes - 2);
        pass(passed);
        from = passed > 0 ? 0 : from;
        m_buffer.more();
    }
    const char *const lastLine = lineBegin(m_buffer.begin(), m_buffer.end());
    if (m_buffer.end() - lastLine > MaxHeaderBytes)
        pass(m_buffer.size());
    else
        pass(lastLine - m_buffer.begin());
    m_buffer.drop(m_buffer.size()); // not passed: the plug-in may be writing it
    return entry;
}

Entry LogReader::cutRecord(const Header &header)
{
    Entry entry = newEntry(header);
    entry.text = tr("the record is cut");
    return entry;
}

Entry LogReader::newEntry(const Header &header)
{
    Entry entry;
    entry.position = m_buffer.position();
    entry.time = m_times.at(header.date, header.time);
    entry.timeToleranceMs = LogToleranceMs;
    return entry;
}

/// What the record with @p header and the text in [@p begin, @p end) tells.
Entry LogReader::readText(const Header &header, const char *begin, const char *end)
{
    Entry entry = newEntry(header);
    while (begin != end && isLineEnd(end - 1, end))
        --end;
    bool isValid = true;
    QString text = decode(begin, end, &isValid);
    if (isValid) {
        if (find(begin, end, '\r') != end)
            text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        const QByteArray level
            = QByteArray::fromRawData(m_buffer.begin() + StampLength, header.levelSize);
        readLogMessage(level, text, &entry);
    } else {
        entry.text = tr("the record is no UTF-8 text");
    }
    return entry;
}

void LogReader::pass(std::ptrdiff_t count)
{
    if (count == 0)
        return; // not what was dropped before
    m_buffer.drop(static_cast<int>(count));
    m_position.line = m_buffer.position().line;
    m_position.offset = m_buffer.position().offset;
}

} // namespace Analysis
