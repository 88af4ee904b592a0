#include "ControllerFixture.h"
#include "tests/support/OwnProcess.h"

#include <QMetaMethod>
#include <QtTest>

#include <functional>
#include <limits>
#include <memory>
#include <utility>

using namespace KrTest;
using PluginKrHvcP2::KrHvcController;

class tst_KrHvcController : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void metaMethods();
    void parameterNames();
    void defaults();
    void errorMessages_data();
    void errorMessages();
    void slotsWithoutProcess();

    void commandLine_data();
    void commandLine();
    void settingsTakeEffectAtTheNextStart();
    void nativeProgram();
    void directories_data();
    void directories();

    void output_data();
    void output();
    void chunkEndsInTheMiddleOfALine();
    void outputOfADeadProgram();
    void errorOutputIsDrained();
    void closedOutput();
    void grandchildKeepsThePipe();

    void failedStart_data();
    void failedStart();
    void failedStartsLeaveNothingOpen();
    void crash_data();
    void crash();
    void crashesLeaveNothingBehind();
    void normalEnd();
    void twoControllersTakeTurns();

    void stopWithoutProcess();
    void stopOfAProgram_data();
    void stopOfAProgram();
    void stopKey();
    void stopWhileStarting();
    void stopTwice();
    void stopAfterTheEnd();
    void stopInsideASignal_data();
    void stopInsideASignal();
    void outputUnreadAtStop();
    void errorOfTheStopKey_data();
    void errorOfTheStopKey();

    void startWhileRunning();
    void startWhileStarting();
    void startInsideStarted();

    void deletionInsideASignal_data();
    void deletionInsideASignal();
    void deletionWithAProgram_data();
    void deletionWithAProgram();
};

void tst_KrHvcController::init()
{
    // Any program of this name would be taken for a copy left over.
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
}

void tst_KrHvcController::metaMethods()
{
    const QMetaObject &meta = KrHvcController::staticMetaObject;
    QCOMPARE(meta.className(), "PluginKrHvcP2::KrHvcController");
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);

    QByteArrayList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        methods << (method.methodType() == QMetaMethod::Signal ? "signal " : "slot ")
                + method.methodSignature();
    }
    const QByteArrayList expected{
        "signal started()",
        "signal startingFailed(QString)",
        "signal errorOccured(QString)",
        "signal criticalErrorOccured(QString)",
        "signal stopped()",
        "signal dataReceived(QString)",
        "slot start()",
        "slot stop()",
        "slot onReadyReadStandardOutput()",
        "slot onReadyReadStandardError()",
        "slot onProcessFinished(int,QProcess::ExitStatus)",
        "slot onProcessErrorOccured(QProcess::ProcessError)",
        "slot onProcessStateChanged(QProcess::ProcessState)",
        "slot killAndStartProcess()",
        "slot startProcess()",
    };
    QCOMPARE(methods, expected);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void tst_KrHvcController::parameterNames()
{
    const QMetaObject &meta = KrHvcController::staticMetaObject;
    QByteArrayList names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const auto parameters = meta.method(i).parameterNames();
        for (const QByteArray &name : parameters)
            names << name;
    }
    QCOMPARE(names,
        QByteArrayList({"msg", "msg", "msg", "data", "result", "exitStatus", "error", "state"}));
}

void tst_KrHvcController::defaults()
{
    QObject parent;
    KrHvcController controller(QStringLiteral("/nowhere"), &parent);
    QCOMPARE(controller.parent(), &parent);
    QCOMPARE(controller.port(), 3);
    QCOMPARE(controller.speed(), 921600);
    controller.setPort(-12);
    controller.setSpeed(std::numeric_limits<int>::max());
    QCOMPARE(controller.port(), -12);
    QCOMPARE(controller.speed(), std::numeric_limits<int>::max());
    QVERIFY(controller.children().isEmpty()); // no process before start()
}

void tst_KrHvcController::errorMessages_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QStringList>("log");

    QTest::newRow("failed to start") << int(QProcess::FailedToStart)
                                     << QStringList{ErrorStart + QLatin1String("Failed to start.")};
    QTest::newRow("a crash without a process") << int(QProcess::Crashed) << QStringList();
    QTest::newRow("timed out") << int(QProcess::Timedout)
                               << QStringList{ErrorStart + QLatin1String("Timeout.")};
    QTest::newRow("read error") << int(QProcess::ReadError)
                                << QStringList{ErrorStart + QLatin1String("Read error.")};
    QTest::newRow("write error") << int(QProcess::WriteError)
                                 << QStringList{ErrorStart + QLatin1String("Write error.")};
    QTest::newRow("unknown error")
        << int(QProcess::UnknownError) << QStringList{ErrorStart + QLatin1String("Unknown error.")};
    QTest::newRow("an error that Qt does not name yet")
        << 7 << QStringList{ErrorStart + QLatin1String("Unknown error.")};
}

