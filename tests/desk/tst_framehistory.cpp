#include "demo/desk/FrameHistory.h"
#include "tests/desk/SampleFrames.h"

#include <QSignalSpy>
#include <QtTest>

using namespace Analysis;
using namespace Desk;

namespace {

const char NoFace[] = "Face result count:0\n";

QString woman()
{
    return sampleFace(0, 200, 30, "Female");
}

QString boy()
{
    return sampleFace(1, 100, 8, "Male");
}

SeenStart startOf(int number, qint64 ms)
{
    return {number, sampleTime(ms)};
}

QVector<qint64> numbers(const FrameHistory &history)
{
    QVector<qint64> numbers;
    for (const SeenFrame &frame : history.frames())
        numbers.append(frame.number);
    return numbers;
}

} // namespace

Q_DECLARE_METATYPE(QVector<Desk::PluginTurn>)

class tst_FrameHistory : public QObject
{
    Q_OBJECT

private slots:
    void chunks_data();
    void chunks();
    void decidesByTheTimes();
    void turns_data();
    void turns();
    void localTimes();
    void tenMinutes_data();
    void tenMinutes();
    void manyFrames();
    void longTexts();
    void nearest_data();
    void nearest();
    void plans();
};

void tst_FrameHistory::chunks_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isFrame");

    QTest::newRow("a face") << woman() << true;
    QTest::newRow("nobody") << QString::fromLatin1(NoFace) << true;
    QTest::newRow("a failure") << QStringLiteral("Failed to open the port.\n") << true;
    QTest::newRow("a cut face") << woman().left(60) << true;
    QTest::newRow("nothing") << QString() << false;
    QTest::newRow("line ends") << QStringLiteral("\r\n \r\n") << false;
}

void tst_FrameHistory::chunks()
{
    QFETCH(QString, text);
    QFETCH(bool, isFrame);

    FrameHistory history(samplePlan());
    QStringList added;
    connect(&history, &FrameHistory::frameAdded, this,
        [&added](const SeenFrame &frame) { added << frame.text; });
    history.take(text, sampleTime(0));
    QCOMPARE(added, isFrame ? QStringList{text} : QStringList());
    QCOMPARE(numbers(history), isFrame ? QVector<qint64>{1} : QVector<qint64>{});
}

void tst_FrameHistory::decidesByTheTimes()
{
    FrameHistory history(samplePlan());
    const auto decide = [&](qint64 ms) {
        history.take(woman(), sampleTime(ms));
        return outcomes(history.newest().decision);
    };
    QCOMPARE(decide(0), QStringLiteral("#1 sent"));
    QCOMPARE(decide(1200), QStringLiteral("#1 restricted 3800"));
    QCOMPARE(decide(5000), QStringLiteral("#1 sent"));
}

void tst_FrameHistory::turns_data()
{
    QTest::addColumn<QVector<PluginTurn>>("turns");
    QTest::addColumn<QStringList>("expected");

    const auto chunk = [](const QString &text, qint64 ms) {
        return SeenChunk{text, sampleTime(ms)};
    };
    QTest::newRow("a frame with its start")
        << QVector<PluginTurn>{{{chunk(woman(), 2)}, {startOf(1, 0)}}}
        << QStringList{QStringLiteral("#1 sent")};
    QTest::newRow("the time runs from the start, not from the frame")
        << QVector<PluginTurn>{{{chunk(woman(), 40)}, {startOf(1, 0)}},
               {{chunk(woman(), 1000)}, {}}}
        << QStringList{QStringLiteral("#1 sent"), QStringLiteral("#1 restricted 4000")};
    QTest::newRow("a start a moment before its time")
        << QVector<PluginTurn>{{{chunk(woman(), 2)}, {startOf(1, 0)}},
               {{chunk(woman(), 4999)}, {startOf(1, 4998)}}, {{chunk(woman(), 5998)}, {}}}
        << QStringList{QStringLiteral("#1 sent"), QStringLiteral("#1 sent"),
               QStringLiteral("#1 restricted 4000")};
    QTest::newRow("a button of the panel")
        << QVector<PluginTurn>{{{}, {startOf(1, 0)}}, {{chunk(woman(), 500)}, {}},
               {{chunk(boy(), 600)}, {startOf(2, 599)}}}
        << QStringList{QStringLiteral("#1 restricted 4500"), QStringLiteral("#2 sent")};
    QTest::newRow("a button in the turn of a frame")
        << QVector<PluginTurn>{{{chunk(boy(), 3)}, {startOf(1, 0), startOf(2, 2)}},
               {{chunk(woman(), 1000)}, {}}}
        << QStringList{QStringLiteral("#2 sent"), QStringLiteral("#1 restricted 4000")};
    QTest::newRow("two frames in a turn")
        << QVector<PluginTurn>{{{chunk(woman(), 1), chunk(boy(), 3), chunk(woman(), 5)},
               {startOf(1, 0), startOf(2, 2)}}}
        << QStringList{QStringLiteral("#1 sent"), QStringLiteral("#2 sent"),
               QStringLiteral("#1 restricted 4995")};
    QTest::newRow("a number of no content")
        << QVector<PluginTurn>{{{}, {startOf(7, 0)}}, {{chunk(woman(), 3)}, {startOf(1, 2)}}}
        << QStringList{QStringLiteral("#1 sent")};
    QTest::newRow("a start that did not happen restricts nothing")
        << QVector<PluginTurn>{{{chunk(woman(), 0)}, {}},
               {{chunk(woman(), 1001)}, {startOf(1, 1000)}}}
        << QStringList{QStringLiteral("#1 restricted 0"), QStringLiteral("#1 sent")};
}

