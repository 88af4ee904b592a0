#include "demo/player/StagePlayer.h"

#include "demo/player/MainWindow.h"
#include "host/KrPluginGuiInterface.h"
#include "tests/gui/ModalDriver.h"

#include <QAction>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPluginLoader>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>
#include <QTreeView>

#include <memory>

using namespace Player;
using namespace Stage;

class tst_StagePlayer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void switchesShowTheCard();
    void unknownSequence();
    void idleSequence();
    void switchesAtTheEnd();
    void waitingSequenceGoesWithItsContent();
    void proofOfPlay();
    void proofOfPlayThatIsRefused();
    void logDirectory_data();
    void logDirectory();
    void panelLeavesTheStageBeforeThePluginGoes();
    void window();
    void hostPane();
    void numberKeys();
    void sequenceMenu();
    void changedSettings();
    void valueOfAnotherType();
    void changedContent();
    void addedContent();
    void refusedEdits();
    void editsOfOneMoment();
    void editsAtTheEnd();
    void saved();
    void menus();
    void menusWithoutGui();
    void menusWhenThePluginHasGone();
    void windowSaves();
    void windowCannotSave();
    void windowSavesElsewhere();
    void closing_data();
    void closing();
    void closingBelowADialog();
    void textsThatCannotBeLaidOut_data();
    void textsThatCannotBeLaidOut();

private:
    StageFile editableStage() const; // two contents, the second is switched to
    bool begin(StagePlayer *player) const;
    static Kora::KrPluginGuiInterface *gui(StagePlayer &player) { return player.host().gui(); }
    static QVariant *pluginData(StagePlayer &player) { return gui(player)->pluginData(); }
    static void announce(StagePlayer &player, int screenId = 5);
    static void request(StagePlayer &player, const QMap<int, QVariant> &contents, int screenId = 5);
    static void setInterval(StagePlayer &player, int interval);
    static QStringList calls() { return qApp->property("fakeCalls").toStringList(); }
    static QMap<int, QVariant> newContent(int index);
    QString systemError() const; // for a file in a directory that does not exist
    QJsonObject savedStage(const QString &name = QStringLiteral("s.json")) const;

    std::unique_ptr<QTemporaryDir> m_directory; // of the current test
    static StageFile stage(const QByteArray &switches);
    static QStringList details(StagePlayer &player, PlayerEvent::Kind kind);
};

StageFile tst_StagePlayer::stage(const QByteArray &switches)
{
    QString error;
    return StageFile::fromJson(
        R"({"title": "Test stage", "screens": [{"id": 5, "plugindata": {"switches": [)" + switches
            + R"(]}, "contents": [{"params": {"name": "First"}},
            {"params": {"name": "Second"}, "card": {"title": "Two", "duration": 0.5}}]}]})",
        QStringLiteral("s.json"), &error)
        .value_or(StageFile());
}

QStringList tst_StagePlayer::details(StagePlayer &player, PlayerEvent::Kind kind)
{
    QStringList details;
    for (int row = 0; row < player.log().rowCount(); ++row) {
        if (player.log().at(row).kind == kind)
            details << player.log().at(row).details;
    }
    return details;
}

void tst_StagePlayer::init()
{
    qApp->setProperty("fakeCalls", QStringList());
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
}

StageFile tst_StagePlayer::editableStage() const
{
    QString error;
    return StageFile::fromJson(R"({"title": "Test stage", "author": "kept", "screens": [
            {"id": 5, "plugindata": {"gui": true, "interval": 1000, "switches": [1]}, "contents": [
                {"params": {"name": "First"}, "note": "kept"},
                {"params": {"name": "Second"}, "card": {"duration": 0.5}}],
             "event": [{"type": 2, "direction": 1, "seq": [1, 2]}]},
            {"id": 6, "name": "Door", "event": [{"type": 2, "id": 5, "screenseq": 2}]}]})",
        m_directory->filePath(QStringLiteral("s.json")), &error)
        .value_or(StageFile());
}

bool tst_StagePlayer::begin(StagePlayer *player) const
{
    if (!player->loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)))
        return false;
    player->begin(QString());
    const bool switched = QTest::qWaitFor([player] { return player->current().number == 2; });
    qApp->setProperty("fakeCalls", QStringList());
    return switched && gui(*player);
}

void tst_StagePlayer::announce(StagePlayer &player, int screenId)
{
    QVERIFY(QMetaObject::invokeMethod(gui(player)->object(), "screenValuesUpdated",
        Q_ARG(int, screenId), Q_ARG(QList<int>, QList<int>())));
}

void tst_StagePlayer::request(
    StagePlayer &player, const QMap<int, QVariant> &contents, int screenId)
{
    QVERIFY(
        QMetaObject::invokeMethod(gui(player)->object(), "requestAddContents", Q_ARG(int, screenId),
            QGenericArgument("QMap<int,QVariant>", static_cast<const void *>(&contents))));
}

void tst_StagePlayer::setInterval(StagePlayer &player, int interval)
{
    QVariantMap screen = pluginData(player)->toMap();
    QVariantMap settings = screen.value(QStringLiteral("plugindata")).toMap();
    settings.insert(QStringLiteral("interval"), interval);
    screen.insert(QStringLiteral("plugindata"), settings);
    *pluginData(player) = screen;
    announce(player);
}

