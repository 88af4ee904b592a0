#include "GuiTestData.h"
#include "ModalDriver.h"

#include "gui/KrHvcContentPropertyWidget.h"
#include "gui/KrHvcGui.h"
#include "gui/KrHvcScreenPropertyWidget.h"
#include "host/KrPluginStage.h"

#include <QAction>
#include <QCheckBox>
#include <QCursor>
#include <QGuiApplication>
#include <QLineEdit>
#include <QScreen>
#include <QSignalSpy>

#include <memory>

using namespace GuiTest;
using namespace PluginKrHvcP2;

namespace {

const QString NewTitle = QStringLiteral("New HVC Detection Content");
const QString EditTitle = QStringLiteral("HVC Detection Property");
const QString ScreenTitle = QStringLiteral("Human Vision Components Property");

QString fullScreenBox(const QString &parent)
{
    return ModalDriver::describeBox("critical"_s, "Can Not Add Setting"_s,
        "You can not add new setting(content).\n"
        "The maximum setting(content) counts is 20."_s,
        parent);
}

QVariantMap threeContents()
{
    return screen({content("a"_s, 0, 19, "both"_s), content("b"_s, 30, 75, "both"_s),
        content("c"_s, 20, 20, "male"_s)});
}

/// A host's variation of the interface.
class VariedGui : public KrHvcGui
{
public:
    int maximumContentCount() const override { return 3; }
    int execScreenPropertyDialog(const QRect &anchor) override
    {
        anchors.append(anchor);
        return QDialog::Rejected;
    }

    QList<QRect> anchors;
};

void press(QDialog *dialog, Qt::Key key)
{
    QWidget *target = dialog->focusWidget();
    QTest::keyClick(target != nullptr ? target : dialog, key);
}

} // namespace

class tst_Gui : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void metaMethods();
    void casts();
    void answers();
    void pointers();
    void nothingIsBuiltBeforeItIsAskedFor();
    void actions();
    void widgets();
    void widgetsForward();
    void slotsForward();
    void dialogs_data();
    void dialogs();

    void contentDialogTitles();
    void refusesMoreThanTwenty();
    void asksItsOwnInterface();
    void refusesWithoutFreeRange();
    void editOpensAlsoForAnIndexOutOfRange();
    void contentDialogPosition_data();
    void contentDialogPosition();
    void dialogsStayWhenTheCursorIsOnNoScreen();
    void screenDialogPosition_data();
    void screenDialogPosition();
    void screenDialogWithoutAnchor();

    void contentIsStored_data();
    void contentIsStored();
    void contentIsLeft_data();
    void contentIsLeft();
    void refusedOkKeepsTheDialog();
    void newContentIsRequested();
    void returnPressesFindRange();
    void opensInTheFirstField_data();
    void opensInTheFirstField();
    void screenIsStored_data();
    void screenIsStored();
    void screenIsLeft_data();
    void screenIsLeft();
    void screenIsReloadedForEachShowing();

    void okSavesGeometry_data();
    void okSavesGeometry();
    void refusedOkSavesNoGeometry();
    void geometryIsNotRestoredByItself();
    void savesGeometryBySlot();
    void slotsDoNothingBeforeTheDialogs();
    void slotsOfTheDialogs();

    void outlivesTheWidgets();
    void deletedWhileOpen_data();
    void deletedWhileOpen();
    void deletedInMessageBox_data();
    void deletedInMessageBox();
    void deletedByReceiver_data();
    void deletedByReceiver();
    void hostDeletesTheDialog();
    void screenWidgetAndDialogAreKept();
    void goesWithoutClosingWindows_data();
    void goesWithoutClosingWindows();

private:
    QAction *addAction() const { return m_gui->addContentActions().first(); }
    QAction *screenAction() const { return m_gui->pluginPropertyActions().first(); }
    bool invoke(const char *slot) const { return QMetaObject::invokeMethod(m_gui.get(), slot); }

    /// What deletedWhileOpen() and its like open: "add", "edit" or "screen".
    void open(const QString &what) const
    {
        if (what == "add"_s)
            addAction()->trigger();
        else if (what == "edit"_s)
            m_gui->execContentPropertyDialog(0, QRect());
        else if (what == "screen"_s)
            m_gui->execScreenPropertyDialog(QRect());
        else
            screenAction()->trigger();
    }

    std::unique_ptr<KrHvcGui> m_gui;
    QVariant m_pluginData;
};

void tst_Gui::initTestCase()
{
    qRegisterMetaType<QList<int>>("QList<int>");
    qRegisterMetaType<QMap<int, QVariant>>("QMap<int,QVariant>");
    QApplication::setQuitOnLastWindowClosed(false);
}

void tst_Gui::init()
{
    m_pluginData = threeContents();
    m_gui = std::make_unique<KrHvcGui>();
    m_gui->setPluginData(&m_pluginData);
    QCursor::setPos(400, 400);
}

void tst_Gui::cleanup()
{
    m_gui.reset();
    // The widget and the dialog for the screen outlive the object.
    const QWidgetList left = QApplication::topLevelWidgets();
    for (QWidget *widget : left) {
        if (widget->parentWidget() == nullptr)
            delete widget;
    }
}

void tst_Gui::metaMethods()
{
    const QStringList expected{
        "signal screenValuesUpdated(int screenId, QList<int> seqIndexList)"_s,
        "signal stageValuesUpdated()"_s,
        "signal requestAddContents(int screenId, QMap<int,QVariant> contents)"_s,
        "slot onContentPropertyAccepted()"_s,
        "slot onContentPropertyRejected()"_s,
        "slot onScreenPropertyAccepted()"_s,
        "slot onScreenPropertyRejected()"_s,
        "slot saveContentDialogGeometory()"_s,
        "slot restoreContentDialogGoemetory()"_s,
        "slot onScreenValuesUpdated(int screenId, QList<int> seqIndexList)"_s,
        "slot onActionPluginPropertyTriggerd(bool checked)"_s,
        "slot onActionPluginPropertyTriggerd() without its default argument"_s,
        "slot onActionAddContentTriggerd(bool checked)"_s,
        "slot onActionAddContentTriggerd() without its default argument"_s,
        "slot onAddingContentsRequested(int screenId, QMap<int,QVariant> contents)"_s,
    };
    QCOMPARE(describeMethods(KrHvcGui::staticMetaObject), expected);
}

