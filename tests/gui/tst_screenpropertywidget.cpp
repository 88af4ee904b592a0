#include "GuiTestData.h"
#include "ModalDriver.h"

#include "gui/KrHvcScreenPropertyWidget.h"

#include <QCheckBox>
#include <QSignalSpy>

#include <array>
#include <memory>

using namespace GuiTest;
using namespace PluginKrHvcP2;

namespace {

/// The spin boxes in the order of the layout.
const std::array<const char *, 7> SpinBoxNames{"interval", "faceDetectionConfidence",
    "faceDirectionConfidence", "ageConfidence", "genderConfidence", "concurrent",
    "eventRestriction"};

QVariantMap completeSettings()
{
    return {{"interval"_s, 2000}, {"face-detection-confidence"_s, 1},
        {"face-direction-confidence"_s, 2}, {"age-confidence"_s, 3}, {"gender-confidence"_s, 4},
        {"concurrent"_s, 5}, {"event-sending-limit"_s, 6}, {"display-monitoring"_s, "true"_s}};
}

QVariant screenWith(const QVariantMap &settings)
{
    return QVariantMap{{"id"_s, 7}, {"plugindata"_s, settings}};
}

QVariantMap settingsOf(const QVariant &pluginData)
{
    return pluginData.toMap().value("plugindata"_s).toMap();
}

} // namespace

class tst_ScreenPropertyWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void metaMethods();
    void layout();
    void notesAreSmaller();
    void spinBoxes_data();
    void spinBoxes();
    void monitoringIsOffAtConstruction();
    void tabOrderFollowsLayout();
    void nothingIsLoadedByThePointer();
    void loads_data();
    void loads();
    void loadsNothingWithoutPointer();
    void loadsMonitoring_data();
    void loadsMonitoring();
    void applies_data();
    void applies();
    void appliesMonitoring_data();
    void appliesMonitoring();
    void storedTypes();
    void keepsForeignKeys();
    void announcesScreenId_data();
    void announcesScreenId();
    void typedValues();
    void refusesNothingWithoutPointer();
    void nullValueCountsAsEmptyMap();
    void receiverDeletesTheWidget();

private:
    QSpinBox *spinBox(const char *name) const
    {
        return m_widget->findChild<QSpinBox *>(QString::fromLatin1(name));
    }
    QCheckBox *monitoring() const
    {
        return m_widget->findChild<QCheckBox *>("visibleMonitoring"_s);
    }
    QVector<int> shownValues() const
    {
        QVector<int> values;
        for (const char *name : SpinBoxNames)
            values.append(spinBox(name)->value());
        return values;
    }

    std::unique_ptr<KrHvcScreenPropertyWidget> m_widget;
    QVariant m_pluginData;
};

void tst_ScreenPropertyWidget::initTestCase()
{
    qRegisterMetaType<QList<int>>("QList<int>");
}

void tst_ScreenPropertyWidget::init()
{
    m_pluginData = screenWith(completeSettings());
    m_widget = std::make_unique<KrHvcScreenPropertyWidget>();
}

void tst_ScreenPropertyWidget::cleanup()
{
    m_widget.reset();
}

void tst_ScreenPropertyWidget::metaMethods()
{
    QCOMPARE(describeMethods(KrHvcScreenPropertyWidget::staticMetaObject),
        QStringList{"signal screenValuesUpdated(int screenId, QList<int> seqIndexList)"_s});
}

