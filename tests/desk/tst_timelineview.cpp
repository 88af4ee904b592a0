#include "demo/desk/TimelineView.h"
#include "tests/desk/DeskFixture.h"
#include "tests/desk/PlanOf.h"

#include <QSignalSpy>

#include <memory>

using namespace Desk;
using namespace KrTest;

namespace {

constexpr int Newest = TimelineModel::BucketCount - 1;
const QDateTime Begin(QDate(2018, 2, 1), QTime(9, 30), Qt::UTC);

QPoint pointOf(const TimelineView &view, int position)
{
    return view.geometryOfParts().bucketRect(position).center().toPoint();
}

} // namespace

class tst_TimelineView : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void clickChoosesAMoment();
    void clickNearby();
    void clickWhereNothingIs();
    void keys();
    void keysWithoutFrames();
    void cursorStaysWithItsMoment();
    void tells();
    void countsWhileHidden();
    void clockRunsOnlyWhileVisible();
    void clears();
    void smallViews();
    void picture();
    void pictureOfNothing();

private:
    void addFrame(double seconds, const QString &faces = {});
    void addTenMinutes();

    Analysis::Plan m_plan;
    std::unique_ptr<TimelineView> m_view;
};

void tst_TimelineView::init()
{
    m_plan = planOf(QStringLiteral("#1 0-19 female; #2 20-120 female; #3 0-120 male default"));
    m_plan.settings.interval = 1000;
    m_view = std::make_unique<TimelineView>();
    m_view->setFollowsClock(false);
    prepareForPicture(m_view.get(), {660, 90});
    m_view->setPlan(m_plan);
}

void tst_TimelineView::cleanup()
{
    QToolTip::hideText();
    m_view.reset();
}

void tst_TimelineView::addFrame(double seconds, const QString &faces)
{
    SeenFrame frame;
    frame.decision = decisionOf(faces, m_plan);
    frame.decision.time = Begin.addMSecs(qRound64(seconds * 1000));
    m_view->addFrame(frame);
}

/// A woman and a girl, later more people, then nobody; in between a gap.
void tst_TimelineView::addTenMinutes()
{
    const QStringList people{QStringLiteral("female 30 sent"),
        QStringLiteral("female 30 restricted; female 8 cut"),
        QStringLiteral("female 30 cut; male 8 sent; male 45 cut; male ? cut; ? 70 cut"), QString()};
    for (int second = 0; second < 540; ++second) {
        if (second < 180 || second >= 240)
            addFrame(second, people.at(second / 60 % people.size()));
        if (second % 45 == 0)
            m_view->sequenceStarted(second / 45 % 3 + 1, Begin.addSecs(second));
    }
    m_view->setNow(Begin.addSecs(570));
}

void tst_TimelineView::clickChoosesAMoment()
{
    addFrame(0);
    addFrame(30, QStringLiteral("male 30 cut"));
    addFrame(31);
    addFrame(60);
    QSignalSpy chosen(m_view.get(), &TimelineView::momentChosen);
    QTest::mouseClick(m_view.get(), Qt::RightButton, {}, pointOf(*m_view, Newest - 10));
    QCOMPARE(chosen.count(), 0);
    QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, pointOf(*m_view, Newest - 10));
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen.constLast().constFirst().toDateTime(), Begin.addSecs(30));
}

void tst_TimelineView::clickNearby()
{
    addFrame(0);
    addFrame(60);
    QSignalSpy chosen(m_view.get(), &TimelineView::momentChosen);
    QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, pointOf(*m_view, Newest - 2));
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen.constLast().constFirst().toDateTime(), Begin.addSecs(60));
}

void tst_TimelineView::clickWhereNothingIs()
{
    QSignalSpy chosen(m_view.get(), &TimelineView::momentChosen);
    QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, pointOf(*m_view, Newest)); // no time yet
    addFrame(0);
    QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, pointOf(*m_view, Newest - 10));
    QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, {2, 20}); // on the names
    QCOMPARE(chosen.count(), 0);
}

void tst_TimelineView::keys()
{
    addFrame(0);
    addFrame(30);
    addFrame(60);
    QSignalSpy chosen(m_view.get(), &TimelineView::momentChosen);
    QTest::keyClick(m_view.get(), Qt::Key_Return); // nothing is chosen yet
    QCOMPARE(chosen.count(), 0);
    const auto press = [&](Qt::Key key) {
        QTest::keyClick(m_view.get(), key);
        QTest::keyClick(m_view.get(), Qt::Key_Enter);
        return Begin.secsTo(chosen.constLast().constFirst().toDateTime());
    };
    QCOMPARE(press(Qt::Key_Left), 60); // the newest one first
    QCOMPARE(press(Qt::Key_Left), 30);
    QCOMPARE(press(Qt::Key_Left), 0);
    QCOMPARE(press(Qt::Key_Left), 0);
    QCOMPARE(press(Qt::Key_Right), 30);
    QCOMPARE(press(Qt::Key_Home), 0);
    QCOMPARE(press(Qt::Key_End), 60);
    QCOMPARE(press(Qt::Key_Right), 60);
    QVERIFY(m_view->accessibleDescription().contains(QLatin1String("Nobody")));
    QVERIFY(QToolTip::text().contains(QLatin1String("Nobody")));
}