void tst_KrHvcController::errorMessages()
{
    QFETCH(int, error);
    QFETCH(QStringList, log);

    const WatchedController watched(QStringLiteral("/nowhere"));
    QVERIFY(QMetaObject::invokeMethod(watched.controller, "onProcessErrorOccured",
        Q_ARG(QProcess::ProcessError, static_cast<QProcess::ProcessError>(error))));
    QCOMPARE(watched.log, log);
}

void tst_KrHvcController::slotsWithoutProcess()
{
    const WatchedController watched(QStringLiteral("/nowhere"));
    QVERIFY(QMetaObject::invokeMethod(watched.controller, "onReadyReadStandardOutput"));
    QVERIFY(QMetaObject::invokeMethod(watched.controller, "onReadyReadStandardError"));
    QVERIFY(QMetaObject::invokeMethod(watched.controller, "onProcessFinished", Q_ARG(int, -1),
        Q_ARG(QProcess::ExitStatus, QProcess::CrashExit)));
    QVERIFY(QMetaObject::invokeMethod(watched.controller, "onProcessStateChanged",
        Q_ARG(QProcess::ProcessState, QProcess::Starting)));
    QCOMPARE(watched.log, QStringList());
}

void tst_KrHvcController::commandLine_data()
{
    QTest::addColumn<QVector<int>>("values"); // port, speed, interval; none: as constructed
    QTest::addColumn<QString>("arguments");

    const int least = std::numeric_limits<int>::min();
    const int most = std::numeric_limits<int>::max();
    QTest::newRow("the defaults") << QVector<int>() << QStringLiteral("<3><921600><500>");
    QTest::newRow("port, speed and interval")
        << QVector<int>{7, 115200, 1000} << QStringLiteral("<7><115200><1000>");
    QTest::newRow("zeros") << QVector<int>{0, 0, 0} << QStringLiteral("<0><0><0>");
    QTest::newRow("values that no sensor knows")
        << QVector<int>{-1, most, least} << QStringLiteral("<-1><2147483647><-2147483648>");
}

void tst_KrHvcController::commandLine()
{
    QFETCH(QVector<int>, values);
    QFETCH(QString, arguments);

    const SensorDirectory directory;
    QVERIFY(directory.install("arguments\nkey"));
    const WatchedController watched(directory.path());
    if (!values.isEmpty()) {
        watched->setPort(values.at(0));
        watched->setSpeed(values.at(1));
        watched->setInterval(values.at(2));
    }
    watched->start();
    const QStringList log{QStringLiteral("started"), QStringLiteral("data: ") + arguments};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
}

void tst_KrHvcController::settingsTakeEffectAtTheNextStart()
{
    const SensorDirectory directory;
    QVERIFY(directory.install("arguments\nkey"));
    const WatchedController watched(directory.path());
    watched->start();
    QStringList log{QStringLiteral("started"), QStringLiteral("data: <3><921600><500>")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);

    watched->setPort(4);
    watched->setSpeed(9600);
    watched->setInterval(250);
    watched->start(); // runs already
    QTest::qWait(50);
    QCOMPARE(watched.log, log);
    QCOMPARE(directory.startedCopies().size(), 1);

    watched->stop();
    QTRY_VERIFY_WITH_TIMEOUT(directory.livingCopies().isEmpty(), Patience);
    watched->start();
    log << QStringLiteral("stopped") << QStringLiteral("started")
        << QStringLiteral("data: <4><9600><250>");
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
}