void tst_ScreenPropertyWidget::layout()
{
    const QStringList expected{
        "from top to bottom"_s,
        "    from left to right"_s,
        "        label 'Getting Data Interval:' for interval"_s,
        "        QSpinBox interval"_s,
        "        label 'millisecond'"_s,
        "        spacer 1x1 Expanding Minimum"_s,
        "    QGroupBox 'Confidence'"_s,
        "        grid"_s,
        "            0,0 label 'Face Detection:' for faceDetectionConfidence"_s,
        "            0,1 QSpinBox faceDetectionConfidence"_s,
        "            0,2 label '(0 - 1000)'"_s,
        "            1,0 label 'Face Drection:' for faceDirectionConfidence"_s,
        "            1,1 QSpinBox faceDirectionConfidence"_s,
        "            1,2 label '(0 - 1000)'"_s,
        "            2,0 label 'Age Detection:' for ageConfidence"_s,
        "            2,1 QSpinBox ageConfidence"_s,
        "            2,2 label '(0 - 1000)'"_s,
        "            3,0 label 'Gender Detection:' for genderConfidence"_s,
        "            3,1 QSpinBox genderConfidence"_s,
        "            3,2 label '(0 - 1000)'"_s,
        "    from left to right"_s,
        "        label 'Concurrent Event:' for concurrent"_s,
        "        QSpinBox concurrent"_s,
        "        label '(1 - 20)'"_s,
        "        spacer 1x1 Expanding Minimum"_s,
        "    grid"_s,
        "        0,0 label 'Event Restriction:' for eventRestriction"_s,
        "        0,1 QSpinBox eventRestriction"_s,
        "        0,2 label 'msec.'"_s,
        "        0,3 spacer 1x1 Expanding Minimum"_s,
        "        1,0 spanning 1,4 label 'Until the specified time elapses, the same screen target "
        "event is discarded.' wrapped {margin-left: 3px;color: midnightblue;}"_s,
        "    from top to bottom"_s,
        "        QCheckBox visibleMonitoring 'Visible Monitoring'"_s,
        "        label 'If it is checked, HVC monitoring will be displayed with this Screen. If "
        "it "
        "is not checked, this Screen will not be displayed.' wrapped "
        "{margin-left: 3px; color: midnightblue;}"_s,
        "    spacer 16x16 Minimum Minimum"_s,
        "    spacer 0x0 Minimum Expanding"_s,
    };
    QCOMPARE(describeLayout(m_widget->layout()), expected);

    QCOMPARE(m_widget->layout()->contentsMargins(), QMargins());
    const auto *restriction = qobject_cast<QGridLayout *>(m_widget->layout()->itemAt(3)->layout());
    QVERIFY(restriction != nullptr);
    QCOMPARE(restriction->verticalSpacing(), 2);
    const QLayout *monitoringBox = m_widget->layout()->itemAt(4)->layout();
    QVERIFY(monitoringBox != nullptr);
    QCOMPARE(monitoringBox->spacing(), 0);
    QCOMPARE(monitoringBox->contentsMargins(), QMargins());
}

void tst_ScreenPropertyWidget::notesAreSmaller()
{
    const int normal = QLabel().font().pointSize();
    QVERIFY2(normal > 1, "the test needs a font that is set in points");
    QMap<QString, int> sizes;
    const QList<QLabel *> labels = m_widget->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        label->ensurePolished();
        if (label->font().pointSize() != normal)
            sizes.insert(label->text().left(5), label->font().pointSize());
    }
    QCOMPARE(sizes, (QMap<QString, int>{{"If it"_s, normal - 1}, {"Until"_s, normal - 1}}));
}

void tst_ScreenPropertyWidget::spinBoxes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("value");

    QTest::newRow("interval") << "interval"_s << 10 << 360000 << 100 << 1000;
    QTest::newRow("face detection") << "faceDetectionConfidence"_s << 0 << 1000 << 1 << 0;
    QTest::newRow("face direction") << "faceDirectionConfidence"_s << 0 << 1000 << 1 << 0;
    QTest::newRow("age") << "ageConfidence"_s << 0 << 1000 << 1 << 0;
    QTest::newRow("gender") << "genderConfidence"_s << 0 << 1000 << 1 << 0;
    QTest::newRow("concurrent") << "concurrent"_s << 1 << 20 << 1 << 1;
    QTest::newRow("event restriction") << "eventRestriction"_s << 0 << 86400000 << 1 << 5000;
}

void tst_ScreenPropertyWidget::spinBoxes()
{
    QFETCH(QString, name);
    const auto *spinBox = m_widget->findChild<QSpinBox *>(name);
    QVERIFY(spinBox != nullptr);
    QTEST(spinBox->minimum(), "minimum");
    QTEST(spinBox->maximum(), "maximum");
    QTEST(spinBox->singleStep(), "step");
    QTEST(spinBox->value(), "value");
    QCOMPARE(spinBox->alignment() & Qt::AlignHorizontal_Mask, Qt::Alignment(Qt::AlignRight));
}

void tst_ScreenPropertyWidget::monitoringIsOffAtConstruction()
{
    QVERIFY(!monitoring()->isChecked());
}

