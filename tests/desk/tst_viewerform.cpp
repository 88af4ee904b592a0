#include "demo/desk/ViewerDesk.h"
#include "demo/desk/ViewerForm.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

#include <memory>

using namespace Desk;
using Simulation::Gender;

class tst_ViewerForm : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void showsTheSelectedOne();
    void nobodyIsSelected();
    void typedAge();
    void ageNotTold();
    void arrowsOfTheAge();
    void gender_data();
    void gender();
    void angles_data();
    void angles();
    void settled();
    void noise();
    void deleted();
    void showingChangesNothing();
    void placeIsKept();
    void hidden();
    void everyFieldIsReached();

private:
    PlacedViewer selected() const { return m_desk->viewer(m_desk->selected()); }
    template <typename Field>
    Field *field(const char *name) const
    {
        return m_form->findChild<Field *>(QLatin1String(name));
    }
    void type(const char *spinBox, const char *text) const;

    std::unique_ptr<ViewerDesk> m_desk;
    std::unique_ptr<ViewerForm> m_form;
};

void tst_ViewerForm::init()
{
    m_desk = std::make_unique<ViewerDesk>();
    m_desk->add({400, 300});
    m_desk->add({800, 500});
    m_form = std::make_unique<ViewerForm>(m_desk.get());
    m_form->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_form.get()));
}

void tst_ViewerForm::cleanup()
{
    m_form.reset();
    m_desk.reset();
}

void tst_ViewerForm::type(const char *spinBox, const char *text) const
{
    auto box = field<QSpinBox>(spinBox);
    QTest::mouseClick(box, Qt::LeftButton, {}, {10, box->height() / 2});
    box->selectAll();
    QTest::keyClicks(box, QLatin1String(text));
    QTest::keyClick(box, Qt::Key_Return);
}

void tst_ViewerForm::showsTheSelectedOne()
{
    PlacedViewer boy = m_desk->viewer(1);
    boy.age = 8;
    boy.gender = Gender::Male;
    boy.direction = {10, -20, 30};
    boy.settled = false;
    boy.noise = PlacedViewer::MuchNoise;
    m_desk->change(boy);
    QCOMPARE(field<QSpinBox>("age")->value(), 30); // the other one is selected
    m_desk->select(1);
    QCOMPARE(field<QSpinBox>("age")->value(), 8);
    QCOMPARE(field<QComboBox>("gender")->currentText(), QStringLiteral("male"));
    QCOMPARE(field<QSpinBox>("lr")->value(), 10);
    QCOMPARE(field<QSpinBox>("ud")->value(), -20);
    QCOMPARE(field<QSpinBox>("roll")->value(), 30);
    QVERIFY(!field<QCheckBox>("settled")->isChecked());
    QCOMPARE(field<QComboBox>("noise")->currentText(), QStringLiteral("much"));

    boy.age.reset();
    boy.gender = Gender::Unknown;
    m_desk->change(boy);
    QCOMPARE(field<QSpinBox>("age")->text(), QStringLiteral("not told"));
    QCOMPARE(field<QComboBox>("gender")->currentText(), QStringLiteral("not told"));
}

void tst_ViewerForm::nobodyIsSelected()
{
    QVERIFY(m_form->isEnabled());
    m_desk->select(0);
    QVERIFY(!m_form->isEnabled());
    const QSignalSpy changed(m_desk.get(), &ViewerDesk::changed);
    QTest::mouseClick(field<QPushButton>("remove"), Qt::LeftButton);
    QCOMPARE(changed.count(), 0);
    m_desk->select(1);
    QVERIFY(m_form->isEnabled());
}

void tst_ViewerForm::typedAge()
{
    const QSignalSpy changed(m_desk.get(), &ViewerDesk::changed);
    type("age", "47");
    QCOMPARE(changed.count(), 1);
    QCOMPARE(selected().age.value_or(-1), 47);
    QCOMPARE(m_desk->viewer(1).age.value_or(-1), 30);
}

void tst_ViewerForm::ageNotTold()
{
    type("age", "0");
    QCOMPARE(selected().age.value_or(-1), 0);
    QTest::keyClick(field<QSpinBox>("age"), Qt::Key_Down);
    QVERIFY(!selected().age.has_value());
    QTest::keyClick(field<QSpinBox>("age"), Qt::Key_Up);
    QCOMPARE(selected().age.value_or(-1), 0);
}

void tst_ViewerForm::arrowsOfTheAge()
{
    auto age = field<QSpinBox>("age");
    QStyleOptionSpinBox option;
    option.initFrom(age);
    option.subControls = QStyle::SC_All;
    const QRect up
        = age->style()->subControlRect(QStyle::CC_SpinBox, &option, QStyle::SC_SpinBoxUp, age);
    QTest::mouseClick(age, Qt::LeftButton, {}, up.center());
    QCOMPARE(selected().age.value_or(-1), 31);
}

