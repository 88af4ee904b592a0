#include "demo/desk/LogDayBar.h"
#include "demo/desk/SensorView.h"
#include "demo/desk/TimelineView.h"
#include "demo/player/MainWindow.h"
#include "demo/player/StageDesk.h"
#include "demo/player/StagePlayer.h"
#include "host/KrPluginGuiInterface.h"
#include "host/KrPluginStatus.h"
#include "tests/desk/LogText.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <memory>

using namespace DeskTest;
using namespace Player;

namespace {

enum Tab { EventsTab, SensorTab, DecisionTab };

/// Nobody at 9 o'clock, a woman at half past, whose request was restricted once, a boy at 10.
QByteArray dayLog()
{
    Person boy;
    boy.age = "8";
    boy.gender = "Male";
    LogText log;
    log.started(moment(QStringLiteral("09:00:00")));
    log.frame(moment(QStringLiteral("09:00:00")), nobodyText());
    log.frame(moment(QStringLiteral("09:30:00")), frameText({{}}));
    log.determined(moment(QStringLiteral("09:30:00")), {1});
    log.frame(moment(QStringLiteral("09:30:01")), frameText({{}}));
    log.restricted(moment(QStringLiteral("09:30:01")), 1, 60000);
    log.determined(moment(QStringLiteral("09:30:01")), {1});
    log.text("foreign\n");
    log.frame(moment(QStringLiteral("10:00:00")), frameText({boy}));
    log.determined(moment(QStringLiteral("10:00:00")), {2});
    return log.bytes();
}

} // namespace

/// The window of a stage whose plug-in sees a man, while a log is looked through.
class tst_PlayerLog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void beforeThePluginBegins();
    void timeOfDay();
    void records();
    void strip();
    void framesOfThePlugin();
    void closedAgain();
    void nobodyIsPlacedMeanwhile();
    void editedStage();
    void fileThatGoes();

private:
    template <typename T>
    T *find(const char *name) const
    {
        return m_window->findChild<T *>(QLatin1String(name));
    }
    StageDesk &desk() const { return *m_window->findChild<StageDesk *>(); }
    LogDesk &log() const { return desk().log(); }
    QString seen() const { return find<QWidget>("sensor")->accessibleDescription(); }
    void open() const;
    void goTo(const QString &time) const;

    QTemporaryDir m_directory;
    QString m_file;
    std::unique_ptr<StagePlayer> m_player;
    std::unique_ptr<MainWindow> m_window;
};

void tst_PlayerLog::init()
{
    m_file = m_directory.filePath(QStringLiteral("day.txt"));
    QVERIFY(KrTest::writeFile(m_file, dayLog()));
    QString error;
    const auto stage = Stage::StageFile::fromJson(R"({"title": "Test", "screens": [
            {"id": 5, "plugindata": {"gui": true, "event-sending-limit": 60000,
                "frames": [
                {"text": "Index:1\tX:800 Y:600 Size:100 Confidence:800\nFace Direction\tLR:0 UD:0 Roll:0 Confidence:700\nAge\tAge:70 Confidence:500\nGender\tGender:Male Confidence:900\n"}]},
             "contents": [
                {"params": {"name": "Women", "age-min": 20, "age-max": 39, "gender": "female"}},
                {"params": {"name": "Boys", "age-min": 0, "age-max": 12, "gender": "male"}}],
             "event": [{"type": 2, "direction": 1, "seq": [1, 2]}]},
            {"id": 6, "event": [{"type": 2, "id": 5, "screenseq": 1},
                                {"type": 2, "id": 5, "screenseq": 2}]}]})",
        QStringLiteral("s.json"), &error);
    QVERIFY2(stage, qUtf8Printable(error));
    m_player = std::make_unique<StagePlayer>(*stage, 5);
    QVERIFY(m_player->loadPlugin(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)));
    m_window = std::make_unique<MainWindow>(m_player.get());
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void tst_PlayerLog::cleanup()
{
    m_window.reset();
    m_player.reset();
}

/// As --log does it.
void tst_PlayerLog::open() const
{
    QVERIFY(m_window->openLog(m_file));
    m_player->begin(QString());
    QTRY_VERIFY(log().day().isRead());
}

void tst_PlayerLog::goTo(const QString &time) const
{
    auto *const field = find<QLineEdit>("logGoTo");
    QTest::keyClick(m_window.get(), Qt::Key_G, Qt::ControlModifier);
    QTest::keyClicks(field, time);
    QTest::keyClick(field, Qt::Key_Return);
}

void tst_PlayerLog::beforeThePluginBegins()
{
    open();
    QVERIFY(m_player->isResting());
    QVERIFY(m_player->host().status() != Kora::Status::Started);
    QVERIFY(find<QWidget>("log")->isVisible());
    QVERIFY(find<QWidget>("pickedBar")->isHidden());
    QCOMPARE(find<QLabel>("logTime")->text(), QStringLiteral("2018-02-01 09:00:00"));
    QCOMPARE(seen(), QStringLiteral("Nobody is there"));
    QCOMPARE(find<QLabel>("logProblems")->text(), QStringLiteral("Places not readable: 1"));
    QTest::qWait(1);
    QVERIFY(desk().history().isEmpty());
}

