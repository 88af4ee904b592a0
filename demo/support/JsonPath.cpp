#include "demo/support/JsonPath.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <optional>

namespace Demo {

namespace {

/// Offsets of a value and of the key before it, which is the value itself in a list.
struct Place
{
    int begin = 0;
    int value = 0;
};

/// The key that @p literal, quotes included, stands for.
QString keyFromLiteral(const QByteArray &literal)
{
    if (literal.contains('\\'))
        return QJsonDocument::fromJson('[' + literal + ']').array().at(0).toString();
    const QString text = QString::fromUtf8(literal.constData(), literal.size()); // keeps NULs
    return text.mid(1, text.size() - 2);
}

/// Goes through a text that is known to parse; in any other it goes astray, but not beyond the end.
class Scanner
{
public:
    Scanner(const QByteArray &json, int offset)
        : m_json(json)
        , m_offset(offset)
    {
        skipBlanks();
    }

    int offset() const { return m_offset; }

    /// Of several values of one key the last counts, as it does for the parser.
    std::optional<Place> member(const QString &key)
    {
        std::optional<Place> found;
        for (bool more = enter('{'); more; more = next()) {
            Place place;
            place.begin = m_offset;
            skipText();
            const QByteArray literal = m_json.mid(place.begin, m_offset - place.begin);
            m_offset = place.begin;
            passKey();
            place.value = m_offset;
            if (keyFromLiteral(literal) == key)
                found = place;
        }
        return found;
    }

    std::optional<Place> element(int index)
    {
        int i = 0;
        for (bool more = enter('['); more; more = next()) {
            if (i++ == index)
                return Place{m_offset, m_offset};
        }
        return std::nullopt;
    }

    /// Steps over a key and its colon to the value.
    void passKey()
    {
        skipText();
        skipBlanks();
        advance(); // past the colon
        skipBlanks();
    }

    QVector<int> elements()
    {
        QVector<int> offsets;
        for (bool more = enter('['); more; more = next())
            offsets.append(m_offset);
        return offsets;
    }

private:
    bool atEnd() const { return m_offset >= m_json.size(); }
    char here() const { return atEnd() ? '\0' : m_json.at(m_offset); }

    void advance()
    {
        if (!atEnd())
            ++m_offset;
    }

    /// Steps into an object or a list, to what it begins with; false when it holds nothing.
    bool enter(char bracket)
    {
        if (here() != bracket)
            return false;
        advance();
        skipBlanks();
        return !atEnd() && here() != '}' && here() != ']';
    }

    /// Steps from a value to what follows it; false when it is the last one.
    bool next()
    {
        skipValue();
        if (here() != ',')
            return false;
        advance();
        skipBlanks();
        return true;
    }

    void skipBlanks()
    {
        while (here() == ' ' || here() == '\t' || here() == '\n' || here() == '\r')
            advance();
    }

    void skipText()
    {
        for (advance(); !atEnd() && here() != '"'; advance()) {
            if (here() == '\\')
                advance();
        }
        advance();
    }

    /// Stops at the comma or bracket behind the value.
    void skipValue()
    {
        int depth = 0;
        while (!atEnd()) {
            switch (here()) {
            case '"':
                skipText();
                continue;
            case '{':
            case '[':
                ++depth;
                break;
            case '}':
            case ']':
                if (depth == 0)
                    return;
                --depth;
                break;
            case ',':
                if (depth == 0)
                    return;
                break;
            default:
                break;
            }
            advance();
        }
    }

    const QByteArray &m_json;
    int m_offset;
};

} // namespace

JsonPath JsonPath::key(const QString &key) const
{
    return with({key, -1});
}

JsonPath JsonPath::element(int index) const
{
    return with({QString(), index});
}

QString JsonPath::toString() const
{
    QString text;
    for (const Step &step : m_steps) {
        if (step.index >= 0)
            text += QLatin1Char('[') + QString::number(step.index) + QLatin1Char(']');
        else
            text += text.isEmpty() ? step.key : QLatin1Char('.') + step.key;
    }
    return text;
}

int JsonPath::offsetIn(const QByteArray &json) const
{
    const QByteArray byteOrderMark = QByteArrayLiteral("\xef\xbb\xbf");
    Place place;
    place.value = json.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
    place.value = Scanner(json, place.value).offset();
    place.begin = place.value;
    for (const Step &step : m_steps) {
        Scanner scanner(json, place.value);
        const std::optional<Place> inner
            = step.index >= 0 ? scanner.element(step.index) : scanner.member(step.key);
        if (!inner)
            return place.value;
        place = *inner;
    }
    return place.begin;
}

QVector<int> JsonPath::elementOffsetsIn(const QByteArray &json) const
{
    if (m_steps.isEmpty() || m_steps.constLast().index >= 0)
        return Scanner(json, offsetIn(json)).elements();
    // It begins at its key; the value is behind the colon.
    Scanner key(json, offsetIn(json));
    key.passKey();
    return Scanner(json, key.offset()).elements();
}

JsonPath JsonPath::with(const Step &step) const
{
    JsonPath path = *this;
    path.m_steps.append(step);
    return path;
}

} // namespace Demo
