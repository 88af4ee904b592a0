#include "demo/desk/CoverageText.h"
#include "demo/desk/CoverageView.h"
#include "tests/desk/DeskFixture.h"
#include "tests/desk/PlanOf.h"

#include <QApplication>
#include <QSignalSpy>

using namespace Desk;
using namespace KrTest;

namespace {

const QSize Size(640, 330);

const CoverageItem &itemOf(
    const CoverageView &view, CoverageItem::Kind kind, int number, int line = -1)
{
    static const CoverageItem none;
    for (const CoverageItem &item : view.map().items()) {
        if (item.kind == kind && item.number == number && (line < 0 || item.line == line))
            return item;
    }
    return none;
}

QPoint centerOf(const CoverageItem &item)
{
    return item.rect.center().toPoint();
}

Desk::SeenFrame frameOf(const QString &faces, const Analysis::Plan &plan)
{
    Desk::SeenFrame frame;
    frame.decision = decisionOf(faces, plan);
    return frame;
}

} // namespace

class tst_CoverageView : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void clicks_data();
    void clicks();
    void clickThatIsTakenBack();
    void keys();
    void keysWithoutPlan();
    void tabShowsWhereTheKeysAre();
    void tellsOfBands();
    void tellsNamesLetterByLetter();
    void tellsOfFaces();
    void facesGo();
    void planDrawnAnew();
    void contentsWithoutRoom();
    void pictures_data();
    void pictures();

private:
    Analysis::Plan m_plan;
    std::unique_ptr<CoverageView> m_view;
};

void tst_CoverageView::init()
{
    m_plan = planOf(QStringLiteral("#1 0-19 female; #2 20-49 female; #3 10-49 male default; #5 "
                                   "50-99 both; #6 20-24 male; #7 15-30 both"));
    m_view = std::make_unique<CoverageView>();
    prepareForPicture(m_view.get(), Size);
    m_view->setPlan(m_plan);
}

void tst_CoverageView::cleanup()
{
    QToolTip::hideText();
    m_view.reset();
}

void tst_CoverageView::clicks_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("line");

    QTest::newRow("a band") << int(CoverageItem::Ages) << 2 << 0;
    QTest::newRow("a band by the age alone") << int(CoverageItem::Ages) << 5 << 2;
    QTest::newRow("a hole") << int(CoverageItem::Ages) << 0 << 0;
    QTest::newRow("an unknown age") << int(CoverageItem::UnknownAge) << 3 << 1;
    QTest::newRow("a content of the list") << int(CoverageItem::Content) << 1 << -1;
    QTest::newRow("one that takes no part") << int(CoverageItem::Content) << 4 << -1;
}

void tst_CoverageView::clicks()
{
    QFETCH(int, kind);
    QFETCH(int, number);
    QFETCH(int, line);
    QSignalSpy activated(m_view.get(), &CoverageView::contentActivated);
    const CoverageItem item = itemOf(*m_view, CoverageItem::Kind(kind), number, line);
    QVERIFY(!item.rect.isNull());

    QTest::mouseClick(m_view.get(), Qt::RightButton, {}, centerOf(item));
    QCOMPARE(activated.count(), 0);
    QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, centerOf(item));
    QCOMPARE(activated.count(), number > 0 ? 1 : 0);
    if (number > 0)
        QCOMPARE(activated.constFirst().constFirst().toInt(), number);
}

void tst_CoverageView::clickThatIsTakenBack()
{
    QSignalSpy activated(m_view.get(), &CoverageView::contentActivated);
    QTest::mousePress(
        m_view.get(), Qt::LeftButton, {}, centerOf(itemOf(*m_view, CoverageItem::Ages, 1)));
    QTest::mouseRelease(
        m_view.get(), Qt::LeftButton, {}, centerOf(itemOf(*m_view, CoverageItem::Ages, 3)));
    QCOMPARE(activated.count(), 0);
}

void tst_CoverageView::keys()
{
    QSignalSpy activated(m_view.get(), &CoverageView::contentActivated);
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    QCOMPARE(activated.count(), 0); // nothing is chosen yet
    QTest::keyClick(m_view.get(), Qt::Key_Right);
    QTest::keyClick(m_view.get(), Qt::Key_Right);
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    QTest::keyClick(m_view.get(), Qt::Key_Down);
    QTest::keyClick(m_view.get(), Qt::Key_End);
    QTest::keyClick(m_view.get(), Qt::Key_Enter);
    QTest::keyClick(m_view.get(), Qt::Key_Down);
    QTest::keyClick(m_view.get(), Qt::Key_Return); // viewers that get nothing
    QTest::keyClick(m_view.get(), Qt::Key_Down);
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    QList<int> numbers;
    for (const QList<QVariant> &arguments : activated)
        numbers << arguments.constFirst().toInt();
    QCOMPARE(numbers, QList<int>({2, 3, 4}));
}

void tst_CoverageView::keysWithoutPlan()
{
    CoverageView view;
    QSignalSpy activated(&view, &CoverageView::contentActivated);
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Down, Qt::Key_End, Qt::Key_Return})
        QTest::keyClick(&view, key);
    QTest::mouseClick(&view, Qt::LeftButton);
    QCOMPARE(activated.count(), 0);
    QVERIFY(!view.grab().isNull());
}