void tst_ScreenPropertyWidget::tabOrderFollowsLayout()
{
    QStringList expected;
    for (const char *name : SpinBoxNames)
        expected.append(QString::fromLatin1(name));
    expected.append("visibleMonitoring"_s);
    QCOMPARE(tabOrder(m_widget.get()), expected);
}

void tst_ScreenPropertyWidget::nothingIsLoadedByThePointer()
{
    m_widget->setPluginData(&m_pluginData);
    QCOMPARE(shownValues(), QVector<int>({1000, 0, 0, 0, 0, 1, 5000}));
    QVERIFY(!monitoring()->isChecked());
    QCOMPARE(m_pluginData, screenWith(completeSettings()));
}

void tst_ScreenPropertyWidget::loads_data()
{
    QTest::addColumn<QVariant>("pluginData");
    QTest::addColumn<QVector<int>>("expected"); // in the order of the layout

    const QVector<int> defaults{500, 0, 0, 0, 0, 1, 5000};
    QTest::newRow("all settings") << screenWith(completeSettings())
                                  << QVector<int>{2000, 1, 2, 3, 4, 5, 6};
    QTest::newRow("no settings: interval is 500, not the 1000 of construction")
        << screenWith({}) << defaults;
    QTest::newRow("no plugindata") << QVariant(QVariantMap{{"id"_s, 7}}) << defaults;
    QTest::newRow("plugindata of another type")
        << QVariant(QVariantMap{{"plugindata"_s, "interval"_s}}) << defaults;
    QTest::newRow("a map of another type") << QVariant(5) << defaults;
    QTest::newRow("a null value behind the pointer") << QVariant() << defaults;
    QTest::newRow("only interval missing")
        << screenWith({{"concurrent"_s, 9}}) << QVector<int>{500, 0, 0, 0, 0, 9, 5000};
    QTest::newRow("texts that convert")
        << screenWith({{"interval"_s, "250"_s}, {"age-confidence"_s, "77"_s}})
        << QVector<int>{250, 0, 0, 77, 0, 1, 5000};
    QTest::newRow("above the limits") << screenWith({{"interval"_s, 360001},
        {"face-detection-confidence"_s, 1001}, {"face-direction-confidence"_s, 5000},
        {"age-confidence"_s, 1001}, {"gender-confidence"_s, 1001}, {"concurrent"_s, 21},
        {"event-sending-limit"_s, 86400001}})
                                      << QVector<int>{360000, 1000, 1000, 1000, 1000, 20, 86400000};
    QTest::newRow("below the limits")
        << screenWith({{"interval"_s, 9}, {"face-detection-confidence"_s, -1},
               {"face-direction-confidence"_s, -1}, {"age-confidence"_s, -1},
               {"gender-confidence"_s, -1}, {"concurrent"_s, 0}, {"event-sending-limit"_s, -1}})
        << QVector<int>{10, 0, 0, 0, 0, 1, 0};
    QTest::newRow("a text that does not convert is 0, within the limits")
        << screenWith({{"interval"_s, "fast"_s}, {"concurrent"_s, "many"_s}})
        << QVector<int>{10, 0, 0, 0, 0, 1, 5000};
    QTest::newRow("an event restriction of 0")
        << screenWith({{"event-sending-limit"_s, 0}}) << QVector<int>{500, 0, 0, 0, 0, 1, 0};
}

