#include "detection/SensorOutputParser.h"

#include "core/screen/Gender.h"

#include <QStringRef>
#include <QVariantMap>

#include <optional>

namespace PluginKrHvcP2 {

namespace {

constexpr int TypicalHtmlGrowth = 3; // markup of a frame, in multiples of its text

/// The non-empty pieces of @p text.
QVector<QStringRef> split(const QStringRef &text, char separator)
{
#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
    return text.split(QLatin1Char(separator), Qt::SkipEmptyParts);
#else
    return text.split(QLatin1Char(separator), QString::SkipEmptyParts);
#endif
}

/// The value of a "label:value" token; empty when there is none.
QStringRef tokenValue(const QStringRef &token)
{
    const QVector<QStringRef> parts = split(token, ':');
    return parts.size() >= 2 ? parts.at(1) : QStringRef();
}

std::optional<int> tokenNumber(const QStringRef &token)
{
    bool ok = false;
    const int number = tokenValue(token).toInt(&ok, 10);
    return ok ? std::optional<int>(number) : std::nullopt;
}

/// Takes the number of @p token over into @p number when its label is @p label, colon included.
bool readNumber(const QStringRef &token, const char *label, std::optional<int> &number)
{
    const std::optional<int> read
        = token.startsWith(QLatin1String(label)) ? tokenNumber(token) : std::nullopt;
    if (read)
        number = read;
    return read.has_value();
}

bool readConfidence(const QStringRef &token, std::optional<int> &confidence)
{
    return readNumber(token, "Confidence:", confidence);
}

QString confidenceText(int confidence)
{
    return QStringLiteral("Confidence:") + QString::number(confidence) + QLatin1Char(' ');
}

bool isEndPrompt(const QStringRef &line)
{
    return line.startsWith(QLatin1String("Press Space Key to end:"), Qt::CaseInsensitive);
}

} // namespace

SensorFrame SensorOutputParser::parse(const QString &chunk, const QDateTime &time)
{
    SensorOutputParser parser(time);
    QString &html = parser.m_frame.html;
    html.reserve(chunk.size() * TypicalHtmlGrowth);
    html += QLatin1String("<table>");
    const QVector<QStringRef> lines = split(QStringRef(&chunk), '\n');
    for (const QStringRef &line : lines)
        parser.parseLine(line);
    html += QLatin1String("</table>");
    return parser.m_frame;
}

QString SensorOutputParser::plainText(const QString &chunk)
{
    QString text;
    const QVector<QStringRef> lines = split(QStringRef(&chunk), '\n');
    for (const QStringRef &line : lines) {
        const QStringRef trimmed = line.trimmed();
        if (isEndPrompt(line) || trimmed.isEmpty())
            continue;
        if (!text.isEmpty())
            text += QLatin1Char('\n');
        text += trimmed;
    }
    return text;
}

SensorOutputParser::SensorOutputParser(const QDateTime &time)
    : m_time(time)
{ }

void SensorOutputParser::parseLine(const QStringRef &line)
{
    if (isEndPrompt(line)) {
        m_face.reset();
        return;
    }

    const QStringRef trimmed = line.trimmed();
    m_frame.hasRows = true;
    const int rowStart = m_frame.html.size();
    m_frame.html += QLatin1String("<tr>");
    bool closesFace = false;
    if (trimmed.contains(QLatin1String("Failed "), Qt::CaseInsensitive)) {
        appendErrorCell(trimmed);
    } else if (trimmed.startsWith(QLatin1String("Face result count:"), Qt::CaseInsensitive)) {
        appendFaceCountCell(trimmed);
    } else {
        appendResultCells(trimmed);
        closesFace = trimmed.startsWith(QLatin1String("Gender"));
    }
    m_frame.html += QLatin1String("</tr>");
    if (trimmed.contains(QLatin1Char('<')))
        m_frame.markup += m_frame.html.midRef(rowStart);
    if (closesFace)
        closeFace();
}

void SensorOutputParser::appendErrorCell(const QStringRef &line)
{
    m_frame.errorSeen = true;
    const bool isOpenFailure
        = line.compare(QLatin1String("Failed to open COM port."), Qt::CaseInsensitive) == 0;
    m_frame.html += QLatin1String("<td><span style=\"color:red;font-weight:bold;\">")
        + (isOpenFailure ? tr("Failed to open COM port.") : line.toString())
        + QLatin1String("</span></td>");
}

void SensorOutputParser::appendFaceCountCell(const QStringRef &line)
{
    const bool isCounted = split(line, ':').size() >= 2;
    const bool isNobody = isCounted && tokenNumber(line).value_or(0) < 1;
    m_frame.noFace = m_frame.noFace || isNobody;
    m_frame.html += QLatin1String("<td><span style=\"color:")
        + QLatin1String(isNobody ? "orange" : "white") + QLatin1String(";\">") + line
        + QLatin1String("</span></td>");
}

void SensorOutputParser::appendResultCells(const QStringRef &line)
{
    const QVector<QStringRef> fields = split(line, '\t');
    if (fields.size() < 2)
        return;

    const QStringRef &label = fields.at(0);
    const QStringRef &values = fields.at(1);
    if (line.startsWith(QLatin1String("Index:"), Qt::CaseInsensitive)) {
        appendIndexCells(line, label, values);
        return;
    }

    const bool marked = line.contains(QLatin1Char('*'));
    m_frame.html += QLatin1String("<td>") + label + QLatin1String("</td><td")
        + QLatin1String(marked ? " style=\"color:lime;\"" : "") + QLatin1Char('>');
    if (label.startsWith(QLatin1String("Age")))
        appendAge(values, marked);
    else if (label.startsWith(QLatin1String("Gender")))
        appendGender(values, marked);
    else if (label.startsWith(QLatin1String("Face Direction")))
        appendDirection(values);
    m_frame.html += QLatin1String("</td>");
}

void SensorOutputParser::appendIndexCells(
    const QStringRef &line, const QStringRef &label, const QStringRef &values)
{
    const std::optional<int> index = tokenNumber(label);
    if (!index) {
        m_frame.html += line;
        return;
    }
    m_face.index = *index;
    m_frame.html += QLatin1String("<td style=\"font-weight:bold;\">") + label
        + QLatin1String("</td><td>") + values + QLatin1String(" </td>");

    std::optional<int> x;
    std::optional<int> y;
    std::optional<int> size;
    std::optional<int> confidence;
    const QVector<QStringRef> tokens = split(values, ' ');
    for (const QStringRef &token : tokens) {
        if (!readNumber(token, "X:", x) && !readNumber(token, "Y:", y)
            && !readNumber(token, "Size:", size))
            readConfidence(token, confidence);
    }
    if (tokens.size() < 4 || !x || !y || !size)
        return;
    const QVariantMap box{
        {QStringLiteral("X"), *x}, {QStringLiteral("Y"), *y}, {QStringLiteral("Size"), *size}};
    m_face.setItem({FaceResultItem::Detection, box, confidence.value_or(0), false});
}

void SensorOutputParser::appendAge(const QStringRef &values, bool marked)
{
    std::optional<int> age;
    std::optional<int> confidence;
    const QVector<QStringRef> tokens = split(values, ' ');
    for (const QStringRef &token : tokens) {
        if (readNumber(token, "Age:", age)) {
            m_frame.html += QLatin1String("Age:<span style=\"color:yellow;\">")
                + QString::number(*age) + QLatin1String("</span> ");
        } else if (readConfidence(token, confidence)) {
            m_frame.html += confidenceText(*confidence);
        } else {
            m_frame.html += token;
        }
    }
    if (age)
        m_face.setItem({FaceResultItem::Age, *age, confidence.value_or(0), marked});
}

void SensorOutputParser::appendGender(const QStringRef &values, bool marked)
{
    int gender = UnknownGender;
    std::optional<int> confidence;
    const QVector<QStringRef> tokens = split(values, ' ');
    for (const QStringRef &token : tokens) {
        const bool isGender = token.startsWith(QLatin1String("Gender:"));
        if (isGender && tokenValue(token) == QLatin1String("Male")) {
            gender = Male;
            m_frame.html += QLatin1String("Gender:<span style=\"color:skyblue;\">Male </span>");
        } else if (isGender && tokenValue(token) == QLatin1String("Female")) {
            gender = Female;
            m_frame.html += QLatin1String("Gender:<span style=\"color:deeppink;\">Female </span>");
        } else if (readConfidence(token, confidence)) {
            m_frame.html += confidenceText(*confidence);
        } else {
            m_frame.html += token;
        }
    }
    if (gender != UnknownGender)
        m_face.setItem({FaceResultItem::Gender, gender, confidence.value_or(0), marked});
}

void SensorOutputParser::appendDirection(const QStringRef &values)
{
    std::optional<int> leftRight;
    std::optional<int> upDown;
    std::optional<int> roll;
    std::optional<int> confidence;
    const QVector<QStringRef> tokens = split(values, ' ');
    for (const QStringRef &token : tokens) {
        if (readConfidence(token, confidence)) {
            m_frame.html += confidenceText(*confidence);
            continue;
        }
        if (!readNumber(token, "LR:", leftRight) && !readNumber(token, "UD:", upDown))
            readNumber(token, "Roll:", roll);
        m_frame.html += token + QLatin1Char(' ');
    }
    if (!leftRight)
        return;

    QVariantMap angles{{QStringLiteral("LR"), *leftRight},
        {QStringLiteral("DirectionValue"),
            upDown ? directionValue(*leftRight, *upDown) : UnknownDirectionValue}};
    if (upDown)
        angles.insert(QStringLiteral("UD"), *upDown);
    if (roll)
        angles.insert(QStringLiteral("Roll"), *roll);
    m_face.setItem({FaceResultItem::Direction, angles, confidence.value_or(0), false});
}

void SensorOutputParser::closeFace()
{
    m_frame.html += QLatin1String("<tr><td></td></tr>");
    if (m_face.index >= 0 && m_face.hasItems()) {
        m_face.time = m_time;
        m_frame.faces.append(m_face);
        m_frame.sizes.append(m_face.size());
        m_frame.directionValues.append(m_face.directionValue());
    }
    m_face.reset();
}

} // namespace PluginKrHvcP2
