#include "demo/desk/PlacingView.h"
#include "demo/desk/SensorView.h"
#include "demo/desk/ViewerDesk.h"
#include "tests/desk/DeskFixture.h"
#include "tests/desk/Wheel.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>

using namespace Desk;
using namespace KrTest;
using Simulation::Position;

namespace {

constexpr QSize Size{440, 348};
constexpr QPoint First{400, 300}; // in pixels of the sensor
constexpr QPoint Second{1000, 700};
constexpr QPoint Free{1300, 200};
constexpr int Tolerance = 3; // pixels of the sensor that one of the widget covers, and a half

} // namespace

/// A desk with two people, 1 and 2, of whom 2 is selected, between two other widgets.
class tst_PlacingView : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void liesOnTheSensorsPicture();
    void clickOnFreeGround();
    void clickOnSomebody();
    void clickBesideThePicture();
    void otherButtons();
    void drag();
    void dragOfSomebodyNew();
    void dragBeyondThePicture();
    void removedWhileDragged();
    void wheel_data();
    void wheel();
    void keys_data();
    void keys();
    void keysWithoutSelection();
    void shortcutsAreLeftAlone();
    void insertFillsTheDesk();
    void details();
    void tab();
    void tabOfAnEmptyDesk();
    void cursors();
    void spokenText();
    void hiddenViewDoesNothing();
    void pictures();

private:
    PlacedViewer viewer(int id) const { return m_desk->viewer(id); }
    QPoint placeOf(int id) const { return {viewer(id).position.x, viewer(id).position.y}; }
    QPoint at(const QPoint &sensor) const
    {
        return m_view->sensorGeometry().toWidget(sensor).toPoint();
    }
    bool isAbout(int id, const QPoint &expected) const;
    void press(const QPoint &sensor) const
    {
        QTest::mousePress(m_view, Qt::LeftButton, {}, at(sensor));
    }
    void moveTo(const QPoint &sensor) const;
    void release(const QPoint &sensor) const
    {
        QTest::mouseRelease(m_view, Qt::LeftButton, {}, at(sensor));
    }
    void click(const QPoint &sensor) const
    {
        press(sensor);
        release(sensor);
    }

    std::unique_ptr<ViewerDesk> m_desk;
    std::unique_ptr<QWidget> m_window;
    PlacingView *m_view = nullptr; // of the window
};

void tst_PlacingView::init()
{
    m_desk = std::make_unique<ViewerDesk>();
    QCOMPARE(m_desk->add(First), 1);
    QCOMPARE(m_desk->add(Second), 2);
    m_window = std::make_unique<QWidget>();
    auto *const layout = new QVBoxLayout(m_window.get());
    auto *const before = new QLineEdit;
    before->setObjectName(QStringLiteral("before"));
    m_view = new PlacingView(m_desk.get());
    m_view->setFixedSize(Size);
    auto *const after = new QLineEdit;
    after->setObjectName(QStringLiteral("after"));
    layout->addWidget(before);
    layout->addWidget(m_view);
    layout->addWidget(after);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_view->setFocus();
}

void tst_PlacingView::cleanup()
{
    m_window.reset();
    m_desk.reset();
}

bool tst_PlacingView::isAbout(int id, const QPoint &expected) const
{
    const QPoint off = placeOf(id) - expected;
    return qMax(qAbs(off.x()), qAbs(off.y())) <= Tolerance;
}

/// QTest::mouseMove() tells of no button.
void tst_PlacingView::moveTo(const QPoint &sensor) const
{
    const QPoint position = at(sensor);
    QMouseEvent event(QEvent::MouseMove, position, m_view->mapToGlobal(position), Qt::NoButton,
        Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view, &event);
}

void tst_PlacingView::liesOnTheSensorsPicture()
{
    for (const QSize &size : {Size, QSize(900, 400), QSize(300, 600)}) {
        SensorView below;
        below.resize(size);
        below.setFont(boxFont(20));
        PlacingView view(m_desk.get(), &below);
        view.resize(size);
        QCOMPARE(view.sensorGeometry().area(), below.sensorGeometry().area());
    }
}

void tst_PlacingView::clickOnFreeGround()
{
    click(Free);
    QCOMPARE(m_desk->viewers().size(), 3);
    QCOMPARE(m_desk->selected(), 3);
    QVERIFY(isAbout(3, Free));
    QCOMPARE(placeOf(2), Second);
}

void tst_PlacingView::clickOnSomebody()
{
    const QSignalSpy changed(m_desk.get(), &ViewerDesk::changed);
    click(First + QPoint(60, -60));
    QCOMPARE(m_desk->selected(), 1);
    QCOMPARE(changed.count(), 0); // and nobody has moved
}

