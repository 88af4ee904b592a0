#include "PluginFixture.h"
#include "tests/support/Files.h"
#include "tests/support/SensorProgram.h"
#include "tests/support/Waiting.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

using namespace KrTest;
using namespace PluginTest;

namespace {

const QVector<Content> Contents{
    {20, 39, Female, false},
    {20, 39, Male, false},
    {40, 59, Female, true},
};

/// A simulated sensor beside the plug-in, which shows what @p scenario says, 20 frames a second.
bool installSensor(const LoadedPlugin &plugin, const QByteArray &scenario)
{
    const QString name = plugin.path(QStringLiteral("scenario.json"));
    qputenv("KRHVC_SCENARIO", QFile::encodeName(name));
    return writeFile(name, scenario)
        && writeFile(plugin.path(QStringLiteral("setting.ini")), "[Main]\nInterval=50\n")
        && QFile::copy(
            QStringLiteral(KRHVC_SIMULATOR_FILE), plugin.path(QStringLiteral("HvcCon.exe")));
}

/// The indexes asked for, repetitions of the last one left out.
QList<int> switches(const QSignalSpy &spy)
{
    QList<int> result;
    for (const QList<QVariant> &arguments : spy) {
        const int index = arguments.constFirst().toInt();
        if (result.isEmpty() || result.constLast() != index)
            result.append(index);
    }
    return result;
}

const QString Started = record(QStringLiteral("Notice"), QStringLiteral("HvcCon process started."));
const QString Stopped = record(QStringLiteral("Notice"), QStringLiteral("HvcCon process stopped."));

} // namespace

/// A host that deletes the plug-in as soon as it asks for a sequence.
class RuthlessHost : public QObject
{
    Q_OBJECT

public slots:
    void deleteSender() { delete sender(); }
};

class tst_EndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void switchesFollowTheViewers();
    void restrictedSwitchIsSentOnce();
    void framesInPieces();
    void portWithoutSensor();
    void crashedSensorIsStartedAgain();
    void deletionInsideTheHost();
};

void tst_EndToEnd::cleanup()
{
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    qunsetenv("KRHVC_SCENARIO");
}

void tst_EndToEnd::switchesFollowTheViewers()
{
    LoadedPlugin plugin;
    QVERIFY(installSensor(plugin, R"({
        "viewers": [
            { "gender": "female", "age": 25, "arrive": 0, "leave": 0.6 },
            { "gender": "male", "age": 30, "arrive": 0.8, "leave": 1.4 },
            { "gender": "female", "age": 70, "arrive": 1.6, "leave": 2.2 },
            { "gender": "male", "age": 70, "arrive": 2.4, "leave": 3.0 }
        ]
    })"));
    const PanelRecorder &panel = plugin.panel();
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(Contents, settings(1, 0));
    plugin->start();
    // #1, #2, the default for women; nothing for the last man.
    QTRY_COMPARE_WITH_TIMEOUT(switches(spy), QList<int>({0, 1, 2}), Patience);
    QTRY_VERIFY_WITH_TIMEOUT(plugin.log().contains(QStringLiteral("Age:70")), Patience);
    const QString manOf70 = QStringLiteral("Gender:Male ");
    QTRY_VERIFY_WITH_TIMEOUT(
        plugin.log().mid(plugin.log().lastIndexOf(QStringLiteral(" #3"))).contains(manOf70),
        Patience);

    QCOMPARE(plugin->status(), 102);
    plugin->stop();
    QCOMPARE(plugin->status(), 100);
    QCOMPARE(switches(spy), QList<int>({0, 1, 2}));
    QCOMPARE(plugin->currentSequenceNumber(), 3);
    const QString log = plugin.log();
    for (const QString &text : {QStringLiteral("Face result count:1"), QStringLiteral("Age:25"),
             QStringLiteral("The determined sequence number: #1\n"),
             QStringLiteral("The determined sequence number: #2\n"),
             QStringLiteral("The determined sequence number: #3\n")})
        QVERIFY2(log.contains(text), qPrintable(text));
    QCOMPARE(log.count(Started), 1);
    QVERIFY(log.endsWith(Stopped));
    QTRY_VERIFY(panel.statusTexts().contains(QStringLiteral("Stopped.")));
    QVERIFY(panel.noticeTexts().contains(QStringLiteral("A switch to #3 has been sent.")));
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    QCOMPARE(plugin.log(), log); // its forced end is no crash
}

