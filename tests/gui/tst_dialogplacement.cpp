#include "gui/DialogPlacement.h"

#include <QtTest>

using namespace PluginKrHvcP2;

class tst_DialogPlacement : public QObject
{
    Q_OBJECT

private slots:
    void anchorAtCursor_data();
    void anchorAtCursor();
    void position_data();
    void position();
};

void tst_DialogPlacement::anchorAtCursor_data()
{
    QTest::addColumn<QPoint>("cursor");
    QTest::addColumn<QRect>("expected");

    QTest::newRow("100 to the left and 10 below") << QPoint(500, 400) << QRect(400, 410, 1, 1);
    QTest::newRow("left of the screen near its edge") << QPoint(0, 0) << QRect(-100, 10, 1, 1);
    QTest::newRow("on a screen with negative coordinates")
        << QPoint(-1200, -30) << QRect(-1300, -20, 1, 1);
}

void tst_DialogPlacement::anchorAtCursor()
{
    QFETCH(QPoint, cursor);
    QFETCH(QRect, expected);
    QCOMPARE(cursorAnchor(cursor), expected);
}

void tst_DialogPlacement::position_data()
{
    QTest::addColumn<QRect>("anchor");
    QTest::addColumn<QRect>("screen");
    QTest::addColumn<int>("room");
    QTest::addColumn<QPoint>("expected");

    const QRect screen(0, 0, 1000, 800); // right 999, bottom 799
    const QRect second(-1920, 200, 1920, 1080); // right -1, bottom 1279

    QTest::newRow("room on all sides: 300 above the anchor")
        << QRect(200, 450, 40, 20) << screen << 300 << QPoint(200, 150);
    QTest::newRow("left of the screen: its left edge")
        << QRect(-1, 450, 40, 20) << screen << 300 << QPoint(0, 150);
    QTest::newRow("on the left edge stays")
        << QRect(0, 450, 40, 20) << screen << 300 << QPoint(0, 150);
    QTest::newRow("just room on the right")
        << QRect(699, 450, 40, 20) << screen << 300 << QPoint(699, 150);
    QTest::newRow("one pixel too far to the right")
        << QRect(700, 450, 40, 20) << screen << 300 << QPoint(699, 150);
    QTest::newRow("far to the right of the screen")
        << QRect(5000, 450, 40, 20) << screen << 300 << QPoint(699, 150);
    QTest::newRow("just room on the right for the wider dialog")
        << QRect(639, 450, 40, 20) << screen << 360 << QPoint(639, 150);
    QTest::newRow("one pixel too far to the right for the wider dialog")
        << QRect(640, 450, 40, 20) << screen << 360 << QPoint(639, 150);
    QTest::newRow("just room above") << QRect(200, 300, 40, 20) << screen << 300 << QPoint(200, 0);
    QTest::newRow("no room above: the anchor's bottom")
        << QRect(200, 299, 40, 20) << screen << 300 << QPoint(200, 318);
    QTest::newRow("anchor half above the screen: its bottom")
        << QRect(200, -10, 40, 20) << screen << 300 << QPoint(200, 9);
    QTest::newRow("anchor's bottom on the screen's top: the anchor's height below the top")
        << QRect(200, -19, 40, 20) << screen << 300 << QPoint(200, 20);
    QTest::newRow("anchor's bottom just inside: the bottom")
        << QRect(200, -18, 40, 20) << screen << 300 << QPoint(200, 1);
    QTest::newRow("anchor wholly above the screen: the anchor's height below the top")
        << QRect(200, -400, 40, 20) << screen << 300 << QPoint(200, 20);
    QTest::newRow("just room below")
        << QRect(200, 799, 40, 20) << screen << 300 << QPoint(200, 499);
    QTest::newRow("anchor one pixel below the screen")
        << QRect(200, 800, 40, 20) << screen << 300 << QPoint(200, 499);
    QTest::newRow("the wider dialog has the same room above and below")
        << QRect(200, 850, 40, 20) << screen << 360 << QPoint(200, 499);
    QTest::newRow("a tall anchor pushes up from the bottom")
        << QRect(200, 100, 40, 600) << screen << 300 << QPoint(200, 499);
    QTest::newRow("screen with an origin of its own")
        << QRect(-1000, 900, 40, 20) << second << 300 << QPoint(-1000, 600);
    QTest::newRow("left of the second screen")
        << QRect(-2000, 900, 40, 20) << second << 300 << QPoint(-1920, 600);
    QTest::newRow("too far right on the second screen")
        << QRect(-300, 900, 40, 20) << second << 300 << QPoint(-301, 600);
    QTest::newRow("no room above on the second screen")
        << QRect(-1000, 210, 40, 20) << second << 300 << QPoint(-1000, 229);
    QTest::newRow("above the second screen")
        << QRect(-1000, 100, 40, 50) << second << 300 << QPoint(-1000, 250);
    QTest::newRow("below the second screen")
        << QRect(-1000, 1600, 40, 20) << second << 300 << QPoint(-1000, 979);
    QTest::newRow("a screen narrower than the room: the right edge counts last")
        << QRect(50, 450, 40, 20) << QRect(0, 0, 200, 800) << 300 << QPoint(-101, 150);
    QTest::newRow("a screen lower than the room: the bottom counts last")
        << QRect(200, 50, 40, 20) << QRect(0, 0, 1000, 200) << 300 << QPoint(200, -101);
    QTest::newRow("an anchor without width still counts")
        << QRect(200, 450, 0, 20) << screen << 300 << QPoint(200, 150);
}

void tst_DialogPlacement::position()
{
    QFETCH(QRect, anchor);
    QFETCH(QRect, screen);
    QFETCH(int, room);
    QFETCH(QPoint, expected);
    QCOMPARE(dialogPosition(anchor, screen, room), expected);
}

QTEST_GUILESS_MAIN(tst_DialogPlacement)
#include "tst_dialogplacement.moc"