QMap<int, QVariant> tst_StagePlayer::newContent(int index)
{
    return {{index,
        QVariantMap{{QStringLiteral("type"), 8},
            {QStringLiteral("name"), QStringLiteral("New & shiny")},
            {QStringLiteral("params"), QVariantMap{{QStringLiteral("age-min"), 3}}}}}};
}

QString tst_StagePlayer::systemError() const
{
    QFile file(m_directory->filePath(QStringLiteral("none/file")));
    return file.open(QIODevice::WriteOnly) ? QString() : file.errorString();
}

QJsonObject tst_StagePlayer::savedStage(const QString &name) const
{
    QFile file(m_directory->filePath(name));
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

void tst_StagePlayer::switchesShowTheCard()
{
    StagePlayer player(stage("1, 0, 1"), 5);
    QCOMPARE(player.scene().shownNumber(), 0);
    QCOMPARE(player.current().number, 0);
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QSignalSpy changed(&player, &StagePlayer::currentChanged);
    player.begin(QString());
    QTRY_COMPARE(changed.count(), 3);
    QCOMPARE(details(player, PlayerEvent::Switch),
        QStringList({QStringLiteral("#2  Second"), QStringLiteral("#1  First"),
            QStringLiteral("#2  Second")}));
    QCOMPARE(player.current().title, QStringLiteral("Two"));
    QCOMPARE(player.scene().shownNumber(), 2);
    player.end();
    QCOMPARE(details(player, PlayerEvent::Status),
        QStringList({QStringLiteral("110  Initialised"), QStringLiteral("102  Started"),
            QStringLiteral("104  Stopping"), QStringLiteral("100  Stopped")}));
}

void tst_StagePlayer::unknownSequence()
{
    StagePlayer player(stage("2, -1, 2147483647"), 5);
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    player.begin(QString());
    QTRY_COMPARE(details(player, PlayerEvent::Switch),
        QStringList(
            {QStringLiteral("#3  (no such content)"), QStringLiteral("#0  (no such content)"),
                QStringLiteral("#2147483648  (no such content)")}));
    QCOMPARE(player.scene().shownNumber(), 0);
}

void tst_StagePlayer::idleSequence()
{
    StagePlayer player(stage("1"), 5);
    player.setRules({Programme::Switching::Now, 1, 200});
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    QSignalSpy changed(&player, &StagePlayer::currentChanged);
    player.begin(QString());
    QCOMPARE(player.scene().shownNumber(), 1);
    QTRY_COMPARE(player.current().number, 2);
    QTRY_COMPARE(changed.count(), 3);
    QCOMPARE(player.scene().shownNumber(), 1);
    QCOMPARE(details(player, PlayerEvent::Play),
        QStringList({QStringLiteral("#1  First, idle"), QStringLiteral("#1  First, idle")}));
    QCOMPARE(details(player, PlayerEvent::Switch), QStringList{QStringLiteral("#2  Second")});
}

void tst_StagePlayer::switchesAtTheEnd()
{
    StagePlayer player(stage("1, 0, 1, 0"), 5);
    player.setRules({Programme::Switching::AtEnd, 0, 0});
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    player.begin(QString());
    QTRY_COMPARE(details(player, PlayerEvent::Switch).size(), 4);
    QCOMPARE(player.current().number, 2);
    QCOMPARE(player.scene().shownNumber(), 2);
    QTRY_COMPARE(player.current().number, 1);
    QCOMPARE(player.scene().shownNumber(), 1);
    const QStringList plays = details(player, PlayerEvent::Play);
    QCOMPARE(plays.size(), 4);
    for (int i = 0; i < 3; ++i) // the time differs by a few milliseconds
        QVERIFY2(plays.at(i).endsWith(QStringLiteral(" s at the end of #2")), qPrintable(plays[i]));
    QVERIFY(plays.at(0).startsWith(QStringLiteral("#1  First, in 0.")));
    QVERIFY(plays.at(1).startsWith(QStringLiteral("#2  Second, in 0.")));
    QCOMPARE(plays.at(3), QStringLiteral("#1  First"));
}

void tst_StagePlayer::waitingSequenceGoesWithItsContent()
{
    StagePlayer player(editableStage(), 5);
    player.setRules({Programme::Switching::AtEnd, 0, 0});
    QVERIFY(begin(&player));
    QVERIFY(
        QMetaObject::invokeMethod(QPluginLoader(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)).instance(),
            "contentStarted", Q_ARG(int, 0)));
    QCOMPARE(details(player, PlayerEvent::Play).size(), 1);
    QVariantMap screen = pluginData(player)->toMap();
    screen.insert(QStringLiteral("contents"), QVariantList());
    *pluginData(player) = screen;
    announce(player);
    QTRY_COMPARE(player.current().number, 0);
    QTest::qWait(600); // the contents' duration
    QCOMPARE(details(player, PlayerEvent::Play).size(), 1);
}

