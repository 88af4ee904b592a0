#include "demo/desk/PlacingText.h"
#include "demo/desk/ViewerDesk.h"

#include <QtTest>

using namespace Desk;
using Simulation::Gender;

class tst_PlacingText : public QObject
{
    Q_OBJECT

private slots:
    void hint_data();
    void hint();
    void spoken_data();
    void spoken();
};

void tst_PlacingText::hint_data()
{
    QTest::addColumn<int>("viewers");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nobody") << 0 << "Click to place somebody.";
    QTest::newRow("one") << 1 << "Drag to move, turn the wheel for nearer and farther.";
    QTest::newRow("two") << 2 << "";
    QTest::newRow("nearly full") << 34 << "";
    QTest::newRow("full") << 35 << "The sensor reports no more than 35 faces.";
}

void tst_PlacingText::hint()
{
    QFETCH(int, viewers);
    QFETCH(QString, expected);

    ViewerDesk desk;
    for (int i = 0; i < viewers; ++i)
        desk.add({600, 600});
    QCOMPARE(placingHint(desk), expected);
}

void tst_PlacingText::spoken_data()
{
    QTest::addColumn<int>("selected");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nobody") << 0 << "Viewers: 3";
    QTest::newRow("woman") << 1 << "Viewers: 3; selected: female, age 30, at 100, 200, size 200";
    QTest::newRow("boy") << 2 << "Viewers: 3; selected: male, age 8, at 300, 400, size 80";
    QTest::newRow("nothing is told")
        << 3 << "Viewers: 3; selected: gender not told, age not told, at 500, 600, size 200";
}

void tst_PlacingText::spoken()
{
    QFETCH(int, selected);
    QFETCH(QString, expected);

    ViewerDesk desk;
    PlacedViewer somebody = desk.viewer(desk.add({100, 200}));
    for (const int number : {2, 3}) {
        somebody.id = desk.add({200 * number - 100, 200 * number});
        somebody.position = desk.viewer(somebody.id).position;
        somebody.gender = number == 2 ? Gender::Male : Gender::Unknown;
        somebody.age = number == 2 ? std::make_optional(8) : std::nullopt;
        somebody.position.size = number == 2 ? 80 : 200;
        desk.change(somebody);
    }
    desk.select(selected);
    QCOMPARE(spokenText(desk), expected);
}

QTEST_GUILESS_MAIN(tst_PlacingText)

#include "tst_placingtext.moc"
