#include "GuiTestData.h"
#include "ModalDriver.h"

#include "gui/KrHvcContentPropertyWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSignalSpy>

#include <limits>
#include <memory>

using namespace GuiTest;
using namespace PluginKrHvcP2;

namespace {

const QString NewText = QStringLiteral("New HVC detection setting will be added.");
const QString NewStyle = QStringLiteral("color: green; font-weight: bold;");
const QString EditText = QStringLiteral("Here you can set HVC detection range.");
const QString EditStyle = QStringLiteral("color: black; font-weight: normal;");

QString noRangeBox()
{
    return ModalDriver::describeBox(
        "critical"_s, QString(), "There is not an avalable range of age."_s);
}

QString notFoundBox()
{
    return ModalDriver::describeBox(
        "warning"_s, "Not Found"_s, "There is not an available next range of age."_s);
}

QString duplicateNameBox(const QString &name)
{
    return ModalDriver::describeBox("critical"_s, "Duplicate Name"_s,
        R"(The name ")"_s + name + "\" is already in use.\nPlease specify another name."_s);
}

QString ageRangeBox()
{
    return ModalDriver::describeBox("critical"_s, "Including Age Range"_s,
        "The specified age range is included in the other specified range.\n"
        "Please specify again."_s);
}

QString defaultBox(const QString &gender)
{
    return ModalDriver::describeBox(
        "critical"_s, "Can not be default"_s, "Gender(%1) has already defaulted."_s.arg(gender));
}

QStringList boxList(const QString &box)
{
    return box.isEmpty() ? QStringList() : QStringList{box};
}

} // namespace

class tst_ContentPropertyWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void metaMethods();
    void layout();
    void valuesAtConstruction();
    void tabOrderFollowsLayout();
    void nothingIsLoadedByThePointer();

    void preparesNewContent_data();
    void preparesNewContent();
    void refusesNewContent_data();
    void refusesNewContent();
    void refusedNewContentKeepsTheFields();
    void preparesNameAlsoWithoutAuto();

    void loads_data();
    void loads();
    void loadsNothing_data();
    void loadsNothing();
    void autoKeepsItsState();

    void couplesAges_data();
    void couplesAges();
    void couplesAgesBySlot_data();
    void couplesAgesBySlot();
    void programmaticChangesKeepTheName();
    void genderRenames();
    void generatesNameBySlot();

    void findRangeWalksAllFreeRanges();
    void findRangeComesBackToTheEnteredRange();
    void findRangeKeepsTheNameWithoutAuto();
    void findRangeIncludesTheEditedContent();
    void findRangeFindsNothing();

    void validates_data();
    void validates();
    void refusalOrder();
    void stores_data();
    void stores();
    void storedTypes();
    void storesNew_data();
    void storesNew();
    void refusesToStoreWithoutMap_data();
    void refusesToStoreWithoutMap();
    void refusesToStoreWithoutIndex_data();
    void refusesToStoreWithoutIndex();
    void storesNewBehindTheList_data();
    void storesNewBehindTheList();
    void refusesNewBehindTheList();
    void typedEdit();
    void neverEmitsRejected();

    void deletedInMessageBox_data();
    void deletedInMessageBox();
    void deletedWithAnUnfinishedEdit_data();
    void deletedWithAnUnfinishedEdit();
    void deletedByReceiver_data();
    void deletedByReceiver();

private:
    struct Shown
    {
        QString sequence;
        QString name;
        int ageMin;
        int ageMax;
        QString gender;
        bool isDefault;
    };
    static QString describe(const Shown &shown)
    {
        return "#%1 '%2' %3-%4 %5%6"_s.arg(shown.sequence, shown.name)
            .arg(shown.ageMin)
            .arg(shown.ageMax)
            .arg(shown.gender, shown.isDefault ? " default"_s : QString());
    }
    QString shown() const
    {
        return describe({child<QLabel>("sequenceNumber")->text(), name()->text(), ageMin()->value(),
            ageMax()->value(), gender()->currentText(), isDefault()->isChecked()});
    }
    QString shownRange() const
    {
        return "%1-%2 %3%4"_s.arg(ageMin()->value())
            .arg(ageMax()->value())
            .arg(gender()->currentText(), isDefault()->isChecked() ? " default"_s : QString());
    }

    template <typename Widget>
    Widget *child(const char *objectName) const
    {
        return m_widget->findChild<Widget *>(QString::fromLatin1(objectName));
    }
    QSpinBox *ageMin() const { return child<QSpinBox>("ageMin"); }
    QSpinBox *ageMax() const { return child<QSpinBox>("ageMax"); }
    QComboBox *gender() const { return child<QComboBox>("gender"); }
    QCheckBox *isDefault() const { return child<QCheckBox>("default"); }
    QLineEdit *name() const { return child<QLineEdit>("name"); }
    QCheckBox *automatic() const { return child<QCheckBox>("auto"); }
    QPushButton *findRange() const { return child<QPushButton>("findRange"); }

    void setContents(const QVariantList &contents)
    {
        m_pluginData = screen(contents);
        m_widget->setPluginData(&m_pluginData);
    }
    void showWidget()
    {
        m_widget->show();
        m_widget->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_widget.get()));
    }
    void enter(const QString &newName, int newAgeMin, int newAgeMax, const QString &newGender,
        bool newDefault) const
    {
        automatic()->setChecked(false);
        ageMin()->setValue(newAgeMin);
        ageMax()->setValue(newAgeMax);
        gender()->setCurrentText(newGender);
        isDefault()->setChecked(newDefault);
        name()->setText(newName);
    }
    QString focusedName() const
    {
        const QWidget *focused = m_widget->focusWidget();
        return focused != nullptr ? focused->objectName() : QString();
    }

    std::unique_ptr<KrHvcContentPropertyWidget> m_widget;
    QVariant m_pluginData;
};

void tst_ContentPropertyWidget::initTestCase()
{
    qRegisterMetaType<QList<int>>("QList<int>");
    qRegisterMetaType<QMap<int, QVariant>>("QMap<int,QVariant>");
}

void tst_ContentPropertyWidget::init()
{
    m_pluginData = QVariant();
    m_widget = std::make_unique<KrHvcContentPropertyWidget>();
}

void tst_ContentPropertyWidget::cleanup()
{
    m_widget.reset();
}

void tst_ContentPropertyWidget::metaMethods()
{
    const QStringList expected{
        "signal screenValuesUpdated(int screenId, QList<int> seqIndexList)"_s,
        "signal requestAddContents(int screenId, QMap<int,QVariant> contents)"_s,
        "signal rejected()"_s,
        "slot onAgeMinSpinBoxValueChanged(int value)"_s,
        "slot onAgeMaxSpinBoxValueChanged(int value)"_s,
        "slot onAgeMinSpinBoxEditingFinished()"_s,
        "slot onAgeMaxSpinBoxEditingFinished()"_s,
        "slot onGenerateNameButtonClicked(bool checked)"_s,
        "slot onGenerateNameButtonClicked() without its default argument"_s,
        "slot onFindNextRangeButtonClicked(bool checked)"_s,
        "slot onFindNextRangeButtonClicked() without its default argument"_s,
        "slot onGenderComboBoxIndexChanged(int index)"_s,
    };
    QCOMPARE(describeMethods(KrHvcContentPropertyWidget::staticMetaObject), expected);
}

