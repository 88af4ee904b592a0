#include "demo/desk/LogDay.h"
#include "tests/desk/LogText.h"
#include "tests/support/TimeZone.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Analysis;
using namespace Desk;
using namespace DeskTest;

namespace {

const QDate Day(2018, 2, 1);
constexpr int RestrictionMs = 5000;

QDateTime at(const QTime &time)
{
    return {Day, time};
}

QString woman()
{
    return frameText({{}});
}

QString boy()
{
    Person boy;
    boy.age = "8";
    boy.gender = "Male";
    return frameText({boy});
}

/// @p frames twice a second, by turns a woman and, in every third frame, a boy; with what the
/// plug-in logs of the requests.
QByteArray longLog(int frames)
{
    LogText log;
    Decider decider(shopPlan());
    for (int i = 0; i < frames; ++i) {
        const QDateTime time = at({9, 30}).addMSecs(i * 500);
        const QString text = i % 3 == 0 ? boy() : woman();
        log.frame(time, text);
        const DecidedFace face = decider.decide(text, time).faces.constFirst();
        if (face.outcome == DecidedFace::Restricted)
            log.restricted(time, face.sequence, RestrictionMs);
        log.determined(time, {face.sequence});
    }
    return log.bytes();
}

/// "37 09:30:18 #2 restricted"
QString described(const SeenFrame &frame)
{
    QString text = QStringLiteral("%1 %2").arg(
        QString::number(frame.number), frame.decision.time.toString(QStringLiteral("HH:mm:ss")));
    for (const DecidedFace &face : frame.decision.faces) {
        text += QStringLiteral(" #%1 %2").arg(QString::number(face.sequence),
            face.outcome == DecidedFace::Sent ? QStringLiteral("sent")
                                              : QStringLiteral("restricted"));
    }
    return text;
}

} // namespace

class tst_LogDay : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void objections_data();
    void objections();
    void times_data();
    void times();
    void clockOfTheZone_data();
    void clockOfTheZone();
    void frameAt_data();
    void frameAt();
    void frameAtTime_data();
    void frameAtTime();
    void frameAtMoment();
    void readsInPieces();
    void decidesAsInOneGo();
    void records();
    void damagedPlaces();
    void onlyRecords();
    void fileThatChanges_data();
    void fileThatChanges();
    void played();
    void strips();

private:
    QString write(const QByteArray &log) const;
    std::unique_ptr<LogDay> read(const QByteArray &log) const;

    QTemporaryDir m_directory;
};

void tst_LogDay::initTestCase()
{
    QVERIFY(m_directory.isValid());
}

QString tst_LogDay::write(const QByteArray &log) const
{
    const QString name = m_directory.filePath(QStringLiteral("log.txt"));
    return KrTest::writeFile(name, log) ? name : QString();
}

std::unique_ptr<LogDay> tst_LogDay::read(const QByteArray &log) const
{
    return readDay(m_directory.filePath(QStringLiteral("log.txt")), log);
}

void tst_LogDay::objections_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content"); // null: there is no file
    QTest::addColumn<QString>("objection"); // %1: the file

    const QString log = QStringLiteral("log.txt");
    QTest::newRow("a log") << log << logOf(QStringLiteral("09:30:00")) << QString();
    QTest::newRow("a log with foreign text before it")
        << log << "foreign\ntext\n" + logOf(QStringLiteral("09:30:00")) << QString();
    LogText start;
    start.started(at({9, 0}));
    QTest::newRow("a log without frames") << log << start.bytes() << QString();
    QTest::newRow("no file") << "none.txt" << QByteArray() << "%1: no such file";
    QTest::newRow("a directory") << "." << QByteArray() << "%1: is not a file";
    QTest::newRow("an empty file") << log << QByteArray("") << "%1: the log is empty";
    QTest::newRow("blank lines") << log << QByteArray("\n\r\n\n") << "%1: the log is empty";
    QTest::newRow("a foreign file")
        << log << QByteArray("\n\n{\"screens\": []}\n") << "%1:3: this is no record of the plug-in";
    QTest::newRow("a log that has no whole record")
        << log << logOf(QStringLiteral("09:30:00")).left(60) << "%1:1: the record is cut";
    QTest::newRow("a recording") << log << woman().toUtf8()
                                 << "%1: is a recording of the sensor program, not a log";
}

