#include "demo/player/PluginHost.h"

#include "demo/stage/StageFile.h"
#include "host/KrPluginGuiInterface.h"

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Player;
using namespace Stage;

class tst_PluginHost : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void refusedFile_data();
    void refusedFile();
    void information();
    void callsInHostOrder();
    void update_data();
    void update();
    void updateOfNothing();
    void restart_data();
    void restart();
    void gui();
    void guiSignals();
    void lifecycle();
    void everySignal();
    void statusIsFollowed();
    void shutDownWaitsForTheStop();
    void shutDownOfAPluginThatNeverStarted();
    void pluginThatGoesFirst();
    void loadedAgain();
    void statusTexts_data();
    void statusTexts();

private:
    static QStringList calls() { return qApp->property("fakeCalls").toStringList(); }
    static StageFile stage(const QByteArray &settings = "{}");
    static void run(PluginHost *host, const QStringList &operations);
};

StageFile tst_PluginHost::stage(const QByteArray &settings)
{
    QString error;
    return StageFile::fromJson(R"({"screens": [{"id": 5, "contents": [], "plugindata": )" + settings
            + R"(}, {"id": 6, "event": []}]})",
        QStringLiteral("s.json"), &error)
        .value_or(StageFile());
}

void tst_PluginHost::run(PluginHost *host, const QStringList &operations)
{
    for (const QString &operation : operations) {
        if (operation == QLatin1String("start"))
            host->start();
        else if (operation == QLatin1String("stop"))
            host->stop();
        else
            host->pause();
    }
}

void tst_PluginHost::init()
{
    qApp->setProperty("fakeCalls", QStringList());
}

void tst_PluginHost::refusedFile_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("error"); // empty: whatever the loader says

    QTest::newRow("a file that does not exist") << "/nowhere/KrHvcP2.so"
                                                << "";
    QTest::newRow("a file that is no library") << QFINDTESTDATA("tst_pluginhost.cpp") << "";
    QTest::newRow("a plug-in of another kind")
        << KRHVC_PLAIN_PLUGIN_FILE << "The file is not a screen plug-in.";
}

void tst_PluginHost::refusedFile()
{
    QFETCH(QString, fileName);
    QFETCH(QString, error);

    if (error.isEmpty()) {
        QPluginLoader loader(fileName);
        QVERIFY(!loader.load());
        error = loader.errorString();
    }
    PluginHost host;
    QVERIFY(!host.load(fileName));
    QCOMPARE(host.errorString(), error);
    QCOMPARE(host.status(), 0);
    QVERIFY(!host.setUp(stage(), 5, QString()));
    QVERIFY(!host.start());
    QCOMPARE(host.panel(), nullptr);
}

void tst_PluginHost::information()
{
    PluginHost host;
    QVERIFY2(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)), qUtf8Printable(host.errorString()));
    const PluginInformation information = host.information();
    QCOMPARE(information.name, QStringLiteral("FakePlugin"));
    QCOMPARE(information.version, QStringLiteral("3.2.1"));
    QCOMPARE(information.vendor, QStringLiteral("Tests"));
    QCOMPARE(information.copyright, QStringLiteral("None"));
    QCOMPARE(information.url, QStringLiteral("https://example.com/fake"));
    QCOMPARE(information.description,
        QStringLiteral("Pretends to be a screen plug-in.\nWrites down what its host does."));
    QCOMPARE(information.icon.size(), QSize(24, 24));
}

void tst_PluginHost::callsInHostOrder()
{
    PluginHost host;
    QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QVERIFY(host.setUp(stage(R"({"interval": 5, "switches": []})"), 5, QStringLiteral("/logs")));
    QVERIFY(host.start());
    QCOMPARE(calls(),
        QStringList({QStringLiteral("setPath"), QStringLiteral("setLogSetting /logs"),
            QStringLiteral("setStage with 2 screens"),
            QStringLiteral("setPluginData with contents,id,plugindata"),
            QStringLiteral("setParams with 2 settings"), QStringLiteral("graphicsItem"),
            QStringLiteral("gui"), QStringLiteral("init"), QStringLiteral("start")}));
    QVERIFY(host.panel());
}

void tst_PluginHost::update_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QStringList>("after"); // what follows the initialisation
    QTest::addColumn<int>("status");

    const QString start = QStringLiteral("start");
    const QString stop = QStringLiteral("stop");
    const QString pause = QStringLiteral("pause");
    QTest::newRow("what never started stays so") << QStringList() << QStringList() << 110;
    QTest::newRow("what runs is started again") << QStringList{start} << QStringList{start} << 102;
    QTest::newRow("what is paused runs and is paused again")
        << QStringList{start, pause} << QStringList{start, pause} << 101;
    QTest::newRow("what is stopping stays so") << QStringList{start, stop} << QStringList() << 110;
}

