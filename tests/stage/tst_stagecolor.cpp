#include "demo/stage/StageColor.h"

#include <QColor>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QtTest>

using namespace Stage;

namespace {

/// "#aarrggbb", empty for no colour.
QString describe(const std::optional<StageColor> &color)
{
    if (!color)
        return {};
    return QColor(color->red, color->green, color->blue, color->alpha).name(QColor::HexArgb);
}

QString describe(const QColor &color)
{
    return color.isValid() ? color.name(QColor::HexArgb) : QString();
}

QJsonObject entryWithColor(const QString &color)
{
    const QJsonObject card{{QStringLiteral("color"), color}};
    return {{QStringLiteral("card"), card}};
}

} // namespace

/// Colours are read without Qt Gui; they have to be those of Qt Gui all the same.
class tst_StageColor : public QObject
{
    Q_OBJECT

private slots:
    void asQtGuiReadsThem_data();
    void asQtGuiReadsThem();
    void allNames();
    void anyTexts();
    void name();
    void ink_data();
    void ink();
    void ofContent_data();
    void ofContent();
};

void tst_StageColor::asQtGuiReadsThem_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isColor");

    QTest::newRow("no text") << "" << false;
    QTest::newRow("a name") << "tomato" << true;
    QTest::newRow("a name in capitals and with blanks") << " Light Sky\tBlue" << true;
    QTest::newRow("transparent") << "transparent" << true;
    QTest::newRow("the beginning of a name") << "tomat" << false;
    QTest::newRow("more than a name") << "tomatoes" << false;
    QTest::newRow("behind every name") << "zzz" << false;
    QTest::newRow("a digit for each part") << "#1aF" << true;
    QTest::newRow("two digits") << "#01fe9C" << true;
    QTest::newRow("two digits and alpha") << "#80fe019C" << true;
    QTest::newRow("three digits") << "#01fe9c777" << true;
    QTest::newRow("four digits") << "#01fe9c77abcd" << true;
    QTest::newRow("five digits") << "#01fe9c77abcdefa" << false;
    QTest::newRow("a number sign alone") << "#" << false;
    QTest::newRow("four digits in all") << "#1234" << false;
    QTest::newRow("no digit") << "#12345g" << false;
    QTest::newRow("a sign among the digits") << "#12+4-6" << false;
    QTest::newRow("digits of another script") << QStringLiteral("#\u0661\u0662\u0663") << false;
    QTest::newRow("a blank before it") << " #123456" << false;
}

void tst_StageColor::asQtGuiReadsThem()
{
    QFETCH(QString, text);
    QFETCH(bool, isColor);
    QCOMPARE(colorFromText(text).has_value(), isColor);
    QCOMPARE(describe(colorFromText(text)), describe(QColor(text)));
}

void tst_StageColor::allNames()
{
    const QStringList names = QColor::colorNames();
    QVERIFY(names.size() > 100);
    for (const QString &name : names) {
        QVERIFY2(colorFromText(name), qPrintable(name));
        QCOMPARE(describe(colorFromText(name)), describe(QColor(name)));
    }
}

void tst_StageColor::anyTexts()
{
    QRandomGenerator random(17);
    const QString characters = QStringLiteral("0123456789abcdefABCDEFgx ");
    for (int i = 0; i < 20000; ++i) {
        QString text = QStringLiteral("#");
        for (int length = random.bounded(14); length > 0; --length)
            text += characters.at(random.bounded(random.bounded(4) == 0 ? 25 : 22));
        QVERIFY2(describe(colorFromText(text)) == describe(QColor(text)), qPrintable(text));
    }
}

void tst_StageColor::name()
{
    QCOMPARE(StageColor().name(), QStringLiteral("#000000"));
    QCOMPARE((StageColor{1, 32, 255, 7}.name()), QStringLiteral("#0120ff"));
}

void tst_StageColor::ink_data()
{
    QTest::addColumn<QString>("background");
    QTest::addColumn<QString>("expected");

    QTest::newRow("white") << "white"
                           << "#000000";
    QTest::newRow("black") << "black"
                           << "#ffffff";
    QTest::newRow("a light colour") << "gold"
                                    << "#000000";
    QTest::newRow("a dark colour") << "navy"
                                   << "#ffffff";
    QTest::newRow("just lighter than the middle") << "#767676"
                                                  << "#000000";
    QTest::newRow("just darker than the middle") << "#747474"
                                                 << "#ffffff";
}

void tst_StageColor::ink()
{
    QFETCH(QString, background);
    QFETCH(QString, expected);
    const std::optional<StageColor> color = colorFromText(background);
    QVERIFY(color);
    QCOMPARE(inkOn(*color).name(), expected);
}

void tst_StageColor::ofContent_data()
{
    QTest::addColumn<QString>("color");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("expected");

    QTest::newRow("the card's") << "#102030" << 3 << "#102030";
    QTest::newRow("none on the card") << "" << 1 << "#c2415c";
    QTest::newRow("no colour on the card") << "redd" << 2 << "#2f6fb5";
    QTest::newRow("the last of the turn") << "" << 8 << "#5d722f";
    QTest::newRow("the next turn") << "" << 9 << "#c2415c";
}

void tst_StageColor::ofContent()
{
    QFETCH(QString, color);
    QFETCH(int, number);
    QFETCH(QString, expected);
    QCOMPARE(contentColor(entryWithColor(color), number).name(), expected);
}

QTEST_GUILESS_MAIN(tst_StageColor)

#include "tst_stagecolor.moc"