void tst_StagePlayer::proofOfPlay()
{
    const QString fileName = m_directory->filePath(QStringLiteral("p.csv"));
    StagePlayer player(stage("0, 1, 7"), 5);
    player.setRules({Programme::Switching::Now, 2, 100000});
    player.setProofOfPlay(fileName);
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    player.begin(QString());
    QTRY_COMPARE(details(player, PlayerEvent::Switch).size(), 3);
    player.end();
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    QCOMPARE(lines.size(), 5); // the header, three starts and nothing behind the last line end
    QStringList starts;
    for (const QString &line : lines.mid(1, 3)) {
        const QStringList fields = line.split(QLatin1Char(','));
        QCOMPARE(fields.size(), 5);
        const QDateTime start = QDateTime::fromString(fields.at(0), Qt::ISODateWithMs);
        const QDateTime end = QDateTime::fromString(fields.at(3), Qt::ISODateWithMs);
        QVERIFY2(start.isValid() && start <= end, qUtf8Printable(line));
        starts << QStringLiteral("%1 %2 %3").arg(fields.at(1), fields.at(2), fields.at(4));
    }
    QCOMPARE(starts,
        QStringList({QStringLiteral("2 Second idle"), QStringLiteral("1 First viewer"),
            QStringLiteral("2 Second viewer")}));
}

void tst_StagePlayer::proofOfPlayThatIsRefused()
{
    const QString fileName = m_directory->filePath(QStringLiteral("none/file"));
    StagePlayer player(stage("0, 1, 0"), 5);
    player.setProofOfPlay(fileName);
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    player.begin(QString());
    QTRY_COMPARE(details(player, PlayerEvent::Switch).size(), 3);
    const QString told = QStringLiteral("Proof of play not written: %1: %2");
    QCOMPARE(details(player, PlayerEvent::Player).filter(QStringLiteral("Proof")),
        QStringList{told.arg(fileName, systemError())});
    QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("none")));
    player.end();
    QCOMPARE(details(player, PlayerEvent::Player).last(),
        QStringLiteral("Proof of play is written again"));
    QVERIFY(QFile::exists(fileName));
}

void tst_StagePlayer::logDirectory_data()
{
    QTest::addColumn<QString>("relative");
    QTest::addColumn<bool>("usable");

    QTest::newRow("a directory that has to be made") << "a/b/logs" << true;
    QTest::newRow("a directory below a file") << "file/logs" << false;
    QTest::newRow("none") << "" << false;
}

void tst_StagePlayer::logDirectory()
{
    QFETCH(QString, relative);
    QFETCH(bool, usable);

    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QString logs = relative.isEmpty() ? QString() : directory.filePath(relative);

    StagePlayer player(stage(""), 5);
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    player.begin(logs);
    const QString expected = usable ? logs : QString();
    QCOMPARE(player.logDirectory(), expected);
    const QStringList calls = qApp->property("fakeCalls").toStringList();
    QCOMPARE(calls.value(1), QStringLiteral("setLogSetting ") + expected);
    QCOMPARE(!logs.isEmpty() && QFileInfo(logs).isDir(), usable);
}

void tst_StagePlayer::panelLeavesTheStageBeforeThePluginGoes()
{
    {
        StagePlayer player(stage(""), 5);
        QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
        player.begin(QString());
        QVERIFY(player.host().panel());
    }
    QStringList calls = qApp->property("fakeCalls").toStringList();
    QCOMPARE(calls.mid(calls.size() - 3),
        QStringList({QStringLiteral("stop"), QStringLiteral("deleted with status 100"),
            QStringLiteral("panel deleted")}));
}

void tst_StagePlayer::window()
{
    StagePlayer player(stage("1"), 5);
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    MainWindow window(&player);
    window.show();
    const auto label
        = [&window](const char *name) { return window.findChild<QLabel *>(QLatin1String(name)); };
    QCOMPARE(label("status")->text(), QStringLiteral("199  Loaded"));
    QCOMPARE(label("current")->text(), QStringLiteral("Nothing switched yet"));

    player.begin(QString());
    window.showPluginInformation();
    QTRY_COMPARE(label("current")->text(), QStringLiteral("#2  Second"));
    QCOMPARE(label("status")->text(), QStringLiteral("102  Started"));
    QCOMPARE(label("name")->text(), QStringLiteral("FakePlugin 3.2.1"));
    QCOMPARE(label("vendor")->text(), QStringLiteral("Tests"));
    QVERIFY(label("icon")->pixmap());
    QCOMPARE(window.findChild<QTreeView *>(QStringLiteral("events"))->model()->rowCount(),
        player.log().rowCount());

    qApp->setProperty("fakeCalls", QStringList());
    for (const char *const name : {"stop", "start", "pause", "reload"}) {
        auto *const button = window.findChild<QPushButton *>(QLatin1String(name));
        QVERIFY2(button, name);
        QTest::mouseClick(button, Qt::LeftButton);
    }
    QCOMPARE(qApp->property("fakeCalls").toStringList(),
        QStringList({QStringLiteral("stop"), QStringLiteral("start"), QStringLiteral("pause"),
            QStringLiteral("reload")}));
    player.end();
}

