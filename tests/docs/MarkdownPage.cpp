#include "tests/docs/MarkdownPage.h"

#include <QRegularExpression>

#include <functional>

namespace KrTest {

namespace {

const QString AnyLines = QStringLiteral("...");

/// Calls one of the two for each line of a page, with the line's number.
void readLines(const QString &page, const std::function<void(const QString &, int)> &proseLine,
    const std::function<void(const QString &, int, bool)> &blockLine)
{
    static const QRegularExpression fence(QStringLiteral("^\\s*```"));
    bool inBlock = false;
    int number = 0;
    const QStringList lines = page.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        ++number;
        const bool isFence = fence.match(line).hasMatch();
        if (isFence)
            inBlock = !inBlock;
        if (isFence || inBlock)
            blockLine(line, number, isFence);
        else
            proseLine(line, number);
    }
}

QString withoutCode(QString line)
{
    static const QRegularExpression code(QStringLiteral("`[^`]*`"));
    return line.remove(code);
}

/// As the repository's host makes it.
QString anchorOf(const QString &heading)
{
    static const QRegularExpression dropped(
        QStringLiteral("[^\\w\\- ]"), QRegularExpression::UseUnicodePropertiesOption);
    static const QRegularExpression link(QStringLiteral("\\[([^\\]]*)\\]\\([^)]*\\)"));
    QString anchor = heading.trimmed().toLower();
    anchor.replace(link, QStringLiteral("\\1"));
    return anchor.remove(dropped).replace(QLatin1Char(' '), QLatin1Char('-'));
}

bool fitsFrom(const QStringList &actual, int a, const QStringList &expected, int e)
{
    if (e == expected.size())
        return a == actual.size();
    if (expected.at(e) != AnyLines)
        return a < actual.size() && actual.at(a) == expected.at(e)
            && fitsFrom(actual, a + 1, expected, e + 1);
    for (int rest = a; rest <= actual.size(); ++rest) {
        if (fitsFrom(actual, rest, expected, e + 1))
            return true;
    }
    return false;
}

} // namespace

QVector<MarkdownBlock> blocksOf(const QString &page)
{
    QVector<MarkdownBlock> blocks;
    bool inBlock = false;
    const auto blockLine = [&](const QString &line, int number, bool isFence) {
        if (!isFence) {
            blocks.last().lines.append(line);
            return;
        }
        inBlock = !inBlock;
        if (!inBlock)
            return;
        const QStringList words = line.trimmed().mid(3).split(QLatin1Char(' '));
        blocks.append({words.value(0), words.value(1), {}, number + 1});
    };
    readLines(
        page, [](const QString &, int) {}, blockLine);
    return blocks;
}

QVector<MarkdownLink> linksOf(const QString &page)
{
    static const QRegularExpression link(QStringLiteral("\\]\\(([^)\\s]*)\\)"));
    QVector<MarkdownLink> links;
    const auto proseLine = [&](const QString &line, int number) {
        const QString prose = withoutCode(line);
        QRegularExpressionMatchIterator matches = link.globalMatch(prose);
        while (matches.hasNext())
            links.append({matches.next().captured(1), number});
    };
    readLines(page, proseLine, [](const QString &, int, bool) {});
    return links;
}

QStringList anchorsOf(const QString &page)
{
    static const QRegularExpression heading(QStringLiteral("^#+ (.*)$"));
    QStringList anchors;
    const auto proseLine = [&](const QString &line, int) {
        const QRegularExpressionMatch match = heading.match(line);
        if (!match.hasMatch())
            return;
        const QString anchor = anchorOf(match.captured(1));
        QString unique = anchor;
        for (int i = 1; anchors.contains(unique); ++i)
            unique = QStringLiteral("%1-%2").arg(anchor).arg(i);
        anchors.append(unique);
    };
    readLines(page, proseLine, [](const QString &, int, bool) {});
    return anchors;
}

QVector<DocumentedCommand> commandsOf(const MarkdownBlock &block)
{
    const QString prompt = QStringLiteral("$ ");
    QVector<DocumentedCommand> commands;
    int number = block.line;
    for (const QString &line : block.lines) {
        if (line.startsWith(prompt))
            commands.append({line.mid(prompt.size()).split(QLatin1Char(' ')), {}, number});
        else if (!commands.isEmpty())
            commands.last().output.append(line);
        ++number;
    }
    return commands;
}

bool fits(const QStringList &actual, const QStringList &expected)
{
    return fitsFrom(actual, 0, expected, 0);
}

} // namespace KrTest