void tst_Gui::casts()
{
    QCOMPARE(m_gui->metaObject()->className(), "PluginKrHvcP2::KrHvcGui");
    Kora::KrPluginGuiInterface *interface = m_gui.get();
    QCOMPARE(interface->object(), m_gui.get());
    QVERIFY(m_gui->parent() == nullptr);
    QObject parent;
    const auto *child = new KrHvcGui(&parent);
    QCOMPARE(child->parent(), &parent);
}

void tst_Gui::answers()
{
    const Kora::KrPluginGuiInterface *interface = m_gui.get();
    QCOMPARE(interface->hasScreenPropertyWidget(), true);
    QCOMPARE(interface->screenPropertyKind(), 1);
    QCOMPARE(interface->hasStagePropertyWidget(), false);
    QCOMPARE(interface->hasScreenPropertyDialog(), true);
    QCOMPARE(interface->hasPluginPropertyActions(), true);
    QCOMPARE(interface->canEditContents(), true);
    QCOMPARE(interface->maximumContentCount(), 20);
    QCOMPARE(interface->contentKind(), 2);
    QCOMPARE(interface->canReorderContents(), false);
    QCOMPARE(interface->hasContentPropertyWidget(), true);
    QCOMPARE(interface->canAddContents(), true);
}

void tst_Gui::pointers()
{
    KrHvcGui gui;
    Kora::KrPluginGuiInterface &interface = gui;
    QVERIFY(interface.pluginData() == nullptr);
    QVERIFY(interface.stage() == nullptr);
    Kora::KrPluginStage stage;
    interface.setPluginData(&m_pluginData);
    interface.setStage(&stage);
    QCOMPARE(interface.pluginData(), &m_pluginData);
    QCOMPARE(interface.stage(), &stage);
}

void tst_Gui::nothingIsBuiltBeforeItIsAskedFor()
{
    QCOMPARE(QApplication::topLevelWidgets(), QWidgetList());
    QCOMPARE(m_gui->children(), QObjectList());
}

void tst_Gui::actions()
{
    const QList<QAction *> add = m_gui->addContentActions();
    QCOMPARE(add.size(), 1);
    QCOMPARE(add.first()->text(), "&Add HVC Detection Setting..."_s);
    QCOMPARE(add.first()->objectName(), "Action_Plugin_HVC_Add_Detection_Setting"_s);
    QVERIFY(add.first()->parent() == nullptr);
    QCOMPARE(m_gui->addContentActions(), add);

    const QList<QAction *> property = m_gui->pluginPropertyActions();
    QCOMPARE(property.size(), 1);
    QCOMPARE(property.first()->text(), "&HVC Plugin Property..."_s);
    QCOMPARE(property.first()->objectName(), "Action_Plugin_HVC_Screen_Property"_s);
    QVERIFY(property.first()->parent() == nullptr);
    QCOMPARE(m_gui->pluginPropertyActions(), property);

    // The object's destructor takes them back from whoever is their parent by then.
    QObject menu;
    add.first()->setParent(&menu);
    const QPointer<QAction> guarded(add.first());
    const QPointer<QAction> other(property.first());
    m_gui.reset();
    QVERIFY(guarded.isNull());
    QVERIFY(other.isNull());
}

void tst_Gui::widgets()
{
    QWidget *contentWidget = m_gui->contentPropertyWidget();
    QWidget *screenWidget = m_gui->screenPropertyWidget();
    QVERIFY(qobject_cast<KrHvcContentPropertyWidget *>(contentWidget) != nullptr);
    QVERIFY(qobject_cast<KrHvcScreenPropertyWidget *>(screenWidget) != nullptr);
    QVERIFY(contentWidget->parent() == nullptr);
    QVERIFY(screenWidget->parent() == nullptr);
    QCOMPARE(m_gui->contentPropertyWidget(), contentWidget);
    QCOMPARE(m_gui->screenPropertyWidget(), screenWidget);
    // Created is not loaded.
    QCOMPARE(screenWidget->findChild<QSpinBox *>("interval"_s)->value(), 1000);
    QCOMPARE(contentWidget->findChild<QLineEdit *>("name"_s)->text(), QString());
}

