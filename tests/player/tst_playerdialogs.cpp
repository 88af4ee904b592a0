#include "demo/player/MainWindow.h"
#include "demo/player/StagePlayer.h"
#include "host/KrPluginGuiInterface.h"
#include "tests/gui/ModalDriver.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QProcess>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace GuiTest;
using namespace Player;
using namespace Stage;

/// The product at work: a running screen is edited with the plug-in's own dialogs.
class tst_PlayerDialogs : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void addedContentTakesPart_data();
    void addedContentTakesPart();
    void editedContent();
    void fullScreenIsRefused();
    void changedSettings();
    void endedBelowADialog_data();
    void endedBelowADialog();
    void deletedBelowADialog_data();
    void deletedBelowADialog();

private:
    void start(int contentCount = 2, const QByteArray &sequences = "[1, 2]",
        const QString &firstGender = QStringLiteral("female"));
    QAction *action(const QString &name) const { return m_window->findChild<QAction *>(name); }
    /// Triggers a plug-in's action, which is no child of the window.
    void triggerPluginAction(const QString &objectName) const;
    QStringList details(PlayerEvent::Kind kind) const;
    QJsonObject savedScreen(int position) const;
    static QStringList sensorPrograms(); ///< command lines of this process's children

    std::unique_ptr<QTemporaryDir> m_directory; // of the current test
    std::unique_ptr<StagePlayer> m_player;
    std::unique_ptr<MainWindow> m_window; // goes before the player
};

namespace {

const QString AddAction = QStringLiteral("Action_Plugin_HVC_Add_Detection_Setting");
const QString SettingsAction = QStringLiteral("Action_Plugin_HVC_Screen_Property");
const QString EditAction = QStringLiteral("edit2");

void click(QWidget *widget)
{
    QTest::mouseClick(widget, Qt::LeftButton);
}

void confirm(QDialog *dialog)
{
    clickButton(dialog, QDialogButtonBox::Ok);
}

} // namespace

void tst_PlayerDialogs::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
    QFile recording(m_directory->filePath(QStringLiteral("recording.txt")));
    QVERIFY(recording.open(QIODevice::WriteOnly));
    recording.write("Face result count:1\n"
                    "Index:0\tX:320 Y:240 Size:120 Confidence:800\n"
                    "Face Direction\tLR:5 UD:-3 Roll:1 Confidence:700\n"
                    "Age\tAge:50 Confidence:500\n"
                    "Gender\tGender:Female Confidence:900\n");
    qputenv("KRHVC_REPLAY", QFile::encodeName(recording.fileName()));
}

void tst_PlayerDialogs::cleanup()
{
    m_window.reset();
    m_player.reset();
    QCOMPARE(sensorPrograms(), QStringList());
}

/// Women and men of 20 to 39, and when more are wanted, other ages. @p sequences are what the
/// screen's only event lists.
void tst_PlayerDialogs::start(
    int contentCount, const QByteArray &sequences, const QString &firstGender)
{
    QJsonArray contents;
    for (int i = 0; i < contentCount; ++i) {
        QString gender = i % 2 == 0 ? QStringLiteral("female") : QStringLiteral("male");
        if (i == 0)
            gender = firstGender;
        const int ageMin = i < 2 ? 20 : 40 + i;
        contents << QJsonObject{{QStringLiteral("type"), 8},
            {QStringLiteral("name"), QStringLiteral("Content %1").arg(i + 1)},
            {QStringLiteral("note"), QStringLiteral("kept")},
            {QStringLiteral("params"),
                QJsonObject{{QStringLiteral("age-min"), ageMin},
                    {QStringLiteral("age-max"), i < 2 ? 39 : ageMin},
                    {QStringLiteral("gender"), gender},
                    {QStringLiteral("default"), QStringLiteral("false")}}}};
    }
    QJsonObject screen = QJsonDocument::fromJson(R"({"id": 1,
        "plugindata": {"display-monitoring": true, "interval": 100, "event-sending-limit": 0},
        "event": [{"type": 2, "direction": 1, "seq": )"
        + sequences + "}]}")
                             .object();
    screen.insert(QStringLiteral("contents"), contents);
    const QJsonObject other = QJsonDocument::fromJson(R"({"id": 2, "name": "Door", "event": [
        {"type": 2, "direction": 0, "id": 1, "screenseq": 1},
        {"type": 2, "direction": 0, "id": 1, "screenseq": 2}]})")
                                  .object();
    const QJsonObject stage{{QStringLiteral("screens"), QJsonArray{screen, other}}};
    QString error;
    const std::optional<StageFile> file = StageFile::fromJson(
        QJsonDocument(stage).toJson(), m_directory->filePath(QStringLiteral("s.json")), &error);
    QVERIFY2(file, qUtf8Printable(error));

    m_player = std::make_unique<StagePlayer>(*file, 1);
    QVERIFY(m_player->loadPlugin(QStringLiteral(KRHVC_PLUGIN_FILE)));
    m_window = std::make_unique<MainWindow>(m_player.get());
    m_window->show();
    m_player->begin(m_directory->filePath(QStringLiteral("logs")));
    m_window->showPluginInformation();
    QVERIFY(m_player->host().gui());
}

