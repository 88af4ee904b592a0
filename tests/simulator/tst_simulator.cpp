#include "demo/simulator/FramePlan.h"
#include "demo/simulator/FrameRenderer.h"
#include "demo/simulator/ScenarioReader.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using namespace Simulation;

/// Runs the program as a child process, as the plug-in does.
class tst_Simulator : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void spaceEndsIt();
    void otherKeysDoNot();
    void endOfInputEndsIt();
    void inputThatHasNoEnd();
    void ignoredStopKey();
    void stopKeyWithDelay();

    void faults_data();
    void faults();
    void crash();
    void flood();
    void silence();
    void closedOutput();

    void seed();
    void builtInScenario();
    void scenarioBesideTheProgram();
    void whatIsPlayed_data();
    void whatIsPlayed();
    void replayOnce();
    void replayBeginsAnew();
    void recordingIsReplayed();

    void badInput_data();
    void badInput();
    void noFile_data();
    void noFile();
    void hugeFile_data();
    void hugeFile();
    void badCommandLine_data();
    void badCommandLine();
    void help();

private:
    /// Starts the program; it gets @p options behind port, speed and @p interval.
    void start(const QStringList &options, int interval = 1);
    void startScenario(const QByteArray &json, const QStringList &options = {}, int interval = 1);
    QString write(const QString &name, const QByteArray &text); ///< returns the path
    QByteArray output(); ///< what is there so far, line ends as "\n"

    QTemporaryDir m_dir;
    std::unique_ptr<QProcess> m_process;
    QByteArray m_output;
};

static const char *const Nobody = "Face result count:0\nPress Space Key to end:\n";
static const char *const Prompt = "Press Space Key to end:\n";

static QByteArray unixLines(QByteArray text)
{
    return text.replace("\r\n", "\n");
}

void tst_Simulator::initTestCase()
{
    QVERIFY(m_dir.isValid());
}

void tst_Simulator::init()
{
    m_output.clear();
    m_process = std::make_unique<QProcess>();
    m_process->setProgram(QStringLiteral(KRHVC_SIMULATOR_FILE));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *kind : {"LIVE", "REPLAY", "SCENARIO"})
        environment.remove(QLatin1String("KRHVC_") + QLatin1String(kind));
    m_process->setProcessEnvironment(environment);
}

void tst_Simulator::start(const QStringList &options, int interval)
{
    m_process->setArguments(
        QStringList{QStringLiteral("3"), QStringLiteral("921600"), QString::number(interval)}
        + options);
    m_process->start();
}

void tst_Simulator::startScenario(const QByteArray &json, const QStringList &options, int interval)
{
    const QString file = write(QStringLiteral("played.json"), json);
    start(QStringList{QStringLiteral("--scenario"), file} + options, interval);
}