void tst_PluginHost::update()
{
    QFETCH(QStringList, before);
    QFETCH(QStringList, after);
    QFETCH(int, status);

    PluginHost host;
    QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QVERIFY(host.setUp(stage(), 5, QString()));
    run(&host, before);
    qApp->setProperty("fakeCalls", QStringList());
    QVERIFY(host.update(stage(R"({"interval": 7})"), 5));
    QCOMPARE(calls(),
        QStringList({QStringLiteral("setStage with 2 screens"),
            QStringLiteral("setPluginData with contents,id,plugindata"), QStringLiteral("init")})
            + after);
    QCOMPARE(host.status(), status);
    QCOMPARE(host.pluginData().value(QStringLiteral("plugindata")).toMap(),
        QVariantMap({{QStringLiteral("interval"), 7}}));
}

void tst_PluginHost::restart_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<int>("status");

    const QString start = QStringLiteral("start");
    const QString stop = QStringLiteral("stop");
    const QString pause = QStringLiteral("pause");
    QTest::newRow("what never started stays so") << QStringList() << QStringList() << 110;
    QTest::newRow("what runs is started again")
        << QStringList{start} << QStringList{stop, start} << 102;
    QTest::newRow("what is paused is paused again")
        << QStringList{start, pause} << QStringList{stop, start, pause} << 101;
    QTest::newRow("what is stopping stays so") << QStringList{start, stop} << QStringList() << 104;
}

void tst_PluginHost::restart()
{
    QFETCH(QStringList, before);
    QFETCH(QStringList, calls);
    QFETCH(int, status);

    PluginHost host;
    QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QVERIFY(host.setUp(stage(), 5, QString()));
    run(&host, before);
    qApp->setProperty("fakeCalls", QStringList());
    QVERIFY(host.restart());
    QCOMPARE(tst_PluginHost::calls(), calls);
    QCOMPARE(host.status(), status);
}

void tst_PluginHost::updateOfNothing()
{
    PluginHost host;
    QVERIFY(!host.update(stage(), 5));
    QCOMPARE(host.pluginData(), QVariantMap());
    QCOMPARE(host.params(), QVariantMap());
    QCOMPARE(host.gui(), nullptr);
}

void tst_PluginHost::gui()
{
    PluginHost without;
    QVERIFY(without.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QVERIFY(without.setUp(stage(), 5, QString()));
    QCOMPARE(without.gui(), nullptr);
    without.shutDown();

    PluginHost host;
    QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QCOMPARE(host.gui(), nullptr);
    QVERIFY(host.setUp(stage(R"({"gui": true})"), 5, QString()));
    QVERIFY(host.gui());
    QCOMPARE(host.params(), QVariantMap({{QStringLiteral("gui"), true}}));
    delete host.gui()->object();
    QCOMPARE(host.gui(), nullptr);
    host.shutDown();
}

void tst_PluginHost::guiSignals()
{
    PluginHost host;
    QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QVERIFY(host.setUp(stage(R"({"gui": true})"), 5, QString()));
    QObject *const gui = host.gui()->object();

    QList<QPair<int, QList<int>>> updates;
    QMap<int, QVariant> contents;
    connect(&host, &PluginHost::screenValuesUpdated, this,
        [&updates](int screenId, const QList<int> &list) {
            updates.append({screenId, list});
        });
    connect(&host, &PluginHost::contentsRequested, this,
        [&contents](int screenId, const QMap<int, QVariant> &requested) {
            contents = requested;
            contents.insert(-1, screenId);
        });
    QVERIFY(QMetaObject::invokeMethod(
        gui, "screenValuesUpdated", Q_ARG(int, 5), Q_ARG(QList<int>, QList<int>({1, 2}))));
    const QMap<int, QVariant> requested{{2, QStringLiteral("entry")}};
    using Contents = QMap<int, QVariant>; // Q_ARG takes no comma
    QVERIFY(
        gui->metaObject()
            ->method(gui->metaObject()->indexOfSignal("requestAddContents(int,QMap<int,QVariant>)"))
            .invoke(gui, Q_ARG(int, 6),
                QGenericArgument("QMap<int,QVariant>", static_cast<const Contents *>(&requested))));
    QCOMPARE(updates, (QList<QPair<int, QList<int>>>{{5, {1, 2}}}));
    QCOMPARE(contents, (Contents{{-1, 6}, {2, QStringLiteral("entry")}}));
}

void tst_PluginHost::lifecycle()
{
    PluginHost host;
    QSignalSpy called(&host, &PluginHost::called);
    QVERIFY(called.isValid());
    QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QVERIFY(host.setUp(stage(R"({"refuses": true})"), 5, QString()));
    QVERIFY(!host.start());
    QVERIFY(host.pause());
    QVERIFY(host.reload());
    QVERIFY(host.stop());
    QList<QVariantList> expected;
    expected << QVariantList{QStringLiteral("init"), true}
             << QVariantList{QStringLiteral("start"), false}
             << QVariantList{QStringLiteral("pause"), true}
             << QVariantList{QStringLiteral("reload"), true}
             << QVariantList{QStringLiteral("stop"), true};
    QCOMPARE(QList<QVariantList>(called), expected);
}

void tst_PluginHost::everySignal()
{
    PluginHost host;
    QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QObject *const plugin = QPluginLoader(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)).instance();
    QVERIFY(plugin);

    QSignalSpy started(&host, &PluginHost::contentStarted);
    QSignalSpy others(&host, &PluginHost::contentSignalReceived);
    QSignalSpy messages(&host, &PluginHost::logMessageThrown);
    QVERIFY(started.isValid() && others.isValid() && messages.isValid());
    const QTime time(1, 2, 3);
    QVERIFY(QMetaObject::invokeMethod(
        plugin, "throwLogMessage", Q_ARG(QString, QStringLiteral("Hello")), Q_ARG(int, 4)));
    int index = 0;
    for (const char *const name : {"contentStarted", "contentPaused", "contnetStopped",
             "contentFinished", "contentHeadTransFinished", "contentTailTransStarted"})
        QVERIFY2(QMetaObject::invokeMethod(plugin, name, Q_ARG(int, index++)), name);
    QVERIFY(QMetaObject::invokeMethod(plugin, "contentTimeout", Q_ARG(int, 6), Q_ARG(QTime, time)));

    QCOMPARE(QList<QVariantList>(messages), QList<QVariantList>({{QStringLiteral("Hello"), 4}}));
    QCOMPARE(QList<QVariantList>(started), QList<QVariantList>({{0}}));
    const QList<QVariantList> expected{{QStringLiteral("contentPaused"), 1, QTime()},
        {QStringLiteral("contnetStopped"), 2, QTime()},
        {QStringLiteral("contentFinished"), 3, QTime()},
        {QStringLiteral("contentHeadTransFinished"), 4, QTime()},
        {QStringLiteral("contentTailTransStarted"), 5, QTime()},
        {QStringLiteral("contentTimeout"), 6, time}};
    QCOMPARE(QList<QVariantList>(others), expected);
}

