#include "core/screen/DetectionContent.h"
#include "demo/simulator/FramePlan.h"
#include "demo/simulator/ScenarioReader.h"
#include "tests/plugin/PluginFixture.h"
#include "tests/support/Files.h"
#include "tools/analysis/EntrySource.h"
#include "tools/analysis/Replay.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

using namespace Analysis;
using namespace PluginTest;

namespace {

constexpr int Frames = 1000; // of each plug-in
constexpr int PauseMs = 3; // between two frames
constexpr int LimitMs = 1500;
constexpr int Concurrent = 2;

const QVector<Content> Contents{
    {0, 14, Both, false},
    {15, 44, Female, true},
    {15, 44, Male, true},
    {45, 120, Both, false},
};
/// Screens that follow several sequences restrict some of them in part.
const QMap<int, QList<int>> Links{{101, {1, 2}}, {102, {2, 3}}, {103, {3}}, {104, {4}}};

Plan planOfFixture()
{
    Plan plan;
    plan.contents = PluginKrHvcP2::detectionContents(
        screenData(Contents).toMap(), linkedStage(Links).screens());
    plan.settings.concurrent = Concurrent;
    plan.settings.eventSendingLimit = LimitMs;
    return plan;
}

} // namespace

/// A replay of what the loaded plug-in has logged.
class tst_Hvcp2Replay : public QObject
{
    Q_OBJECT

private slots:
    void loadedPlugin();

private:
    static void play(const QString &logDirectory, QList<int> *started);
};

/// Appends the sequences that the host was asked for.
void tst_Hvcp2Replay::play(const QString &logDirectory, QList<int> *started)
{
    const QString file = QStringLiteral(KRHVC_SCENARIO_DIR "/busy-shop.json");
    QString error;
    const auto story = Simulation::parseScenario(KrTest::readFile(file), file, &error);
    QVERIFY2(story, qPrintable(error));
    LoadedPlugin plugin(LoadedPlugin::NoLog);
    plugin->setLogSetting(logDirectory);
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(Contents, Links, settings(Concurrent, LimitMs));
    QVERIFY(QMetaObject::invokeMethod(plugin.object(), "onStarted"));
    for (int i = 0; i < Frames; ++i) {
        QVERIFY(plugin.receive(QString::fromUtf8(Simulation::planFrame(*story, i, 100).output())));
        QThread::msleep(PauseMs);
    }
    for (const QList<QVariant> &arguments : spy)
        started->append(arguments.constFirst().toInt() + 1);
}

/// Two plug-ins, of which the second one knows nothing of the first one's starts.
void tst_Hvcp2Replay::loadedPlugin()
{
    const QTemporaryDir directory;
    QList<int> started;
    for (int run = 0; run < 2; ++run)
        play(directory.path(), &started);
    QVERIFY(started.size() > 2 * Concurrent);

    QString error;
    const auto source = EntrySource::open({directory.path()}, &error);
    QVERIFY2(source, qPrintable(error));
    Replay replay(planOfFixture());
    QList<int> replayed;
    qint64 logged = 0;
    qint64 restricted = 0;
    qint64 byTimes = 0;
    const auto look = [&](const ReplayedFrame &frame) {
        const QByteArray place = "frame " + QByteArray::number(frame.number);
        QVERIFY2(frame.difference == Difference::None, place.constData());
        QVERIFY2(frame.isLogged || frame.number == 2 * Frames, place.constData());
        QCOMPARE(expectedRequests(frame), frame.logged);
        logged += frame.logged.size();
        for (const DecidedFace &face : frame.decision.faces) {
            if (face.outcome == DecidedFace::Sent)
                replayed.append(face.sequence);
            else if (face.outcome == DecidedFace::Restricted)
                ++restricted;
            if (face.outcome == DecidedFace::Restricted && face.evidence == DecidedFace::Times)
                ++byTimes;
            QVERIFY2(face.evidence != DecidedFace::Likelihood, place.constData());
        }
    };
    while (const std::optional<Entry> entry = source->next()) {
        QVERIFY2(entry->kind != Entry::Unknown, qPrintable(entry->text));
        if (const auto frame = replay.take(*entry))
            look(*frame);
    }
    if (const auto frame = replay.finish())
        look(*frame);
    QCOMPARE(replayed, started);
    QCOMPARE(logged, replayed.size() + restricted);
    QVERIFY(logged > Frames);
    QVERIFY(byTimes > 0);
    QVERIFY(!replay.otherLimitMs());
    QCOMPARE(replay.decisionsWithoutFrame(), 0);
}

QTEST_MAIN(tst_Hvcp2Replay)

#include "tst_hvcp2replay.moc"