QString tst_Simulator::write(const QString &name, const QByteArray &text)
{
    QFile file(m_dir.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

QByteArray tst_Simulator::output()
{
    m_output += m_process->readAllStandardOutput();
    return unixLines(m_output);
}

#define VERIFY_ENDED(status)                                                             \
    QVERIFY(m_process->state() == QProcess::NotRunning || m_process->waitForFinished()); \
    QCOMPARE(m_process->exitStatus(), QProcess::NormalExit);                             \
    QCOMPARE(m_process->exitCode(), status)

void tst_Simulator::spaceEndsIt()
{
    startScenario("{}", {}, 3600000);
    QTRY_COMPARE(output(), QByteArray(Nobody)); // the first frame does not wait
    m_process->write(" ");
    VERIFY_ENDED(0);
    QCOMPARE(output(), QByteArray(Nobody));
    QCOMPARE(m_process->readAllStandardError(), QByteArray());
}

void tst_Simulator::otherKeysDoNot()
{
    startScenario("{}");
    QTRY_VERIFY(!output().isEmpty());
    m_process->write("q\n\x1b");
    QVERIFY(m_process->waitForBytesWritten());
    const int before = output().size();
    QTRY_VERIFY(output().size() > before + 100 * int(qstrlen(Nobody)));
    QCOMPARE(m_process->state(), QProcess::Running);
    m_process->write("\n ");
    VERIFY_ENDED(0);
}

void tst_Simulator::endOfInputEndsIt()
{
    startScenario("{}", {}, 3600000);
    QTRY_COMPARE(output(), QByteArray(Nobody));
    m_process->closeWriteChannel();
    VERIFY_ENDED(0);
}

void tst_Simulator::inputThatHasNoEnd()
{
    m_process->setStandardInputFile(QProcess::nullDevice());
    startScenario("{}", {QStringLiteral("--frames"), QStringLiteral("100")});
    VERIFY_ENDED(0);
    QCOMPARE(output(), QByteArray(Nobody).repeated(100));
}

void tst_Simulator::ignoredStopKey()
{
    startScenario(R"({ "ignoreStopKey": true })");
    QTRY_VERIFY(!output().isEmpty());
    m_process->write(" ");
    QVERIFY(m_process->waitForBytesWritten());
    const int before = output().size();
    QTRY_VERIFY(output().size() > before + 100 * int(qstrlen(Nobody)));
    QCOMPARE(m_process->state(), QProcess::Running);
    m_process->closeWriteChannel(); // a host that died ends it all the same
    VERIFY_ENDED(0);
}

void tst_Simulator::stopKeyWithDelay()
{
    startScenario(R"({ "stopDelay": 150 })", {}, 3600000);
    QTRY_VERIFY(!output().isEmpty());
    QElapsedTimer timer;
    timer.start();
    m_process->write(" ");
    VERIFY_ENDED(0);
    QVERIFY2(timer.elapsed() >= 150, qPrintable(QString::number(timer.elapsed())));
}

void tst_Simulator::faults_data()
{
    QTest::addColumn<QByteArray>("scenario");
    QTest::addColumn<int>("status"); // after at most three frames
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QByteArray>("expectedError");

    QTest::newRow("no fault") << QByteArray("{}") << 0 << QByteArray(Nobody).repeated(3)
                              << QByteArray();
    QTest::newRow("the port is absent") << QByteArray(R"({ "absentPorts": [3] })") << 3
                                        << QByteArray("Failed to open COM port.\n") << QByteArray();
    QTest::newRow("another port is absent") << QByteArray(R"({ "absentPorts": [4] })") << 0
                                            << QByteArray(Nobody).repeated(3) << QByteArray();
    QTest::newRow("an exit at once")
        << QByteArray(R"({ "faults": [{ "kind": "exit", "status": 7 }] })") << 7 << QByteArray()
        << QByteArray();
    QTest::newRow("an exit after two frames")
        << QByteArray(R"({ "faults": [{ "kind": "exit", "frame": 2 }] })") << 0
        << QByteArray(Nobody).repeated(2) << QByteArray();
    QTest::newRow("a silent frame")
        << QByteArray(R"({ "faults": [{ "kind": "silence", "frame": 1 }] })") << 0
        << QByteArray(Nobody).repeated(2) << QByteArray();
    QTest::newRow("garbage, no UTF-8 and a NUL")
        << QByteArray(R"({ "faults": [{ "kind": "garbage", "frame": 1 }] })") << 0
        << Nobody
            + QByteArrayLiteral("Face result count:0\nIndex:\nIndex:x\tX:1 Y:2\n"
                                "Age\tAge:4O Confidence:\nGender\tGender:male\n"
                                "Face Direction\tUD:7\n\t \t\n\xff\xfe\0\xc3(\n"
                                "Failed to execute.\nPress Space Key to end:\n")
            + Nobody
        << QByteArray();
    QTest::newRow("a frame in pieces") << QByteArray(
        R"({ "faults": [{ "kind": "pieces", "frame": 1, "pieces": 9, "pause": 1 }] })")
                                       << 0 << QByteArray(Nobody).repeated(3) << QByteArray();
    QTest::newRow("standard error")
        << QByteArray(R"({ "faults": [{ "kind": "errorOutput", "lines": ["a", "b"] }] })") << 0
        << QByteArray(Nobody).repeated(3) << QByteArray("a\nb\n");
}

void tst_Simulator::faults()
{
    QFETCH(QByteArray, scenario);
    QFETCH(int, status);
    QFETCH(QByteArray, expected);
    QFETCH(QByteArray, expectedError);

    startScenario(scenario, {QStringLiteral("--frames"), QStringLiteral("3")});
    VERIFY_ENDED(status);
    QCOMPARE(output(), expected);
    QCOMPARE(unixLines(m_process->readAllStandardError()), expectedError);
}

void tst_Simulator::crash()
{
    startScenario(R"({ "faults": [{ "kind": "crash", "frame": 2 }] })");
    QVERIFY(m_process->waitForFinished());
    QCOMPARE(m_process->exitStatus(), QProcess::CrashExit);
    QCOMPARE(output(), QByteArray(Nobody).repeated(2));
}

void tst_Simulator::flood()
{
    startScenario(R"({ "faults": [{ "kind": "flood", "frames": 5000 }] })", {}, 3600000);
    // The last frame of the flood is not followed by a pause either.
    QTRY_COMPARE_WITH_TIMEOUT(output().count(Prompt), 5001, 60000);
    m_process->write(" ");
    VERIFY_ENDED(0);
    QCOMPARE(output(), QByteArray(Nobody).repeated(5001));
}

void tst_Simulator::silence()
{
    startScenario(R"({ "faults": [{ "kind": "silence", "frame": 2, "frames": 0 }] })");
    QTRY_COMPARE(output(), QByteArray(Nobody).repeated(2));
    m_process->write(" ");
    VERIFY_ENDED(0);
    QCOMPARE(output(), QByteArray(Nobody).repeated(2));
}

void tst_Simulator::closedOutput()
{
    const QString record = m_dir.filePath(QStringLiteral("closed.txt"));
    startScenario(R"({ "faults": [{ "kind": "closeOutput", "frame": 2 }] })",
        {QStringLiteral("--frames"), QStringLiteral("5"), QStringLiteral("--record"), record});
    VERIFY_ENDED(0);
    QCOMPARE(output(), QByteArray(Nobody).repeated(2));
    QFile file(record);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll().count(Prompt), 5); // it went on all the same
}

void tst_Simulator::seed()
{
    const QByteArray json = R"({ "noise": { "position": 100 }, "viewers": [{}] })";
    QString error;
    Scenario scenario = *parseScenario(json, QString(), &error);
    QVERIFY(scenario.seed != 99);
    scenario.seed = 99;
    startScenario(json,
        {QStringLiteral("--frames"), QStringLiteral("1"), QStringLiteral("--seed"),
            QStringLiteral("99")});
    VERIFY_ENDED(0);
    QCOMPARE(output(), renderFrame(scenario, 0, 1));
}

void tst_Simulator::builtInScenario()
{
    QString error;
    const Scenario scenario = *parseScenario(Simulation::builtInScenario(), QString(), &error);
    QByteArray expected;
    for (int frame = 0; frame < 20; ++frame)
        expected += renderFrame(scenario, frame, 10);
    start({QStringLiteral("--frames"), QStringLiteral("20")}, 10);
    VERIFY_ENDED(0);
    QCOMPARE(output(), expected);
}

void tst_Simulator::scenarioBesideTheProgram()
{
    const QString program = m_dir.filePath(QFileInfo(m_process->program()).fileName());
    QVERIFY(QFile::copy(m_process->program(), program));
    const QString scenario = write(
        QStringLiteral("scenario.json"), R"({ "faults": [{ "kind": "exit", "status": 5 }] })");
    m_process->setProgram(program);
    start({});
    VERIFY_ENDED(5);
    QVERIFY(QFile::remove(scenario));
}

/// Each thing to play has one viewer, whose age tells which it is.
void tst_Simulator::whatIsPlayed_data()
{
    QTest::addColumn<QString>("options"); // without file names
    QTest::addColumn<QString>("variables"); // likewise
    QTest::addColumn<bool>("beside"); // a scenario beside the program
    QTest::addColumn<QByteArray>("expected");

    const auto row = [](const char *name, const char *options, const char *variables, bool beside,
                         const char *expected) {
        QTest::newRow(name) << QString::fromLatin1(options) << QString::fromLatin1(variables)
                            << beside << QByteArray(expected);
    };
    const char *const all = "LIVE REPLAY SCENARIO";
    row("nothing is said", "", "", false, "Age:27"); // the first of the built-in one
    row("nothing is said, one beside the program", "", "", true, "Age:7");
    row("the scenario of the environment", "", "SCENARIO", true, "Age:6");
    row("the recording of the environment", "", "REPLAY", true, "Age:5");
    row("the recording before the scenario", "", "REPLAY SCENARIO", true, "Age:5");
    row("the live file of the environment", "", "LIVE", true, "Age:4");
    row("the live file before the scenario", "", "LIVE SCENARIO", true, "Age:4");
    row("the live file before the recording", "", "LIVE REPLAY", true, "Age:4");
    row("the live file before all", "", all, true, "Age:4");
    row("a live file", "live", "", true, "Age:1");
    row("a live file before the environment", "live", all, true, "Age:1");
    row("a recording", "replay", "", true, "Age:2");
    row("a recording before the environment", "replay", all, true, "Age:2");
    row("a scenario", "scenario", "", true, "Age:3");
    row("a scenario before the environment", "scenario", all, true, "Age:3");
}

void tst_Simulator::whatIsPlayed()
{
    QFETCH(QString, options);
    QFETCH(QString, variables);
    QFETCH(bool, beside);
    QFETCH(QByteArray, expected);

    const auto file = [this](const QByteArray &kind, int age) {
        const QByteArray text = kind.toLower().startsWith("replay")
            ? QByteArrayLiteral("Face result count:1\nAge\tAge:%1 Confidence:1\n")
            : QByteArrayLiteral(R"({ "viewers": [{ "age": %1 }] })");
        return write(
            QString::fromLatin1(kind), QByteArray(text).replace("%1", QByteArray::number(age)));
    };
    QStringList arguments{QStringLiteral("--frames"), QStringLiteral("1")};
    QProcessEnvironment environment = m_process->processEnvironment();
    int age = 0;
    for (const char *kind : {"live", "replay", "scenario"}) {
        ++age;
        if (options == QLatin1String(kind))
            arguments << QLatin1String("--") + options << file(kind, age);
    }
    for (const char *kind : {"LIVE", "REPLAY", "SCENARIO"}) {
        ++age;
        if (variables.split(QLatin1Char(' ')).contains(QLatin1String(kind)))
            environment.insert(QLatin1String("KRHVC_") + QLatin1String(kind),
                file(kind + QByteArray("-variable"), age));
    }
    m_process->setProcessEnvironment(environment);
    const QTemporaryDir dir;
    if (beside) {
        const QString program = dir.filePath(QFileInfo(m_process->program()).fileName());
        QVERIFY(QFile::copy(m_process->program(), program));
        QVERIFY(QFile::copy(file("beside", ++age), dir.filePath(QStringLiteral("scenario.json"))));
        m_process->setProgram(program);
    }
    start(arguments);
    VERIFY_ENDED(0);
    QVERIFY2(output().contains('\t' + expected + ' '), output().constData());
    QCOMPARE(m_process->readAllStandardError(), QByteArray());
}

void tst_Simulator::replayOnce()
{
    const QByteArray text = "Face result count:1\nIndex:0\tX:1\nFace result count:0\n\xff\nend";
    start({QStringLiteral("--replay"), write(QStringLiteral("r.txt"), text),
        QStringLiteral("--once")});
    VERIFY_ENDED(0);
    QCOMPARE(output(), text);
}

void tst_Simulator::replayBeginsAnew()
{
    QProcessEnvironment environment = m_process->processEnvironment();
    environment.insert(QStringLiteral("KRHVC_REPLAY"),
        write(QStringLiteral("r.txt"), "@100\nFace result count:1\n@101\nFace result count:0\n"));
    m_process->setProcessEnvironment(environment);
    start({QStringLiteral("--frames"), QStringLiteral("3")});
    VERIFY_ENDED(0);
    QCOMPARE(
        output(), QByteArray("Face result count:1\nFace result count:0\nFace result count:1\n"));
}

void tst_Simulator::recordingIsReplayed()
{
    const QString record = m_dir.filePath(QStringLiteral("recorded.txt"));
    startScenario(R"({ "viewers": [{ "arrive": 0.01, "leave": 0.02 }],
                       "faults": [{ "kind": "silence", "frame": 2 },
                                  { "kind": "pieces", "frame": 1, "pause": 0 }] })",
        {QStringLiteral("--frames"), QStringLiteral("4"), QStringLiteral("--record"), record}, 10);
    VERIFY_ENDED(0);
    const QByteArray played = output();
    QCOMPARE(played.count(Prompt), 3);

    QFile file(record);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray face
        = played.mid(int(qstrlen(Nobody)), played.size() - 2 * int(qstrlen(Nobody)));
    QCOMPARE(file.readAll(), QByteArray("@0\n") + Nobody + "@10\n" + face + "@30\n" + Nobody);

    m_output.clear();
    start({QStringLiteral("--once"), QStringLiteral("--replay"), record});
    VERIFY_ENDED(0);
    QCOMPARE(output(), played);
}