void tst_ContentPropertyWidget::layout()
{
    const QStringList expected{
        "from top to bottom"_s,
        "    label ''"_s,
        "    QWidget {background-color: darkgray; margin-top: 10px; margin-bottom: 10px;}"_s,
        "    from left to right"_s,
        "        label 'Sequence #'"_s,
        "        label ''"_s,
        "        spacer 16x16 Expanding Minimum"_s,
        "    from left to right"_s,
        "        label 'Name:' for name"_s,
        "        QLineEdit name"_s,
        "        QCheckBox auto 'Auto'"_s,
        "    spacer 10x10 Fixed Fixed"_s,
        "    from left to right"_s,
        "        label 'Age range:' for ageMin"_s,
        "        QSpinBox ageMin"_s,
        "        label '-' for ageMax"_s,
        "        QSpinBox ageMax"_s,
        "        label 'years old'"_s,
        "        QPushButton findRange 'Find Range'"_s,
        "        spacer 1x16 Expanding Minimum"_s,
        "    label 'The age range that can be set is 0 to 75 years old. /  If targeting over 75 "
        "years old, set it to 75.' {color: midnightblue}"_s,
        "    spacer 10x10 Fixed Fixed"_s,
        "    from left to right"_s,
        "        label 'Gender:' for gender"_s,
        "        QComboBox gender"_s,
        "        spacer 16x16 Expanding Minimum"_s,
        "    spacer 10x10 Fixed Fixed"_s,
        "    QCheckBox default 'Set this sequence as gender default'"_s,
        "    spacer 16x16 Fixed Fixed"_s,
        "    spacer 0x0 Minimum Expanding"_s,
    };
    QCOMPARE(describeLayout(m_widget->layout()), expected);
    QCOMPARE(m_widget->layout()->contentsMargins(), QMargins());

    const QWidget *separator = m_widget->layout()->itemAt(1)->widget();
    QCOMPARE(separator->minimumHeight(), 1);
    QCOMPARE(separator->maximumHeight(), 1);
    QCOMPARE(separator->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
}

void tst_ContentPropertyWidget::valuesAtConstruction()
{
    QCOMPARE(shown(), describe({QString(), QString(), 20, 30, "Both"_s, false}));
    QVERIFY(automatic()->isChecked());
    for (const QSpinBox *spinBox : {ageMin(), ageMax()}) {
        QCOMPARE(spinBox->minimum(), 0);
        QCOMPARE(spinBox->maximum(), 75);
        QCOMPARE(spinBox->alignment() & Qt::AlignHorizontal_Mask, Qt::Alignment(Qt::AlignRight));
    }
    QStringList items;
    for (int i = 0; i < gender()->count(); ++i)
        items.append("%1 %2"_s.arg(gender()->itemText(i)).arg(gender()->itemData(i).toInt()));
    QCOMPARE(items, QStringList({"Both 3"_s, "Female 2"_s, "Male 1"_s}));
}

void tst_ContentPropertyWidget::tabOrderFollowsLayout()
{
    QCOMPARE(tabOrder(m_widget.get()),
        QStringList(
            {"name"_s, "auto"_s, "ageMin"_s, "ageMax"_s, "findRange"_s, "gender"_s, "default"_s}));
}

void tst_ContentPropertyWidget::nothingIsLoadedByThePointer()
{
    setContents({content("a"_s, 1, 2, "male"_s, "true"_s)});
    QCOMPARE(shown(), describe({QString(), QString(), 20, 30, "Both"_s, false}));
    QCOMPARE(child<QLabel>("information")->text(), QString());
}

void tst_ContentPropertyWidget::preparesNewContent_data()
{
    QTest::addColumn<QVariantList>("contents");
    QTest::addColumn<QString>("expected");

    QTest::newRow("0-19 and 30-75 for Both leave 20-29 for Both")
        << QVariantList{content("a"_s, 0, 19, "both"_s), content("b"_s, 30, 75, "both"_s)}
        << describe({"3"_s, "20 - 29 years old (Both)"_s, 20, 29, "Both"_s, false});
    QTest::newRow("the two contents of a new screen")
        << QVariantList{content("a"_s, 20, 30, "female"_s, "true"_s),
               content("b"_s, 20, 30, "male"_s, "true"_s)}
        << describe({"3"_s, "31 - 75 years old (Both)"_s, 31, 75, "Both"_s, false});
    QTest::newRow("only Female has room")
        << QVariantList{content("a"_s, 0, 40, "female"_s), content("b"_s, 0, 75, "male"_s)}
        << describe({"3"_s, "41 - 75 years old (Female)"_s, 41, 75, "Female"_s, false});
    QTest::newRow("only Male has room")
        << QVariantList{content("a"_s, 5, 75, "male"_s), content("b"_s, 0, 75, "female"_s)}
        << describe({"3"_s, "0 - 4 years old (Male)"_s, 0, 4, "Male"_s, false});
    // The start is the last one by age, which touches a free range of the other gender.
    QTest::newRow("behind the free range that the last content touches")
        << QVariantList{content("b"_s, 60, 75, "male"_s), content("a"_s, 0, 59, "female"_s)}
        << describe({"3"_s, "0 - 59 years old (Male)"_s, 0, 59, "Male"_s, false});
    QTest::newRow("the sequence number follows the count, also of useless entries")
        << QVariantList{content("a"_s, 0, 70, "both"_s), QVariant(), 5}
        << describe({"4"_s, "71 - 75 years old (Male)"_s, 71, 75, "Male"_s, false});
}

void tst_ContentPropertyWidget::preparesNewContent()
{
    QFETCH(QVariantList, contents);
    QFETCH(QString, expected);
    setContents(contents);
    const QVariant before = m_pluginData;
    isDefault()->setChecked(true);
    name()->setText("left over"_s);

    ModalDriver driver;
    QVERIFY(m_widget->prepareNewContent());
    QCOMPARE(shown(), expected);
    QCOMPARE(child<QLabel>("information")->text(), NewText);
    QCOMPARE(child<QLabel>("information")->styleSheet(), NewStyle);
    QCOMPARE(m_pluginData, before);
    QCOMPARE(driver.failures(), QString());
}

void tst_ContentPropertyWidget::refusesNewContent_data()
{
    QTest::addColumn<bool>("withPointer");
    QTest::addColumn<QVariant>("pluginData");

    QTest::newRow("everything is covered for Both")
        << true << QVariant(screen({content("a"_s, 0, 75, "both"_s)}));
    QTest::newRow("everything is covered for each gender")
        << true
        << QVariant(screen({content("a"_s, 0, 75, "male"_s), content("b"_s, 0, 30, "female"_s),
               content("c"_s, 31, 75, "female"_s)}));
    QTest::newRow("one gender is covered, the other one has no content")
        << true << QVariant(screen({content("a"_s, 0, 75, "male"_s)}));
    QTest::newRow("no contents at all") << true << QVariant(screen({}));
    QTest::newRow("no list of contents") << true << QVariant(QVariantMap{{"id"_s, 7}});
    QTest::newRow("contents of another type")
        << true << QVariant(QVariantMap{{"contents"_s, "none"_s}});
    QTest::newRow("only contents without a gender")
        << true << QVariant(screen({content("a"_s, 0, 30, "children"_s)}));
    QTest::newRow("a null value behind the pointer") << true << QVariant();
    QTest::newRow("no pointer") << false << QVariant();
}

void tst_ContentPropertyWidget::refusesNewContent()
{
    QFETCH(bool, withPointer);
    QFETCH(QVariant, pluginData);
    QVariant stored = pluginData;
    m_widget->setPluginData(withPointer ? &stored : nullptr);
    ModalDriver driver;
    driver.confirmBox();
    QVERIFY(!m_widget->prepareNewContent());
    QCOMPARE(driver.boxes(), QStringList{noRangeBox()});
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(stored, pluginData);
}

void tst_ContentPropertyWidget::refusedNewContentKeepsTheFields()
{
    setContents({content("a"_s, 0, 75, "both"_s)});
    enter("mine"_s, 3, 4, "Male"_s, true);
    ModalDriver driver;
    driver.confirmBox();
    QVERIFY(!m_widget->prepareNewContent());
    QCOMPARE(shown(), describe({QString(), "mine"_s, 3, 4, "Male"_s, true}));
    QCOMPARE(driver.failures(), QString());
}

void tst_ContentPropertyWidget::preparesNameAlsoWithoutAuto()
{
    setContents({content("a"_s, 0, 70, "both"_s)});
    automatic()->setChecked(false);
    name()->setText("left over"_s);
    ModalDriver driver;
    QVERIFY(m_widget->prepareNewContent());
    QCOMPARE(name()->text(), "71 - 75 years old (Both)"_s);
    QVERIFY(!automatic()->isChecked());
}

void tst_ContentPropertyWidget::loads_data()
{
    QTest::addColumn<QVariant>("entry"); // the second one of the screen
    QTest::addColumn<QString>("expected");

    const auto nameless = [](QVariantMap entry) {
        entry.remove("name"_s);
        return entry;
    };
    const auto withoutParam = [](QVariantMap entry, const QString &key) {
        QVariantMap params = entry.value("params"_s).toMap();
        params.remove(key);
        entry.insert("params"_s, params);
        return entry;
    };
    const auto shownAs
        = [](const QString &name, int ageMin, int ageMax, const QString &gender, bool isDefault) {
              return describe({"2"_s, name, ageMin, ageMax, gender, isDefault});
          };

    // Auto is checked and the gender changes from Both: the loaded name stays all the same.
    QTest::newRow("a name of its own, another gender than before") << QVariant(
        content("Boys"_s, 5, 9, "male"_s, "true"_s)) << shownAs("Boys"_s, 5, 9, "Male"_s, true);
    QTest::newRow("female") << QVariant(content("x"_s, 0, 75, "FEMALE"_s, "false"_s))
                            << shownAs("x"_s, 0, 75, "Female"_s, false);
    QTest::newRow("default in another letter case") << QVariant(
        content("x"_s, 5, 9, "both"_s, "True"_s)) << shownAs("x"_s, 5, 9, "Both"_s, true);
    QTest::newRow("default as a bool")
        << QVariant(content("x"_s, 5, 9, "both"_s, true)) << shownAs("x"_s, 5, 9, "Both"_s, true);
    QTest::newRow("default as a number")
        << QVariant(content("x"_s, 5, 9, "both"_s, 1)) << shownAs("x"_s, 5, 9, "Both"_s, false);
    QTest::newRow("default missing")
        << QVariant(withoutParam(content("x"_s, 5, 9, "both"_s), "default"_s))
        << shownAs("x"_s, 5, 9, "Both"_s, false);
    QTest::newRow("no name") << QVariant(nameless(content(QString(), 20, 30, "male"_s)))
                             << shownAs("20 - 30 yeas old (Male)"_s, 20, 30, "Male"_s, false);
    QTest::newRow("an empty name")
        << QVariant(content(QString(), 20, 30, "female"_s))
        << shownAs("20 - 30 yeas old (Female)"_s, 20, 30, "Female"_s, false);
    QVariantMap inner = nameless(content(QString(), 20, 30, "both"_s));
    QVariantMap innerParams = inner.value("params"_s).toMap();
    innerParams.insert("name"_s, "20 - 30 (Both)"_s);
    inner.insert("params"_s, innerParams);
    QTest::newRow("a name inside params is not the entry's")
        << QVariant(inner) << shownAs("20 - 30 yeas old (Both)"_s, 20, 30, "Both"_s, false);
    QTest::newRow("age-min above age-max shows the smaller one twice")
        << QVariant(content(QString(), 40, 30, "male"_s))
        << shownAs("30 - 30 yeas old (Male)"_s, 30, 30, "Male"_s, false);
    QTest::newRow("age-min missing")
        << QVariant(withoutParam(content("x"_s, 5, 9, "male"_s), "age-min"_s))
        << shownAs("x"_s, 0, 9, "Male"_s, false);
    QTest::newRow("age-max missing")
        << QVariant(withoutParam(content("x"_s, 5, 9, "male"_s), "age-max"_s))
        << shownAs("x"_s, 5, 75, "Male"_s, false);
    QTest::newRow("ages that are no numbers")
        << QVariant(content("x"_s, "five"_s, QString(), "male"_s))
        << shownAs("x"_s, 0, 75, "Male"_s, false);
    QTest::newRow("ages as texts") << QVariant(content("x"_s, "5"_s, "9"_s, "male"_s))
                                   << shownAs("x"_s, 5, 9, "Male"_s, false);
    QTest::newRow("ages outside the limits are shown at the limits")
        << QVariant(content("x"_s, -3, 99, "male"_s)) << shownAs("x"_s, 0, 75, "Male"_s, false);
    QTest::newRow("an unknown gender leaves the combo box as it was")
        << QVariant(content(QString(), 5, 9, "other"_s))
        << shownAs("5 - 9 yeas old (Unknown)"_s, 5, 9, "Both"_s, false);
    QTest::newRow("an entry of another type has all ages and no name")
        << QVariant(5) << shownAs("0 - 75 yeas old (Unknown)"_s, 0, 75, "Both"_s, false);
    QTest::newRow("params of another type")
        << QVariant(QVariantMap{{"name"_s, "x"_s}, {"params"_s, 5}})
        << shownAs("x"_s, 0, 75, "Both"_s, false);
    QTest::newRow("a name with place markers") << QVariant(content("%1 %2 <b>"_s, 5, 9, "both"_s))
                                               << shownAs("%1 %2 <b>"_s, 5, 9, "Both"_s, false);
}

void tst_ContentPropertyWidget::loads()
{
    QFETCH(QVariant, entry);
    QFETCH(QString, expected);
    setContents({content("first"_s, 60, 70, "both"_s), entry});
    const QVariant before = m_pluginData;
    QSignalSpy spy(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    m_widget->loadContent(1);
    QCOMPARE(shown(), expected);
    QCOMPARE(child<QLabel>("information")->text(), EditText);
    QCOMPARE(child<QLabel>("information")->styleSheet(), EditStyle);
    QCOMPARE(m_pluginData, before);
    QCOMPARE(spy.count(), 0);
}

void tst_ContentPropertyWidget::loadsNothing_data()
{
    QTest::addColumn<bool>("withPointer");
    QTest::addColumn<QVariant>("pluginData");
    QTest::addColumn<int>("index");

    const QVariant two(screen({content("a"_s, 1, 2, "both"_s), content("b"_s, 3, 4, "both"_s)}));
    QTest::newRow("a negative index") << true << two << -1;
    QTest::newRow("the count as index") << true << two << 2;
    QTest::newRow("a far index") << true << two << std::numeric_limits<int>::max();
    QTest::newRow("no contents") << true << QVariant(screen({})) << 0;
    QTest::newRow("contents of another type")
        << true << QVariant(QVariantMap{{"contents"_s, 5}}) << 0;
    QTest::newRow("a null value behind the pointer") << true << QVariant() << 0;
    QTest::newRow("no pointer") << false << QVariant() << 0;
}

void tst_ContentPropertyWidget::loadsNothing()
{
    QFETCH(bool, withPointer);
    QFETCH(QVariant, pluginData);
    QFETCH(int, index);
    m_widget->setPluginData(withPointer ? &pluginData : nullptr);
    enter("kept"_s, 11, 12, "Female"_s, true);
    m_widget->loadContent(index);
    QCOMPARE(shown(), describe({QString(), "kept"_s, 11, 12, "Female"_s, true}));
    QCOMPARE(child<QLabel>("information")->text(), EditText);
    QCOMPARE(child<QLabel>("information")->styleSheet(), EditStyle);
}

void tst_ContentPropertyWidget::autoKeepsItsState()
{
    setContents({content("a"_s, 1, 2, "both"_s)});
    automatic()->setChecked(false);
    m_widget->loadContent(0);
    QVERIFY(!automatic()->isChecked());
    ModalDriver driver;
    QVERIFY(m_widget->prepareNewContent());
    QVERIFY(!automatic()->isChecked());
    automatic()->setChecked(true);
    m_widget->loadContent(0);
    QVERIFY(automatic()->isChecked());
}

void tst_ContentPropertyWidget::couplesAges_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<QString>("expected"); // starting with "mine", 20 to 30

    const auto shownAs = [](const QString &name, int ageMin, int ageMax) {
        return describe({"1"_s, name, ageMin, ageMax, "Male"_s, false});
    };
    QTest::newRow("age-max below age-min snaps back to age-min")
        << "ageMax"_s
        << "10"_s << true << shownAs("20 - 20 years old (Male)"_s, 20, 20);
    QTest::newRow("age-min above age-max snaps back to age-max")
        << "ageMin"_s
        << "40"_s << true << shownAs("30 - 30 years old (Male)"_s, 30, 30);
    QTest::newRow("age-min equal to age-max")
        << "ageMin"_s
        << "30"_s << true << shownAs("30 - 30 years old (Male)"_s, 30, 30);
    QTest::newRow("age-min within the range")
        << "ageMin"_s
        << "25"_s << true << shownAs("25 - 30 years old (Male)"_s, 25, 30);
    QTest::newRow("age-max above 75 cannot be typed")
        << "ageMax"_s
        << "76"_s << true << shownAs("20 - 20 years old (Male)"_s, 20, 20);
    QTest::newRow("75") << "ageMax"_s
                        << "75"_s << true << shownAs("20 - 75 years old (Male)"_s, 20, 75);
    QTest::newRow("the name stays without Auto") << "ageMin"_s
                                                 << "25"_s << false << shownAs("mine"_s, 25, 30);
    QTest::newRow("ages snap back without Auto too")
        << "ageMax"_s
        << "10"_s << false << shownAs("mine"_s, 20, 20);
}

void tst_ContentPropertyWidget::couplesAges()
{
    QFETCH(QString, field);
    QFETCH(QString, typed);
    QFETCH(bool, automatic);
    QFETCH(QString, expected);
    setContents({content("mine"_s, 20, 30, "male"_s)});
    m_widget->loadContent(0);
    this->automatic()->setChecked(automatic);
    showWidget();

    auto *spinBox = m_widget->findChild<QSpinBox *>(field);
    typeValue(spinBox, typed);
    // Nothing is coupled before the end of the edit.
    QCOMPARE(name()->text(), "mine"_s);
    QTest::keyClick(spinBox, Qt::Key_Tab);
    QCOMPARE(shown(), expected);
}

void tst_ContentPropertyWidget::couplesAgesBySlot_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<int>("value"); // -1 for a slot without argument
    QTest::addColumn<int>("ageMin");
    QTest::addColumn<int>("ageMax");
    QTest::addColumn<QString>("expected");

    QTest::newRow("the argument of the lower slot counts") << QByteArray(
        "onAgeMinSpinBoxValueChanged") << 31 << 20 << 30 << "30-30 \"30 - 30 years old (Both)\""_s;
    QTest::newRow("the lower slot leaves a fitting range alone") << QByteArray(
        "onAgeMinSpinBoxValueChanged") << 30 << 20 << 30 << "20-30 \"20 - 30 years old (Both)\""_s;
    QTest::newRow("the argument of the upper slot counts") << QByteArray(
        "onAgeMaxSpinBoxValueChanged") << 19 << 20 << 30 << "20-20 \"20 - 20 years old (Both)\""_s;
    QTest::newRow("the upper slot leaves a fitting range alone") << QByteArray(
        "onAgeMaxSpinBoxValueChanged") << 20 << 20 << 30 << "20-30 \"20 - 30 years old (Both)\""_s;
    QTest::newRow("the end of the lower edit takes the value of the field")
        << QByteArray("onAgeMinSpinBoxEditingFinished") << -1 << 50 << 30
        << "30-30 \"30 - 30 years old (Both)\""_s;
    QTest::newRow("the end of the upper edit takes the value of the field")
        << QByteArray("onAgeMaxSpinBoxEditingFinished") << -1 << 50 << 30
        << "50-50 \"50 - 50 years old (Both)\""_s;
}

