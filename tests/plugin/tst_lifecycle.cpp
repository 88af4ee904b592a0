#include "PluginFixture.h"
#include "tests/support/Files.h"
#include "tests/support/OwnProcess.h"
#include "tests/support/SensorProgram.h"
#include "tests/support/Waiting.h"

#include <QApplication>
#include <QDate>
#include <QFileInfo>
#include <QGraphicsScene>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <limits>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using namespace KrTest;
using namespace PluginTest;

namespace {

constexpr qint64 MebiByte = 1024 * 1024;

const QString Initialized = QStringLiteral("KrHvcP2 Plugin initialized.");
const QString StartFailed = QStringLiteral("Start failed. You should call init() before start.");
const QString StartingLine = QStringLiteral("Starting...");
const QString StartedLine = QStringLiteral("Started.");
const QString PausedLine = QStringLiteral("Paused.");
const QString ReloadedLine = QStringLiteral("Reloaded.");
const QString StoppingLine = QStringLiteral("Stopping...");
const QString StoppedLine = QStringLiteral("Stopped.");

QString notice(const QString &message)
{
    return record(QStringLiteral("Notice"), message);
}

const QString ProcessStarted = notice(QStringLiteral("HvcCon process started."));
const QString ProcessStopped = notice(QStringLiteral("HvcCon process stopped."));

QStringList rendered(const QStringList &lines)
{
    QStringList result;
    for (const QString &line : lines)
        result.append(renderedText(line));
    return result;
}

/// Puts a sensor program into the plug-in's directory that notes its arguments, one line a start,
/// and ends on the first key.
bool installStandIn(const LoadedPlugin &plugin)
{
    return KrTest::installStandIn(plugin.path(QString()), "note-arguments starts\nnote-key key");
}

QByteArray starts(const LoadedPlugin &plugin)
{
    return readFile(plugin.path(QStringLiteral("starts")));
}

QObject *button(Item *panel, const QString &name)
{
    const QList<QGraphicsItem *> children = panel->childItems();
    for (QGraphicsItem *child : children) {
        QObject *object = child->toGraphicsObject();
        if (object != nullptr && object->property("buttonName").toString() == name)
            return object;
    }
    return nullptr;
}

bool click(Item *panel, const QString &name)
{
    QObject *sender = button(panel, name);
    return sender != nullptr
        && QMetaObject::invokeMethod(sender, "clicked", Q_ARG(QObject *, sender));
}

/// Puts a panel somewhere in a scene, which has one more item.
using Placing = std::function<void(Item *panel, QGraphicsScene &scene, QGraphicsItem *other)>;

} // namespace

Q_DECLARE_METATYPE(Placing)

class tst_Lifecycle : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void logBeforeAndAfterItIsSet(); // first: the log's settings last as long as the process
    void logSetting_data();
    void logSetting();
    void logKeepsItsDirectory();
    void logThatCannotBeWritten();
    void startBeforeInit();
    void stopBeforeInit();
    void pauseBeforeInit();
    void reloadBeforeInit();
    void reloadKeepsTheStatus();
    void stopWithoutProcess();
    void panelLineWithoutPanel();
    void aWholeLife();
    void secondStart();
    void initTwice();
    void manyInits();
    void initWhileTheProgramRuns();
    void settingIni_data();
    void settingIni();
    void programCalledWithTheScreensInterval();
    void portAndSpeedStick();
    void programMissing();
    void directoryIsFixedByInit();
    void stopKeyIsASpace();
    void deletionEndsTheProgram();
    void deletionRightAfterTheStart();
    void deletionWhileTheLogIsLocked();
    void outputReachesTheLog();
    void floodOfOutput();
    void longLineOfOutput();
    void visibility_data();
    void visibility();
    void visibilityChangesWithInitOnly();
    void deletionTakesThePanelAway_data();
    void deletionTakesThePanelAway();
    void panelDeletedByTheHost();
    void sceneDeletedFirst();
    void releasedPanelOutlivesThePlugin();
    void oldPanelLeavesTheNewOneAlone();
    void buttons_data();
    void buttons();
};

void tst_Lifecycle::cleanup()
{
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
}