void tst_ScreenPropertyWidget::loads()
{
    QFETCH(QVariant, pluginData);
    QFETCH(QVector<int>, expected);
    QVariant stored = pluginData;
    QSignalSpy spy(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QVERIFY(spy.isValid());
    m_widget->setPluginData(&stored);
    m_widget->loadValues();
    QCOMPARE(shownValues(), expected);
    QCOMPARE(stored, pluginData);
    QCOMPARE(spy.count(), 0);
}

void tst_ScreenPropertyWidget::loadsNothingWithoutPointer()
{
    spinBox("interval")->setValue(123);
    m_widget->loadValues();
    QCOMPARE(spinBox("interval")->value(), 123);
}

void tst_ScreenPropertyWidget::loadsMonitoring_data()
{
    QTest::addColumn<QVariant>("stored"); // invalid: no such key
    QTest::addColumn<bool>("expected");

    QTest::newRow("missing") << QVariant() << false;
    QTest::newRow("true") << QVariant("true"_s) << true;
    QTest::newRow("TRUE") << QVariant("TRUE"_s) << true;
    QTest::newRow("false") << QVariant("false"_s) << false;
    QTest::newRow("a bool true") << QVariant(true) << true;
    QTest::newRow("a bool false") << QVariant(false) << false;
    QTest::newRow("yes") << QVariant("yes"_s) << false;
    QTest::newRow("the number 1") << QVariant(1) << false;
    QTest::newRow("true with a blank") << QVariant("true "_s) << false;
}

void tst_ScreenPropertyWidget::loadsMonitoring()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, expected);
    QVariantMap settings;
    if (stored.isValid())
        settings.insert("display-monitoring"_s, stored);
    m_pluginData = screenWith(settings);
    monitoring()->setChecked(!expected);
    m_widget->setPluginData(&m_pluginData);
    m_widget->loadValues();
    QCOMPARE(monitoring()->isChecked(), expected);
}

void tst_ScreenPropertyWidget::applies_data()
{
    QTest::addColumn<QVariantMap>("settings");
    QTest::addColumn<QString>("edited"); // a spin box, or none
    QTest::addColumn<int>("value");
    QTest::addColumn<QVariantMap>("expected"); // settings
    QTest::addColumn<int>("emissions");

    const auto with = [](const QString &key, const QVariant &value) {
        QVariantMap settings = completeSettings();
        settings.insert(key, value);
        return settings;
    };
    const auto without = [](const QString &key) {
        QVariantMap settings = completeSettings();
        settings.remove(key);
        return settings;
    };
    const QVariantMap complete = completeSettings();

    QTest::newRow("no change writes and announces nothing")
        << complete << QString() << 0 << complete << 0;
    QTest::newRow("interval") << complete << "interval"_s << 360000 << with("interval"_s, 360000)
                              << 1;
    QTest::newRow("face detection") << complete << "faceDetectionConfidence"_s << 1000
                                    << with("face-detection-confidence"_s, 1000) << 1;
    QTest::newRow("face direction") << complete << "faceDirectionConfidence"_s << 1000
                                    << with("face-direction-confidence"_s, 1000) << 1;
    QTest::newRow("age") << complete << "ageConfidence"_s << 1000 << with("age-confidence"_s, 1000)
                         << 1;
    QTest::newRow("gender") << complete << "genderConfidence"_s << 1000
                            << with("gender-confidence"_s, 1000) << 1;
    QTest::newRow("concurrent") << complete << "concurrent"_s << 20 << with("concurrent"_s, 20)
                                << 1;
    QTest::newRow("event restriction of 0")
        << complete << "eventRestriction"_s << 0 << with("event-sending-limit"_s, 0) << 1;
    QTest::newRow("event restriction of a day") << complete << "eventRestriction"_s << 86400000
                                                << with("event-sending-limit"_s, 86400000) << 1;
    QTest::newRow("a missing interval is written as the 500 that was shown")
        << without("interval"_s) << QString() << 0 << with("interval"_s, 500) << 1;
    QTest::newRow("a missing confidence is written as 0")
        << without("gender-confidence"_s) << QString() << 0 << with("gender-confidence"_s, 0) << 1;
    QTest::newRow("a missing event restriction is written as 5000")
        << without("event-sending-limit"_s) << QString() << 0 << with("event-sending-limit"_s, 5000)
        << 1;
    QTest::newRow("missing monitoring is not written")
        << without("display-monitoring"_s) << QString() << 0 << without("display-monitoring"_s)
        << 0;
    QVariantMap defaults{{"interval"_s, 500}, {"face-detection-confidence"_s, 0},
        {"face-direction-confidence"_s, 0}, {"age-confidence"_s, 0}, {"gender-confidence"_s, 0},
        {"concurrent"_s, 1}, {"event-sending-limit"_s, 5000}};
    QTest::newRow("an empty map gets every number in one announcement")
        << QVariantMap() << QString() << 0 << defaults << 1;
    QTest::newRow("numbers stored as texts are equal and stay texts")
        << with("interval"_s, "2000"_s) << QString() << 0 << with("interval"_s, "2000"_s) << 0;
    QTest::newRow("a number outside the limits is replaced by the limit shown")
        << with("concurrent"_s, 99) << QString() << 0 << with("concurrent"_s, 20) << 1;
    QTest::newRow("a text that is no number counts as 0")
        << with("age-confidence"_s, "sure"_s) << QString() << 0
        << with("age-confidence"_s, "sure"_s) << 0;
}

