#include "demo/simulator/FramePlan.h"
#include "demo/simulator/ScenarioReader.h"
#include "detection/Determination.h"
#include "detection/SensorOutputParser.h"
#include "tools/analysis/Decider.h"

#include <QtTest>

#include <algorithm>

using namespace Analysis;
using namespace PluginKrHvcP2;

namespace {

constexpr int IntervalMs = 500;
constexpr int Frames = 400;

QDateTime momentMs(qint64 ms)
{
    return QDateTime(QDate(2018, 2, 1), QTime(9, 30), Qt::UTC).addMSecs(ms);
}

/// Women of 20 to 39 get #1, boys up to 12 get #2.
Plan plan(int concurrent = 1)
{
    Plan plan;
    plan.contents = {{1, 20, 39, Female, false, {2}}, {2, 0, 12, Male, false, {3}}};
    plan.settings.concurrent = concurrent;
    return plan;
}

QString face(int index, int size, int age, const char *gender)
{
    return QStringLiteral("Index:%1\tX:800 Y:600 Size:%2 Confidence:800\n"
                          "Face Direction\tLR:0 UD:0 Roll:0 Confidence:700\n"
                          "Age\tAge:%3 Confidence:500\nGender\tGender:%4 Confidence:900\n")
        .arg(index)
        .arg(size)
        .arg(age)
        .arg(QLatin1String(gender));
}

/// "2:#1 sent, 0:none" for the faces 2 and 0.
QString summary(const Decision &decision)
{
    QStringList faces;
    for (const DecidedFace &decided : decision.faces) {
        QString outcome = QStringLiteral("none");
        if (decided.outcome == DecidedFace::Cut)
            outcome = QStringLiteral("#%1 cut").arg(decided.sequence);
        else if (decided.outcome == DecidedFace::Sent)
            outcome = QStringLiteral("#%1 sent").arg(decided.sequence);
        else if (decided.outcome == DecidedFace::Restricted)
            outcome = QStringLiteral("#%1 restricted").arg(decided.sequence);
        faces += QStringLiteral("%1:%2").arg(decided.face.index).arg(outcome);
    }
    return faces.join(QStringLiteral(", "));
}

} // namespace

class tst_Decider : public QObject
{
    Q_OBJECT

private slots:
    void outcomes_data();
    void outcomes();
    void parsedChunks();
    void ranks();
    void restriction();
    void startsOfAHost_data();
    void startsOfAHost();
    void startsOfOthers();
    void timesOutliveThePlan();
    void facesThatShareNumberAndScore();
    void everyScenario_data();
    void everyScenario();
};

void tst_Decider::outcomes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("concurrent");
    QTest::addColumn<QString>("expected");

    const QString woman = face(0, 200, 30, "Female");
    const QString boy = face(1, 100, 8, "Male");
    const QString man = face(2, 300, 50, "Male");
    QTest::newRow("nobody") << QStringLiteral("Face result count:0\n") << 1 << "";
    QTest::newRow("one who fits") << woman << 1 << "0:#1 sent";
    QTest::newRow("one whom nothing fits") << man << 1 << "2:none";
    QTest::newRow("the nearer one first") << boy + woman << 1 << "0:#1 sent, 1:#2 cut";
    QTest::newRow("both at once") << boy + woman << 2 << "0:#1 sent, 1:#2 sent";
    QTest::newRow("whom nothing fits is behind")
        << man + boy + woman << 2 << "0:#1 sent, 1:#2 sent, 2:none";
    QTest::newRow("the same sequence twice")
        << woman + face(3, 100, 25, "Female") << 2 << "0:#1 sent, 3:#1 restricted";
}

void tst_Decider::outcomes()
{
    QFETCH(QString, text);
    QFETCH(int, concurrent);

    Decider decider(plan(concurrent));
    QTEST(summary(decider.decide(text, momentMs(0))), "expected");
}

/// One that has been parsed before gets the same decision, and is remembered like any other.
void tst_Decider::parsedChunks()
{
    const QString text = QStringLiteral("Face result count:2\n") + face(0, 200, 30, "Female")
        + face(1, 150, 8, "Male");
    Decider decider(plan(2));
    const Decision first
        = decider.decide(SensorOutputParser::parseUnseen(text, momentMs(0)), momentMs(0));
    QCOMPARE(summary(first), QStringLiteral("0:#1 sent, 1:#2 sent"));
    QCOMPARE(first.time, momentMs(0));
    QCOMPARE(summary(decider.decide(text, momentMs(500))),
        QStringLiteral("0:#1 restricted, 1:#2 restricted"));
}

