#include "demo/desk/TimelineModel.h"
#include "tests/desk/PlanOf.h"

#include <QtTest>

using namespace Desk;
using namespace KrTest;

namespace {

constexpr int Count = TimelineModel::BucketCount;
constexpr int Newest = Count - 1;

/// The beginning of a bucket.
const QDateTime Begin(QDate(2018, 2, 1), QTime(9, 30), Qt::UTC);

QDateTime at(double seconds)
{
    return Begin.addMSecs(qRound64(seconds * 1000));
}

/// Everybody gets #1.
SeenFrame frameAt(double seconds, const QString &faces = {})
{
    SeenFrame frame;
    frame.decision = decisionOf(faces, planOf(QStringLiteral("#1 0-120 both default")));
    frame.decision.time = at(seconds);
    return frame;
}

/// "female 2 1 0 0 0 0" for each gender of whom there are some: by age.
QString describe(const ViewerCounts &counts)
{
    const QStringList names{QStringLiteral("female"), QStringLiteral("male"), QStringLiteral("?")};
    QStringList texts;
    for (int gender = 0; gender < 3; ++gender) {
        QString text = names.at(gender);
        int sum = 0;
        for (const int count : counts.at(static_cast<size_t>(gender))) {
            text += QStringLiteral(" %1").arg(count);
            sum += count;
        }
        if (sum > 0)
            texts << text;
    }
    return texts.join(QLatin1String("; "));
}

/// The last buckets, the newest behind: 'f' with frames, '.' silent, '-' neither.
QString lastOnes(const TimelineModel &model, int count)
{
    const QVector<bool> silences = model.silences();
    QString text;
    for (int position = Count - count; position < Count; ++position) {
        const bool hasFrames = model.bucket(position).frames > 0;
        text += QLatin1Char(hasFrames ? 'f' : silences.at(position) ? '.' : '-');
        if (hasFrames && silences.at(position))
            text += QLatin1Char('!');
    }
    return text;
}

int sumOfFrames(const TimelineModel &model)
{
    int frames = 0;
    for (int position = 0; position < Count; ++position)
        frames += model.bucket(position).frames;
    return frames;
}

/// "#2 195.0-198.5" for each.
QString describe(const QVector<PlayedSequence> &played)
{
    QStringList texts;
    for (const PlayedSequence &sequence : played) {
        texts << QStringLiteral("#%1 %2-%3")
                     .arg(QString::number(sequence.number), QString::number(sequence.from, 'f', 1),
                         QString::number(sequence.to, 'f', 1));
    }
    return texts.join(QLatin1String("; "));
}

} // namespace

class tst_TimelineModel : public QObject
{
    Q_OBJECT

private slots:
    void countsViewers_data();
    void countsViewers();
    void keepsTheFullestFrame();
    void countsRestrictedRequests();
    void timeGoesOn();
    void forgetsWhatIsOld();
    void longPause();
    void clockSetBack_data();
    void clockSetBack();
    void anyTimes();
    void late();
    void invalidTimes();
    void silences_data();
    void silences();
    void played_data();
    void played();
    void playsOnThroughAPause();
    void findsFrames();
    void indexesStay();
    void clears();
};

void tst_TimelineModel::countsViewers_data()
{
    QTest::addColumn<QString>("faces");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nobody") << ""
                            << "";
    QTest::newRow("the last age of each band")
        << "female 12 cut; female 19 cut; female 39 cut; female 59 cut; female 60 cut"
        << "female 1 1 1 1 1 0";
    QTest::newRow("the first age of each band")
        << "male 0 cut; male 13 cut; male 20 cut; male 40 cut; male 120 cut"
        << "male 1 1 1 1 1 0";
    QTest::newRow("no age") << "male ? cut"
                            << "male 0 0 0 0 0 1";
    QTest::newRow("no gender") << "? 30 cut; ? ? cut"
                               << "? 0 0 1 0 0 1";
    QTest::newRow("several of a kind") << "female 30 sent; male 30 cut; female 31 cut"
                                       << "female 0 0 2 0 0 0; male 0 0 1 0 0 0";
}

