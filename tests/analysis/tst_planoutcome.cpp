#include "tools/analysis/PlanOutcome.h"

#include <QtTest>

using namespace Analysis;
using namespace PluginKrHvcP2;

namespace {

constexpr int FemalePosition = 0; // in CoveredGenders
constexpr int MalePosition = 1;
constexpr int UnknownPosition = 2;

/// Contents #1 and #3; #2 takes no part.
Plan plan()
{
    Plan plan;
    plan.entries.resize(3);
    plan.contents = {{1, 20, 39, Female, false, {2}}, {3, 0, 12, Male, false, {3}}};
    return plan;
}

DecidedFace face(DecidedFace::Outcome outcome, int sequence = 0)
{
    DecidedFace face;
    face.outcome = outcome;
    face.sequence = sequence;
    return face;
}

DecidedFace leftOut(int gender, int age)
{
    DecidedFace decided = face(DecidedFace::NothingFits);
    decided.evaluation.gender = gender;
    decided.evaluation.age = age;
    return decided;
}

Decision frame(qint64 atMs, const QVector<DecidedFace> &faces = {})
{
    Decision decision;
    decision.time = QDateTime::fromMSecsSinceEpoch(1517477400000 + atMs, Qt::UTC);
    decision.faces = faces;
    return decision;
}

} // namespace

class tst_PlanOutcome : public QObject
{
    Q_OBJECT

private slots:
    void nothing();
    void outcomes();
    void alreadyOn();
    void switches();
    void watchedTime_data();
    void watchedTime();
    void leftOutByBand_data();
    void leftOutByBand();
};

void tst_PlanOutcome::nothing()
{
    const PlanOutcome outcome(plan());
    QCOMPARE(outcome.frames(), qint64(0));
    QCOMPARE(outcome.watchedMs(), qint64(0));
    QCOMPARE(outcome.switchSpacing().count(), 0);
    QCOMPARE(outcome.switchSpacing().meanMs(), qint64(0));
    QCOMPARE(outcome.contents().size(), 2);
    QCOMPARE(outcome.contents().last().number, 3);
}

void tst_PlanOutcome::outcomes()
{
    PlanOutcome outcome(plan());
    outcome.add(frame(0, {face(DecidedFace::Sent, 1), face(DecidedFace::Cut, 3)}));
    outcome.add(frame(500, {face(DecidedFace::Restricted, 1), face(DecidedFace::NothingFits)}));
    outcome.add(frame(4000, {face(DecidedFace::Sent, 1)}));
    outcome.add(frame(9000, {face(DecidedFace::Sent, 1), face(DecidedFace::Sent, 3)}));
    outcome.add(frame(9500));

    QCOMPARE(outcome.frames(), qint64(5));
    QCOMPARE(outcome.faces(), qint64(7));
    QCOMPARE(outcome.faces(DecidedFace::Sent), qint64(4));
    QCOMPARE(outcome.faces(DecidedFace::Restricted), qint64(1));
    QCOMPARE(outcome.faces(DecidedFace::Cut), qint64(1));
    QCOMPARE(outcome.faces(DecidedFace::NothingFits), qint64(1));
    QCOMPARE(outcome.watchedMs(), qint64(9500));

    const ContentOutcome &first = outcome.contents().first();
    QCOMPARE(first.started, qint64(3));
    QCOMPARE(first.restricted, qint64(1));
    QCOMPARE(first.cut, qint64(0));
    QCOMPARE(first.starts.count(), 2);
    QCOMPARE(first.starts.shortestMs(), qint64(4000));
    QCOMPARE(first.starts.longestMs(), qint64(5000));
    QCOMPARE(first.starts.meanMs(), qint64(4500));
    const ContentOutcome &second = outcome.contents().last();
    QCOMPARE(second.started, qint64(1));
    QCOMPARE(second.restricted, qint64(0));
    QCOMPARE(second.cut, qint64(1));
    QCOMPARE(second.starts.count(), 0);
}

