#include "demo/desk/ViewerDesk.h"
#include "demo/simulator/FrameRenderer.h"
#include "demo/simulator/ScenarioReader.h"
#include "demo/simulator/ScenarioWriter.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

using namespace Desk;
using Simulation::Gender;

class tst_ViewerDesk : public QObject
{
    Q_OBJECT

private slots:
    void add();
    void nextIsLikeTheLastOne();
    void full();
    void remove();
    void clear();
    void move_data();
    void move();
    void moveBy();
    void nearer_data();
    void nearer();
    void nearerAndBack();
    void change_data();
    void change();
    void nobody();
    void sameAgain();
    void viewerAt_data();
    void viewerAt();
    void freePlace();
    void selection();
    void selectNext_data();
    void selectNext();
    void simulated();
    void simulatedNoise_data();
    void simulatedNoise();
    void anythingIsAScenario();
};

static QStringList described(const QVector<PlacedViewer> &viewers)
{
    QStringList texts;
    for (const PlacedViewer &viewer : viewers) {
        texts << QStringLiteral("%1: %2,%3 %4")
                     .arg(viewer.id)
                     .arg(viewer.position.x)
                     .arg(viewer.position.y)
                     .arg(viewer.position.size);
    }
    return texts;
}

void tst_ViewerDesk::add()
{
    ViewerDesk desk;
    const QSignalSpy changed(&desk, &ViewerDesk::changed);
    const QSignalSpy selected(&desk, &ViewerDesk::selectionChanged);
    QVERIFY(changed.isValid() && selected.isValid());
    QCOMPARE(desk.add({300, 400}), 1);
    QCOMPARE(desk.selected(), 1);
    QCOMPARE(desk.add({500, 600}), 2);
    QCOMPARE(desk.selected(), 2);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(selected.count(), 2);
    QCOMPARE(described(desk.viewers()),
        QStringList({QStringLiteral("1: 300,400 200"), QStringLiteral("2: 500,600 200")}));
    QVERIFY(desk.viewer(2).isValid());
    QVERIFY(!desk.viewer(3).isValid());
}

void tst_ViewerDesk::nextIsLikeTheLastOne()
{
    ViewerDesk desk;
    PlacedViewer boy = desk.viewer(desk.add({100, 100}));
    boy.gender = Gender::Male;
    boy.age = 8;
    boy.position.size = 150;
    boy.direction.lr = 20;
    boy.settled = false;
    boy.noise = PlacedViewer::SomeNoise;
    desk.change(boy);
    const PlacedViewer next = desk.viewer(desk.add({700, 800}));
    QVERIFY(next.isLike(boy));
    QCOMPARE(described({next}), QStringList(QStringLiteral("2: 700,800 150")));
}

void tst_ViewerDesk::full()
{
    ViewerDesk desk;
    for (int i = 0; i < 35; ++i) {
        QVERIFY(!desk.isFull());
        QVERIFY(desk.add({40 * i, 500}) != 0);
    }
    QVERIFY(desk.isFull());
    const int selected = desk.selected();
    const QSignalSpy changed(&desk, &ViewerDesk::changed);
    QCOMPARE(desk.add({0, 0}), 0);
    desk.addGroup(ViewerGroup::Family);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(desk.viewers().size(), 35);
    QCOMPARE(desk.selected(), selected);

    desk.remove(7);
    desk.remove(8);
    desk.addGroup(ViewerGroup::Family);
    QCOMPARE(desk.viewers().size(), 35);
    QCOMPARE(changed.count(), 3);
}

void tst_ViewerDesk::remove()
{
    ViewerDesk desk;
    for (int x : {100, 200, 300})
        desk.add({x, 100});
    const QSignalSpy changed(&desk, &ViewerDesk::changed);
    const QSignalSpy selected(&desk, &ViewerDesk::selectionChanged);
    desk.remove(2);
    QCOMPARE(desk.selected(), 3);
    QCOMPARE(selected.count(), 0);
    desk.remove(3);
    QCOMPARE(desk.selected(), 0);
    QCOMPARE(selected.count(), 1);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(desk.viewers().size(), 1);
    QCOMPARE(desk.add({400, 100}), 4); // no id comes again
}

