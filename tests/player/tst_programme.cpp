#include "demo/player/Programme.h"

#include <QString>
#include <QStringList>
#include <QTest>

using namespace Player;

class tst_Programme : public QObject
{
    Q_OBJECT

private slots:
    void starts_data();
    void starts();
    void nothingIsDueEarly();
    void waiting();
    void dropped();
};

namespace {

constexpr qint64 Duration = 10; // of each content
constexpr qint64 End = 100; // of each story
constexpr Programme::Switching Now = Programme::Switching::Now;
constexpr Programme::Switching AtEnd = Programme::Switching::AtEnd;

QString describe(const Programme::Item &item, qint64 time)
{
    return QStringLiteral("%1 #%2%3")
        .arg(QString::number(time), QString::number(item.sequence),
            item.reason == StartReason::Idle ? QStringLiteral(" idle") : QString());
}

/// Lets time pass from @p now until @p then, waking the programme up when it has asked for that.
QStringList pass(Programme *programme, qint64 now, qint64 then)
{
    QStringList starts;
    for (auto wait = programme->untilAdvance(now); wait && now + *wait < then;
         wait = programme->untilAdvance(now)) {
        now += *wait;
        const auto item = programme->advance(now);
        starts << (item ? describe(*item, now) : QStringLiteral("woken up for nothing"));
        if (!item)
            break;
    }
    return starts;
}

} // namespace

void tst_Programme::starts_data()
{
    QTest::addColumn<int>("switching");
    QTest::addColumn<int>("idle");
    QTest::addColumn<qint64>("idleAfter");
    QTest::addColumn<QString>("requests"); // "TIME #SEQUENCE", separated by commas
    QTest::addColumn<QString>("expected"); // likewise

    const auto row = [](const char *name, Programme::Switching switching, int idle,
                         qint64 idleAfter, const char *requests, const char *expected) {
        QTest::newRow(name) << int(switching) << idle << idleAfter << requests << expected;
    };
    row("nothing is asked for", Now, 0, 0, "", "");
    row("each request starts at once", Now, 0, 0, "0 #1, 3 #2, 4 #2", "0 #1, 3 #2, 4 #2");
    row("the first one does at the end, too", AtEnd, 0, 0, "7 #1", "7 #1");
    row("a request waits for the end", AtEnd, 0, 0, "0 #1, 3 #2", "0 #1, 10 #2");
    row("the newest request wins", AtEnd, 0, 0, "0 #1, 3 #2, 5 #3", "0 #1, 10 #3");
    row("also when it is for what plays", AtEnd, 0, 0, "0 #1, 3 #2, 5 #1", "0 #1, 10 #1");
    row("the end belongs to the next one", AtEnd, 0, 0, "0 #1, 10 #2", "0 #1, 10 #2");
    row("just before the end", AtEnd, 0, 0, "0 #1, 9 #2", "0 #1, 10 #2");
    row("long after the end", AtEnd, 0, 0, "0 #1, 35 #2", "0 #1, 35 #2");
    row("what waited has its time as well", AtEnd, 0, 0, "0 #1, 3 #2, 12 #3", "0 #1, 10 #2, 20 #3");
    row("the idle sequence plays first", Now, 9, 20, "", "0 #9 idle");
    row("and returns", Now, 9, 20, "5 #1", "0 #9 idle, 5 #1, 25 #9 idle");
    row("counted from the last start", Now, 9, 20, "5 #1, 24 #1",
        "0 #9 idle, 5 #1, 24 #1, 44 #9 idle");
    row("a request when it is about to return", Now, 9, 20, "5 #1, 25 #2",
        "0 #9 idle, 5 #1, 25 #2, 45 #9 idle");
    row("it cuts contents as everything does", Now, 9, 4, "5 #1", "0 #9 idle, 5 #1, 9 #9 idle");
    row("but not when they play to the end", AtEnd, 9, 4, "5 #1", "0 #9 idle, 5 #1, 15 #9 idle");
    row("it makes way at once", AtEnd, 9, 20, "3 #1", "0 #9 idle, 3 #1, 23 #9 idle");
    row("what waits goes first", AtEnd, 9, 1, "3 #1, 5 #2", "0 #9 idle, 3 #1, 13 #2, 23 #9 idle");
    row("viewers may want the idle sequence", AtEnd, 9, 20, "3 #9, 5 #1",
        "0 #9 idle, 3 #9, 13 #1, 33 #9 idle");
}

