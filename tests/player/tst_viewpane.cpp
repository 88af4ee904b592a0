#include "demo/player/ViewPane.h"

#include "demo/desk/CoverageView.h"
#include "demo/desk/DecisionView.h"
#include "demo/desk/SensorView.h"
#include "demo/player/MainWindow.h"
#include "demo/player/StageDesk.h"
#include "demo/player/StagePlayer.h"
#include "host/KrPluginGuiInterface.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTreeView>

#include <memory>

using namespace Player;
using namespace Stage;

namespace {

enum Tab { EventsTab, SensorTab, DecisionTab, CoverageTab };

} // namespace

/// The window of a stage whose plug-in sees a woman of 30, who is sent #1, and then a boy of 8, who
/// is held back.
class tst_ViewPane : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void tabs();
    void mnemonics();
    void large();
    void contentOfTheMap();
    void momentOfTheTimeline();
    void newestEvent();
    void newestFrame();
    void eventPicksItsFrame();
    void eventWithoutFrame();
    void editedStage();
    void settingsOfThePlugin();
    void frameOfAStageThatWasEdited();

private:
    template <typename T>
    T *find(const char *name) const
    {
        return m_window->findChild<T *>(QLatin1String(name));
    }
    QTabWidget &views() const { return *find<QTabWidget>("views"); }
    StageDesk &desk() const { return *m_window->findChild<StageDesk *>(); }
    const Desk::DecisionModel &decision() const
    {
        return m_window->findChild<Desk::DecisionView *>()->model();
    }
    QString summary() const { return find<QLabel>("decisionSummary")->text(); }
    bool waitForFrames(int count) const;
    int rowOf(PlayerEvent::Kind kind) const;
    void pick(int row, int clicks = 1) const;
    void edit(const QString &key, const QVariant &value) const; // of the first content
    void announce() const;

    std::unique_ptr<StagePlayer> m_player;
    std::unique_ptr<MainWindow> m_window;
};