void tst_ScreenPropertyWidget::applies()
{
    QFETCH(QVariantMap, settings);
    QFETCH(QString, edited);
    QFETCH(int, value);
    QFETCH(QVariantMap, expected);
    QFETCH(int, emissions);

    m_pluginData = screenWith(settings);
    m_widget->setPluginData(&m_pluginData);
    m_widget->loadValues();
    if (!edited.isEmpty())
        m_widget->findChild<QSpinBox *>(edited)->setValue(value);
    QSignalSpy spy(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QVERIFY(spy.isValid());

    QVERIFY(m_widget->applyValues());
    QCOMPARE(m_pluginData, screenWith(expected));
    QCOMPARE(spy.count(), emissions);
    if (emissions > 0) {
        QCOMPARE(spy.at(0).at(0).toInt(), 7);
        QCOMPARE(spy.at(0).at(1).value<QList<int>>(), QList<int>());
    }

    // What has been written is no change any more.
    QVERIFY(m_widget->applyValues());
    QCOMPARE(spy.count(), emissions);
    QCOMPARE(m_pluginData, screenWith(expected));
}

void tst_ScreenPropertyWidget::appliesMonitoring_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("toggled");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("TRUE left checked is not rewritten")
        << QVariant("TRUE"_s) << false << QVariant("TRUE"_s);
    QTest::newRow("TRUE unchecked") << QVariant("TRUE"_s) << true << QVariant("false"_s);
    QTest::newRow("true left checked") << QVariant("true"_s) << false << QVariant("true"_s);
    QTest::newRow("false checked") << QVariant("false"_s) << true << QVariant("true"_s);
    QTest::newRow("a bool left as it is") << QVariant(true) << false << QVariant(true);
    QTest::newRow("a bool unchecked becomes a text")
        << QVariant(true) << true << QVariant("false"_s);
    QTest::newRow("a text without meaning left unchecked")
        << QVariant("yes"_s) << false << QVariant("yes"_s);
    QTest::newRow("missing and checked") << QVariant() << true << QVariant("true"_s);
    QTest::newRow("missing and left unchecked") << QVariant() << false << QVariant();
}

void tst_ScreenPropertyWidget::appliesMonitoring()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, toggled);
    QFETCH(QVariant, expected);

    QVariantMap settings = completeSettings();
    settings.remove("display-monitoring"_s);
    if (stored.isValid())
        settings.insert("display-monitoring"_s, stored);
    m_pluginData = screenWith(settings);
    m_widget->setPluginData(&m_pluginData);
    m_widget->loadValues();
    m_widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_widget.get()));
    QSignalSpy spy(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    if (toggled)
        clickCheckBox(monitoring());

    QVERIFY(m_widget->applyValues());
    const QVariant written = settingsOf(m_pluginData).value("display-monitoring"_s);
    QCOMPARE(written.type(), expected.type());
    QCOMPARE(written, expected);
    QCOMPARE(spy.count(), toggled ? 1 : 0);
}

void tst_ScreenPropertyWidget::storedTypes()
{
    m_pluginData = screenWith({});
    m_widget->setPluginData(&m_pluginData);
    m_widget->loadValues();
    monitoring()->setChecked(true);
    QVERIFY(m_widget->applyValues());

    QStringList types;
    const QVariantMap settings = settingsOf(m_pluginData);
    for (auto it = settings.cbegin(); it != settings.cend(); ++it)
        types.append(it.key() + QLatin1Char(' ') + QString::fromLatin1(it.value().typeName()));
    QCOMPARE(types,
        QStringList({"age-confidence int"_s, "concurrent int"_s, "display-monitoring QString"_s,
            "event-sending-limit int"_s, "face-detection-confidence int"_s,
            "face-direction-confidence int"_s, "gender-confidence int"_s, "interval int"_s}));
    QCOMPARE(m_pluginData.typeName(), "QVariantMap");
}

