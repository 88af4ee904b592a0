#include "GuiTestData.h"
#include "ModalDriver.h"

#include "host/KrPluginExtScreenInterface.h"
#include "host/KrPluginGuiInterface.h"

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QPluginLoader>
#include <QPointer>
#include <QSignalSpy>

using namespace GuiTest;

/// The dialogs as a host gets them: from a loaded file, with nothing known but its headers.
class tst_GuiPlugin : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void oneGuiObject();
    void editsTheMapOfThePlugin();
    void actionsByName_data();
    void actionsByName();
    void screenDialogChangesSettings();
    void contentDialogChangesContents();
    void newContentsAreAddedByTheHost();
    void slotsByName();
    void signalsByName();
    void widgetsForTheHost();
    void goesWithThePlugin();
    void pluginDeletedWhileOpen_data();
    void pluginDeletedWhileOpen();

private:
    QAction *action(const QString &objectName) const
    {
        const QList<QAction *> actions
            = m_gui->pluginPropertyActions() + m_gui->addContentActions();
        for (QAction *action : actions) {
            if (action->objectName() == objectName)
                return action;
        }
        return nullptr;
    }
    /// The field that belongs to the label @p text.
    template <typename Widget>
    static Widget *field(const QWidget *parent, const QString &text)
    {
        const QList<QLabel *> labels = parent->findChildren<QLabel *>();
        for (const QLabel *label : labels) {
            if (label->text() == text)
                return qobject_cast<Widget *>(label->buddy());
        }
        return nullptr;
    }
    static QCheckBox *checkBox(const QWidget *parent, const QString &text)
    {
        const QList<QCheckBox *> boxes = parent->findChildren<QCheckBox *>();
        for (QCheckBox *box : boxes) {
            if (box->text() == text)
                return box;
        }
        return nullptr;
    }
    QVariantList contents() const
    {
        return m_plugin->pluginData().toMap().value("contents"_s).toList();
    }

    QPluginLoader m_loader{QStringLiteral(KRHVC_PLUGIN_FILE)};
    QPointer<QObject> m_object;
    Kora::KrPluginExtScreenInterface *m_plugin = nullptr;
    Kora::KrPluginGuiInterface *m_gui = nullptr;
};

void tst_GuiPlugin::initTestCase()
{
    qRegisterMetaType<QList<int>>("QList<int>");
    qRegisterMetaType<QMap<int, QVariant>>("QMap<int,QVariant>");
    QApplication::setQuitOnLastWindowClosed(false);
}

void tst_GuiPlugin::init()
{
    m_object = m_loader.instance();
    QVERIFY2(!m_object.isNull(), qPrintable(m_loader.errorString()));
    m_plugin = qobject_cast<Kora::KrPluginExtScreenInterface *>(m_object.data());
    QVERIFY(m_plugin != nullptr);
    QVariant data = QVariantMap{{"id"_s, 7}};
    QVERIFY(m_plugin->makeDefaultPluginData(&data));
    m_plugin->setPluginData(data);
    m_gui = m_plugin->gui();
    QVERIFY(m_gui != nullptr);
}

void tst_GuiPlugin::cleanup()
{
    delete m_object.data();
    // The widget and the dialog for the screen outlive the plug-in.
    const QWidgetList left = QApplication::topLevelWidgets();
    for (QWidget *widget : left) {
        if (widget->parentWidget() == nullptr)
            delete widget;
    }
}

void tst_GuiPlugin::oneGuiObject()
{
    QCOMPARE(m_plugin->gui(), m_gui);
    QVERIFY(m_gui->object() != nullptr);
    QCOMPARE(m_gui->object()->metaObject()->className(), "PluginKrHvcP2::KrHvcGui");
    QVERIFY(m_gui->object()->parent() == nullptr);
    QVERIFY(m_gui->stage() != nullptr);
    QCOMPARE(m_gui->maximumContentCount(), 20);
}

void tst_GuiPlugin::editsTheMapOfThePlugin()
{
    QVERIFY(m_gui->pluginData() != nullptr);
    QCOMPARE(*m_gui->pluginData(), m_plugin->pluginData());
    // Also after the host has replaced it.
    m_plugin->setPluginData(QVariantMap{{"id"_s, 99}});
    QCOMPARE(*m_gui->pluginData(), QVariant(QVariantMap{{"id"_s, 99}}));

    QMap<int, QVariantMap> screens{{3, {{"event"_s, QVariantList{1}}}}};
    Kora::KrPluginStage stage;
    stage.setScreens(screens);
    m_plugin->setStage(stage);
    QCOMPARE(m_gui->stage()->screens(), screens);
}