void tst_Simulator::badInput_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("text"); // null: no such file
    QTest::addColumn<QString>("expected"); // %1: the file, %2: why it cannot be written

    const QString scenario = QStringLiteral("--scenario");
    const QString replay = QStringLiteral("--replay");
    QTest::newRow("a scenario that is no JSON")
        << scenario << QByteArray("{\n  oops\n}") << QStringLiteral("%1:2:4: unterminated object");
    QTest::newRow("a scenario with a wrong value")
        << scenario << QByteArray(R"({ "viewers": [{}, {}, { "age": -1 }] })")
        << QStringLiteral("%1:1:25: viewers[2].age: must be a whole number from 0 to 120");
    QTest::newRow("no scenario") << scenario << QByteArray() << QStringLiteral("%1: no such file");
    QTest::newRow("an empty recording")
        << replay << QByteArray("") << QStringLiteral("%1: the recording is empty");
    QTest::newRow("a recording that runs backwards")
        << replay << QByteArray("@5\n@1\n")
        << QStringLiteral("%1:2: the time stamp is earlier than the one before");
    QTest::newRow("no recording") << replay << QByteArray() << QStringLiteral("%1: no such file");
    QTest::newRow("a record file that cannot be written") << QStringLiteral(
        "--record") << QByteArray() << QStringLiteral("%1: cannot be written: %2");
}