void tst_ContentPropertyWidget::couplesAgesBySlot()
{
    QFETCH(QByteArray, slot);
    QFETCH(int, value);
    QFETCH(int, ageMin);
    QFETCH(int, ageMax);
    QFETCH(QString, expected);
    this->ageMin()->setValue(ageMin);
    this->ageMax()->setValue(ageMax);
    const bool invoked = value < 0
        ? QMetaObject::invokeMethod(m_widget.get(), slot.constData())
        : QMetaObject::invokeMethod(m_widget.get(), slot.constData(), Q_ARG(int, value));
    QVERIFY(invoked);
    QCOMPARE("%1-%2 \"%3\""_s.arg(this->ageMin()->value())
                 .arg(this->ageMax()->value())
                 .arg(name()->text()),
        expected);
}

void tst_ContentPropertyWidget::programmaticChangesKeepTheName()
{
    name()->setText("mine"_s);
    ageMin()->setValue(50);
    ageMax()->setValue(40);
    QCOMPARE(shown(), describe({QString(), "mine"_s, 50, 40, "Both"_s, false}));
}

void tst_ContentPropertyWidget::genderRenames()
{
    setContents({content("mine"_s, 20, 30, "both"_s)});
    m_widget->loadContent(0);
    showWidget();
    QTest::keyClick(gender(), Qt::Key_Down);
    QCOMPARE(name()->text(), "20 - 30 years old (Female)"_s);
    automatic()->setChecked(false);
    QTest::keyClick(gender(), Qt::Key_Down);
    QCOMPARE(gender()->currentText(), "Male"_s);
    QCOMPARE(name()->text(), "20 - 30 years old (Female)"_s);
}