void tst_TimelineModel::countsViewers()
{
    QFETCH(QString, faces);
    TimelineModel model;
    model.addFrame(frameAt(0, faces));
    QTEST(describe(model.bucket(Newest).counts), "expected");
    QCOMPARE(model.bucket(Newest).frames, 1);
}

void tst_TimelineModel::keepsTheFullestFrame()
{
    TimelineModel model;
    model.addFrame(frameAt(0, QStringLiteral("male 30 cut")));
    model.addFrame(frameAt(1, QStringLiteral("male 30 cut; female 30 cut")));
    model.addFrame(frameAt(2, QStringLiteral("male 30 cut; male 31 cut")));
    model.addFrame(frameAt(2.9));
    const TimelineBucket &bucket = model.bucket(Newest);
    QCOMPARE(bucket.frames, 4);
    QCOMPARE(bucket.viewers, 2);
    QCOMPARE(describe(bucket.counts), QStringLiteral("female 0 0 1 0 0 0; male 0 0 1 0 0 0"));
    QCOMPARE(bucket.momentMs, at(1).toMSecsSinceEpoch());
    QCOMPARE(model.mostViewers(), 2);

    model.addFrame(frameAt(3));
    QCOMPARE(model.bucket(Newest).viewers, 0);
    QCOMPARE(model.bucket(Newest).momentMs, at(3).toMSecsSinceEpoch());
    QCOMPARE(model.mostViewers(), 2);
}

void tst_TimelineModel::countsRestrictedRequests()
{
    TimelineModel model;
    model.addFrame(frameAt(0, QStringLiteral("male 30 restricted; male 31 cut; male 32 sent")));
    model.addFrame(frameAt(1, QStringLiteral("male 30 restricted; male 31 restricted")));
    QCOMPARE(model.bucket(Newest).restricted, 3);
}

void tst_TimelineModel::timeGoesOn()
{
    TimelineModel model;
    QVERIFY(model.isNull());
    model.addFrame(frameAt(0));
    QVERIFY(!model.isNull());
    QCOMPARE(model.bucket(Newest).beginMs, Begin.toMSecsSinceEpoch());
    QCOMPARE(model.bucket(0).beginMs, at(-3 * Newest).toMSecsSinceEpoch());
    model.setNow(at(2.9));
    QCOMPARE(model.bucket(Newest).frames, 1);
    model.setNow(at(3));
    QCOMPARE(model.bucket(Newest).frames, 0);
    QCOMPARE(model.bucket(Newest - 1).frames, 1);
    QCOMPARE(model.bucket(Newest).beginMs, at(3).toMSecsSinceEpoch());
}

void tst_TimelineModel::forgetsWhatIsOld()
{
    TimelineModel model;
    model.addFrame(frameAt(0));
    model.setNow(at(3 * Newest + 2.9));
    QCOMPARE(model.bucket(0).frames, 1);
    model.setNow(at(3 * Count));
    QCOMPARE(sumOfFrames(model), 0);
}

void tst_TimelineModel::longPause()
{
    TimelineModel model;
    model.addFrame(frameAt(0));
    model.addFrame(frameAt(86400.0 * 400));
    QCOMPARE(sumOfFrames(model), 1);
    QCOMPARE(model.bucket(Newest).frames, 1);
    QCOMPARE(model.bucket(0).beginMs, at(86400.0 * 400 - 3 * Newest).toMSecsSinceEpoch());
}

void tst_TimelineModel::clockSetBack_data()
{
    QTest::addColumn<double>("seconds");

    QTest::newRow("just more than what may be late") << 3.6;
    QTest::newRow("a minute") << 60.0;
    QTest::newRow("an hour") << 3600.0;
    QTest::newRow("years") << 86400.0 * 800;
    QTest::newRow("before the epoch") << 86400.0 * 365 * 60;
}