void tst_Simulator::badInput()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);

    const QString file = text.isNull() ? m_dir.filePath(QStringLiteral("no/such"))
                                       : write(QStringLiteral("bad"), text);
#ifdef Q_OS_WIN
    const QString reason = qt_error_string(3); // ERROR_PATH_NOT_FOUND, as the system puts it
#else
    const QString reason = QStringLiteral("No such file or directory");
#endif
    expected.replace(QLatin1String("%1"), file).replace(QLatin1String("%2"), reason);
    start({option, file});
    VERIFY_ENDED(2);
    QCOMPARE(QString::fromLocal8Bit(unixLines(m_process->readAllStandardError())),
        QStringLiteral("HvcCon.exe: ") + expected + QLatin1Char('\n'));
    QCOMPARE(output(), QByteArray());
}

void tst_Simulator::noFile_data()
{
    QTest::addColumn<QString>("option"); // none: beside the program
    QTest::addColumn<bool>("pipe"); // else a directory

    for (const char *const option : {"--scenario", "--replay", "--record", ""}) {
        const QByteArray what = *option ? option : "a scenario beside the program";
        QTest::addRow("%s: a directory", what.constData()) << option << false;
#ifdef Q_OS_UNIX
        QTest::addRow("%s: a pipe without an other end", what.constData()) << option << true;
#endif
    }
}