void tst_ContentPropertyWidget::generatesNameBySlot()
{
    automatic()->setChecked(false);
    name()->setText("mine"_s);
    QVERIFY(QMetaObject::invokeMethod(m_widget.get(), "onGenerateNameButtonClicked"));
    QCOMPARE(name()->text(), "20 - 30 years old (Both)"_s);
    gender()->setCurrentText("Male"_s);
    QVERIFY(QMetaObject::invokeMethod(
        m_widget.get(), "onGenerateNameButtonClicked", Q_ARG(bool, true)));
    QCOMPARE(name()->text(), "20 - 30 years old (Male)"_s);
}

void tst_ContentPropertyWidget::findRangeWalksAllFreeRanges()
{
    setContents({content("a"_s, 20, 30, "female"_s), content("b"_s, 20, 30, "male"_s)});
    ModalDriver driver;
    QVERIFY(m_widget->prepareNewContent());
    showWidget();
    const QStringList round{"0-19 Male"_s, "31-75 Male"_s, "0-19 Female"_s, "31-75 Female"_s,
        "0-19 Both"_s, "31-75 Both"_s};
    QCOMPARE(shownRange(), round.last());
    QStringList visited;
    for (int i = 0; i < 12; ++i) {
        QTest::mouseClick(findRange(), Qt::LeftButton);
        visited.append(shownRange());
        QCOMPARE(name()->text(),
            "%1 - %2 years old (%3)"_s.arg(ageMin()->value())
                .arg(ageMax()->value())
                .arg(gender()->currentText()));
    }
    QCOMPARE(visited, round + round);
    QCOMPARE(driver.failures(), QString());
}