void tst_Lifecycle::logBeforeAndAfterItIsSet()
{
    const LoadedPlugin plugin(LoadedPlugin::NoLog);
    QCOMPARE(plugin->logSetting(), QString());
    const auto write = [&plugin](const QString &message) {
        return QMetaObject::invokeMethod(
            plugin.object(), "onErrorOccured", Qt::DirectConnection, Q_ARG(QString, message));
    };
    const auto dated = [](const QString &stem, int daysAgo) {
        const QDate date = QDate::currentDate().addDays(-daysAgo);
        return QString(stem + date.toString(QStringLiteral("_yyyyMMdd")) + QStringLiteral(".txt"));
    };

    const QTemporaryDir current;
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(current.path()));
    QVERIFY(writeFile(current.filePath(QStringLiteral("old_20170101.txt")), {}));
    const bool ok = write(QStringLiteral("first\n"));
    QVERIFY(QDir::setCurrent(before));
    QVERIFY(ok);
    QCOMPARE(QDir(current.path()).entryList(QDir::Files),
        QStringList({QStringLiteral("old_20170101.txt"), dated(QStringLiteral("plugin"), 0)}));
    const QByteArray line = readFile(current.filePath(dated(QStringLiteral("plugin"), 0)));
    const QRegularExpression form(
        QStringLiteral("\\A\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d Error: first\r?\n\r?\n\\z"));
    QVERIFY2(form.match(QString::fromUtf8(line)).hasMatch(), line.constData());

    // The first record in a directory of the host's cleans up, the day's next ones do not.
    const QDir logs(plugin.logDirectory());
    QVERIFY(logs.mkpath(QStringLiteral(".")));
    const QStringList kept{dated(QStringLiteral("any"), 30), QStringLiteral("notes.txt"),
        QStringLiteral("x_2017011.txt")};
    const QStringList removed{dated(QStringLiteral("any"), 31), QStringLiteral("x_20170101.txt")};
    for (const QString &name : kept + removed)
        QVERIFY(writeFile(logs.filePath(name), {}));
    plugin->setLogSetting(plugin.logRoot());
    QVERIFY(write(QStringLiteral("\n second \n")));
    QVERIFY(writeFile(logs.filePath(QStringLiteral("late_20170101.txt")), {}));
    QVERIFY(write(QStringLiteral("third")));
    QStringList expected = kept;
    expected << dated(QStringLiteral("KrHvcP2Log"), 0) << QStringLiteral("late_20170101.txt");
    expected.sort();
    QStringList found = logs.entryList(QDir::Files);
    found.sort();
    QCOMPARE(found, expected);
    QCOMPARE(plugin.log(),
        QString(record(QStringLiteral("Error"), QStringLiteral("second"))
            + record(QStringLiteral("Error"), QStringLiteral("third"))));
}

void tst_Lifecycle::logSetting_data()
{
    QTest::addColumn<QString>("directory"); // %1: one that exists
    QTest::addColumn<QString>("expected");
    QTest::newRow("a directory") << QStringLiteral("%1") << QStringLiteral("%1/KrHvcP2");
    QTest::newRow("a directory with a slash at the end")
        << QStringLiteral("%1/") << QStringLiteral("%1/KrHvcP2");
    QTest::newRow("an empty text") << QString() << QString();
    QTest::newRow("a directory that is missing") << QStringLiteral("%1/missing") << QString();
    QTest::newRow("a file") << QStringLiteral("%1/file") << QString();
}

void tst_Lifecycle::logSetting()
{
    QFETCH(QString, directory);
    QFETCH(QString, expected);
    const LoadedPlugin plugin;
    const QTemporaryDir root;
    QVERIFY(writeFile(root.filePath(QStringLiteral("file")), {}));
    plugin->setLogSetting(directory.replace(QStringLiteral("%1"), root.path()));
    QCOMPARE(plugin->logSetting(), expected.replace(QStringLiteral("%1"), root.path()));
    QVERIFY(!QFileInfo::exists(root.filePath(QStringLiteral("KrHvcP2")))); // not before a record
    plugin->setLogSetting(plugin.logRoot()); // the log goes on when the other directory has gone
}

void tst_Lifecycle::logKeepsItsDirectory()
{
    const LoadedPlugin plugin;
    plugin->setLogSetting(QString());
    QCOMPARE(plugin->logSetting(), QString());
    plugin->setLogSetting(plugin.path(QStringLiteral("missing")));
    QCOMPARE(plugin->logSetting(), QString());
    QVERIFY(QMetaObject::invokeMethod(plugin.object(), "onStarted"));
    QCOMPARE(plugin.log(), ProcessStarted);
    QVERIFY(!QFileInfo::exists(plugin.path(QStringLiteral("missing"))));
}