/// What came before stays, what comes later lies behind it.
void tst_TimelineModel::clockSetBack()
{
    QFETCH(double, seconds);
    TimelineModel model;
    model.addFrame(frameAt(0, QStringLiteral("male 30 cut")));
    model.addFrame(frameAt(9));
    model.sequenceStarted(1, at(9.5));
    const double now = 10 - seconds;
    model.addFrame(frameAt(now, QStringLiteral("female 30 cut")));
    model.addFrame(frameAt(now + 3));
    QCOMPARE(sumOfFrames(model), 4);
    QCOMPARE(model.bucket(Newest).frames, 1);
    QCOMPARE(model.bucket(Newest).momentMs, at(now + 3).toMSecsSinceEpoch());
    QCOMPARE(model.bucket(Newest - 1).frames, 2);
    QCOMPARE(model.bucket(Newest - 1).momentMs, at(now).toMSecsSinceEpoch());
    QCOMPARE(describe(model.bucket(Newest - 4).counts), QStringLiteral("male 0 0 1 0 0 0"));
    QCOMPARE(model.bucket(Newest).playing, 1);
    model.setNow(at(now + 5));
    QVERIFY(model.bucket(Newest).beginMs > at(now).toMSecsSinceEpoch());
    QVERIFY(model.bucket(Newest).beginMs <= at(now + 5).toMSecsSinceEpoch());
}

/// Whatever the clock does, the buckets stay in their places.
void tst_TimelineModel::anyTimes()
{
    QRandomGenerator random(12);
    TimelineModel model;
    double now = 0;
    qint64 newest = -1;
    for (int i = 0; i < 20000; ++i) {
        const int step = random.bounded(100);
        now += step == 0 ? random.bounded(2e9) - 1e9
            : step < 5   ? random.bounded(1000.0) - 500
                         : random.bounded(2.0);
        if (random.bounded(3) == 0)
            model.sequenceStarted(random.bounded(4), at(now));
        else
            model.addFrame(frameAt(now));
        QVERIFY(model.indexOf(Newest) >= newest);
        newest = model.indexOf(Newest);
        QVERIFY(model.positionOfNow() >= Newest && model.positionOfNow() < Count);
        qreal last = 0;
        const QVector<PlayedSequence> played = model.played();
        for (const PlayedSequence &sequence : played) {
            QVERIFY(sequence.from >= last && sequence.from <= sequence.to);
            last = sequence.to;
        }
        QVERIFY(last <= Count);
    }
}

void tst_TimelineModel::late()
{
    TimelineModel model;
    model.addFrame(frameAt(3.1));
    model.sequenceStarted(2, at(2.9)); // told after the frame that came later
    QCOMPARE(model.bucket(Newest - 1).starts, 1);
    QCOMPARE(model.bucket(Newest - 1).playing, 2);
    QCOMPARE(model.bucket(Newest).playing, 2);
    QCOMPARE(model.bucket(Newest).starts, 0);
}

void tst_TimelineModel::invalidTimes()
{
    TimelineModel model;
    model.addFrame(SeenFrame());
    model.sequenceStarted(1, {});
    model.setNow({});
    QVERIFY(model.isNull());
    QCOMPARE(model.bucket(Newest).frames, 0);
    QVERIFY(model.played().isEmpty());
}

void tst_TimelineModel::silences_data()
{
    QTest::addColumn<int>("interval"); // ms
    QTest::addColumn<QVector<double>>("frames"); // seconds
    QTest::addColumn<double>("now");
    QTest::addColumn<QString>("expected"); // the last eight buckets; the first one begins at 0

    QTest::newRow("nothing yet") << 1000 << QVector<double>() << 20.0 << "-.......";
    QTest::newRow("a gap") << 1000 << QVector<double>{0, 3, 12, 15} << 15.5 << "--ff..ff";
    QTest::newRow("the newest bucket has just begun")
        << 1000 << QVector<double>{0, 3} << 6.1 << "-----ff-";
    QTest::newRow("a bucket has ended without a frame")
        << 1000 << QVector<double>{0, 3} << 9.1 << "----ff..";
    QTest::newRow("frames are rare") << 5000 << QVector<double>{0, 12} << 21.0 << "f---f---";
    QTest::newRow("rare, but not as rare") << 5000 << QVector<double>{0, 15} << 21.0 << "f....f--";
}

void tst_TimelineModel::silences()
{
    QFETCH(int, interval);
    QFETCH(QVector<double>, frames);
    QFETCH(double, now);
    TimelineModel model;
    model.setInterval(interval);
    model.setNow(at(0));
    for (const double seconds : frames)
        model.addFrame(frameAt(seconds));
    model.setNow(at(now));
    QTEST(lastOnes(model, 8), "expected");
}

