#include "tools/hvcp2/Csv.h"

#include <QtTest>

using namespace Hvcp2;

class tst_Csv : public QObject
{
    Q_OBJECT

private slots:
    void lines_data();
    void lines();
    void numbers_data();
    void numbers();
};

void tst_Csv::lines_data()
{
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<QString>("expected");

    const auto add = [](const char *name, const QStringList &cells, const QString &expected) {
        QTest::newRow(name) << cells << expected;
    };
    add("words", {QStringLiteral("one"), QStringLiteral("two words")},
        QStringLiteral("one,two words\n"));
    add("an empty cell", {QStringLiteral("one"), QString(), QStringLiteral("3")},
        QStringLiteral("one,,3\n"));
    add("a comma", {QStringLiteral("Women, 20-39"), QStringLiteral("3")},
        QStringLiteral("\"Women, 20-39\",3\n"));
    add("a quotation mark", {QStringLiteral("the \"new\" one")},
        QStringLiteral("\"the \"\"new\"\" one\"\n"));
    add("line breaks", {QStringLiteral("a\nb\rc")}, QStringLiteral("a b c\n"));
    add("a semicolon", {QStringLiteral("a;b")}, QStringLiteral("a;b\n"));
    add("other letters", {QStringLiteral("M\u00e4nner"), QStringLiteral("\u5973\u6027")},
        QStringLiteral("M\u00e4nner,\u5973\u6027\n"));
}

void tst_Csv::lines()
{
    QFETCH(QStringList, cells);
    QTEST(csvLine(cells), "expected");
}

void tst_Csv::numbers_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<QString>("expected");

    QTest::newRow("whole") << 3.0 << "3";
    QTest::newRow("half") << 0.5 << "0.5";
    QTest::newRow("what a sum of fractions adds") << 0.1 + 0.2 << "0.3";
    QTest::newRow("a third") << 1 / 3.0 << "0.333333333333333";
    QTest::newRow("large") << 31536000000000.0 << "31536000000000";
}

void tst_Csv::numbers()
{
    QFETCH(double, number);
    QTEST(csvNumber(number), "expected");
}

QTEST_GUILESS_MAIN(tst_Csv)

#include "tst_csv.moc"