void tst_Gui::widgetsForward()
{
    QSignalSpy updated(m_gui.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QSignalSpy requested(m_gui.get(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    QSignalSpy stage(m_gui.get(), SIGNAL(stageValuesUpdated()));
    QVERIFY(updated.isValid() && requested.isValid() && stage.isValid());

    auto *contentWidget
        = qobject_cast<KrHvcContentPropertyWidget *>(m_gui->contentPropertyWidget());
    contentWidget->loadContent(2);
    contentWidget->findChild<QLineEdit *>("name"_s)->setText("C"_s);
    QVERIFY(contentWidget->validateAndStore());
    QCOMPARE(updated.count(), 1);
    QCOMPARE(updated.at(0).at(0).toInt(), 7);
    QCOMPARE(updated.at(0).at(1).value<QList<int>>(), QList<int>{2});

    auto *screenWidget = qobject_cast<KrHvcScreenPropertyWidget *>(m_gui->screenPropertyWidget());
    screenWidget->loadValues();
    QVERIFY(screenWidget->applyValues());
    QCOMPARE(updated.count(), 2);
    QCOMPARE(updated.at(1).at(0).toInt(), 7);
    QCOMPARE(updated.at(1).at(1).value<QList<int>>(), QList<int>());
    QCOMPARE(requested.count(), 0);
    QCOMPARE(stage.count(), 0);
}

void tst_Gui::slotsForward()
{
    QSignalSpy updated(m_gui.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QSignalSpy requested(m_gui.get(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    const QList<int> indexes{3, 1, 2};
    QVERIFY(QMetaObject::invokeMethod(
        m_gui.get(), "onScreenValuesUpdated", Q_ARG(int, -5), Q_ARG(QList<int>, indexes)));
    QCOMPARE(updated.count(), 1);
    QCOMPARE(updated.at(0).at(0).toInt(), -5);
    QCOMPARE(updated.at(0).at(1).value<QList<int>>(), indexes);

    using Contents = QMap<int, QVariant>;
    const Contents contents{{4, 44}, {0, "x"_s}};
    QVERIFY(QMetaObject::invokeMethod(m_gui.get(), "onAddingContentsRequested", Q_ARG(int, 8),
        QArgument<Contents>("QMap<int,QVariant>", contents)));
    QCOMPARE(requested.count(), 1);
    QCOMPARE(requested.at(0).at(0).toInt(), 8);
    QCOMPARE(requested.at(0).at(1).value<Contents>(), contents);
    QCOMPARE(updated.count(), 1);
}

void tst_Gui::dialogs_data()
{
    QTest::addColumn<QString>("what");

    QTest::newRow("content dialog") << "edit"_s;
    QTest::newRow("screen dialog") << "screen"_s;
}

void tst_Gui::dialogs()
{
    QFETCH(QString, what);
    const QWidget *inner
        = what == "edit"_s ? m_gui->contentPropertyWidget() : m_gui->screenPropertyWidget();
    QPointer<QDialog> first;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        first = dialog;
        QVERIFY(dialog->parentWidget() == nullptr);
        QVERIFY((dialog->windowFlags() & Qt::WindowContextHelpButtonHint) == 0);
        const auto *layout = qobject_cast<QBoxLayout *>(dialog->layout());
        QVERIFY(layout != nullptr);
        QCOMPARE(layout->direction(), QBoxLayout::TopToBottom);
        QCOMPARE(layout->count(), 2);
        QCOMPARE(layout->itemAt(0)->widget(), inner);
        const auto *buttons = qobject_cast<QDialogButtonBox *>(layout->itemAt(1)->widget());
        QVERIFY(buttons != nullptr);
        QCOMPARE(
            int(buttons->standardButtons()), int(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
        dialog->reject();
    });
    driver.onDialog([&](QDialog *dialog) {
        QCOMPARE(dialog, first.data());
        dialog->reject();
    });
    open(what);
    open(what);
    QCOMPARE(driver.failures(), QString());
    QVERIFY(!first.isNull());
    QVERIFY(!first->isVisible());
}

void tst_Gui::contentDialogTitles()
{
    QStringList titles;
    QStringList names;
    ModalDriver driver;
    for (int i = 0; i < 4; ++i) {
        driver.onDialog([&](QDialog *dialog) {
            titles.append(dialog->windowTitle());
            names.append(dialog->findChild<QLineEdit *>("name"_s)->text());
            dialog->reject();
        });
    }
    m_gui->execContentPropertyDialog(1, QRect());
    addAction()->trigger();
    QVERIFY(invoke("onActionAddContentTriggerd"));
    m_gui->execContentPropertyDialog(0, QRect());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(titles, QStringList({EditTitle, NewTitle, NewTitle, EditTitle}));
    // 0-19 and 30-75 for Both and 20 for Male.
    const QString proposal = "21 - 29 years old (Both)"_s;
    QCOMPARE(names, QStringList({"b"_s, proposal, proposal, "a"_s}));
}

void tst_Gui::refusesMoreThanTwenty()
{
    ModalDriver driver;
    m_pluginData = screen(threeYearContents(20));
    driver.confirmBox();
    addAction()->trigger();
    QCOMPARE(driver.boxes(), QStringList{fullScreenBox("none"_s)});
    QCOMPARE(driver.failures(), QString());

    m_pluginData = screen(threeYearContents(19));
    QString title;
    QString sequence;
    driver.onDialog([&](QDialog *dialog) {
        title = dialog->windowTitle();
        sequence = dialog->findChild<QLabel *>("sequenceNumber"_s)->text();
        dialog->reject();
    });
    addAction()->trigger();
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(title, NewTitle);
    QCOMPARE(sequence, "20"_s);

    // Now that the dialog exists it is the parent.
    m_pluginData = screen(threeYearContents(21));
    driver.confirmBox();
    QVERIFY(
        QMetaObject::invokeMethod(m_gui.get(), "onActionAddContentTriggerd", Q_ARG(bool, true)));
    QCOMPARE(driver.boxes().size(), 2);
    QCOMPARE(driver.boxes().last(), fullScreenBox("QDialog"_s));

    // Editing knows no limit.
    driver.onDialog([&](QDialog *dialog) {
        title = dialog->windowTitle();
        dialog->reject();
    });
    m_gui->execContentPropertyDialog(20, QRect());
    QCOMPARE(title, EditTitle);
    QCOMPARE(driver.failures(), QString());
}

void tst_Gui::asksItsOwnInterface()
{
    VariedGui gui;
    gui.setPluginData(&m_pluginData);
    ModalDriver driver;
    driver.confirmBox();
    gui.addContentActions().first()->trigger();
    QCOMPARE(driver.boxes(),
        QStringList{ModalDriver::describeBox("critical"_s, "Can Not Add Setting"_s,
            "You can not add new setting(content).\n"
            "The maximum setting(content) counts is 3."_s,
            "none"_s)});
    gui.pluginPropertyActions().first()->trigger();
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(gui.anchors, QList<QRect>{QRect()});
}

void tst_Gui::refusesWithoutFreeRange()
{
    const QString box = ModalDriver::describeBox(
        "critical"_s, QString(), "There is not an avalable range of age."_s);
    ModalDriver driver;
    for (int i = 0; i < 4; ++i)
        driver.confirmBox();
    m_pluginData = screen({content("a"_s, 0, 75, "both"_s)});
    addAction()->trigger();
    m_pluginData = screen({});
    addAction()->trigger();
    m_pluginData = QVariant();
    addAction()->trigger();
    KrHvcGui withoutData;
    withoutData.addContentActions().first()->trigger();
    QCOMPARE(driver.boxes(), QStringList({box, box, box, box}));
    QCOMPARE(driver.failures(), QString());
}

void tst_Gui::editOpensAlsoForAnIndexOutOfRange()
{
    const QVariant before = m_pluginData;
    QSignalSpy updated(m_gui.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    ModalDriver driver;
    for (int i = 0; i < 2; ++i)
        driver.onDialog([](QDialog *dialog) { clickButton(dialog, QDialogButtonBox::Cancel); });
    m_gui->execContentPropertyDialog(-1, QRect());
    m_gui->execContentPropertyDialog(99, QRect());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(m_pluginData, before);
    QCOMPARE(updated.count(), 0);
}

void tst_Gui::contentDialogPosition_data()
{
    QTest::addColumn<QPoint>("cursor");
    QTest::addColumn<QRect>("anchor");
    QTest::addColumn<QPoint>("expected"); // on the screen of the offscreen platform, 800 x 600

    QTest::newRow("null anchor: 100 left of the cursor, 10 below it, 300 up")
        << QPoint(400, 500) << QRect() << QPoint(300, 210);
    QTest::newRow("null anchor near the left edge") << QPoint(99, 500) << QRect() << QPoint(0, 210);
    QTest::newRow("null anchor near the right edge")
        << QPoint(799, 500) << QRect() << QPoint(499, 210);
    QTest::newRow("null anchor near the top: below the cursor")
        << QPoint(400, 100) << QRect() << QPoint(300, 110);
    QTest::newRow("null anchor near the bottom") << QPoint(400, 599) << QRect() << QPoint(300, 299);
    QTest::newRow("an anchor counts instead of the cursor")
        << QPoint(10, 10) << QRect(450, 500, 30, 20) << QPoint(450, 200);
    QTest::newRow("an anchor at the right")
        << QPoint(10, 10) << QRect(500, 500, 30, 20) << QPoint(499, 200);
    QTest::newRow("an anchor near the top: its bottom")
        << QPoint(10, 10) << QRect(450, 50, 30, 20) << QPoint(450, 69);
}

void tst_Gui::contentDialogPosition()
{
    QFETCH(QPoint, cursor);
    QFETCH(QRect, anchor);
    QFETCH(QPoint, expected);
    QCOMPARE(QGuiApplication::primaryScreen()->geometry(), QRect(0, 0, 800, 600));
    QCursor::setPos(cursor);
    QPoint edited;
    QPoint added;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        edited = dialog->pos();
        dialog->reject();
    });
    m_gui->execContentPropertyDialog(1, anchor);
    QCOMPARE(edited, expected);
    if (anchor.isNull()) {
        driver.onDialog([&](QDialog *dialog) {
            added = dialog->pos();
            dialog->reject();
        });
        addAction()->trigger();
        QCOMPARE(added, expected);
    }
    QCOMPARE(driver.failures(), QString());
}

void tst_Gui::dialogsStayWhenTheCursorIsOnNoScreen()
{
    QVector<QPoint> positions;
    ModalDriver driver;
    const QRect anchor(200, 500, 30, 20);
    for (const QPoint &cursor : {QPoint(10, 10), QPoint(5000, 5000)}) {
        QCursor::setPos(cursor);
        for (int i = 0; i < 2; ++i) {
            driver.onDialog([&](QDialog *dialog) {
                positions.append(dialog->pos());
                dialog->move(61, 62);
                dialog->reject();
            });
        }
        m_gui->execContentPropertyDialog(0, anchor);
        m_gui->execScreenPropertyDialog(anchor);
    }
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(positions,
        QVector<QPoint>({QPoint(200, 200), QPoint(200, 200), QPoint(61, 62), QPoint(61, 62)}));
}

void tst_Gui::screenDialogPosition_data()
{
    QTest::addColumn<QRect>("anchor");
    QTest::addColumn<QPoint>("expected");

    QTest::newRow("room on all sides") << QRect(200, 500, 30, 20) << QPoint(200, 200);
    QTest::newRow("just room on the right") << QRect(439, 500, 30, 20) << QPoint(439, 200);
    QTest::newRow("no room on the right") << QRect(440, 500, 30, 20) << QPoint(439, 200);
    QTest::newRow("left of the screen") << QRect(-50, 500, 30, 20) << QPoint(0, 200);
    QTest::newRow("no room above") << QRect(200, 50, 30, 20) << QPoint(200, 69);
    QTest::newRow("below the screen") << QRect(200, 900, 30, 20) << QPoint(200, 299);
    QTest::newRow("above the screen") << QRect(200, -90, 30, 20) << QPoint(200, 20);
}

void tst_Gui::screenDialogPosition()
{
    QFETCH(QRect, anchor);
    QFETCH(QPoint, expected);
    QPoint actual;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        actual = dialog->pos();
        dialog->reject();
    });
    QCOMPARE(m_gui->execScreenPropertyDialog(anchor), int(QDialog::Rejected));
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(actual, expected);
}

void tst_Gui::screenDialogWithoutAnchor()
{
    QSize asked;
    QPoint second;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), ScreenTitle);
        asked = dialog->size().expandedTo(QSize(300, 300));
        // Only what does not fit into 300 x 300 may make it larger.
        const QSize least = QSize(300, 300).expandedTo(dialog->minimumSizeHint());
        QCOMPARE(dialog->width(), least.width());
        QVERIFY(dialog->height() >= least.height());
        QVERIFY(dialog->height() <= qMax(least.height(), dialog->heightForWidth(300)));
        dialog->move(123, 45);
        dialog->resize(500, 600);
        dialog->reject();
    });
    screenAction()->trigger();
    driver.onDialog([&](QDialog *dialog) {
        second = dialog->pos();
        QCOMPARE(dialog->size(), asked);
        dialog->reject();
    });
    QVERIFY(invoke("onActionPluginPropertyTriggerd"));
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(second, QPoint(123, 45));
}