void tst_Programme::starts()
{
    QFETCH(int, switching);
    QFETCH(int, idle);
    QFETCH(qint64, idleAfter);
    QFETCH(QString, requests);
    QFETCH(QString, expected);

    Programme programme({static_cast<Programme::Switching>(switching), idle, idleAfter});
    QStringList starts;
    qint64 now = 0;
    if (const auto item = programme.advance(now))
        starts << describe(*item, now);
    const QStringList steps
        = requests.isEmpty() ? QStringList() : requests.split(QStringLiteral(", "));
    for (const QString &step : steps) {
        const qint64 then = step.section(QLatin1Char(' '), 0, 0).toLongLong();
        const int sequence = step.section(QLatin1Char('#'), 1).toInt();
        starts += pass(&programme, now, then);
        now = then;
        if (const auto item = programme.request({sequence, StartReason::Viewer, Duration}, now))
            starts << describe(*item, now);
    }
    starts += pass(&programme, now, End);
    QCOMPARE(starts.join(QStringLiteral(", ")), expected);
}

void tst_Programme::nothingIsDueEarly()
{
    Programme programme({AtEnd, 9, 20});
    QVERIFY(programme.advance(0));
    QVERIFY(!programme.untilAdvance(0));
    QVERIFY(programme.request({1, StartReason::Key, Duration}, 5));
    QVERIFY(!programme.request({2, StartReason::Panel, Duration}, 6));
    QVERIFY(!programme.advance(14));
    QCOMPARE(programme.untilAdvance(14).value_or(-1), qint64(1));
    QCOMPARE(programme.untilAdvance(50).value_or(-1), qint64(0)); // the clock's timer was late
    const auto item = programme.advance(50);
    QVERIFY(item);
    QCOMPARE(describe(*item, 50), QStringLiteral("50 #2"));
    QVERIFY(item->reason == StartReason::Panel);
    QCOMPARE(programme.untilAdvance(50).value_or(-1), qint64(20));
}

void tst_Programme::waiting()
{
    Programme programme({AtEnd, 0, 0});
    QVERIFY(!programme.playing());
    programme.request({1, StartReason::Viewer, Duration}, 0);
    programme.request({2, StartReason::Viewer, Duration}, 1);
    QCOMPARE(programme.playing()->sequence, 1);
    QCOMPARE(programme.waiting()->sequence, 2);
    programme.advance(10);
    QCOMPARE(programme.playing()->sequence, 2);
    QVERIFY(!programme.waiting());
}

void tst_Programme::dropped()
{
    Programme programme({AtEnd, 3, 20});
    programme.request({1, StartReason::Viewer, Duration}, 0);
    programme.request({2, StartReason::Viewer, Duration}, 1);
    programme.dropBehind(2);
    QCOMPARE(programme.playing()->sequence, 1);
    QCOMPARE(programme.waiting()->sequence, 2);
    programme.dropBehind(1);
    QCOMPARE(programme.playing()->sequence, 1);
    QVERIFY(!programme.waiting());
    QVERIFY(!programme.untilAdvance(1)); // the idle sequence has gone, too
    programme.dropBehind(0);
    QVERIFY(!programme.playing());
    QVERIFY(programme.request({1, StartReason::Viewer, Duration}, 2));
}

QTEST_GUILESS_MAIN(tst_Programme)

#include "tst_programme.moc"
