#include "ControllerFixture.h"

#include <QProcess>
#include <QtTest>

#include <memory>

#ifdef Q_OS_UNIX
#include "tests/support/NoMoreFiles_unix.h"
#endif

using namespace KrTest;
using PluginKrHvcP2::KrHvcController;

namespace {

// The timers may be 5 % early; a busy machine makes them late.
constexpr int Restart = 5000 - 250;
constexpr int StaleRestart = 5100 - 250;
constexpr int Late = 3000;

} // namespace

/// What takes the controller's own delays of 5 s. Few tests on purpose.
class tst_KrHvcControllerTiming : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void restarts();
    void failedStartsRestartOnce_data();
    void failedStartsRestartOnce();
    void startDuringAStartIsNoRestart();
    void staleCopies();
    void severalStartsBesideACopy();
    void stopStartStart();
    void endOfAStoppedProgramStartsAnother();
    void nothingStartsAfterStop();
    void stopAndStart_data();
    void stopAndStart();
};

void tst_KrHvcControllerTiming::init()
{
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
}

void tst_KrHvcControllerTiming::restarts()
{
    // Missing at first, then crashing, then ending, then running.
    const SensorDirectory directory;
    const WatchedController watched(directory.path());
    watched->start();
    QStringList log{ErrorStart + QLatin1String("Failed to start.")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);

    QVERIFY(directory.install("say one\ncrash abort"));
    log << QStringLiteral("started") << QStringLiteral("data: one")
        << ErrorStart + QLatin1String("Crashed.");
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    qint64 delay = watched.times.at(1) - watched.times.at(0);
    QVERIFY2(delay >= Restart && delay <= Restart + Late, QByteArray::number(delay).constData());

    QVERIFY(directory.install("say two"));
    log << QStringLiteral("started") << QStringLiteral("data: two");
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    delay = watched.times.at(4) - watched.times.at(3);
    QVERIFY2(delay >= Restart && delay <= Restart + Late, QByteArray::number(delay).constData());

    QVERIFY(directory.install(StandIn::EndsOnKey));
    log << QStringLiteral("started") << QStringLiteral("data: ready");
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    delay = watched.times.at(6) - watched.times.at(5);
    QVERIFY2(delay >= Restart && delay <= Restart + Late, QByteArray::number(delay).constData());
    QCOMPARE(directory.livingCopies().size(), 1);
    QCOMPARE(watched->findChildren<QProcess *>().size(), 1);
}

void tst_KrHvcControllerTiming::failedStartsRestartOnce_data()
{
    QTest::addColumn<bool>("withoutFiles"); // no pipe to the program can be made
    QTest::addColumn<int>("starts"); // each fails
    QTest::addColumn<bool>("startInError"); // the receiver of the first one starts again

    QTest::newRow("no such program, started three times") << false << 3 << false;
#ifdef Q_OS_UNIX // there is no such limit elsewhere
    QTest::newRow("no more files") << true << 1 << false;
    QTest::newRow("no more files, started again during the start") << true << 1 << true;
#endif
}

void tst_KrHvcControllerTiming::failedStartsRestartOnce()
{
    QFETCH(const bool, withoutFiles);
    QFETCH(const int, starts);
    QFETCH(const bool, startInError);

    const SensorDirectory directory;
    const WatchedController watched(directory.path());
    const auto start = [&] {
#ifdef Q_OS_UNIX
        const auto limit = withoutFiles ? std::make_unique<NoMoreFiles>() : nullptr;
#else
        Q_UNUSED(withoutFiles)
#endif
        watched->start();
    };
    connect(watched.controller, &KrHvcController::errorOccured, watched.controller, [&] {
        if (startInError && watched.log.size() == 1)
            watched->start();
    });

    QStringList log;
    for (int i = 0; i < starts; ++i) {
        start();
        log << ErrorStart + QLatin1String("Failed to start.");
        QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
        QTest::qWait(300);
    }
    log << log.first();
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    const qint64 delay = watched.times.at(starts) - watched.times.at(starts - 1);
    QVERIFY2(delay >= Restart && delay <= Restart + Late, QByteArray::number(delay).constData());
    QTest::qWait(1500);
    QCOMPARE(watched.log, log);
}

void tst_KrHvcControllerTiming::startDuringAStartIsNoRestart()
{
    // Where Qt says so within the start that the program runs, this comes within the start, too.
    const SensorDirectory directory;
    QVERIFY(directory.install("sleep 3000"));
    const WatchedController watched(directory.path());
    connect(watched.controller, &KrHvcController::started, watched.controller,
        [&watched] { watched->start(); });
    watched->start();
    QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 2, Patience);
    const qint64 delay = watched.times.at(1) - watched.times.at(0);
    QVERIFY2(delay >= 3000 + Restart, QByteArray::number(delay).constData()); // after its end
}

