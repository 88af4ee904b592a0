#pragma once

#include "tools/hvcp2/Paint.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/// Texts for a terminal of 80 columns.
namespace Hvcp2 {

constexpr int LineColumns = 80;

/// @p text without what would change the terminal or break a file: each control character, blank
/// other than a space and half character becomes one replacement.
QString printable(const QString &text);

int columnsOf(const QString &text); ///< that a terminal needs for a printable text

/// @p text, or its beginning and an ellipsis, in @p columns (1 or more) at most.
QString fitted(const QString &text, int columns);

/// @p text in lines of 80 columns, all @p indent columns from the left and ended; a longer word
/// stays whole.
QString wrapped(const QString &text, int indent);

/// Rows of cells that stand below each other; the first row is the heading.
class TextTable
{
public:
    void addRow(const QStringList &cells); ///< as many cells as the first row
    void alignRight(int column);
    void limit(int column, int columns); ///< longer cells are cut
    QString toText(const Paint &paint) const; ///< two blanks before each line, and between columns

private:
    QVector<QStringList> m_rows;
    QSet<int> m_right;
    QVector<int> m_limits; // by column; 0: none
};

} // namespace Hvcp2
