#include "detection/SequenceRequests.h"
#include "tools/analysis/RequestMemory.h"

#include <QtTest>

#include <random>

using namespace Analysis;
using namespace PluginKrHvcP2;
using Answer = RequestMemory::Answer;

namespace {

constexpr int Requests = 20000;
constexpr int Contents = 4;

/// Contents that share the screens which follow them.
const DetectionContents Table{{1, 0, 120, Female, false, {2}}, {2, 0, 120, Male, false, {2, 3}},
    {3, 0, 120, BothGenders, false, {3, 4, 5}}, {4, 0, 120, Female, true, {5}}};

QDateTime momentMs(qint64 ms)
{
    return QDateTime(QDate(2018, 2, 1), QTime(9, 30), Qt::UTC).addMSecs(ms);
}

/// What a log of whole seconds tells of a time.
Moment wholeSecond(qint64 ms)
{
    const QDateTime second = momentMs(ms / 1000 * 1000);
    return {second, second.addMSecs(999)};
}

Moment exactly(qint64 ms)
{
    return {momentMs(ms), momentMs(ms)};
}

Answer answerOf(SequenceRequests::Answer answer)
{
    return answer == SequenceRequests::Answer::Admitted ? Answer::Admitted : Answer::Restricted;
}

} // namespace

class tst_RequestMemory : public QObject
{
    Q_OBJECT

private slots:
    void anySequenceOfRequests_data();
    void anySequenceOfRequests();
    void wholeSeconds_data();
    void wholeSeconds();
    void lostMemory();
    void startsBeforeTheFirstOne();
    void numberOfNoContent();
};

void tst_RequestMemory::anySequenceOfRequests_data()
{
    QTest::addColumn<int>("limitMs");
    QTest::addColumn<bool>("isExact");

    for (const int limit : {0, 1, 999, 1000, 2500, 5000}) {
        QTest::addRow("%d ms, times to the millisecond", limit) << limit << true;
        QTest::addRow("%d ms, times to the second", limit) << limit << false;
    }
}

/// Never contradicts the plug-in, and leaves nothing open where the times do not.
void tst_RequestMemory::anySequenceOfRequests()
{
    QFETCH(int, limitMs);
    QFETCH(bool, isExact);

    std::mt19937 random(7);
    SequenceRequests plugin;
    plugin.setContents(Table);
    RequestMemory memory(Table);
    qint64 now = 0;
    int open = 0;
    for (int i = 0; i < Requests; ++i) {
        now += random() % 1500;
        if (random() % 500 == 0) { // another plug-in
            if (random() % 2 == 0) {
                plugin = SequenceRequests();
                plugin.setContents(Table);
            }
            memory.mayBeLost();
        }
        const int number = 1 + static_cast<int>(random() % Contents);
        const Moment moment = isExact ? exactly(now) : wholeSecond(now);
        const Answer expected = answerOf(plugin.request(number, momentMs(now), limitMs));
        if (random() % 50 == 0) { // the log has lost it
            memory.mayHaveStarted(moment.latest);
            continue;
        }
        const Answer actual = memory.ask(number, moment, limitMs);
        if (actual == Answer::Open)
            ++open;
        else
            QCOMPARE(actual, expected);
        memory.settle(number, moment, limitMs, expected);
    }
    if (isExact || limitMs >= 5000)
        QVERIFY2(open < Requests / 2, qPrintable(QString::number(open)));
}

void tst_RequestMemory::wholeSeconds_data()
{
    QTest::addColumn<int>("secondMs");
    QTest::addColumn<int>("expected");

    QTest::newRow("the same second") << 0 << int(Answer::Restricted);
    QTest::newRow("too soon by all means") << 3000 << int(Answer::Restricted);
    QTest::newRow("may be too soon") << 4000 << int(Answer::Restricted);
    QTest::newRow("may be in time") << 5000 << int(Answer::Open);
    QTest::newRow("in time by all means") << 6000 << int(Answer::Admitted);
}

void tst_RequestMemory::wholeSeconds()
{
    QFETCH(int, secondMs);

    RequestMemory memory(Table);
    QCOMPARE(memory.ask(1, wholeSecond(0), 5000), Answer::Admitted);
    memory.settle(1, wholeSecond(0), 5000, Answer::Admitted);
    QTEST(int(memory.ask(1, wholeSecond(secondMs), 5000)), "expected");
}

void tst_RequestMemory::lostMemory()
{
    RequestMemory memory(Table);
    memory.settle(1, exactly(0), 5000, Answer::Admitted);
    memory.mayBeLost();
    QCOMPARE(memory.ask(1, exactly(1000), 5000), Answer::Open);
    QCOMPARE(memory.ask(1, exactly(5000), 5000), Answer::Admitted);
    memory.settle(1, exactly(1000), 5000, Answer::Admitted);
    QCOMPARE(memory.ask(1, exactly(5000), 5000), Answer::Restricted);
}

void tst_RequestMemory::startsBeforeTheFirstOne()
{
    RequestMemory memory(Table);
    memory.mayHaveStarted(momentMs(0));
    QCOMPARE(memory.ask(3, exactly(4999), 5000), Answer::Open);
    QCOMPARE(memory.ask(3, exactly(5000), 5000), Answer::Admitted);
}

void tst_RequestMemory::numberOfNoContent()
{
    RequestMemory memory(Table);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(memory.ask(9, exactly(0), 5000), Answer::Admitted);
        memory.settle(9, exactly(0), 5000, Answer::Admitted);
    }
}

QTEST_APPLESS_MAIN(tst_RequestMemory)

#include "tst_requestmemory.moc"