void tst_CoverageView::tabShowsWhereTheKeysAre()
{
    QVERIFY(m_view->accessibleDescription().isEmpty());
    QFocusEvent event(QEvent::FocusIn, Qt::TabFocusReason);
    QCoreApplication::sendEvent(m_view.get(), &event);
    QVERIFY(m_view->accessibleDescription().startsWith(QLatin1String("Female, 0-19 years")));
    QTest::keyClick(m_view.get(), Qt::Key_Right);
    QVERIFY(m_view->accessibleDescription().startsWith(QLatin1String("Female, 20-49 years")));
    QVERIFY(QToolTip::text().contains(QLatin1String("Female, 20-49 years")));
}

void tst_CoverageView::tellsOfBands()
{
    const QString band
        = toolTipAt(m_view.get(), centerOf(itemOf(*m_view, CoverageItem::Ages, 2, 0)));
    QVERIFY2(band.contains(QLatin1String("Female, 20-49 years")), qPrintable(band));
    QVERIFY2(band.contains(QLatin1String("#2 Content 2")), qPrintable(band));
    const QString entry
        = toolTipAt(m_view.get(), centerOf(itemOf(*m_view, CoverageItem::Content, 6)));
    QVERIFY2(
        entry.contains(QLatin1String("reaches nobody: its viewers get #3")), qPrintable(entry));
    QTRY_VERIFY(toolTipAt(m_view.get(), {1, 1}).isEmpty()); // tool tips go slowly
}

void tst_CoverageView::tellsNamesLetterByLetter()
{
    m_plan.entries[1].name = QStringLiteral("<table><tr><td>x");
    m_view->setPlan(m_plan);
    const QString tip
        = toolTipAt(m_view.get(), centerOf(itemOf(*m_view, CoverageItem::Ages, 2, 0)));
    QVERIFY2(tip.contains(QLatin1String("&lt;table&gt;&lt;tr&gt;")), qPrintable(tip));
    QVERIFY(!tip.contains(QLatin1String("<table>")));
}

void tst_CoverageView::tellsOfFaces()
{
    const Desk::SeenFrame frame
        = frameOf(QStringLiteral("female 31 sent; male ? restricted; ? ? cut"), m_plan);
    m_view->showFrame(frame);
    const QVector<CoverageMark> marks = m_view->map().marks(frame.decision);
    QStringList tips;
    for (const CoverageMark &mark : marks)
        tips << toolTipAt(m_view.get(), mark.center.toPoint());
    QCOMPARE(tips.value(0),
        QStringLiteral("<b>Face 0: 31 years, female</b><br>#2 Content 2<br>started"));
    QCOMPARE(tips.value(1),
        QStringLiteral("<b>Face 1: age unknown, male</b><br>#3 Content 3<br>held back, it was "
                       "started too recently"));
    QCOMPARE(tips.value(2),
        QStringLiteral("<b>Face 2: age unknown, gender unknown</b><br>Nothing fits"));
}

void tst_CoverageView::facesGo()
{
    const QImage without = m_view->grab().toImage();
    m_view->showFrame(frameOf(QStringLiteral("female 31 sent"), m_plan));
    QVERIFY(m_view->grab().toImage() != without);
    m_view->clear();
    QCOMPARE(m_view->grab().toImage(), without);

    m_view->hide();
    m_view->showFrame(frameOf(QStringLiteral("female 31 sent"), m_plan));
    m_view->show();
    QVERIFY(m_view->grab().toImage() != without); // the newest frame is there at once
}

void tst_CoverageView::planDrawnAnew()
{
    QSignalSpy activated(m_view.get(), &CoverageView::contentActivated);
    const QPoint point = centerOf(itemOf(*m_view, CoverageItem::Ages, 0, 0));
    m_view->setPlan(planOf(QStringLiteral("#1 0-120 both")));
    QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, point);
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.constFirst().constFirst().toInt(), 1);
}

/// What was chosen may be gone after the view became smaller.
void tst_CoverageView::contentsWithoutRoom()
{
    QTest::mouseClick(
        m_view.get(), Qt::LeftButton, {}, centerOf(itemOf(*m_view, CoverageItem::Content, 6)));
    m_view->resize(300, 90);
    QVERIFY(m_view->map().hiddenContents() > 0);
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    QVERIFY(!m_view->grab().isNull());
    QVERIFY(m_view->sizeHint().width() > m_view->minimumSizeHint().width());
}

void tst_CoverageView::pictures_data()
{
    QTest::addColumn<QString>("contents");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("faces");
    QTest::addColumn<int>("hovered"); // content whose band is pointed at

    const QString contents = QStringLiteral("#1 0-19 female; #2 20-49 female; #3 10-49 male "
                                            "default; #5 50-99 both; #6 20-24 male; #7 15-30 both");
    QTest::newRow("coverage") << contents << Size
                              << "female 31 sent; male 8 restricted; male 8 cut; ? 60 cut; ? ? cut"
                              << 0;
    QTest::newRow("coverage-narrow") << contents << QSize(240, 260) << "female 31 sent" << 0;
    QTest::newRow("coverage-pointed-at") << contents << QSize(480, 200) << "" << 5;
}

void tst_CoverageView::pictures()
{
    QFETCH(QString, contents);
    QFETCH(QSize, size);
    QFETCH(QString, faces);
    QFETCH(int, hovered);
    m_plan = planOf(contents);
    m_view->resize(size);
    m_view->setPlan(m_plan);
    m_view->showFrame(frameOf(faces, m_plan));
    const QPoint point
        = hovered > 0 ? centerOf(itemOf(*m_view, CoverageItem::Ages, hovered)) : QPoint(1, 1);
    QTest::mouseMove(m_view.get(), point);
    compareWithGolden(m_view.get(), QString::fromLatin1(QTest::currentDataTag()));
}

QTEST_MAIN(tst_CoverageView)

#include "tst_coverageview.moc"