void tst_ViewPane::init()
{
    QString error;
    const auto stage = StageFile::fromJson(R"({"title": "Test", "screens": [
            {"id": 5, "plugindata": {"gui": true, "event-sending-limit": 60000, "concurrent": 2,
                "frames": [
                {"start": 0, "text": "Index:0\tX:800 Y:600 Size:200 Confidence:800\nFace Direction\tLR:0 UD:0 Roll:0 Confidence:700\nAge\tAge:30 Confidence:500\nGender\tGender:Female Confidence:900\n"},
                {"text": "Index:1\tX:800 Y:600 Size:100 Confidence:800\nFace Direction\tLR:0 UD:0 Roll:0 Confidence:700\nAge\tAge:8 Confidence:500\nGender\tGender:Male Confidence:900\n"}]},
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
    m_player->begin(QString());
    QVERIFY(waitForFrames(2));
}

void tst_ViewPane::cleanup()
{
    m_window.reset();
    m_player.reset();
}

bool tst_ViewPane::waitForFrames(int count) const
{
    return QTest::qWaitFor(
        [this, count] { return int(desk().history().frames().size()) == count; });
}

int tst_ViewPane::rowOf(PlayerEvent::Kind kind) const
{
    for (int row = 0; row < m_player->log().rowCount(); ++row) {
        if (m_player->log().at(row).kind == kind)
            return row;
    }
    return -1;
}

void tst_ViewPane::pick(int row, int clicks) const
{
    auto *const events = find<QTreeView>("events");
    const QModelIndex index = m_player->log().index(row, 0);
    events->scrollTo(index);
    for (int i = 0; i < clicks; ++i) {
        QTest::mouseClick(
            events->viewport(), Qt::LeftButton, {}, events->visualRect(index).center());
    }
}

void tst_ViewPane::edit(const QString &key, const QVariant &value) const
{
    QVariant &data = *m_player->host().gui()->pluginData();
    QVariantMap screen = data.toMap();
    QVariantList contents = screen.value(QStringLiteral("contents")).toList();
    QVariantMap content = contents.at(0).toMap();
    QVariantMap params = content.value(QStringLiteral("params")).toMap();
    params.insert(key, value);
    content.insert(QStringLiteral("params"), params);
    contents.replace(0, content);
    screen.insert(QStringLiteral("contents"), contents);
    data = screen;
    announce();
}

void tst_ViewPane::announce() const
{
    QVERIFY(QMetaObject::invokeMethod(m_player->host().gui()->object(), "screenValuesUpdated",
        Q_ARG(int, 5), Q_ARG(QList<int>, QList<int>())));
}

void tst_ViewPane::tabs()
{
    QCOMPARE(views().count(), 4);
    QCOMPARE(views().currentWidget(), m_window->findChild<Desk::SensorView *>());
    QTest::keyClick(m_window.get(), Qt::Key_4, Qt::ControlModifier);
    QCOMPARE(views().currentWidget(), m_window->findChild<Desk::CoverageView *>());
    QCOMPARE(QApplication::focusWidget(), views().currentWidget());
    QTest::keyClick(m_window.get(), Qt::Key_3, Qt::ControlModifier);
    QCOMPARE(views().currentWidget(), m_window->findChild<Desk::DecisionView *>());
    QCOMPARE(QApplication::focusWidget(), find<QTableView>("decisionTable"));
    QTest::keyClick(m_window.get(), Qt::Key_1, Qt::ControlModifier);
    QCOMPARE(QApplication::focusWidget(), find<QTreeView>("events"));
    QTest::keyClick(m_window.get(), Qt::Key_D, Qt::AltModifier);
    QCOMPARE(views().currentIndex(), DecisionTab);
    for (const QAction *const action : find<QMenu>("viewMenu")->actions().mid(0, views().count()))
        QVERIFY(!action->shortcut().isEmpty());
}

/// A key that two have does nothing at its first press.
void tst_ViewPane::mnemonics()
{
    QStringList texts;
    for (int i = 0; i < views().count(); ++i)
        texts << views().tabText(i);
    const auto buttons = m_window->findChildren<QPushButton *>();
    for (const QPushButton *const button : buttons)
        texts << button->text();
    const auto boxes = m_window->findChildren<QCheckBox *>();
    for (const QCheckBox *const box : boxes)
        texts << box->text();
    const auto labels = m_window->findChildren<QLabel *>();
    for (const QLabel *const label : labels) {
        if (!QKeySequence::mnemonic(label->text()).isEmpty()) // a title of a row may have none
            texts << label->text();
    }
    const auto menus = m_window->menuBar()->actions();
    for (const QAction *const menu : menus)
        texts << menu->text();
    QStringList keys;
    for (const QString &text : qAsConst(texts))
        keys << QKeySequence::mnemonic(text).toString();
    QVERIFY2(!keys.contains(QString()), qPrintable(texts.join(QLatin1Char(' '))));
    QCOMPARE(keys.removeDuplicates(), 0);
}

void tst_ViewPane::large()
{
    auto *const sensor = find<QWidget>("sensor");
    const int width = sensor->width();
    QTest::keyClick(m_window.get(), Qt::Key_F11);
    QTRY_VERIFY(sensor->width() > 2 * width);
    QVERIFY(!find<QWidget>("timeline")->isVisible());
    QTest::keyClick(m_window.get(), Qt::Key_F11);
    QTRY_COMPARE(sensor->width(), width);
    QVERIFY(find<QWidget>("timeline")->isVisible());
}

/// The plug-in's own dialog is told which content, and to appear beside the views: of all who are
/// younger than the women, #2 is the only one that fits the age.
void tst_ViewPane::contentOfTheMap()
{
    views().setCurrentWidget(find<QWidget>("coverage"));
    find<QWidget>("coverage")->setFocus();
    QTest::keyClick(find<QWidget>("coverage"), Qt::Key_Home);
    QTest::keyClick(find<QWidget>("coverage"), Qt::Key_Return);
    QTRY_COMPARE(qApp->property("fakeCalls").toStringList().constLast(),
        QStringLiteral("content dialog 1 beside something"));
}

void tst_ViewPane::momentOfTheTimeline()
{
    auto *const timeline = find<QWidget>("timeline");
    timeline->setFocus();
    QTest::keyClick(timeline, Qt::Key_End);
    QTest::keyClick(timeline, Qt::Key_Return);
    QVERIFY(desk().shown().isPicked());
    QVERIFY(find<QWidget>("pickedBar")->isVisible());
}

void tst_ViewPane::newestEvent()
{
    const auto addEvents = [this] {
        for (int i = 0; i < 100; ++i)
            m_player->log().append(PlayerEvent());
    };
    QScrollBar *const bar = find<QTreeView>("events")->verticalScrollBar();
    views().setCurrentIndex(EventsTab);
    addEvents();
    QTRY_VERIFY(bar->value() == bar->maximum() && bar->maximum() > 0);
    bar->setValue(3); // somebody reads
    addEvents();
    QTest::qWait(1);
    QCOMPARE(bar->value(), 3);
}

void tst_ViewPane::newestFrame()
{
    QCOMPARE(decision().columnCount(), 0); // not looked at yet
    const QPoint tab = views().tabBar()->tabRect(DecisionTab).center();
    QTest::mouseClick(views().tabBar(), Qt::LeftButton, {}, tab);
    QCOMPARE(decision().columnCount(), 1);
    QCOMPARE(decision().index(Desk::DecisionModel::Age, 0).data().toString(), QStringLiteral("8"));
    QCOMPARE(summary(), QStringLiteral("Nothing was sent: the restriction held #2 back."));
    QVERIFY(find<QWidget>("pickedBar")->isHidden());
}

void tst_ViewPane::eventPicksItsFrame()
{
    // As far from each other that the time tells.
    QTest::qWait(20);
    m_player->host().start();
    QVERIFY(waitForFrames(4));
    views().setCurrentIndex(EventsTab);
    pick(rowOf(PlayerEvent::Switch), 2);
    QVERIFY(desk().shown().number() == 1 || desk().shown().number() == 2);
    desk().shown().pick(desk().history().frames().front());
    views().setCurrentIndex(DecisionTab);
    QCOMPARE(summary(), QStringLiteral("Sent: #1 Women"));
    QVERIFY(find<QWidget>("pickedBar")->isVisible());
    QVERIFY(find<QLabel>("picked")->text().startsWith(QStringLiteral("Shown: the frame of ")));

    m_player->host().start();
    QVERIFY(waitForFrames(6));
    QCOMPARE(desk().shown().number(), 1);
    QTest::keyClick(find<QTableView>("decisionTable"), Qt::Key_Escape);
    QTRY_COMPARE(desk().shown().number(), 6); // the button is pressed for a moment
    QVERIFY(find<QWidget>("pickedBar")->isHidden());
    QCOMPARE(decision().index(Desk::DecisionModel::Age, 0).data().toString(), QStringLiteral("8"));
}

void tst_ViewPane::eventWithoutFrame()
{
    PlayerEvent event;
    event.time = QTime::currentTime().addSecs(-120);
    QVERIFY(!desk().pickFrameOf(event));
    event.time = QTime::currentTime().addSecs(120); // yesterday
    QVERIFY(!desk().pickFrameOf(event));
    QVERIFY(!desk().shown().isPicked());
}

void tst_ViewPane::editedStage()
{
    edit(QStringLiteral("age-max"), 29);
    QVERIFY(waitForFrames(4)); // the new plug-in child is listened to
    const Analysis::Plan &plan = desk().history().plan();
    QCOMPARE(plan.contents.at(0).ageMax, 29);
    QCOMPARE(plan.title, QStringLiteral("Test"));
    QCOMPARE(plan.entries.at(0).name, QStringLiteral("Women"));
    QVERIFY(m_player->isModified()); // and not saved
    views().setCurrentIndex(DecisionTab);
    QCOMPARE(summary(), QStringLiteral("Nothing was sent: the restriction held #2 back."));
    const auto &woman = desk().history().frames().at(2).decision.faces.at(0);
    QCOMPARE(woman.outcome, Analysis::DecidedFace::NothingFits);
}

/// A setting that the plug-in does not take over counts for nobody.
void tst_ViewPane::settingsOfThePlugin()
{
    QCOMPARE(desk().history().plan().settings.eventSendingLimit, 60000);
    QVariant &data = *m_player->host().gui()->pluginData();
    QVariantMap screen = data.toMap();
    QVariantMap settings = screen.value(QStringLiteral("plugindata")).toMap();
    settings.insert(QStringLiteral("event-sending-limit"), 1);
    screen.insert(QStringLiteral("plugindata"), settings);
    data = screen;
    announce(); // the fake keeps what it was set up with
    QVERIFY(waitForFrames(4));
    QCOMPARE(desk().history().plan().settings.eventSendingLimit, 60000);
    QCOMPARE(desk().history().plan().settings.concurrent, 2);
}

void tst_ViewPane::frameOfAStageThatWasEdited()
{
    views().setCurrentIndex(DecisionTab);
    edit(QStringLiteral("name"), QStringLiteral("Ladies"));
    QVERIFY(waitForFrames(4));
    desk().shown().pick(desk().history().frames().front());
    QCOMPARE(summary(), QStringLiteral("Sent: #1 Women"));
    QTest::mouseClick(find<QPushButton>("follow"), Qt::LeftButton);
    const int content = decision().rowOf(Desk::DecisionModel::Content);
    QCOMPARE(decision().headerData(content, Qt::Vertical).toString(), QStringLiteral("#1 Ladies"));
}

QTEST_MAIN(tst_ViewPane)

#include "tst_viewpane.moc"