void tst_KrHvcController::nativeProgram()
{
    const SensorDirectory directory;
    QVERIFY(QFile::copy(
        QStringLiteral(KRHVC_STANDIN_FILE), directory.filePath(QStringLiteral("HvcCon.exe"))));
    const WatchedController watched(directory.path());
    watched->start();
    QStringList log{QStringLiteral("started"), QStringLiteral("data: native 3 921600 500\n")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    watched->stop();
    log << QStringLiteral("stopped");
    QCOMPARE(watched.log, log);
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
}

void tst_KrHvcController::directories_data()
{
    QTest::addColumn<QString>("subdirectory");
    QTest::addColumn<QString>("ending");

    QTest::newRow("a plain directory") << QStringLiteral("plugins") << QString();
    QTest::newRow("a slash at its end") << QStringLiteral("plugins") << QStringLiteral("/");
    QTest::newRow("blanks and quotes") << QStringLiteral("my 'plug' ins") << QString();
#ifdef Q_OS_UNIX // no file of Windows has one
    QTest::newRow("double quotes") << QStringLiteral("my \"plug\" ins") << QString();
#endif
    QTest::newRow("letters of another script") << QString::fromUtf8("\u65e5\u672c") << QString();
    QTest::newRow("a way through its parent") << QStringLiteral("a") << QStringLiteral("/../a");
}

void tst_KrHvcController::directories()
{
    QFETCH(QString, subdirectory);
    QFETCH(QString, ending);

    const SensorDirectory directory(subdirectory);
    QVERIFY(directory.install(StandIn::EndsOnKey));
    const WatchedController watched(directory.path() + ending);
    watched->start();
    const QStringList log{QStringLiteral("started"), QStringLiteral("data: ready")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
}

void tst_KrHvcController::output_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");

    QTest::newRow("a whole frame") << QByteArray("Index:0\nFace : 560 , 300, 180, 700\n\n")
                                   << QStringLiteral("Index:0\nFace : 560 , 300, 180, 700\n\n");
    QTest::newRow("half a line") << QByteArray("Index:0\nAge:3")
                                 << QStringLiteral("Index:0\nAge:3");
    QTest::newRow("line ends of Windows are kept")
        << QByteArray("a\r\nb\r\n") << QStringLiteral("a\r\nb\r\n");
    QTest::newRow("blanks are kept") << QByteArray("  a \t\n ") << QStringLiteral("  a \t\n ");
    QTest::newRow("letters of more than one byte")
        << QByteArray("\xe5\xb9\xb4 \xf0\x9f\x98\x80") << QString::fromUtf8("\u5e74 \U0001f600");
    QTest::newRow("each byte of half a letter")
        << QByteArray("a\xe5\xb9") << QStringLiteral("a\ufffd\ufffd");
    QTest::newRow("bytes that are no text") << QByteArray("a\xff"
                                                          "b")
                                            << QStringLiteral("a\ufffdb");
    QTest::newRow("a byte order mark at the front goes") << QByteArray("\xef\xbb\xbf"
                                                                       "a\xef\xbb\xbf"
                                                                       "b")
                                                         << QStringLiteral("a\ufeffb");
    QTest::newRow("each byte of a letter that is too long") << QByteArray("a\xc0\xaf"
                                                                          "b")
                                                            << QStringLiteral("a\ufffd\ufffdb");
    QTest::newRow("each byte of half a pair") << QByteArray("a\xed\xa0\x80"
                                                            "b")
                                              << QStringLiteral("a\ufffd\ufffd\ufffdb");
    QTest::newRow("the text behind a NUL is kept")
        << QByteArray("ab\0cd", 5) << QString::fromUtf8("ab\0cd", 5);
    QTest::newRow("place markers stay") << QByteArray("%1 %2 %%") << QStringLiteral("%1 %2 %%");
}

void tst_KrHvcController::output()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);

    const SensorDirectory directory;
    QVERIFY(directory.write(QStringLiteral("output"), bytes));
    QVERIFY(directory.install("copy output\nkey"));
    const WatchedController watched(directory.path());
    watched->start();
    const QStringList log{QStringLiteral("started"), QStringLiteral("data: ") + text};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
}