void tst_ScreenPropertyWidget::keepsForeignKeys()
{
    QVariantMap settings = completeSettings();
    settings.insert("colour"_s, "red"_s);
    QVariantMap stored{{"id"_s, 7}, {"plugindata"_s, settings}, {"Plugindata"_s, 1},
        {"contents"_s, QVariantList{content("a"_s, 1, 2, "male"_s)}}, {"host"_s, QVariantList{1}}};
    m_pluginData = stored;
    m_widget->setPluginData(&m_pluginData);
    m_widget->loadValues();
    spinBox("interval")->setValue(30);
    QVERIFY(m_widget->applyValues());

    settings.insert("interval"_s, 30);
    stored.insert("plugindata"_s, settings);
    QCOMPARE(m_pluginData, QVariant(stored));
}

void tst_ScreenPropertyWidget::announcesScreenId_data()
{
    QTest::addColumn<QVariantMap>("screen");
    QTest::addColumn<int>("expected");

    QTest::newRow("a number") << QVariantMap{{"id"_s, 42}} << 42;
    QTest::newRow("a text") << QVariantMap{{"id"_s, "43"_s}} << 43;
    QTest::newRow("missing") << QVariantMap{{"ID"_s, 42}} << -1;
    QTest::newRow("an empty map") << QVariantMap() << -1;
}

void tst_ScreenPropertyWidget::announcesScreenId()
{
    QFETCH(QVariantMap, screen);
    QFETCH(int, expected);
    m_pluginData = screen;
    m_widget->setPluginData(&m_pluginData);
    m_widget->loadValues();
    QSignalSpy spy(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QVERIFY(m_widget->applyValues());
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), expected);
}

void tst_ScreenPropertyWidget::typedValues()
{
    m_widget->setPluginData(&m_pluginData);
    m_widget->loadValues();
    m_widget->show();
    m_widget->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_widget.get()));

    typeValue(spinBox("interval"), "2500"_s);
    QTest::keyClick(spinBox("interval"), Qt::Key_Up);
    typeValue(spinBox("concurrent"), "9"_s);
    QTest::keyClick(spinBox("concurrent"), Qt::Key_Down);
    typeValue(spinBox("eventRestriction"), "0"_s);
    QTest::keyClick(monitoring(), Qt::Key_Space);
    QVERIFY(m_widget->applyValues());

    QVariantMap expected = completeSettings();
    expected.insert("interval"_s, 2600);
    expected.insert("concurrent"_s, 8);
    expected.insert("event-sending-limit"_s, 0);
    expected.insert("display-monitoring"_s, "false"_s);
    QCOMPARE(m_pluginData, screenWith(expected));
}

void tst_ScreenPropertyWidget::refusesNothingWithoutPointer()
{
    m_widget->loadValues();
    spinBox("interval")->setValue(77);
    QSignalSpy spy(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QVERIFY(m_widget->applyValues());
    QCOMPARE(spy.count(), 0);
}

void tst_ScreenPropertyWidget::nullValueCountsAsEmptyMap()
{
    m_pluginData = QVariant();
    m_widget->setPluginData(&m_pluginData);
    m_widget->loadValues();
    QSignalSpy spy(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QVERIFY(m_widget->applyValues());
    const QVariantMap defaults{{"interval"_s, 500}, {"face-detection-confidence"_s, 0},
        {"face-direction-confidence"_s, 0}, {"age-confidence"_s, 0}, {"gender-confidence"_s, 0},
        {"concurrent"_s, 1}, {"event-sending-limit"_s, 5000}};
    QCOMPARE(m_pluginData, QVariant(QVariantMap{{"plugindata"_s, defaults}}));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), -1);
    QCOMPARE(spy.at(0).at(1).value<QList<int>>(), QList<int>());
}

void tst_ScreenPropertyWidget::receiverDeletesTheWidget()
{
    m_pluginData = screenWith({});
    m_widget->setPluginData(&m_pluginData);
    m_widget->loadValues();
    connect(m_widget.get(), &KrHvcScreenPropertyWidget::screenValuesUpdated, this,
        [this] { m_widget.reset(); });
    QVERIFY(m_widget->applyValues());
    QVERIFY(m_widget == nullptr);
}

QTEST_MAIN(tst_ScreenPropertyWidget)
#include "tst_screenpropertywidget.moc"
