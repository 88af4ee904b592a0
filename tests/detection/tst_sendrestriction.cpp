#include "detection/SendRestriction.h"

#include <QtTest>

#include <limits>

using namespace PluginKrHvcP2;

namespace {

struct Request
{
    qint64 atMs;
    QList<int> identifiers;
    int limitMs;
};

using Requests = QVector<Request>;

QDateTime start()
{
    return {QDate(2018, 2, 1), QTime(9, 30), Qt::UTC};
}

} // namespace

Q_DECLARE_METATYPE(Requests)

class tst_SendRestriction : public QObject
{
    Q_OBJECT

private slots:
    void admit_data();
    void admit();
    void remaining_data();
    void remaining();
    void separateObjects();
    void timeZoneDoesNotMatter();
};

void tst_SendRestriction::admit_data()
{
    QTest::addColumn<Requests>("requests");
    QTest::addColumn<QString>("expected"); // '+' admitted, '-' restricted

    const auto row = [](const char *name, const Requests &requests, const char *expected) {
        QTest::newRow(name) << requests << QString::fromLatin1(expected);
    };
    constexpr int Limit = 5000;
    constexpr int NoLimit = 0;
    constexpr int Hour = 3600000;

    row("the first request", {{0, {2}, Limit}}, "+");
    row("again at once", {{0, {2}, Limit}, {0, {2}, Limit}}, "+-");
    row("one millisecond too early", {{0, {2}, Limit}, {4999, {2}, Limit}}, "+-");
    row("exactly at the limit", {{0, {2}, Limit}, {5000, {2}, Limit}}, "++");
    row("later than the limit", {{0, {2}, Limit}, {5001, {2}, Limit}}, "++");
    row("a limit of 0 never restricts", {{0, {2}, NoLimit}, {0, {2}, NoLimit}}, "++");
    row("a refused request does not renew the time",
        {{0, {2}, Limit}, {4999, {2}, Limit}, {5000, {2}, Limit}}, "+-+");
    row("an admitted request renews the time",
        {{0, {2}, Limit}, {5000, {2}, Limit}, {9999, {2}, Limit}, {10000, {2}, Limit}}, "++-+");
    row("other identifiers do not restrict", {{0, {2}, Limit}, {0, {3}, Limit}}, "++");
    row("a shared identifier restricts", {{0, {2, 3}, Limit}, {0, {3, 4}, Limit}}, "+-");
    row("the free identifiers of a refused request are stamped",
        {{0, {2}, Limit}, {1000, {2, 3}, Limit}, {5999, {3}, Limit}, {6000, {3}, Limit}}, "+--+");
    row("free identifiers before and behind the restricted one are stamped",
        {{0, {5}, Limit}, {1, {4, 5, 6}, Limit}, {2, {4}, Limit}, {2, {6}, Limit}}, "+---");
    row("expired identifiers of a refused request are stamped anew",
        {{0, {2}, Limit}, {3000, {3}, Limit}, {6000, {2, 3}, Limit}, {8000, {3}, Limit},
            {10999, {2}, Limit}, {11000, {2}, Limit}},
        "++-+-+");
    row("the limit of the request counts, not that of the stamp",
        {{0, {2}, Limit}, {10, {2}, 10}, {19, {2}, 10}, {20, {2}, NoLimit}}, "++-+");
    row("negative and zero identifiers are like others",
        {{0, {0, -7}, Limit}, {1, {-7}, Limit}, {1, {0}, Limit}, {1, {7}, Limit}}, "+--+");
    row("no identifiers", {{0, {}, Limit}, {0, {}, Limit}}, "++");
    row("the longest limit",
        {{0, {2}, std::numeric_limits<int>::max()},
            {std::numeric_limits<int>::max() - Q_INT64_C(1), {2}, std::numeric_limits<int>::max()},
            {std::numeric_limits<int>::max(), {2}, std::numeric_limits<int>::max()}},
        "+-+");
    row("a clock that is set back an hour restricts an hour longer",
        {{Hour, {2}, Limit}, {0, {2}, Limit}, {Limit, {2}, Limit}, {Hour + Limit - 1, {2}, Limit},
            {Hour + Limit, {2}, Limit}},
        "+---+");
}

void tst_SendRestriction::admit()
{
    QFETCH(Requests, requests);
    QFETCH(QString, expected);
    SendRestriction restriction;
    QString admitted;
    for (const Request &request : requests) {
        const QDateTime now = start().addMSecs(request.atMs);
        admitted += QLatin1Char(
            restriction.admit(request.identifiers, now, request.limitMs) ? '+' : '-');
    }
    QCOMPARE(admitted, expected);
}

void tst_SendRestriction::remaining_data()
{
    QTest::addColumn<QList<int>>("identifiers");
    QTest::addColumn<int>("atMs"); // 1 was sent at 0, 2 at 1000
    QTest::addColumn<qint64>("expected");

    QTest::newRow("sent at once") << QList<int>{1} << 0 << qint64{5000};
    QTest::newRow("later") << QList<int>{1} << 4999 << qint64{1};
    QTest::newRow("exactly at the limit") << QList<int>{1} << 5000 << qint64{0};
    QTest::newRow("long ago") << QList<int>{1} << 60000 << qint64{0};
    QTest::newRow("never sent") << QList<int>{3} << 0 << qint64{0};
    QTest::newRow("the last of several counts") << QList<int>{1, 2, 3} << 2000 << qint64{4000};
    QTest::newRow("the clock was set back") << QList<int>{1} << -1000 << qint64{6000};
    QTest::newRow("for nobody") << QList<int>() << 0 << qint64{0};
}

void tst_SendRestriction::remaining()
{
    QFETCH(QList<int>, identifiers);
    QFETCH(int, atMs);

    constexpr int Limit = 5000;
    SendRestriction restriction;
    QVERIFY(restriction.admit({1}, start(), Limit));
    QVERIFY(restriction.admit({2}, start().addMSecs(1000), Limit));
    const QDateTime now = start().addMSecs(atMs);
    const qint64 remaining = restriction.remainingMs(identifiers, now, Limit);
    QTEST(remaining, "expected");
    QCOMPARE(restriction.admit(identifiers, now, Limit), remaining == 0);
}

void tst_SendRestriction::separateObjects()
{
    SendRestriction one;
    SendRestriction other;
    QVERIFY(one.admit({2}, start(), 5000));
    QVERIFY(other.admit({2}, start(), 5000));
    QVERIFY(!one.admit({2}, start(), 5000));
}

void tst_SendRestriction::timeZoneDoesNotMatter()
{
    SendRestriction restriction;
    QVERIFY(restriction.admit({2}, start(), 5000));
    // One hour further east, the same instant.
    QVERIFY(!restriction.admit({2}, start().addMSecs(4999).toOffsetFromUtc(3600), 5000));
    QVERIFY(restriction.admit({2}, start().addMSecs(5000).toOffsetFromUtc(3600), 5000));
}

QTEST_GUILESS_MAIN(tst_SendRestriction)

#include "tst_sendrestriction.moc"