void tst_Decider::ranks()
{
    Decider decider(plan());
    const Decision decision
        = decider.decide(face(0, 100, 8, "Male") + face(1, 200, 30, "Female"), momentMs(0));
    QCOMPARE(decision.faces.size(), 2);
    const DecidedFace &first = decision.faces.at(0);
    QCOMPARE(first.face.index, 1);
    QCOMPARE(first.sizeRank, 1);
    QCOMPARE(first.directionRank, 2); // both look straight
    QCOMPARE(first.prominence, 2.0);
    QCOMPARE(first.score(), 3.5);
    QCOMPARE(first.evaluation.reasons,
        QVector<ContentReason>({ContentReason::FullFit, ContentReason::BehindFullFit}));
    QCOMPARE(decision.faces.at(1).sizeRank, 0);
}

void tst_Decider::restriction()
{
    Decider decider(plan());
    const QString woman = face(0, 200, 30, "Female");
    const auto decide = [&](qint64 ms) { return decider.decide(woman, momentMs(ms)).faces.at(0); };
    QCOMPARE(decide(0).outcome, DecidedFace::Sent);
    const DecidedFace early = decide(1200);
    QCOMPARE(early.outcome, DecidedFace::Restricted);
    QCOMPARE(early.remainingMs, 3800);
    QCOMPARE(decide(4999).remainingMs, 1);
    const DecidedFace inTime = decide(5000);
    QCOMPARE(inTime.outcome, DecidedFace::Sent);
    QCOMPARE(inTime.remainingMs, 0);
}

void tst_Decider::startsOfAHost_data()
{
    QTest::addColumn<QVector<int>>("starts");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QVector<int>>("left");

    // Two women and a boy in front of a man; three of them may have a sequence.
    QTest::newRow("none") << QVector<int>{}
                          << "0:#1 restricted, 1:#2 restricted, 3:#1 restricted, 2:none"
                          << QVector<int>{};
    QTest::newRow("one") << QVector<int>{1} << "0:#1 sent, 1:#2 restricted, 3:#1 restricted, 2:none"
                         << QVector<int>{};
    QTest::newRow("of both women")
        << QVector<int>{1, 1} << "0:#1 sent, 1:#2 restricted, 3:#1 sent, 2:none" << QVector<int>{};
    QTest::newRow("in another order")
        << QVector<int>{2, 1} << "0:#1 sent, 1:#2 sent, 3:#1 restricted, 2:none" << QVector<int>{};
    QTest::newRow("of somebody else")
        << QVector<int>{3, 2, 2} << "0:#1 restricted, 1:#2 sent, 3:#1 restricted, 2:none"
        << QVector<int>{3, 2};
}

void tst_Decider::startsOfAHost()
{
    QFETCH(QVector<int>, starts);
    QFETCH(QString, expected);
    QFETCH(QVector<int>, left);

    Decider decider(plan(3));
    QVector<SeenStart> seen;
    for (const int number : qAsConst(starts))
        seen.append({number, momentMs(0)});
    const QString text = face(0, 300, 30, "Female") + face(1, 200, 8, "Male")
        + face(2, 250, 50, "Male") + face(3, 100, 25, "Female");
    QCOMPARE(summary(decider.decide(text, momentMs(3), &seen)), expected);
    QVector<int> numbers;
    for (const SeenStart &start : qAsConst(seen))
        numbers.append(start.number);
    QCOMPARE(numbers, left);
}

/// The times are those of the starts, whatever moved them.
void tst_Decider::startsOfOthers()
{
    Decider decider(plan());
    const QString woman = face(0, 200, 30, "Female");
    const auto decide = [&](qint64 ms, QVector<SeenStart> starts) {
        return decider.decide(woman, momentMs(ms), &starts).faces.at(0);
    };
    decider.settle({1, false}, {momentMs(100), momentMs(100)});
    QCOMPARE(decide(600, {}).remainingMs, 4500);
    QCOMPARE(decide(5090, {{1, momentMs(5080)}}).outcome, DecidedFace::Sent);
    const DecidedFace early = decide(5580, {});
    QCOMPARE(early.outcome, DecidedFace::Restricted);
    QCOMPARE(early.remainingMs, 4500);
    // Not decided, because a newer one came: it had nothing to wait for.
    const DecidedFace late = decide(20000, {});
    QCOMPARE(late.outcome, DecidedFace::Restricted);
    QCOMPARE(late.remainingMs, 0);
    QCOMPARE(decide(20100, {}).remainingMs, 0);
}

