#include "demo/player/PlacingDesk.h"

#include "demo/desk/PlacingView.h"
#include "demo/player/MainWindow.h"
#include "demo/player/StageDesk.h"
#include "demo/player/StagePlayer.h"
#include "demo/simulator/ScenarioReader.h"
#include "demo/support/SimulatorVariables.h"
#include "tests/desk/Wheel.h"
#include "tests/gui/ModalDriver.h"
#include "tests/support/Files.h"
#include "tests/support/SensorProgram.h"
#include "tests/support/Waiting.h"

#include <QAction>
#include <QComboBox>
#include <QFileInfo>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace KrTest;
using namespace Player;

/// The whole product, before which somebody places people by hand. Without them the sensor program
/// sees a man of 50.
class tst_PlacingDesk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void followsTheNearerOne();
    void savedScenario();
    void groups();
    void stoppedPluginStaysStopped();
    void pausedPluginIsPausedAgain();
    void windowThatGoes();

private:
    static constexpr int ForBoys = 1; // sequences of the stage
    static constexpr int ForWomen = 2;
    static constexpr int ForMen = 3;

    template <typename T>
    T *find(const char *name) const
    {
        return m_window->findChild<T *>(QLatin1String(name));
    }
    QAction *action(const char *name) const { return find<QAction>(name); }
    Desk::PlacingView *view() const { return find<Desk::PlacingView>("placing"); }
    const Desk::ViewerDesk &desk() const { return m_window->findChild<PlacingDesk *>()->viewers(); }
    int playing() const { return m_player->current().number; }
    int seenFaces() const; // of the newest frame; -1: there is none
    QString file(const char *name) const { return m_directory->filePath(QLatin1String(name)); }
    static QString liveFile() { return qEnvironmentVariable(Demo::LiveVariable); }

    QPoint at(const QPoint &sensor) const
    {
        return view()->sensorGeometry().toWidget(sensor).toPoint();
    }
    void begin();
    void switchOn();
    void click(const QPoint &sensor) const
    {
        QTest::mouseClick(view(), Qt::LeftButton, {}, at(sensor));
    }
    void drag(const QPoint &from, const QPoint &to) const;
    void turnWheelAt(const QPoint &sensor, int notches) const;
    void typeAge(const char *years) const;
    void chooseGender(Qt::Key key) const;

    std::unique_ptr<QTemporaryDir> m_directory; // of the current test
    std::unique_ptr<StagePlayer> m_player;
    std::unique_ptr<MainWindow> m_window; // goes before the player
};

void tst_PlacingDesk::initTestCase()
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); // they could not be typed into
}

void tst_PlacingDesk::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
    const QString recording = file("recording.txt");
    QVERIFY(writeFile(recording,
        "Face result count:1\n"
        "Index:0\tX:320 Y:240 Size:120 Confidence:800\n"
        "Face Direction\tLR:0 UD:0 Roll:0 Confidence:700\n"
        "Age\tAge:50 Confidence:500\n"
        "Gender\tGender:Male Confidence:900\n"));
    qunsetenv(Demo::LiveVariable);
    qputenv(Demo::ReplayVariable, QFile::encodeName(recording));

    QString error;
    const auto stage = Stage::StageFile::fromJson(R"({"screens": [
        {"id": 1, "plugindata": {"interval": 100, "event-sending-limit": 0, "concurrent": 1},
         "contents": [
            {"type": 8, "params": {"name": "Boys", "age-min": 0, "age-max": 12,
                                   "gender": "male"}},
            {"type": 8, "params": {"name": "Women", "age-min": 20, "age-max": 39,
                                   "gender": "female"}},
            {"type": 8, "params": {"name": "Men", "age-min": 40, "age-max": 59,
                                   "gender": "male"}}],
         "event": [{"type": 2, "direction": 1, "seq": [1, 2, 3]}]},
        {"id": 2, "event": [{"type": 2, "id": 1, "screenseq": 1},
                            {"type": 2, "id": 1, "screenseq": 2},
                            {"type": 2, "id": 1, "screenseq": 3}]}]})",
        file("s.json"), &error);
    QVERIFY2(stage, qUtf8Printable(error));
    m_player = std::make_unique<StagePlayer>(*stage, 1);
    QVERIFY(m_player->loadPlugin(QStringLiteral(KRHVC_PLUGIN_FILE)));
    m_window = std::make_unique<MainWindow>(m_player.get());
    m_window->show();
    QApplication::setActiveWindow(m_window.get());
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void tst_PlacingDesk::cleanup()
{
    m_window.reset();
    m_player.reset();
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
}

