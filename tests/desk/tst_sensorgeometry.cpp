#include "demo/desk/SensorGeometry.h"

#include <QtTest>

using namespace Desk;

class tst_SensorGeometry : public QObject
{
    Q_OBJECT

private slots:
    void area_data();
    void area();
    void points_data();
    void points();
    void noRoom();
    void isInPicture_data();
    void isInPicture();
};

void tst_SensorGeometry::area_data()
{
    QTest::addColumn<QRectF>("room");
    QTest::addColumn<QRectF>("expected");

    QTest::newRow("its own shape") << QRectF(0, 0, 800, 600) << QRectF(0, 0, 800, 600);
    QTest::newRow("too wide") << QRectF(0, 0, 1000, 600) << QRectF(100, 0, 800, 600);
    QTest::newRow("too high") << QRectF(0, 0, 400, 500) << QRectF(0, 100, 400, 300);
    QTest::newRow("not at the origin") << QRectF(10, 20, 400, 300) << QRectF(10, 20, 400, 300);
}

void tst_SensorGeometry::area()
{
    QFETCH(QRectF, room);

    QTEST(SensorGeometry::fittedInto(room).area(), "expected");
}

void tst_SensorGeometry::points_data()
{
    QTest::addColumn<QPointF>("sensor");
    QTest::addColumn<QPointF>("widget");

    QTest::newRow("top left") << QPointF(0, 0) << QPointF(100, 20);
    QTest::newRow("bottom right") << QPointF(1600, 1200) << QPointF(900, 620);
    QTest::newRow("inside") << QPointF(400, 900) << QPointF(300, 470);
    QTest::newRow("outside") << QPointF(-200, 1400) << QPointF(0, 720);
}

void tst_SensorGeometry::points()
{
    QFETCH(QPointF, sensor);
    QFETCH(QPointF, widget);

    const SensorGeometry geometry = SensorGeometry::fittedInto({0, 20, 1000, 600});
    QCOMPARE(geometry.scale(), 0.5);
    QCOMPARE(geometry.toWidget(sensor), widget);
    QCOMPARE(geometry.toSensor(widget), sensor);
    QCOMPARE(geometry.toWidget(200.0), 100.0);
    QCOMPARE(geometry.toSensor(100.0), 200.0);
}

void tst_SensorGeometry::noRoom()
{
    for (const QRectF &room : {QRectF(), QRectF(5, 5, 100, 0), QRectF(5, 5, -3, 100)}) {
        const SensorGeometry geometry = SensorGeometry::fittedInto(room);
        QVERIFY(geometry.area().isEmpty());
        QCOMPARE(geometry.scale(), 0.0);
        QCOMPARE(geometry.toSensor(QPointF(7, 7)), QPointF());
        QCOMPARE(geometry.toSensor(7.0), 0.0);
    }
}

void tst_SensorGeometry::isInPicture_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<bool>("expected");

    QTest::newRow("first") << QPointF(0, 0) << true;
    QTest::newRow("last") << QPointF(1599, 1199) << true;
    QTest::newRow("left") << QPointF(-1, 600) << false;
    QTest::newRow("right") << QPointF(1601, 600) << false;
    QTest::newRow("above") << QPointF(800, -1) << false;
    QTest::newRow("below") << QPointF(800, 1201) << false;
}

void tst_SensorGeometry::isInPicture()
{
    QFETCH(QPointF, point);

    QTEST(Desk::isInPicture(point), "expected");
}

QTEST_GUILESS_MAIN(tst_SensorGeometry)

#include "tst_sensorgeometry.moc"
