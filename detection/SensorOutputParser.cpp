#include "detection/SensorOutputParser.h"

#include "core/screen/Gender.h"
#include "detection/Pieces.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace PluginKrHvcP2 {

namespace {

constexpr int TypicalHtmlGrowth = 3; // markup of a frame, in multiples of its text
constexpr int LeastHtmlSize = 128; // of a frame without faces
constexpr int CertainDigits = 9; // as many always fit into an int

bool contains(QStringView text, char16_t character)
{
    return std::find(text.cbegin(), text.cend(), QChar(character)) != text.cend();
}

bool startsWith(QStringView text, QStringView prefix)
{
    return text.size() >= prefix.size()
        && std::equal(prefix.cbegin(), prefix.cend(), text.cbegin());
}

bool startsWithIgnoringCase(QStringView text, QStringView prefix)
{
    // Programs print it as it is written here; the rest is slow, for it knows every script.
    return startsWith(text, prefix)
        || (!text.isEmpty()
            && (text.front().unicode() | 0x20U) == (prefix.front().unicode() | 0x20U)
            && text.startsWith(prefix, Qt::CaseInsensitive));
}

bool isEndPrompt(QStringView line)
{
    return startsWithIgnoringCase(line, u"Press Space Key to end:");
}

std::optional<int> toNumber(QStringView text)
{
    const bool isNegative = startsWith(text, u"-");
    const QStringView digits = text.mid(isNegative ? 1 : 0);
    if (digits.isEmpty() || digits.size() > CertainDigits
        || !std::all_of(digits.cbegin(), digits.cend(),
            [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); })) {
        // Signs, blanks, letters of other scripts and the limits are Qt's to judge.
        bool ok = false;
        const int number = text.toString().toInt(&ok, 10);
        return ok ? std::optional<int>(number) : std::nullopt;
    }
    int number = 0;
    for (const QChar digit : digits)
        number = 10 * number + (digit.unicode() - u'0');
    return isNegative ? -number : number;
}

/// The value of a "label:value" token; empty when there is none.
QStringView tokenValue(QStringView token)
{
    Pieces parts(token, u':');
    parts.next();
    return parts.next();
}

std::optional<int> valueNumber(QStringView value)
{
    return value.isEmpty() ? std::nullopt : toNumber(value);
}

/// Takes the number of @p token over into @p number when its label is @p label, colon included.
bool readNumber(QStringView token, QStringView label, std::optional<int> &number)
{
    if (!startsWith(token, label))
        return false;
    const std::optional<int> read = valueNumber(Pieces(token.mid(label.size()), u':').next());
    if (read)
        number = read;
    return read.has_value();
}

bool readConfidence(QStringView token, std::optional<int> &confidence)
{
    return readNumber(token, u"Confidence:", confidence);
}

/// Reads the lines of one chunk, with a table or, for somebody who shows nothing, without one.
/// Which of both is settled when it is compiled: each piece of the table would ask.
template <bool makesTable>
class FrameReader
{
public:
    FrameReader(const QString &chunk, const QDateTime &time);

    SensorFrame read();

private:
    void put(QStringView text); // to the table
    void putNumber(QStringView before, int number, QStringView behind);
    void readLine(QStringView line);
    void putErrorCell(QStringView line);
    void putFaceCountCell(QStringView line);
    void putResultCells(QStringView line);
    void putIndexCells(QStringView line, QStringView label, QStringView values);
    void putAge(QStringView values, bool marked);
    void putGender(QStringView values, bool marked);
    void putDirection(QStringView values);
    void closeFace();

    const QString &m_chunk;
    const QDateTime &m_time;
    FaceResult m_face; // under construction
    SensorFrame m_frame;
};

template <bool makesTable>
FrameReader<makesTable>::FrameReader(const QString &chunk, const QDateTime &time)
    : m_chunk(chunk)
    , m_time(time)
{ }

template <bool makesTable>
SensorFrame FrameReader<makesTable>::read()
{
    if constexpr (makesTable)
        m_frame.html.reserve(m_chunk.size() * TypicalHtmlGrowth + LeastHtmlSize);
    put(u"<table>");
    Pieces lines(m_chunk, u'\n');
    for (QStringView line = lines.next(); !line.isEmpty(); line = lines.next())
        readLine(line);
    put(u"</table>");
    return std::move(m_frame);
}

template <bool makesTable>
void FrameReader<makesTable>::put(QStringView text)
{
    if constexpr (makesTable)
        m_frame.html.append(text.data(), static_cast<int>(text.size()));
}

