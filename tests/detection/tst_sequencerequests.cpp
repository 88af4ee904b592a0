#include "detection/SequenceRequests.h"

#include <QtTest>

#include <limits>

using namespace PluginKrHvcP2;

namespace {

struct Request
{
    qint64 atMs;
    qint64 number;
    int limitMs;
};

using Requests = QVector<Request>;

/// #1 and #2 for one screen, #3 for another, #4 for both; #5 has no valid ages.
DetectionContents contents()
{
    return {
        {1, 20, 29, Female, false, {101}},
        {2, 20, 29, Male, false, {101}},
        {3, 30, 39, Female, false, {102}},
        {4, 30, 39, Male, false, {101, 102}},
        {5, 40, 39, Male, false, {103}},
    };
}

QDateTime start()
{
    return {QDate(2018, 2, 1), QTime(9, 30), Qt::UTC};
}

QChar sign(SequenceRequests::Answer answer)
{
    switch (answer) {
    case SequenceRequests::Answer::Unknown:
        return QLatin1Char('?');
    case SequenceRequests::Answer::Restricted:
        return QLatin1Char('-');
    case SequenceRequests::Answer::Admitted:
        return QLatin1Char('+');
    }
    return QLatin1Char('!');
}

} // namespace

Q_DECLARE_METATYPE(Requests)

class tst_SequenceRequests : public QObject
{
    Q_OBJECT

private slots:
    void request_data();
    void request();
    void newContentsKeepTheTimes();
};

void tst_SequenceRequests::request_data()
{
    QTest::addColumn<Requests>("requests");
    QTest::addColumn<QString>("expected"); // '+' admitted, '-' restricted, '?' unknown

    const auto row = [](const char *name, const Requests &requests, const char *expected) {
        QTest::newRow(name) << requests << QString::fromLatin1(expected);
    };
    constexpr int Limit = 5000;
    constexpr qint64 Largest = std::numeric_limits<int>::max();

    row("the first request", {{0, 1, Limit}}, "+");
    row("a number that no content has", {{0, 6, Limit}}, "?");
    row("zero and below", {{0, 0, Limit}, {0, -1, Limit}, {0, -Largest, Limit}}, "???");
    row("beyond the largest int", {{0, Largest + 1, Limit}}, "?");
    row("ages the wrong way round", {{0, 5, Limit}}, "?");
    row("an unknown number stamps nothing", {{0, 6, Limit}, {1, 1, Limit}}, "?+");
    row("one millisecond too early", {{0, 1, Limit}, {4999, 1, Limit}}, "+-");
    row("exactly at the limit", {{0, 1, Limit}, {5000, 1, Limit}}, "++");
    row("no limit", {{0, 1, 0}, {0, 1, 0}}, "++");
    row("the same screen, another sequence", {{0, 1, Limit}, {1, 2, Limit}}, "+-");
    row("another screen", {{0, 1, Limit}, {0, 3, Limit}}, "++");
    row("partly restricted, the other screen counts from then on",
        {{0, 1, Limit}, {1000, 4, Limit}, {5999, 3, Limit}, {6000, 3, Limit}}, "+--+");
}

void tst_SequenceRequests::request()
{
    QFETCH(Requests, requests);
    QFETCH(QString, expected);
    SequenceRequests sequences;
    sequences.setContents(contents());
    QString answers;
    for (const Request &request : requests) {
        answers += sign(
            sequences.request(request.number, start().addMSecs(request.atMs), request.limitMs));
    }
    QCOMPARE(answers, expected);
}

void tst_SequenceRequests::newContentsKeepTheTimes()
{
    SequenceRequests sequences;
    QCOMPARE(sign(sequences.request(1, start(), 5000)), QLatin1Char('?'));
    sequences.setContents(contents());
    QCOMPARE(sign(sequences.request(1, start(), 5000)), QLatin1Char('+'));
    sequences.setContents({{9, 0, 75, BothGenders, true, {101}}});
    QCOMPARE(sign(sequences.request(1, start(), 5000)), QLatin1Char('?'));
    QCOMPARE(sign(sequences.request(9, start().addMSecs(4999), 5000)), QLatin1Char('-'));
    QCOMPARE(sign(sequences.request(9, start().addMSecs(5000), 5000)), QLatin1Char('+'));
}

QTEST_GUILESS_MAIN(tst_SequenceRequests)

#include "tst_sequencerequests.moc"