void tst_PluginHost::statusIsFollowed()
{
    PluginHost host;
    QSignalSpy statuses(&host, &PluginHost::statusChanged);
    QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QVERIFY(host.setUp(stage(), 5, QString()));
    host.start();
    host.pause();
    host.stop();
    // The plug-in is stopped a moment later and tells nobody.
    QTRY_COMPARE(
        QList<QVariantList>(statuses), QList<QVariantList>({{110}, {102}, {101}, {104}, {100}}));
}

void tst_PluginHost::shutDownWaitsForTheStop()
{
    PluginHost host;
    QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    host.setUp(stage(), 5, QString());
    host.start();
    qApp->setProperty("fakeCalls", QStringList());
    host.shutDown();
    QCOMPARE(calls(),
        QStringList({QStringLiteral("stop"), QStringLiteral("deleted with status 100"),
            QStringLiteral("panel deleted")}));
    QCOMPARE(host.panel(), nullptr);
    QCOMPARE(host.status(), 0);
    host.shutDown();
    QCOMPARE(calls().size(), 3);
}

void tst_PluginHost::shutDownOfAPluginThatNeverStarted()
{
    {
        PluginHost host;
        QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    }
    QCOMPARE(calls(), QStringList({QStringLiteral("deleted with status 199")}));
}

void tst_PluginHost::pluginThatGoesFirst()
{
    PluginHost host;
    QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    host.setUp(stage(), 5, QString());
    host.start();
    delete QPluginLoader(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)).instance();
    QCOMPARE(host.panel(), nullptr);
    QCOMPARE(host.status(), 0);
    QVERIFY(!host.stop());
    host.shutDown();
}

void tst_PluginHost::loadedAgain()
{
    for (int i = 0; i < 3; ++i) {
        PluginHost host;
        QVERIFY(host.load(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
        QVERIFY(host.setUp(stage(), 5, QString()));
        QVERIFY(host.start());
    }
    QCOMPARE(calls().count(QStringLiteral("deleted with status 100")), 3);
}

void tst_PluginHost::statusTexts_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");

    QTest::newRow("199") << 199 << "Loaded";
    QTest::newRow("109") << 109 << "Initialising";
    QTest::newRow("110") << 110 << "Initialised";
    QTest::newRow("103") << 103 << "Starting";
    QTest::newRow("102") << 102 << "Started";
    QTest::newRow("104") << 104 << "Stopping";
    QTest::newRow("100") << 100 << "Stopped";
    QTest::newRow("101") << 101 << "Paused";
    QTest::newRow("no plug-in") << 0 << "No plug-in";
    QTest::newRow("a code of another plug-in") << 7 << "Unknown";
}

void tst_PluginHost::statusTexts()
{
    QFETCH(int, status);
    QFETCH(QString, text);

    QCOMPARE(PluginHost::statusText(status), text);
}

QTEST_MAIN(tst_PluginHost)

#include "tst_pluginhost.moc"
