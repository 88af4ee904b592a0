#include "demo/desk/LogPlayhead.h"
#include "tests/desk/LogText.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Desk;
using namespace DeskTest;

class tst_LogPlayhead : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void plays_data();
    void plays();
    void playsByItself();
    void playsFromTheBeginningAgain();
    void moves_data();
    void moves();
    void withoutFrames();

private:
    std::unique_ptr<LogDay> day(const QString &times) const
    {
        return readDay(m_directory.filePath(QStringLiteral("log.txt")), logOf(times));
    }

    QTemporaryDir m_directory;
};

namespace {

/// The numbers that @p spy was told.
QVector<qint64> numbers(const QSignalSpy &spy)
{
    QVector<qint64> numbers;
    for (const QVariantList &arguments : spy)
        numbers.append(arguments.constFirst().toLongLong());
    return numbers;
}

} // namespace

void tst_LogPlayhead::initTestCase()
{
    QVERIFY(m_directory.isValid());
}

void tst_LogPlayhead::plays_data()
{
    QTest::addColumn<QString>("times");
    QTest::addColumn<int>("speed");
    QTest::addColumn<QVector<int>>("turns"); // milliseconds
    QTest::addColumn<QVector<qint64>>("shown");
    QTest::addColumn<bool>("isPlaying"); // at the end

    using Turns = QVector<int>;
    using Shown = QVector<qint64>;
    const QString seconds = QStringLiteral("09:30:00, 09:30:01, 09:30:02, 09:30:03");
    QTest::newRow("nothing yet") << seconds << 1 << Turns{999} << Shown{1} << true;
    QTest::newRow("as fast as it was")
        << seconds << 1 << Turns{999, 1, 999, 1} << Shown{1, 2, 3} << true;
    QTest::newRow("ten times as fast")
        << seconds << 10 << Turns{50, 50, 100} << Shown{1, 2, 3} << true;
    QTest::newRow("frames are left out") << seconds << 60 << Turns{40} << Shown{1, 3} << true;
    QTest::newRow("to the end") << seconds << 60 << Turns{40, 40, 40} << Shown{1, 3, 4} << false;
    QTest::newRow("a silence of a minute is waited for")
        << "09:30:00, 09:31:00, 09:31:01" << 1 << Turns{59999} << Shown{1} << true;
    QTest::newRow("a longer one is left out")
        << "09:30:00, 09:31:01, 09:31:02" << 1 << Turns{1} << Shown{1, 2} << true;
    QTest::newRow("the frame before it is shown") << "09:30:00, 09:30:01, 12:30:00, 12:30:01" << 60
                                                  << Turns{40, 1, 1} << Shown{1, 2, 3} << true;
    QTest::newRow("behind it time goes on from there")
        << "09:30:00, 12:30:00, 12:30:01, 12:30:02" << 1 << Turns{999, 999, 1} << Shown{1, 2, 3}
        << true;
}

void tst_LogPlayhead::plays()
{
    QFETCH(QString, times);
    QFETCH(int, speed);
    QFETCH(QVector<int>, turns);
    QFETCH(QVector<qint64>, shown);
    QFETCH(bool, isPlaying);

    const auto read = day(times);
    QVERIFY(read);
    LogPlayhead playhead;
    playhead.setDay(read.get());
    playhead.setSpeed(speed);
    QSignalSpy moved(&playhead, &LogPlayhead::moved);
    playhead.setPlaying(true);
    for (const int ms : turns)
        playhead.advance(ms);
    QCOMPARE(numbers(moved), shown);
    QCOMPARE(playhead.isPlaying(), isPlaying);
}

void tst_LogPlayhead::playsByItself()
{
    const auto read = day(QStringLiteral("09:30:00, 09:30:05, 09:30:06, 09:30:07"));
    QVERIFY(read);
    LogPlayhead playhead;
    playhead.setDay(read.get());
    playhead.setSpeed(LogPlayhead::MaxSpeed);
    QSignalSpy playing(&playhead, &LogPlayhead::playingChanged);
    playhead.setPlaying(true);
    QTRY_COMPARE(playhead.number(), read->count());
    QTRY_COMPARE(playing.count(), 2);
    playhead.advance(1000); // it has stopped
    QCOMPARE(playhead.number(), read->count());
}

void tst_LogPlayhead::playsFromTheBeginningAgain()
{
    const auto read = day(QStringLiteral("09:30:00, 09:30:01, 09:30:02"));
    QVERIFY(read);
    LogPlayhead playhead;
    playhead.setDay(read.get());
    playhead.showFrame(2);
    playhead.setPlaying(true);
    QCOMPARE(playhead.number(), qint64{2});
    playhead.setPlaying(false);
    playhead.showFrame(3);
    playhead.setPlaying(true);
    QCOMPARE(playhead.number(), qint64{1});
    playhead.setDay(nullptr);
    QVERIFY(!playhead.isPlaying());
    QCOMPARE(playhead.number(), qint64{0});
}

void tst_LogPlayhead::moves_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("by"); // "frames 1", "ms -300000", "to 500"
    QTest::addColumn<qint64>("number");

    QTest::newRow("a frame on") << 1 << "frames 1" << qint64{2};
    QTest::newRow("a frame back") << 2 << "frames -1" << qint64{1};
    QTest::newRow("not before the first") << 1 << "frames -1" << qint64{1};
    QTest::newRow("not behind the last") << 4 << "frames 3" << qint64{4};
    QTest::newRow("five minutes on") << 1 << "ms 300000" << qint64{3};
    QTest::newRow("five minutes back") << 3 << "ms -300000" << qint64{1};
    QTest::newRow("one frame at least") << 3 << "ms 1000" << qint64{4};
    QTest::newRow("one frame back at least") << 2 << "ms -1" << qint64{1};
    QTest::newRow("to a time") << 4 << "to 1999" << qint64{2};
}

void tst_LogPlayhead::moves()
{
    QFETCH(int, from);
    QFETCH(QString, by);
    QFETCH(qint64, number);

    const auto read = day(QStringLiteral("09:30:00, 09:30:01, 09:34:59, 11:00:00"));
    QVERIFY(read);
    LogPlayhead playhead;
    playhead.setDay(read.get());
    playhead.showFrame(from);
    const QString unit = by.section(QLatin1Char(' '), 0, 0);
    const int amount = by.section(QLatin1Char(' '), 1).toInt();
    if (unit == QLatin1String("frames"))
        playhead.step(amount);
    else if (unit == QLatin1String("ms"))
        playhead.moveBy(amount);
    else
        playhead.moveTo(amount);
    QCOMPARE(playhead.number(), number);
}

void tst_LogPlayhead::withoutFrames()
{
    LogText log;
    log.started(moment(QStringLiteral("09:00:00")));
    const auto read = readDay(m_directory.filePath(QStringLiteral("log.txt")), log.bytes());
    QVERIFY(read);
    for (const LogDay *const day : QVector<const LogDay *>{nullptr, read.get()}) {
        LogPlayhead playhead;
        QSignalSpy moved(&playhead, &LogPlayhead::moved);
        playhead.setDay(day);
        playhead.setPlaying(true);
        playhead.step(1);
        playhead.moveTo(5000);
        playhead.moveBy(5000);
        playhead.advance(1000);
        QVERIFY(!playhead.isPlaying());
        QCOMPARE(moved.count(), 0);
    }
}

QTEST_GUILESS_MAIN(tst_LogPlayhead)

#include "tst_logplayhead.moc"
