#include "tests/docs/MarkdownPage.h"

#include <QtTest>

using namespace KrTest;

namespace {

/// "a|b" as two lines; nothing for an empty text.
QStringList linesOf(const char *text)
{
    const QString lines = QString::fromUtf8(text);
    return lines.isEmpty() ? QStringList() : lines.split(QLatin1Char('|'));
}

} // namespace

class tst_MarkdownPage : public QObject
{
    Q_OBJECT

private slots:
    void blocks();
    void links();
    void anchors_data();
    void anchors();
    void commands();
    void outputs_data();
    void outputs();
};

void tst_MarkdownPage::blocks()
{
    const QVector<MarkdownBlock> blocks
        = blocksOf(QStringLiteral("Text\n```console\n$ a b\n\nc\n```\n# No `block`\n"
                                  "```ini plugins/setting.ini\n[Main]\n```\n1. In a list\n"
                                  "   ```\n   d\n   ```\n"));
    QCOMPARE(blocks.size(), 3);
    QCOMPARE(blocks.at(0).language, QStringLiteral("console"));
    QCOMPARE(blocks.at(0).fileName, QString());
    QCOMPARE(blocks.at(0).lines, linesOf("$ a b||c"));
    QCOMPARE(blocks.at(0).line, 3);
    QCOMPARE(blocks.at(1).language, QStringLiteral("ini"));
    QCOMPARE(blocks.at(1).fileName, QStringLiteral("plugins/setting.ini"));
    QCOMPARE(blocks.at(1).lines, linesOf("[Main]"));
    QCOMPARE(blocks.at(2).language, QString());
    QCOMPARE(blocks.at(2).lines, linesOf("   d"));
}

void tst_MarkdownPage::links()
{
    const QVector<MarkdownLink> links
        = linksOf(QStringLiteral("A [page](a.md), [a place](#here),\n```\n[no](link.md)\n```\n"
                                 "and ![a picture](b.png) `[x](y)`\n"));
    QCOMPARE(links.size(), 3);
    QCOMPARE(links.at(0).target, QStringLiteral("a.md"));
    QCOMPARE(links.at(1).target, QStringLiteral("#here"));
    QCOMPARE(links.at(2).target, QStringLiteral("b.png"));
    QCOMPARE(links.at(2).line, 5);
}

void tst_MarkdownPage::anchors_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QStringList>("expected");

    const auto row = [](const char *name, const char *page, const char *expected) {
        QTest::newRow(name) << QString::fromUtf8(page) << linesOf(expected);
    };
    row("words", "# How a content is chosen\n", "how-a-content-is-chosen");
    row("punctuation", "## What, when & \"why\"?\n", "what-when--why");
    row("code", "### Lines of `--headless`\n", "lines-of---headless");
    row("a link", "# See [this](a.md)\n", "see-this");
    row("other letters", "# F\xc3\xbcr die T\xc3\xbcr\n", "f\xc3\xbcr-die-t\xc3\xbcr");
    row("twice", "# A\n# A\n# A\n", "a|a-1|a-2");
    row("in a block", "```\n# a comment\n```\n", "");
}

void tst_MarkdownPage::anchors()
{
    QFETCH(QString, page);

    QTEST(anchorsOf(page), "expected");
}

void tst_MarkdownPage::commands()
{
    const QVector<DocumentedCommand> commands
        = commandsOf({QString(), QString(), linesOf("no command|$ a b|c|$ d"), 10});
    QCOMPARE(commands.size(), 2);
    QCOMPARE(commands.at(0).words, linesOf("a|b"));
    QCOMPARE(commands.at(0).output, linesOf("c"));
    QCOMPARE(commands.at(0).line, 11);
    QCOMPARE(commands.at(1).words, linesOf("d"));
    QCOMPARE(commands.at(1).output, QStringList());
    QCOMPARE(commands.at(1).line, 13);
}

void tst_MarkdownPage::outputs_data()
{
    QTest::addColumn<QString>("actual");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("fitting");

    const auto row = [](const char *name, const char *actual, const char *expected, bool fitting) {
        QTest::newRow(name) << QString::fromUtf8(actual) << QString::fromUtf8(expected) << fitting;
    };
    row("nothing", "", "", true);
    row("the same", "a|b", "a|b", true);
    row("another line", "a|b", "a|c", false);
    row("too little", "a", "a|b", false);
    row("too much", "a|b", "a", false);
    row("any lines", "a|b|c", "a|...", true);
    row("no line", "a", "a|...", true);
    row("in between", "a|b|c|d", "...|b|...|d", true);
    row("in another order", "a|b", "...|b|...|a", false);
}

void tst_MarkdownPage::outputs()
{
    QFETCH(QString, actual);
    QFETCH(QString, expected);

    QTEST(fits(linesOf(qPrintable(actual)), linesOf(qPrintable(expected))), "fitting");
}

QTEST_GUILESS_MAIN(tst_MarkdownPage)

#include "tst_markdownpage.moc"