/// A face that is held back is served all the same while its content is the last one started.
void tst_PlanOutcome::alreadyOn()
{
    PlanOutcome outcome(plan());
    outcome.add(frame(0, {face(DecidedFace::Sent, 1)}));
    outcome.add(frame(500, {face(DecidedFace::Restricted, 1)}));
    outcome.add(frame(1000, {face(DecidedFace::Sent, 3)}));
    outcome.add(frame(1500, {face(DecidedFace::Restricted, 1)}));
    outcome.add(frame(2000, {face(DecidedFace::Restricted, 3)}));
    QCOMPARE(outcome.faces(DecidedFace::Restricted), qint64(3));
    QCOMPARE(outcome.alreadyOn(), qint64(2));
    QCOMPARE(outcome.served(), qint64(4));
}

void tst_PlanOutcome::switches()
{
    PlanOutcome outcome(plan());
    int atMs = 0;
    for (const int sequence : {1, 1, 3, 1, 1, 1, 3}) {
        outcome.add(frame(atMs, {face(DecidedFace::Sent, sequence)}));
        atMs += 1000;
    }
    QCOMPARE(outcome.starts(), qint64(7));
    QCOMPARE(outcome.switches(), qint64(4));
    QCOMPARE(outcome.switchSpacing().count(), 3); // 2, 1 and 3 seconds
    QCOMPARE(outcome.switchSpacing().shortestMs(), qint64(1000));
    QCOMPARE(outcome.switchSpacing().meanMs(), qint64(2000));
    QCOMPARE(outcome.switchSpacing().longestMs(), qint64(3000));
}

void tst_PlanOutcome::watchedTime_data()
{
    QTest::addColumn<QVector<int>>("framesMs");
    QTest::addColumn<qint64>("expected");

    QTest::newRow("a single frame") << QVector<int>{0} << qint64{0};
    QTest::newRow("a minute between two") << QVector<int>{0, 60000} << qint64{60000};
    QTest::newRow("a little more") << QVector<int>{0, 60001} << qint64{0};
    QTest::newRow("a night between days")
        << QVector<int>{0, 500, 36000000, 36000500} << qint64{1000};
    QTest::newRow("a clock that was set back")
        << QVector<int>{10000, 10500, 500, 1000} << qint64{1000};
    QTest::newRow("frames at once") << QVector<int>{0, 0, 0, 500} << qint64{500};
}

void tst_PlanOutcome::watchedTime()
{
    QFETCH(QVector<int>, framesMs);

    WatchedTime watched;
    for (const int atMs : framesMs)
        watched.add(frame(atMs).time);
    QTEST(watched.ms(), "expected");
}

void tst_PlanOutcome::leftOutByBand_data()
{
    QTest::addColumn<int>("gender");
    QTest::addColumn<int>("age");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("band");

    QTest::newRow("a newborn girl") << int(Female) << 0 << FemalePosition << 0;
    QTest::newRow("a boy of 9") << int(Male) << 9 << MalePosition << 0;
    QTest::newRow("a boy of 10") << int(Male) << 10 << MalePosition << 1;
    QTest::newRow("69") << int(Female) << 69 << FemalePosition << 6;
    QTest::newRow("70") << int(Female) << 70 << FemalePosition << 7;
    QTest::newRow("an age that nobody has") << int(Male) << 100000 << MalePosition << 7;
    QTest::newRow("no age") << int(Male) << -1 << MalePosition << 8;
    QTest::newRow("no gender") << int(UnknownGender) << 30 << UnknownPosition << 3;
    QTest::newRow("a gender that nobody has") << 7 << 30 << UnknownPosition << 3;
}

void tst_PlanOutcome::leftOutByBand()
{
    QFETCH(int, gender);
    QFETCH(int, age);
    QFETCH(int, position);
    QFETCH(int, band);

    PlanOutcome outcome(plan());
    outcome.add(frame(0, {leftOut(gender, age)}));
    for (int p = 0; p < 3; ++p) {
        for (int b = 0; b < AgeBands; ++b)
            QCOMPARE(outcome.leftOut().at(p).at(b), qint64(p == position && b == band ? 1 : 0));
    }
}

QTEST_GUILESS_MAIN(tst_PlanOutcome)

#include "tst_planoutcome.moc"