void tst_GuiPlugin::actionsByName_data()
{
    QTest::addColumn<QString>("objectName");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");

    QTest::newRow("add") << "Action_Plugin_HVC_Add_Detection_Setting"_s
                         << "&Add HVC Detection Setting..."_s
                         << "New HVC Detection Content"_s;
    QTest::newRow("screen") << "Action_Plugin_HVC_Screen_Property"_s
                            << "&HVC Plugin Property..."_s
                            << "Human Vision Components Property"_s;
}

void tst_GuiPlugin::actionsByName()
{
    QFETCH(QString, objectName);
    QFETCH(QString, text);
    QFETCH(QString, title);
    QAction *found = action(objectName);
    QVERIFY(found != nullptr);
    QCOMPARE(found->text(), text);
    QCOMPARE(action(objectName), found);
    QString actual;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        actual = dialog->windowTitle();
        dialog->reject();
    });
    found->trigger();
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(actual, title);
}

void tst_GuiPlugin::screenDialogChangesSettings()
{
    QSignalSpy updated(m_gui->object(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QVERIFY(updated.isValid());
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        auto *interval = field<QSpinBox>(dialog, "Getting Data Interval:"_s);
        QCOMPARE(interval->value(), 1000);
        typeValue(interval, "250"_s);
        typeValue(field<QSpinBox>(dialog, "Concurrent Event:"_s), "3"_s);
        typeValue(field<QSpinBox>(dialog, "Event Restriction:"_s), "0"_s);
        typeValue(field<QSpinBox>(dialog, "Age Detection:"_s), "600"_s);
        clickCheckBox(checkBox(dialog, "Visible Monitoring"_s));
        clickButton(dialog, QDialogButtonBox::Ok);
    });
    action("Action_Plugin_HVC_Screen_Property"_s)->trigger();
    QCOMPARE(driver.failures(), QString());

    QCOMPARE(updated.count(), 1);
    QCOMPARE(updated.at(0).at(0).toInt(), 7);
    QCOMPARE(updated.at(0).at(1).value<QList<int>>(), QList<int>());
    const QVariantMap stored{{"interval"_s, 250}, {"face-detection-confidence"_s, 0},
        {"face-direction-confidence"_s, 0}, {"age-confidence"_s, 600}, {"gender-confidence"_s, 0},
        {"concurrent"_s, 3}, {"event-sending-limit"_s, 0}, {"display-monitoring"_s, "true"_s}};
    QCOMPARE(m_plugin->pluginData().toMap().value("plugindata"_s), QVariant(stored));
    QVariantMap params = stored;
    params.insert("display-monitoring"_s, true);
    QCOMPARE(m_plugin->params(), QVariant(params));
    QCOMPARE(m_plugin->pluginData().toMap().value("id"_s), QVariant(7));
}

void tst_GuiPlugin::contentDialogChangesContents()
{
    QSignalSpy updated(m_gui->object(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        // A new screen has its names in "params" only.
        auto *name = field<QLineEdit>(dialog, "Name:"_s);
        QCOMPARE(name->text(), "20 - 30 yeas old (Male)"_s);
        auto *ageMin = field<QSpinBox>(dialog, "Age range:"_s);
        typeValue(ageMin, "25"_s);
        QTest::keyClick(ageMin, Qt::Key_Tab);
        QCOMPARE(name->text(), "25 - 30 years old (Male)"_s);
        clickButton(dialog, QDialogButtonBox::Ok);
    });
    m_gui->execContentPropertyDialog(1, QRect());
    QCOMPARE(driver.failures(), QString());

    QCOMPARE(updated.count(), 1);
    QCOMPARE(updated.at(0).at(1).value<QList<int>>(), QList<int>{1});
    QCOMPARE(contents().size(), 2);
    const QVariantMap params{{"age-min"_s, 25}, {"age-max"_s, 30}, {"gender"_s, "male"_s},
        {"default"_s, "true"_s}, {"name"_s, "20 - 30 (Male)"_s}};
    const QVariantMap entry{
        {"type"_s, 8}, {"name"_s, "25 - 30 years old (Male)"_s}, {"params"_s, params}};
    QCOMPARE(contents().at(1), QVariant(entry));
    QVERIFY(!contents().at(0).toMap().contains("name"_s));
}