void tst_StagePlayer::hostPane()
{
    QString error;
    const std::optional<StageFile> linked = StageFile::fromJson(R"({"screens": [
            {"id": 5, "plugindata": {"switches": [1], "event-sending-limit": 60000}, "contents": [
                {"params": {"name": "A", "age-min": 1, "age-max": 2, "gender": "both"}},
                {"params": {"name": "B", "age-min": 1, "age-max": 2, "gender": "both"},
                 "card": {"duration": 1}}],
             "event": [{"type": 2, "direction": 1, "seq": [1, 2]}]},
            {"id": 6, "name": "Door", "event": [{"type": 2, "id": 5, "screenseq": 1}]},
            {"id": 7, "event": [{"type": 2, "id": 5, "screenseq": 2}]}]})",
        QStringLiteral("s.json"), &error);
    QVERIFY2(linked, qUtf8Printable(error));
    StagePlayer player(*linked, 5);
    player.setRules({Programme::Switching::AtEnd, 0, 0});
    MainWindow window(&player);
    window.show();
    const auto text = [&window](const char *name) {
        return window.findChild<QLabel *>(QLatin1String(name))->text();
    };
    QCOMPARE(text("heldBack"), QStringLiteral("no screen is linked"));
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    player.begin(QString());
    QCOMPARE(text("sensorProgram"), QStringLiteral("not known")); // it has none
    QCOMPARE(text("heldBack"), QStringLiteral("by no screen"));
    QCOMPARE(text("next"), QStringLiteral("nothing waits"));
    QTRY_COMPARE(player.current().number, 2);
    QVERIFY2(text("heldBack").startsWith(QStringLiteral("screen 7 for ")),
        qUtf8Printable(text("heldBack")));
    QVERIFY(
        QMetaObject::invokeMethod(QPluginLoader(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)).instance(),
            "contentStarted", Q_ARG(int, 0)));
    QVERIFY2(text("heldBack").contains(QStringLiteral(" s, screen 7 for ")),
        qUtf8Printable(text("heldBack")));
    QVERIFY(text("heldBack").startsWith(QStringLiteral("Door for ")));
    const QString heldBack = text("heldBack");
    QVERIFY2(text("next").startsWith(QStringLiteral("#1 in ")), qUtf8Printable(text("next")));
    QTRY_COMPARE(text("next"), QStringLiteral("nothing waits"));
    QTRY_VERIFY(text("heldBack") != heldBack); // it runs down
}

void tst_StagePlayer::numberKeys()
{
    const QString proof = m_directory->filePath(QStringLiteral("p.csv"));
    StagePlayer player(editableStage(), 5);
    player.setProofOfPlay(proof);
    MainWindow window(&player);
    QVERIFY(begin(&player));
    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    for (const int key : {Qt::Key_1, Qt::Key_2, Qt::Key_9, Qt::Key_0})
        QTest::keyClick(&window, static_cast<Qt::Key>(key));
    QTest::keyClick(&window, Qt::Key_1, Qt::KeypadModifier);
    QCOMPARE(calls(),
        QStringList({QStringLiteral("requestSequenceNumber 1"),
            QStringLiteral("requestSequenceNumber 2"), QStringLiteral("requestSequenceNumber 9"),
            QStringLiteral("requestSequenceNumber 10"),
            QStringLiteral("requestSequenceNumber 1")}));
    QCOMPARE(player.current().number, 1);
    player.end();
    QTest::keyClick(&window, Qt::Key_2); // the plug-in has gone
    QFile file(proof);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList reasons;
    const QStringList lines
        = QString::fromUtf8(file.readAll()).trimmed().split(QStringLiteral("\r\n")).mid(1);
    for (const QString &line : lines)
        reasons << line.section(QLatin1Char(','), 1, 1) + line.section(QLatin1Char(','), 4);
    QCOMPARE(reasons,
        QStringList({QStringLiteral("2viewer"), QStringLiteral("1key"), QStringLiteral("2key"),
            QStringLiteral("1key")}));
}

void tst_StagePlayer::sequenceMenu()
{
    StagePlayer player(editableStage(), 5);
    MainWindow window(&player);
    auto *const menu = window.findChild<QMenu *>(QStringLiteral("sequenceMenu"));
    const auto texts = [menu] {
        QStringList list;
        for (const QAction *const action : menu->actions()) {
            if (action->isVisible())
                list << action->text();
        }
        return list;
    };
    QCOMPARE(texts().size(), 10);
    QCOMPARE(texts().mid(0, 3),
        QStringList({QStringLiteral("#1  First"), QStringLiteral("#2  Second"),
            QStringLiteral("#3  (no such content)")}));
    QVERIFY(begin(&player));
    request(player, newContent(2));
    QTRY_COMPARE(texts().at(2), QStringLiteral("#3  New && shiny"));
    menu->actions().at(2)->trigger();
    QCOMPARE(player.current().number, 3);
    menu->actions().at(19)->trigger();
    QCOMPARE(calls().last(), QStringLiteral("requestSequenceNumber 20"));
}