void tst_LogDay::objections()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, objection);

    const QString file = m_directory.filePath(name);
    if (!content.isNull())
        QVERIFY(KrTest::writeFile(file, content));
    const QString path = QFileInfo(file).absoluteFilePath();
    const QString expected = objection.isEmpty() ? QString() : objection.arg(path);
    QCOMPARE(LogDay::objection(file), expected);
    QString error;
    QCOMPARE(bool(LogDay::open(file, shopPlan(), &error)), objection.isEmpty());
    QCOMPARE(error, expected);
}

void tst_LogDay::times_data()
{
    QTest::addColumn<QString>("times");
    QTest::addColumn<QVector<qint64>>("passed");

    using Passed = QVector<qint64>;
    QTest::newRow("one frame") << "09:30:00" << Passed{0};
    QTest::newRow("one a second") << "09:30:00, 09:30:01, 09:30:03" << Passed{0, 1000, 3000};
    QTest::newRow("several a second")
        << "09:30:00, 09:30:00, 09:30:01, 09:30:01, 09:30:01, 09:30:01"
        << Passed{0, 500, 1000, 1250, 1500, 1750};
    QTest::newRow("over midnight") << "2018-02-01 23:59:59, 2018-02-02 00:00:00" << Passed{0, 1000};
    QTest::newRow("silent hours") << "09:30:00, 12:30:00" << Passed{0, 10800000};
    QTest::newRow("the clock is set back")
        << "09:30:00, 09:30:10, 08:30:00, 08:30:05" << Passed{0, 10000, 10500, 15000};
    QTest::newRow("the clock is set right by years")
        << "1970-01-01 00:00:10, 2018-02-01 09:30:00, 2018-02-01 09:30:02" << Passed{0, 1000, 3000};
}

void tst_LogDay::times()
{
    QFETCH(QString, times);
    QFETCH(QVector<qint64>, passed);

    const auto day = read(logOf(times));
    QVERIFY(day);
    QCOMPARE(day->count(), qint64{passed.size()});
    QCOMPARE(day->lengthMs(), passed.last());
    QVector<qint64> found;
    QStringList clock;
    for (qint64 number = 1; number <= day->count(); ++number) {
        found.append(day->passedMs(number));
        const bool hasDate = times.contains(QLatin1Char('-'));
        clock << day->time(number).toString(
            hasDate ? QStringLiteral("yyyy-MM-dd HH:mm:ss") : QStringLiteral("HH:mm:ss"));
    }
    QCOMPARE(found, passed);
    QCOMPARE(clock.join(QStringLiteral(", ")), times);
}

void tst_LogDay::clockOfTheZone_data()
{
    QTest::addColumn<QString>("times");
    QTest::addColumn<qint64>("passed");

#ifndef Q_OS_WIN // which knows no such rule
    QTest::newRow("an hour is left out")
        << "2018-03-25 01:59:59, 2018-03-25 03:00:00" << qint64{1000};
#endif
    QTest::newRow("a day") << "2018-02-01 01:59:59, 2018-02-01 03:00:00" << qint64{3601000};
}

void tst_LogDay::clockOfTheZone()
{
    QFETCH(QString, times);
    QFETCH(qint64, passed);

    const KrTest::TimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const auto day = read(logOf(times));
    QVERIFY(day);
    QCOMPARE(day->lengthMs(), passed);
    QCOMPARE(day->time(2).toString(QStringLiteral("HH:mm:ss")), QStringLiteral("03:00:00"));
}

void tst_LogDay::frameAt_data()
{
    QTest::addColumn<qint64>("passed");
    QTest::addColumn<qint64>("number");

    QTest::newRow("before all") << qint64{-1} << qint64{1};
    QTest::newRow("the first") << qint64{0} << qint64{1};
    QTest::newRow("between two") << qint64{999} << qint64{1};
    QTest::newRow("the second") << qint64{1000} << qint64{2};
    QTest::newRow("in a silence") << qint64{3600000} << qint64{2};
    QTest::newRow("the last") << qint64{7200000} << qint64{3};
    QTest::newRow("behind all") << qint64{7200001} << qint64{3};
}

void tst_LogDay::frameAt()
{
    QFETCH(qint64, passed);
    QFETCH(qint64, number);

    const auto day = read(logOf(QStringLiteral("09:30:00, 09:30:01, 11:30:00")));
    QVERIFY(day);
    QCOMPARE(day->frameAt(passed), number);
}