void tst_PlacingView::clickBesideThePicture()
{
    QTest::mouseClick(m_view, Qt::LeftButton, {}, QPoint(1, 1));
    QTest::mouseClick(m_view, Qt::LeftButton, {}, QPoint(Size.width() - 2, Size.height() - 2));
    QCOMPARE(m_desk->viewers().size(), 2);
}

void tst_PlacingView::otherButtons()
{
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton})
        QTest::mouseClick(m_view, button, {}, at(Free));
    QCOMPARE(m_desk->viewers().size(), 2);
    press(First);
    QTest::mouseClick(m_view, Qt::RightButton, {}, at(First));
    moveTo(First + QPoint(100, 0)); // the drag goes on
    QVERIFY(isAbout(1, First + QPoint(100, 0)));
    release(First);
}

void tst_PlacingView::drag()
{
    const QPoint grip(70, 40);
    press(First + grip);
    moveTo(First + grip + QPoint(50, 20));
    QVERIFY(isAbout(1, First + QPoint(50, 20))); // it does not jump below the pointer
    moveTo(Free + grip);
    release(Free + grip);
    QVERIFY(isAbout(1, Free));
    moveTo(First);
    QVERIFY(isAbout(1, Free));
    QCOMPARE(m_desk->viewers().size(), 2);
    QCOMPARE(viewer(1).position.size, 200);
}

void tst_PlacingView::dragOfSomebodyNew()
{
    press(Free);
    moveTo(Free + QPoint(-100, 300));
    release(Free + QPoint(-100, 300));
    QCOMPARE(m_desk->viewers().size(), 3);
    QVERIFY(isAbout(3, Free + QPoint(-100, 300)));
}

void tst_PlacingView::dragBeyondThePicture()
{
    press(First);
    moveTo({-500, 5000});
    QCOMPARE(placeOf(1), QPoint(0, Simulation::Sensor::MaxY));
    release({-500, 5000});
    QCOMPARE(m_desk->viewers().size(), 2);
}

void tst_PlacingView::removedWhileDragged()
{
    press(First);
    QTest::keyClick(m_view, Qt::Key_Delete);
    moveTo(Free);
    release(Free);
    QCOMPARE(m_desk->viewers().size(), 1);
    QCOMPARE(placeOf(2), Second);
}

void tst_PlacingView::wheel_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("eighths");
    QTest::addColumn<int>("firstSize");
    QTest::addColumn<int>("secondSize");
    QTest::addColumn<int>("selected");

    QTest::newRow("nearer") << First << 120 << 220 << 200 << 1;
    QTest::newRow("farther") << First << -120 << 182 << 200 << 1;
    QTest::newRow("two notches") << Second << 240 << 200 << 242 << 2;
    QTest::newRow("half a notch") << Second << 60 << 200 << 210 << 2;
    QTest::newRow("sideways") << Second << 0 << 200 << 200 << 2;
    QTest::newRow("over nobody") << Free << 120 << 200 << 220 << 2;
}

void tst_PlacingView::wheel()
{
    QFETCH(QPoint, point);
    QFETCH(int, eighths);
    QFETCH(int, firstSize);
    QFETCH(int, secondSize);
    QFETCH(int, selected);

    turnWheel(m_view, at(point), eighths);
    QCOMPARE(viewer(1).position.size, firstSize);
    QCOMPARE(viewer(2).position.size, secondSize);
    QCOMPARE(m_desk->selected(), selected);
    QCOMPARE(m_desk->viewers().size(), 2);
}

void tst_PlacingView::keys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QPoint>("place"); // of the selected one
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("count");

    QTest::newRow("left") << int(Qt::Key_Left) << Second + QPoint(-20, 0) << 200 << 2;
    QTest::newRow("right") << int(Qt::Key_Right) << Second + QPoint(20, 0) << 200 << 2;
    QTest::newRow("up") << int(Qt::Key_Up) << Second + QPoint(0, -20) << 200 << 2;
    QTest::newRow("down") << int(Qt::Key_Down) << Second + QPoint(0, 20) << 200 << 2;
    QTest::newRow("nearer") << int(Qt::Key_Plus) << Second << 220 << 2;
    QTest::newRow("nearer without Shift") << int(Qt::Key_Equal) << Second << 220 << 2;
    QTest::newRow("farther") << int(Qt::Key_Minus) << Second << 182 << 2;
    QTest::newRow("insert") << int(Qt::Key_Insert) << QPoint(799, 599) << 200 << 3;
    QTest::newRow("delete") << int(Qt::Key_Delete) << QPoint() << 0 << 1;
    QTest::newRow("backspace") << int(Qt::Key_Backspace) << QPoint() << 0 << 1;
}