void tst_StagePlayer::changedSettings()
{
    StagePlayer player(editableStage(), 5);
    QVERIFY(begin(&player));
    QVERIFY(!player.isModified());
    QSignalSpy changed(&player, &StagePlayer::stageChanged);
    setInterval(player, 500);
    QCOMPARE(calls(), QStringList()); // the dialog is still at work
    QTRY_COMPARE(changed.count(), 1);
    QCOMPARE(calls(),
        QStringList({QStringLiteral("setStage with 2 screens"),
            QStringLiteral("setPluginData with contents,id,plugindata"), QStringLiteral("init"),
            QStringLiteral("start")}));
    QCOMPARE(details(player, PlayerEvent::Edit),
        QStringList{QStringLiteral("settings: interval 1000 -> 500")});
    QCOMPARE(details(player, PlayerEvent::Player).last(),
        QStringLiteral("Settings in use: gui true, interval 1000, switches "));
    QVERIFY(player.isModified());
    QCOMPARE(player.stage()
                 .screenParameters(5)
                 .value(QStringLiteral("plugindata"))
                 .toMap()
                 .value(QStringLiteral("interval"))
                 .toInt(),
        500);
    QCOMPARE(player.current().number, 2);

    setInterval(player, 1000);
    QTRY_COMPARE(changed.count(), 2);
    QVERIFY(!player.isModified());
}

void tst_StagePlayer::valueOfAnotherType()
{
    // Equal as variants, but not in the file.
    StagePlayer player(editableStage(), 5);
    QVERIFY(begin(&player));
    QVariantMap screen = pluginData(player)->toMap();
    QVariantMap settings = screen.value(QStringLiteral("plugindata")).toMap();
    settings.insert(QStringLiteral("gui"), QStringLiteral("true"));
    screen.insert(QStringLiteral("plugindata"), settings);
    *pluginData(player) = screen;
    QSignalSpy changed(&player, &StagePlayer::stageChanged);
    announce(player);
    QTRY_COMPARE(changed.count(), 1);
    QVERIFY(player.isModified());
    QCOMPARE(details(player, PlayerEvent::Edit),
        QStringList{QStringLiteral("settings: gui true -> true")});
}

void tst_StagePlayer::changedContent()
{
    StagePlayer player(editableStage(), 5);
    QVERIFY(begin(&player));
    QVariantMap screen = pluginData(player)->toMap();
    QVariantList contents = screen.value(QStringLiteral("contents")).toList();
    QVariantMap entry = contents.at(1).toMap();
    entry.insert(QStringLiteral("name"), QStringLiteral("Renamed"));
    contents[1] = entry;
    screen.insert(QStringLiteral("contents"), contents);
    *pluginData(player) = screen;
    announce(player);
    QTRY_COMPARE(player.current().name, QStringLiteral("Renamed"));
    QCOMPARE(details(player, PlayerEvent::Edit),
        QStringList{QStringLiteral("content #2: name (none) -> Renamed")});
    QCOMPARE(player.current().title, QStringLiteral("Renamed"));
    QTRY_VERIFY(!player.scene().isMoving());
    QCOMPARE(player.scene().shownNumber(), 2);

    // Contents that go take the shown card with them.
    screen.insert(QStringLiteral("contents"), QVariantList());
    *pluginData(player) = screen;
    announce(player);
    QTRY_COMPARE(player.current().number, 0);
    QCOMPARE(player.scene().shownNumber(), 0);
    QCOMPARE(details(player, PlayerEvent::Edit).mid(1),
        QStringList({QStringLiteral("content #1 removed"), QStringLiteral("content #2 removed")}));
}

void tst_StagePlayer::addedContent()
{
    StagePlayer player(editableStage(), 5);
    QVERIFY(begin(&player));
    QSignalSpy changed(&player, &StagePlayer::stageChanged);
    request(player, newContent(2));
    QTRY_COMPARE(changed.count(), 1);
    QCOMPARE(details(player, PlayerEvent::Edit),
        QStringList{QStringLiteral("content #3 added: New & shiny, linked by screen 6 Door")});
    QCOMPARE(calls().mid(2), QStringList({QStringLiteral("init"), QStringLiteral("start")}));
    QCOMPARE(pluginData(player)->toMap().value(QStringLiteral("contents")).toList().size(), 3);
    QCOMPARE(player.contents().size(), 3);
    QVERIFY(player.isModified());
    const QVariantList events
        = player.stage().screens().value(5).value(QStringLiteral("event")).toList();
    QCOMPARE(
        events.value(0).toMap().value(QStringLiteral("seq")).toList(), QVariantList({1, 2, 3}));

    QVERIFY(
        QMetaObject::invokeMethod(QPluginLoader(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)).instance(),
            "contentStarted", Q_ARG(int, 2)));
    QCOMPARE(player.current().title, QStringLiteral("New & shiny"));
    QCOMPARE(player.scene().shownNumber(), 3);
}