void tst_KrHvcControllerTiming::staleCopies()
{
    // Two programs in odd letter case that somebody else has started.
    const SensorDirectory elsewhere(QString::fromUtf8("\u65e5\u672c"));
    const SensorDirectory elsewhereToo;
    const QString oddCase = QStringLiteral("hvccon.EXE");
    const QString upperCase = QStringLiteral("HVCCON.EXE");
    QVERIFY(elsewhere.install(StandIn::EndsOnKey, oddCase));
    QVERIFY(elsewhereToo.install(StandIn::IgnoresEverything, upperCase));
    QProcess first;
    QProcess second;
    first.start(elsewhere.filePath(oddCase), QStringList());
    second.start(elsewhereToo.filePath(upperCase), QStringList());
    QVERIFY(first.waitForReadyRead(Patience));
    QVERIFY(second.waitForReadyRead(Patience));

    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::EndsOnKey));
    const WatchedController watched(directory.path());
    watched->start();
    QVERIFY(watched->findChildren<QProcess *>().isEmpty()); // only the ending is scheduled

    QTRY_COMPARE_WITH_TIMEOUT(first.state(), QProcess::NotRunning, Patience);
    const qint64 ended = watched.elapsed();
    QVERIFY2(ended >= Restart, QByteArray::number(ended).constData());
    QTRY_COMPARE_WITH_TIMEOUT(second.state(), QProcess::NotRunning, Patience);
    for (const QProcess *copy : {&first, &second}) {
#ifdef Q_OS_WIN
        QCOMPARE(copy->exitCode(), -1);
#else
        QCOMPARE(copy->exitStatus(), QProcess::CrashExit);
#endif
    }

    const QStringList log{QStringLiteral("started"), QStringLiteral("data: ready")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    const qint64 started = watched.times.at(0);
    QVERIFY2(started >= StaleRestart, QByteArray::number(started).constData());
    QCOMPARE(directory.startedCopies().size(), 1);
    QCOMPARE(directory.livingCopies().size(), 1);
}

void tst_KrHvcControllerTiming::severalStartsBesideACopy()
{
    const SensorDirectory elsewhere;
    QVERIFY(elsewhere.install(StandIn::IgnoresEverything));
    QProcess copy;
    copy.start(elsewhere.filePath(QStringLiteral("HvcCon.exe")), QStringList());
    QVERIFY(copy.waitForReadyRead(Patience));

    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::EndsOnKey));
    const WatchedController watched(directory.path());
    for (int i = 0; i < 3; ++i) {
        watched->start();
        QTest::qWait(500);
    }
    const QStringList log{QStringLiteral("started"), QStringLiteral("data: ready")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    QVERIFY(watched.times.at(0) >= StaleRestart);
    QCOMPARE(copy.state(), QProcess::NotRunning);

    // Only the first start has led to a look for copies: none finds the program itself.
    QTest::qWait(2000);
    QCOMPARE(watched.log, log);
    QCOMPARE(directory.livingCopies().size(), 1);
}

void tst_KrHvcControllerTiming::stopStartStart()
{
    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::IgnoresEverything));
    const WatchedController watched(directory.path());
    watched->start();
    const QStringList running{QStringLiteral("started"), QStringLiteral("data: ready")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, running, Patience);

    // The second start finds the old program, the third does not: there is no copy left to end.
    watched->stop();
    watched->start();
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    watched->start();
    const QStringList log = running + QStringList(QStringLiteral("stopped")) + running;
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    QTest::qWait(5000 + 1000);
    QCOMPARE(watched.log, log);
    QCOMPARE(directory.livingCopies().size(), 1);
    QCOMPARE(directory.startedCopies().size(), 2);
}

void tst_KrHvcControllerTiming::endOfAStoppedProgramStartsAnother()
{
    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::EndsOnKey));
    WatchedController watched(directory.path());
    watched->start();
    const QStringList log{QStringLiteral("started"), QStringLiteral("data: ready")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    const SensorDirectory elsewhere;
    QVERIFY(elsewhere.install(StandIn::IgnoresEverything));
    QProcess copy;
    copy.start(elsewhere.filePath(QStringLiteral("HvcCon.exe")), QStringList());
    QVERIFY(copy.waitForReadyRead(Patience));

    watched->stop();
    const qint64 stopped = watched.elapsed();
    QTRY_VERIFY_WITH_TIMEOUT(directory.livingCopies().isEmpty(), Patience);
    watched.log.clear();
    watched.times.clear();

    // The start in between finds a copy, which then ends by itself.
    QTest::qWait(2500);
    watched->start();
    const qint64 refused = watched.elapsed();
    copy.kill();
    QVERIFY(copy.waitForFinished(Patience));
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    const qint64 started = watched.times.at(0);
    QVERIFY2(started - stopped >= Restart, QByteArray::number(started - stopped).constData());
    QVERIFY2(started - refused < Restart, QByteArray::number(started - refused).constData());

    // Nor does the look for copies, no longer needed, find the program itself.
    QTest::qWait(5000);
    QCOMPARE(watched.log, log);
    QCOMPARE(directory.livingCopies().size(), 1);
}