void tst_ContentPropertyWidget::findRangeComesBackToTheEnteredRange()
{
    setContents({content("a"_s, 0, 19, "both"_s), content("b"_s, 30, 75, "both"_s)});
    ModalDriver driver;
    QVERIFY(m_widget->prepareNewContent());
    showWidget();
    ageMin()->setValue(22);
    ageMax()->setValue(25);
    clickCheckBox(isDefault());

    const QStringList expected{"20-29 Male"_s, "20-29 Female"_s, "20-29 Both"_s,
        "22-25 Both default"_s, "20-29 Male"_s, "20-29 Female"_s};
    QStringList visited;
    for (int i = 0; i < expected.size(); ++i) {
        QTest::keyClick(findRange(), Qt::Key_Space);
        visited.append(shownRange());
    }
    QCOMPARE(visited, expected);

    // The next showing starts afresh.
    QVERIFY(m_widget->prepareNewContent());
    visited.clear();
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(findRange(), Qt::Key_Space);
        visited.append(shownRange());
    }
    QCOMPARE(
        visited, QStringList({"20-29 Male"_s, "20-29 Female"_s, "20-29 Both"_s, "20-29 Male"_s}));
    QCOMPARE(driver.failures(), QString());
}

void tst_ContentPropertyWidget::findRangeKeepsTheNameWithoutAuto()
{
    setContents({content("a"_s, 0, 19, "both"_s), content("b"_s, 30, 75, "both"_s)});
    ModalDriver driver;
    m_widget->loadContent(1);
    automatic()->setChecked(false);
    QVERIFY(QMetaObject::invokeMethod(m_widget.get(), "onFindNextRangeButtonClicked"));
    QCOMPARE(shown(), describe({"2"_s, "b"_s, 20, 29, "Both"_s, false}));
    QCOMPARE(driver.failures(), QString());
}

void tst_ContentPropertyWidget::findRangeIncludesTheEditedContent()
{
    // Its own ages count as covered, so they are not part of what is free.
    setContents({content("a"_s, 0, 40, "both"_s), content("b"_s, 41, 60, "both"_s)});
    ModalDriver driver;
    m_widget->loadContent(1);
    QVERIFY(QMetaObject::invokeMethod(
        m_widget.get(), "onFindNextRangeButtonClicked", Q_ARG(bool, false)));
    QCOMPARE(shown(), describe({"2"_s, "61 - 75 years old (Both)"_s, 61, 75, "Both"_s, false}));
    QCOMPARE(driver.failures(), QString());
}

void tst_ContentPropertyWidget::findRangeFindsNothing()
{
    setContents({content("a"_s, 0, 40, "both"_s), content("b"_s, 41, 75, "both"_s)});
    m_widget->loadContent(1);
    showWidget();
    ModalDriver driver;
    driver.confirmBox();
    driver.confirmBox();
    QTest::mouseClick(findRange(), Qt::LeftButton);
    // A search that failed does not offer the entered range either.
    QTest::mouseClick(findRange(), Qt::LeftButton);
    QCOMPARE(driver.boxes(), QStringList({notFoundBox(), notFoundBox()}));
    QCOMPARE(shown(), describe({"2"_s, "b"_s, 41, 75, "Both"_s, false}));
    QCOMPARE(driver.failures(), QString());
}

void tst_ContentPropertyWidget::validates_data()
{
    QTest::addColumn<QVariantList>("others"); // in front of the edited one
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("ageMin");
    QTest::addColumn<int>("ageMax");
    QTest::addColumn<QString>("gender");
    QTest::addColumn<bool>("isDefault");
    QTest::addColumn<QString>("box"); // empty: accepted
    QTest::addColumn<QString>("focus");

    const QVariantList male4560{content("a"_s, 45, 60, "male"_s)};
    const QVariantList maleDefault{content("a"_s, 45, 60, "male"_s, "true"_s)};
    const QVariantList femaleDefault{content("a"_s, 45, 60, "female"_s, "TRUE"_s)};
    const QString accepted;

    QTest::newRow("beside others")
        << male4560 << "n"_s << 1 << 2 << "Male"_s << false << accepted << QString();
    QTest::newRow("the name of another one")
        << male4560 << "a"_s << 1 << 2 << "Male"_s << false << duplicateNameBox("a"_s) << "name"_s;
    QTest::newRow("the name of another one in another letter case")
        << male4560 << "A"_s << 1 << 2 << "Male"_s << false << accepted << QString();
    QTest::newRow("the name of another one with a blank")
        << male4560 << "a "_s << 1 << 2 << "Male"_s << false << accepted << QString();
    QTest::newRow("a used name with place markers")
        << QVariantList{content("%1 a %2"_s, 45, 60, "male"_s)} << "%1 a %2"_s << 1 << 2
        << "Female"_s << false << duplicateNameBox("%1 a %2"_s) << "name"_s;
    QTest::newRow("a used name of a content of another gender")
        << male4560 << "a"_s << 45 << 60 << "Female"_s << false << duplicateNameBox("a"_s)
        << "name"_s;
    QVariantMap inner = content("b"_s, 45, 60, "male"_s);
    QVariantMap innerParams = inner.value("params"_s).toMap();
    innerParams.insert("name"_s, "inner"_s);
    inner.insert("params"_s, innerParams);
    QTest::newRow("a name that another one has in its params is free")
        << QVariantList{inner} << "inner"_s << 1 << 2 << "Male"_s << false << accepted << QString();

    QTest::newRow("40 to 50 beside 45 to 60 of the same gender")
        << male4560 << "n"_s << 40 << 50 << "Male"_s << false << ageRangeBox() << "ageMin"_s;
    QTest::newRow("50 to 70 beside 45 to 60 of the same gender")
        << male4560 << "n"_s << 50 << 70 << "Male"_s << false << ageRangeBox() << "ageMin"_s;
    QTest::newRow("up to the first age of the other")
        << male4560 << "n"_s << 40 << 45 << "Male"_s << false << ageRangeBox() << "ageMin"_s;
    QTest::newRow("up to one year before the other")
        << male4560 << "n"_s << 40 << 44 << "Male"_s << false << accepted << QString();
    QTest::newRow("from the last age of the other")
        << male4560 << "n"_s << 60 << 61 << "Male"_s << false << ageRangeBox() << "ageMin"_s;
    QTest::newRow("from one year behind the other")
        << male4560 << "n"_s << 61 << 70 << "Male"_s << false << accepted << QString();
    QTest::newRow("10 to 70 around 20 to 30")
        << QVariantList{content("a"_s, 20, 30, "male"_s)} << "n"_s << 10 << 70 << "Male"_s << false
        << accepted << QString();
    QTest::newRow("Male and Female share ages")
        << male4560 << "n"_s << 45 << 60 << "Female"_s << false << accepted << QString();
    QTest::newRow("Both does not share ages with Male")
        << male4560 << "n"_s << 45 << 60 << "Both"_s << false << ageRangeBox() << "ageMin"_s;
    QTest::newRow("Female does not share ages with Both")
        << QVariantList{content("a"_s, 45, 60, "BOTH"_s)} << "n"_s << 45 << 60 << "Female"_s
        << false << ageRangeBox() << "ageMin"_s;
    QTest::newRow("an unknown gender shares ages with all")
        << QVariantList{content("a"_s, 45, 60, "others"_s, "true"_s)} << "n"_s << 45 << 60
        << "Both"_s << true << accepted << QString();
    QTest::newRow("another one with its ages turned round covers nothing")
        << QVariantList{content("a"_s, 60, 45, "male"_s)} << "n"_s << 50 << 55 << "Male"_s << false
        << accepted << QString();
    QTest::newRow("another one without ages covers them all")
        << QVariantList{QVariantMap{{"params"_s, QVariantMap{{"gender"_s, "male"_s}}}}} << "n"_s
        << 50 << 55 << "Male"_s << false << ageRangeBox() << "ageMin"_s;
    QTest::newRow("entries of other types are in nobody's way")
        << QVariantList{5, QVariant(), "a"_s} << "a"_s << 50 << 55 << "Male"_s << true << accepted
        << QString();

    QTest::newRow("a second default for Male") << maleDefault << "n"_s << 1 << 2 << "Male"_s << true
                                               << defaultBox("Male"_s) << "default"_s;
    QTest::newRow("a default for Female beside one for Male")
        << maleDefault << "n"_s << 1 << 2 << "Female"_s << true << accepted << QString();
    QTest::newRow("a default for Both beside one for Male")
        << maleDefault << "n"_s << 1 << 2 << "Both"_s << true << defaultBox("Both"_s)
        << "default"_s;
    QTest::newRow("a default for Both beside one for Female in upper case")
        << femaleDefault << "n"_s << 1 << 2 << "Both"_s << true << defaultBox("Both"_s)
        << "default"_s;
    QTest::newRow("a second default for Female, stored as a bool")
        << QVariantList{content("a"_s, 45, 60, "female"_s, true)} << "n"_s << 1 << 2 << "Female"_s
        << true << defaultBox("Female"_s) << "default"_s;
    QTest::newRow("no default beside a default")
        << maleDefault << "n"_s << 1 << 2 << "Male"_s << false << accepted << QString();
    QTest::newRow("the first default beside others")
        << male4560 << "n"_s << 1 << 2 << "Male"_s << true << accepted << QString();
}