void tst_KrHvcController::chunkEndsInTheMiddleOfALine()
{
    const SensorDirectory directory;
    QVERIFY(directory.write(QStringLiteral("first"), "Index:0\nFace : 56"));
    QVERIFY(directory.write(QStringLiteral("second"), "0 , 300\n"));
    QVERIFY(directory.install("copy first\nwait go\ncopy second\nkey"));
    const WatchedController watched(directory.path());
    watched->start();
    QStringList log{QStringLiteral("started"), QStringLiteral("data: Index:0\nFace : 56")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    QVERIFY(directory.write(QStringLiteral("go")));
    log << QStringLiteral("data: 0 , 300\n"); // the halves are not joined
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
}

void tst_KrHvcController::outputOfADeadProgram()
{
    QByteArray bytes;
    while (bytes.size() < 100000)
        bytes += "line " + QByteArray::number(bytes.size()) + '\n';
    const SensorDirectory directory;
    QVERIFY(directory.write(QStringLiteral("output"), bytes));
    QVERIFY(directory.install("copy output\ncrash memory"));
    const WatchedController watched(directory.path());
    watched->start();
    const QString crashed = ErrorStart + QLatin1String("Crashed.");
    QTRY_VERIFY_WITH_TIMEOUT(watched.log.contains(crashed), Patience);

    // Everything that was said has arrived before.
    QCOMPARE(watched.log.first(), QStringLiteral("started"));
    QCOMPARE(watched.log.last(), crashed);
    QString text;
    for (int i = 1; i < watched.log.size() - 1; ++i) {
        QVERIFY(watched.log.at(i).startsWith(QLatin1String("data: ")));
        text += watched.log.at(i).mid(6);
    }
    QCOMPARE(text, QString::fromLatin1(bytes));
}

void tst_KrHvcController::errorOutputIsDrained()
{
    // More than a pipe holds, so the program would hang if nobody read it.
    const SensorDirectory directory;
    QVERIFY(directory.write(QStringLiteral("output"), QByteArray(1000000, 'x')));
    QVERIFY(directory.install("copy-error output\ntouch done\nkey"));
    const WatchedController watched(directory.path());
    watched->start();
    QTRY_VERIFY_WITH_TIMEOUT(directory.exists(QStringLiteral("done")), Patience);
    QCOMPARE(watched.log, QStringList{QStringLiteral("started")});
}

void tst_KrHvcController::closedOutput()
{
    const SensorDirectory directory;
    QVERIFY(directory.install("say ready\nclose 1\ntouch done\nkey"));
    const WatchedController watched(directory.path());
    watched->start();
    const QStringList log{QStringLiteral("started"), QStringLiteral("data: ready")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    QTRY_VERIFY_WITH_TIMEOUT(directory.exists(QStringLiteral("done")), Patience);

    const double before = processorSeconds();
    QTest::qWait(400);
    const double seconds = processorSeconds() - before;
    QVERIFY2(seconds < 0.2, "the event loop spins"); // of 0.4 s
    QCOMPARE(watched.log, log);
    QCOMPARE(directory.livingCopies().size(), 1);
}

void tst_KrHvcController::grandchildKeepsThePipe()
{
    const SensorDirectory directory;
    const QString grandchild = QStringLiteral("grandchild.exe");
    QVERIFY(directory.install("wait end", grandchild));
    QVERIFY(directory.install("spawn grandchild.exe\nsay ready\nexit 0"));
    const WatchedController watched(directory.path());
    watched->start();
    const QStringList log{QStringLiteral("started"), QStringLiteral("data: ready")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    const auto *process = watched->findChild<QProcess *>();
    QVERIFY(process != nullptr);
    QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::NotRunning, 4000);

    // The next start is not held up either.
    QVERIFY(QMetaObject::invokeMethod(watched.controller, "startProcess"));
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log + log, Patience);

    // A program that runs cannot be removed everywhere.
    QVERIFY(directory.write(QStringLiteral("end")));
    const auto isRemoved = [&] {
        QFile::remove(directory.filePath(grandchild));
        return !directory.exists(grandchild);
    };
    QTRY_VERIFY_WITH_TIMEOUT(isRemoved(), Patience);
}

void tst_KrHvcController::failedStart_data()
{
    QTest::addColumn<QString>("kind");

    QTest::newRow("no such program") << QStringLiteral("missing");
    QTest::newRow("no such directory") << QStringLiteral("no directory");
    QTest::newRow("a directory of that name") << QStringLiteral("directory");
    QTest::newRow("an empty file") << QStringLiteral("empty");
    QTest::newRow("ten bytes of a program") << QStringLiteral("cut");
#ifdef Q_OS_UNIX // files that may not be run, scripts and links
    QTest::newRow("not executable") << QStringLiteral("not executable");
    QTest::newRow("a script without its interpreter") << QStringLiteral("no interpreter");
    QTest::newRow("a link to nothing") << QStringLiteral("dangling link");
#endif
}

void tst_KrHvcController::failedStart()
{
    QFETCH(QString, kind);

    const SensorDirectory directory;
    const QString name = QStringLiteral("HvcCon.exe");
    const QString program = directory.filePath(name);
    const QFile::Permissions executable = QFile::ReadOwner | QFile::ExeOwner;
    if (kind == QLatin1String("not executable")) {
        QVERIFY(directory.install(StandIn::EndsOnKey));
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner));
    } else if (kind == QLatin1String("directory")) {
        QVERIFY(QDir().mkpath(program));
    } else if (kind == QLatin1String("empty")) {
        QVERIFY(directory.write(name) && QFile::setPermissions(program, executable));
    } else if (kind == QLatin1String("cut")) {
        QVERIFY(directory.write(name, readFile(QStringLiteral(KRHVC_STANDIN_FILE)).left(10)));
        QVERIFY(QFile::setPermissions(program, executable));
    } else if (kind == QLatin1String("no interpreter")) {
        QVERIFY(
            directory.write(name, "#!/nowhere/sh\n") && QFile::setPermissions(program, executable));
    } else if (kind == QLatin1String("dangling link")) {
        QVERIFY(QFile::link(directory.filePath(QStringLiteral("nothing")), program));
    }

    const WatchedController watched(kind == QLatin1String("no directory")
            ? directory.filePath(QStringLiteral("nowhere"))
            : directory.path());
    watched->start();
    const QStringList log{ErrorStart + QLatin1String("Failed to start.")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    QTest::qWait(50);
    QCOMPARE(watched.log, log); // said once
    QVERIFY(directory.startedCopies().isEmpty());

    watched->stop();
    QCOMPARE(watched.log, log + QStringList{QStringLiteral("stopped")});
}

void tst_KrHvcController::failedStartsLeaveNothingOpen()
{
    const SensorDirectory directory;
    const WatchedController watched(directory.path());
    const auto tryAgain = [&watched](int count) {
        QVERIFY(QMetaObject::invokeMethod(watched.controller, "startProcess"));
        QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), count, Patience);
    };
    tryAgain(1);
    const int before = openHandles();
    for (int count = 2; count <= 50; ++count)
        tryAgain(count);
    QCOMPARE(openHandles(), before);
    QCOMPARE(watched->findChildren<QProcess *>().size(), 1);
}