void tst_Gui::contentIsStored_data()
{
    QTest::addColumn<QString>("how");

    QTest::newRow("Ok clicked") << "click"_s;
    QTest::newRow("Return in the name") << "name"_s;
    QTest::newRow("Return in an age") << "ageMax"_s;
    QTest::newRow("Return in the default check box") << "default"_s;
    QTest::newRow("Return in the gender") << "gender"_s;
}

void tst_Gui::contentIsStored()
{
    QFETCH(QString, how);
    QSignalSpy updated(m_gui.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QSignalSpy requested(m_gui.get(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        clickCheckBox(dialog->findChild<QWidget *>("auto"_s));
        auto *name = dialog->findChild<QLineEdit *>("name"_s);
        name->setFocus();
        name->selectAll();
        QTest::keyClicks(name, "Boys"_s);
        typeValue(dialog->findChild<QSpinBox *>("ageMax"_s), "25"_s);
        if (how == "click"_s) {
            clickButton(dialog, QDialogButtonBox::Ok);
        } else {
            dialog->findChild<QWidget *>(how)->setFocus();
            press(dialog, Qt::Key_Return);
        }
    });
    m_gui->execContentPropertyDialog(2, QRect());
    QCOMPARE(driver.failures(), QString());

    QVariantMap expected = threeContents();
    QVariantList contents = expected.value("contents"_s).toList();
    contents[2] = content("Boys"_s, 20, 25, "male"_s);
    expected.insert("contents"_s, contents);
    QCOMPARE(m_pluginData, QVariant(expected));
    QCOMPARE(updated.count(), 1);
    QCOMPARE(updated.at(0).at(0).toInt(), 7);
    QCOMPARE(updated.at(0).at(1).value<QList<int>>(), QList<int>{2});
    QCOMPARE(requested.count(), 0);
}

void tst_Gui::contentIsLeft_data()
{
    QTest::addColumn<QString>("how");

    QTest::newRow("Cancel clicked") << "click"_s;
    QTest::newRow("Escape") << "escape"_s;
    QTest::newRow("window closed") << "close"_s;
}

void tst_Gui::contentIsLeft()
{
    QFETCH(QString, how);
    QSignalSpy updated(m_gui.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    const QVariant before = m_pluginData;
    QPoint saved;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        dialog->findChild<QLineEdit *>("name"_s)->setText("other"_s);
        dialog->move(33, 44);
        dialog->resize(555, 444);
        if (how == "click"_s)
            clickButton(dialog, QDialogButtonBox::Cancel);
        else if (how == "escape"_s)
            press(dialog, Qt::Key_Escape);
        else
            dialog->close();
    });
    m_gui->execContentPropertyDialog(2, QRect());
    QCOMPARE(m_pluginData, before);
    QCOMPARE(updated.count(), 0);

    // It is loaded afresh, and its geometry has been saved.
    driver.onDialog([&](QDialog *dialog) {
        QCOMPARE(dialog->findChild<QLineEdit *>("name"_s)->text(), "c"_s);
        dialog->move(1, 2);
        QVERIFY(invoke("restoreContentDialogGoemetory"));
        saved = dialog->pos();
        QCOMPARE(dialog->size(), QSize(555, 444));
        dialog->reject();
    });
    m_gui->execContentPropertyDialog(2, QRect());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(saved, QPoint(33, 44));
}

