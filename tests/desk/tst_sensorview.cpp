#include "demo/desk/SensorView.h"
#include "tests/desk/DeskFrames.h"
#include "tests/desk/GoldenPicture.h"

#include <QAbstractEventDispatcher>
#include <QPalette>
#include <QtTest>

using namespace Analysis;
using namespace Desk;
using namespace DeskTest;
using namespace KrTest;

namespace {

constexpr QSize Size{440, 348};
constexpr int IntervalMs = 1000;

QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x1b, 0x20, 0x26));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x6b, 0x75, 0x80));
    return palette;
}

/// A view whose clock stands still.
class TestedView : public SensorView
{
public:
    TestedView()
    {
        setFont(pictureFont(13).value_or(font()));
        setPalette(darkPalette());
        setClock([this] { return momentMs(nowMs); });
        setPlan(shopPlan());
        setState({IntervalMs, 0, true});
        resize(Size);
    }

    QImage picture() { return grab().toImage().convertToFormat(QImage::Format_RGB32); }

    /// A timer of the view's own, or a fade.
    bool isAtWork() const
    {
        const QAbstractEventDispatcher *const dispatcher = QAbstractEventDispatcher::instance();
        return isFading()
            || !dispatcher->registeredTimers(const_cast<TestedView *>(this)).isEmpty();
    }
    bool isFading() const
    {
        const auto fades = findChildren<const QVariantAnimation *>();
        return std::any_of(fades.cbegin(), fades.cend(), [](const QVariantAnimation *fade) {
            return fade->state() == QAbstractAnimation::Running;
        });
    }

    qint64 nowMs = 0;
};

SeenFrame frame(const QVector<Person> &people)
{
    return seenFrame(shopPlan(), frameText(people));
}

Person woman()
{
    return {700, 560, 420, "LR:12 UD:-6 Roll:5", "34 *", "Female *"};
}

/// One decides, one is restricted, one that nothing fits, one that is cut.
SeenFrame severalOutcomes()
{
    Plan plan = shopPlan();
    plan.settings.concurrent = 2;
    const Person boy{1050, 500, 260, "LR:-35 UD:10 Roll:0", "8", "Male"};
    const Person lady{1350, 400, 160, "LR:50 UD:-20 Roll:12", "52", "Female *"};
    const Person man{220, 380, 140, "LR:60 UD:0 Roll:-10", "70 *", "Male *"};
    Decider decider(plan);
    decider.decide(frameText({boy}), momentMs(-2900));
    const Person close{560, 620, 380, "LR:3 UD:2 Roll:-5", "31 *", "Female"};
    const QString text = frameText({lady, boy, close, man});
    return {1, text, decider.decide(text, momentMs(0))};
}

SeenFrame crowd()
{
    const QVector<const char *> directions{
        "LR:0 UD:0 Roll:0", "LR:30 UD:10 Roll:0", "LR:-45 UD:0 Roll:15", "LR:10 UD:-25 Roll:-10"};
    const QVector<const char *> ages{"8", "25 *", "34", "50", "71 *"};
    QVector<Person> people;
    for (int i = 0; i < 35; ++i) {
        people.append({130 + i % 7 * 220 + i % 3 * 8, 150 + i / 7 * 220, 90 + i * 37 % 95,
            directions.at(i % directions.size()), ages.at(i % ages.size()),
            i % 2 == 0 ? "Female *" : "Male"});
    }
    return frame(people);
}

SeenFrame withoutPlaces()
{
    QString text = frameText({woman()});
    text += QStringLiteral("Index:1\tX:-\nFace Direction\tLR:5 UD:0\n"
                           "Age\tAge:70 *\nGender\tGender:Male *\n"
                           "Index:2\tX:9000 Y:100 Size:90 Confidence:1\nAge\tAge:50\n"
                           "Gender\tGender:Female\n");
    return seenFrame(shopPlan(), text);
}

} // namespace

Q_DECLARE_METATYPE(SeenFrame)