void tst_KrHvcControllerTiming::nothingStartsAfterStop()
{
    const QString started = QStringLiteral("started");
    const QString stopped = QStringLiteral("stopped");

    // Stopped while it ran.
    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::EndsOnKey));
    const WatchedController running(directory.path());
    running->start();
    QTRY_COMPARE_WITH_TIMEOUT(running.log.size(), 2, Patience);
    running->stop();
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);

    // Stopped between its end and the next try.
    QVERIFY(directory.install("exit 0"));
    const WatchedController ended(directory.path());
    ended->start();
    QTRY_COMPARE_WITH_TIMEOUT(ended.log.size(), 1, Patience);
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    QTRY_COMPARE_WITH_TIMEOUT(
        ended->findChild<QProcess *>()->state(), QProcess::NotRunning, Patience);
    ended->stop();

    // Stopped by the receiver of its error.
    const SensorDirectory empty;
    const WatchedController failed(empty.path());
    connect(failed.controller, &KrHvcController::errorOccured, failed.controller,
        [&failed] { failed->stop(); });
    failed->start();
    QTRY_COMPARE_WITH_TIMEOUT(failed.log.size(), 2, Patience);
    QVERIFY(empty.install(StandIn::EndsOnKey)); // a second try would work

    // Stopped while it waits for a copy to be ended.
    const SensorDirectory elsewhere;
    QVERIFY(elsewhere.install(StandIn::IgnoresEverything));
    QProcess copy;
    copy.start(elsewhere.filePath(QStringLiteral("HvcCon.exe")), QStringList());
    QVERIFY(copy.waitForReadyRead(Patience));
    const WatchedController waiting(directory.path());
    waiting->start();
    waiting->stop();

    // The copy is ended all the same; by then the other delays are over.
    QTRY_COMPARE_WITH_TIMEOUT(copy.state(), QProcess::NotRunning, Patience);
    QVERIFY(waiting.elapsed() >= Restart);
    QTest::qWait(1000);
    QCOMPARE(running.log, QStringList({started, QStringLiteral("data: ready"), stopped}));
    QCOMPARE(ended.log, QStringList({started, stopped}));
    QCOMPARE(failed.log, QStringList({ErrorStart + QLatin1String("Failed to start."), stopped}));
    QCOMPARE(waiting.log, QStringList()); // there was no process to stop
    QCOMPARE(directory.startedCopies().size(), 2);
    QCOMPARE(empty.startedCopies().size(), 0);
}

void tst_KrHvcControllerTiming::stopAndStart_data()
{
    QTest::addColumn<int>("when");

    QTest::newRow("start right after stop") << 0;
    QTest::newRow("start in the signal of stop") << 1;
#ifdef Q_OS_UNIX // elsewhere Qt does not tell of a key that nobody reads
    QTest::newRow("start by the error of the stop key") << 2;
#endif
}

void tst_KrHvcControllerTiming::stopAndStart()
{
    QFETCH(int, when);

    const SensorDirectory directory;
    QVERIFY(directory.install(when == 2 ? StandIn::ClosesItsInput : StandIn::IgnoresEverything));
    WatchedController watched(directory.path());
    watched->start();
    QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 2, Patience);

    QObject context;
    int starts = 0;
    const auto startOnce = [&] {
        if (++starts == 1)
            watched->start();
    };
    if (when == 1)
        connect(watched.controller, &KrHvcController::stopped, &context, startOnce);
    if (when == 2)
        connect(watched.controller, &KrHvcController::errorOccured, &context, startOnce);
    watched.log.clear();
    watched->stop();
    if (when == 0)
        startOnce();
    QCOMPARE(starts, 1);

    QStringList log{
        QStringLiteral("stopped"), QStringLiteral("started"), QStringLiteral("data: ready")};
    if (when == 2)
        log.prepend(ErrorStart + QLatin1String("Write error."));
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    QCOMPARE(directory.startedCopies().size(), 2);
    QCOMPARE(directory.livingCopies().size(), 1);
    QTRY_COMPARE(watched->findChildren<QProcess *>().size(), 1);
}

QTEST_GUILESS_MAIN(tst_KrHvcControllerTiming)

#include "tst_krhvccontrollertiming.moc"