void tst_Lifecycle::logThatCannotBeWritten()
{
    const LoadedPlugin plugin;
    QVERIFY(writeFile(plugin.logDirectory(), "in the way")); // a file where the directory belongs
    QVERIFY(QMetaObject::invokeMethod(plugin.object(), "onStarted"));
    QCOMPARE(readFile(plugin.logDirectory()), QByteArrayLiteral("in the way"));
    QCOMPARE(QDir(plugin.logRoot()).entryList(QDir::Files),
        QStringList({QStringLiteral("KrHvcP2")})); // no lock file either
}

void tst_Lifecycle::startBeforeInit()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    QCOMPARE(plugin->status(), 199);
    QCOMPARE(plugin->start(), false);
    QCOMPARE(plugin->status(), 199);
    QTRY_COMPARE(panel.statusHtml(), rendered(QStringList({StartFailed})));
    QCOMPARE(plugin.log(), QString());
    QVERIFY(plugin.controllers().isEmpty());
}

void tst_Lifecycle::stopBeforeInit()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    QCOMPARE(plugin->stop(), true);
    QCOMPARE(plugin->status(), 199);
    plugin->reload(); // a line that is shown, so that an earlier one would have been seen
    QTRY_COMPARE(panel.statusHtml(), rendered(QStringList({ReloadedLine})));
    QCOMPARE(plugin.log(), QString());
}

void tst_Lifecycle::pauseBeforeInit()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    QCOMPARE(plugin->pause(), true);
    QCOMPARE(plugin->status(), 101);
    QTRY_COMPARE(panel.statusHtml(), rendered(QStringList({PausedLine})));
    QCOMPARE(plugin.log(), QString());
}

void tst_Lifecycle::reloadBeforeInit()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    QCOMPARE(plugin->reload(), true);
    QCOMPARE(plugin->status(), 199);
    QTRY_COMPARE(panel.statusHtml(), rendered(QStringList({ReloadedLine})));
}

void tst_Lifecycle::reloadKeepsTheStatus()
{
    const LoadedPlugin plugin;
    plugin->init();
    plugin->reload();
    QCOMPARE(plugin->status(), 110);
    plugin->pause();
    plugin->reload();
    QCOMPARE(plugin->status(), 101);
}

void tst_Lifecycle::stopWithoutProcess()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    plugin->init();
    QCOMPARE(plugin->stop(), true);
    QCOMPARE(plugin->status(), 104); // nothing that could report its end
    QTRY_COMPARE(panel.statusHtml(), rendered(QStringList({Initialized, StoppingLine})));
    QCOMPARE(plugin->status(), 104);
    QCOMPARE(plugin.log(), QString());
}

void tst_Lifecycle::panelLineWithoutPanel()
{
    const LoadedPlugin plugin; // which nobody has asked for its panel
    QCOMPARE(plugin->start(), false);
    QCOMPARE(plugin->stop(), true);
    QCOMPARE(plugin->pause(), true);
    QCOMPARE(plugin->reload(), true);
    plugin->requestSequenceIndex(0);
    QCOMPARE(plugin->status(), 101);
}

void tst_Lifecycle::aWholeLife()
{
    LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    const PanelRecorder &panel = plugin.panel();
    QStringList lines;

    QCOMPARE(plugin->init(), true);
    QCOMPARE(plugin->status(), 110);
    lines << Initialized;

    QCOMPARE(plugin->start(), true);
    QCOMPARE(plugin->status(), 102);
    lines << StartingLine << StartedLine;
    QTRY_COMPARE_WITH_TIMEOUT(starts(plugin), QByteArrayLiteral("3 921600 500\n"), Patience);
    QTRY_COMPARE_WITH_TIMEOUT(plugin.log(), ProcessStarted, Patience);
    QCOMPARE(plugin->status(), 102);

    QCOMPARE(plugin->pause(), true);
    QCOMPARE(plugin->status(), 101);
    lines << PausedLine;
    QCOMPARE(plugin->reload(), true);
    QCOMPARE(plugin->status(), 101);
    lines << ReloadedLine;
    QTRY_COMPARE(panel.statusHtml(), rendered(lines));
    QCOMPARE(sensorProcessCount(), 1); // pausing does not reach it

    QCOMPARE(plugin->stop(), true);
    QCOMPARE(plugin->status(), 100);
    lines << StoppingLine << StoppedLine;
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    QTRY_COMPARE(panel.statusHtml(), rendered(lines));
    QCOMPARE(plugin.log(), QString(ProcessStarted + ProcessStopped)); // and no crash

    QCOMPARE(plugin->stop(), true); // nothing is left to stop
    QCOMPARE(plugin->status(), 104);
    lines << StoppingLine;

    QCOMPARE(plugin->start(), true);
    QCOMPARE(plugin->status(), 102);
    lines << StartingLine << StartedLine;
    QTRY_COMPARE_WITH_TIMEOUT(
        starts(plugin), QByteArrayLiteral("3 921600 500\n3 921600 500\n"), Patience);
    QTRY_COMPARE(panel.statusHtml(), rendered(lines));
    QTRY_COMPARE(plugin.log(), QString(ProcessStarted + ProcessStopped + ProcessStarted));
    QCOMPARE(panel.noticeHtml(), QStringList());
}

