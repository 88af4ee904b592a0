#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace KrTest {

/// A block of a page between two lines of back ticks.
struct MarkdownBlock
{
    QString language; ///< the first word behind the back ticks
    QString fileName; ///< the second one: the text is a file that commands of the page read
    QStringList lines;
    int line = 0; ///< of the first of them in the page
};

struct MarkdownLink
{
    QString target; ///< as it is written
    int line = 0;
};

/// A line "$ PROGRAM ARGUMENT..." of a block, and what is printed.
struct DocumentedCommand
{
    QStringList words;
    QStringList output; ///< a line "..." stands for any lines
    int line = 0;
};

QVector<MarkdownBlock> blocksOf(const QString &page);

/// Of texts and pictures, those in blocks and in code left out.
QVector<MarkdownLink> linksOf(const QString &page);

/// What the headings of a page are known by behind a "#".
QStringList anchorsOf(const QString &page);

QVector<DocumentedCommand> commandsOf(const MarkdownBlock &block);

/// Whether @p actual is what @p expected says.
bool fits(const QStringList &actual, const QStringList &expected);

} // namespace KrTest
