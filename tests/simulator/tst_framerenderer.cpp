#include "demo/simulator/FramePlan.h"
#include "demo/simulator/FrameRenderer.h"
#include "demo/simulator/ScenarioReader.h"

#include <QRegularExpression>
#include <QtTest>

using namespace Simulation;

class tst_FrameRenderer : public QObject
{
    Q_OBJECT

private slots:
    void scene_data();
    void scene();
    void recordedNoise();
    void noiseIsBounded();
    void framesDoNotDependOnEachOther();
    void seedChangesTheNoise();
    void noMoreThan35Faces();
    void fault_data();
    void fault();
    void piecesJoinUp_data();
    void piecesJoinUp();
};

static Scenario parsed(const QByteArray &json)
{
    QString error;
    const std::optional<Scenario> scenario = parseScenario(json, QStringLiteral("s"), &error);
    if (!scenario)
        qFatal("%s", qPrintable(error));
    return *scenario;
}

static Scenario noisy()
{
    QFile file(QFINDTESTDATA("data/noisy.json"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no data/noisy.json");
    return parsed(file.readAll());
}

static QByteArray woman(const char *lr = "5", const char *ageMark = "", const char *genderMark = "")
{
    return QByteArray("Face result count:1\n"
                      "Index:0\tX:320 Y:240 Size:120 Confidence:800\n"
                      "Face Direction\tLR:")
        + lr + " UD:-3 Roll:1 Confidence:700\nAge\tAge:34 Confidence:500" + ageMark
        + "\nGender\tGender:Female Confidence:900" + genderMark + "\nPress Space Key to end:\n";
}

static const char *const Nobody = "Face result count:0\nPress Space Key to end:\n";

void tst_FrameRenderer::scene_data()
{
    QTest::addColumn<QByteArray>("viewers");
    QTest::addColumn<int>("ms"); // the first frame is at 0, the second here
    QTest::addColumn<QByteArray>("expected");

    const auto row
        = [](const char *name, const QByteArray &viewers, int ms, const QByteArray &expected) {
              QTest::newRow(name) << viewers << ms << expected;
          };
    const auto withKeys = [](const char *keys) -> QByteArray {
        return QByteArray(R"({ "gender": "female", "age": 34, "x": 320, "y": 240, )"
                          R"("size": 120, "lr": 5, "ud": -3, "roll": 1)")
            + keys + " }";
    };

    row("nobody is there", "", 500, Nobody);
    row("a viewer who stays", withKeys(""), 500, woman());
    row("before the arrival", withKeys(R"(, "arrive": 1)"), 999, Nobody);
    row("at the arrival", withKeys(R"(, "arrive": 1)"), 1000, woman());
    row("before leaving", withKeys(R"(, "leave": 1)"), 999, woman());
    row("at leaving", withKeys(R"(, "leave": 1)"), 1000, Nobody);
    row("the scenario starts anew", withKeys(R"(, "arrive": 1, "leave": 2)"), 11500, woman());
    row("no marks yet", withKeys(R"(, "arrive": 1, "ageMarkAfter": 1, "genderMarkAfter": 2)"), 1999,
        woman());
    row("the age is marked first",
        withKeys(R"(, "arrive": 1, "ageMarkAfter": 1, "genderMarkAfter": 2)"), 2000,
        woman("5", " *"));
    row("age and gender are marked",
        withKeys(R"(, "arrive": 1, "ageMarkAfter": 1, "genderMarkAfter": 2)"), 3000,
        woman("5", " *", " *"));
    row("before looking away", withKeys(R"(, "lookAway": [{ "from": 1, "to": 2, "lr": 60 }])"), 999,
        woman());
    row("looking away", withKeys(R"(, "lookAway": [{ "from": 1, "to": 2, "lr": 60 }])"), 1000,
        woman("60"));
    row("looking back", withKeys(R"(, "lookAway": [{ "from": 1, "to": 2, "lr": 60 }])"), 2000,
        woman());
    row("turned away altogether",
        withKeys(R"(, "lookAway": [{ "from": 1, "to": 2, "lost": true }])"), 1500, Nobody);
    row("between two waypoints",
        withKeys(R"(, "path": [{ "at": 1, "x": 300, "y": 250, "size": 100 }, )"
                 R"({ "at": 2, "x": 340, "y": 230, "size": 140 }])"),
        1500, woman());
    row("before the first waypoint", withKeys(R"(, "path": [{ "at": 1 }, { "at": 2, "x": 9 }])"),
        999, woman());
    row("after the last waypoint",
        withKeys(R"(, "path": [{ "at": 1, "x": 9 }, )"
                 R"({ "at": 2, "x": 320 }])"),
        9999, woman());
    row("neither age nor gender", R"({ "ageMarkAfter": 0, "genderMarkAfter": 0 })", 500,
        "Face result count:1\n"
        "Index:0\tX:800 Y:600 Size:200 Confidence:800\n"
        "Face Direction\tLR:0 UD:0 Roll:0 Confidence:700\n"
        "Age\tAge:- Confidence:0\n"
        "Gender\tGender:- Confidence:0\n"
        "Press Space Key to end:\n");
    row("faces are numbered without gaps",
        R"({ "gender": "male", "age": 0 }, { "arrive": 1 }, )"
        R"({ "gender": "female", "age": 120, "x": 0, "y": 0, "size": 1, )"
        R"("confidence": { "face": 1, "direction": 2, "age": 3, "gender": 1000 } })",
        500,
        "Face result count:2\n"
        "Index:0\tX:800 Y:600 Size:200 Confidence:800\n"
        "Face Direction\tLR:0 UD:0 Roll:0 Confidence:700\n"
        "Age\tAge:0 Confidence:500\n"
        "Gender\tGender:Male Confidence:900\n"
        "Index:1\tX:0 Y:0 Size:1 Confidence:1\n"
        "Face Direction\tLR:0 UD:0 Roll:0 Confidence:2\n"
        "Age\tAge:120 Confidence:3\n"
        "Gender\tGender:Female Confidence:1000\n"
        "Press Space Key to end:\n");
}

void tst_FrameRenderer::scene()
{
    QFETCH(QByteArray, viewers);
    QFETCH(int, ms);
    QFETCH(QByteArray, expected);

    const Scenario scenario = parsed(R"({ "repeat": 10, "viewers": [)" + viewers + "] }");
    QCOMPARE(renderFrame(scenario, 1, ms), expected);
}

// The very same text on every platform and with every compiler.
void tst_FrameRenderer::recordedNoise()
{
    QFile file(QFINDTESTDATA("data/noisy.txt"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray text;
    for (int frame = 0; frame < 6; ++frame)
        text += renderFrame(noisy(), frame, 500);
    QCOMPARE(text, file.readAll());
}

void tst_FrameRenderer::noiseIsBounded()
{
    const Scenario scenario = parsed(R"({
        "noise": { "position": 20, "size": 10, "direction": 7, "age": 3, "confidence": 50 },
        "viewers": [{ "gender": "male", "age": 1, "x": 1590, "y": 600, "size": 5, "lr": 178,
                      "ud": -40, "confidence": { "face": 990, "age": 20 } }]
    })");
    struct Bounds
    {
        int min;
        int max;
    };
    // Both the deviation and what the sensor can report; reached, too, as nothing is a constant.
    const QVector<Bounds> expected{{1570, 1599}, {580, 620}, {1, 15}, {940, 1000}, {171, 180},
        {-47, -33}, {-7, 7}, {650, 750}, {0, 4}, {0, 70}, {850, 950}};
    static const QRegularExpression number(QStringLiteral(":(-?\\d+)"));
    QVector<Bounds> found(expected.size(), {1000000, -1000000});
    for (int frame = 0; frame < 4000; ++frame) {
        const QString text = QString::fromLatin1(renderFrame(scenario, frame, 100));
        auto match = number.globalMatch(text.section(QLatin1Char('\t'), 1)); // after "Index:0"
        for (Bounds &bounds : found) {
            const int value = match.next().captured(1).toInt();
            bounds.min = qMin(bounds.min, value);
            bounds.max = qMax(bounds.max, value);
        }
    }
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(found.at(i).min, expected.at(i).min);
        QCOMPARE(found.at(i).max, expected.at(i).max);
    }
}

void tst_FrameRenderer::framesDoNotDependOnEachOther()
{
    const Scenario scenario = noisy();
    const QByteArray fifth = renderFrame(scenario, 5, 500);
    QVERIFY(renderFrame(scenario, 6, 500) != fifth);
    QCOMPARE(renderFrame(scenario, 5, 500), fifth);
}

void tst_FrameRenderer::seedChangesTheNoise()
{
    Scenario scenario = noisy();
    const QByteArray before = renderFrame(scenario, 0, 500);
    ++scenario.seed;
    QVERIFY(renderFrame(scenario, 0, 500) != before);
}

void tst_FrameRenderer::noMoreThan35Faces()
{
    Scenario scenario;
    scenario.viewers.resize(36);
    scenario.viewers.first().arriveMs = 1000;

    const auto faces = [](const QByteArray &text) { return text.count("\nIndex:"); };
    const QByteArray without = renderFrame(scenario, 0, 1000);
    QVERIFY(without.startsWith("Face result count:35\n"));
    QVERIFY(without.contains("\nIndex:34\t"));
    QCOMPARE(faces(without), 35);
    const QByteArray all = renderFrame(scenario, 1, 1000);
    QCOMPARE(all, without);
}

void tst_FrameRenderer::fault_data()
{
    QTest::addColumn<QByteArray>("faults");
    QTest::addColumn<int>("frame");
    QTest::addColumn<QString>("expected"); // kind:data:value of each step, then the next frame

    const auto row = [](const char *name, const char *faults, int frame, const char *expected) {
        QTest::newRow(name) << QByteArray(faults) << frame << QString::fromLatin1(expected);
    };
    const char *const block = "write:Face result count:0|Press Space Key to end:|:0 500";
    row("no fault", "", 3, block);
    row("before the fault", R"({ "kind": "crash", "frame": 4 })", 3, block);
    row("crash", R"({ "kind": "crash", "frame": 4 })", 4, "crash::0 500");
    row("exit", R"({ "kind": "exit", "frame": 4, "status": 9 })", 4, "exit::9 500");
    row("silence", R"({ "kind": "silence", "frame": 4, "frames": 2 })", 5, " 500");
    row("after the fault", R"({ "kind": "silence", "frame": 4, "frames": 2 })", 6, block);
    row("a fault that stays", R"({ "kind": "silence", "frame": 4, "frames": 0 })", 999999, " 500");
    row("garbage", R"({ "kind": "garbage", "lines": ["a", "\u00fc"] })", 0,
        "write:Face result count:0|a|\xc3\xbc|Press Space Key to end:|:0 500");
    row("only garbage", R"({ "kind": "silence" }, { "kind": "garbage", "lines": ["a"] })", 0,
        "write:a|:0 500");
    row("pieces", R"({ "kind": "pieces", "pieces": 2, "pause": 7 })", 0,
        "write:Face result count:0|Pr:0 wait::7 write:ess Space Key to end:|:0 500");
    row("flood", R"({ "kind": "flood" })", 0,
        "write:Face result count:0|Press Space Key to end:|:0 0");
    row("error output", R"({ "kind": "errorOutput", "lines": ["a", "b"] })", 0,
        "error:a|b|:0 write:Face result count:0|Press Space Key to end:|:0 500");
    row("closed output", R"({ "kind": "closeOutput" })", 0,
        "close::0 write:Face result count:0|Press Space Key to end:|:0 500");
    row("last words", R"({ "kind": "errorOutput", "lines": ["a"] }, { "kind": "crash" })", 0,
        "error:a|:0 crash::0 500");
}

void tst_FrameRenderer::fault()
{
    QFETCH(QByteArray, faults);
    QFETCH(int, frame);
    QFETCH(QString, expected);

    const Scenario scenario = parsed(R"({ "faults": [)" + faults + "] }");
    const FramePlan plan = planFrame(scenario, frame, 500);
    static const QByteArrayList kinds{"write", "error", "wait", "close", "exit", "crash"};
    QStringList steps;
    for (const Step &step : plan.steps) {
        steps << QString::fromLatin1(kinds.at(step.kind)) + QLatin1Char(':')
                + QString::fromLatin1(step.data).replace(QLatin1Char('\n'), QLatin1Char('|'))
                + QLatin1Char(':') + QString::number(step.value);
    }
    QCOMPARE(steps.join(QLatin1Char(' ')) + QLatin1Char(' ') + QString::number(plan.nextAfterMs),
        expected);
}

void tst_FrameRenderer::piecesJoinUp_data()
{
    QTest::addColumn<int>("pieces");
    QTest::addColumn<int>("expected");

    const int size = renderFrame(noisy(), 0, 500).size();
    QTest::newRow("two") << 2 << 2;
    QTest::newRow("seven") << 7 << 7;
    QTest::newRow("each byte by itself") << size << size;
    QTest::newRow("more pieces than bytes") << size + 1 << size;
}

void tst_FrameRenderer::piecesJoinUp()
{
    QFETCH(int, pieces);
    QFETCH(int, expected);

    Scenario scenario = noisy();
    Fault fault;
    fault.kind = Fault::Pieces;
    fault.pieces = pieces;
    scenario.faults = {fault};
    const FramePlan plan = planFrame(scenario, 0, 500);
    int writes = 0;
    for (const Step &step : plan.steps)
        writes += step.kind == Step::Write ? 1 : 0;
    QCOMPARE(writes, expected);
    QCOMPARE(plan.steps.size(), 2 * expected - 1);
    QCOMPARE(plan.output(), renderFrame(scenario, 0, 500));
}

QTEST_GUILESS_MAIN(tst_FrameRenderer)
#include "tst_framerenderer.moc"