void tst_Gui::refusedOkKeepsTheDialog()
{
    const QVariant before = m_pluginData;
    QStringList focus;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        auto *name = dialog->findChild<QLineEdit *>("name"_s);
        name->setText("a"_s);
        clickButton(dialog, QDialogButtonBox::Ok);
        QVERIFY(dialog->isVisible());
        focus.append(dialog->focusWidget()->objectName());
        // Whoever types now replaces the selected name.
        QTest::keyClicks(dialog->focusWidget(), "z"_s);
        QCOMPARE(name->text(), "z"_s);
    });
    driver.confirmBox();
    driver.onDialog([&](QDialog *dialog) {
        typeValue(dialog->findChild<QSpinBox *>("ageMin"_s), "10"_s);
        typeValue(dialog->findChild<QSpinBox *>("ageMax"_s), "15"_s);
        press(dialog, Qt::Key_Return);
        QVERIFY(dialog->isVisible());
        focus.append(dialog->focusWidget()->objectName());
        dialog->reject();
    });
    driver.confirmBox();
    m_gui->execContentPropertyDialog(2, QRect());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(focus, QStringList({"name"_s, "ageMin"_s}));
    QCOMPARE(m_pluginData, before);
    QCOMPARE(driver.boxes().size(), 2);
    QCOMPARE(driver.boxes().last(),
        ModalDriver::describeBox("critical"_s, "Including Age Range"_s,
            "The specified age range is included in the other specified range.\n"
            "Please specify again."_s));
}

