#include "tools/analysis/Words.h"
#include "tools/hvcp2/Progress.h"

#include <QtTest>

using namespace Hvcp2;

/// What tells how far a command is, and how long and when something was.
class tst_Progress : public QObject
{
    Q_OBJECT

private slots:
    void text_data();
    void text();
    void shortWorkShowsNothing();
    void longWorkLeavesNothing();
    void durations_data();
    void durations();
    void times_data();
    void times();
};

void tst_Progress::text_data()
{
    QTest::addColumn<qint64>("done");
    QTest::addColumn<qint64>("total");
    QTest::addColumn<QString>("expected");

    const QString empty(40, QLatin1Char('-'));
    const QString full(40, QLatin1Char('#'));
    QTest::newRow("nothing") << qint64{0} << qint64{10} << QStringLiteral("[%1]   0 %").arg(empty);
    QTest::newRow("a half") << qint64{5} << qint64{10}
                            << QStringLiteral("[%1%2]  50 %").arg(full.left(20), empty.left(20));
    QTest::newRow("nearly all") << qint64{999} << qint64{1000}
                                << QStringLiteral("[%1-]  99 %").arg(full.left(39));
    QTest::newRow("all") << qint64{10} << qint64{10} << QStringLiteral("[%1] 100 %").arg(full);
    QTest::newRow("a file that grows")
        << qint64{12} << qint64{10} << QStringLiteral("[%1] 100 %").arg(full);
    QTest::newRow("nobody knows how much")
        << qint64{3 * 1024 * 1024} << qint64{0} << QStringLiteral("3 MiB read");
}

void tst_Progress::text()
{
    QFETCH(qint64, done);
    QFETCH(qint64, total);
    QTEST(progressText(done, total), "expected");
}

void tst_Progress::shortWorkShowsNothing()
{
    QString text;
    QTextStream stream(&text);
    {
        Progress progress(stream, true);
        progress.show(1, 2);
        progress.show(2, 2);
    }
    stream.flush();
    QCOMPARE(text, QString());
}

void tst_Progress::longWorkLeavesNothing()
{
    for (const bool isTerminal : {true, false}) {
        QString text;
        QTextStream stream(&text);
        {
            Progress progress(stream, isTerminal);
            QTest::qSleep(1050);
            progress.show(1, 2);
            progress.show(2, 2); // too soon behind the first one
        }
        stream.flush();
        const QString blanks(60, QLatin1Char(' '));
        QCOMPARE(text,
            isTerminal ? QStringLiteral("\r%1\r%2\r").arg(progressText(1, 2), blanks) : QString());
    }
}

void tst_Progress::durations_data()
{
    QTest::addColumn<qint64>("ms");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nothing") << qint64{0} << "0.0 s";
    QTest::newRow("less than a tenth") << qint64{99} << "0.0 s";
    QTest::newRow("seconds") << qint64{12340} << "12.3 s";
    QTest::newRow("nearly a minute") << qint64{59999} << "59.9 s";
    QTest::newRow("a minute") << qint64{60000} << "1 min 00 s";
    QTest::newRow("nearly an hour") << qint64{3599999} << "59 min 59 s";
    QTest::newRow("an hour") << qint64{3600000} << "1 h 00 min";
    QTest::newRow("a week") << qint64{604800000} << "168 h 00 min";
}

void tst_Progress::durations()
{
    QFETCH(qint64, ms);
    QTEST(Analysis::durationWord(ms), "expected");
}

void tst_Progress::times_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<int>("toleranceMs");
    QTest::addColumn<QString>("expected");

    const QDate date(2018, 2, 1);
    const QTime time(9, 30, 0, 250);
    QTest::newRow("of a recording")
        << QDateTime(date, time, Qt::UTC) << 0 << "2018-02-01 09:30:00.250 UTC";
    QTest::newRow("of a log") << QDateTime(date, time, Qt::OffsetFromUTC, 3600) << 999
                              << "2018-02-01 09:30:00";
}

void tst_Progress::times()
{
    QFETCH(QDateTime, time);
    QFETCH(int, toleranceMs);
    QTEST(Analysis::timeWord(time, toleranceMs), "expected");
}

QTEST_GUILESS_MAIN(tst_Progress)

#include "tst_progress.moc"