void tst_PlacingView::keys()
{
    QFETCH(int, key);
    QFETCH(QPoint, place);
    QFETCH(int, size);
    QFETCH(int, count);

    QTest::keyClick(m_view, static_cast<Qt::Key>(key));
    QCOMPARE(m_desk->viewers().size(), count);
    QCOMPARE(placeOf(1), First);
    if (size == 0)
        return;
    QCOMPARE(placeOf(m_desk->selected()), place);
    QCOMPARE(viewer(m_desk->selected()).position.size, size);
}

void tst_PlacingView::keysWithoutSelection()
{
    m_desk->select(0);
    const QSignalSpy changed(m_desk.get(), &ViewerDesk::changed);
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Delete})
        QTest::keyClick(m_view, key);
    QCOMPARE(changed.count(), 0);
}

void tst_PlacingView::shortcutsAreLeftAlone()
{
    const QSignalSpy changed(m_desk.get(), &ViewerDesk::changed);
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Plus, Qt::Key_Delete, Qt::Key_Insert}) {
        QTest::keyClick(m_view, key, Qt::ControlModifier);
        QTest::keyClick(m_view, key, Qt::AltModifier);
    }
    QCOMPARE(changed.count(), 0);
}

void tst_PlacingView::insertFillsTheDesk()
{
    for (int i = 0; i < 40; ++i)
        QTest::keyClick(m_view, Qt::Key_Insert);
    QCOMPARE(m_desk->viewers().size(), ViewerDesk::MaxViewers);
    click(Free); // no room for another
    QCOMPARE(m_desk->viewers().size(), ViewerDesk::MaxViewers);
}

void tst_PlacingView::details()
{
    const QSignalSpy wanted(m_view, &PlacingView::detailsWanted);
    QTest::keyClick(m_view, Qt::Key_Return);
    QCOMPARE(wanted.count(), 1);
    m_desk->select(0);
    QTest::keyClick(m_view, Qt::Key_Return);
    QCOMPARE(wanted.count(), 1);
}

void tst_PlacingView::tab()
{
    const auto focus = [] { return QApplication::focusWidget()->objectName(); };
    m_desk->select(0);
    QTest::keyClick(m_view, Qt::Key_Tab);
    QCOMPARE(m_desk->selected(), 1);
    QTest::keyClick(m_view, Qt::Key_Tab);
    QCOMPARE(m_desk->selected(), 2);
    QVERIFY(m_view->hasFocus());
    QTest::keyClick(m_view, Qt::Key_Tab);
    QCOMPARE(focus(), QStringLiteral("after"));
    QCOMPARE(m_desk->selected(), 2);

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
    QVERIFY(m_view->hasFocus());
    QTest::keyClick(m_view, Qt::Key_Tab, Qt::ShiftModifier);
    QCOMPARE(m_desk->selected(), 1);
    QTest::keyClick(m_view, Qt::Key_Tab, Qt::ShiftModifier);
    QCOMPARE(focus(), QStringLiteral("before"));
}

void tst_PlacingView::tabOfAnEmptyDesk()
{
    m_desk->clear();
    QTest::keyClick(m_view, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("after"));
}

void tst_PlacingView::cursors()
{
    const auto cursorAt = [this](const QPoint &position) {
        QMouseEvent event(QEvent::MouseMove, position, m_view->mapToGlobal(position), Qt::NoButton,
            Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view, &event);
        return m_view->cursor().shape();
    };
    QCOMPARE(cursorAt(at(First)), Qt::SizeAllCursor);
    QCOMPARE(cursorAt(at(Free)), Qt::CrossCursor);
    QCOMPARE(cursorAt({1, 1}), Qt::ArrowCursor);
}

void tst_PlacingView::spokenText()
{
    QVERIFY(m_view->accessibleDescription().startsWith(QStringLiteral("Viewers: 2; selected: ")));
    m_desk->select(0);
    QCOMPARE(m_view->accessibleDescription(), QStringLiteral("Viewers: 2"));
    m_desk->remove(1);
    QCOMPARE(m_view->accessibleDescription(), QStringLiteral("Viewers: 1"));
}

void tst_PlacingView::hiddenViewDoesNothing()
{
    m_view->hide();
    m_desk->clear();
    QVERIFY(m_view->accessibleDescription().startsWith(QStringLiteral("Viewers: 2")));
    m_view->show();
    QCOMPARE(m_view->accessibleDescription(), QStringLiteral("Viewers: 0"));
}

void tst_PlacingView::pictures()
{
    m_desk->bringNearer(2, 5);
    m_desk->add({300, 900});
    m_desk->bringNearer(3, -20);
    m_desk->select(2);
    PlacingView view(m_desk.get());
    view.setFocusPolicy(Qt::NoFocus);
    prepareForPicture(&view, Size);
    compareWithGolden(&view, QStringLiteral("placing"));
    m_desk->clear();
    compareWithGolden(&view, QStringLiteral("placing-nobody"));
}

QTEST_MAIN(tst_PlacingView)

#include "tst_placingview.moc"