void tst_Gui::newContentIsRequested()
{
    QSignalSpy updated(m_gui.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QSignalSpy requested(m_gui.get(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    const QVariant before = m_pluginData;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        auto *findRange = dialog->findChild<QPushButton *>("findRange"_s);
        QTest::mouseClick(findRange, Qt::LeftButton);
        QTest::mouseClick(findRange, Qt::LeftButton);
        clickCheckBox(dialog->findChild<QWidget *>("default"_s));
        press(dialog, Qt::Key_Return);
    });
    addAction()->trigger();
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(m_pluginData, before);
    QCOMPARE(updated.count(), 0);
    QCOMPARE(requested.count(), 1);
    QCOMPARE(requested.at(0).at(0).toInt(), 7);
    // Proposed is 21-29 for Both, the last one; behind it are 21-29 for Male, 20-29 for Female.
    const QMap<int, QVariant> expected{
        {3, content("20 - 29 years old (Female)"_s, 20, 29, "female"_s, "true"_s)}};
    const auto actual = requested.at(0).at(1).value<QMap<int, QVariant>>();
    QCOMPARE(actual, expected);
}

void tst_Gui::returnPressesFindRange()
{
    const QVariant before = m_pluginData;
    QSignalSpy updated(m_gui.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QStringList names;
    ModalDriver driver;
    const auto pressTwice = [&](QDialog *dialog) {
        auto *findRange = dialog->findChild<QPushButton *>("findRange"_s);
        findRange->setFocus();
        for (int i = 0; i < 2; ++i) {
            press(dialog, Qt::Key_Return);
            QVERIFY(dialog->isVisible());
            names.append(dialog->findChild<QLineEdit *>("name"_s)->text());
        }
    };
    driver.onDialog([&](QDialog *dialog) {
        pressTwice(dialog);
        press(dialog, Qt::Key_Escape); // with the focus on the button
    });
    m_gui->execContentPropertyDialog(2, QRect());
    QCOMPARE(m_pluginData, before);

    // Anywhere else it means Ok again, also in a dialog that was left from the button.
    driver.onDialog([&](QDialog *dialog) {
        pressTwice(dialog);
        dialog->findChild<QWidget *>("name"_s)->setFocus();
        press(dialog, Qt::Key_Return);
    });
    m_gui->execContentPropertyDialog(2, QRect());
    driver.onDialog([&](QDialog *dialog) {
        dialog->findChild<QLineEdit *>("name"_s)->setText("of its own"_s);
        press(dialog, Qt::Key_Return);
    });
    m_gui->execContentPropertyDialog(2, QRect());
    QCOMPARE(driver.failures(), QString());
    // The only one free at 20 is for Female; behind it is the one for Both, then where it began.
    const QStringList round{"21 - 29 years old (Both)"_s, "20 - 20 years old (Male)"_s};
    QCOMPARE(names, round + round);
    QCOMPARE(updated.count(), 2);
}

void tst_Gui::opensInTheFirstField_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("how"); // it was left before
    QTest::addColumn<QString>("field");

    for (const QString &how :
        {"Ok"_s, "Cancel"_s, "Escape"_s, "Return"_s, "closed"_s, "by the host"_s}) {
        QTest::newRow(qPrintable("editing, "_s + how)) << "edit"_s << how << "name"_s;
        QTest::newRow(qPrintable("adding, "_s + how)) << "add"_s << how << "name"_s;
        QTest::newRow(qPrintable("screen, "_s + how)) << "screen"_s << how << "interval"_s;
    }
}

void tst_Gui::opensInTheFirstField()
{
    QFETCH(QString, what);
    QFETCH(QString, how);
    QFETCH(QString, field);
    QStringList focused;
    ModalDriver driver;
    for (int i = 0; i < 3; ++i) {
        driver.onDialog([&](QDialog *dialog) {
            QWidget *focus = QApplication::focusWidget();
            focused.append(focus != nullptr ? focus->objectName() : "nothing"_s);
            const auto *buttons = dialog->findChild<QDialogButtonBox *>();
            QPushButton *cancel = buttons->button(QDialogButtonBox::Cancel);
            QVERIFY(buttons->button(QDialogButtonBox::Ok)->isDefault());
            cancel->setFocus();
            if (how == "Ok"_s) {
                buttons->button(QDialogButtonBox::Ok)->setFocus();
                clickButton(dialog, QDialogButtonBox::Ok);
            } else if (how == "Cancel"_s) {
                clickButton(dialog, QDialogButtonBox::Cancel);
            } else if (how == "Escape"_s) {
                press(dialog, Qt::Key_Escape);
            } else if (how == "Return"_s) {
                press(dialog, Qt::Key_Return); // on Cancel
            } else if (how == "closed"_s) {
                dialog->close();
            } else {
                dialog->hide();
            }
        });
        open(what);
    }
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(focused, QStringList({field, field, field}));
}

void tst_Gui::screenIsStored_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("changed");

    QTest::newRow("Ok clicked") << "click"_s << true;
    QTest::newRow("Return in a spin box") << "interval"_s << true;
    QTest::newRow("Return in the check box") << "visibleMonitoring"_s << true;
    QTest::newRow("Ok without a change") << "click"_s << false;
}

void tst_Gui::screenIsStored()
{
    QFETCH(QString, how);
    QFETCH(bool, changed);
    const QVariantMap settings{{"interval"_s, 500}, {"face-detection-confidence"_s, 0},
        {"face-direction-confidence"_s, 0}, {"age-confidence"_s, 0}, {"gender-confidence"_s, 0},
        {"concurrent"_s, 1}, {"event-sending-limit"_s, 5000}};
    QVariantMap stored = threeContents();
    if (!changed)
        stored.insert("plugindata"_s, settings);
    m_pluginData = stored;
    QSignalSpy updated(m_gui.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        // Missing keys are changes already.
        QCOMPARE(dialog->findChild<QSpinBox *>("interval"_s)->value(), 500);
        if (how == "click"_s) {
            clickButton(dialog, QDialogButtonBox::Ok);
        } else {
            dialog->findChild<QWidget *>(how)->setFocus();
            press(dialog, Qt::Key_Return);
        }
    });
    QCOMPARE(m_gui->execScreenPropertyDialog(QRect()), int(QDialog::Accepted));
    QCOMPARE(driver.failures(), QString());
    stored.insert("plugindata"_s, settings);
    QCOMPARE(m_pluginData, QVariant(stored));
    QCOMPARE(updated.count(), changed ? 1 : 0);
    if (changed) {
        QCOMPARE(updated.at(0).at(0).toInt(), 7);
        QCOMPARE(updated.at(0).at(1).value<QList<int>>(), QList<int>());
    }
}

void tst_Gui::screenIsLeft_data()
{
    QTest::addColumn<QString>("how");

    QTest::newRow("Cancel clicked") << "click"_s;
    QTest::newRow("Escape") << "escape"_s;
    QTest::newRow("window closed") << "close"_s;
}

void tst_Gui::screenIsLeft()
{
    QFETCH(QString, how);
    QSignalSpy updated(m_gui.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    const QVariant before = m_pluginData;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        typeValue(dialog->findChild<QSpinBox *>("interval"_s), "777"_s);
        if (how == "click"_s)
            clickButton(dialog, QDialogButtonBox::Cancel);
        else if (how == "escape"_s)
            press(dialog, Qt::Key_Escape);
        else
            dialog->close();
    });
    QCOMPARE(m_gui->execScreenPropertyDialog(QRect()), int(QDialog::Rejected));
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(m_pluginData, before);
    QCOMPARE(updated.count(), 0);
}

void tst_Gui::screenIsReloadedForEachShowing()
{
    QVector<int> shown;
    ModalDriver driver;
    for (int i = 0; i < 2; ++i) {
        driver.onDialog([&](QDialog *dialog) {
            shown.append(dialog->findChild<QSpinBox *>("interval"_s)->value());
            dialog->findChild<QSpinBox *>("interval"_s)->setValue(99);
            dialog->reject();
        });
    }
    m_gui->execScreenPropertyDialog(QRect());
    m_pluginData = QVariantMap{{"plugindata"_s, QVariantMap{{"interval"_s, 1234}}}};
    m_gui->execScreenPropertyDialog(QRect());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(shown, QVector<int>({500, 1234}));
}

