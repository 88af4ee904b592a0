#include "core/screen/Gender.h"

#include <QtTest>

using namespace PluginKrHvcP2;

class tst_Gender : public QObject
{
    Q_OBJECT

private slots:
    void toText_data();
    void toText();
    void fromText_data();
    void fromText();
    void conflict_data();
    void conflict();
};

void tst_Gender::toText_data()
{
    QTest::addColumn<int>("gender");
    QTest::addColumn<QString>("expected");

    QTest::newRow("1 is male") << 1 << QStringLiteral("male");
    QTest::newRow("2 is female") << 2 << QStringLiteral("female");
    QTest::newRow("3 is both") << 3 << QStringLiteral("both");
    QTest::newRow("unknown is empty") << 0 << QString();
    QTest::newRow("a code above both is empty") << 4 << QString();
    QTest::newRow("a negative code is empty") << -1 << QString();
}

void tst_Gender::toText()
{
    QFETCH(int, gender);
    QFETCH(QString, expected);
    QCOMPARE(genderToText(gender), expected);
}

void tst_Gender::fromText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");

    QTest::newRow("male") << QStringLiteral("male") << 1;
    QTest::newRow("female") << QStringLiteral("female") << 2;
    QTest::newRow("both") << QStringLiteral("both") << 3;
    QTest::newRow("upper case") << QStringLiteral("FEMALE") << 2;
    QTest::newRow("mixed case") << QStringLiteral("bOTh") << 3;
    QTest::newRow("a blank behind the word is unknown") << QStringLiteral("female ") << 0;
    QTest::newRow("a blank before the word is unknown") << QStringLiteral(" male") << 0;
    QTest::newRow("half a word is unknown") << QStringLiteral("fem") << 0;
    QTest::newRow("a number is unknown") << QStringLiteral("1") << 0;
    QTest::newRow("the empty text is unknown") << QStringLiteral("") << 0;
    QTest::newRow("the null text is unknown") << QString() << 0;
}

void tst_Gender::fromText()
{
    QFETCH(QString, text);
    QFETCH(int, expected);
    QCOMPARE(genderFromText(text), expected);
}

void tst_Gender::conflict_data()
{
    QTest::addColumn<int>("one");
    QTest::addColumn<int>("other");
    QTest::addColumn<bool>("expected");

    QTest::newRow("male and female share nothing") << int(Male) << int(Female) << false;
    QTest::newRow("both and male share male") << int(BothGenders) << int(Male) << true;
    QTest::newRow("both and female share female") << int(BothGenders) << int(Female) << true;
    QTest::newRow("unknown shares nothing") << int(UnknownGender) << int(BothGenders) << false;
}

void tst_Gender::conflict()
{
    QFETCH(int, one);
    QFETCH(int, other);
    QFETCH(bool, expected);
    QCOMPARE((one & other) != 0, expected);
}

QTEST_GUILESS_MAIN(tst_Gender)

#include "tst_gender.moc"