class tst_SensorView : public QObject
{
    Q_OBJECT

private slots:
    void pictures_data();
    void pictures();
    void waiting();
    void staleFaces();
    void sizes_data();
    void sizes();
    void facesLieWhereTheGeometrySays();
    void hiddenViewDoesNothing();
    void frameOfAHiddenViewIsShownLater();
    void fadeEnds();
    void quickFramesDoNotFade();
    void silenceIsToldByItself();
    void pastGetsNotOld();
    void planChangesColors();
    void fontChangesLabels();
    void clear();
};

void tst_SensorView::pictures_data()
{
    QTest::addColumn<SeenFrame>("frame");
    QTest::addColumn<QSize>("size");

    const auto text
        = [](const char *lines) { return seenFrame(shopPlan(), QString::fromLatin1(lines)); };
    QTest::newRow("nobody") << text("Face result count:0\n") << Size;
    QTest::newRow("failure") << text("Failed to open COM port.\n") << Size;
    QTest::newRow("woman") << frame({woman()}) << Size;
    QTest::newRow("outcomes") << severalOutcomes() << Size;
    QTest::newRow("outcomes-small") << severalOutcomes() << QSize(300, 225);
    QTest::newRow("crowd") << crowd() << Size;
    QTest::newRow("without-places") << withoutPlaces() << Size;
}

void tst_SensorView::pictures()
{
    QFETCH(SeenFrame, frame);
    QFETCH(QSize, size);

    if (!pictureFont(13))
        QSKIP("The font of the golden pictures is not here.");
    TestedView view;
    view.resize(size);
    view.showFrame(frame);
    compareWithGoldenPicture(
        view.picture(), QLatin1String("sensor-") + QLatin1String(QTest::currentDataTag()));
}

void tst_SensorView::waiting()
{
    if (!pictureFont(13))
        QSKIP("The font of the golden pictures is not here.");
    TestedView view;
    compareWithGoldenPicture(view.picture(), QStringLiteral("sensor-waiting"));
}

void tst_SensorView::staleFaces()
{
    if (!pictureFont(13))
        QSKIP("The font of the golden pictures is not here.");
    TestedView view;
    view.setState({IntervalMs, 2, true});
    view.showFrame(severalOutcomes());
    view.nowMs = 3400;
    compareWithGoldenPicture(view.picture(), QStringLiteral("sensor-stale"));
}

void tst_SensorView::sizes_data()
{
    QTest::addColumn<QSize>("size");

    for (const QSize &size : {QSize(1, 1), QSize(40, 10), QSize(10, 300), QSize(300, 225),
             QSize(900, 225), QSize(1920, 1080)})
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
}

/// Nothing but that it is painted: what it looks like is for the eye.
void tst_SensorView::sizes()
{
    QFETCH(QSize, size);

    TestedView view;
    view.resize(size);
    for (const SeenFrame &frame : {crowd(), withoutPlaces(), seenFrame(shopPlan(), nobodyText())}) {
        view.showFrame(frame);
        QCOMPARE(view.picture().size(), size);
    }
    const QRectF area = view.sensorGeometry().area();
    QVERIFY(area.isEmpty() || QRectF(view.rect()).contains(area));
}

void tst_SensorView::facesLieWhereTheGeometrySays()
{
    TestedView view;
    view.resize(800, 640);
    const QImage empty = view.picture();
    view.clear();
    view.showFrame(frame({{400, 900, 200}}));
    const QImage picture = view.picture();
    const SensorGeometry geometry = view.sensorGeometry();
    const auto isPainted = [&](qreal x, qreal y) {
        const QPoint point = geometry.toWidget({x, y}).toPoint();
        return picture.pixel(point) != empty.pixel(point);
    };
    for (const qreal offset : {-90.0, 90.0}) {
        QVERIFY(isPainted(400 + offset, 900));
        QVERIFY(isPainted(400, 900 + offset));
        QVERIFY(!isPainted(400 + 1.5 * offset, 900));
    }
}

