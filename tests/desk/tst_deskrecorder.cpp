#include "demo/desk/DeskRecorder.h"
#include "demo/desk/ViewerDesk.h"
#include "demo/simulator/FrameRenderer.h"
#include "demo/simulator/ScenarioReader.h"
#include "demo/simulator/ScenarioWriter.h"
#include "tests/support/Files.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

using namespace Desk;
using Simulation::Gender;

class tst_DeskRecorder : public QObject
{
    Q_OBJECT

private slots:
    void story();
    void drag();
    void momentWithManyChanges();
    void clockThatRunsBackwards();
    void notStarted();
    void startsAnew();
    void afterADay();
    void endlessDrag();
    void sameStory_data();
    void sameStory();
    void save();
    void saveFails();
};

namespace {

/// One line for each viewer, "from-to age x,y,size" with the path's places.
QStringList described(const Simulation::Scenario &scenario)
{
    QStringList lines;
    for (const Simulation::Viewer &viewer : scenario.viewers) {
        QString line = QStringLiteral("%1-%2 %3 %4,%5,%6")
                           .arg(viewer.arriveMs)
                           .arg(viewer.leaveMs.value_or(-1))
                           .arg(viewer.age.value_or(-1))
                           .arg(viewer.position.x)
                           .arg(viewer.position.y)
                           .arg(viewer.position.size);
        for (const Simulation::Waypoint &waypoint : viewer.path) {
            line += QStringLiteral(" @%1 %2,%3,%4")
                        .arg(waypoint.atMs)
                        .arg(waypoint.position.x)
                        .arg(waypoint.position.y)
                        .arg(waypoint.position.size);
        }
        lines << line;
    }
    return lines;
}

PlacedViewer person(int id, int age, int x)
{
    PlacedViewer viewer;
    viewer.id = id;
    viewer.age = age;
    viewer.position.x = x;
    return viewer;
}

/// The frame of @p scenario at a moment.
QList<QByteArray> frameAt(const Simulation::Scenario &scenario, qint64 ms)
{
    return Simulation::renderFrame(scenario, ms, 1).split('\n');
}

/// X, Y and size in a line of a frame; empty in another line.
QVector<int> place(const QByteArray &line)
{
    static const QRegularExpression pattern(
        QStringLiteral("^Index:\\d+\tX:(\\d+) Y:(\\d+) Size:(\\d+) "));
    const QRegularExpressionMatch match = pattern.match(QString::fromLatin1(line));
    if (!match.hasMatch())
        return {};
    return {match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt()};
}

} // namespace

void tst_DeskRecorder::story()
{
    DeskRecorder recorder;
    recorder.start({person(1, 8, 100)}, 5000);
    recorder.record({person(1, 8, 100), person(2, 30, 200)}, 6000);
    recorder.record({person(1, 9, 100), person(2, 30, 200)}, 7000);
    recorder.record({person(1, 9, 100)}, 8000);
    recorder.record({person(1, 9, 100), person(3, 50, 300)}, 9000);
    QCOMPARE(described(recorder.scenario()),
        QStringList({QStringLiteral("0-2000 8 100,600,200"),
            QStringLiteral("2000--1 9 100,600,200"), QStringLiteral("1000-3000 30 200,600,200"),
            QStringLiteral("4000--1 50 300,600,200")}));
}

void tst_DeskRecorder::drag()
{
    DeskRecorder recorder;
    recorder.start({person(1, 8, 100)}, 0);
    recorder.record({person(1, 8, 110)}, 1000); // stood there until then
    recorder.record({person(1, 8, 120)}, 1020);
    recorder.record({person(1, 8, 120)}, 1100);
    recorder.record({person(1, 8, 140)}, 1220);
    recorder.record({person(1, 8, 150)}, 1421);
    QCOMPARE(described(recorder.scenario()),
        QStringList(
            QStringLiteral("0--1 8 100,600,200 @0 100,600,200 @999 100,600,200 @1000 110,600,200"
                           " @1020 120,600,200 @1100 120,600,200 @1220 140,600,200 @1420 "
                           "140,600,200 @1421 150,600,200")));
}