void tst_ViewerDesk::clear()
{
    ViewerDesk desk;
    desk.add({100, 100});
    desk.add({200, 100});
    const QSignalSpy changed(&desk, &ViewerDesk::changed);
    const QSignalSpy selected(&desk, &ViewerDesk::selectionChanged);
    desk.clear();
    desk.clear();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(selected.count(), 1);
    QCOMPARE(desk.selected(), 0);
    QVERIFY(desk.viewers().isEmpty());
}

void tst_ViewerDesk::move_data()
{
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<QPoint>("expected");

    QTest::newRow("within") << QPoint(1, 2) << QPoint(1, 2);
    QTest::newRow("top left") << QPoint(0, 0) << QPoint(0, 0);
    QTest::newRow("bottom right") << QPoint(1599, 1199) << QPoint(1599, 1199);
    QTest::newRow("beyond the top left") << QPoint(-1, -500) << QPoint(0, 0);
    QTest::newRow("beyond the bottom right") << QPoint(1600, 99999) << QPoint(1599, 1199);
}

void tst_ViewerDesk::move()
{
    QFETCH(QPoint, to);
    QFETCH(QPoint, expected);

    ViewerDesk desk;
    const int id = desk.add({500, 500});
    const QSignalSpy changed(&desk, &ViewerDesk::changed);
    desk.moveTo(id, to);
    QCOMPARE(QPoint(desk.viewer(id).position.x, desk.viewer(id).position.y), expected);
    QCOMPARE(changed.count(), 1);
}

void tst_ViewerDesk::moveBy()
{
    ViewerDesk desk;
    desk.add({300, 400});
    desk.moveBy(1, {-20, 50});
    QCOMPARE(described(desk.viewers()), QStringList(QStringLiteral("1: 280,450 200")));
    desk.moveBy(2, {1, 1}); // nobody
    desk.moveBy(1, {-2000, 2000});
    QCOMPARE(described(desk.viewers()), QStringList(QStringLiteral("1: 0,1199 200")));
}

void tst_ViewerDesk::nearer_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<double>("steps");
    QTest::addColumn<int>("expected");

    QTest::newRow("a step nearer") << 200 << 1.0 << 220;
    QTest::newRow("a step farther") << 220 << -1.0 << 200;
    QTest::newRow("three steps") << 100 << 3.0 << 133;
    QTest::newRow("half a step") << 200 << 0.5 << 210;
    QTest::newRow("hardly a step") << 200 << 0.001 << 201;
    QTest::newRow("hardly a step back") << 200 << -0.001 << 199;
    QTest::newRow("no step") << 200 << 0.0 << 200;
    QTest::newRow("as near as can be") << 790 << 1.0 << 800;
    QTest::newRow("no nearer") << 800 << 1.0 << 800;
    QTest::newRow("as far as can be") << 42 << -1.0 << 40;
    QTest::newRow("no farther") << 40 << -1.0 << 40;
    QTest::newRow("a wild wheel") << 200 << 1e300 << 800;
    QTest::newRow("a wild wheel backwards") << 200 << -1e300 << 40;
}

void tst_ViewerDesk::nearer()
{
    QFETCH(int, size);
    QFETCH(double, steps);
    QFETCH(int, expected);

    ViewerDesk desk;
    PlacedViewer viewer = desk.viewer(desk.add({500, 500}));
    viewer.position.size = size;
    desk.change(viewer);
    const QSignalSpy changed(&desk, &ViewerDesk::changed);
    desk.bringNearer(viewer.id, steps);
    QCOMPARE(desk.viewer(viewer.id).position.size, expected);
    QCOMPARE(changed.count(), int(size != expected));
}