template <bool makesTable>
void FrameReader<makesTable>::putNumber(QStringView before, int number, QStringView behind)
{
    if constexpr (makesTable) {
        std::array<char, 16> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        put(before);
        m_frame.html.append(QLatin1String(digits.data(), static_cast<int>(end - digits.data())));
        put(behind);
    }
}

template <bool makesTable>
void FrameReader<makesTable>::readLine(QStringView line)
{
    if (isEndPrompt(line)) {
        m_face.reset();
        return;
    }

    const QStringView trimmed = line.trimmed();
    m_frame.hasRows = true;
    const int rowStart = m_frame.html.size();
    put(u"<tr>");
    bool closesFace = false;
    if (SensorOutputParser::isError(trimmed)) {
        putErrorCell(trimmed);
    } else if (startsWithIgnoringCase(trimmed, u"Face result count:")) {
        putFaceCountCell(trimmed);
    } else {
        putResultCells(trimmed);
        closesFace = startsWith(trimmed, u"Gender");
    }
    put(u"</tr>");
    if constexpr (makesTable) {
        if (contains(trimmed, u'<'))
            m_frame.markup += m_frame.html.midRef(rowStart);
    }
    if (closesFace)
        closeFace();
}

template <bool makesTable>
void FrameReader<makesTable>::putErrorCell(QStringView line)
{
    m_frame.errorSeen = true;
    put(u"<td><span style=\"color:red;font-weight:bold;\">");
    if (line.compare(u"Failed to open COM port.", Qt::CaseInsensitive) == 0)
        put(SensorOutputParser::tr("Failed to open COM port."));
    else
        put(line);
    put(u"</span></td>");
}

template <bool makesTable>
void FrameReader<makesTable>::putFaceCountCell(QStringView line)
{
    const QStringView count = tokenValue(line);
    const bool isNobody = !count.isEmpty() && toNumber(count).value_or(0) < 1;
    m_frame.noFace = m_frame.noFace || isNobody;
    put(isNobody ? QStringView(u"<td><span style=\"color:orange;\">")
                 : QStringView(u"<td><span style=\"color:white;\">"));
    put(line);
    put(u"</span></td>");
}

template <bool makesTable>
void FrameReader<makesTable>::putResultCells(QStringView line)
{
    Pieces fields(line, u'\t');
    const QStringView label = fields.next();
    const QStringView values = fields.next();
    if (values.isEmpty())
        return;

    if (startsWithIgnoringCase(line, u"Index:")) {
        putIndexCells(line, label, values);
        return;
    }

    const bool marked = contains(line, u'*');
    put(u"<td>");
    put(label);
    put(u"</td><td");
    if (marked)
        put(u" style=\"color:lime;\"");
    put(u">");
    if (startsWith(label, u"Age"))
        putAge(values, marked);
    else if (startsWith(label, u"Gender"))
        putGender(values, marked);
    else if (startsWith(label, u"Face Direction"))
        putDirection(values);
    put(u"</td>");
}

template <bool makesTable>
void FrameReader<makesTable>::putIndexCells(QStringView line, QStringView label, QStringView values)
{
    const std::optional<int> index = valueNumber(tokenValue(label));
    if (!index) {
        put(line);
        return;
    }
    m_face.index = *index;
    put(u"<td style=\"font-weight:bold;\">");
    put(label);
    put(u"</td><td>");
    put(values);
    put(u" </td>");

    std::optional<int> x;
    std::optional<int> y;
    std::optional<int> size;
    std::optional<int> confidence;
    int tokenCount = 0;
    Pieces tokens(values, u' ');
    for (QStringView token = tokens.next(); !token.isEmpty(); token = tokens.next()) {
        ++tokenCount;
        if (!readNumber(token, u"X:", x) && !readNumber(token, u"Y:", y)
            && !readNumber(token, u"Size:", size))
            readConfidence(token, confidence);
    }
    if (tokenCount >= 4 && x && y && size)
        m_face.box = {{*x, *y, *size}, confidence.value_or(0), false};
}

template <bool makesTable>
void FrameReader<makesTable>::putAge(QStringView values, bool marked)
{
    std::optional<int> age;
    std::optional<int> confidence;
    Pieces tokens(values, u' ');
    for (QStringView token = tokens.next(); !token.isEmpty(); token = tokens.next()) {
        if (readNumber(token, u"Age:", age))
            putNumber(u"Age:<span style=\"color:yellow;\">", *age, u"</span> ");
        else if (readConfidence(token, confidence))
            putNumber(u"Confidence:", *confidence, u" ");
        else
            put(token);
    }
    if (age)
        m_face.age = {*age, confidence.value_or(0), marked};
}

