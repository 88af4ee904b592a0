#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/Paint.h"

#include <QtTest>

using namespace Hvcp2;

class tst_ConsoleText : public QObject
{
    Q_OBJECT

private slots:
    void printableText_data();
    void printableText();
    void columns_data();
    void columns();
    void fittedText_data();
    void fittedText();
    void wrappedText_data();
    void wrappedText();
    void table();
    void paint();
};

void tst_ConsoleText::printableText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("letters") << QStringLiteral("M\u00e4nner \u5973\u6027")
                             << QStringLiteral("M\u00e4nner \u5973\u6027");
    QTest::newRow("a line end and a tab") << "a\nb\tc"
                                          << "a b c";
    QTest::newRow("an escape sequence") << "\x1b[31mred" << QStringLiteral("\ufffd[31mred");
    QTest::newRow("a NUL") << QString(QChar(0)) << QStringLiteral("\ufffd");
    QTest::newRow("a change of the direction")
        << QStringLiteral("a\u202eb") << QStringLiteral("a\ufffdb");
    QTest::newRow("a line separator") << QStringLiteral("a\u2028b") << QStringLiteral("a b");
    QTest::newRow("half a character") << QString(QChar(0xd83d)) << QStringLiteral("\ufffd");
    QTest::newRow("no character") << QString(QChar(0xffff)) << QStringLiteral("\ufffd");
    QTest::newRow("a character of two halves")
        << QStringLiteral("\U0001f388") << QStringLiteral("\U0001f388");
}

void tst_ConsoleText::printableText()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(printable(text), expected);
}

void tst_ConsoleText::columns_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");

    QTest::newRow("nothing") << "" << 0;
    QTest::newRow("letters") << QStringLiteral("M\u00e4nner") << 6;
    QTest::newRow("a letter and its accent") << QStringLiteral("e\u0301") << 1;
    QTest::newRow("wide ones") << QStringLiteral("\u5973\u6027") << 4;
    QTest::newRow("a picture") << QStringLiteral("\U0001f388") << 2;
}

void tst_ConsoleText::columns()
{
    QFETCH(QString, text);
    QFETCH(int, expected);
    QCOMPARE(columnsOf(text), expected);
}

void tst_ConsoleText::fittedText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("expected");

    QTest::newRow("it fits") << "abcde" << 5 << "abcde";
    QTest::newRow("it does not") << "abcdef" << 5 << QStringLiteral("abcd\u2026");
    QTest::newRow("cut at a blank") << "abc def" << 5 << QStringLiteral("abc\u2026");
    QTest::newRow("no half of a wide one")
        << QStringLiteral("\u5973\u6027\u5973") << 4 << QStringLiteral("\u5973\u2026");
    QTest::newRow("no room") << "abc" << 1 << QStringLiteral("\u2026");
}

void tst_ConsoleText::fittedText()
{
    QFETCH(QString, text);
    QFETCH(int, columns);
    QFETCH(QString, expected);
    QCOMPARE(fitted(text, columns), expected);
}

void tst_ConsoleText::wrappedText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    const QString word(38, QLatin1Char('x'));
    const QString longWord = word.repeated(3);
    QTest::newRow("a short one") << "a b"
                                 << "  a b\n";
    QTest::newRow("80 columns with the indentation")
        << QStringLiteral("%1 %1x").arg(word) << QStringLiteral("  %1 %1x\n").arg(word);
    QTest::newRow("81 columns") << QStringLiteral("%1 %1xx").arg(word)
                                << QStringLiteral("  %1\n  %1xx\n").arg(word);
    QTest::newRow("a long word") << QStringLiteral("a %1 b").arg(longWord)
                                 << QStringLiteral("  a\n  %1\n  b\n").arg(longWord);
}

void tst_ConsoleText::wrappedText()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(wrapped(text, 2), expected);
}

void tst_ConsoleText::table()
{
    TextTable table;
    table.addRow({QStringLiteral("#"), QStringLiteral("Name"), QStringLiteral("Ages")});
    table.addRow({QStringLiteral("1"), QStringLiteral("\u5973\u6027"), QStringLiteral("0-9")});
    table.addRow({QStringLiteral("20"), QStringLiteral("Young women"), QString()});
    table.alignRight(0);
    table.limit(1, 8);
    QCOMPARE(table.toText(Paint()),
        QStringLiteral("   #  Name      Ages\n"
                       "   1  \u5973\u6027      0-9\n"
                       "  20  Young w\u2026\n"));
}

void tst_ConsoleText::paint()
{
    const QString text = QStringLiteral("text");
    const Stage::StageColor gold{255, 215, 0};
    for (const QString &plain : {Paint().heading(text), Paint().warning(text), Paint().good(text),
             Paint().on(gold, text), Paint(Paint::Basic).on(gold, text)})
        QCOMPARE(plain, text);
    QCOMPARE(Paint(Paint::Basic).warning(text), QStringLiteral("\x1b[31mtext\x1b[0m"));
    QCOMPARE(Paint(Paint::Full).on(gold, text),
        QStringLiteral("\x1b[48;2;255;215;0;38;2;0;0;0mtext\x1b[0m"));
}

QTEST_GUILESS_MAIN(tst_ConsoleText)

#include "tst_consoletext.moc"