void tst_ViewerDesk::nearerAndBack()
{
    ViewerDesk desk;
    PlacedViewer viewer = desk.viewer(desk.add({500, 500}));
    for (int size = ViewerDesk::MinSize; size * 1.1 < ViewerDesk::MaxSize; ++size) {
        viewer.position.size = size;
        desk.change(viewer);
        desk.bringNearer(viewer.id, 1);
        QVERIFY(desk.viewer(viewer.id).position.size > size);
        desk.bringNearer(viewer.id, -1);
        QCOMPARE(desk.viewer(viewer.id).position.size, size);
    }
}

void tst_ViewerDesk::change_data()
{
    QTest::addColumn<int>("given"); // for all
    QTest::addColumn<QString>("expected"); // age, angles, size

    QTest::newRow("within") << 50 << "50 50 50 50 50";
    QTest::newRow("too little") << -1000 << "0 -180 -180 -180 40";
    QTest::newRow("too much") << 1000 << "120 180 180 180 800";
}

void tst_ViewerDesk::change()
{
    QFETCH(int, given);
    QFETCH(QString, expected);

    ViewerDesk desk;
    PlacedViewer viewer = desk.viewer(desk.add({500, 500}));
    viewer.age = given;
    viewer.direction = {given, given, given};
    viewer.position.size = given;
    desk.change(viewer);
    viewer = desk.viewer(viewer.id);
    QCOMPARE(QStringLiteral("%1 %2 %3 %4 %5")
                 .arg(viewer.age.value_or(-1))
                 .arg(viewer.direction.lr)
                 .arg(viewer.direction.ud)
                 .arg(viewer.direction.roll)
                 .arg(viewer.position.size),
        expected);
}

void tst_ViewerDesk::nobody()
{
    ViewerDesk desk;
    desk.add({500, 500});
    const QSignalSpy changed(&desk, &ViewerDesk::changed);
    for (int id : {-1, 0, 2}) {
        desk.remove(id);
        desk.moveTo(id, {1, 1});
        desk.bringNearer(id, 1);
        desk.select(id);
        QCOMPARE(desk.selected(), 0);
    }
    QCOMPARE(changed.count(), 0);
    QCOMPARE(described(desk.viewers()), QStringList(QStringLiteral("1: 500,500 200")));
}

void tst_ViewerDesk::sameAgain()
{
    ViewerDesk desk;
    const int id = desk.add({500, 500});
    const QSignalSpy changed(&desk, &ViewerDesk::changed);
    const QSignalSpy selected(&desk, &ViewerDesk::selectionChanged);
    desk.moveTo(id, {500, 500});
    desk.change(desk.viewer(id));
    desk.select(id);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(selected.count(), 0);
}

void tst_ViewerDesk::viewerAt_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("expected");

    // 1: 300..499, 2: 400..599 as near as 1, 3: 440..479 far, 4: 1000..1399, all y 400..599 or less
    QTest::newRow("nobody") << QPoint(700, 500) << 0;
    QTest::newRow("beyond the image") << QPoint(-1, -1) << 0;
    QTest::newRow("the first one") << QPoint(350, 500) << 1;
    QTest::newRow("its top left") << QPoint(300, 400) << 1;
    QTest::newRow("beside its top left") << QPoint(299, 400) << 0;
    QTest::newRow("its last pixel") << QPoint(399, 599) << 1;
    QTest::newRow("below it") << QPoint(399, 600) << 0;
    QTest::newRow("of two the later one") << QPoint(410, 410) << 2;
    QTest::newRow("of three none that is farther") << QPoint(460, 500) << 2;
    QTest::newRow("the nearest one though it came first") << QPoint(1000, 500) << 4;
}

void tst_ViewerDesk::viewerAt()
{
    QFETCH(QPoint, point);
    QFETCH(int, expected);

    ViewerDesk desk;
    const auto add = [&desk](const QPoint &center, int size) {
        PlacedViewer viewer = desk.viewer(desk.add(center));
        viewer.position.size = size;
        desk.change(viewer);
    };
    add({400, 500}, 200);
    add({500, 500}, 200);
    add({460, 500}, 40);
    add({1200, 600}, 400);
    add({1020, 500}, 100);
    QCOMPARE(desk.viewerAt(point), expected);
    QCOMPARE(described(desk.farthestFirst()).join(QLatin1String(" | ")),
        QStringLiteral("3: 460,500 40 | 5: 1020,500 100 | 1: 400,500 200 | 2: 500,500 200"
                       " | 4: 1200,600 400"));
}

