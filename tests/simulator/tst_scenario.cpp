#include "demo/simulator/FrameRenderer.h"
#include "demo/simulator/ScenarioReader.h"

#include <QDir>
#include <QtTest>

using namespace Simulation;

class tst_Scenario : public QObject
{
    Q_OBJECT

private slots:
    void everyKey();
    void defaults();
    void viewersInheritNoiseAndConfidence();
    void waypointsInheritPositions();
    void error_data();
    void error();
    void shippedScenario_data();
    void shippedScenario();
    void builtInScenarioIsVaried();
};

static Scenario parsed(const QByteArray &json)
{
    QString error;
    const std::optional<Scenario> scenario = parseScenario(json, QStringLiteral("s"), &error);
    if (!scenario)
        qFatal("%s", qPrintable(error));
    return *scenario;
}

void tst_Scenario::everyKey()
{
    const Scenario scenario = parsed(R"({
        "description": "all there is",
        "seed": 4294967295,
        "repeat": 1.5,
        "absentPorts": [1, 7],
        "ignoreStopKey": true,
        "stopDelay": 250,
        "confidence": { "face": 1, "direction": 2, "age": 3, "gender": 4 },
        "noise": { "position": 1, "size": 2, "direction": 3, "age": 4, "confidence": 5,
                   "genderError": 0.25, "miss": 1 },
        "viewers": [{
            "name": "somebody", "arrive": 0.1, "leave": 0.2, "gender": "male", "age": 120,
            "x": 1599, "y": 1199, "size": 1200, "lr": -180, "ud": 180, "roll": 7,
            "path": [{ "at": 0.5, "x": 1, "y": 2, "size": 3 }],
            "lookAway": [{ "from": 1, "to": 2, "lr": 8, "ud": 9, "roll": 10, "lost": true }],
            "ageMarkAfter": 3, "genderMarkAfter": 4,
            "confidence": { "face": 5 }, "noise": { "age": 6 }
        }],
        "faults": [
            { "kind": "crash", "frame": 1 },
            { "kind": "exit", "frame": 2, "status": 255 },
            { "kind": "silence", "frame": 3, "frames": 0 },
            { "kind": "garbage", "frame": 4, "frames": 5, "lines": ["a", "\u00fc"] },
            { "kind": "pieces", "frame": 6, "frames": 7, "pieces": 8, "pause": 9 },
            { "kind": "flood", "frame": 10, "frames": 11 },
            { "kind": "errorOutput", "frame": 12, "frames": 13, "lines": ["b"] },
            { "kind": "closeOutput", "frame": 14 }
        ]
    })");
    QCOMPARE(scenario.seed, 4294967295U);
    QCOMPARE(scenario.repeatMs, qint64(1500));
    QCOMPARE(scenario.absentPorts, QVector<int>({1, 7}));
    QCOMPARE(scenario.ignoreStopKey, true);
    QCOMPARE(scenario.stopDelayMs, 250);

    QCOMPARE(scenario.viewers.size(), 1);
    const Viewer viewer = scenario.viewers.first();
    QCOMPARE(viewer.arriveMs, qint64(100));
    QCOMPARE(viewer.leaveMs.value_or(-1), qint64(200));
    QCOMPARE(viewer.gender, Gender::Male);
    QCOMPARE(viewer.age.value_or(-1), 120);
    QCOMPARE(viewer.position.x, 1599);
    QCOMPARE(viewer.position.y, 1199);
    QCOMPARE(viewer.position.size, 1200);
    QCOMPARE(viewer.direction.lr, -180);
    QCOMPARE(viewer.direction.ud, 180);
    QCOMPARE(viewer.direction.roll, 7);
    QCOMPARE(viewer.path.size(), 1);
    QCOMPARE(viewer.path.first().atMs, qint64(500));
    QCOMPARE(viewer.path.first().position.x, 1);
    QCOMPARE(viewer.path.first().position.y, 2);
    QCOMPARE(viewer.path.first().position.size, 3);
    QCOMPARE(viewer.lookAway.size(), 1);
    QCOMPARE(viewer.lookAway.first().fromMs, qint64(1000));
    QCOMPARE(viewer.lookAway.first().toMs, qint64(2000));
    QCOMPARE(viewer.lookAway.first().direction.lr, 8);
    QCOMPARE(viewer.lookAway.first().direction.ud, 9);
    QCOMPARE(viewer.lookAway.first().direction.roll, 10);
    QCOMPARE(viewer.lookAway.first().lost, true);
    QCOMPARE(viewer.ageMarkAfterMs.value_or(-1), qint64(3000));
    QCOMPARE(viewer.genderMarkAfterMs.value_or(-1), qint64(4000));
    QCOMPARE(viewer.confidence.face, 5);
    QCOMPARE(viewer.confidence.direction, 2);
    QCOMPARE(viewer.confidence.age, 3);
    QCOMPARE(viewer.confidence.gender, 4);
    QCOMPARE(viewer.noise.position, 1);
    QCOMPARE(viewer.noise.size, 2);
    QCOMPARE(viewer.noise.direction, 3);
    QCOMPARE(viewer.noise.age, 6);
    QCOMPARE(viewer.noise.confidence, 5);
    QCOMPARE(viewer.noise.genderError, 0.25);
    QCOMPARE(viewer.noise.miss, 1.0);

    QStringList faults;
    for (const Fault &fault : scenario.faults) {
        faults << QStringLiteral("%1 %2+%3 %4 %5/%6 %7")
                      .arg(int(fault.kind))
                      .arg(fault.frame)
                      .arg(fault.frames)
                      .arg(fault.status)
                      .arg(fault.pieces)
                      .arg(fault.pauseMs)
                      .arg(QString::fromUtf8(fault.lines.toList().join('|')));
    }
    QCOMPARE(faults.join(QLatin1Char('\n')),
        QStringLiteral("0 1+1 0 4/20 \n"
                       "1 2+1 255 4/20 \n"
                       "2 3+0 0 4/20 \n"
                       "3 4+5 0 4/20 a|\u00fc\n"
                       "4 6+7 0 8/9 \n"
                       "5 10+11 0 4/20 \n"
                       "6 12+13 0 4/20 b\n"
                       "7 14+1 0 4/20 "));
}

