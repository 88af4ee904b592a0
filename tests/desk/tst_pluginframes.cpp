#include "demo/desk/FrameHistory.h"
#include "demo/desk/PluginFrames.h"
#include "tests/desk/SampleFrames.h"

#include <QSignalSpy>
#include <QtTest>

#include <limits>
#include <memory>

using namespace Desk;

/// Runs a sensor program, as far as a host sees.
class FakeController : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

signals:
    void started();
    void errorOccured(const QString &msg);
    void stopped();
    void dataReceived(const QString &data);
};

/// Starts what it is told to for each chunk.
class FakePlugin : public QObject
{
    Q_OBJECT

public:
    void init()
    {
        delete controller;
        new QObject(this); // a child of another kind
        controller = new FakeController(this);
    }
    void listen()
    {
        connect(controller, &FakeController::dataReceived, this, [this] {
            for (const int number : qAsConst(starts))
                emit contentStarted(number - 1);
        });
    }

    FakeController *controller = nullptr; // child of this
    QVector<int> starts;

signals:
    void contentStarted(int seqIndex);
};

class tst_PluginFrames : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void frames_data();
    void frames();
    void buttons();
    void impossibleIndexes();
    void newController();
    void pluginThatGoes();
    void noPlugin();
    void sensorProgram();

private:
    std::unique_ptr<FakePlugin> m_plugin;
    std::unique_ptr<PluginFrames> m_frames;
    QVector<PluginTurn> m_turns;
};

void tst_PluginFrames::init()
{
    m_turns.clear();
    m_frames = std::make_unique<PluginFrames>();
    connect(m_frames.get(), &PluginFrames::delivered, this,
        [this](const PluginTurn &turn) { m_turns.append(turn); });
    m_plugin = std::make_unique<FakePlugin>();
    m_plugin->init();
}

void tst_PluginFrames::frames_data()
{
    QTest::addColumn<bool>("pluginListensFirst");

    QTest::newRow("the plug-in's slot runs first") << true;
    QTest::newRow("the plug-in's slot runs last") << false;
}

void tst_PluginFrames::frames()
{
    QFETCH(bool, pluginListensFirst);

    if (pluginListensFirst)
        m_plugin->listen();
    m_frames->watch(m_plugin.get());
    QVERIFY(m_frames->isWatching());
    if (!pluginListensFirst)
        m_plugin->listen();
    FrameHistory history(samplePlan());
    m_plugin->starts = {1};
    emit m_plugin->controller->dataReceived(sampleFace(0, 200, 30, "Female"));
    QVERIFY(m_turns.isEmpty()); // the plug-in may not be done with it
    QTRY_COMPARE(m_turns.size(), 1);
    history.take(m_turns.constLast());
    QCOMPARE(outcomes(history.newest().decision), QStringLiteral("#1 sent"));

    m_plugin->starts.clear();
    emit m_plugin->controller->dataReceived(sampleFace(0, 200, 30, "Female"));
    QTRY_COMPARE(m_turns.size(), 2);
    history.take(m_turns.constLast());
    QCOMPARE(history.newest().decision.faces.at(0).outcome, Analysis::DecidedFace::Restricted);
    QCOMPARE(history.newest().decision.time.date(), QDate::currentDate());
}

void tst_PluginFrames::buttons()
{
    m_frames->watch(m_plugin.get());
    emit m_plugin->contentStarted(6);
    QTRY_COMPARE(m_turns.size(), 1);
    QVERIFY(m_turns.at(0).chunks.isEmpty());
    QCOMPARE(m_turns.at(0).starts.size(), 1);
    QCOMPARE(m_turns.at(0).starts.at(0).number, 7);
    QCOMPARE(m_turns.at(0).starts.at(0).time.timeSpec(), Qt::UTC);
}

void tst_PluginFrames::impossibleIndexes()
{
    m_frames->watch(m_plugin.get());
    for (const int index : {-1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        emit m_plugin->contentStarted(index);
    m_frames->watch(nullptr);
    QVERIFY(m_turns.isEmpty());
}

void tst_PluginFrames::newController()
{
    m_frames->watch(m_plugin.get());
    emit m_plugin->controller->dataReceived(QStringLiteral("a"));
    m_plugin->init();
    emit m_plugin->controller->dataReceived(QStringLiteral("not heard"));
    m_frames->watch(m_plugin.get());
    QCOMPARE(m_turns.size(), 1); // what the old one said is not kept back
    QCOMPARE(m_turns.at(0).chunks.at(0).text, QStringLiteral("a"));
    emit m_plugin->controller->dataReceived(QStringLiteral("b"));
    m_frames->watch(m_plugin.get()); // the same once more
    emit m_plugin->controller->dataReceived(QStringLiteral("c"));
    QTRY_COMPARE(m_turns.size(), 3);
    QCOMPARE(m_turns.at(1).chunks.at(0).text, QStringLiteral("b"));
    QCOMPARE(m_turns.at(2).chunks.size(), 1);
}

void tst_PluginFrames::pluginThatGoes()
{
    m_frames->watch(m_plugin.get());
    emit m_plugin->controller->dataReceived(QStringLiteral("last"));
    m_plugin.reset();
    QVERIFY(!m_frames->isWatching());
    m_frames->watch(nullptr);
    QCOMPARE(m_turns.size(), 1);
}

void tst_PluginFrames::noPlugin()
{
    m_frames->watch(nullptr);
    QVERIFY(!m_frames->isWatching());
    QObject other; // of another kind
    m_frames->watch(&other);
    QVERIFY(!m_frames->isWatching());
}

void tst_PluginFrames::sensorProgram()
{
    QSignalSpy started(m_frames.get(), &PluginFrames::programStarted);
    QSignalSpy stopped(m_frames.get(), &PluginFrames::programStopped);
    QSignalSpy failed(m_frames.get(), &PluginFrames::programFailed);
    m_frames->watch(m_plugin.get());
    emit m_plugin->controller->errorOccured(QStringLiteral("Failed to start."));
    QCOMPARE(failed.at(0).at(0).toString(), QStringLiteral("Failed to start."));
    QCOMPARE(m_frames->restarts(), 0);
    emit m_plugin->controller->started();
    QCOMPARE(m_frames->restarts(), 0);
    emit m_plugin->controller->started();
    emit m_plugin->controller->started();
    QCOMPARE(m_frames->restarts(), 2);
    QCOMPARE(started.count(), 3);
    emit m_plugin->controller->stopped();
    QCOMPARE(stopped.count(), 1);
    emit m_plugin->controller->started();
    QCOMPARE(m_frames->restarts(), 0);
}

QTEST_GUILESS_MAIN(tst_PluginFrames)

#include "tst_pluginframes.moc"