void tst_ViewerDesk::freePlace()
{
    ViewerDesk desk;
    QCOMPARE(desk.freePlace(), QPoint(799, 599));
    const QRect image(0, 0, Simulation::Sensor::MaxX + 1, Simulation::Sensor::MaxY + 1);
    while (!desk.isFull()) {
        const QPoint place = desk.freePlace();
        QVERIFY(image.contains(place));
        QCOMPARE(desk.viewerAt(place), 0);
        desk.add(place);
    }
    // There is none left.
    PlacedViewer nearest = desk.viewer(1);
    for (const int x : {399, 1199}) {
        nearest.id = x < 800 ? 1 : 2;
        nearest.position = {x, 599, ViewerDesk::MaxSize};
        desk.change(nearest);
    }
    for (int id = 3; id <= 6; ++id) {
        nearest.id = id;
        nearest.position.x = id % 2 == 0 ? 399 : 1199;
        nearest.position.y = id < 5 ? 300 : 900;
        desk.change(nearest);
    }
    QCOMPARE(desk.freePlace(), QPoint(799, 599));
}

void tst_ViewerDesk::selection()
{
    ViewerDesk desk;
    desk.add({100, 100});
    desk.add({200, 100});
    const QSignalSpy selected(&desk, &ViewerDesk::selectionChanged);
    desk.select(1);
    QCOMPARE(desk.selected(), 1);
    desk.select(99);
    QCOMPARE(desk.selected(), 0);
    QCOMPARE(selected.count(), 2);
    desk.addGroup(ViewerGroup::Family);
    QCOMPARE(desk.selected(), 0);
}

void tst_ViewerDesk::selectNext_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("steps");
    QTest::addColumn<int>("expected");

    QTest::newRow("the next one") << 1 << 1 << 3;
    QTest::newRow("the one before") << 3 << -1 << 1;
    QTest::newRow("after the last one") << 4 << 1 << 1;
    QTest::newRow("before the first one") << 1 << -1 << 4;
    QTest::newRow("from nobody") << 0 << 1 << 1;
    QTest::newRow("from nobody backwards") << 0 << -1 << 4;
    QTest::newRow("twice round") << 1 << 7 << 3;
    QTest::newRow("twice round backwards") << 1 << -7 << 4;
}

void tst_ViewerDesk::selectNext()
{
    QFETCH(int, from);
    QFETCH(int, steps);
    QFETCH(int, expected);

    ViewerDesk desk;
    desk.selectNext();
    QCOMPARE(desk.selected(), 0);
    for (int x : {100, 200, 300, 400})
        desk.add({x, 100});
    desk.remove(2);
    desk.select(from);
    desk.selectNext(steps);
    QCOMPARE(desk.selected(), expected);
}