void tst_Lifecycle::secondStart()
{
    const LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    plugin->init();
    plugin->start();
    QCOMPARE(plugin->start(), true); // while the first one is still on its way
    QTRY_VERIFY_WITH_TIMEOUT(!starts(plugin).isEmpty(), Patience);
    QTRY_COMPARE_WITH_TIMEOUT(plugin.log(), ProcessStarted, Patience);
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 1, Patience);

    const QByteArray before = starts(plugin);
    QCOMPARE(plugin->start(), true); // while it runs
    QCOMPARE(plugin->status(), 102);
    plugin->stop();
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    QCOMPARE(starts(plugin), before);
    QVERIFY(plugin.log().endsWith(ProcessStopped));
}

void tst_Lifecycle::initTwice()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    plugin->init();
    const QPointer<QObject> first = plugin.controllers().value(0);
    QVERIFY(!first.isNull());
    plugin->init();
    QCOMPARE(plugin->status(), 110);
    QVERIFY(first.isNull());
    QCOMPARE(plugin.controllers().size(), 1);

    // Each of its signals arrives once.
    QObject *controller = plugin.controllers().constFirst();
    const auto emitText = [controller](const char *signal, const QString &text) {
        return QMetaObject::invokeMethod(controller, signal, Q_ARG(QString, text));
    };
    QVERIFY(emitText("dataReceived", QStringLiteral("Failed to do it")));
    QVERIFY(emitText("startingFailed", QStringLiteral("one")));
    QVERIFY(emitText("errorOccured", QStringLiteral("two")));
    QVERIFY(emitText("criticalErrorOccured", QStringLiteral("three")));
    QVERIFY(QMetaObject::invokeMethod(controller, "started"));
    QCOMPARE(plugin->status(), 110);
    QVERIFY(QMetaObject::invokeMethod(controller, "stopped"));
    QCOMPARE(plugin->status(), 100);
    QCOMPARE(plugin.log(),
        QString(record(QStringLiteral("Error"), QStringLiteral("Failed to do it"))
            + record(QStringLiteral("Critical"), QStringLiteral("one"))
            + record(QStringLiteral("Error"), QStringLiteral("two"))
            + record(QStringLiteral("Critical"), QStringLiteral("three")) + ProcessStarted
            + ProcessStopped));
    const QString row = QStringLiteral(
        "<tr><td><span style=\"color:red;font-weight:bold;\">Failed to do it</span></td></tr>");
    QStringList messages = rendered(QStringList({Initialized, Initialized}));
    messages << PluginTest::rendered(table(row)) << renderedText(StoppedLine);
    QTRY_COMPARE(panel.statusHtml(), messages);
}

void tst_Lifecycle::manyInits()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    for (int i = 0; i < 50; ++i)
        QCOMPARE(plugin->init(), true);
    QCOMPARE(plugin.controllers().size(), 1);
    QVERIFY(QMetaObject::invokeMethod(plugin.controllers().constFirst(), "started"));
    QCOMPARE(plugin.log(), ProcessStarted);
    QTRY_COMPARE(panel.statusTexts().size(), 50);
}

void tst_Lifecycle::initWhileTheProgramRuns()
{
    const LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    plugin->init();
    plugin->start();
    QTRY_VERIFY_WITH_TIMEOUT(!starts(plugin).isEmpty(), Patience);
    QTRY_COMPARE_WITH_TIMEOUT(plugin.log(), ProcessStarted, Patience);
    plugin->init();
    QCOMPARE(sensorProcessCount(), 0);
    QCOMPARE(plugin->status(), 110);
    QCOMPARE(plugin.log(), ProcessStarted); // neither stopped nor crashed
}