void tst_FrameHistory::turns()
{
    QFETCH(QVector<PluginTurn>, turns);

    FrameHistory history(samplePlan());
    for (const PluginTurn &turn : qAsConst(turns))
        history.take(turn);
    QStringList actual;
    for (const SeenFrame &frame : history.frames())
        actual << outcomes(frame.decision);
    QTEST(actual, "expected");
}

void tst_FrameHistory::localTimes()
{
    FrameHistory history(samplePlan());
    history.take({{{woman(), sampleTime(0)}}, {}});
    QCOMPARE(history.newest().decision.time.timeSpec(), Qt::LocalTime);
    QCOMPARE(history.newest().decision.time, sampleTime(0));
}

void tst_FrameHistory::tenMinutes_data()
{
    QTest::addColumn<QVector<int>>("seconds");
    QTest::addColumn<QVector<qint64>>("kept");

    QTest::newRow("none is too old") << QVector<int>{0, 1, 600} << QVector<qint64>{1, 2, 3};
    QTest::newRow("one is too old") << QVector<int>{0, 1, 601} << QVector<qint64>{2, 3};
    QTest::newRow("all but the newest") << QVector<int>{0, 1, 9000} << QVector<qint64>{3};
    QTest::newRow("at the same time") << QVector<int>{5, 5} << QVector<qint64>{1, 2};
    QTest::newRow("the clock was set back")
        << QVector<int>{0, 100, 200, 90} << QVector<qint64>{1, 4};
    QTest::newRow("the clock was set back before all of them")
        << QVector<int>{100, 200, 90} << QVector<qint64>{3};
}

void tst_FrameHistory::tenMinutes()
{
    QFETCH(QVector<int>, seconds);

    FrameHistory history(samplePlan());
    for (const int second : qAsConst(seconds))
        history.take(QString::fromLatin1(NoFace), sampleTime(second * 1000));
    QTEST(numbers(history), "kept");
}

void tst_FrameHistory::manyFrames()
{
    FrameHistory history(samplePlan());
    for (int i = 0; i < FrameHistory::MaxFrames + 3; ++i)
        history.take(QString::fromLatin1(NoFace), sampleTime(0));
    QCOMPARE(int(history.frames().size()), FrameHistory::MaxFrames);
    QCOMPARE(history.frames().front().number, 4);
}

void tst_FrameHistory::longTexts()
{
    FrameHistory history(samplePlan());
    const QString text(FrameHistory::MaxCharacters / 3, QLatin1Char('x'));
    for (int i = 0; i < 5; ++i)
        history.take(text, sampleTime(i));
    QCOMPARE(numbers(history), QVector<qint64>({3, 4, 5}));
    history.take(QString(FrameHistory::MaxCharacters + 1, QLatin1Char('x')), sampleTime(6));
    QCOMPARE(numbers(history), QVector<qint64>{6});
    history.take(QString::fromLatin1(NoFace), sampleTime(7));
    QCOMPARE(numbers(history), QVector<qint64>{7});
}

void tst_FrameHistory::nearest_data()
{
    QTest::addColumn<qint64>("ms");
    QTest::addColumn<qint64>("expected"); // 0: none

    // Frames at 0, 1000 and 2000.
    QTest::newRow("the time of one") << qint64{1000} << qint64{2};
    QTest::newRow("before one") << qint64{998} << qint64{2};
    QTest::newRow("behind one") << qint64{1400} << qint64{2};
    QTest::newRow("of two the earlier one") << qint64{1500} << qint64{2};
    QTest::newRow("nearer to the later one") << qint64{1501} << qint64{3};
    QTest::newRow("before all") << qint64{-500} << qint64{1};
    QTest::newRow("too far before all") << qint64{-501} << qint64{0};
    QTest::newRow("behind all") << qint64{2500} << qint64{3};
    QTest::newRow("too far behind all") << qint64{2501} << qint64{0};
}

void tst_FrameHistory::nearest()
{
    QFETCH(qint64, ms);
    QFETCH(qint64, expected);

    FrameHistory history(samplePlan());
    QVERIFY(!history.nearest(sampleTime(0), 500));
    for (int second = 0; second < 3; ++second)
        history.take(QString::fromLatin1(NoFace), sampleTime(second * 1000));
    const std::optional<SeenFrame> frame = history.nearest(sampleTime(ms), 500);
    QCOMPARE(frame ? frame->number : 0, expected);
}

void tst_FrameHistory::plans()
{
    FrameHistory history(samplePlan());
    QSignalSpy changed(&history, &FrameHistory::planChanged);
    history.take(woman(), sampleTime(0));

    Plan second = samplePlan();
    second.title = QStringLiteral("Never used");
    history.setPlan(second);
    second.title = QStringLiteral("Second");
    second.contents = {{5, 0, 120, PluginKrHvcP2::BothGenders, false, {2}}};
    history.setPlan(second);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(history.plan().title, QStringLiteral("Second"));

    history.take(woman(), sampleTime(1000));
    QCOMPARE(outcomes(history.newest().decision), QStringLiteral("#5 restricted 4000"));
    QCOMPARE(history.planOf(1)->title, QStringLiteral("Sample"));
    QCOMPARE(history.planOf(2)->title, QStringLiteral("Second"));
    QCOMPARE(history.planOf(2), history.currentPlan());

    // The plan of the first frame goes with it.
    history.take(woman(), sampleTime(FrameHistory::KeptMs + 500));
    QCOMPARE(history.planOf(1), history.currentPlan());
}

QTEST_GUILESS_MAIN(tst_FrameHistory)

#include "tst_framehistory.moc"