void tst_ViewerForm::gender_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("expected");

    QTest::newRow("male") << int(Qt::Key_M) << int(Gender::Male);
    QTest::newRow("female") << int(Qt::Key_F) << int(Gender::Female);
    QTest::newRow("not told") << int(Qt::Key_N) << int(Gender::Unknown);
}

void tst_ViewerForm::gender()
{
    QFETCH(int, key);
    QFETCH(int, expected);

    PlacedViewer other = selected();
    other.gender = expected == int(Gender::Male) ? Gender::Female : Gender::Male;
    m_desk->change(other);
    auto box = field<QComboBox>("gender");
    box->setFocus();
    QTest::keyClick(box, static_cast<Qt::Key>(key));
    QCOMPARE(int(selected().gender), expected);
}

void tst_ViewerForm::angles_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("expected");

    QTest::newRow("sideways") << "lr"
                              << "-25 2 3";
    QTest::newRow("up") << "ud"
                        << "1 -25 3";
    QTest::newRow("tilted") << "roll"
                            << "1 2 -25";
}

void tst_ViewerForm::angles()
{
    QFETCH(QString, field);
    QFETCH(QString, expected);

    PlacedViewer viewer = selected();
    viewer.direction = {1, 2, 3};
    m_desk->change(viewer);
    type(field.toLatin1().constData(), "-25");
    const Simulation::Direction direction = selected().direction;
    QCOMPARE(QStringLiteral("%1 %2 %3").arg(direction.lr).arg(direction.ud).arg(direction.roll),
        expected);
}

void tst_ViewerForm::settled()
{
    auto box = field<QCheckBox>("settled");
    QTest::mouseClick(box, Qt::LeftButton, {}, {8, box->height() / 2});
    QVERIFY(!selected().settled);
    QTest::mouseClick(box, Qt::LeftButton, {}, {8, box->height() / 2});
    QVERIFY(selected().settled);
}

void tst_ViewerForm::noise()
{
    auto box = field<QComboBox>("noise");
    box->setFocus();
    for (const PlacedViewer::Noise expected :
        {PlacedViewer::SomeNoise, PlacedViewer::MuchNoise, PlacedViewer::MuchNoise}) {
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(selected().noise, expected);
    }
}

void tst_ViewerForm::deleted()
{
    QTest::mouseClick(field<QPushButton>("remove"), Qt::LeftButton);
    QCOMPARE(m_desk->viewers().size(), 1);
    QVERIFY(m_desk->viewer(1).isValid());
    QVERIFY(!m_form->isEnabled());
}

/// Not even for a moment is a viewer made of the fields of two.
void tst_ViewerForm::showingChangesNothing()
{
    PlacedViewer boy = m_desk->viewer(1);
    boy.age.reset();
    boy.gender = Gender::Unknown;
    boy.direction = {180, -180, 90};
    boy.settled = false;
    boy.noise = PlacedViewer::MuchNoise;
    m_desk->change(boy);
    const QSignalSpy changed(m_desk.get(), &ViewerDesk::changed);
    const QVector<PlacedViewer> before = m_desk->viewers();
    for (int id : {1, 2, 0, 1, 2})
        m_desk->select(id);
    QCOMPARE(changed.count(), 0);
    QVERIFY(m_desk->viewers() == before);
}

void tst_ViewerForm::placeIsKept()
{
    m_desk->moveTo(2, {123, 456});
    m_desk->bringNearer(2, 3);
    const Simulation::Position position = selected().position;
    type("age", "9");
    QVERIFY(selected().position == position);
    QCOMPARE(selected().age.value_or(-1), 9);
}

void tst_ViewerForm::hidden()
{
    m_form->hide();
    PlacedViewer viewer = selected();
    viewer.age = 77;
    m_desk->change(viewer);
    QCOMPARE(field<QSpinBox>("age")->value(), 30); // no work for nobody
    m_form->show();
    QCOMPARE(field<QSpinBox>("age")->value(), 77);
}

void tst_ViewerForm::everyFieldIsReached()
{
    field<QSpinBox>("age")->setFocus();
    QStringList reached;
    for (int i = 0; i < 8; ++i) {
        QVERIFY(QApplication::focusWidget());
        reached << QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(reached.join(QLatin1Char(' ')),
        QStringLiteral("age gender lr ud roll settled noise remove"));
    // And says what it is.
    int buddies = 0;
    for (const QLabel *label : m_form->findChildren<QLabel *>())
        buddies += int(label->buddy() != nullptr);
    QCOMPARE(buddies, 6);
}

QTEST_MAIN(tst_ViewerForm)
#include "tst_viewerform.moc"
