#include "demo/desk/TimelineGeometry.h"
#include "demo/desk/TimelineModel.h"
#include "demo/desk/TimelineText.h"
#include "tests/desk/PlanOf.h"

#include <QtTest>

using namespace Desk;
using namespace KrTest;

namespace {

constexpr int Count = TimelineModel::BucketCount;
constexpr int Newest = Count - 1;

QDateTime at(int seconds)
{
    return QDateTime(QDate(2018, 2, 1), QTime(9, 30, seconds));
}

} // namespace

/// Where the parts of a timeline lie, and what they say.
class tst_TimelineParts : public QObject
{
    Q_OBJECT

private slots:
    void geometry();
    void geometryOfASmallView();
    void scale_data();
    void scale();
    void words_data();
    void words();
};

void tst_TimelineParts::geometry()
{
    const TimelineGeometry geometry = timelineGeometry({466, 100}, 10, 50);
    QCOMPARE(geometry.columns.left(), 58.0);
    QCOMPARE(geometry.columns.width(), 404.0);
    QVERIFY(geometry.columns.bottom() <= geometry.marks.top());
    QVERIFY(geometry.marks.bottom() <= geometry.strip.top());
    QVERIFY(geometry.strip.bottom() <= geometry.times.top());
    QVERIFY(geometry.times.bottom() <= 100);
    QVERIFY(geometry.names.right() <= geometry.columns.left());
    for (int position = 0; position < Count; ++position) {
        QCOMPARE(geometry.positionAt(geometry.bucketRect(position).center().x()), position);
        QCOMPARE(geometry.bucketRect(position).right(), geometry.xOf(position + 1));
    }
    QCOMPARE(geometry.positionAt(-10), 0);
    QCOMPARE(geometry.positionAt(1000), Newest);

    const QRectF lower = geometry.columnRect(7, 0, 1, 4);
    const QRectF upper = geometry.columnRect(7, 1, 3, 4);
    QCOMPARE(lower.bottom(), geometry.columns.bottom());
    QCOMPARE(upper.bottom(), lower.top());
    QCOMPARE(upper.top(), geometry.columns.top());
    QCOMPARE(upper.height(), 3 * lower.height());
}

void tst_TimelineParts::geometryOfASmallView()
{
    const TimelineGeometry geometry = timelineGeometry({20, 10}, 10, 50);
    QVERIFY(geometry.columns.width() >= 0 && geometry.columns.height() >= 0);
    QCOMPARE(geometry.positionAt(5), Newest);
    QVERIFY(geometry.columnRect(0, 0, 1, 0).height() >= 0);
}

void tst_TimelineParts::scale_data()
{
    QTest::addColumn<int>("viewers");
    QTest::addColumn<int>("expected");

    QTest::newRow("nobody") << 0 << 4;
    QTest::newRow("few") << 4 << 4;
    QTest::newRow("an odd number") << 5 << 6;
    QTest::newRow("as many as the sensor sees") << 35 << 36;
}

void tst_TimelineParts::scale()
{
    QFETCH(int, viewers);
    QTEST(timelineScale(viewers), "expected");
}

void tst_TimelineParts::words_data()
{
    QTest::addColumn<QString>("faces"); // "none": no frame
    QTest::addColumn<bool>("isSilent");
    QTest::addColumn<QVector<int>>("starts");
    QTest::addColumn<QString>("expected");

    const QVector<int> none;
    QTest::newRow("nobody") << "" << false << none << "09:30:01|Nobody";
    QTest::newRow("viewers")
        << "female 30 sent; female 31 cut; female 8 cut; male 70 cut; ? ? cut" << false << none
        << "09:30:01|Female 3: 0-12, 20-39 (2)|Male 1: 60 and older|Unknown 1: age unknown";
    QTest::newRow("what plays") << "" << false << QVector<int>{2}
                                << "09:30:01|Nobody|Plays #2 Content 2";
    QTest::newRow("several starts")
        << "" << false << QVector<int>{2, 1}
        << "09:30:01|Nobody|Plays #1 Content 1|Starts: 2, this is the last one";
    QTest::newRow("held back") << "male 30 restricted" << false << none
                               << "09:30:01|Male 1: 20-39|Held back, started too recently: 1";
    QTest::newRow("no frames") << "none" << true << none << "09:30:00|No frames from the sensor";
    QTest::newRow("between rare frames") << "none" << false << none << "09:30:00";
}

void tst_TimelineParts::words()
{
    QFETCH(QString, faces);
    QFETCH(bool, isSilent);
    QFETCH(QVector<int>, starts);
    const Analysis::Plan plan = planOf(QStringLiteral("#1 0-120 both default; #2 0-1 male"));
    TimelineModel model;
    model.setNow(at(0));
    if (faces != QLatin1String("none")) {
        SeenFrame frame;
        frame.decision = decisionOf(faces, plan);
        frame.decision.time = at(1);
        model.addFrame(frame);
    }
    for (const int number : starts)
        model.sequenceStarted(number, at(2));
    const QStringList lines = bucketLines(plan, model.bucket(Newest), isSilent);
    QTEST(lines.join(QLatin1Char('|')), "expected");
}

QTEST_GUILESS_MAIN(tst_TimelineParts)

#include "tst_timelineparts.moc"
