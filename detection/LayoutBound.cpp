#include "detection/LayoutBound.h"

#include "detection/SensorOutputParser.h"

#include <QSet>
#include <QStringRef>

#include <algorithm>

namespace PluginKrHvcP2 {

namespace {

// What the limits stand on was measured with Qt 5.15.8, in the panel's width and font.

// 1,000 nested elements take 15 ms, <pre> 150 ms; 10,000 take 5 s. Ours in such rows count, too.
constexpr int MaxTags = 512;
// Each table in a table doubles the time of what is in it: 60,000 characters take 0.2 s in 3 of
// them within ours, 1.3 s in 6; next to nothing takes 44 s in 20.
constexpr int MaxTables = 3;
// A cell of a table takes 0.05 ms; each row gets as many as the widest one has.
constexpr int MaxCells = 4096;
// Beyond it each of the above is too much.
constexpr int MaxHtmlSize = 65536;
// Qt never returns from a document that is higher than 8,388,607 px. Each number may be the size
// of a font that makes a line of each character (points may be 2 px, lines 1.2 times as high), the
// padding of each row, or a number of columns. In all tags together, times characters.
constexpr qint64 MaxExtent = 2000000;
constexpr qint64 MaxNumber = 9999;
// A word's time is quadratic: 4,096 characters take 2 ms (12 ms with alternating directions),
// 65,536 take 0.2 s (1.8 s), a million 54 s.
constexpr int MaxWordLength = 4096;
constexpr int MaxPlainTextSize = 65536;

bool isSpace(QChar c)
{
    return c <= QLatin1Char(' '); // where a line can always be broken
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool isLetter(QChar c)
{
    return (c >= QLatin1Char('a') && c <= QLatin1Char('z'))
        || (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) || c == QLatin1Char('_');
}

bool hasLongWord(const QString &html)
{
    int length = 0;
    for (const QChar c : html) {
        length = isSpace(c) || c == QLatin1Char('<') ? 0 : length + 1;
        if (length > MaxWordLength)
            return true;
    }
    return false;
}

/// "inf" and "nan" are numbers to Qt, alone or with a unit.
bool isEndless(const QStringRef &word)
{
    return (word.size() == 3 || word.size() == 5)
        && (word.startsWith(QLatin1String("inf"), Qt::CaseInsensitive)
            || word.startsWith(QLatin1String("nan"), Qt::CaseInsensitive));
}

/// What may leave a row of a table, or begin one. Qt moves these up to where they belong.
bool isTableStructure(const QString &name)
{
    static const QSet<QString> names{QStringLiteral("table"), QStringLiteral("caption"),
        QStringLiteral("thead"), QStringLiteral("tbody"), QStringLiteral("tfoot"),
        QStringLiteral("tr"), QStringLiteral("dl"), QStringLiteral("dt"), QStringLiteral("dd"),
        QStringLiteral("body"), QStringLiteral("head"), QStringLiteral("html")};
    return names.contains(name);
}

/// Reads tags as strictly as is needed to be sure that Qt sees the same tags. What is not plain to
/// read makes them unbounded: quotes anywhere but around the value of an attribute (Qt takes some
/// of them for text), entities and escapes (they can spell anything), style sheets.
class TagReader
{
public:
    /// @p tag is the text between a '<' and the next '>'. False when it is unbounded.
    bool read(const QStringRef &tag);

    int tables() const { return m_tables; } ///< with those that Qt adds around stray cells
    qint64 numbers() const { return m_numbers; } ///< their sum
    qint64 rows() const { return m_rows; }
    qint64 columns() const { return m_columns; } ///< of the widest row

private:
    bool holds(const char *text) const;
    bool readName(const QStringRef &tag);
    bool readText();
    bool readQuote();
    bool readWord();
    bool readNumber();

    QStringRef m_tag;
    int m_position = 0;
    QChar m_quote; // null outside of a quoted value
    bool m_valueFollows = false; // behind a '='
    bool m_inRow = false; // surely, so that a cell needs no table of its own
    int m_tables = 0;
    qint64 m_numbers = 0;
    qint64 m_rows = 0;
    qint64 m_cellsInRow = 0;
    qint64 m_columns = 0;
};

bool TagReader::read(const QStringRef &tag)
{
    m_tag = tag;
    const qint64 numbersBefore = m_numbers;
    if (holds("-qt-") || holds("line-height") // the latter multiplies with the size of a font
        || !readName(tag.trimmed()) || !readText())
        return false;
    if (holds("colspan"))
        m_cellsInRow += m_numbers - numbersBefore;
    m_columns = std::max(m_columns, m_cellsInRow);
    return true;
}

bool TagReader::holds(const char *text) const
{
    return m_tag.contains(QLatin1String(text), Qt::CaseInsensitive);
}

bool TagReader::readName(const QStringRef &tag)
{
    const bool opens = !tag.startsWith(QLatin1Char('/'));
    const QStringRef text = opens ? tag : tag.mid(1).trimmed();
    int length = 0;
    while (length < text.size() && (isLetter(text.at(length)) || isDigit(text.at(length))))
        ++length;
    const QString name = text.left(length).toString().toLower();
    if (!opens) {
        m_inRow = m_inRow && !isTableStructure(name);
        return true;
    }

    const bool isCell = name == QLatin1String("td") || name == QLatin1String("th");
    if (name == QLatin1String("table") || (isCell && !m_inRow))
        ++m_tables;
    if (isCell)
        ++m_cellsInRow;
    if (isTableStructure(name)) {
        const bool isRow = name == QLatin1String("tr");
        const bool isWhole = text.size() == length || text.at(length).isSpace();
        m_inRow = isRow && isWhole && !text.contains(QLatin1Char('/'));
        m_rows += isRow ? 1 : 0;
        m_cellsInRow = m_inRow ? 0 : m_cellsInRow;
    }
    return name != QLatin1String("style");
}

bool TagReader::readText()
{
    m_quote = QChar();
    m_valueFollows = false;
    for (m_position = 0; m_position < m_tag.size();) {
        const QChar c = m_tag.at(m_position);
        bool isReadable = c != QLatin1Char('&') && c != QLatin1Char('\\');
        if (c == QLatin1Char('"') || c == QLatin1Char('\''))
            isReadable = readQuote();
        else if (isLetter(c) || c == QLatin1Char('#'))
            isReadable = readWord();
        else if (isDigit(c) || c == QLatin1Char('.'))
            isReadable = readNumber();
        else
            ++m_position;
        if (!isReadable)
            return false;
        if (!c.isSpace())
            m_valueFollows = c == QLatin1Char('=');
    }
    return m_quote.isNull();
}

bool TagReader::readQuote()
{
    const QChar c = m_tag.at(m_position);
    ++m_position;
    if (!m_quote.isNull() && c != m_quote)
        return true; // a part of the value
    if (m_quote.isNull()) {
        m_quote = c;
        return m_valueFollows;
    }
    m_quote = QChar();
    if (m_position == m_tag.size())
        return true;
    const QChar next = m_tag.at(m_position);
    return next.isSpace() || next == QLatin1Char('/');
}

/// A name or a colour: digits in them are none.
bool TagReader::readWord()
{
    const int start = m_position;
    ++m_position;
    while (m_position < m_tag.size()
        && (isLetter(m_tag.at(m_position)) || isDigit(m_tag.at(m_position))))
        ++m_position;
    return !isEndless(m_tag.mid(start, m_position - start));
}

bool TagReader::readNumber()
{
    qint64 number = 0;
    bool isNumber = false; // not only a full stop
    bool isFraction = false;
    for (; m_position < m_tag.size(); ++m_position) {
        const QChar c = m_tag.at(m_position);
        if (c == QLatin1Char('.')) {
            isFraction = true;
            continue;
        }
        if (!isDigit(c))
            break;
        isNumber = true;
        if (!isFraction)
            number = std::min(10 * number + c.digitValue(), MaxNumber + 1);
    }
    m_numbers += number;
    // An exponent, or the units "em" and "ex", which multiply with the size of a font.
    const bool isScaled = isNumber && m_position < m_tag.size()
        && m_tag.at(m_position).toLower() == QLatin1Char('e');
    return number <= MaxNumber && !isScaled;
}

} // namespace

bool isLayoutBounded(const SensorFrame &frame)
{
    if (hasLongWord(frame.html))
        return false;
    const QString &markup = frame.markup;
    if (markup.isEmpty())
        return true;
    if (frame.html.size() > MaxHtmlSize || markup.count(QLatin1Char('<')) > MaxTags)
        return false;

    TagReader reader;
    int end = 0;
    for (int start = markup.indexOf(QLatin1Char('<')); start >= 0;
         start = markup.indexOf(QLatin1Char('<'), end)) {
        end = markup.indexOf(QLatin1Char('>'), start);
        if (end < 0 || !reader.read(markup.midRef(start + 1, end - start - 1)))
            return false;
    }
    const qint64 rows = reader.rows() + frame.html.count(QLatin1String("<tr>"));
    return reader.tables() <= MaxTables && reader.columns() * rows <= MaxCells
        && reader.numbers() * frame.html.size() <= MaxExtent;
}

QString boundedPlainText(const QString &text)
{
    QString result = text.left(MaxPlainTextSize);
    int lineStart = 0;
    for (int i = 0; i < result.size(); ++i) {
        if (result.at(i) == QLatin1Char('\n')) {
            lineStart = i + 1;
        } else if (i - lineStart == MaxWordLength) {
            result.insert(i, QLatin1Char('\n'));
            lineStart = i + 1;
        }
    }
    return result;
}

} // namespace PluginKrHvcP2