void tst_TimelineView::keysWithoutFrames()
{
    QSignalSpy chosen(m_view.get(), &TimelineView::momentChosen);
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Home, Qt::Key_End})
        QTest::keyClick(m_view.get(), key);
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    QCOMPARE(chosen.count(), 0);
}

/// The strip moves on below the cursor.
void tst_TimelineView::cursorStaysWithItsMoment()
{
    addFrame(0);
    QSignalSpy chosen(m_view.get(), &TimelineView::momentChosen);
    QTest::keyClick(m_view.get(), Qt::Key_Left);
    addFrame(60);
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    QCOMPARE(chosen.constLast().constFirst().toDateTime(), Begin);

    m_view->setNow(Begin.addSecs(605)); // the moment has gone
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    QCOMPARE(chosen.count(), 1);
}

void tst_TimelineView::tells()
{
    addFrame(0, QStringLiteral("female 30 sent; male 8 restricted"));
    m_view->sequenceStarted(2, Begin);
    m_view->setNow(Begin.addSecs(30));
    const QString tip = toolTipAt(m_view.get(), pointOf(*m_view, Newest - 10));
    for (const char *const text :
        {"Female 1: 20-39", "Male 1: 0-12", "Plays #2 Content 2", "Held back"})
        QVERIFY2(tip.contains(QLatin1String(text)), qPrintable(tip));
    QVERIFY(
        toolTipAt(m_view.get(), pointOf(*m_view, Newest - 5)).contains(QLatin1String("No frames")));

    m_plan.entries[1].name = QStringLiteral("<table><tr><td>x");
    m_view->setPlan(m_plan);
    QVERIFY(
        !toolTipAt(m_view.get(), pointOf(*m_view, Newest - 10)).contains(QLatin1String("<table>")));
    QTRY_VERIFY(toolTipAt(m_view.get(), {2, 2}).isEmpty()); // tool tips go slowly
}

void tst_TimelineView::countsWhileHidden()
{
    m_view->hide();
    addFrame(0, QStringLiteral("male 30 cut"));
    m_view->show();
    QCOMPARE(m_view->model().bucket(Newest).viewers, 1);
}

void tst_TimelineView::clockRunsOnlyWhileVisible()
{
    TimelineView view;
    QVERIFY(view.model().isNull());
    view.show();
    QVERIFY(!view.model().isNull());
    const QDateTime hourAgo = QDateTime::currentDateTime().addSecs(-3600);
    view.clear();
    view.setNow(hourAgo);
    const qint64 newest = view.model().indexOf(Newest);
    QTRY_VERIFY(view.model().indexOf(Newest) > newest); // the clock comes in between

    view.hide();
    view.clear();
    QTest::qWait(1100);
    QVERIFY(view.model().isNull());
    view.setFollowsClock(false);
    view.show();
    QVERIFY(view.model().isNull());
}

void tst_TimelineView::clears()
{
    const QImage without = m_view->grab().toImage();
    addTenMinutes();
    m_view->markMoment(Begin.addSecs(100));
    QVERIFY(m_view->grab().toImage() != without);
    m_view->clear();
    QCOMPARE(m_view->grab().toImage(), without);
}

void tst_TimelineView::smallViews()
{
    addTenMinutes();
    for (const QSize &size : {QSize(1, 1), QSize(30, 200), QSize(900, 12)}) {
        m_view->resize(size);
        QCOMPARE(m_view->grab().size(), size);
        QTest::mouseClick(m_view.get(), Qt::LeftButton);
    }
    QVERIFY(m_view->sizeHint().height() >= m_view->minimumSizeHint().height());
}

void tst_TimelineView::picture()
{
    addTenMinutes();
    m_view->markMoment(Begin.addSecs(400));
    QTest::mouseMove(m_view.get(), pointOf(*m_view, 40));
    compareWithGolden(m_view.get(), QStringLiteral("timeline"));
}

void tst_TimelineView::pictureOfNothing()
{
    m_view->setNow(Begin);
    QTest::mouseMove(m_view.get(), {1, 1});
    compareWithGolden(m_view.get(), QStringLiteral("timeline-nothing"));
}

QTEST_MAIN(tst_TimelineView)

#include "tst_timelineview.moc"
