#include "tools/analysis/ReportText.h"

#include <QTest>

using namespace Analysis;

class tst_ReportText : public QObject
{
    Q_OBJECT

private slots:
    void lines_data();
    void lines();
};

void tst_ReportText::lines_data()
{
    QTest::addColumn<QString>("report");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nothing") << QString() << QString();
    QTest::newRow("nobody") << QStringLiteral("Face result count:0")
                            << QStringLiteral("Face result count:0");
    QTest::newRow("a face") << QStringLiteral(
        "Face result count:1\n\nIndex:0\nX:320 Y:240 Size:60 Confidence:500 \nFace Direction\n"
        "LR:-20 UD:-15 Roll:0 Confidence:600 \nAge\nAge:18 Confidence:300 *\nGender\n"
        "Gender:Female Confidence:700 *\n\n\n")
                            << QStringLiteral(
                                   "Face result count:1\nIndex:0\tX:320 Y:240 Size:60 "
                                   "Confidence:500 \nFace Direction\tLR:-20 UD:-15 Roll:0 "
                                   "Confidence:600 \nAge\tAge:18 Confidence:300 *\nGender\t"
                                   "Gender:Female Confidence:700 *");
    QTest::newRow("a value that looks like a label") << QStringLiteral(
        "Age\nGender\nGender\nAge:5") << QStringLiteral("Age\tGender\nGender\tAge:5");
    QTest::newRow("an empty value")
        << QStringLiteral("Gender\n\nIndex:1\nX:1") << QStringLiteral("Gender\t\nIndex:1\tX:1");
    QTest::newRow("a label at the end")
        << QStringLiteral("a\nGender") << QStringLiteral("a\nGender");
    QTest::newRow("other rows have no value")
        << QStringLiteral("Blink\n\nIndex:0\nX:1") << QStringLiteral("Blink\nIndex:0\tX:1");
    QTest::newRow("an index that is no number is not a label")
        << QStringLiteral("Index:x\nAge\nAge:7") << QStringLiteral("Index:x\nAge\tAge:7");
    QTest::newRow("letter case of the index")
        << QStringLiteral("INDEX:07\nX:1") << QStringLiteral("INDEX:07\tX:1");
    QTest::newRow("a failure that begins like a label") << QStringLiteral(
        "Age Failed x\nIndex:0\nX:1") << QStringLiteral("Age Failed x\nIndex:0\tX:1");
    QTest::newRow("two frames at once")
        << QStringLiteral("Gender\nGender:Male\n\n\nFACE result count:0\nface")
        << QStringLiteral(
               "Gender\tGender:Male\nPress Space Key to end:\nFACE result count:0\nface");
    QTest::newRow("a face count that is a value")
        << QStringLiteral("Age\nFace result count:0") << QStringLiteral("Age\tFace result count:0");
    QTest::newRow("whole lines stay as they are") << QStringLiteral("Age\n\nGender\tGender:Male")
                                                  << QStringLiteral("Age\n\nGender\tGender:Male");
}

void tst_ReportText::lines()
{
    QFETCH(QString, report);
    QFETCH(QString, expected);
    QCOMPARE(sensorLines(report), expected);
}

QTEST_GUILESS_MAIN(tst_ReportText)

#include "tst_reporttext.moc"