void tst_ContentPropertyWidget::validates()
{
    QFETCH(QVariantList, others);
    QFETCH(QString, name);
    QFETCH(int, ageMin);
    QFETCH(int, ageMax);
    QFETCH(QString, gender);
    QFETCH(bool, isDefault);
    QFETCH(QString, box);
    QFETCH(QString, focus);

    QVariantList contents = others;
    contents.append(content("own"_s, 71, 75, "male"_s));
    setContents(contents);
    const QVariant before = m_pluginData;
    m_widget->loadContent(others.size());
    showWidget();
    enter(name, ageMin, ageMax, gender, isDefault);
    findRange()->setFocus();
    QSignalSpy spy(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));

    ModalDriver driver;
    if (!box.isEmpty())
        driver.confirmBox();
    QCOMPARE(m_widget->validateAndStore(), box.isEmpty());
    QCOMPARE(driver.boxes(), boxList(box));
    QCOMPARE(driver.failures(), QString());
    if (box.isEmpty()) {
        QCOMPARE(spy.count(), 1);
        return;
    }
    QCOMPARE(spy.count(), 0);
    QCOMPARE(m_pluginData, before);
    QCOMPARE(focusedName(), focus);
    if (focus == "name"_s) {
        QCOMPARE(this->name()->selectedText(), name);
    } else if (focus == "ageMin"_s) {
        QCOMPARE(this->ageMin()->findChild<QLineEdit *>()->selectedText(), QString::number(ageMin));
    }
}

void tst_ContentPropertyWidget::refusalOrder()
{
    setContents({content("a"_s, 45, 60, "male"_s, "true"_s), content("b"_s, 0, 1, "male"_s)});
    m_widget->loadContent(1);
    enter("a"_s, 50, 51, "Male"_s, true);
    ModalDriver driver;
    for (int i = 0; i < 3; ++i)
        driver.confirmBox();
    QVERIFY(!m_widget->validateAndStore());
    name()->setText("b"_s);
    QVERIFY(!m_widget->validateAndStore());
    ageMin()->setValue(10);
    ageMax()->setValue(11);
    QVERIFY(!m_widget->validateAndStore());
    isDefault()->setChecked(false);
    QVERIFY(m_widget->validateAndStore());
    QCOMPARE(driver.boxes(),
        QStringList({duplicateNameBox("a"_s), ageRangeBox(), defaultBox("Male"_s)}));
    QCOMPARE(driver.failures(), QString());
}

void tst_ContentPropertyWidget::stores_data()
{
    QTest::addColumn<QVariant>("entry");
    QTest::addColumn<QString>("changed"); // a field, or none
    QTest::addColumn<QVariant>("expected");
    QTest::addColumn<bool>("announced");

    const QVariantMap plain = content("n"_s, 20, 30, "male"_s, "false"_s);
    QTest::newRow("no change writes and announces nothing")
        << QVariant(plain) << QString() << QVariant(plain) << false;
    QTest::newRow("name") << QVariant(plain) << "name"_s
                          << QVariant(content("N"_s, 20, 30, "male"_s)) << true;
    QTest::newRow("age-min") << QVariant(plain) << "ageMin"_s
                             << QVariant(content("n"_s, 21, 30, "male"_s)) << true;
    QTest::newRow("age-max") << QVariant(plain) << "ageMax"_s
                             << QVariant(content("n"_s, 20, 31, "male"_s)) << true;
    QTest::newRow("gender") << QVariant(plain) << "gender"_s
                            << QVariant(content("n"_s, 20, 30, "female"_s)) << true;
    QTest::newRow("default") << QVariant(plain) << "default"_s
                             << QVariant(content("n"_s, 20, 30, "male"_s, "true"_s)) << true;
    const QVariant textAges = content("n"_s, "20"_s, "30"_s, "male"_s);
    QTest::newRow("ages stored as texts are the same ages")
        << textAges << QString() << textAges << false;
    QTest::newRow("ages stored as texts become numbers with any change")
        << textAges << "name"_s << QVariant(content("N"_s, 20, 30, "male"_s)) << true;
    QTest::newRow("a gender in upper case is another text")
        << QVariant(content("n"_s, 20, 30, "MALE"_s)) << QString() << QVariant(plain) << true;
    const QVariantMap upperDefault = content("n"_s, 20, 30, "male"_s, "TRUE"_s);
    QTest::newRow("a default in upper case is the same default")
        << QVariant(upperDefault) << QString() << QVariant(upperDefault) << false;
    QTest::newRow("a default in upper case that is taken back")
        << QVariant(upperDefault) << "default"_s << QVariant(plain) << true;
    QTest::newRow("a default in upper case is rewritten with any change")
        << QVariant(upperDefault) << "name"_s
        << QVariant(content("N"_s, 20, 30, "male"_s, "true"_s)) << true;
    const QVariantMap otherDefault = content("n"_s, 20, 30, "male"_s, "yes"_s);
    QTest::newRow("a default that is no word of ours is none")
        << QVariant(otherDefault) << QString() << QVariant(otherDefault) << false;
    const QVariantMap boolDefault = content("n"_s, 20, 30, "male"_s, true);
    QTest::newRow("a default stored as a bool")
        << QVariant(boolDefault) << QString() << QVariant(boolDefault) << false;
    QVariantMap noDefault = plain;
    QVariantMap noDefaultParams = plain.value("params"_s).toMap();
    noDefaultParams.remove("default"_s);
    noDefault.insert("params"_s, noDefaultParams);
    QTest::newRow("a missing default is none")
        << QVariant(noDefault) << QString() << QVariant(noDefault) << false;
    QTest::newRow("a missing default that is set")
        << QVariant(noDefault) << "default"_s
        << QVariant(content("n"_s, 20, 30, "male"_s, "true"_s)) << true;
    QTest::newRow("ages outside the limits are replaced by the limits shown")
        << QVariant(content("n"_s, -3, 99, "male"_s)) << QString()
        << QVariant(content("n"_s, 0, 75, "male"_s)) << true;
    QTest::newRow("ages turned round are put right")
        << QVariant(content("n"_s, 40, 30, "male"_s)) << QString()
        << QVariant(content("n"_s, 30, 30, "male"_s)) << true;
    QVariantMap nameless = plain;
    nameless.remove("name"_s);
    QTest::newRow("a missing name is written as it was shown")
        << QVariant(nameless) << QString()
        << QVariant(content("20 - 30 yeas old (Male)"_s, 20, 30, "male"_s)) << true;

    QVariantMap foreign = plain;
    QVariantMap foreignParams = foreign.value("params"_s).toMap();
    foreignParams.insert("name"_s, "inner"_s);
    foreignParams.insert("Gender"_s, "x"_s);
    foreign.insert("params"_s, foreignParams);
    foreign.insert("type"_s, 9);
    foreign.insert("host"_s, QVariantList{1, 2});
    QVariantMap foreignChanged = foreign;
    foreignChanged.insert("name"_s, "N"_s);
    QTest::newRow("foreign keys, the type and a name inside params survive")
        << QVariant(foreign) << "name"_s << QVariant(foreignChanged) << true;
}

