#include "Schedule.h"

#include <QSet>
#include <QTest>

#include <algorithm>

namespace Soak {

static bool operator==(const Event &one, const Event &other)
{
    return one.deed == other.deed && one.frame == other.frame && one.value == other.value;
}

} // namespace Soak

using namespace Soak;

namespace {

constexpr int Day = 172800;
constexpr int DeedCount = static_cast<int>(Deed::CrashProgram) + 1;

int count(const QVector<Event> &events, Deed deed)
{
    return static_cast<int>(std::count_if(
        events.cbegin(), events.cend(), [deed](const Event &event) { return event.deed == deed; }));
}

} // namespace

class tst_Schedule : public QObject
{
    Q_OBJECT

private slots:
    void isInOrder_data();
    void isInOrder();
    void everyDeedComesEarly_data();
    void everyDeedComesEarly();
    void isTheSameForTheSameSeed();
    void growsWithTheRun();
    void slowDeedsAreBounded();
};

void tst_Schedule::isInOrder_data()
{
    QTest::addColumn<int>("frames");
    QTest::newRow("one frame") << 1;
    QTest::newRow("a short run") << 2000;
    QTest::newRow("a day") << Day;
}

void tst_Schedule::isInOrder()
{
    QFETCH(int, frames);
    int last = 0;
    const QVector<Event> events = schedule(frames, 1);
    for (const Event &event : events) {
        QVERIFY(event.frame >= last);
        QVERIFY(event.frame < frames);
        last = event.frame;
    }
}

void tst_Schedule::everyDeedComesEarly_data()
{
    isInOrder_data();
}

void tst_Schedule::everyDeedComesEarly()
{
    QFETCH(int, frames);
    QSet<int> deeds;
    const QVector<Event> events = schedule(frames, 1);
    for (const Event &event : events) {
        if (event.frame <= frames / 4)
            deeds.insert(static_cast<int>(event.deed));
    }
    QCOMPARE(deeds.size(), DeedCount);
}

void tst_Schedule::isTheSameForTheSameSeed()
{
    const QVector<Event> events = schedule(Day, 1);
    QVERIFY(events == schedule(Day, 1));
    QVERIFY(!(events == schedule(Day, 2)));
    // With every standard library: it lays down what its generator gives.
    QVERIFY(events.constFirst() == (Event{Deed::Initialize, 43, 2295133185}));
}

void tst_Schedule::growsWithTheRun()
{
    QCOMPARE(count(schedule(2000, 1), Deed::ClickSequence), 20);
    QCOMPARE(count(schedule(Day, 1), Deed::ClickSequence), 1728);
}

void tst_Schedule::slowDeedsAreBounded()
{
    const QVector<Event> events = schedule(100 * Day, 1);
    for (const Deed deed : {Deed::RestartAtOnce, Deed::KillProgram, Deed::CrashProgram})
        QCOMPARE(count(events, deed), 20);
}

QTEST_APPLESS_MAIN(tst_Schedule)
#include "tst_schedule.moc"