void tst_ViewerDesk::simulated()
{
    ViewerDesk desk;
    PlacedViewer boy = desk.viewer(desk.add({500, 700}));
    boy.gender = Gender::Male;
    boy.age = 8;
    boy.position.size = 140;
    boy.direction = {5, -6, 7};
    desk.change(boy);
    PlacedViewer anybody = desk.viewer(desk.add({900, 300}));
    anybody.gender = Gender::Unknown;
    anybody.age.reset();
    anybody.direction = {};
    desk.change(anybody);
    PlacedViewer woman = desk.viewer(desk.add({1000, 400}));
    woman.gender = Gender::Female;
    woman.age = 30;
    woman.settled = false;
    desk.change(woman);
    for (qint64 frame : {0, 1000000}) {
        QCOMPARE(Simulation::renderFrame(toSimulation(desk.viewers()), frame, 500),
            QByteArray("Face result count:3\n"
                       "Index:0\tX:500 Y:700 Size:140 Confidence:800\n"
                       "Face Direction\tLR:5 UD:-6 Roll:7 Confidence:700\n"
                       "Age\tAge:8 Confidence:500 *\n"
                       "Gender\tGender:Male Confidence:900 *\n"
                       "Index:1\tX:900 Y:300 Size:140 Confidence:800\n"
                       "Face Direction\tLR:0 UD:0 Roll:0 Confidence:700\n"
                       "Age\tAge:- Confidence:0\n"
                       "Gender\tGender:- Confidence:0\n"
                       "Index:2\tX:1000 Y:400 Size:140 Confidence:800\n"
                       "Face Direction\tLR:0 UD:0 Roll:0 Confidence:700\n"
                       "Age\tAge:30 Confidence:500\n"
                       "Gender\tGender:Female Confidence:900\n"
                       "Press Space Key to end:\n"));
    }
}

void tst_ViewerDesk::simulatedNoise_data()
{
    QTest::addColumn<int>("noise");
    QTest::addColumn<int>("fewest"); // different frames of 100
    QTest::addColumn<int>("most");
    QTest::addColumn<bool>("mistaken"); // about the gender

    QTest::newRow("none") << int(PlacedViewer::NoNoise) << 1 << 1 << false;
    QTest::newRow("some") << int(PlacedViewer::SomeNoise) << 90 << 100 << false;
    QTest::newRow("much") << int(PlacedViewer::MuchNoise) << 80 << 100 << true;
}

void tst_ViewerDesk::simulatedNoise()
{
    QFETCH(int, noise);
    QFETCH(int, fewest);
    QFETCH(int, most);
    QFETCH(bool, mistaken);

    ViewerDesk desk;
    PlacedViewer viewer = desk.viewer(desk.add({500, 700}));
    viewer.noise = static_cast<PlacedViewer::Noise>(noise);
    desk.change(viewer);
    QSet<QByteArray> frames;
    bool male = false;
    for (qint64 frame = 0; frame < 100; ++frame) {
        frames << Simulation::renderFrame(toSimulation(desk.viewers()), frame, 500);
        male = male
            || Simulation::renderFrame(toSimulation(desk.viewers()), frame, 500).contains("Male");
    }
    QVERIFY2(frames.size() >= fewest && frames.size() <= most,
        qPrintable(QString::number(frames.size())));
    QCOMPARE(male, mistaken);
}

/// Whatever is done to the desk, the simulator can be told of it.
void tst_ViewerDesk::anythingIsAScenario()
{
    QRandomGenerator random(12);
    const auto any = [&random] { return random.bounded(-3000, 3000); };
    ViewerDesk desk;
    for (int i = 0; i < 300; ++i) {
        const int id = random.bounded(1, 200);
        switch (random.bounded(7)) {
        case 0:
            desk.add({any(), any()});
            break;
        case 1:
            desk.remove(id);
            break;
        case 2:
            desk.moveTo(id, {any(), any()});
            break;
        case 3:
            desk.bringNearer(id, any() / 100.0);
            break;
        case 4:
            desk.addGroup(viewerGroups().at(random.bounded(3)));
            break;
        case 5:
            if (random.bounded(20) == 0)
                desk.clear();
            break;
        default:
            PlacedViewer viewer = desk.viewer(id);
            viewer.age = any();
            viewer.position = {any(), any(), any()};
            viewer.direction = {any(), any(), any()};
            desk.change(viewer);
        }
        QVERIFY(desk.viewers().size() <= 35);
        QString error;
        const Simulation::Scenario scenario = toSimulation(desk.viewers());
        const auto read = Simulation::parseLiveScenario(
            Simulation::writeScenario(scenario), QStringLiteral("s"), &error);
        QCOMPARE(error, QString());
        QVERIFY(*read == scenario);
    }
}

QTEST_GUILESS_MAIN(tst_ViewerDesk)
#include "tst_viewerdesk.moc"