void tst_EndToEnd::restrictedSwitchIsSentOnce()
{
    LoadedPlugin plugin;
    QVERIFY(installSensor(plugin,
        R"({ "viewers": [ { "gender": "female", "age": 25, "size": 300 },
                          { "gender": "male", "age": 30, "size": 200 } ] })"));
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(Contents, settings(2, AnHour));
    plugin->start();
    const QString restricted = record(QStringLiteral("Notice"),
        QStringLiteral(
            "#1 is not sent now because it is within the limited min-time(3600000 msec.)."));
    QTRY_VERIFY_WITH_TIMEOUT(plugin.log().count(restricted) >= 5, Patience);
    QCOMPARE(spy.size(), 2); // once each, the bigger face first
    QCOMPARE(switches(spy), QList<int>({0, 1}));
    QVERIFY(plugin.log().contains(QStringLiteral("The determined sequence number: #1 #2\n")));
}

void tst_EndToEnd::framesInPieces()
{
    LoadedPlugin plugin;
    QVERIFY(installSensor(plugin, R"({
        "viewers": [ { "gender": "female", "age": 25, "size": 300 },
                     { "gender": "male", "age": 30, "size": 200 } ],
        "faults": [ { "kind": "pieces", "frame": 0, "frames": 5, "pieces": 7, "pause": 30 } ]
    })"));
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(Contents, settings(1, 0));
    plugin->start();
    // Whole faces in a piece count; when the pieces end, the bigger face leads for good.
    QTRY_VERIFY_WITH_TIMEOUT(spy.size() >= 10 && plugin->currentSequenceIndex() == 0, Patience);
    const QList<int> seen = switches(spy);
    for (const int index : seen)
        QVERIFY(index == 0 || index == 1);
    QCOMPARE(plugin->status(), 102);
}

void tst_EndToEnd::portWithoutSensor()
{
    LoadedPlugin plugin;
    QVERIFY(installSensor(plugin, R"({ "absentPorts": [3] })"));
    const PanelRecorder &panel = plugin.panel();
    plugin.init(Contents);
    plugin->start();
    const QString text = QStringLiteral("Failed to open COM port.");
    QTRY_VERIFY_WITH_TIMEOUT(
        plugin.log().contains(record(QStringLiteral("Error"), text)), Patience);
    const QString row
        = QStringLiteral("<tr><td><span style=\"color:red;font-weight:bold;\">%1</span></td></tr>");
    QTRY_VERIFY(panel.statusHtml().contains(rendered(table(row.arg(text)))));
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    QCOMPARE(plugin->status(), 102); // it will be tried again
}

void tst_EndToEnd::crashedSensorIsStartedAgain()
{
    LoadedPlugin plugin;
    QVERIFY(installSensor(plugin, R"({
        "viewers": [ { "gender": "female", "age": 25 } ],
        "faults": [ { "kind": "crash", "frame": 3 } ]
    })"));
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init(Contents, settings(1, 0));
    plugin->start();
    const QString crashed = record(QStringLiteral("Error"),
        QStringLiteral("Error occured in the process controller. Crashed."));
    QTRY_COMPARE_WITH_TIMEOUT(plugin.log().count(crashed), 1, Patience);
    QElapsedTimer timer;
    timer.start();
    const int before = spy.size();
    QTRY_VERIFY_WITH_TIMEOUT(spy.size() > before, Patience);
    QVERIFY2(timer.elapsed() > 4000, "it was started again too early");
    QCOMPARE(plugin.log().count(Started), 2);
    QCOMPARE(plugin->status(), 102);
}

void tst_EndToEnd::deletionInsideTheHost()
{
    LoadedPlugin plugin;
    QVERIFY(installSensor(plugin, R"({ "viewers": [ { "gender": "female", "age": 25 } ] })"));
    plugin.init(Contents, settings(1, 0));
    const RuthlessHost host;
    connect(plugin.object(), SIGNAL(contentStarted(int)), &host, SLOT(deleteSender()));
    plugin->start();
    QTRY_VERIFY_WITH_TIMEOUT(plugin.object() == nullptr, Patience);
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    QVERIFY(plugin.log().contains(QStringLiteral("Age:25")));
}

QTEST_MAIN(tst_EndToEnd)
#include "tst_endtoend.moc"