void tst_StagePlayer::refusedEdits()
{
    StagePlayer player(editableStage(), 5);
    QVERIFY(begin(&player));
    const QByteArray before = player.stage().toJson();
    QSignalSpy changed(&player, &StagePlayer::stageChanged);
    announce(player, 6);
    request(player, newContent(2), -1);
    request(player, newContent(7));
    request(player, {{2, QVariant()}});
    announce(player); // nothing has changed
    QTRY_COMPARE(details(player, PlayerEvent::Edit),
        QStringList({QStringLiteral("ignored, screen 6 is not played"),
            QStringLiteral("ignored, screen -1 is not played"),
            QStringLiteral("content #3 not added: contents[2]: must be an object"),
            QStringLiteral("content #8 not added: the next content is #3")}));
    QCOMPARE(player.stage().toJson(), before);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(calls(), QStringList());
}

void tst_StagePlayer::editsOfOneMoment()
{
    StagePlayer player(editableStage(), 5);
    QVERIFY(begin(&player));
    QSignalSpy changed(&player, &StagePlayer::stageChanged);
    request(player, newContent(3));
    request(player, newContent(2));
    setInterval(player, 20);
    setInterval(player, 30);
    QTRY_COMPARE(changed.count(), 1);
    QCOMPARE(details(player, PlayerEvent::Edit),
        QStringList({QStringLiteral("settings: interval 1000 -> 30"),
            QStringLiteral("content #3 added: New & shiny, linked by screen 6 Door"),
            QStringLiteral("content #4 added: New & shiny, linked by screen 6 Door")}));
    QCOMPARE(calls().count(QStringLiteral("init")), 1);
}

void tst_StagePlayer::editsAtTheEnd()
{
    StagePlayer player(editableStage(), 5);
    QVERIFY(begin(&player));
    request(player, newContent(2));
    player.end(); // runs events
    QCoreApplication::processEvents();
    QCOMPARE(details(player, PlayerEvent::Edit), QStringList());
    QCOMPARE(calls(),
        QStringList({QStringLiteral("stop"), QStringLiteral("deleted with status 100"),
            QStringLiteral("panel deleted")}));
}

void tst_StagePlayer::saved()
{
    StagePlayer player(editableStage(), 5);
    QVERIFY(begin(&player));
    QSignalSpy changed(&player, &StagePlayer::stageChanged);
    request(player, newContent(2));
    setInterval(player, 500);
    QTRY_COMPARE(changed.count(), 1);
    QString error;
    QVERIFY(!player.save(m_directory->filePath(QStringLiteral("none/s.json")), &error));
    const QString reason = m_directory->filePath(QStringLiteral("none/s.json"))
        + QLatin1String(": ") + systemError();
    QCOMPARE(error, reason);
    QCOMPARE(
        details(player, PlayerEvent::Player).last(), QLatin1String("Stage not saved: ") + reason);
    QVERIFY(player.isModified());

    const QString fileName = m_directory->filePath(QStringLiteral("s.json"));
    QVERIFY(player.save(fileName, &error));
    QVERIFY(!player.isModified());
    QCOMPARE(details(player, PlayerEvent::Player).last(),
        QLatin1String("Stage saved in ") + QDir::toNativeSeparators(fileName));
    const QByteArray expected = R"({"title": "Test stage", "author": "kept", "screens": [
        {"id": 5, "plugindata": {"gui": true, "interval": 500, "switches": [1]}, "contents": [
            {"params": {"name": "First"}, "note": "kept"},
            {"params": {"name": "Second"}, "card": {"duration": 0.5}},
            {"type": 8, "name": "New & shiny", "params": {"age-min": 3}}],
         "event": [{"type": 2, "direction": 1, "seq": [1, 2, 3]}]},
        {"id": 6, "name": "Door", "event": [{"type": 2, "id": 5, "screenseq": 2},
            {"type": 2, "id": 5, "screenseq": 3}]}]})";
    QCOMPARE(savedStage(), QJsonDocument::fromJson(expected).object());
}

void tst_StagePlayer::menus()
{
    StagePlayer player(editableStage(), 5);
    MainWindow window(&player);
    auto *const menu = window.findChild<QMenu *>(QStringLiteral("pluginMenu"));
    QVERIFY(!menu->isEnabled());
    QVERIFY(begin(&player));
    window.show();
    window.showPluginInformation();
    QVERIFY(menu->isEnabled());
    const auto texts = [](const QMenu *of) {
        QStringList list;
        for (const QAction *const action : of->actions())
            list << (action->isSeparator() ? QStringLiteral("-") : action->text());
        return list;
    };
    QCOMPARE(texts(menu),
        QStringList({QStringLiteral("Add"), QStringLiteral("&Edit content"), QStringLiteral("-"),
            QStringLiteral("Properties")}));
    auto *const editMenu = window.findChild<QMenu *>(QStringLiteral("editMenu"));
    QCOMPARE(texts(editMenu),
        QStringList(
            {QStringLiteral("Edit content #1  First"), QStringLiteral("Edit content #2  Second")}));

    // With the keyboard
    QApplication::setActiveWindow(&window);
    menu->popup(QPoint());
    QTRY_VERIFY(menu->isVisible());
    QTest::keyClick(menu, Qt::Key_E);
    QTRY_VERIFY(editMenu->isVisible());
    QTest::keyClick(editMenu, Qt::Key_Down);
    QTest::keyClick(editMenu, Qt::Key_Return);
    QTRY_COMPARE(calls(), QStringList{QStringLiteral("content dialog 1 beside something")});
    // With the mouse
    for (const int position : {0, 3}) {
        menu->popup(QPoint());
        QTRY_VERIFY(menu->isVisible());
        QTest::mouseClick(
            menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions().at(position)).center());
    }
    QTRY_COMPARE(
        calls().mid(1), QStringList({QStringLiteral("add"), QStringLiteral("screen dialog")}));

    request(player, newContent(2));
    QTRY_COMPARE(editMenu->actions().size(), 3);
    QCOMPARE(texts(editMenu).last(), QStringLiteral("Edit content #3  New && shiny"));
    QVariantMap screen = pluginData(player)->toMap();
    screen.insert(QStringLiteral("contents"), QVariantList());
    *pluginData(player) = screen;
    announce(player);
    QTRY_COMPARE(editMenu->actions().size(), 0);
    QVERIFY(!editMenu->isEnabled());
}

