#include "demo/simulator/ScenarioFormat.h"
#include "demo/simulator/ScenarioReader.h"
#include "demo/simulator/ScenarioWriter.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QtTest>

using namespace Simulation;

/// What is written is read again as it was.
class tst_ScenarioWriter : public QObject
{
    Q_OBJECT

private slots:
    void everyKey();
    void grantedValuesAreLeftOut();
    void description();
    void shippedScenario_data();
    void shippedScenario();
    void randomScenarios();
};

namespace {

Scenario parsed(const QByteArray &json)
{
    QString error;
    const std::optional<Scenario> scenario = parseScenario(json, QStringLiteral("s"), &error);
    if (!scenario)
        qFatal("%s", qPrintable(error));
    return *scenario;
}

/// Makes scenarios of everything that a file can say.
class Dice
{
public:
    explicit Dice(quint32 seed)
        : m_generator(seed)
    { }

    Scenario scenario()
    {
        Scenario scenario;
        scenario.seed = m_generator.generate();
        scenario.repeatMs = time();
        scenario.absentPorts = list<int>([this] { return atMost(1000); });
        scenario.ignoreStopKey = coin();
        scenario.stopDelayMs = atMost(60000);
        scenario.viewers = list<Viewer>([this] { return viewer(); });
        scenario.faults = list<Fault>([this] { return fault(); });
        return scenario;
    }

private:
    int atMost(int max) { return m_generator.bounded(max + 1); }
    bool coin() { return atMost(1) == 1; }
    int angle() { return atMost(360) - 180; }
    double share() { return m_generator.generateDouble(); }

    qint64 time()
    {
        return coin() ? atMost(MaxSeconds) * Q_INT64_C(1000) : atMost(MaxSeconds * 1000);
    }
    std::optional<qint64> optionalTime()
    {
        return coin() ? std::make_optional(time()) : std::nullopt;
    }

    template <typename T, typename Make>
    QVector<T> list(const Make &make)
    {
        QVector<T> values;
        for (int left = atMost(3); left > 0; --left)
            values.append(make());
        return values;
    }

    Position position() { return {atMost(Sensor::MaxX), atMost(Sensor::MaxY), 1 + atMost(1199)}; }
    Direction direction() { return {angle(), angle(), angle()}; }

    QVector<Waypoint> path()
    {
        qint64 atMs = atMost(1000);
        return list<Waypoint>([&] {
            atMs += 1 + atMost(20000);
            // What is as before is written by its absence.
            return Waypoint{atMs, coin() ? position() : Position()};
        });
    }

    LookAway glance()
    {
        const qint64 fromMs = atMost(1000000);
        return {fromMs, fromMs + 1 + atMost(5000), coin() ? direction() : Direction(), coin()};
    }

    Viewer viewer()
    {
        Viewer viewer;
        viewer.arriveMs = atMost(MaxSeconds * 500);
        if (coin())
            viewer.leaveMs = viewer.arriveMs + 1 + atMost(100000);
        viewer.gender = static_cast<Gender>(atMost(2));
        if (coin())
            viewer.age = atMost(Sensor::MaxAge);
        if (coin())
            viewer.position = position();
        viewer.path = path();
        if (coin())
            viewer.direction = direction();
        viewer.lookAway = list<LookAway>([this] { return glance(); });
        viewer.ageMarkAfterMs = optionalTime();
        viewer.genderMarkAfterMs = optionalTime();
        if (coin())
            viewer.confidence = {atMost(1000), atMost(1000), atMost(1000), atMost(1000)};
        if (coin())
            viewer.noise = {atMost(1599), atMost(1200), atMost(180), atMost(120), atMost(1000),
                share(), share()};
        return viewer;
    }

    Fault fault()
    {
        Fault fault;
        fault.kind = static_cast<Fault::Kind>(atMost(Fault::CloseOutput));
        fault.frame = atMost(100000);
        if (fault.kind != Fault::Crash && fault.kind != Fault::Exit
            && fault.kind != Fault::CloseOutput)
            fault.frames = atMost(1000);
        if (fault.kind == Fault::Exit)
            fault.status = atMost(255);
        if (fault.kind == Fault::Pieces) {
            fault.pieces = 2 + atMost(9998);
            fault.pauseMs = atMost(60000);
        }
        fault.lines = defaultLines(fault.kind);
        if (!fault.lines.isEmpty() && coin())
            fault.lines = {"", "\xc3\xbc", QByteArray("a\0b", 3), "\"\\\n"};
        return fault;
    }