void tst_Lifecycle::settingIni_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("arguments"); // port, speed, interval

    const auto row = [](const char *name, const char *content, const char *arguments) {
        QTest::newRow(name) << QByteArray(content) << QByteArray(arguments);
    };
    row("an empty file", "", "3 921600 500");
    row("only the port", "[Main]\nPort=5\n", "5 921600 500");
    row("only the speed", "[Main]\nSpeed=9600\n", "3 9600 500");
    row("only the interval", "[Main]\nInterval=250\n", "3 921600 250");
    row("all three, with line ends of Windows", "[Main]\r\nInterval=1\r\nSpeed=2\r\nPort=4\r\n",
        "4 2 1");
    row("a speed that is no number", "[Main]\nSpeed=fast\n", "3 0 500");
    row("a port without value", "[Main]\nPort=\n", "0 921600 500");
    row("a fraction", "[Main]\nInterval=7.5\n", "3 921600 0");
    row("a negative port", "[Main]\nPort=-1\n", "-1 921600 500");
    row("a quoted number", "[Main]\nPort=\"7\"\n", "7 921600 500");
    row("a number that does not fit wraps around", "[Main]\nSpeed=99999999999\n",
        "3 1215752191 500");
    row("another group", "[Other]\nPort=5\n", "3 921600 500");
    row("no group", "Port=5\n", "3 921600 500");
    row("the group twice", "[Main]\nPort=5\n[Main]\nPort=6\n", "6 921600 500");
    row("comments and other keys", "; \xc3\xbc\n[Main]\nBaud=1\n;Speed=1\nPort=5\n",
        "5 921600 500");
    row("no text at all", "\x01\x02\xff\xfe]=[\x7f\n\n==\n[", "3 921600 500");
    row("a directory of that name", "DIRECTORY", "3 921600 500");
#ifdef Q_OS_UNIX
    row("a pipe of that name", "PIPE", "3 921600 500");
#endif
    row("no such file", "NOTHING", "3 921600 500");
}

void tst_Lifecycle::settingIni()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, arguments);
    const LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    const QString name = plugin.path(QStringLiteral("setting.ini"));
    if (content == "DIRECTORY")
        QVERIFY(QDir().mkdir(name));
#ifdef Q_OS_UNIX
    else if (content == "PIPE")
        QCOMPARE(mkfifo(QFile::encodeName(name).constData(), 0600), 0);
#endif
    else if (content != "NOTHING")
        QVERIFY(writeFile(name, content));
    plugin->init();
    QCOMPARE(plugin->start(), true);
    QCOMPARE(plugin->status(), 102);
    QTRY_COMPARE_WITH_TIMEOUT(starts(plugin), QByteArray(arguments + '\n'), Patience);
}

void tst_Lifecycle::programCalledWithTheScreensInterval()
{
    const LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    QVERIFY(writeFile(plugin.path(QStringLiteral("setting.ini")), "[Main]\nPort=5\n"));
    plugin->init();
    plugin->setParams({{QStringLiteral("interval"), 2000}}); // read when the program starts
    plugin->start();
    QTRY_COMPARE_WITH_TIMEOUT(starts(plugin), QByteArrayLiteral("5 921600 2000\n"), Patience);
}

void tst_Lifecycle::portAndSpeedStick()
{
    const LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    const QString ini = plugin.path(QStringLiteral("setting.ini"));
    QVERIFY(writeFile(ini, "[Main]\nPort=7\nSpeed=9600\nInterval=50\n"));
    plugin->init();
    plugin->start();
    QTRY_COMPARE_WITH_TIMEOUT(starts(plugin), QByteArrayLiteral("7 9600 50\n"), Patience);
    plugin->stop();
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);

    QVERIFY(QFile::remove(ini));
    plugin->start(); // reads the file again; the interval is the screen's
    QTRY_COMPARE_WITH_TIMEOUT(
        starts(plugin), QByteArrayLiteral("7 9600 50\n7 9600 500\n"), Patience);

    QVERIFY(QFile::remove(plugin.path(QStringLiteral("starts"))));
    plugin->init(); // a new controller with its own defaults
    plugin->start();
    QTRY_COMPARE_WITH_TIMEOUT(starts(plugin), QByteArrayLiteral("3 921600 500\n"), Patience);
}

void tst_Lifecycle::programMissing()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    plugin->init();
    QCOMPARE(plugin->start(), true);
    QTRY_COMPARE_WITH_TIMEOUT(plugin.log(),
        record(QStringLiteral("Error"),
            QStringLiteral("Error occured in the process controller. Failed to start.")),
        Patience);
    QCOMPARE(plugin->status(), 102);
    QTRY_COMPARE(
        panel.statusHtml(), rendered(QStringList({Initialized, StartingLine, StartedLine})));
    QCOMPARE(plugin->stop(), true);
    QCOMPARE(plugin->status(), 100); // the one that failed counts as a process
}

