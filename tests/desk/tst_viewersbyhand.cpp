#include "demo/desk/LiveFile.h"
#include "demo/desk/ViewerDesk.h"
#include "demo/simulator/FrameRenderer.h"
#include "tests/plugin/PluginFixture.h"
#include "tests/support/Files.h"
#include "tests/support/SensorProgram.h"
#include "tests/support/Waiting.h"
#include "tools/analysis/Decider.h"

#include <QApplication>
#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

using namespace Desk;
using namespace KrTest;
using Simulation::Gender;

/// A boy of 8 and a woman of 30 before the shop window; what plays is for the nearer one.
class tst_ViewersByHand : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void decisionFollowsTheNearerOne();
    void pluginFollowsTheNearerOne();

private:
    static constexpr int ForBoys = 2; // sequences of the stage
    static constexpr int ForWomen = 5;

    int place(const QPoint &center, Gender gender, int age, int size);

    Analysis::Plan m_plan;
    std::unique_ptr<ViewerDesk> m_desk;
    int m_boy = 0;
    int m_woman = 0;
};

namespace {

constexpr char Prompt[] = "Press Space Key to end:\n";

/// The newest whole frame that the simulator has printed.
QByteArray newestFrame(QByteArray output)
{
    output.replace("\r\n", "\n");
    const int end = output.lastIndexOf(Prompt);
    const int begin = output.lastIndexOf(Prompt, end - 1);
    return begin < 0 ? QByteArray() : output.mid(begin + int(qstrlen(Prompt)), end - begin);
}

QVector<PluginTest::Content> contentsOf(const Analysis::Plan &plan)
{
    QVector<PluginTest::Content> contents;
    for (const PluginKrHvcP2::DetectionContent &content : plan.contents) {
        const QString gender
            = content.genders == PluginKrHvcP2::Male ? PluginTest::Male : PluginTest::Female;
        contents.append({content.ageMin, content.ageMax, gender, content.isDefault});
    }
    return contents;
}

} // namespace

void tst_ViewersByHand::initTestCase()
{
    QString error;
    const auto plan = Analysis::readPlan(
        QStringLiteral(KRHVC_STAGE_DIR "/shop-window.json"), std::nullopt, &error);
    QVERIFY2(plan, qPrintable(error));
    m_plan = *plan;
    QCOMPARE(m_plan.name(ForBoys), QStringLiteral("Boys 0-12"));
    QCOMPARE(m_plan.name(ForWomen), QStringLiteral("Women 25-54"));
}

void tst_ViewersByHand::init()
{
    m_desk = std::make_unique<ViewerDesk>();
    m_boy = place({560, 700}, Gender::Male, 8, 200);
    m_woman = place({1000, 560}, Gender::Female, 30, 120);
}

void tst_ViewersByHand::cleanup()
{
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    qunsetenv("KRHVC_LIVE");
}

int tst_ViewersByHand::place(const QPoint &center, Gender gender, int age, int size)
{
    PlacedViewer viewer = m_desk->viewer(m_desk->add(center));
    viewer.gender = gender;
    viewer.age = age;
    viewer.position.size = size;
    m_desk->change(viewer);
    return viewer.id;
}

void tst_ViewersByHand::decisionFollowsTheNearerOne()
{
    const LiveFile file(m_desk.get());
    QProcess simulator;
    simulator.start(QStringLiteral(KRHVC_SIMULATOR_FILE),
        {QStringLiteral("3"), QStringLiteral("921600"), QStringLiteral("10"),
            QStringLiteral("--live"), file.fileName()});
    QByteArray output;
    connect(&simulator, &QProcess::readyReadStandardOutput, this,
        [&] { output = output.right(100000) + simulator.readAllStandardOutput(); });

    Analysis::Decider decider(m_plan);
    QDateTime now(QDate(2018, 2, 1), QTime(9, 30), Qt::UTC);
    QList<int> sequences;
    const auto look = [&] {
        const QByteArray expected = Simulation::renderFrame(toSimulation(m_desk->viewers()), 0, 1);
        QTRY_COMPARE_WITH_TIMEOUT(newestFrame(output), expected, Patience);
        // So much later nothing is restricted any more.
        now = now.addSecs(60);
        const Analysis::Decision decision
            = decider.decide(QString::fromUtf8(newestFrame(output)), now);
        QCOMPARE(decision.faces.size(), m_desk->viewers().size());
        QCOMPARE(decision.faces.first().outcome, Analysis::DecidedFace::Sent);
        sequences << decision.faces.first().sequence;
    };

    look();
    for (int step = 0; step < 10; ++step) {
        m_desk->bringNearer(m_woman, 1);
        m_desk->moveTo(m_woman, {1000 - 10 * step, 560 + 5 * step});
        look();
        const bool womanIsNearer = m_desk->viewer(m_woman).position.size > 200;
        QCOMPARE(sequences.constLast(), womanIsNearer ? ForWomen : ForBoys);
    }
    QCOMPARE(sequences.constFirst(), ForBoys);
    QCOMPARE(sequences.constLast(), ForWomen);
    m_desk->bringNearer(m_boy, 10);
    look();
    QCOMPARE(sequences.constLast(), ForBoys);
    m_desk->remove(m_boy);
    look();
    QCOMPARE(sequences.constLast(), ForWomen);

    simulator.write(" ");
    QVERIFY(simulator.waitForFinished(Patience));
    QCOMPARE(simulator.exitCode(), 0);
    QCOMPARE(simulator.readAllStandardError(), QByteArray());
}

void tst_ViewersByHand::pluginFollowsTheNearerOne()
{
    const LiveFile file(m_desk.get());
    qputenv("KRHVC_LIVE", QFile::encodeName(file.fileName()));
    PluginTest::LoadedPlugin plugin;
    QVERIFY(writeFile(plugin.path(QStringLiteral("setting.ini")), "[Main]\nInterval=50\n")
        && QFile::copy(
            QStringLiteral(KRHVC_SIMULATOR_FILE), plugin.path(QStringLiteral("HvcCon.exe"))));
    plugin.init(contentsOf(m_plan), PluginTest::settings(1, 0));
    plugin->start();
    QTRY_COMPARE_WITH_TIMEOUT(plugin->currentSequenceNumber(), ForBoys, Patience);
    m_desk->bringNearer(m_woman, 8);
    QTRY_COMPARE_WITH_TIMEOUT(plugin->currentSequenceNumber(), ForWomen, Patience);
    m_desk->bringNearer(m_woman, -8);
    QTRY_COMPARE_WITH_TIMEOUT(plugin->currentSequenceNumber(), ForBoys, Patience);
    m_desk->remove(m_boy);
    QTRY_COMPARE_WITH_TIMEOUT(plugin->currentSequenceNumber(), ForWomen, Patience);
    plugin->stop();
}

QTEST_MAIN(tst_ViewersByHand)
#include "tst_viewersbyhand.moc"