void tst_PlayerLog::timeOfDay()
{
    open();
    find<QTabWidget>("views")->setCurrentIndex(DecisionTab);
    goTo(QStringLiteral("09:30"));
    auto *const summary = find<QLabel>("decisionSummary");
    QCOMPARE(summary->text(), QStringLiteral("Sent: #1 Women"));
    QCOMPARE(m_player->current().number, 1); // on the stage
    QTest::keyClick(m_window->findChild<Desk::LogDayBar *>(), Qt::Key_Right);
    QCOMPARE(summary->text(), QStringLiteral("Nothing was sent: the restriction held #1 back."));
    find<QTabWidget>("views")->setCurrentIndex(SensorTab);
    QCOMPARE(seen(), QStringLiteral("Faces: 1")); // who did not decide
    goTo(QStringLiteral("10:00"));
    QCOMPARE(seen(), QStringLiteral("Faces: 1. Male, 8: #2 Boys"));
    QCOMPARE(m_player->current().number, 2);
}

void tst_PlayerLog::records()
{
    open();
    auto *const events = find<QTreeView>("logEvents");
    find<QTabWidget>("views")->setCurrentIndex(EventsTab);
    QVERIFY(events->isVisible());
    QStringList lines;
    for (int row = 0; row < log().records().rowCount(); ++row)
        lines << log().records().at(row).line();
    QCOMPARE(lines.join(QLatin1Char('\n')),
        QStringLiteral("09:00:00.000  status  sensor program started\n"
                       "09:30:00.000  switch  #1  Women\n"
                       "09:30:01.000  play    #1  Women, within 60000 ms\n"
                       "09:30:01.000  switch  #1  Women\n"
                       "  log     line 37: this is no record of the plug-in\n"
                       "10:00:00.000  switch  #2  Boys"));
    QTest::mouseClick(events->viewport(), Qt::LeftButton, {},
        events->visualRect(log().records().index(2, 0)).center());
    QCOMPARE(log().playhead().number(), qint64{3});
    goTo(QStringLiteral("10:00"));
    QCOMPARE(events->currentIndex().row(), 5);
}

void tst_PlayerLog::strip()
{
    open();
    auto *const timeline = find<Desk::TimelineView>("logTimeline");
    QVERIFY(timeline->isVisible());
    goTo(QStringLiteral("09:30:01"));
    QCOMPARE(timeline->model().mostViewers(), 1);
    timeline->setFocus();
    QTest::keyClick(timeline, Qt::Key_Home);
    QTest::keyClick(timeline, Qt::Key_Return);
    QCOMPARE(log().playhead().number(), qint64{2});
}

void tst_PlayerLog::framesOfThePlugin()
{
    open();
    goTo(QStringLiteral("09:30"));
    m_player->host().start(); // a user does
    QTRY_VERIFY(!desk().history().isEmpty());
    QCOMPARE(seen(), QStringLiteral("Faces: 1. Female, 30: #1 Women"));
}

void tst_PlayerLog::closedAgain()
{
    open();
    goTo(QStringLiteral("09:30"));
    find<QAction>("closeLog")->trigger();
    QVERIFY(find<QWidget>("log")->isHidden());
    QVERIFY(!find<QAction>("closeLog")->isEnabled());
    QVERIFY(find<QWidget>("timeline")->isVisible());
    QCOMPARE(m_player->host().status(), int(Kora::Status::Started));
    QTRY_VERIFY(!desk().history().isEmpty());
    QVERIFY(!desk().shown().isPicked());
    QCOMPARE(desk().shown().number(), desk().history().newest().number);
    QCOMPARE(m_player->current().number, 0);
}

void tst_PlayerLog::nobodyIsPlacedMeanwhile()
{
    m_player->begin(QString());
    auto *const place = find<QAction>("placeViewers");
    place->trigger();
    QVERIFY(find<QWidget>("placing")->isVisible());
    QVERIFY(m_window->openLog(m_file));
    QVERIFY(!place->isChecked());
    QVERIFY(find<QWidget>("placing")->isHidden());
    QVERIFY(m_player->host().status() != Kora::Status::Started);
    QTest::keyClick(m_window.get(), Qt::Key_P, Qt::ControlModifier);
    QVERIFY(!place->isChecked());

    find<QAction>("closeLog")->trigger();
    QTest::keyClick(m_window.get(), Qt::Key_P, Qt::ControlModifier);
    QVERIFY(find<QWidget>("placing")->isVisible());
}

/// What would have been decided with it.
void tst_PlayerLog::editedStage()
{
    open();
    goTo(QStringLiteral("09:30"));
    QVariant &data = *m_player->host().gui()->pluginData();
    QVariantMap screen = data.toMap();
    QVariantList contents = screen.value(QStringLiteral("contents")).toList();
    contents.removeFirst();
    screen.insert(QStringLiteral("contents"), contents);
    data = screen;
    QVERIFY(QMetaObject::invokeMethod(m_player->host().gui()->object(), "screenValuesUpdated",
        Q_ARG(int, 5), Q_ARG(QList<int>, QList<int>())));
    QTRY_COMPARE(seen(), QStringLiteral("Faces: 1"));
    QCOMPARE(log().playhead().number(), qint64{2});
}

void tst_PlayerLog::fileThatGoes()
{
    QString content;
    for (int i = 0; i < 6 * Desk::LogDay::FramesOfPage; ++i)
        content += QStringLiteral("09:%1:%2, ")
                       .arg(i / 60, 2, 10, QLatin1Char('0'))
                       .arg(i % 60, 2, 10, QLatin1Char('0'));
    content.chop(2);
    QVERIFY(KrTest::writeFile(m_file, logOf(content)));
    open();
    QVERIFY(KrTest::writeFile(m_file, "foreign\n"));
    goTo(QStringLiteral("09:11"));
    QVERIFY(find<QLabel>("logProblems")
                ->text()
                .endsWith(QStringLiteral(": is not any more what was read")));
}

QTEST_MAIN(tst_PlayerLog)

#include "tst_playerlog.moc"