void tst_Lifecycle::directoryIsFixedByInit()
{
    const LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    const QTemporaryDir other;
    QVERIFY(writeFile(other.filePath(QStringLiteral("setting.ini")), "[Main]\nPort=8\nSpeed=1\n"));
    plugin->init();
    plugin->setPath(other.path());
    plugin->start(); // the program from the old directory, the file from the new one
    QTRY_COMPARE_WITH_TIMEOUT(starts(plugin), QByteArrayLiteral("8 1 500\n"), Patience);
}

void tst_Lifecycle::stopKeyIsASpace()
{
    const LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    const QString key = plugin.path(QStringLiteral("key"));
    plugin->init();
    plugin->start();
    QTRY_COMPARE_WITH_TIMEOUT(plugin.log(), ProcessStarted, Patience);
    plugin->stop();
    // Its end is forced as soon as events are handled; until then it can see the key.
    QVERIFY(waitWithoutEvents([&key] { return !readFile(key).isEmpty(); }));
    QCOMPARE(readFile(key), QByteArrayLiteral(" "));
}

void tst_Lifecycle::deletionEndsTheProgram()
{
    LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    plugin->init();
    plugin->start();
    QTRY_VERIFY_WITH_TIMEOUT(!starts(plugin).isEmpty(), Patience);
    QTRY_COMPARE_WITH_TIMEOUT(plugin.log(), ProcessStarted, Patience);
    plugin.destroy();
    QCOMPARE(sensorProcessCount(), 0);
    QCOMPARE(plugin.log(), QString(ProcessStarted + ProcessStopped));
}

void tst_Lifecycle::deletionRightAfterTheStart()
{
    LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    plugin->init();
    plugin->start();
    plugin.destroy();
    QCOMPARE(sensorProcessCount(), 0);
    QVERIFY(plugin.log().endsWith(ProcessStopped));
}

void tst_Lifecycle::deletionWhileTheLogIsLocked()
{
    LoadedPlugin plugin;
    QVERIFY(installStandIn(plugin));
    plugin->init();
    plugin->start();
    QTRY_COMPARE_WITH_TIMEOUT(plugin.log(), ProcessStarted, Patience);
    const QString lock = plugin.takeLogLock();
    int events = 0;
    const QObject host; // its event goes with it
    QTimer::singleShot(0, &host, [&] { ++events; }); // say, it deletes the plug-in once more
    QElapsedTimer stopwatch;
    stopwatch.start();
    plugin.destroy();
    QVERIFY(stopwatch.elapsed() < 8000); // the log's own patience would be 10 s
    QCOMPARE(events, 0);
    QCOMPARE(sensorProcessCount(), 0);
    QCOMPARE(plugin.log(), ProcessStarted);
    QVERIFY(QFile::exists(lock));
}

void tst_Lifecycle::outputReachesTheLog()
{
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    QVERIFY(writeFile(
        plugin.path(QStringLiteral("output")), "Face result count:0\r\nPress Space Key to end: "));
    QVERIFY(writeFile(plugin.path(QStringLiteral("errors")), "standard error goes nowhere\n"));
    QVERIFY(KrTest::installStandIn(plugin.path(QString()), "copy-error errors\ncopy output\nkey"));
    plugin->init();
    plugin->start();
    const QString row = QStringLiteral(
        "<tr><td><span style=\"color:orange;\">Face result count:0</span></td></tr>");
    // The system may report the output before the start.
    const QString output = notice(QStringLiteral("Face result count:0"));
    QTRY_COMPARE_WITH_TIMEOUT(plugin.log().size(), ProcessStarted.size() + output.size(), Patience);
    const QString log = plugin.log();
    QCOMPARE(
        log, QString(log.startsWith(output) ? output + ProcessStarted : ProcessStarted + output));
    QTRY_COMPARE(panel.statusHtml(),
        QStringList(rendered(QStringList({Initialized, StartingLine, StartedLine}))
            << PluginTest::rendered(table(row))));
}

void tst_Lifecycle::floodOfOutput()
{
    LoadedPlugin plugin;
    QVERIFY(KrTest::installStandIn(plugin.path(QString()), "flood"));
    Item *panel = plugin->graphicsItem();
    const int atRest = panel->childItems().size() + 1; // with one message
    plugin->init();

    // How much comes at once is the machine's matter, and what was freed may stay resident: only
    // what is left behind makes the process larger each time.
    qint64 before = residentMemory();
    qint64 leastGrowth = std::numeric_limits<qint64>::max();
    for (int i = 0; i < 4; ++i) {
        plugin->start();
        QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 1, Patience);
        QTest::qWait(300);

        // It can be stopped by hand, and leaves nothing behind.
        QVERIFY(click(panel, QStringLiteral("stop")));
        QCOMPARE(plugin->status(), 100);
        QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
        QTRY_COMPARE_WITH_TIMEOUT(panel->childItems().size(), atRest, Patience);
        const qint64 after = residentMemory();
        leastGrowth = std::min(leastGrowth, after - before);
        before = after;
    }
    QVERIFY2(leastGrowth < 8 * MebiByte, QByteArray::number(leastGrowth).constData());
}