void tst_GuiPlugin::newContentsAreAddedByTheHost()
{
    QSignalSpy requested(m_gui->object(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    QVERIFY(requested.isValid());
    ModalDriver driver;
    driver.onDialog([](QDialog *dialog) { clickButton(dialog, QDialogButtonBox::Ok); });
    action("Action_Plugin_HVC_Add_Detection_Setting"_s)->trigger();
    QCOMPARE(contents().size(), 2);
    QCOMPARE(requested.count(), 1);
    QCOMPARE(requested.at(0).at(0).toInt(), 7);
    const auto added = requested.at(0).at(1).value<QMap<int, QVariant>>();
    const QMap<int, QVariant> expected{
        {2, content("31 - 75 years old (Both)"_s, 31, 75, "both"_s)}};
    QCOMPARE(added, expected);

    // As a host does it.
    QVariantMap data = m_plugin->pluginData().toMap();
    data.insert("contents"_s, QVariantList(contents()) << added.value(2));
    m_plugin->setPluginData(data);
    QString sequence;
    driver.onDialog([&](QDialog *dialog) {
        sequence = field<QLineEdit>(dialog, "Name:"_s)->text();
        dialog->reject();
    });
    m_gui->execContentPropertyDialog(2, QRect());
    QCOMPARE(sequence, "31 - 75 years old (Both)"_s);
    QCOMPARE(driver.failures(), QString());
}

void tst_GuiPlugin::slotsByName()
{
    QStringList titles;
    ModalDriver driver;
    for (const char *slot : {"onActionPluginPropertyTriggerd", "onActionAddContentTriggerd"}) {
        for (int i = 0; i < 2; ++i) {
            driver.onDialog([&](QDialog *dialog) {
                titles.append(dialog->windowTitle());
                dialog->reject();
            });
        }
        QVERIFY(QMetaObject::invokeMethod(m_gui->object(), slot));
        QVERIFY(QMetaObject::invokeMethod(m_gui->object(), slot, Q_ARG(bool, true)));
    }
    QCOMPARE(driver.failures(), QString());
    const QString property = "Human Vision Components Property"_s;
    const QString content = "New HVC Detection Content"_s;
    QCOMPARE(titles, QStringList({property, property, content, content}));
    for (const char *slot : {"onContentPropertyRejected", "onScreenPropertyRejected",
             "saveContentDialogGeometory", "restoreContentDialogGoemetory"}) {
        QVERIFY(QMetaObject::invokeMethod(m_gui->object(), slot));
    }
}

void tst_GuiPlugin::signalsByName()
{
    QSignalSpy updated(m_gui->object(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QSignalSpy stage(m_gui->object(), SIGNAL(stageValuesUpdated()));
    QVERIFY(updated.isValid() && stage.isValid());
    // The interface's own signal reaches the listeners, and the plug-in reads its settings again.
    QVariantMap data = m_plugin->pluginData().toMap();
    data.insert("plugindata"_s, QVariantMap{{"interval"_s, 4321}});
    m_plugin->setPluginData(data);
    m_gui->screenValuesUpdated(5, {6});
    QCOMPARE(updated.count(), 1);
    QCOMPARE(updated.at(0).at(0).toInt(), 5);
    QCOMPARE(m_plugin->params().toMap().value("interval"_s).toInt(), 4321);
    QCOMPARE(stage.count(), 0);
}

void tst_GuiPlugin::widgetsForTheHost()
{
    QWidget *screenWidget = m_gui->screenPropertyWidget();
    QWidget *contentWidget = m_gui->contentPropertyWidget();
    QVERIFY(screenWidget != nullptr && contentWidget != nullptr);
    QCOMPARE(m_gui->screenPropertyWidget(), screenWidget);
    QCOMPARE(m_gui->contentPropertyWidget(), contentWidget);
    QCOMPARE(screenWidget->metaObject()->className(), "PluginKrHvcP2::KrHvcScreenPropertyWidget");
    QCOMPARE(contentWidget->metaObject()->className(), "PluginKrHvcP2::KrHvcContentPropertyWidget");
}

void tst_GuiPlugin::goesWithThePlugin()
{
    const QPointer<QObject> guarded(m_gui->object());
    const QPointer<QAction> guardedAction(action("Action_Plugin_HVC_Screen_Property"_s));
    QVERIFY(!guardedAction.isNull());
    delete m_object.data();
    QVERIFY(guarded.isNull());
    QVERIFY(guardedAction.isNull());
}

void tst_GuiPlugin::pluginDeletedWhileOpen_data()
{
    QTest::addColumn<QString>("what");

    QTest::newRow("screen dialog") << "Action_Plugin_HVC_Screen_Property"_s;
    QTest::newRow("new content") << "Action_Plugin_HVC_Add_Detection_Setting"_s;
}

void tst_GuiPlugin::pluginDeletedWhileOpen()
{
    QFETCH(QString, what);
    QAction *found = action(what);
    QVERIFY(found != nullptr);
    ModalDriver driver;
    driver.onDialog([&](QDialog * /*dialog*/) { delete m_object.data(); });
    found->trigger();
    QCOMPARE(driver.failures(), QString());
    QVERIFY(m_object.isNull());
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

QTEST_MAIN(tst_GuiPlugin)
#include "tst_guiplugin.moc"