void tst_Scenario::defaults()
{
    const Scenario scenario = parsed(R"({ "viewers": [{}], "faults": [{ "kind": "garbage" }] })");
    QCOMPARE(scenario.seed, 1U);
    QCOMPARE(scenario.repeatMs, qint64(0));
    QCOMPARE(scenario.absentPorts, QVector<int>());
    QCOMPARE(scenario.ignoreStopKey, false);
    QCOMPARE(scenario.stopDelayMs, 0);
    const Viewer viewer = scenario.viewers.first();
    QVERIFY(!viewer.leaveMs);
    QVERIFY(!viewer.age);
    QVERIFY(!viewer.ageMarkAfterMs);
    QVERIFY(!viewer.genderMarkAfterMs);
    QCOMPARE(viewer.gender, Gender::Unknown);
    QCOMPARE(scenario.faults.first().frame, qint64(0));
    QCOMPARE(scenario.faults.first().frames, qint64(1));
    QVERIFY(!scenario.faults.first().lines.isEmpty());
}

void tst_Scenario::viewersInheritNoiseAndConfidence()
{
    const Scenario scenario = parsed(R"({
        "noise": { "age": 3, "size": 4 },
        "confidence": { "face": 11 },
        "viewers": [{}, { "noise": { "age": 0 }, "confidence": { "age": 22 } }, {}]
    })");
    QVector<int> values;
    for (const Viewer &viewer : scenario.viewers) {
        values << viewer.noise.age << viewer.noise.size << viewer.confidence.face
               << viewer.confidence.age;
    }
    QCOMPARE(values, QVector<int>({3, 4, 11, 500, 0, 4, 11, 22, 3, 4, 11, 500}));
}

void tst_Scenario::waypointsInheritPositions()
{
    const Scenario scenario = parsed(R"({ "viewers": [{
        "y": 50,
        "path": [{ "at": 0, "x": 10 }, { "at": 1, "size": 30 }, { "at": 2, "x": 20, "y": 60 }]
    }] })");
    QVector<int> values;
    for (const Waypoint &waypoint : scenario.viewers.first().path)
        values << waypoint.position.x << waypoint.position.y << waypoint.position.size;
    QCOMPARE(values, QVector<int>({10, 50, 200, 10, 50, 30, 20, 60, 30}));
}