template <bool makesTable>
void FrameReader<makesTable>::putGender(QStringView values, bool marked)
{
    int gender = UnknownGender;
    std::optional<int> confidence;
    Pieces tokens(values, u' ');
    for (QStringView token = tokens.next(); !token.isEmpty(); token = tokens.next()) {
        const QStringView word = startsWith(token, u"Gender:") ? tokenValue(token) : QStringView();
        if (word == QStringView(u"Male")) {
            gender = Male;
            put(u"Gender:<span style=\"color:skyblue;\">Male </span>");
        } else if (word == QStringView(u"Female")) {
            gender = Female;
            put(u"Gender:<span style=\"color:deeppink;\">Female </span>");
        } else if (readConfidence(token, confidence)) {
            putNumber(u"Confidence:", *confidence, u" ");
        } else {
            put(token);
        }
    }
    if (gender != UnknownGender)
        m_face.gender = {gender, confidence.value_or(0), marked};
}

template <bool makesTable>
void FrameReader<makesTable>::putDirection(QStringView values)
{
    FaceAngles angles;
    std::optional<int> confidence;
    Pieces tokens(values, u' ');
    for (QStringView token = tokens.next(); !token.isEmpty(); token = tokens.next()) {
        if (readConfidence(token, confidence)) {
            putNumber(u"Confidence:", *confidence, u" ");
            continue;
        }
        if (!readNumber(token, u"LR:", angles.leftRight)
            && !readNumber(token, u"UD:", angles.upDown))
            readNumber(token, u"Roll:", angles.roll);
        put(token);
        put(u" ");
    }
    if (!angles.leftRight)
        return;
    if (angles.upDown)
        angles.directionValue = directionValue(*angles.leftRight, *angles.upDown);
    m_face.angles = {angles, confidence.value_or(0), false};
}

template <bool makesTable>
void FrameReader<makesTable>::closeFace()
{
    put(u"<tr><td></td></tr>");
    if (m_face.index >= 0 && m_face.hasItems()) {
        m_face.time = m_time;
        m_frame.faces.append(m_face);
        m_frame.sizes.append(m_face.size());
        m_frame.directionValues.append(m_face.directionValue());
    }
    m_face.reset();
}

} // namespace

SensorFrame SensorOutputParser::parse(const QString &chunk, const QDateTime &time)
{
    return FrameReader<true>(chunk, time).read();
}

SensorFrame SensorOutputParser::parseUnseen(const QString &chunk, const QDateTime &time)
{
    return FrameReader<false>(chunk, time).read();
}

QString SensorOutputParser::plainText(const QString &chunk)
{
    QString text;
    Pieces lines(chunk, u'\n');
    for (QStringView line = lines.next(); !line.isEmpty(); line = lines.next()) {
        const QStringView trimmed = line.trimmed();
        if (isEndPrompt(line) || trimmed.isEmpty())
            continue;
        if (!text.isEmpty())
            text += QLatin1Char('\n');
        text.append(trimmed.data(), static_cast<int>(trimmed.size()));
    }
    return text;
}

bool SensorOutputParser::isLabel(QStringView label)
{
    const bool isKnown = startsWith(label, u"Age") || startsWith(label, u"Gender")
        || startsWith(label, u"Face Direction")
        || (startsWithIgnoringCase(label, u"Index:") && valueNumber(tokenValue(label)));
    return isKnown && !isError(label);
}

bool SensorOutputParser::isError(QStringView line)
{
    constexpr QStringView word = u"failed";
    // No letter of another script is one of these in another case.
    const auto isSame
        = [](QChar wanted, QChar c) { return (c.unicode() | 0x20U) == wanted.unicode(); };
    // Blanks are rarer than the word's letters.
    const QChar *blank = std::find(line.cbegin(), line.cend(), QLatin1Char(' '));
    while (blank != line.cend()) {
        if (blank - line.cbegin() >= word.size()
            && std::equal(word.cbegin(), word.cend(), blank - word.size(), isSame))
            return true;
        blank = std::find(blank + 1, line.cend(), QLatin1Char(' '));
    }
    return false;
}

} // namespace PluginKrHvcP2