void tst_SensorView::hiddenViewDoesNothing()
{
    TestedView view;
    view.showFrame(frame({woman()}));
    view.setState({IntervalMs, 1, true});
    view.setPlan(shopPlan());
    QVERIFY(!view.isAtWork());
    QCOMPARE(view.accessibleDescription(), QString()); // the frame was not looked at

    view.show();
    QVERIFY(view.isAtWork());
    view.showFrame(frame({woman()}));
    view.hide();
    QVERIFY(!view.isAtWork());
    view.showFrame(frame({woman()}));
    view.setState({IntervalMs, 2, true});
    view.clear();
    QVERIFY(!view.isAtWork());
}

void tst_SensorView::frameOfAHiddenViewIsShownLater()
{
    TestedView view;
    view.show();
    view.showFrame(severalOutcomes());
    view.hide();
    view.showFrame(frame({woman()}));
    view.show();
    TestedView fresh;
    fresh.showFrame(frame({woman()}));
    QCOMPARE(view.picture(), fresh.picture());
    QVERIFY(view.accessibleDescription().contains(QLatin1String("#1 Handbags")));
}

void tst_SensorView::fadeEnds()
{
    TestedView view;
    view.setState({IntervalMs, 0, false}); // which needs no other timer
    view.show();
    view.showFrame(severalOutcomes());
    QVERIFY(view.isFading());
    QTRY_VERIFY(!view.isAtWork());

    QTest::qWait(200); // longer than frames that come too quickly to fade
    view.showFrame(frame({woman()}));
    QVERIFY(view.isFading());
    TestedView still;
    still.setState({IntervalMs, 0, false});
    still.showFrame(frame({woman()}));
    QVERIFY(view.picture() != still.picture()); // on its way
    QTRY_VERIFY(!view.isAtWork());
    QCOMPARE(view.picture(), still.picture());
}

void tst_SensorView::quickFramesDoNotFade()
{
    TestedView view;
    view.show();
    view.showFrame(severalOutcomes());
    view.showFrame(frame({woman()}));
    QVERIFY(!view.isFading());
    TestedView still;
    still.showFrame(frame({woman()}));
    QCOMPARE(view.picture(), still.picture());
}

void tst_SensorView::silenceIsToldByItself()
{
    const QString silence = QStringLiteral("No frame for 3 s");
    TestedView view;
    view.showFrame(frame({woman()}));
    view.nowMs = 2990;
    view.show();
    view.picture();
    QVERIFY(!view.accessibleDescription().contains(silence));
    view.nowMs = 3000;
    QTRY_VERIFY(view.accessibleDescription().contains(silence));
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&view);
    QCOMPARE(timers.size(), 1); // to count on, a second later
    QVERIFY(timers.constFirst().interval >= 1000);
}

void tst_SensorView::pastGetsNotOld()
{
    TestedView view;
    view.showFrame(frame({woman()}));
    view.nowMs = 3600000;
    const QImage old = view.picture();
    view.setState({IntervalMs, 0, false});
    view.show();
    QVERIFY(!view.isAtWork());
    QVERIFY(view.picture() != old);
}

void tst_SensorView::planChangesColors()
{
    TestedView view;
    view.showFrame(frame({woman()}));
    const QImage before = view.picture();
    Plan plan = shopPlan();
    plan.entries[0].color = {20, 160, 90, 255};
    view.setPlan(plan);
    QVERIFY(view.picture() != before);
    view.setPlan(shopPlan());
    QCOMPARE(view.picture(), before);
}

void tst_SensorView::fontChangesLabels()
{
    TestedView view;
    view.showFrame(frame({woman()}));
    const QImage before = view.picture();
    QFont font = view.font();
    font.setPixelSize(26);
    view.setFont(font);
    QVERIFY(view.picture() != before);
}

void tst_SensorView::clear()
{
    TestedView fresh;
    TestedView view;
    view.show();
    view.showFrame(frame({woman()}));
    view.clear();
    QCOMPARE(view.picture(), fresh.picture());
    QVERIFY(!view.isAtWork());
}

QTEST_MAIN(tst_SensorView)

#include "tst_sensorview.moc"