void tst_DeskRecorder::momentWithManyChanges()
{
    DeskRecorder recorder;
    recorder.start({}, 0);
    recorder.record({person(1, 8, 100)}, 1000);
    recorder.record({person(1, 9, 100)}, 1000);
    recorder.record({person(1, 10, 100)}, 1000);
    recorder.record({person(1, 10, 110)}, 1000);
    recorder.record({person(1, 10, 120), person(2, 30, 0)}, 1000);
    recorder.record({person(1, 10, 120)}, 1000);
    QCOMPARE(described(recorder.scenario()), QStringList(QStringLiteral("1000--1 10 120,600,200")));
}

void tst_DeskRecorder::clockThatRunsBackwards()
{
    DeskRecorder recorder;
    recorder.start({person(1, 8, 100)}, 5000);
    recorder.record({person(1, 9, 100)}, 5100);
    recorder.record({}, 1000);
    QCOMPARE(described(recorder.scenario()), QStringList(QStringLiteral("0-100 8 100,600,200")));
}

void tst_DeskRecorder::notStarted()
{
    DeskRecorder recorder;
    recorder.record({person(1, 8, 100)}, 86400000);
    QVERIFY(recorder.scenario() == Simulation::Scenario());
    QVERIFY(!recorder.isFull());
}

void tst_DeskRecorder::startsAnew()
{
    DeskRecorder recorder;
    recorder.start({person(1, 8, 100)}, 5000);
    recorder.record({}, 7000);
    recorder.start({person(2, 9, 100)}, 8000);
    recorder.record({}, 9000);
    QCOMPARE(described(recorder.scenario()), QStringList(QStringLiteral("0-1000 9 100,600,200")));
}

void tst_DeskRecorder::afterADay()
{
    DeskRecorder recorder;
    recorder.start({person(1, 8, 100)}, 0);
    recorder.record({person(1, 8, 110)}, 86399999);
    QVERIFY(!recorder.isFull());
    recorder.record({person(1, 8, 120)}, 86400000);
    QVERIFY(recorder.isFull());
    QString error;
    const auto scenario = Simulation::parseScenario(
        Simulation::writeScenario(recorder.scenario()), QStringLiteral("s"), &error);
    QCOMPARE(error, QString());
    QCOMPARE(scenario->viewers.first().path.constLast().position.x, 110);
    recorder.start({}, 86400000);
    QVERIFY(!recorder.isFull());
}

/// Whatever is done, what comes of it can be read.
void tst_DeskRecorder::endlessDrag()
{
    DeskRecorder recorder;
    QVector<PlacedViewer> viewers;
    for (int id = 1; id <= 3; ++id)
        viewers << person(id, 8, 0);
    recorder.start(viewers, 0);
    qint64 ms = 0;
    for (; !recorder.isFull(); ms += 300) {
        for (PlacedViewer &viewer : viewers)
            viewer.position.x = (viewer.position.x + 7) % 1600;
        recorder.record(viewers, ms);
        QVERIFY(ms < 86400000 / 2);
    }
    const QByteArray text = Simulation::writeScenario(recorder.scenario());
    QString error;
    const auto scenario = Simulation::parseScenario(text, QStringLiteral("s"), &error);
    QCOMPARE(error, QString());
    QVERIFY(scenario->viewers.size() > 3); // a path has its limit, too
    QCOMPARE(frameAt(*scenario, ms / 2).constFirst(), QByteArray("Face result count:3"));
}

void tst_DeskRecorder::sameStory_data()
{
    QTest::addColumn<int>("seed");

    for (int seed = 1; seed <= 8; ++seed)
        QTest::addRow("random story %d", seed) << seed;
}