void tst_PlayerDialogs::triggerPluginAction(const QString &objectName) const
{
    Kora::KrPluginGuiInterface *const gui = m_player->host().gui();
    const QList<QAction *> actions = gui->addContentActions() + gui->pluginPropertyActions();
    for (QAction *const candidate : actions) {
        if (candidate->objectName() == objectName) {
            candidate->trigger();
            return;
        }
    }
    if (QAction *const own = action(objectName))
        own->trigger();
}

QStringList tst_PlayerDialogs::details(PlayerEvent::Kind kind) const
{
    QStringList details;
    for (int row = 0; row < m_player->log().rowCount(); ++row) {
        if (m_player->log().at(row).kind == kind)
            details << m_player->log().at(row).details;
    }
    return details;
}

QJsonObject tst_PlayerDialogs::savedScreen(int position) const
{
    QFile file(m_player->stage().fileName());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll())
        .object()
        .value(QLatin1String("screens"))
        .toArray()
        .at(position)
        .toObject();
}

QStringList tst_PlayerDialogs::sensorPrograms()
{
    QStringList lines;
    const QString parent = QString::number(QCoreApplication::applicationPid());
    const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &process : processes) {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(process));
        QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(process));
        if (!stat.open(QIODevice::ReadOnly) || !commandLine.open(QIODevice::ReadOnly))
            continue;
        const QString text = QString::fromLocal8Bit(stat.readAll());
        if (text.contains(QLatin1String("(HvcCon.exe)"))
            && text.section(QLatin1Char(')'), -1).section(QLatin1Char(' '), 2, 2) == parent) {
            const QByteArrayList parts = commandLine.readAll().split('\0');
            lines << QString::fromLocal8Bit(parts.mid(1).join(' ').trimmed());
        }
    }
    return lines;
}

void tst_PlayerDialogs::addedContentTakesPart_data()
{
    QTest::addColumn<QByteArray>("sequences"); // of the played screen's event
    QTest::addColumn<QString>("firstGender");
    QTest::addColumn<QByteArray>("savedEvents");

    QTest::newRow("beside contents that an event lists") << QByteArray(
        "[1, 2]") << "female" << QByteArray(R"([{"type": 2, "direction": 1, "seq": [1, 2, 3]}])");
    QTest::newRow("beside an invalid content, which an event for all does not count")
        << QByteArray("[]") << "nobody" << QByteArray(R"([{"type": 2, "direction": 1, "seq": []},
                          {"type": 2, "direction": 1, "seq": [3]}])");
}