void tst_Decider::timesOutliveThePlan()
{
    Decider decider(plan());
    const QString woman = face(0, 200, 30, "Female");
    QCOMPARE(summary(decider.decide(woman, momentMs(0))), QStringLiteral("0:#1 sent"));

    // The woman's content is now the second one, which the same screen follows.
    Plan changed = plan();
    changed.contents = {{1, 0, 12, Male, false, {3}}, {2, 20, 39, Female, false, {2}}};
    changed.settings.eventSendingLimit = 3000;
    decider.setPlan(changed);
    const Decision decision = decider.decide(woman, momentMs(1000));
    QCOMPARE(summary(decision), QStringLiteral("0:#2 restricted"));
    QCOMPARE(decision.faces.at(0).remainingMs, 2000);
    QCOMPARE(summary(decider.decide(woman, momentMs(3000))), QStringLiteral("0:#2 sent"));
}

void tst_Decider::facesThatShareNumberAndScore()
{
    Decider decider(plan(2));
    const Decision decision = decider.decide(
        face(0, 100, 8, "Male") + face(0, 100, 30, "Female") + face(0, 100, 50, "Male"),
        momentMs(0));
    QCOMPARE(summary(decision), QStringLiteral("0:#2 sent, 0:#1 sent, 0:none"));
}

void tst_Decider::everyScenario_data()
{
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<QString>("stage");

    const QFileInfoList scenarios = QDir(QStringLiteral(KRHVC_SCENARIO_DIR))
                                        .entryInfoList({QStringLiteral("*.json")}, QDir::Files);
    const QFileInfoList stages = QDir(QStringLiteral(KRHVC_STAGE_DIR))
                                     .entryInfoList({QStringLiteral("*.json")}, QDir::Files);
    QVERIFY(!scenarios.isEmpty() && !stages.isEmpty());
    for (const QFileInfo &scenario : scenarios) {
        for (const QFileInfo &stage : stages)
            QTest::addRow(
                "%s, %s", qUtf8Printable(scenario.baseName()), qUtf8Printable(stage.baseName()))
                << scenario.filePath() << stage.filePath();
    }
}

/// The plug-in's own way from the chunk to the host, without its objects.
void tst_Decider::everyScenario()
{
    QFETCH(QString, scenario);
    QFETCH(QString, stage);

    QString error;
    const std::optional<Plan> plan = readPlan(stage, {}, &error);
    QVERIFY2(plan, qUtf8Printable(error));
    QFile file(scenario);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const auto viewers = Simulation::parseScenario(file.readAll(), scenario, &error);
    QVERIFY2(viewers, qUtf8Printable(error));

    Decider decider(*plan);
    SequenceRequests requests;
    requests.setContents(plan->contents);
    for (int i = 0; i < Frames; ++i) {
        const QString text
            = QString::fromUtf8(Simulation::planFrame(*viewers, i, IntervalMs).output());
        const QDateTime time = momentMs(qint64{i} * IntervalMs);
        const SensorFrame frame = SensorOutputParser::parse(text, time);
        const QList<CalculatedData> determined = determineSequences(
            frame.faces, frame.sizes, frame.directionValues, requests.contents());

        const Decision decision = decider.decide(text, time);
        QCOMPARE(decision.faces.size(), frame.faces.size());
        for (int rank = 0; rank < decision.faces.size(); ++rank) {
            const DecidedFace &decided = decision.faces.at(rank);
            if (rank >= determined.size()) {
                QCOMPARE(decided.outcome, DecidedFace::NothingFits);
                continue;
            }
            QCOMPARE(decided.face.index, determined.at(rank).faceIndex);
            QCOMPARE(decided.score(), determined.at(rank).score);
            QCOMPARE(decided.sequence, determined.at(rank).seqNumber);
            if (rank >= plan->settings.concurrent) {
                QCOMPARE(decided.outcome, DecidedFace::Cut);
                continue;
            }
            const auto answer
                = requests.request(decided.sequence, time, plan->settings.eventSendingLimit);
            QCOMPARE(
                decided.outcome == DecidedFace::Sent, answer == SequenceRequests::Answer::Admitted);
        }
    }
}

QTEST_APPLESS_MAIN(tst_Decider)

#include "tst_decider.moc"