void tst_KrHvcController::crash_data()
{
    QTest::addColumn<QByteArray>("kind");

    QTest::newRow("aborts") << QByteArray("abort");
    QTest::newRow("touches foreign memory") << QByteArray("memory");
    QTest::newRow("is interrupted at the console") << QByteArray("interrupt");
#ifdef Q_OS_UNIX // elsewhere who ends it chooses an exit code, often that of a normal end
    QTest::newRow("is ended from outside") << QByteArray("kill");
    QTest::newRow("is asked to end from outside") << QByteArray("terminate");
#endif
}

void tst_KrHvcController::crash()
{
    QFETCH(QByteArray, kind);

    const SensorDirectory directory;
    QVERIFY(directory.install("crash " + kind));
    const WatchedController watched(directory.path());
    watched->start();
    const QStringList log{QStringLiteral("started"), ErrorStart + QLatin1String("Crashed.")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    QTest::qWait(50);
    QCOMPARE(watched.log, log); // said once, by one of the two error signals
}

void tst_KrHvcController::crashesLeaveNothingBehind()
{
    constexpr int Crashes = 100;
    const SensorDirectory directory;
    QVERIFY(directory.install("crash abort"));
    const WatchedController watched(directory.path());
    int handles = 0;
    for (int count = 1; count <= Crashes; ++count) {
        QVERIFY(QMetaObject::invokeMethod(watched.controller, "startProcess"));
        QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 2 * count, Patience);
        QCOMPARE(watched.log.last(), ErrorStart + QLatin1String("Crashed."));
        QTRY_COMPARE_WITH_TIMEOUT(
            watched->findChild<QProcess *>()->state(), QProcess::NotRunning, Patience);
        if (count == 1)
            handles = openHandles();
    }
    QCOMPARE(openHandles(), handles);
    QCOMPARE(directory.startedCopies().size(), Crashes);
    QCOMPARE(watched->findChildren<QProcess *>().size(), 1);
    QCOMPARE(sensorProcessCount(), 0);
}

void tst_KrHvcController::normalEnd()
{
    // Not an error, whatever it returns.
    QByteArrayList statuses{"0", "1", "255"};
#ifdef Q_OS_WIN
    statuses << "-1"; // as if it had been ended as a copy left over
#endif
    for (const QByteArray &status : qAsConst(statuses)) {
        const SensorDirectory directory;
        QVERIFY(directory.install("exit " + status));
        const WatchedController watched(directory.path());
        watched->start();
        QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 1, Patience);
        const auto *process = watched->findChild<QProcess *>();
        QVERIFY(process != nullptr);
        QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::NotRunning, Patience);
        QCOMPARE(process->exitCode(), status.toInt());
        QCOMPARE(watched.log, QStringList{QStringLiteral("started")});
    }
}

void tst_KrHvcController::twoControllersTakeTurns()
{
    // As two hosts on one machine do.
    const SensorDirectory directory;
    const SensorDirectory directoryToo;
    for (const SensorDirectory *one : {&directory, &directoryToo})
        QVERIFY(one->install(StandIn::IgnoresEverything));
    const WatchedController first(directory.path());
    const WatchedController second(directoryToo.path());
    const QStringList running{QStringLiteral("started"), QStringLiteral("data: ready")};
    first->start();
    QTRY_COMPARE_WITH_TIMEOUT(first.log, running, Patience);

#ifdef Q_OS_WIN
    const QStringList ended; // its exit code says that it was ended on purpose
#else
    const QStringList ended{ErrorStart + QLatin1String("Crashed.")};
#endif
    QStringList expectedOfFirst = running;
    QStringList expectedOfSecond;
    for (int turn = 0; turn < 4; ++turn) {
        const bool isSeconds = turn % 2 == 0;
        const WatchedController &taker = isSeconds ? second : first;
        const WatchedController &loser = isSeconds ? first : second;
        (isSeconds ? expectedOfFirst : expectedOfSecond) << ended;
        (isSeconds ? expectedOfSecond : expectedOfFirst) << running;

        // Only the ending is scheduled.
        QVERIFY(QMetaObject::invokeMethod(taker.controller, "startProcess"));
        QVERIFY(taker->findChildren<QProcess *>().isEmpty());
        QTest::qWait(50);
        QCOMPARE(loser->findChild<QProcess *>()->state(), QProcess::Running);

        // 5 s later.
        QVERIFY(QMetaObject::invokeMethod(taker.controller, "killAndStartProcess"));
        QTRY_COMPARE_WITH_TIMEOUT(first.log, expectedOfFirst, Patience);
        QTRY_COMPARE_WITH_TIMEOUT(second.log, expectedOfSecond, Patience);
        QCOMPARE(directory.livingCopies().size() + directoryToo.livingCopies().size(), 1);
    }
}