void tst_PlayerDialogs::addedContentTakesPart()
{
    QFETCH(QByteArray, sequences);
    QFETCH(QString, firstGender);
    QFETCH(QByteArray, savedEvents);

    start(2, sequences, firstGender);
    ModalDriver driver;
    QStringList proposals;
    driver.onDialog([&proposals](QDialog *dialog) {
        const auto *const name = dialog->findChild<QLineEdit *>(QStringLiteral("name"));
        auto *const find = dialog->findChild<QPushButton *>(QStringLiteral("findRange"));
        proposals << name->text();
        for (int i = 0; i < 2; ++i) {
            click(find);
            proposals << name->text();
        }
        // The recording shows a woman of 50.
        typeValue(dialog->findChild<QSpinBox *>(QStringLiteral("ageMin")), QStringLiteral("40"));
        typeValue(dialog->findChild<QSpinBox *>(QStringLiteral("ageMax")), QStringLiteral("75"));
        auto *const gender = dialog->findChild<QComboBox *>(QStringLiteral("gender"));
        gender->setFocus();
        QTest::keyClick(gender, Qt::Key_F); // Female
        confirm(dialog);
    });
    triggerPluginAction(AddAction);
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(driver.boxes(), QStringList());
    QCOMPARE(proposals.size(), 3);
    QVERIFY(proposals.at(0) != proposals.at(1) && proposals.at(1) != proposals.at(2));

    QTRY_COMPARE(details(PlayerEvent::Edit),
        QStringList{QStringLiteral(
            "content #3 added: 40 - 75 years old (Female), linked by screen 2 Door")});
    QVERIFY(m_window->isWindowModified());
    QCOMPARE(action(QStringLiteral("edit3"))->text(),
        QStringLiteral("Edit content #3  40 - 75 years old (Female)"));
    // A sensor program of somebody else costs the plug-in five seconds.
    QTRY_COMPARE_WITH_TIMEOUT(m_player->current().number, 3, 30000);
    QCOMPARE(m_player->scene().shownNumber(), 3);

    action(QStringLiteral("save"))->trigger();
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(savedScreen(0).value(QLatin1String("contents")).toArray().at(2).toObject(),
        QJsonDocument::fromJson(R"json({"type": 8, "name": "40 - 75 years old (Female)", "params": {
            "age-min": 40, "age-max": 75, "gender": "female", "default": "false"}})json")
            .object());
    QCOMPARE(savedScreen(0).value(QLatin1String("event")).toArray(),
        QJsonDocument::fromJson(savedEvents).array());
    QCOMPARE(savedScreen(1).value(QLatin1String("event")).toArray().last().toObject(),
        QJsonDocument::fromJson(R"({"type": 2, "direction": 0, "id": 1, "screenseq": 3})")
            .object());
}

void tst_PlayerDialogs::editedContent()
{
    start();
    ModalDriver driver;
    driver.onDialog([](QDialog *dialog) {
        QTest::keyClicks(
            dialog->findChild<QLineEdit *>(QStringLiteral("name")), QStringLiteral("x"));
        auto *const ageMax = dialog->findChild<QSpinBox *>(QStringLiteral("ageMax"));
        typeValue(ageMax, QStringLiteral("44"));
        clickCheckBox(dialog->findChild<QCheckBox *>(QStringLiteral("default")));
        confirm(dialog);
    });
    action(EditAction)->trigger();
    QCOMPARE(driver.failures(), QString());
    QTRY_COMPARE(details(PlayerEvent::Edit),
        QStringList{QStringLiteral("content #2: name Content 2 -> 20 - 44 years old (Male), "
                                   "age-max 39 -> 44, default false -> true")});
    QCOMPARE(m_player->contents().at(1).name, QStringLiteral("20 - 44 years old (Male)"));
    const QJsonObject entry = QJsonDocument::fromJson(m_player->stage().toJson())
                                  .object()
                                  .value(QLatin1String("screens"))
                                  .toArray()
                                  .at(0)
                                  .toObject()
                                  .value(QLatin1String("contents"))
                                  .toArray()
                                  .at(1)
                                  .toObject();
    QCOMPARE(entry.value(QLatin1String("note")).toString(), QStringLiteral("kept"));

    // The same again changes nothing.
    driver.onDialog(confirm);
    action(EditAction)->trigger();
    QCOMPARE(driver.failures(), QString());
    QCoreApplication::processEvents();
    QCOMPARE(details(PlayerEvent::Edit).size(), 1);
}