int tst_PlacingDesk::seenFaces() const
{
    const auto &frames = m_window->findChild<StageDesk *>()->history().frames();
    return frames.empty() ? -1 : frames.back().decision.faces.size();
}

void tst_PlacingDesk::begin()
{
    m_player->begin(file("logs"));
    // A copy of an earlier test costs the plug-in five seconds.
    QTRY_COMPARE_WITH_TIMEOUT(playing(), ForMen, Patience);
    QVERIFY(!view()->isVisible());
}

void tst_PlacingDesk::switchOn()
{
    QTest::keyClick(m_window.get(), Qt::Key_P, Qt::ControlModifier);
    QVERIFY(action("placeViewers")->isChecked());
    QVERIFY(view()->isVisible());
    QVERIFY(view()->hasFocus());
    QTRY_COMPARE_WITH_TIMEOUT(seenFaces(), 0, Patience);
}

void tst_PlacingDesk::drag(const QPoint &from, const QPoint &to) const
{
    QTest::mousePress(view(), Qt::LeftButton, {}, at(from));
    for (int tenth = 1; tenth <= 10; ++tenth) {
        const QPoint position = at(from + (to - from) * tenth / 10);
        // QTest::mouseMove() tells of no button.
        QMouseEvent event(QEvent::MouseMove, position, view()->mapToGlobal(position), Qt::NoButton,
            Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view(), &event);
    }
    QTest::mouseRelease(view(), Qt::LeftButton, {}, at(to));
}

void tst_PlacingDesk::turnWheelAt(const QPoint &sensor, int notches) const
{
    for (int i = 0; i < qAbs(notches); ++i)
        turnWheel(view(), at(sensor), notches > 0 ? 120 : -120);
}

void tst_PlacingDesk::typeAge(const char *years) const
{
    auto *const age = find<QSpinBox>("age");
    QTest::mouseClick(age, Qt::LeftButton, {}, {10, age->height() / 2});
    age->selectAll();
    QTest::keyClicks(age, QLatin1String(years)); // none of them asks for a sequence
    QTest::keyClick(age, Qt::Key_Return);
}

/// Female is above male. Initials that follow each other too fast are taken for a word.
void tst_PlacingDesk::chooseGender(Qt::Key key) const
{
    find<QComboBox>("gender")->setFocus();
    QTest::keyClick(find<QComboBox>("gender"), key);
}

void tst_PlacingDesk::followsTheNearerOne()
{
    begin();
    switchOn();
    QVERIFY(QFileInfo::exists(liveFile()));

    const QPoint boy(450, 600);
    click(boy);
    typeAge("8");
    chooseGender(Qt::Key_Down);
    QTRY_COMPARE_WITH_TIMEOUT(playing(), ForBoys, Patience);

    const QPoint woman(1100, 500);
    click(woman);
    typeAge("30");
    chooseGender(Qt::Key_Up);
    turnWheelAt(woman, -4);
    QTRY_COMPARE_WITH_TIMEOUT(seenFaces(), 2, Patience);
    QTRY_COMPARE_WITH_TIMEOUT(playing(), ForBoys, Patience);

    const QPoint ahead(1000, 700);
    drag(woman, ahead);
    turnWheelAt(ahead, 10);
    QTRY_COMPARE_WITH_TIMEOUT(playing(), ForWomen, Patience);

    // The same by the keyboard.
    view()->setFocus();
    QTest::keyClick(view(), Qt::Key_Tab, Qt::ShiftModifier);
    QCOMPARE(desk().viewer(desk().selected()).age.value_or(-1), 8);
    for (int i = 0; i < 10; ++i)
        QTest::keyClick(view(), Qt::Key_Plus);
    QTRY_COMPARE_WITH_TIMEOUT(playing(), ForBoys, Patience);
    QTest::keyClick(view(), Qt::Key_Delete);
    QTRY_COMPARE_WITH_TIMEOUT(playing(), ForWomen, Patience);

    QTest::keyClick(m_window.get(), Qt::Key_P, Qt::ControlModifier);
    QVERIFY(!view()->isVisible());
    QCOMPARE(liveFile(), QString());
    QTRY_COMPARE_WITH_TIMEOUT(playing(), ForMen, Patience);
    QCOMPARE(desk().viewers().size(), 1); // for the next time
}