void tst_KrHvcController::stopWithoutProcess()
{
    const WatchedController watched(QStringLiteral("/nowhere"));
    QElapsedTimer clock;
    clock.start();
    watched->stop();
    watched->stop();
    QVERIFY(clock.elapsed() < 500);
    QCoreApplication::processEvents();
    QCOMPARE(watched.log, QStringList());
}

void tst_KrHvcController::stopOfAProgram_data()
{
    QTest::addColumn<QByteArray>("commands");
    QTest::addColumn<QStringList>("log"); // of stop()

    const QStringList stopped{QStringLiteral("stopped")};
    QTest::newRow("that ends on the key") << StandIn::EndsOnKey << stopped;
    QTest::newRow("that needs its time after the key")
        << QByteArray(StandIn::EndsOnKey + "\nsleep 10000") << stopped;
    QTest::newRow("that never reads the key") << StandIn::NeverReads << stopped;
    QTest::newRow("that ignores the key and polite signals")
        << StandIn::IgnoresEverything << stopped;
    QTest::newRow("that is suspended") << StandIn::IsSuspended << stopped;
    QTest::newRow("that has closed its output")
        << QByteArray("say ready\nclose 1\nclose 2\nkey") << stopped;
#ifdef Q_OS_UNIX
    const QStringList failed = QStringList(ErrorStart + QLatin1String("Write error.")) + stopped;
#else
    const QStringList failed = stopped; // Qt does not tell
#endif
    QTest::newRow("that has closed its input") << StandIn::ClosesItsInput << failed;
}

void tst_KrHvcController::stopOfAProgram()
{
    QFETCH(QByteArray, commands);
    QFETCH(QStringList, log);

    const SensorDirectory directory;
    QVERIFY(directory.install(commands));
    const WatchedController watched(directory.path());
    watched->start();
    const QStringList running{QStringLiteral("started"), QStringLiteral("data: ready")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, running, Patience);
    QCOMPARE(directory.livingCopies().size(), 1);

    QElapsedTimer clock;
    clock.start();
    watched->stop();
    QVERIFY(clock.elapsed() < 1500); // the key may take 1 s
    QCOMPARE(watched.log, running + log);

    QTRY_VERIFY_WITH_TIMEOUT(directory.livingCopies().isEmpty(), 1500);
    QTRY_VERIFY(watched->findChildren<QProcess *>().isEmpty());
    QCOMPARE(watched.log, running + log); // its forced end is not reported as a crash
    QCOMPARE(directory.startedCopies().size(), 1);
}

void tst_KrHvcController::stopKey()
{
    const SensorDirectory directory;
    QVERIFY(directory.install("say ready\nnote-input key"));
    const WatchedController watched(directory.path());
    watched->start();
    QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 2, Patience);
    watched->stop();
    // Without the event loop, in which the program is ended.
    const QString key = QStringLiteral("key");
    QVERIFY(waitWithoutEvents([&] { return !directory.read(key).isEmpty(); }));
    QTRY_VERIFY_WITH_TIMEOUT(directory.livingCopies().isEmpty(), Patience);
    QCOMPARE(directory.read(key), QByteArray(" "));
}

void tst_KrHvcController::stopWhileStarting()
{
    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::IgnoresEverything));
    const WatchedController watched(directory.path());
    watched->start();
    watched->stop();
    QCOMPARE(watched.log.count(QStringLiteral("stopped")), 1);
    QTRY_VERIFY(watched->findChildren<QProcess *>().isEmpty());
    QVERIFY(directory.livingCopies().isEmpty());
    QCOMPARE(watched.log.count(QStringLiteral("stopped")), 1);
    QVERIFY(watched.log.filter(QStringLiteral("error")).isEmpty());
}

void tst_KrHvcController::stopTwice()
{
    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::EndsOnKey));
    const WatchedController watched(directory.path());
    watched->start();
    QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 2, Patience);
    watched->stop();
    watched->stop();
    QTRY_VERIFY_WITH_TIMEOUT(directory.livingCopies().isEmpty(), Patience);
    watched->stop();
    QCOMPARE(watched.log,
        QStringList(
            {QStringLiteral("started"), QStringLiteral("data: ready"), QStringLiteral("stopped")}));
}

void tst_KrHvcController::stopAfterTheEnd()
{
    // The ended process still exists, so its end is announced.
    const SensorDirectory directory;
    QVERIFY(directory.install("exit 0"));
    const WatchedController watched(directory.path());
    watched->start();
    QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 1, Patience);
    const auto *process = watched->findChild<QProcess *>();
    QVERIFY(process != nullptr);
    QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::NotRunning, Patience);
    watched->stop();
    QCOMPARE(watched.log, QStringList({QStringLiteral("started"), QStringLiteral("stopped")}));
}