void tst_PlayerDialogs::fullScreenIsRefused()
{
    start(20);
    ModalDriver driver;
    driver.confirmBox();
    triggerPluginAction(AddAction);
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(driver.boxes(),
        QStringList{ModalDriver::describeBox(QStringLiteral("critical"),
            QStringLiteral("Can Not Add Setting"),
            QStringLiteral("You can not add new setting(content).\n"
                           "The maximum setting(content) counts is 20."),
            QStringLiteral("none"))});
    QVERIFY(!m_player->isModified());
}

void tst_PlayerDialogs::changedSettings()
{
    start();
#ifdef Q_OS_LINUX
    QTRY_COMPARE_WITH_TIMEOUT(sensorPrograms(), QStringList{QStringLiteral("3 921600 100")}, 30000);
#endif
    ModalDriver driver;
    driver.onDialog([](QDialog *dialog) {
        typeValue(dialog->findChild<QSpinBox *>(QStringLiteral("interval")), QStringLiteral("250"));
        clickCheckBox(dialog->findChild<QCheckBox *>(QStringLiteral("visibleMonitoring")));
        confirm(dialog);
    });
    triggerPluginAction(SettingsAction);
    QCOMPARE(driver.failures(), QString());
    QTRY_COMPARE(details(PlayerEvent::Edit).size(), 1);
    const QString edit = details(PlayerEvent::Edit).first();
    QVERIFY2(
        edit.contains(QLatin1String(" display-monitoring true -> false,")), qUtf8Printable(edit));
    QVERIFY2(edit.endsWith(QLatin1String(" interval 100 -> 250")), qUtf8Printable(edit));
    QCOMPARE(m_player->host().params().value(QStringLiteral("interval")).toInt(), 250);
    QCOMPARE(m_player->host().params().value(QStringLiteral("display-monitoring")).toBool(), false);
    QCOMPARE(m_player->host().status(), 102);
#ifdef Q_OS_LINUX
    QTRY_COMPARE_WITH_TIMEOUT(sensorPrograms(), QStringList{QStringLiteral("3 921600 250")}, 30000);
#endif
    QVERIFY(m_window->isWindowModified());
    action(QStringLiteral("save"))->trigger();
    QCOMPARE(savedScreen(0).value(QLatin1String("plugindata")).toObject(),
        QJsonDocument::fromJson(R"({"display-monitoring": "false", "interval": 250,
            "face-detection-confidence": 0, "face-direction-confidence": 0, "age-confidence": 0,
            "gender-confidence": 0, "concurrent": 1, "event-sending-limit": 0})")
            .object());
}

void tst_PlayerDialogs::endedBelowADialog_data()
{
    QTest::addColumn<QString>("action");

    QTest::newRow("adding") << AddAction;
    QTest::newRow("editing") << EditAction;
    QTest::newRow("settings") << SettingsAction;
}

void tst_PlayerDialogs::endedBelowADialog()
{
    QFETCH(QString, action);

    // As on a signal or after --seconds.
    start();
    ModalDriver driver;
    driver.onDialog([](QDialog * /*dialog*/) { QCoreApplication::quit(); });
    QTimer::singleShot(0, this, [this, action] { triggerPluginAction(action); });
    QCOMPARE(QApplication::exec(), 0);
    QCOMPARE(driver.failures(), QString());
    m_player->end();
    QCOMPARE(m_player->host().status(), 0);
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *const window : windows)
        QVERIFY(!window->isVisible() || window == m_window.get());
    QCOMPARE(QApplication::activeModalWidget(), nullptr);
}

void tst_PlayerDialogs::deletedBelowADialog_data()
{
    endedBelowADialog_data();
}

void tst_PlayerDialogs::deletedBelowADialog()
{
    QFETCH(QString, action);

    start();
    ModalDriver driver;
    driver.onDialog([this](QDialog * /*dialog*/) { m_player->end(); });
    triggerPluginAction(action);
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(m_player->host().status(), 0);
    QCOMPARE(m_player->host().gui(), nullptr);
}

QTEST_MAIN(tst_PlayerDialogs)

#include "tst_playerdialogs.moc"
