#include "tools/hvcp2/ConsoleText.h"

#include <algorithm>
#include <array>

namespace Hvcp2 {

namespace {

struct CharacterRange
{
    uint first;
    uint last;
};

// The blocks that terminals show two columns wide.
constexpr std::array<CharacterRange, 12> WideRanges{{{0x1100, 0x115f}, {0x2e80, 0x303e},
    {0x3041, 0x33ff}, {0x3400, 0x4dbf}, {0x4e00, 0x9fff}, {0xa000, 0xa4cf}, {0xac00, 0xd7a3},
    {0xf900, 0xfaff}, {0xfe30, 0xfe6f}, {0xff00, 0xff60}, {0xffe0, 0xffe6}, {0x1f300, 0x3fffd}}};

bool isControl(uint character)
{
    const QChar::Category category = QChar::category(character);
    return category == QChar::Other_Control || category == QChar::Other_Format
        || category == QChar::Other_Surrogate || category == QChar::Separator_Line
        || category == QChar::Separator_Paragraph || (character & 0xfffeU) == 0xfffeU;
}

int columnsOfCharacter(uint character)
{
    const QChar::Category category = QChar::category(character);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing)
        return 0;
    const bool isWide = std::any_of(
        WideRanges.cbegin(), WideRanges.cend(), [character](const CharacterRange &range) {
            return range.first <= character && character <= range.last;
        });
    return isWide ? 2 : 1;
}

QString padded(const QString &text, int columns, bool right)
{
    const QString blanks(qMax(0, columns - columnsOf(text)), QLatin1Char(' '));
    return right ? blanks + text : text + blanks;
}

QString withoutTrailingBlanks(QString line)
{
    while (line.endsWith(QLatin1Char(' ')))
        line.chop(1);
    return line;
}

} // namespace

QString printable(const QString &text)
{
    QString result;
    const QVector<uint> characters = text.toUcs4();
    for (uint character : characters) {
        if (character != ' ' && QChar::isSpace(character))
            character = ' ';
        else if (isControl(character))
            character = QChar::ReplacementCharacter;
        result += QString::fromUcs4(&character, 1);
    }
    return result;
}

int columnsOf(const QString &text)
{
    int columns = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters)
        columns += columnsOfCharacter(character);
    return columns;
}

QString fitted(const QString &text, int columns)
{
    if (columnsOf(text) <= columns)
        return text;
    QString result;
    int room = columns - 1; // for the ellipsis
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        room -= columnsOfCharacter(character);
        if (room < 0)
            break;
        result += QString::fromUcs4(&character, 1);
    }
    return result.trimmed() + QChar(0x2026);
}

QString wrapped(const QString &text, int indent)
{
    const QString start(indent, QLatin1Char(' '));
    QString lines;
    QString line;
    const QStringList words = text.split(QLatin1Char(' '));
    for (const QString &word : words) {
        if (!line.isEmpty() && indent + columnsOf(line) + 1 + columnsOf(word) > LineColumns) {
            lines += start + line + QLatin1Char('\n');
            line.clear();
        }
        line += line.isEmpty() ? word : QLatin1Char(' ') + word;
    }
    return lines + start + line + QLatin1Char('\n');
}

void TextTable::addRow(const QStringList &cells)
{
    m_rows.append(cells);
    m_limits.resize(cells.size());
}

void TextTable::alignRight(int column)
{
    m_right.insert(column);
}

void TextTable::limit(int column, int columns)
{
    m_limits[column] = columns;
}

QString TextTable::toText(const Paint &paint) const
{
    QVector<QStringList> rows = m_rows;
    QVector<int> widths(m_limits.size());
    for (QStringList &row : rows) {
        for (int column = 0; column < row.size(); ++column) {
            if (m_limits.at(column) > 0)
                row[column] = fitted(row.at(column), m_limits.at(column));
            widths[column] = qMax(widths.at(column), columnsOf(row.at(column)));
        }
    }
    QString text;
    for (int i = 0; i < rows.size(); ++i) {
        QString line;
        for (int column = 0; column < widths.size(); ++column) {
            line += QLatin1String("  ")
                + padded(rows.at(i).at(column), widths.at(column), m_right.contains(column));
        }
        line = withoutTrailingBlanks(line);
        text += (i == 0 ? paint.heading(line) : line) + QLatin1Char('\n');
    }
    return text;
}

} // namespace Hvcp2