void tst_ContentPropertyWidget::stores()
{
    QFETCH(QVariant, entry);
    QFETCH(QString, changed);
    QFETCH(QVariant, expected);
    QFETCH(bool, announced);

    // The neighbour is of another gender so that it does not get in the way.
    const QVariant neighbour = content("neighbour"_s, 0, 75, "others"_s);
    QVariantMap map = screen({neighbour, entry, neighbour}, 42);
    map.insert("host"_s, "kept"_s);
    map.insert("plugindata"_s, QVariantMap{{"interval"_s, 5}});
    m_pluginData = map;
    m_widget->setPluginData(&m_pluginData);
    m_widget->loadContent(1);
    if (changed == "name"_s)
        name()->setText("N"_s);
    else if (changed == "ageMin"_s)
        ageMin()->setValue(21);
    else if (changed == "ageMax"_s)
        ageMax()->setValue(31);
    else if (changed == "default"_s)
        isDefault()->toggle();
    else if (changed == "gender"_s) {
        automatic()->setChecked(false);
        gender()->setCurrentText("Female"_s);
    }
    QSignalSpy updated(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QSignalSpy requested(m_widget.get(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    QVERIFY(updated.isValid() && requested.isValid());

    ModalDriver driver;
    QVERIFY(m_widget->validateAndStore());
    QCOMPARE(driver.failures(), QString());
    map.insert("contents"_s, QVariantList{neighbour, expected, neighbour});
    QCOMPARE(m_pluginData, QVariant(map));
    QCOMPARE(requested.count(), 0);
    QCOMPARE(updated.count(), announced ? 1 : 0);
    if (announced) {
        QCOMPARE(updated.at(0).at(0).toInt(), 42);
        QCOMPARE(updated.at(0).at(1).value<QList<int>>(), QList<int>{1});
    }
    // What has been written is no change any more.
    QVERIFY(m_widget->validateAndStore());
    QCOMPARE(updated.count(), announced ? 1 : 0);
}

void tst_ContentPropertyWidget::storedTypes()
{
    // QVariant compares 20 and "20" as equal.
    setContents({content("n"_s, "20"_s, "30"_s, "male"_s, false)});
    m_widget->loadContent(0);
    name()->setText("N"_s);
    QVERIFY(m_widget->validateAndStore());
    const QVariantList contents = m_pluginData.toMap().value("contents"_s).toList();
    QCOMPARE(contents.size(), 1);
    const QVariantMap params = contents.first().toMap().value("params"_s).toMap();
    QStringList types;
    for (auto it = params.cbegin(); it != params.cend(); ++it)
        types.append(it.key() + QLatin1Char(' ') + QString::fromLatin1(it.value().typeName()));
    QCOMPARE(types,
        QStringList({"age-max int"_s, "age-min int"_s, "default QString"_s, "gender QString"_s}));
}

void tst_ContentPropertyWidget::storesNew_data()
{
    QTest::addColumn<QVariantMap>("screen");
    QTest::addColumn<int>("screenId");

    const QVariantList contents{
        content("a"_s, 0, 19, "both"_s, "true"_s), content("b"_s, 30, 75, "both"_s)};
    QTest::newRow("with an id") << screen(contents, 42) << 42;
    QTest::newRow("without an id") << QVariantMap{{"contents"_s, contents}} << -1;
}

void tst_ContentPropertyWidget::storesNew()
{
    QFETCH(QVariantMap, screen);
    QFETCH(int, screenId);
    m_pluginData = screen;
    m_widget->setPluginData(&m_pluginData);
    ModalDriver driver;
    QVERIFY(m_widget->prepareNewContent());
    QSignalSpy updated(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QSignalSpy requested(m_widget.get(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    QVERIFY(m_widget->validateAndStore());
    QCOMPARE(driver.failures(), QString());

    QCOMPARE(m_pluginData, QVariant(screen));
    QCOMPARE(updated.count(), 0);
    QCOMPARE(requested.count(), 1);
    QCOMPARE(requested.at(0).at(0).toInt(), screenId);
    const auto added = requested.at(0).at(1).value<QMap<int, QVariant>>();
    QCOMPARE(added.keys(), QList<int>{2});
    const QVariant expected = content("20 - 29 years old (Both)"_s, 20, 29, "both"_s);
    QCOMPARE(added.value(2), expected);
    QCOMPARE(added.value(2).toMap().value("type"_s).type(), QVariant::Int);

    // A new content runs into the same refusals.
    isDefault()->setChecked(true);
    driver.confirmBox();
    QVERIFY(!m_widget->validateAndStore());
    QCOMPARE(driver.boxes(), QStringList{defaultBox("Both"_s)});
    QCOMPARE(requested.count(), 1);
    QCOMPARE(driver.failures(), QString());
}

void tst_ContentPropertyWidget::refusesToStoreWithoutMap_data()
{
    QTest::addColumn<bool>("withPointer");

    QTest::newRow("no pointer") << false;
    QTest::newRow("a null value behind the pointer") << true;
}

void tst_ContentPropertyWidget::refusesToStoreWithoutMap()
{
    QFETCH(bool, withPointer);
    m_widget->setPluginData(withPointer ? &m_pluginData : nullptr);
    QSignalSpy requested(m_widget.get(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    ModalDriver driver;
    QVERIFY(!m_widget->validateAndStore());
    QCOMPARE(driver.boxes(), QStringList());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(requested.count(), 0);
    QVERIFY(!m_pluginData.isValid());
}

void tst_ContentPropertyWidget::refusesToStoreWithoutIndex_data()
{
    QTest::addColumn<QString>("before"); // what the widget did before

    QTest::newRow("nothing was loaded") << QString();
    QTest::newRow("a new content found no free range") << "prepare"_s;
    QTest::newRow("a negative index was loaded") << "-1"_s;
    QTest::newRow("the lowest index was loaded") << "-2147483648"_s;
}

void tst_ContentPropertyWidget::refusesToStoreWithoutIndex()
{
    QFETCH(QString, before);
    setContents({content("a"_s, 0, 75, "both"_s)});
    const QVariant stored = m_pluginData;
    ModalDriver driver;
    if (before == "prepare"_s) {
        driver.confirmBox();
        QVERIFY(!m_widget->prepareNewContent());
    } else if (!before.isEmpty()) {
        m_widget->loadContent(0);
        m_widget->loadContent(before.toInt());
    }
    enter("n"_s, 40, 50, "Male"_s, false);
    QSignalSpy updated(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QSignalSpy requested(m_widget.get(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    QVERIFY(!m_widget->validateAndStore());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(m_pluginData, stored);
    QCOMPARE(updated.count(), 0);
    QCOMPARE(requested.count(), 0);
}

void tst_ContentPropertyWidget::storesNewBehindTheList_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("count"); // of the contents when it is stored

    QTest::newRow("the count") << 2 << 2;
    QTest::newRow("beyond the count") << 7 << 2;
    QTest::newRow("far behind the list") << std::numeric_limits<int>::max() << 2;
    QTest::newRow("no contents") << 0 << 0;
    QTest::newRow("the content has been removed meanwhile") << 1 << 1;
    QTest::newRow("all contents have been removed meanwhile") << 1 << 0;
}

void tst_ContentPropertyWidget::storesNewBehindTheList()
{
    QFETCH(int, index);
    QFETCH(int, count);
    const QVariantList contents{content("a"_s, 0, 5, "both"_s), content("b"_s, 6, 9, "both"_s)};
    setContents(contents);
    m_widget->loadContent(index);
    m_pluginData = screen(contents.mid(0, count), 42);
    const QVariant before = m_pluginData;
    enter("n"_s, 40, 50, "Male"_s, true);
    QSignalSpy updated(m_widget.get(), SIGNAL(screenValuesUpdated(int, QList<int>)));
    QSignalSpy requested(m_widget.get(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    ModalDriver driver;
    QVERIFY(m_widget->validateAndStore());
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(m_pluginData, before);
    QCOMPARE(updated.count(), 0);
    QCOMPARE(requested.count(), 1);
    QCOMPARE(requested.at(0).at(0).toInt(), 42);
    const QMap<int, QVariant> expected{{index, content("n"_s, 40, 50, "male"_s, "true"_s)}};
    const auto added = requested.at(0).at(1).value<QMap<int, QVariant>>();
    QCOMPARE(added, expected);
}

void tst_ContentPropertyWidget::refusesNewBehindTheList()
{
    setContents({content("a"_s, 0, 5, "both"_s)});
    m_widget->loadContent(99);
    enter("n"_s, 5, 9, "Male"_s, false);
    QSignalSpy requested(m_widget.get(), SIGNAL(requestAddContents(int, QMap<int, QVariant>)));
    ModalDriver driver;
    driver.confirmBox();
    QVERIFY(!m_widget->validateAndStore());
    QCOMPARE(driver.boxes(), QStringList{ageRangeBox()});
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(requested.count(), 0);
}

void tst_ContentPropertyWidget::typedEdit()
{
    setContents({content("a"_s, 20, 30, "male"_s)});
    m_widget->loadContent(0);
    showWidget();
    typeValue(ageMin(), "40"_s);
    QTest::keyClick(ageMin(), Qt::Key_Tab); // snaps back to 30
    typeValue(ageMax(), "50"_s);
    QTest::keyClick(ageMax(), Qt::Key_Tab);
    typeValue(ageMin(), "40"_s);
    QTest::keyClick(ageMin(), Qt::Key_Tab);
    clickCheckBox(isDefault());
    clickCheckBox(automatic());
    name()->setFocus();
    name()->selectAll();
    QTest::keyClicks(name(), "Men"_s);
    ModalDriver driver;
    QVERIFY(m_widget->validateAndStore());
    QCOMPARE(m_pluginData, QVariant(screen({content("Men"_s, 40, 50, "male"_s, "true"_s)})));
    QCOMPARE(driver.failures(), QString());
}

void tst_ContentPropertyWidget::neverEmitsRejected()
{
    QSignalSpy spy(m_widget.get(), &KrHvcContentPropertyWidget::rejected);
    setContents({content("a"_s, 20, 30, "male"_s)});
    m_widget->loadContent(0);
    showWidget();
    QTest::keyClick(name(), Qt::Key_Escape);
    m_widget->close();
    QCOMPARE(spy.count(), 0);
}

void tst_ContentPropertyWidget::deletedInMessageBox_data()
{
    QTest::addColumn<QString>("action");

    QTest::newRow("no free range") << "prepare"_s;
    QTest::newRow("nothing found") << "find"_s;
    QTest::newRow("duplicate name") << "name"_s;
    QTest::newRow("ages in use") << "ages"_s;
    QTest::newRow("second default") << "default"_s;
}

void tst_ContentPropertyWidget::deletedInMessageBox()
{
    QFETCH(QString, action);
    setContents({content("a"_s, 0, 74, "both"_s, "true"_s), content("b"_s, 75, 75, "both"_s)});
    const QVariant before = m_pluginData;
    m_widget->loadContent(1);
    ModalDriver driver;
    driver.onBox([this](QDialog * /*box*/) { m_widget.reset(); });
    automatic()->setChecked(false);
    bool result = false;
    if (action == "prepare"_s) {
        result = m_widget->prepareNewContent();
    } else if (action == "find"_s) {
        showWidget();
        QTest::mouseClick(findRange(), Qt::LeftButton);
    } else {
        if (action == "name"_s)
            name()->setText("a"_s);
        else if (action == "ages"_s)
            ageMin()->setValue(70);
        else
            isDefault()->setChecked(true);
        result = m_widget->validateAndStore();
    }
    QVERIFY(!result);
    QVERIFY(m_widget == nullptr);
    QCOMPARE(driver.boxes().size(), 1);
    QCOMPARE(driver.failures(), QString());
    QCOMPARE(m_pluginData, before);
}

void tst_ContentPropertyWidget::deletedWithAnUnfinishedEdit_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<bool>("isChild");

    QTest::newRow("age-min, a window of its own") << "ageMin"_s << false;
    QTest::newRow("age-max, a window of its own") << "ageMax"_s << false;
    QTest::newRow("age-min, inside a window of the host") << "ageMin"_s << true;
    QTest::newRow("age-max, inside a window of the host") << "ageMax"_s << true;
}

/// The focus leaves the field, which ends the edit, when the widget is half gone already.
void tst_ContentPropertyWidget::deletedWithAnUnfinishedEdit()
{
    QFETCH(QString, field);
    QFETCH(bool, isChild);
    setContents({content("mine"_s, 20, 30, "male"_s)});
    m_widget->loadContent(0);
    QWidget window;
    if (isChild) {
        m_widget->setParent(&window);
        window.show();
    }
    m_widget->show();
    QApplication::setActiveWindow(m_widget->window());
    auto *spinBox = m_widget->findChild<QSpinBox *>(field);
    typeValue(spinBox, "5"_s);
    QVERIFY(spinBox->hasFocus());
    m_widget.reset();
    QCOMPARE(m_pluginData, QVariant(screen({content("mine"_s, 20, 30, "male"_s)})));
}

void tst_ContentPropertyWidget::deletedByReceiver_data()
{
    QTest::addColumn<bool>("isNew");

    QTest::newRow("a changed content") << false;
    QTest::newRow("a new content") << true;
}

void tst_ContentPropertyWidget::deletedByReceiver()
{
    QFETCH(bool, isNew);
    setContents({content("a"_s, 0, 60, "both"_s)});
    ModalDriver driver;
    if (isNew) {
        QVERIFY(m_widget->prepareNewContent());
    } else {
        m_widget->loadContent(0);
        name()->setText("b"_s);
    }
    const auto destroy = [this] { m_widget.reset(); };
    connect(m_widget.get(), &KrHvcContentPropertyWidget::screenValuesUpdated, this, destroy);
    connect(m_widget.get(), &KrHvcContentPropertyWidget::requestAddContents, this, destroy);
    QVERIFY(m_widget->validateAndStore());
    QVERIFY(m_widget == nullptr);
}

QTEST_MAIN(tst_ContentPropertyWidget)
#include "tst_contentpropertywidget.moc"