void tst_PlacingDesk::savedScenario()
{
    begin();
    QVERIFY(!action("saveScenario")->isEnabled());
    switchOn();
    click({450, 600});
    QTRY_COMPARE_WITH_TIMEOUT(seenFaces(), 1, Patience); // what is dragged at once was never there
    drag({450, 600}, {900, 700});
    click({300, 300});
    QVERIFY(action("saveScenario")->isEnabled());

    const QString name = file("people.json");
    GuiTest::ModalDriver user;
    user.onDialog([&name](QDialog *dialog) {
        auto *const field = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        field->setText(name);
        QTest::keyClick(field, Qt::Key_Return);
    });
    action("saveScenario")->trigger();
    QCOMPARE(user.failures(), QString());

    QString error;
    const auto scenario = Simulation::parseScenario(readFile(name), name, &error);
    QVERIFY2(scenario, qUtf8Printable(error));
    QCOMPARE(scenario->viewers.size(), 2);
    const Simulation::Viewer &first = scenario->viewers.at(0);
    QVERIFY(!first.path.isEmpty());
    QVERIFY(qAbs(first.path.constLast().position.x - 900) < 10);
    QVERIFY(scenario->viewers.at(1).arriveMs >= first.arriveMs);

    user.onDialog([this](QDialog *dialog) {
        auto *const field = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        field->setText(file("nowhere/people.json"));
        dialog->done(QDialog::Accepted);
    });
    user.confirmBox();
    action("saveScenario")->trigger();
    QCOMPARE(user.failures(), QString());
    QVERIFY(user.boxes().value(0).startsWith(QStringLiteral("critical|Scenario Not Saved|")));
}

/// A group from the menu switches the desk on.
void tst_PlacingDesk::groups()
{
    begin();
    QVERIFY(!action("removeViewers")->isEnabled());
    QCOMPARE(action("group1")->text(), Desk::groupName(Desk::viewerGroups().constFirst()));
    action("group1")->trigger();
    QVERIFY(action("placeViewers")->isChecked());
    const int people = desk().viewers().size();
    QVERIFY(people > 1);
    QTRY_COMPARE_WITH_TIMEOUT(seenFaces(), people, Patience);
    action("group1")->trigger();
    QTRY_COMPARE_WITH_TIMEOUT(seenFaces(), 2 * people, Patience);
    action("removeViewers")->trigger();
    QTRY_COMPARE_WITH_TIMEOUT(seenFaces(), 0, Patience);
    QVERIFY(!action("removeViewers")->isEnabled());
}

void tst_PlacingDesk::stoppedPluginStaysStopped()
{
    m_player->begin(file("logs"));
    m_player->host().finish();
    const int status = m_player->host().status();
    action("placeViewers")->trigger();
    QCOMPARE(m_player->host().status(), status);
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    // It begins with those who are placed by then.
    click({450, 600});
    m_player->host().start();
    QTRY_COMPARE_WITH_TIMEOUT(playing(), ForWomen, Patience);
}

void tst_PlacingDesk::pausedPluginIsPausedAgain()
{
    begin();
    m_player->host().pause();
    const QSignalSpy called(&m_player->host(), &PluginHost::called);
    action("placeViewers")->trigger();
    QStringList operations;
    for (const QVariantList &call : called)
        operations << call.constFirst().toString();
    QCOMPARE(operations.join(QLatin1Char(' ')), QStringLiteral("stop start pause"));
}

/// What the user had told the sensor program counts again.
void tst_PlacingDesk::windowThatGoes()
{
    m_window.reset();
    qputenv(Demo::LiveVariable, "own.json");
    m_window = std::make_unique<MainWindow>(m_player.get());
    action("placeViewers")->trigger();
    const QString placed = liveFile();
    QVERIFY(QFileInfo::exists(placed));
    m_window.reset();
    QCOMPARE(liveFile(), QStringLiteral("own.json"));
    QVERIFY(!QFileInfo::exists(placed));
}

QTEST_MAIN(tst_PlacingDesk)

#include "tst_placingdesk.moc"