/// At any moment the scenario shows those who were on the desk. Where somebody was in mid-drag he
/// is between the two places.
void tst_DeskRecorder::sameStory()
{
    QFETCH(int, seed);

    QRandomGenerator random(static_cast<quint32>(seed));
    struct Moment
    {
        qint64 ms;
        QVector<PlacedViewer> viewers;
    };
    ViewerDesk desk;
    desk.addGroup(ViewerGroup::Family);
    const qint64 startMs = 123456;
    DeskRecorder recorder;
    recorder.start(desk.viewers(), startMs);
    QVector<Moment> moments{{0, desk.viewers()}};
    qint64 ms = 0;
    for (int i = 0; i < 300; ++i) {
        // Drags are told at the pace of a screen, the rest as people work.
        ms += random.bounded(4) == 0 ? random.bounded(3000) : random.bounded(30);
        const QVector<PlacedViewer> viewers = desk.viewers();
        const int id = viewers.isEmpty() ? 0 : viewers.at(random.bounded(viewers.size())).id;
        PlacedViewer viewer = desk.viewer(id);
        switch (random.bounded(12)) {
        case 0:
            desk.add({random.bounded(1600), random.bounded(1200)});
            break;
        case 1:
            desk.remove(id);
            break;
        case 2:
            viewer.age = random.bounded(120);
            viewer.settled = !viewer.settled;
            desk.change(viewer);
            break;
        case 3:
            viewer.gender = viewer.gender == Gender::Male ? Gender::Unknown : Gender::Male;
            viewer.direction.ud = random.bounded(90);
            desk.change(viewer);
            break;
        case 4:
            desk.bringNearer(id, random.bounded(-3, 4));
            break;
        default:
            desk.moveTo(desk.selected(), {random.bounded(1600), random.bounded(1200)});
        }
        recorder.record(desk.viewers(), startMs + ms);
        if (moments.constLast().ms == ms)
            moments.removeLast();
        moments.append({ms, desk.viewers()});
    }

    QString error;
    const auto scenario = Simulation::parseScenario(
        Simulation::writeScenario(recorder.scenario()), QStringLiteral("s"), &error);
    QCOMPARE(error, QString());
    for (int i = 0; i + 1 < moments.size(); ++i) {
        const Moment &now = moments.at(i);
        const Moment &next = moments.at(i + 1);
        // Where the desk was changed it is the same to the letter.
        QCOMPARE(frameAt(*scenario, now.ms), frameAt(toSimulation(now.viewers), 0));

        const qint64 between = now.ms + random.bounded(int(next.ms - now.ms));
        const QList<QByteArray> frame = frameAt(*scenario, between);
        const QList<QByteArray> expected = frameAt(toSimulation(now.viewers), 0);
        QCOMPARE(frame.size(), expected.size());
        int face = 0;
        for (int line = 0; line < frame.size(); ++line) {
            const QVector<int> places = place(frame.at(line));
            if (places.isEmpty()) {
                QCOMPARE(frame.at(line), expected.at(line));
                continue;
            }
            const PlacedViewer &viewer = now.viewers.at(face++);
            const auto later = std::find_if(next.viewers.begin(), next.viewers.end(),
                [&](const PlacedViewer &other) { return other.id == viewer.id; });
            const bool walks = later != next.viewers.end() && later->isLike(viewer);
            const QVector<int> from = place(expected.at(line));
            const QVector<int> to = walks
                ? QVector<int>{later->position.x, later->position.y, later->position.size}
                : from;
            for (int k = 0; k < 3; ++k) {
                QVERIFY(places.at(k) >= qMin(from.at(k), to.at(k)));
                QVERIFY(places.at(k) <= qMax(from.at(k), to.at(k)));
            }
            if (next.ms - now.ms > 1000)
                QVERIFY(places == from || between == next.ms - 1);
        }
    }
    QCOMPARE(frameAt(*scenario, ms + 1000000),
        frameAt(toSimulation(moments.constLast().viewers), 0)); // those who are there stay
}

void tst_DeskRecorder::save()
{
    DeskRecorder recorder;
    recorder.start({person(1, 8, 100)}, 0);
    recorder.record({person(1, 8, 120)}, 1000);
    const QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("story.json"));
    QString error;
    QVERIFY(recorder.save(name, QStringLiteral("A morning"), &error));
    QCOMPARE(error, QString());
    const QByteArray text = KrTest::readFile(name);
    QVERIFY(text.contains("\"description\": \"A morning\""));
    QVERIFY(*Simulation::parseScenario(text, name, &error) == recorder.scenario());
}

void tst_DeskRecorder::saveFails()
{
    const DeskRecorder recorder;
    const QTemporaryDir dir;
    QString error;
    QVERIFY(!recorder.save(dir.path(), QString(), &error));
    QCOMPARE(error, dir.path() + QLatin1String(": is not a file"));
    const QString name = dir.filePath(QStringLiteral("none/story.json"));
    QVERIFY(!recorder.save(name, QString(), &error));
    QVERIFY2(error.startsWith(name + QLatin1String(": cannot be written: ")), qPrintable(error));
}

QTEST_GUILESS_MAIN(tst_DeskRecorder)
#include "tst_deskrecorder.moc"