void tst_Lifecycle::longLineOfOutput()
{
    LoadedPlugin plugin;
    QVERIFY(writeFile(plugin.path(QStringLiteral("frame")),
        '\n' + faceLines(0, 100, 25, QStringLiteral("Male")).toUtf8()));
    QVERIFY(KrTest::installStandIn(
        plugin.path(QString()), "line 16\ntouch done\nwait go\ncopy frame\nkey"));
    Item *panel = plugin->graphicsItem();
    const int atRest = panel->childItems().size() + 1; // with one message
    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    plugin.init({{20, 30, QStringLiteral("both"), true}}, settings(1, 0));
    const qint64 before = residentMemory();
    plugin->start();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(plugin.path(QStringLiteral("done"))), Patience);
    QTRY_COMPARE_WITH_TIMEOUT(panel->childItems().size(), atRest, Patience);
    const qint64 growth = residentMemory() - before;
    QVERIFY2(growth < 16 * MebiByte, QByteArray::number(growth).constData());

    // The next frame counts.
    QVERIFY(spy.isEmpty());
    QVERIFY(writeFile(plugin.path(QStringLiteral("go"))));
    QTRY_COMPARE_WITH_TIMEOUT(spy.size(), 1, Patience);
}

void tst_Lifecycle::visibility_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("expected");
    QTest::newRow("never set") << QVariant() << false;
    QTest::newRow("true") << QVariant(true) << true;
    QTest::newRow("false") << QVariant(false) << false;
    QTest::newRow("the text TRUE") << QVariant(QStringLiteral("TRUE")) << true;
    QTest::newRow("the text yes") << QVariant(QStringLiteral("yes")) << false;
    QTest::newRow("the number 1") << QVariant(1) << false;
}

void tst_Lifecycle::visibility()
{
    QFETCH(QVariant, value);
    QFETCH(bool, expected);
    const LoadedPlugin plugin;
    if (value.isValid())
        plugin->setParams({{QStringLiteral("Display-Monitoring"), value}});
    for (const bool before : {true, false}) {
        plugin->graphicsItem()->setVisible(before);
        plugin->init();
        QCOMPARE(plugin->graphicsItem()->isVisible(), expected);
    }
}

void tst_Lifecycle::visibilityChangesWithInitOnly()
{
    const LoadedPlugin plugin;
    const QString key = QStringLiteral("display-monitoring");
    plugin->setParams({{key, true}});
    plugin->init();
    Item *item = plugin->graphicsItem();
    plugin->setParams({{key, false}});
    QVERIFY(item->isVisible());
    plugin->setPluginData(screenData({}, {{key, QStringLiteral("false")}}));
    QVERIFY(QMetaObject::invokeMethod(plugin.object(), "onScreenValuesUpdated",
        Q_ARG(int, ScreenId), Q_ARG(QList<int>, QList<int>())));
    QVERIFY(item->isVisible());
    plugin->reload();
    plugin->pause();
    QVERIFY(item->isVisible());
    plugin->init();
    QCOMPARE(plugin->graphicsItem(), item);
    QVERIFY(!item->isVisible());
}

void tst_Lifecycle::deletionTakesThePanelAway_data()
{
    QTest::addColumn<Placing>("place");
    QTest::newRow("nowhere") << Placing([](Item *, QGraphicsScene &, QGraphicsItem *) {});
    QTest::newRow("in a scene") << Placing(
        [](Item *item, QGraphicsScene &scene, QGraphicsItem *) { scene.addItem(item); });
    QTest::newRow("under an item of a scene") << Placing(
        [](Item *item, QGraphicsScene &, QGraphicsItem *parent) { item->setParentItem(parent); });
}

void tst_Lifecycle::deletionTakesThePanelAway()
{
    QFETCH(Placing, place);
    QGraphicsScene scene;
    QGraphicsItem *parent = scene.addRect(0, 0, 1, 1);
    LoadedPlugin plugin;
    const QPointer<QObject> panel = dynamic_cast<QObject *>(plugin->graphicsItem());
    place(plugin->graphicsItem(), scene, parent);
    plugin->init();
    plugin.destroy();
    QVERIFY(panel.isNull());
    QCOMPARE(scene.items(), QList<QGraphicsItem *>({parent}));
    QVERIFY(parent->childItems().isEmpty());
}