void tst_StagePlayer::menusWithoutGui()
{
    StagePlayer player(stage("1"), 5);
    MainWindow window(&player);
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    player.begin(QString());
    window.showPluginInformation();
    auto *const menu = window.findChild<QMenu *>(QStringLiteral("pluginMenu"));
    QVERIFY(!menu->isEnabled());
    QVERIFY(menu->isEmpty());
}

void tst_StagePlayer::menusWhenThePluginHasGone()
{
    StagePlayer player(editableStage(), 5);
    MainWindow window(&player);
    QVERIFY(begin(&player));
    window.showPluginInformation();
    player.end();
    qApp->setProperty("fakeCalls", QStringList());
    const auto *const menu = window.findChild<QMenu *>(QStringLiteral("pluginMenu"));
    for (const QAction *const action : menu->actions())
        QVERIFY(action->isSeparator() || action->menu());
    window.findChild<QAction *>(QStringLiteral("edit1"))->trigger();
    QCOMPARE(calls(), QStringList());
}

void tst_StagePlayer::windowSaves()
{
    StagePlayer player(editableStage(), 5);
    MainWindow window(&player);
    QVERIFY(begin(&player));
    QCOMPARE(window.windowTitle(), QStringLiteral("Test stage[*] - Stage Player"));
    QVERIFY(!window.isWindowModified());
    setInterval(player, 500);
    QTRY_VERIFY(window.isWindowModified());
    window.findChild<QAction *>(QStringLiteral("save"))->trigger();
    QVERIFY(!window.isWindowModified());
    QCOMPARE(savedStage(), QJsonDocument::fromJson(player.stage().toJson()).object());
}

void tst_StagePlayer::windowCannotSave()
{
    StagePlayer player(editableStage(), 5);
    MainWindow window(&player);
    QVERIFY(begin(&player));
    setInterval(player, 500);
    QTRY_VERIFY(window.isWindowModified());
    QVERIFY(m_directory->remove());
    GuiTest::ModalDriver driver;
    driver.confirmBox();
    window.findChild<QAction *>(QStringLiteral("save"))->trigger();
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(driver.boxes(),
        QStringList{GuiTest::ModalDriver::describeBox(QStringLiteral("critical"),
            QStringLiteral("Stage Not Saved"),
            player.stage().fileName() + QLatin1String(": ") + systemError(),
            QStringLiteral("Player::MainWindow"))});
    QVERIFY(window.isWindowModified());
}

void tst_StagePlayer::windowSavesElsewhere()
{
    StagePlayer player(editableStage(), 5);
    MainWindow window(&player);
    QVERIFY(begin(&player));
    auto *const action = window.findChild<QAction *>(QStringLiteral("saveAs"));
    const QString other = m_directory->filePath(QStringLiteral("other"));
    GuiTest::ModalDriver driver;
    driver.onDialog([](QDialog *dialog) { dialog->reject(); });
    action->trigger();
    QCOMPARE(QDir(m_directory->path()).entryList(QDir::Files), QStringList());
    driver.onDialog([&other](QDialog *dialog) {
        auto *const name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        name->setText(other);
        QTest::keyClick(name, Qt::Key_Return);
    });
    action->trigger();
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(savedStage(QStringLiteral("other.json")),
        QJsonDocument::fromJson(player.stage().toJson()).object());
    QCOMPARE(player.stage().fileName(), other + QLatin1String(".json"));
    QCOMPARE(window.findChild<QLabel *>(QStringLiteral("files"))->text(),
        QStringLiteral("Stage other.json, screen 5"));
}

void tst_StagePlayer::closing_data()
{
    QTest::addColumn<bool>("changed");
    QTest::addColumn<bool>("writable");
    QTest::addColumn<int>("answer"); // 0: closes the question itself
    QTest::addColumn<bool>("closes");
    QTest::addColumn<bool>("saves");

    QTest::newRow("nothing to save") << false << true << 0 << true << false;
    QTest::newRow("saved") << true << true << int(QMessageBox::Save) << true << true;
    QTest::newRow("discarded") << true << true << int(QMessageBox::Discard) << true << false;
    QTest::newRow("cancelled") << true << true << int(QMessageBox::Cancel) << false << false;
    QTest::newRow("not answered") << true << true << 0 << false << false;
    QTest::newRow("cannot be saved") << true << false << int(QMessageBox::Save) << false << false;
}