    QRandomGenerator m_generator;
};

} // namespace

void tst_ScenarioWriter::everyKey()
{
    const QByteArray json = R"({
        "seed": 4294967295,
        "repeat": 1.5,
        "absentPorts": [1, 7],
        "ignoreStopKey": true,
        "stopDelay": 250,
        "viewers": [{
            "arrive": 0.1, "leave": 86400, "gender": "male", "age": 120,
            "x": 1599, "y": 1199, "size": 1200, "lr": -180, "ud": 180, "roll": 7,
            "path": [{ "at": 0.5, "x": 1, "y": 2, "size": 3 }, { "at": 86399.999, "size": 4 }],
            "lookAway": [{ "from": 1, "to": 2, "lr": 8, "ud": 9, "roll": 10 },
                         { "from": 3, "to": 4, "lost": true }],
            "ageMarkAfter": 0, "genderMarkAfter": 4,
            "confidence": { "face": 1, "direction": 2, "age": 3, "gender": 4 },
            "noise": { "position": 1, "size": 2, "direction": 3, "age": 4, "confidence": 5,
                       "genderError": 0.25, "miss": 1 }
        }, { "gender": "female" }],
        "faults": [
            { "kind": "crash", "frame": 1 },
            { "kind": "exit", "frame": 2, "status": 255 },
            { "kind": "silence", "frame": 3, "frames": 0 },
            { "kind": "garbage", "frame": 4, "frames": 5, "lines": ["a", "\u00fc", "\u0000"] },
            { "kind": "garbage" },
            { "kind": "pieces", "frame": 6, "frames": 7, "pieces": 8, "pause": 9 },
            { "kind": "flood", "frame": 10, "frames": 11 },
            { "kind": "errorOutput", "frame": 12, "frames": 13, "lines": ["b"] },
            { "kind": "closeOutput", "frame": 14 }
        ]
    })";
    QCOMPARE(QJsonDocument::fromJson(writeScenario(parsed(json))), QJsonDocument::fromJson(json));
}

void tst_ScenarioWriter::grantedValuesAreLeftOut()
{
    QCOMPARE(writeScenario(Scenario()), QByteArray("{\n}\n"));
    Scenario scenario;
    scenario.viewers = {Viewer()};
    QCOMPARE(QJsonDocument::fromJson(writeScenario(scenario)),
        QJsonDocument::fromJson(R"({ "viewers": [{}] })"));
}

void tst_ScenarioWriter::description()
{
    const QByteArray json = writeScenario(Scenario(), QStringLiteral("a \"family\""));
    QCOMPARE(QJsonDocument::fromJson(json).object().value(QLatin1String("description")).toString(),
        QStringLiteral("a \"family\""));
    QVERIFY(parsed(json) == Scenario());
}

void tst_ScenarioWriter::shippedScenario_data()
{
    QTest::addColumn<QString>("file");

    const QDir dir(QStringLiteral(KRHVC_SCENARIO_DIR));
    const QStringList files = dir.entryList({QStringLiteral("*.json")});
    QVERIFY(!files.isEmpty());
    for (const QString &file : files)
        QTest::newRow(qPrintable(file + QLatin1String(" is written"))) << dir.filePath(file);
}

void tst_ScenarioWriter::shippedScenario()
{
    QFETCH(QString, file);

    QFile json(file);
    QVERIFY(json.open(QIODevice::ReadOnly));
    const Scenario scenario = parsed(json.readAll());
    QVERIFY(!(scenario == Scenario()));
    QVERIFY(parsed(writeScenario(scenario)) == scenario);
}

void tst_ScenarioWriter::randomScenarios()
{
    for (quint32 seed = 0; seed < 1000; ++seed) {
        const Scenario scenario = Dice(seed).scenario();
        const QByteArray json = writeScenario(scenario);
        QVERIFY2(parsed(json) == scenario,
            qPrintable(QStringLiteral("seed %1\n%2").arg(seed).arg(QString::fromUtf8(json))));
    }
}

QTEST_GUILESS_MAIN(tst_ScenarioWriter)
#include "tst_scenariowriter.moc"