/// Runs @p action once, inside the signal of @p controller.
static void onSignal(
    KrHvcController *controller, const QString &signal, const std::function<void()> &action)
{
    const auto once = [action, done = std::make_shared<bool>(false)] {
        if (!std::exchange(*done, true))
            action();
    };
    if (signal == QLatin1String("started"))
        QObject::connect(controller, &KrHvcController::started, controller, once);
    else if (signal == QLatin1String("dataReceived"))
        QObject::connect(controller, &KrHvcController::dataReceived, controller, once);
    else if (signal == QLatin1String("errorOccured"))
        QObject::connect(controller, &KrHvcController::errorOccured, controller, once);
    else
        QObject::connect(controller, &KrHvcController::stopped, controller, once);
}

void tst_KrHvcController::stopInsideASignal_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QByteArray>("commands"); // empty: there is no program
    QTest::addColumn<QStringList>("log");

    const QString started = QStringLiteral("started");
    const QString ready = QStringLiteral("data: ready");
    const QString stopped = QStringLiteral("stopped");
    QTest::newRow("started") << started << StandIn::IgnoresEverything
                             << QStringList{started, stopped};
    QTest::newRow("dataReceived") << QStringLiteral("dataReceived") << StandIn::IgnoresEverything
                                  << QStringList{ready, stopped};
    QTest::newRow("errorOccured of a failed start")
        << QStringLiteral("errorOccured") << QByteArray()
        << QStringList{ErrorStart + QLatin1String("Failed to start."), stopped};
    QTest::newRow("errorOccured of a crash")
        << QStringLiteral("errorOccured") << QByteArray("crash abort")
        << QStringList{started, ErrorStart + QLatin1String("Crashed."), stopped};
    QTest::newRow("stopped") << stopped << StandIn::EndsOnKey
                             << QStringList{started, ready, stopped};
}

void tst_KrHvcController::stopInsideASignal()
{
    QFETCH(QString, signal);
    QFETCH(QByteArray, commands);
    QFETCH(QStringList, log);

    const SensorDirectory directory;
    if (!commands.isEmpty())
        QVERIFY(directory.install(commands));
    const WatchedController watched(directory.path());
    onSignal(watched.controller, signal, [&watched] { watched->stop(); });
    watched->start();
    if (signal == QLatin1String("stopped")) {
        QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 2, Patience);
        watched->stop();
    }
    QTRY_VERIFY_WITH_TIMEOUT(watched.log.contains(QStringLiteral("stopped")), Patience);
    QTRY_VERIFY_WITH_TIMEOUT(directory.livingCopies().isEmpty(), Patience);
    QTRY_VERIFY(watched->findChildren<QProcess *>().isEmpty());
    // Either of the two may come first.
    if (signal == QLatin1String("started"))
        QCOMPARE(without(watched.log, QStringLiteral("data")), log);
    else if (signal == QLatin1String("dataReceived"))
        QCOMPARE(without(watched.log, QStringLiteral("started")), log);
    else // the key of a crashed program may fail in addition
        QCOMPARE(without(watched.log, ErrorStart + QLatin1String("Write error.")), log);
}

void tst_KrHvcController::outputUnreadAtStop()
{
    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::SaysMoreLater));
    WatchedController watched(directory.path());
    watched->start();
    QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 2, Patience);
    watched.log.clear();
    QVERIFY(directory.write(QStringLiteral("go")));
    QVERIFY(waitWithoutEvents([&] { return directory.exists(QStringLiteral("done")); }));

    watched->stop();
    // Whether the wait for the key delivers it is the system's affair; afterwards nothing comes.
    const QStringList log = watched.log;
    QCOMPARE(without(log, QStringLiteral("data: more")), QStringList{QStringLiteral("stopped")});
    QCOMPARE(log.last(), QStringLiteral("stopped"));
    QTRY_VERIFY_WITH_TIMEOUT(directory.livingCopies().isEmpty(), Patience);
    QCOMPARE(watched.log, log);
}

void tst_KrHvcController::errorOfTheStopKey_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QStringList>("log"); // of stop()

    const QString error = ErrorStart + QLatin1String("Write error.");
    const QString stopped = QStringLiteral("stopped");
    QTest::newRow("its receiver stops again")
        << QStringLiteral("stop") << QStringList{error, stopped};
    QTest::newRow("its receiver deletes the controller")
        << QStringLiteral("delete") << QStringList{error};
}

void tst_KrHvcController::errorOfTheStopKey()
{
    QFETCH(QString, action);
    QFETCH(QStringList, log);
#ifndef Q_OS_UNIX
    QSKIP("Qt does not tell of a key that nobody reads.");
#endif

    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::ClosesItsInput));
    WatchedController watched(directory.path());
    watched->start();
    QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 2, Patience);
    watched.log.clear();
    const bool deletes = action == QLatin1String("delete");
    onSignal(watched.controller, QStringLiteral("errorOccured"), [&] {
        if (deletes)
            delete watched.controller;
        else
            watched->stop();
    });
    watched->stop();
    // A second key fails like the first.
    watched.log.removeDuplicates();
    QCOMPARE(watched.log, log);
    QCOMPARE(watched.controller.isNull(), deletes);
    QTRY_VERIFY_WITH_TIMEOUT(directory.livingCopies().isEmpty(), Patience);
    QCOMPARE(watched.log, log);
}