void tst_Simulator::noFile()
{
    QFETCH(QString, option);
    QFETCH(bool, pipe);

    const QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("scenario.json"));
#ifdef Q_OS_UNIX
    if (pipe)
        QCOMPARE(::mkfifo(QFile::encodeName(name).constData(), 0600), 0);
#endif
    QVERIFY(pipe || QDir().mkdir(name));
    if (option.isEmpty()) {
        const QString program = dir.filePath(QFileInfo(m_process->program()).fileName());
        QVERIFY(QFile::copy(m_process->program(), program));
        m_process->setProgram(program);
        start({});
    } else {
        start({option, name});
    }
    VERIFY_ENDED(2);
    QCOMPARE(QString::fromLocal8Bit(unixLines(m_process->readAllStandardError())),
        QStringLiteral("HvcCon.exe: %1: is not a file\n").arg(name));
    QCOMPARE(output(), QByteArray());
}

void tst_Simulator::hugeFile_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<int>("mebibytes"); // that are allowed

    QTest::newRow("a scenario") << "--scenario" << 16;
    QTest::newRow("a recording") << "--replay" << 128;
}

void tst_Simulator::hugeFile()
{
    QFETCH(QString, option);
    QFETCH(int, mebibytes);

    QFile file(m_dir.filePath(QStringLiteral("huge")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(mebibytes * qint64(1024 * 1024) + 1));
    file.close();
    start({option, file.fileName(), QStringLiteral("--once")});
    VERIFY_ENDED(2);
    QVERIFY(file.remove());
    QCOMPARE(QString::fromLocal8Bit(unixLines(m_process->readAllStandardError())),
        QStringLiteral("HvcCon.exe: %1: is larger than %2 MiB\n")
            .arg(file.fileName(), QString::number(mebibytes)));
    QCOMPARE(output(), QByteArray());
}

void tst_Simulator::badCommandLine_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QByteArray>("expected");

    const auto row = [](const char *name, const char *arguments, const char *expected) {
        QTest::newRow(name) << QString::fromLatin1(arguments)
                            << "HvcCon.exe: " + QByteArray(expected) + '\n';
    };
    row("too few arguments", "3 921600", "three arguments are needed: port, speed and interval");
    row("too many arguments", "3 921600 500 1",
        "three arguments are needed: port, speed and interval");
    row("a port that is no number", "COM3 921600 500",
        "port must be a whole number from 0 to 2147483647, not \"COM3\"");
    row("a speed that is no number", "3 fast 500",
        "speed must be a whole number from 0 to 2147483647, not \"fast\"");
    row("an interval of 0", "3 921600 0",
        "interval must be a whole number from 1 to 2147483647, not \"0\"");
    row("no frames", "3 921600 500 --frames 0",
        "--frames must be a whole number from 1 to 2147483647, not \"0\"");
    row("a seed that is too large", "3 921600 500 --seed 4294967296",
        "--seed must be a whole number from 0 to 4294967295, not \"4294967296\"");
    row("two things to play", "3 921600 500 --scenario a --replay b",
        "--scenario and --replay exclude each other");
    row("a live file and a scenario", "3 921600 500 --scenario a --live b",
        "--live and --scenario exclude each other");
    row("a live file and a recording", "3 921600 500 --live a --replay b",
        "--live and --replay exclude each other");
    row("three things to play", "3 921600 500 --replay a --scenario b --live c",
        "--live and --scenario exclude each other");
}

void tst_Simulator::badCommandLine()
{
    QFETCH(QString, arguments);
    QFETCH(QByteArray, expected);

    m_process->setArguments(arguments.split(QLatin1Char(' ')));
    m_process->start();
    VERIFY_ENDED(1);
    QCOMPARE(unixLines(m_process->readAllStandardError()), expected);
    QCOMPARE(output(), QByteArray());
}

void tst_Simulator::help()
{
    start({QStringLiteral("--help")});
    VERIFY_ENDED(0);
    QVERIFY2(output().contains("it opens no serial\nport"), output().constData());
}

QTEST_GUILESS_MAIN(tst_Simulator)
#include "tst_simulator.moc"