void tst_Gui::okSavesGeometry_data()
{
    QTest::addColumn<bool>("isNew");

    QTest::newRow("editing") << false;
    QTest::newRow("adding") << true;
}

void tst_Gui::okSavesGeometry()
{
    QFETCH(bool, isNew);
    QRect restored;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        dialog->move(61, 62);
        dialog->resize(501, 402);
        clickButton(dialog, QDialogButtonBox::Ok);
    });
    open(isNew ? "add"_s : "edit"_s);
    driver.onDialog([&](QDialog *dialog) {
        dialog->move(1, 2);
        dialog->resize(600, 500);
        QVERIFY(invoke("restoreContentDialogGoemetory"));
        restored = QRect(dialog->pos(), dialog->size());
        dialog->reject();
    });
    open("edit"_s);
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(restored, QRect(61, 62, 501, 402));
}

void tst_Gui::refusedOkSavesNoGeometry()
{
    QRect restored;
    ModalDriver driver;
    driver.onDialog([](QDialog *dialog) {
        dialog->move(61, 62);
        dialog->resize(501, 402);
        clickButton(dialog, QDialogButtonBox::Cancel);
    });
    m_gui->execContentPropertyDialog(2, QRect());
    driver.onDialog([&](QDialog *dialog) {
        dialog->move(11, 12);
        dialog->resize(601, 502);
        dialog->findChild<QLineEdit *>("name"_s)->setText("a"_s);
        clickButton(dialog, QDialogButtonBox::Ok);
        QVERIFY(dialog->isVisible());
        QVERIFY(invoke("restoreContentDialogGoemetory"));
        restored = QRect(dialog->pos(), dialog->size());
        dialog->reject();
    });
    driver.confirmBox();
    m_gui->execContentPropertyDialog(2, QRect());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(restored, QRect(61, 62, 501, 402));
}

void tst_Gui::geometryIsNotRestoredByItself()
{
    QCursor::setPos(400, 500);
    QPoint second;
    ModalDriver driver;
    driver.onDialog([](QDialog *dialog) {
        dialog->move(61, 62);
        clickButton(dialog, QDialogButtonBox::Cancel);
    });
    m_gui->execContentPropertyDialog(2, QRect());
    driver.onDialog([&](QDialog *dialog) {
        second = dialog->pos();
        dialog->reject();
    });
    m_gui->execContentPropertyDialog(2, QRect());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(second, QPoint(300, 210));
}

void tst_Gui::savesGeometryBySlot()
{
    QRect restored;
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        dialog->move(71, 72);
        dialog->resize(511, 412);
        QVERIFY(invoke("saveContentDialogGeometory"));
        dialog->move(1, 2);
        dialog->resize(600, 500);
        QVERIFY(invoke("restoreContentDialogGoemetory"));
        restored = QRect(dialog->pos(), dialog->size());
        dialog->reject();
    });
    m_gui->execContentPropertyDialog(2, QRect());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(restored, QRect(71, 72, 511, 412));
}

void tst_Gui::slotsDoNothingBeforeTheDialogs()
{
    const QVariant before = m_pluginData;
    for (const char *slot : {"saveContentDialogGeometory", "restoreContentDialogGoemetory",
             "onContentPropertyRejected", "onScreenPropertyRejected"}) {
        QVERIFY(invoke(slot));
    }
    QCOMPARE(m_pluginData, before);
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows)
        QVERIFY(!window->isVisible());
}