void tst_Scenario::error_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const char *json, const char *expected) {
        QTest::newRow(name) << QByteArray(json) << QString::fromLatin1(expected);
    };
    // The text
    row("an empty file", "", "s:1:1: illegal value");
    row("a missing value in the third line", "{\n  \"seed\": 1,\n  \"repeat\": }",
        "s:3:14: object is missing after a comma");
    row("text after the end", "{}\n{}", "s:2:1: garbage at the end of the document");
    row("a list at the top", "[]", "s:1:1: must be an object");

    // Keys
    row("a misspelt key", R"({ "viewer": [] })", "s:1:3: viewer: unknown key");
    row("a misspelt key of a viewer", R"({ "viewers": [{}, { "agee": 1 }] })",
        "s:1:21: viewers[1].agee: unknown key");
    row("a misspelt key of a waypoint", R"({ "viewers": [{ "path": [{ "at": 1, "z": 1 }] }] })",
        "s:1:37: viewers[0].path[0].z: unknown key");
    row("a misspelt key of a glance",
        R"({ "viewers": [{ "lookAway": [{ "from": 1, "to": 2, "x": 1 }] }] })",
        "s:1:52: viewers[0].lookAway[0].x: unknown key");
    row("a misspelt key of the noise", R"({ "noise": { "Age": 1 } })",
        "s:1:14: noise.Age: unknown key");
    row("a misspelt confidence of a viewer", R"({ "viewers": [{ "confidence": { "lr": 1 } }] })",
        "s:1:33: viewers[0].confidence.lr: unknown key");
    row("a key of another kind of fault", R"({ "faults": [{ "kind": "crash", "status": 1 }] })",
        "s:1:33: faults[0].status: unknown key");
    row("a fault without a kind", R"({ "faults": [{}] })", "s:1:14: faults[0].kind: is missing");
    row("a waypoint without a time", R"({ "viewers": [{ "path": [{}] }] })",
        "s:1:26: viewers[0].path[0].at: is missing");
    row("a glance without its end", R"({ "viewers": [{ "lookAway": [{ "from": 1 }] }] })",
        "s:1:30: viewers[0].lookAway[0].to: is missing");

    // Types
    row("a text for a list", R"({ "viewers": "x" })", "s:1:3: viewers: must be a list");
    row("a number for a viewer", R"({ "viewers": [3] })", "s:1:15: viewers[0]: must be an object");
    row("a list for the noise", R"({ "noise": [] })", "s:1:3: noise: must be an object");
    row("a number for a text", R"({ "description": 3 })", "s:1:3: description: must be a text");
    row("a number for a truth value", R"({ "ignoreStopKey": 1 })",
        "s:1:3: ignoreStopKey: must be true or false");
    row("a number among the lines", R"({ "faults": [{ "kind": "garbage", "lines": ["", 1] }] })",
        "s:1:49: faults[0].lines[1]: must be a text");
    row("a text for a number", R"({ "viewers": [{ "age": "30" }] })",
        "s:1:17: viewers[0].age: must be a whole number from 0 to 120");
    row("null for a number", R"({ "viewers": [{ "leave": null }] })",
        "s:1:17: viewers[0].leave: must be a number from 0 to 86400");

    // Ranges
    row("an age above the range", R"({ "viewers": [{}, {}, { "age": 121 }] })",
        "s:1:25: viewers[2].age: must be a whole number from 0 to 120");
    row("a broken age", R"({ "viewers": [{ "age": 30.5 }] })",
        "s:1:17: viewers[0].age: must be a whole number from 0 to 120");
    row("a place outside the image", R"({ "viewers": [{ "x": 1600 }] })",
        "s:1:17: viewers[0].x: must be a whole number from 0 to 1599");
    row("no size", R"({ "viewers": [{ "size": 0 }] })",
        "s:1:17: viewers[0].size: must be a whole number from 1 to 1200");
    row("an angle below the range", R"({ "viewers": [{ "roll": -181 }] })",
        "s:1:17: viewers[0].roll: must be a whole number from -180 to 180");
    row("a confidence above the range", R"({ "confidence": { "face": 1001 } })",
        "s:1:19: confidence.face: must be a whole number from 0 to 1000");
    row("a share above 1", R"({ "noise": { "miss": 1.1 } })",
        "s:1:14: noise.miss: must be a number from 0 to 1");
    row("a negative time", R"({ "repeat": -1 })",
        "s:1:3: repeat: must be a number from 0 to 86400");
    row("a negative seed", R"({ "seed": -1 })",
        "s:1:3: seed: must be a whole number from 0 to 4294967295");
    row("a port that is no int", R"({ "absentPorts": [3, 1e12] })",
        "s:1:22: absentPorts[1]: must be a whole number from 0 to 2147483647");
    row("one piece is no piece", R"({ "faults": [{ "kind": "pieces", "pieces": 1 }] })",
        "s:1:34: faults[0].pieces: must be a whole number from 2 to 10000");

    // Sizes
    const auto manyRow = [](const char *name, const QString &json, const char *expected) {
        const QString entries = QStringLiteral("{},").repeated(10000);
        QTest::newRow(name) << json.arg(entries).toUtf8() << QString::fromLatin1(expected);
    };
    manyRow("more viewers than a list may hold", QStringLiteral(R"({ "viewers": [%1{}] })"),
        "s:1:3: viewers: must not hold more than 10000 entries");
    manyRow("more waypoints than a list may hold",
        QStringLiteral(R"({ "viewers": [{ "path": [%1{}] }] })"),
        "s:1:17: viewers[0].path: must not hold more than 10000 entries");
    manyRow("more ports than a list may hold", QStringLiteral(R"({ "absentPorts": [%1 1] })"),
        "s:1:3: absentPorts: must not hold more than 10000 entries");

    // Words and order
    row("an unknown gender", R"({ "viewers": [{ "gender": "Female" }] })",
        R"(s:1:17: viewers[0].gender: must be "male" or "female")");
    row("an unknown kind of fault", R"({ "faults": [{ "kind": "fire" }] })",
        "s:1:16: faults[0].kind: must be one of crash, exit, silence, garbage, pieces, flood, "
        "errorOutput, closeOutput");
    row("gone before coming", R"({ "viewers": [{ "arrive": 2, "leave": 2 }] })",
        R"(s:1:30: viewers[0].leave: must be later than "arrive")");
    row("a glance that ends before it begins",
        R"({ "viewers": [{ "lookAway": [{ "from": 3, "to": 2 }] }] })",
        R"(s:1:43: viewers[0].lookAway[0].to: must be later than "from")");
    row("waypoints out of order", R"({ "viewers": [{ "path": [{ "at": 1 }, { "at": 1 }] }] })",
        "s:1:41: viewers[0].path[1].at: must be later than that of the waypoint before");
    row("of two errors the first of the reading", R"({ "seed": -1, "repeat": -1 })",
        "s:1:3: seed: must be a whole number from 0 to 4294967295");
}