void tst_TimelineModel::played_data()
{
    QTest::addColumn<QString>("starts"); // "#2 at 1.5"
    QTest::addColumn<double>("now");
    QTest::addColumn<QString>("expected"); // the newest bucket begins at 199

    QTest::newRow("nothing") << "" << 10.0 << "";
    QTest::newRow("one plays on") << "#2 at 0" << 10.5 << "#2 196.0-199.5";
    QTest::newRow("one after the other")
        << "#2 at 0; #3 at 4.5" << 9.0 << "#2 196.0-197.5; #3 197.5-199.0";
    QTest::newRow("started again") << "#2 at 0; #2 at 4" << 9.0 << "#2 196.0-199.0";
    QTest::newRow("none plays any more") << "#2 at 0; #0 at 3" << 9.0 << "#2 196.0-197.0";
    QTest::newRow("the last one of a bucket counts")
        << "#2 at 0; #3 at 1.5; #4 at 2.4" << 9.0 << "#4 196.8-199.0";
    QTest::newRow("begun before what is kept") << "#2 at 0" << 900.0 << "#2 0.0-199.0";
}

void tst_TimelineModel::played()
{
    QFETCH(QString, starts);
    QFETCH(double, now);
    static const QRegularExpression form(QStringLiteral("#(\\d+) at ([\\d.]+)"));
    TimelineModel model;
    auto matches = form.globalMatch(starts);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        model.sequenceStarted(match.captured(1).toInt(), at(match.captured(2).toDouble()));
    }
    model.setNow(at(now));
    QTEST(describe(model.played()), "expected");
}

void tst_TimelineModel::playsOnThroughAPause()
{
    TimelineModel model;
    model.sequenceStarted(3, at(0));
    model.setNow(at(100000));
    QCOMPARE(describe(model.played()), QStringLiteral("#3 0.0-199.3"));
}

void tst_TimelineModel::findsFrames()
{
    TimelineModel model;
    QCOMPARE(model.nextWithFrames(-1, 1), -1);
    model.addFrame(frameAt(0));
    model.addFrame(frameAt(15));
    QCOMPARE(model.nextWithFrames(-1, 1), Newest - 5);
    QCOMPARE(model.nextWithFrames(Newest - 5, 1), Newest);
    QCOMPARE(model.nextWithFrames(Newest, 1), -1);
    QCOMPARE(model.nextWithFrames(Newest, -1), Newest - 5);
    QCOMPARE(model.nextWithFrames(Count, -1), Newest);
    QCOMPARE(model.nearestWithFrames(Newest - 5, 0), Newest - 5);
    QCOMPARE(model.nearestWithFrames(Newest - 2, 2), Newest);
    QCOMPARE(model.nearestWithFrames(Newest - 2, 1), -1);
    QCOMPARE(model.nearestWithFrames(0, 3), -1);
}

void tst_TimelineModel::indexesStay()
{
    TimelineModel model;
    model.addFrame(frameAt(0));
    const qint64 index = model.indexOf(Newest);
    model.setNow(at(30));
    QCOMPARE(model.positionAtIndex(index), Newest - 10);
    QCOMPARE(model.bucket(model.positionAtIndex(index)).frames, 1);
    model.setNow(at(3 * Count));
    QCOMPARE(model.positionAtIndex(index), -1);
    QCOMPARE(model.positionAtIndex(model.indexOf(Newest) + 1), -1);
}

void tst_TimelineModel::clears()
{
    TimelineModel model;
    model.setInterval(5000);
    model.addFrame(frameAt(0));
    model.sequenceStarted(1, at(0));
    model.clear();
    QVERIFY(model.isNull());
    QCOMPARE(sumOfFrames(model), 0);
    model.addFrame(frameAt(-3600));
    model.setNow(at(-3600 + 9));
    QCOMPARE(lastOnes(model, 4), QStringLiteral("f---")); // the interval stays
    QVERIFY(model.played().isEmpty());
}

QTEST_GUILESS_MAIN(tst_TimelineModel)

#include "tst_timelinemodel.moc"