void tst_Gui::slotsOfTheDialogs()
{
    QVector<int> results;
    ModalDriver driver;
    for (const char *slot : {"onScreenPropertyAccepted", "onScreenPropertyRejected"}) {
        driver.onDialog([&](QDialog * /*dialog*/) { QVERIFY(invoke(slot)); });
        results.append(m_gui->execScreenPropertyDialog(QRect()));
    }
    QCOMPARE(results, QVector<int>({QDialog::Accepted, QDialog::Rejected}));

    QSignalSpy updated(m_gui.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    for (const char *slot : {"onContentPropertyRejected", "onContentPropertyAccepted"}) {
        driver.onDialog([&](QDialog *dialog) {
            dialog->findChild<QLineEdit *>("name"_s)->setText("new"_s);
            QVERIFY(invoke(slot));
        });
        m_gui->execContentPropertyDialog(2, QRect());
    }
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(updated.count(), 1);
}

void tst_Gui::outlivesTheWidgets()
{
    // A host that puts the widgets into a window of its own deletes them with it.
    {
        QWidget window;
        m_gui->contentPropertyWidget()->setParent(&window);
        m_gui->screenPropertyWidget()->setParent(&window);
    }
    ModalDriver driver;
    for (int i = 0; i < 2; ++i)
        driver.onDialog([](QDialog *dialog) { clickButton(dialog, QDialogButtonBox::Ok); });
    m_gui->execContentPropertyDialog(0, QRect());
    QCOMPARE(m_gui->execScreenPropertyDialog(QRect()), int(QDialog::Accepted));
    QCOMPARE(driver.failures(), QString());
}

void tst_Gui::deletedWhileOpen_data()
{
    QTest::addColumn<QString>("what");

    QTest::newRow("adding") << "add"_s;
    QTest::newRow("editing") << "edit"_s;
    QTest::newRow("screen dialog") << "screen"_s;
    QTest::newRow("screen dialog by its action") << "screen action"_s;
}

void tst_Gui::deletedWhileOpen()
{
    QFETCH(QString, what);
    const QVariant before = m_pluginData;
    bool wasOpen = false;
    ModalDriver driver;
    driver.onDialog([&](QDialog * /*dialog*/) {
        wasOpen = true;
        m_gui.reset();
    });
    open(what);
    QVERIFY(wasOpen);
    QVERIFY(m_gui == nullptr);
    QCOMPARE(driver.failures(), QString());
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(m_pluginData, before);
}

void tst_Gui::deletedInMessageBox_data()
{
    QTest::addColumn<QString>("what");

    QTest::newRow("the screen is full") << "full"_s;
    QTest::newRow("the screen is full and the dialog exists") << "full later"_s;
    QTest::newRow("no free range") << "range"_s;
    QTest::newRow("a refused Ok, clicked") << "click"_s;
    QTest::newRow("a refused Ok, by Return") << "return"_s;
    QTest::newRow("nothing found") << "find"_s;
}

void tst_Gui::deletedInMessageBox()
{
    QFETCH(QString, what);
    ModalDriver driver;
    if (what == "full later"_s) {
        driver.onDialog([](QDialog *dialog) { dialog->reject(); });
        open("add"_s);
    }
    if (what.startsWith("full"_s)) {
        m_pluginData = screen(threeYearContents(20));
    } else if (what == "range"_s) {
        m_pluginData = screen({});
    } else {
        m_pluginData = screen({content("a"_s, 0, 50, "both"_s), content("b"_s, 51, 75, "both"_s)});
        driver.onDialog([&](QDialog *dialog) {
            if (what == "find"_s) {
                QTest::mouseClick(dialog->findChild<QPushButton *>("findRange"_s), Qt::LeftButton);
                return;
            }
            dialog->findChild<QLineEdit *>("name"_s)->setText("b"_s);
            if (what == "click"_s)
                clickButton(dialog, QDialogButtonBox::Ok);
            else
                press(dialog, Qt::Key_Return);
        });
    }
    driver.onBox([&](QDialog *box) {
        const QPointer<QDialog> guarded(box);
        m_gui.reset();
        if (guarded)
            guarded->accept(); // it has no parent before there is a dialog
    });
    const bool isEdit = !what.startsWith("full"_s) && what != "range"_s;
    open(isEdit ? "edit"_s : "add"_s);
    QVERIFY(m_gui == nullptr);
    QCOMPARE(driver.boxes().size(), 1);
    QCOMPARE(driver.failures(), QString());
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

void tst_Gui::deletedByReceiver_data()
{
    QTest::addColumn<QString>("what");

    QTest::newRow("adding") << "add"_s;
    QTest::newRow("editing") << "edit"_s;
    QTest::newRow("screen dialog") << "screen"_s;
}

void tst_Gui::deletedByReceiver()
{
    QFETCH(QString, what);
    const auto destroy = [this] { m_gui.reset(); };
    connect(m_gui.get(), &KrHvcGui::screenValuesUpdated, this, destroy);
    connect(m_gui.get(), &KrHvcGui::requestAddContents, this, destroy);
    ModalDriver driver;
    driver.onDialog([&](QDialog *dialog) {
        if (auto *name = dialog->findChild<QLineEdit *>("name"_s))
            name->setText("of its own"_s);
        clickButton(dialog, QDialogButtonBox::Ok);
    });
    open(what);
    QVERIFY(m_gui == nullptr);
    QCOMPARE(driver.failures(), QString());
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

void tst_Gui::hostDeletesTheDialog()
{
    for (const QString &what : {"edit"_s, "screen"_s}) {
        ModalDriver driver;
        driver.onDialog([](QDialog *dialog) { delete dialog; });
        open(what);
        // It is built again when it is needed again.
        QString title;
        driver.onDialog([&](QDialog *dialog) {
            title = dialog->windowTitle();
            clickButton(dialog, QDialogButtonBox::Cancel);
        });
        open(what);
        QCOMPARE(driver.failures(), QString());
        QCOMPARE(title, what == "edit"_s ? EditTitle : ScreenTitle);
    }
}

void tst_Gui::screenWidgetAndDialogAreKept()
{
    ModalDriver driver;
    QPointer<QDialog> contentDialog;
    QPointer<QDialog> screenDialog;
    driver.onDialog([&](QDialog *dialog) {
        contentDialog = dialog;
        dialog->reject();
    });
    driver.onDialog([&](QDialog *dialog) {
        screenDialog = dialog;
        dialog->reject();
    });
    open("edit"_s);
    open("screen"_s);
    const QPointer<QWidget> contentWidget(m_gui->contentPropertyWidget());
    const QPointer<QWidget> screenWidget(m_gui->screenPropertyWidget());
    m_gui.reset();
    QCOMPARE(driver.failures(), QString());
    QVERIFY(contentWidget.isNull());
    QVERIFY(contentDialog.isNull());
    QVERIFY(!screenWidget.isNull());
    QVERIFY(!screenDialog.isNull());
    // They do not reach the map any more, which may be gone as well.
    auto *widget = qobject_cast<KrHvcScreenPropertyWidget *>(screenWidget);
    QVERIFY(widget != nullptr);
    const QVariant before = m_pluginData;
    widget->findChild<QSpinBox *>("interval"_s)->setValue(99);
    QVERIFY(widget->applyValues());
    QCOMPARE(m_pluginData, before);
}

void tst_Gui::goesWithoutClosingWindows_data()
{
    QTest::addColumn<QStringList>("opened");

    QTest::newRow("nothing was opened") << QStringList();
    QTest::newRow("the screen dialog has been open") << QStringList{"screen"_s};
    QTest::newRow("the content dialog has been open") << QStringList{"edit"_s};
    QTest::newRow("both have been open") << QStringList{"screen"_s, "edit"_s};
}

/// A host whose windows are hidden at the moment must not be told that the last one was closed.
void tst_Gui::goesWithoutClosingWindows()
{
    QFETCH(QStringList, opened);
    QWidget hidden;
    int closedWindows = -1;
    ModalDriver driver;
    // Only a running application sends the signal.
    QTimer::singleShot(0, this, [&] {
        for (const QString &what : opened) {
            driver.onDialog([](QDialog *dialog) { dialog->reject(); });
            open(what);
        }
        const QSignalSpy closed(qGuiApp, &QGuiApplication::lastWindowClosed);
        m_gui.reset();
        closedWindows = closed.count();
        QApplication::quit();
    });
    QApplication::exec();
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(closedWindows, 0);
}

QTEST_MAIN(tst_Gui)
#include "tst_gui.moc"