void tst_KrHvcController::startWhileRunning()
{
    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::EndsOnKey));
    const WatchedController watched(directory.path());
    watched->start();
    const QStringList log{QStringLiteral("started"), QStringLiteral("data: ready")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);

    const auto *process = watched->findChild<QProcess *>();
    watched->start();
    QVERIFY(QMetaObject::invokeMethod(watched.controller, "startProcess"));
    QTest::qWait(100);
    QCOMPARE(watched.log, log);
    QCOMPARE(directory.startedCopies().size(), 1);
    QCOMPARE(directory.livingCopies().size(), 1);
    QCOMPARE(watched->findChildren<QProcess *>().size(), 1);
    QCOMPARE(watched->findChild<QProcess *>(), process);
}

void tst_KrHvcController::startWhileStarting()
{
    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::IgnoresEverything));
    const WatchedController watched(directory.path());
    watched->start();
    watched->start();
    watched->start();
    QTRY_VERIFY_WITH_TIMEOUT(watched.log.contains(QStringLiteral("data: ready")), Patience);
    QCOMPARE(watched.log.last(), QStringLiteral("data: ready"));
    QCOMPARE(directory.livingCopies().size(), 1);
    QTRY_COMPARE(watched->findChildren<QProcess *>().size(), 1);
    QVERIFY(watched.log.filter(QStringLiteral("error")).isEmpty());
    QVERIFY(!watched.log.contains(QStringLiteral("stopped")));
}

void tst_KrHvcController::startInsideStarted()
{
    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::EndsOnKey));
    const WatchedController watched(directory.path());
    onSignal(watched.controller, QStringLiteral("started"), [&watched] { watched->start(); });
    watched->start();
    const QStringList log{QStringLiteral("started"), QStringLiteral("data: ready")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    QCOMPARE(directory.startedCopies().size(), 1);
    QCOMPARE(watched->findChildren<QProcess *>().size(), 1);
}

void tst_KrHvcController::deletionInsideASignal_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QByteArray>("commands"); // empty: there is no program

    QTest::newRow("started") << QStringLiteral("started") << StandIn::IgnoresEverything;
    QTest::newRow("dataReceived") << QStringLiteral("dataReceived") << StandIn::IgnoresEverything;
    QTest::newRow("errorOccured of a failed start")
        << QStringLiteral("errorOccured") << QByteArray();
    QTest::newRow("errorOccured of a crash")
        << QStringLiteral("errorOccured") << QByteArray("crash abort");
    QTest::newRow("stopped") << QStringLiteral("stopped") << StandIn::IgnoresEverything;
}

void tst_KrHvcController::deletionInsideASignal()
{
    QFETCH(QString, signal);
    QFETCH(QByteArray, commands);

    const SensorDirectory directory;
    if (!commands.isEmpty())
        QVERIFY(directory.install(commands));
    WatchedController watched(directory.path());
    onSignal(watched.controller, signal, [&watched] { delete watched.controller; });
    watched->start();
    if (signal == QLatin1String("stopped")) {
        QTRY_COMPARE_WITH_TIMEOUT(watched.log.size(), 2, Patience);
        watched->stop();
    }
    QTRY_VERIFY_WITH_TIMEOUT(watched.controller.isNull(), Patience);
    const QStringList log = watched.log;
    QTRY_VERIFY_WITH_TIMEOUT(directory.livingCopies().isEmpty(), Patience);
    QTest::qWait(20);
    QCOMPARE(watched.log, log);
}

void tst_KrHvcController::deletionWithAProgram_data()
{
    QTest::addColumn<QByteArray>("commands");

    QTest::newRow("that ignores everything") << StandIn::IgnoresEverything;
    QTest::newRow("that is suspended") << StandIn::IsSuspended;
    QTest::newRow("that floods its output") << QByteArray("say ready\nflood");
}

void tst_KrHvcController::deletionWithAProgram()
{
    QFETCH(QByteArray, commands);

    const SensorDirectory directory;
    QVERIFY(directory.install(commands));
    auto watched = std::make_unique<WatchedController>(directory.path());
    watched->controller->start();
    QTRY_VERIFY_WITH_TIMEOUT(watched->log.size() >= 2, Patience);
    QElapsedTimer clock;
    clock.start();
    watched.reset();
    // A wait for its own end would take 30 s; to be ended takes longer on some systems.
#ifdef Q_OS_WIN
    constexpr int AtOnceMs = 5000;
#else
    constexpr int AtOnceMs = 1500;
#endif
    QVERIFY(clock.elapsed() < AtOnceMs);
    QVERIFY(directory.livingCopies().isEmpty());
}

QTEST_GUILESS_MAIN(tst_KrHvcController)

#include "tst_krhvccontroller.moc"