void tst_Scenario::error()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, expected);

    QString error;
    QVERIFY(!parseScenario(json, QStringLiteral("s"), &error));
    QCOMPARE(error, expected);
}

void tst_Scenario::shippedScenario_data()
{
    QTest::addColumn<QString>("file");

    const QDir dir(QStringLiteral(KRHVC_SCENARIO_DIR));
    const QStringList files = dir.entryList({QStringLiteral("*.json")});
    QVERIFY(!files.isEmpty());
    for (const QString &file : files)
        QTest::newRow(qPrintable(file + QLatin1String(" is read"))) << dir.filePath(file);
}

void tst_Scenario::shippedScenario()
{
    QFETCH(QString, file);

    QFile json(file);
    QVERIFY(json.open(QIODevice::ReadOnly));
    QString error;
    const bool read = parseScenario(json.readAll(), QStringLiteral("s"), &error).has_value();
    QCOMPARE(error, QString());
    QVERIFY(read);
}

void tst_Scenario::builtInScenarioIsVaried()
{
    const Scenario scenario = parsed(builtInScenario());
    QSet<QByteArray> counts;
    QSet<QByteArray> groups; // gender and decade of life
    for (int frame = 0; frame < 120; ++frame) { // a minute
        QByteArray age;
        for (const QByteArray &line : renderFrame(scenario, frame, 500).split('\n')) {
            if (line.startsWith("Face result count:"))
                counts << line.mid(18);
            else if (line.startsWith("Age\t"))
                age = line.mid(8, 1);
            else if (line.startsWith("Gender\t"))
                groups << line.mid(14).split(' ').first() + age;
        }
    }
    for (const char *count : {"0", "1", "2", "3"})
        QVERIFY2(counts.contains(count), count);
    for (const char *group :
        {"Male1", "Male2", "Male4", "Male7", "Female1", "Female2", "Female3", "Female5", "Female6"})
        QVERIFY2(groups.contains(group), group);
}

QTEST_GUILESS_MAIN(tst_Scenario)
#include "tst_scenario.moc"
