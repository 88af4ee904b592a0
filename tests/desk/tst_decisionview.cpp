#include "demo/desk/DecisionView.h"
#include "demo/desk/FrameHistory.h"
#include "tests/desk/SampleFrames.h"

#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QTimer>
#include <QtTest>

#include <memory>

using namespace Analysis;
using namespace Desk;

class tst_DecisionView : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void showsTheFrame();
    void costsNothingWhileHidden();
    void timeRunsDown();
    void timeOfAPickedFrameStays();
    void keyboard();
    void fontSize();

private:
    QString heading() const { return label("decisionHeading"); }
    QString label(const char *name) const
    {
        return m_view->findChild<QLabel *>(QLatin1String(name))->text();
    }
    QTableView &table() const { return *m_view->findChild<QTableView *>(); }
    bool isTimeRunning() const;
    QString timeLeft() const;
    void takeFrame(qint64 agoMs); // of a woman; before the test began

    QDateTime m_begin;

    std::unique_ptr<DecisionView> m_view;
    std::unique_ptr<FrameHistory> m_history;
};

void tst_DecisionView::init()
{
    m_begin = QDateTime::currentDateTimeUtc();
    m_view = std::make_unique<DecisionView>();
    m_view->resize(400, 500);
    m_history = std::make_unique<FrameHistory>(samplePlan());
    m_view->setPlan(samplePlan());
}

bool tst_DecisionView::isTimeRunning() const
{
    for (const QObject *timer : m_view->findChildren<QTimer *>()) {
        if (static_cast<const QTimer *>(timer)->isActive())
            return true;
    }
    return false;
}

QString tst_DecisionView::timeLeft() const
{
    const DecisionModel &model = m_view->model();
    return model.index(model.rowOf(DecisionModel::TimeLeft), 0).data().toString();
}

void tst_DecisionView::takeFrame(qint64 agoMs)
{
    m_history->take(sampleFace(0, 200, 30, "Female"), m_begin.addMSecs(-agoMs));
    m_view->showFrame(m_history->newest());
}

void tst_DecisionView::showsTheFrame()
{
    m_view->show();
    QCOMPARE(heading(), QStringLiteral("No frame yet"));
    m_history->take(sampleFace(0, 200, 30, "Female"), sampleTime(250));
    m_view->showFrame(m_history->newest());
    QCOMPARE(heading(),
        QStringLiteral("Frame 1, ")
            + sampleTime(250).toLocalTime().toString(QStringLiteral("HH:mm:ss.zzz")));
    QCOMPARE(label("decisionSummary"), QStringLiteral("Sent: #1 Women 20-39"));
    QCOMPARE(table().model()->columnCount(), 1);
    m_view->setPlan(samplePlan());
    QCOMPARE(table().model()->columnCount(), 0);
    QCOMPARE(heading(), QStringLiteral("No frame yet"));
    QCOMPARE(label("decisionSummary"), QString());
}

void tst_DecisionView::costsNothingWhileHidden()
{
    takeFrame(1000);
    takeFrame(0);
    QCOMPARE(m_view->model().columnCount(), 0);
    QVERIFY(!isTimeRunning());
    m_view->show();
    QCOMPARE(m_view->model().columnCount(), 1);
    QVERIFY(isTimeRunning());
    m_view->hide();
    QVERIFY(!isTimeRunning());
}

void tst_DecisionView::timeRunsDown()
{
    m_view->show();
    takeFrame(3000);
    QVERIFY(!isTimeRunning()); // nothing is held back
    takeFrame(0); // for two seconds
    QVERIFY(isTimeRunning());
    QTRY_COMPARE(timeLeft(), QStringLiteral("over"));
    QVERIFY(!isTimeRunning());
}

void tst_DecisionView::timeOfAPickedFrameStays()
{
    m_view->show();
    takeFrame(60000);
    takeFrame(58000);
    QCOMPARE(timeLeft(), QStringLiteral("over"));
    m_view->setPicked(true);
    QVERIFY(!isTimeRunning());
    QCOMPARE(timeLeft(), QStringLiteral("3.0 s"));
    m_view->setPicked(false);
    QCOMPARE(timeLeft(), QStringLiteral("over"));
}

void tst_DecisionView::keyboard()
{
    m_view->show();
    takeFrame(0);
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    m_view->setFocus();
    QCOMPARE(QApplication::focusWidget(), &table());
    QTest::keyClick(&table(), Qt::Key_Down);
    QTest::keyClick(&table(), Qt::Key_Down);
    const int row = table().currentIndex().row();
    takeFrame(0);
    QCOMPARE(table().currentIndex().row(), row); // the next frame does not take it away
    QVERIFY(row > 0);
}

void tst_DecisionView::fontSize()
{
    m_view->show();
    const int before = table().rowHeight(0);
    QFont font = m_view->font();
    font.setPointSize(font.pointSize() * 2);
    m_view->setFont(font);
    QVERIFY(table().rowHeight(0) > before * 3 / 2);
    QVERIFY(table().horizontalHeader()->defaultSectionSize()
        > QFontMetrics(font).horizontalAdvance(QStringLiteral("restricted")));
}

QTEST_MAIN(tst_DecisionView)

#include "tst_decisionview.moc"