void tst_LogDay::frameAtTime_data()
{
    QTest::addColumn<QString>("times");
    QTest::addColumn<QTime>("wanted");
    QTest::addColumn<qint64>("number");

    const QString morning = QStringLiteral("09:30:00, 09:30:01, 11:30:00");
    QTest::newRow("before all") << morning << QTime(0, 0) << qint64{1};
    QTest::newRow("just then") << morning << QTime(9, 30, 1) << qint64{2};
    QTest::newRow("in a silence") << morning << QTime(10, 0) << qint64{3};
    QTest::newRow("behind all") << morning << QTime(12, 0) << qint64{3};
    const QString night
        = QStringLiteral("2018-02-01 23:00:00, 2018-02-02 00:10:00, 2018-02-02 00:20:00");
    QTest::newRow("behind midnight") << night << QTime(0, 20) << qint64{3};
    QTest::newRow("later than the next day goes") << night << QTime(4, 0) << qint64{1};
    QTest::newRow("set back") << "09:30:00, 09:30:10, 08:30:00, 08:30:05" << QTime(9, 30, 5)
                              << qint64{2};
}

void tst_LogDay::frameAtTime()
{
    QFETCH(QString, times);
    QFETCH(QTime, wanted);
    QFETCH(qint64, number);

    const auto day = read(logOf(times));
    QVERIFY(day);
    QCOMPARE(day->frameAtTime(wanted), number);
}

void tst_LogDay::frameAtMoment()
{
    const auto day = read(logOf(QStringLiteral("09:30:00, 09:30:10, 09:30:20")));
    QVERIFY(day);
    QCOMPARE(day->frameAtMoment(moment(QStringLiteral("09:30:14"))), qint64{2});
    QCOMPARE(day->frameAtMoment(moment(QStringLiteral("09:30:16"))), qint64{3});
}

void tst_LogDay::readsInPieces()
{
    QString error;
    const auto day = LogDay::open(write(longLog(1000)), shopPlan(), &error);
    QVERIFY2(day, qPrintable(error));
    QCOMPARE(day->count(), qint64{0});
    QVERIFY(day->read(500));
    QVERIFY(!day->isRead());
    const qint64 some = day->count();
    QVERIFY(some > 0 && some < 500);
    QVERIFY(day->frame(some, &error));
    QVERIFY(day->percentRead() < 100);
    while (day->read(500)) { }
    QCOMPARE(day->count(), qint64{1000});
    QCOMPARE(day->percentRead(), 100);
}

/// Whichever page is looked at first, and with what was started before it.
void tst_LogDay::decidesAsInOneGo()
{
    constexpr int Frames = 2 * LogDay::FramesOfPage + 40;
    const auto day = read(longLog(Frames));
    QVERIFY(day);
    QStringList expected;
    Decider decider(shopPlan());
    for (int i = 0; i < Frames; ++i) {
        const QDateTime time = at({9, 30}).addMSecs(i * 500);
        expected << described({i + 1, {}, decider.decide(i % 3 == 0 ? boy() : woman(), time)});
    }
    QString error;
    for (int turn = 0; turn < Frames; ++turn) {
        const int i = turn * 97 % Frames; // back and forth
        const auto frame = day->frame(i + 1, &error);
        QVERIFY2(frame, qPrintable(error));
        QCOMPARE(described(*frame), expected.at(i));
    }
}

void tst_LogDay::records()
{
    LogText log;
    log.started(at({9, 0}));
    for (int i = 0; i < LogDay::FramesOfPage; ++i)
        log.frame(at({9, 30, i / 2}), nobodyText());
    log.frame(at({9, 40}), woman());
    log.determined(at({9, 40}), {1});
    log.frame(at({9, 40, 1}), woman());
    log.restricted(at({9, 40, 1}), 1, RestrictionMs);
    log.determined(at({9, 40, 1}), {1});
    log.text("foreign\n");
    const auto day = read(log.bytes());
    QVERIFY(day);
    QString error;
    const auto first = day->page(1, &error);
    QVERIFY2(first, qPrintable(error));
    QCOMPARE(first->records.size(), 1);
    QCOMPARE(first->records.at(0).frame, qint64{0});
    QVERIFY(first->records.at(0).entry.kind == Entry::Started);
    const auto second = day->page(day->count(), &error);
    QVERIFY2(second, qPrintable(error));
    QCOMPARE(second->frames.first().number, qint64{LogDay::FramesOfPage + 1});
    QStringList records;
    for (const LogRecord &record : second->records) {
        records << QStringLiteral("%1 %2")
                       .arg(record.frame - LogDay::FramesOfPage)
                       .arg(int(record.entry.kind));
    }
    QCOMPARE(records.join(QStringLiteral(", ")),
        QStringLiteral("1 %1, 2 %2, 2 %1, 2 %3")
            .arg(int(Entry::Determined))
            .arg(int(Entry::Restricted))
            .arg(int(Entry::Unknown)));
}

