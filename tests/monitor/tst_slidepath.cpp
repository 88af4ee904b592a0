#include "monitor/SlidePath.h"

#include <QtTest>

using namespace PluginKrHvcP2;

class tst_SlidePath : public QObject
{
    Q_OBJECT

private slots:
    void normalizing_data();
    void normalizing();
    void path_data();
    void path();
};

void tst_SlidePath::normalizing_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<int>("normalized");
    QTest::addColumn<bool>("onlyHorizontal");

    QTest::newRow("no bit is no direction") << 0 << 0 << false;
    QTest::newRow("leftwards") << 1 << 1 << true;
    QTest::newRow("upwards") << 2 << 2 << false;
    QTest::newRow("leftwards and upwards") << 3 << 3 << false;
    QTest::newRow("rightwards") << 4 << 4 << true;
    QTest::newRow("left and right cancel each other out") << 5 << 0 << false;
    QTest::newRow("upwards and rightwards") << 6 << 6 << false;
    QTest::newRow("left and right leave upwards") << 7 << 2 << false;
    QTest::newRow("downwards") << 8 << 8 << false;
    QTest::newRow("leftwards and downwards") << 9 << 9 << false;
    QTest::newRow("up and down cancel each other out") << 10 << 0 << false;
    QTest::newRow("up and down leave leftwards") << 11 << 1 << true;
    QTest::newRow("rightwards and downwards") << 12 << 12 << false;
    QTest::newRow("left and right leave downwards") << 13 << 8 << false;
    QTest::newRow("up and down leave rightwards") << 14 << 4 << true;
    QTest::newRow("all four cancel each other out") << 15 << 0 << false;
    QTest::newRow("a bit without a way is kept") << 16 << 16 << false;
    QTest::newRow("a bit without a way beside leftwards") << 17 << 17 << true;
    QTest::newRow("a bit without a way beside upwards") << 18 << 18 << false;
    QTest::newRow("a bit without a way outlasts the four") << 31 << 16 << false;
    QTest::newRow("a negative number keeps all but the four") << -1 << -16 << false;
}

void tst_SlidePath::normalizing()
{
    QFETCH(int, direction);
    QFETCH(int, normalized);
    QFETCH(bool, onlyHorizontal);

    QCOMPARE(normalizedDirection(direction), normalized);
    QCOMPARE(movesOnlyHorizontally(normalized), onlyHorizontal);
}

void tst_SlidePath::path_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<QSizeF>("panel");
    QTest::addColumn<qreal>("idealWidth");
    QTest::addColumn<qreal>("textHeight");
    QTest::addColumn<QPointF>("start");
    QTest::addColumn<QPointF>("rest");
    QTest::addColumn<QPointF>("exit");

    const QSizeF panel(400, 300);
    const qreal width = 120;
    const qreal height = 40;

    QTest::newRow("leftwards crosses the panel along its upper edge")
        << 1 << panel << width << height << QPointF(400, 0) << QPointF(0, 0) << QPointF(-120, 0);
    QTest::newRow("upwards rests in the middle")
        << 2 << panel << width << height << QPointF(0, 300) << QPointF(0, 130) << QPointF(0, -40);
    QTest::newRow("left and up sets both coordinates")
        << 3 << panel << width << height << QPointF(400, 300) << QPointF(0, 130)
        << QPointF(-120, -40);
    QTest::newRow("rightwards rests at the right edge")
        << 4 << panel << width << height << QPointF(-120, 0) << QPointF(280, 0) << QPointF(400, 0);
    QTest::newRow("right and up sets both coordinates")
        << 6 << panel << width << height << QPointF(-120, 300) << QPointF(280, 130)
        << QPointF(400, -40);
    QTest::newRow("downwards enters at the upper edge, not above it")
        << 8 << panel << width << height << QPointF(0, 0) << QPointF(0, 130) << QPointF(0, 300);
    QTest::newRow("left and down sets both coordinates")
        << 9 << panel << width << height << QPointF(400, 0) << QPointF(0, 130)
        << QPointF(-120, 300);
    QTest::newRow("right and down sets both coordinates")
        << 12 << panel << width << height << QPointF(-120, 0) << QPointF(280, 130)
        << QPointF(400, 300);
    QTest::newRow("no direction stays at the origin")
        << 0 << panel << width << height << QPointF(0, 0) << QPointF(0, 0) << QPointF(0, 0);
    QTest::newRow("a bit without a way stays at the origin")
        << 16 << panel << width << height << QPointF(0, 0) << QPointF(0, 0) << QPointF(0, 0);
    QTest::newRow("a bit without a way changes no other way")
        << 18 << panel << width << height << QPointF(0, 300) << QPointF(0, 130) << QPointF(0, -40);
    QTest::newRow("text taller than the panel rests above its upper edge")
        << 2 << panel << width << qreal(500) << QPointF(0, 300) << QPointF(0, -100)
        << QPointF(0, -500);
    QTest::newRow("text wider than the panel rests left of its left edge")
        << 4 << panel << qreal(450.5) << height << QPointF(-450.5, 0) << QPointF(-50.5, 0)
        << QPointF(400, 0);
    QTest::newRow("empty text in an empty panel")
        << 3 << QSizeF(0, 0) << qreal(0) << qreal(0) << QPointF(0, 0) << QPointF(0, 0)
        << QPointF(0, 0);
    QTest::newRow("odd remainder is not rounded")
        << 2 << QSizeF(400, 301) << width << qreal(40.5) << QPointF(0, 301) << QPointF(0, 130.25)
        << QPointF(0, -40.5);
}

void tst_SlidePath::path()
{
    QFETCH(int, direction);
    QFETCH(QSizeF, panel);
    QFETCH(qreal, idealWidth);
    QFETCH(qreal, textHeight);
    QFETCH(QPointF, start);
    QFETCH(QPointF, rest);
    QFETCH(QPointF, exit);

    const SlidePath path = slidePath(direction, panel, idealWidth, textHeight);
    QCOMPARE(path.start, start);
    QCOMPARE(path.rest, rest);
    QCOMPARE(path.exit, exit);
}

QTEST_GUILESS_MAIN(tst_SlidePath)

#include "tst_slidepath.moc"