void tst_Lifecycle::panelDeletedByTheHost()
{
    LoadedPlugin plugin;
    plugin->init();
    QObject *controller = plugin.controllers().constFirst();
    delete plugin->graphicsItem();
    QCOMPARE(plugin->stop(), true);
    QCOMPARE(plugin->status(), 104);
    QCOMPARE(plugin->pause(), true);
    QVERIFY(plugin.receive(QStringLiteral("Face result count:0")));
    QCOMPARE(plugin.log(), notice(QStringLiteral("Face result count:0")));
    QCOMPARE(plugin.controllers(), QObjectList({controller}));

    const PanelRecorder &panel = plugin.panel(); // a new one
    plugin->init();
    QTRY_COMPARE(panel.statusTexts(), QStringList({Initialized}));
    QCOMPARE(plugin.controllers().size(), 1);
}

void tst_Lifecycle::sceneDeletedFirst()
{
    LoadedPlugin plugin;
    auto scene = std::make_unique<QGraphicsScene>();
    scene->addItem(plugin->graphicsItem());
    plugin->init();
    scene.reset(); // the panel goes with it
    plugin->reload();
    const PanelRecorder &panel = plugin.panel();
    plugin->reload();
    QTRY_COMPARE(panel.statusTexts(), QStringList({ReloadedLine}));
}

void tst_Lifecycle::releasedPanelOutlivesThePlugin()
{
    LoadedPlugin plugin;
    const std::unique_ptr<Item> panel(plugin->graphicsItem());
    plugin->init();
    plugin->releaseGraphicsItem();
    plugin.destroy();
    for (const QString &name : {QStringLiteral("start"), QStringLiteral("stop"),
             QStringLiteral("#1"), QStringLiteral("#20")})
        QVERIFY(click(panel.get(), name)); // nobody is there to do anything
    panel->setItemSize(800, 600);
    QCOMPARE(panel->rect(), QRectF(0, 0, 800, 600));
}

void tst_Lifecycle::oldPanelLeavesTheNewOneAlone()
{
    LoadedPlugin plugin;
    std::unique_ptr<Item> old(plugin->graphicsItem());
    plugin->releaseGraphicsItem();
    Item *current = plugin->graphicsItem();
    QVERIFY(current != old.get());
    const PanelRecorder &panel = plugin.panel();
    old.reset();
    QCOMPARE(plugin->graphicsItem(), current);
    plugin->reload();
    QTRY_COMPARE(panel.statusTexts(), QStringList({ReloadedLine}));
}

void tst_Lifecycle::buttons_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QStringList>("statusLines");
    QTest::addColumn<QString>("noticeLine");
    QTest::addColumn<QList<int>>("requests");
    QTest::addColumn<int>("status");

    QTest::newRow("Stop") << QStringLiteral("stop") << QStringList({StoppingLine}) << QString()
                          << QList<int>() << 104;
    QTest::newRow("a number with a content")
        << QStringLiteral("#2") << QStringList() << QStringLiteral("A switch to #2 has been sent.")
        << QList<int>({1}) << 110;
    QTest::newRow("a number without content")
        << QStringLiteral("#20") << QStringList() << QStringLiteral("Sequence #20 is invalid.")
        << QList<int>() << 110;
}

void tst_Lifecycle::buttons()
{
    QFETCH(QString, button);
    QFETCH(QStringList, statusLines);
    QFETCH(QString, noticeLine);
    QFETCH(QList<int>, requests);
    QFETCH(int, status);
    LoadedPlugin plugin;
    const PanelRecorder &panel = plugin.panel();
    QVERIFY(click(plugin->graphicsItem(), QStringLiteral("start"))); // not initialized yet
    plugin.init({{20, 30, QStringLiteral("both"), true}, {31, 40, QStringLiteral("both"), true}});

    const QSignalSpy spy(plugin.object(), SIGNAL(contentStarted(int)));
    QVERIFY(click(plugin->graphicsItem(), button));
    QCOMPARE(plugin->status(), status);
    QTRY_COMPARE(
        panel.statusTexts(), QStringList(QStringList({StartFailed, Initialized}) + statusLines));
    QTRY_COMPARE(panel.noticeTexts().join(QLatin1Char('|')), noticeLine);
    QList<int> started;
    for (const QList<QVariant> &arguments : spy)
        started.append(arguments.constFirst().toInt());
    QCOMPARE(started, requests);
}

QTEST_MAIN(tst_Lifecycle)
#include "tst_lifecycle.moc"