void tst_LogDay::damagedPlaces()
{
    const QByteArray good = logOf(QStringLiteral("09:30:00"));
    const int lines = good.count('\n');
    QByteArray log;
    for (int i = 0; i < LogDay::NamedProblems + 3; ++i)
        log += good + "foreign\n";
    const auto day = read(log);
    QVERIFY(day);
    QCOMPARE(day->count(), qint64{LogDay::NamedProblems + 3});
    QCOMPARE(day->problemCount(), qint64{LogDay::NamedProblems + 3});
    QCOMPARE(day->problems().size(), LogDay::NamedProblems);
    QVERIFY(day->problems().first().startsWith(day->fileName() + QLatin1Char(':')));
    QVERIFY(day->problems().first().endsWith(
        QStringLiteral(":%1: this is no record of the plug-in").arg(lines + 1)));
}

void tst_LogDay::onlyRecords()
{
    LogText log;
    log.started(at({9, 0}));
    const auto day = read(log.bytes());
    QVERIFY(day);
    QCOMPARE(day->count(), qint64{0});
    QCOMPARE(day->lengthMs(), qint64{0});
    QCOMPARE(day->frameAt(0), qint64{0});
    QCOMPARE(day->frameAtTime({9, 0}), qint64{0});
    QCOMPARE(day->frameAtMoment(at({9, 0})), qint64{0});
    QVERIFY(!day->read(1));
}

void tst_LogDay::fileThatChanges_data()
{
    QTest::addColumn<QByteArray>("later");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("shorter") << longLog(100);
    QTest::newRow("another one") << QByteArray(longLog(400)).replace("09:3", "08:2");
    QTest::newRow("foreign") << QByteArray(500000, 'x');
}

void tst_LogDay::fileThatChanges()
{
    QFETCH(QByteArray, later);

    const auto day = read(longLog(400));
    QVERIFY(day);
    QVERIFY(!write(later).isEmpty());
    QString error;
    QVERIFY(!day->frame(300, &error));
    QCOMPARE(error, day->fileName() + QStringLiteral(": is not any more what was read"));
}

/// As the log has it, whatever the plan would have started.
void tst_LogDay::played()
{
    LogText log;
    log.frame(at({9, 30}), nobodyText());
    log.frame(at({9, 30, 1}), woman());
    log.determined(at({9, 30, 1}), {3});
    log.frame(at({9, 30, 2}), boy());
    log.restricted(at({9, 30, 2}), 2, RestrictionMs);
    log.determined(at({9, 30, 2}), {2});
    const auto day = read(log.bytes());
    QVERIFY(day);
    QCOMPARE(day->playing(1), 0);
    QCOMPARE(day->playing(2), 3);
    QCOMPARE(day->playing(3), 3);
}

void tst_LogDay::strips()
{
    constexpr int Frames = 1000; // eight minutes and a third
    const auto day = read(longLog(Frames));
    QVERIFY(day);
    const auto lastMoment = [&day](qint64 number) {
        const TimelineModel &model = day->timeline(number);
        const TimelineBucket &newest = model.bucket(TimelineModel::BucketCount - 1);
        return QDateTime::fromMSecsSinceEpoch(newest.momentMs).time();
    };
    QCOMPARE(lastMoment(1), QTime(9, 34, 57));
    QCOMPARE(lastMoment(600), QTime(9, 34, 57));
    QCOMPARE(lastMoment(601), QTime(9, 38, 18));
    QCOMPARE(lastMoment(Frames), QTime(9, 38, 18));
    QCOMPARE(day->timeline(1).mostViewers(), 1);
    QVERIFY(!day->timeline(1).played().isEmpty());
}

QTEST_GUILESS_MAIN(tst_LogDay)

#include "tst_logday.moc"
