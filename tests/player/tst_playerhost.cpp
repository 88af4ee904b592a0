#include "demo/player/MainWindow.h"
#include "demo/player/StagePlayer.h"
#include "demo/player/StageView.h"
#include "host/KrPluginGraphicsItem.h"
#include "sensor/ProcessList.h"
#include "tests/support/Files.h"

#include <QApplication>
#include <QGraphicsObject>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Player;

/// The product at work before nobody: a user starts sequences by panel and keyboard.
class tst_PlayerHost : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void sensorProgram();
    void panelAndKeys();

private:
    void click(const QString &buttonName) const;
    void press(Qt::Key key) const { QTest::keyClick(m_window.get(), key); }
    QString text(const char *label) const
    {
        return m_window->findChild<QLabel *>(QLatin1String(label))->text();
    }
    int switchCount() const;
    QString file(const QString &name) const { return m_directory->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_directory; // of the current test
    std::unique_ptr<StagePlayer> m_player;
    std::unique_ptr<MainWindow> m_window; // goes before the player
};

void tst_PlayerHost::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
    const QString recording = file(QStringLiteral("recording.txt"));
    QVERIFY(KrTest::writeFile(recording, "Face result count:0\n"));
    qputenv("KRHVC_REPLAY", QFile::encodeName(recording));

    QString error;
    const auto stage = Stage::StageFile::fromJson(R"({"screens": [
        {"id": 1, "plugindata": {"display-monitoring": true, "interval": 1000,
                                 "event-sending-limit": 60000},
         "contents": [
            {"type": 8, "params": {"name": "Women", "age-min": 20, "age-max": 39,
                                   "gender": "female", "default": "true"}},
            {"type": 8, "params": {"name": "Men", "age-min": 20, "age-max": 39,
                                   "gender": "male", "default": "true"}}],
         "event": [{"type": 2, "direction": 1, "seq": []}]},
        {"id": 2, "name": "Door", "event": [{"type": 2, "id": 1, "screenseq": 1}]},
        {"id": 3, "name": "Counter", "event": [{"type": 2, "id": 1, "screenseq": 2}]}]})",
        file(QStringLiteral("s.json")), &error);
    QVERIFY2(stage, qUtf8Printable(error));
    m_player = std::make_unique<StagePlayer>(*stage, 1);
    m_player->setProofOfPlay(file(QStringLiteral("p.csv")));
    QVERIFY(m_player->loadPlugin(QStringLiteral(KRHVC_PLUGIN_FILE)));
    m_window = std::make_unique<MainWindow>(m_player.get());
    m_window->show();
    QApplication::setActiveWindow(m_window.get());
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_player->begin(file(QStringLiteral("logs")));
}

void tst_PlayerHost::cleanup()
{
    m_window.reset();
    m_player.reset();
    QVERIFY(PluginKrHvcP2::ProcessList::find("HvcCon.exe").empty());
}

/// Clicks on a button of the panel, as the user sees it.
void tst_PlayerHost::click(const QString &buttonName) const
{
    auto *const view = m_window->findChild<StageView *>();
    const QList<QGraphicsItem *> items = m_player->host().panel()->childItems();
    for (QGraphicsItem *const item : items) {
        const QGraphicsObject *const button = item->toGraphicsObject();
        if (!button || button->property("buttonName").toString() != buttonName)
            continue;
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
            view->mapFromScene(button->sceneBoundingRect().center()));
        return;
    }
    QFAIL("there is no such button");
}

int tst_PlayerHost::switchCount() const
{
    int count = 0;
    for (int row = 0; row < m_player->log().rowCount(); ++row)
        count += m_player->log().at(row).kind == PlayerEvent::Switch ? 1 : 0;
    return count;
}

void tst_PlayerHost::sensorProgram()
{
    // A copy of an earlier test costs the plug-in five seconds.
    QTRY_VERIFY_WITH_TIMEOUT(text("sensorProgram").startsWith(QStringLiteral("process ")), 30000);
    const auto found = PluginKrHvcP2::ProcessList::find("HvcCon.exe");
    QCOMPARE(found.size(), size_t(1));
    QCOMPARE(text("sensorProgram"), QStringLiteral("process %1").arg(found.front()));
    QCOMPARE(text("status"), QStringLiteral("102  Started"));

    click(QStringLiteral("stop"));
    QTRY_COMPARE(text("sensorProgram"), QStringLiteral("does not run"));
    QTRY_COMPARE(text("status"), QStringLiteral("100  Stopped"));
}

void tst_PlayerHost::panelAndKeys()
{
    QCOMPARE(text("heldBack"), QStringLiteral("by no screen"));
    click(QStringLiteral("#1"));
    QCOMPARE(m_player->current().number, 1);
    QVERIFY2(
        text("heldBack").startsWith(QStringLiteral("Door for ")), qUtf8Printable(text("heldBack")));
    press(Qt::Key_2);
    QCOMPARE(m_player->current().number, 2);
    QVERIFY(text("heldBack").contains(QStringLiteral("Counter for ")));

    // Neither goes past the plug-in's rules.
    press(Qt::Key_1); // held back
    click(QStringLiteral("#1"));
    press(Qt::Key_9); // no such sequence
    QCOMPARE(switchCount(), 2);
    QCOMPARE(m_player->current().number, 2);

    m_player->end();
    const QList<QByteArray> lines = KrTest::readFile(file(QStringLiteral("p.csv"))).split('\n');
    QCOMPARE(lines.size(), 4);
    QVERIFY2(lines.at(1).contains(",1,Women,") && lines.at(1).endsWith(",panel\r"), lines.at(1));
    QVERIFY2(lines.at(2).contains(",2,Men,") && lines.at(2).endsWith(",key\r"), lines.at(2));
}

QTEST_MAIN(tst_PlayerHost)

#include "tst_playerhost.moc"