void tst_StagePlayer::closing()
{
    QFETCH(bool, changed);
    QFETCH(bool, writable);
    QFETCH(int, answer);
    QFETCH(bool, closes);
    QFETCH(bool, saves);

    StagePlayer player(editableStage(), 5);
    MainWindow window(&player);
    QVERIFY(begin(&player));
    window.show();
    GuiTest::ModalDriver driver;
    if (changed) {
        setInterval(player, 500);
        QTRY_VERIFY(window.isWindowModified());
        driver.onBox([answer](QDialog *dialog) {
            if (answer == 0)
                QTest::keyClick(dialog, Qt::Key_Escape);
            else
                QTest::mouseClick(qobject_cast<QMessageBox *>(dialog)->button(
                                      static_cast<QMessageBox::StandardButton>(answer)),
                    Qt::LeftButton);
        });
    }
    if (!writable) {
        QVERIFY(m_directory->remove());
        driver.confirmBox();
    }
    QSignalSpy closed(&window, &MainWindow::closed);
    QCOMPARE(window.close(), closes);
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(closed.count(), int(closes));
    QCOMPARE(window.isVisible(), !closes);
    QCOMPARE(!savedStage().isEmpty(), saves);
    if (changed) {
        QCOMPARE(driver.boxes().first().section(QLatin1Char('|'), 1, 2),
            QStringLiteral("Unsaved Changes|The stage \"Test stage\" has been changed.\n"
                           "Do you want to save it?"));
    }
}

void tst_StagePlayer::closingBelowADialog()
{
    StagePlayer player(editableStage(), 5);
    MainWindow window(&player);
    connect(&window, &MainWindow::closed, qApp, &QCoreApplication::quit);
    QVERIFY(begin(&player));
    window.show();
    QTimer::singleShot(0, &window, [&window] {
        QDialog dialog; // a plug-in's, of which the window is no parent
        QTimer::singleShot(0, &window, [&window] { window.close(); });
        dialog.exec();
    });
    QCOMPARE(QApplication::exec(), 0);
    player.end();
    QCOMPARE(player.host().status(), 0);
}

void tst_StagePlayer::textsThatCannotBeLaidOut_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("a megabyte of words") << QStringLiteral("word ").repeated(200 * 1000);
    QTest::newRow("a megabyte of lines") << QStringLiteral("word\n").repeated(200 * 1000);
    // Each table doubles the time.
    QTest::newRow("nested tables") << QStringLiteral("<table><tr><td>").repeated(30);
}

void tst_StagePlayer::textsThatCannotBeLaidOut()
{
    QFETCH(QString, text);

    const QJsonObject content{{QStringLiteral("name"), text},
        {QStringLiteral("params"), QJsonObject()},
        {QStringLiteral("card"),
            QJsonObject{{QStringLiteral("title"), text}, {QStringLiteral("subtitle"), text}}}};
    const QJsonObject screen{{QStringLiteral("id"), 5}, {QStringLiteral("name"), text},
        {QStringLiteral("plugindata"),
            QJsonObject{
                {QStringLiteral("gui"), true}, {QStringLiteral("switches"), QJsonArray{1}}}},
        {QStringLiteral("contents"), QJsonArray{content, content}}};
    const QJsonObject stage{
        {QStringLiteral("title"), text}, {QStringLiteral("screens"), QJsonArray{screen}}};
    QString error;
    const std::optional<StageFile> file = StageFile::fromJson(
        QJsonDocument(stage).toJson(), m_directory->filePath(QStringLiteral("s.json")), &error);
    QVERIFY2(file, qUtf8Printable(error));

    QElapsedTimer timer;
    timer.start();
    StagePlayer player(*file, 5);
    MainWindow window(&player);
    QVERIFY(begin(&player));
    window.showPluginInformation();
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.grab().isNull(), false);

    // Whatever shows the texts when the mouse rests on it
    QToolTip::showText(QPoint(), window.findChild<QLabel *>(QStringLiteral("current"))->toolTip());
    for (int row = 0; row < player.log().rowCount(); ++row) {
        const QModelIndex index = player.log().index(row, EventLog::DetailsColumn);
        QToolTip::showText(QPoint(), index.data(Qt::ToolTipRole).toString());
    }
    QToolTip::hideText();

    // The question and the complaint about the stage
    setInterval(player, 500);
    QTRY_VERIFY(window.isWindowModified());
    QVERIFY(m_directory->remove());
    GuiTest::ModalDriver driver;
    driver.onBox([](QDialog *dialog) {
        auto *const box = qobject_cast<QMessageBox *>(dialog);
        QTest::mouseClick(box->button(QMessageBox::Save), Qt::LeftButton);
    });
    driver.confirmBox();
    QVERIFY(!window.close());
    QCOMPARE(driver.failures(), QString());
    player.end();
    QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
}

QTEST_MAIN(tst_StagePlayer)

#include "tst_stageplayer.moc"
