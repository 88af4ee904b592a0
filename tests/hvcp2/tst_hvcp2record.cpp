#include "sensor/ProcessList.h"
#include "tests/sensor/ControllerFixture.h"
#include "tests/support/Files.h"
#include "tests/support/OwnProcess.h"
#include "tests/support/SensorProgram.h"
#include "tests/support/Waiting.h"
#include "tools/analysis/EntrySource.h"
#include "tools/analysis/RecordingTimes.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <initializer_list>
#include <memory>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace KrTest;

namespace ProcessList = PluginKrHvcP2::ProcessList;

namespace {

const QString RealName = QStringLiteral("HvcCon-real.exe");
const QByteArray Prompt = "Press Space Key to end:\n";

/// The program runs in another folder, on Windows perhaps on another drive.
QString recorder()
{
    return QFileInfo(QStringLiteral(KRHVC_HVCP2_FILE)).absoluteFilePath();
}

struct Result
{
    int status = -1;
    bool crashed = false;
    QByteArray output;
    QByteArray error;
};

Result resultOf(QProcess &process)
{
    if (!process.waitForFinished(Patience))
        return {};
    return {process.exitCode(), process.exitStatus() == QProcess::CrashExit,
        process.readAllStandardOutput(), process.readAllStandardError()};
}

QByteArray frame(int number)
{
    return "Face result count:1\nIndex:0\tX:1 Y:2 Size:" + QByteArray::number(number)
        + " Confidence:4\nGender\tGender:Male Confidence:9\n" + Prompt;
}

QStringList words(std::initializer_list<const char *> list)
{
    QStringList words;
    for (const char *const word : list)
        words << QString::fromUtf8(word);
    return words;
}

/// Whether a stand-in runs, as none of another test does: they are started one after another.
bool realOneRuns()
{
    return !ProcessList::find(RealName.toStdString()).empty();
}

} // namespace

/// The program between the sensor program and who has started it.
class tst_Hvcp2Record : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void arguments_data();
    void arguments();
    void everyByte();
    void statuses_data();
    void statuses();
    void atOnce();
    void stopKey();
    void input();
    void endOfInput();
    void flood();
    void slowReader();
    void readerGone();
    void recorderKilled();
    void sensorKilled();
    void framesInPieces();
    void goesOnInTheNewestFile();
    void rotation();
    void unwritableFolder_data();
    void unwritableFolder();
    void fullDisk();
    void anotherRecorder();
    void calledAsSensorProgram_data();
    void calledAsSensorProgram();
    void options_data();
    void options();
    void refused_data();
    void refused();
    void refusedInPlace();
    void controller();

private:
    QString path(const QString &name) const { return m_directory->filePath(name); }
    QString real() const { return path(RealName); }
    bool install(const QByteArray &commands) const
    {
        return installStandIn(m_directory->path(), commands, RealName);
    }
    bool write(const QString &name, const QByteArray &content) const
    {
        return writeFile(path(name), content);
    }
    QStringList recordings(const QString &folder = QStringLiteral("recordings")) const;
    QByteArray recorded(const QString &folder = QStringLiteral("recordings")) const;
    QStringList recordArguments(const QStringList &arguments) const;
    void start(QProcess &process, const QStringList &arguments = {}) const;
    Result record(const QStringList &arguments = {}) const;
    Result runDirectly(const QStringList &arguments = {}) const;
    bool startedRealOne() const { return !startedStandIns(m_directory->path()).isEmpty(); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_Hvcp2Record::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
}

void tst_Hvcp2Record::cleanup()
{
    QVERIFY(waitWithoutEvents([] { return !realOneRuns(); }));
}

QStringList tst_Hvcp2Record::recordings(const QString &folder) const
{
    return Analysis::recordingsIn(path(folder));
}

/// All files one behind the other.
QByteArray tst_Hvcp2Record::recorded(const QString &folder) const
{
    QByteArray bytes;
    const QStringList files = recordings(folder);
    for (const QString &file : files)
        bytes += readFile(file);
    return bytes;
}

/// @p arguments may hold options and, behind "--", those of the sensor program.
QStringList tst_Hvcp2Record::recordArguments(const QStringList &arguments) const
{
    return QStringList{QStringLiteral("record"), QStringLiteral("--program"), real()} + arguments;
}

void tst_Hvcp2Record::start(QProcess &process, const QStringList &arguments) const
{
    process.setWorkingDirectory(m_directory->path());
    process.start(recorder(), recordArguments(arguments));
}

Result tst_Hvcp2Record::record(const QStringList &arguments) const
{
    QProcess process;
    start(process, arguments);
    return resultOf(process);
}

Result tst_Hvcp2Record::runDirectly(const QStringList &arguments) const
{
    QProcess process;
    process.start(real(), arguments);
    return resultOf(process);
}

void tst_Hvcp2Record::arguments_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("none") << QStringList();
    QTest::newRow("those of the plug-in") << words({"3", "921600", "500"});
    QTest::newRow("what are options of the recorder")
        << words({"--as", "other", "--help", "-v", "--"});
    QTest::newRow("blanks, quotes and backslashes")
        << words({"a b", "", "\"", "a\\\"b", "c:\\d e\\", "*"});
}

void tst_Hvcp2Record::arguments()
{
    QFETCH(QStringList, arguments);
    QVERIFY(install("arguments"));
    const QByteArray expected = runDirectly(arguments).output;
    QCOMPARE(expected.count('<') > 0, !arguments.isEmpty());
    const Result result = record(QStringList(QStringLiteral("--")) + arguments);
    QCOMPARE(result.output, expected);
    QCOMPARE(result.error, QByteArray());
    QCOMPARE(result.status, 0);
}

void tst_Hvcp2Record::everyByte()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    bytes += "\r\n\n\r no line end";
    QVERIFY(write(QStringLiteral("output"), bytes));
    QVERIFY(write(QStringLiteral("errors"), bytes + bytes));
    QVERIFY(install("copy output\ncopy-error errors"));
    const Result result = record();
    QCOMPARE(result.output, bytes);
    QCOMPARE(result.error, bytes + bytes);
    QCOMPARE(recorded(), bytes);
}

void tst_Hvcp2Record::statuses_data()
{
    QTest::addColumn<QByteArray>("commands");

    for (const char *const commands : {"exit 0", "exit 1", "exit 2", "exit 255", "crash memory",
             "crash abort", "crash interrupt", "crash terminate", "crash kill"})
        QTest::newRow(commands) << QByteArray(commands);
}

void tst_Hvcp2Record::statuses()
{
    QFETCH(QByteArray, commands);
    QVERIFY(install("say before\n" + commands));
    const Result expected = runDirectly();
    const Result result = record();
    QCOMPARE(result.error, QByteArray());
    QCOMPARE(result.output, QByteArray("before"));
    QCOMPARE(result.status, expected.status);
    QCOMPARE(result.crashed, expected.crashed);
    QCOMPARE(recorded(), QByteArray("before"));
}

/// Also what is no line yet.
void tst_Hvcp2Record::atOnce()
{
    QVERIFY(install("say a\nwait go\nsay b"));
    QProcess process;
    start(process);
    QVERIFY(process.waitForReadyRead(Patience));
    QCOMPARE(process.readAllStandardOutput(), QByteArray("a"));
    QVERIFY(write(QStringLiteral("go"), {}));
    const Result result = resultOf(process);
    QCOMPARE(result.output, QByteArray("b"));
    QCOMPARE(result.status, 0);
}

void tst_Hvcp2Record::stopKey()
{
    QVERIFY(install("say ready\nnote-key key\nsay ended\nexit 3"));
    QProcess process;
    start(process);
    QVERIFY(process.waitForReadyRead(Patience));
    process.write(" ");
    const Result result = resultOf(process);
    QCOMPARE(result.output, QByteArray("readyended"));
    QCOMPARE(result.status, 3);
    QCOMPARE(readFile(path(QStringLiteral("key"))), QByteArray(" "));
}

void tst_Hvcp2Record::input()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    QVERIFY(install("note-input input"));
    QProcess process;
    start(process);
    process.write(bytes);
    process.closeWriteChannel();
    QCOMPARE(resultOf(process).status, 0);
    QCOMPARE(readFile(path(QStringLiteral("input"))), bytes);
}

void tst_Hvcp2Record::endOfInput()
{
    QVERIFY(install("say ready\ndrain\nexit 4"));
    QProcess process;
    start(process);
    QVERIFY(process.waitForReadyRead(Patience));
    QCOMPARE(process.state(), QProcess::Running);
    process.closeWriteChannel();
    QCOMPARE(resultOf(process).status, 4);
}

void tst_Hvcp2Record::flood()
{
    QByteArray output;
    for (int i = 0; output.size() < 32 * 1024 * 1024; ++i)
        output += frame(i);
    QVERIFY(write(QStringLiteral("output"), output));
    QVERIFY(install("copy output"));
    const Result result = record();
    QVERIFY(result.output == output);
    QCOMPARE(result.status, 0);
    QVERIFY(recorded() == output);
}

/// The sensor program has to wait, and nothing is lost.
void tst_Hvcp2Record::slowReader()
{
    constexpr int Mebibytes = 64;
    QVERIFY(install("line 64\ntouch written"));
    QProcess process;
    start(process);
    QVERIFY(waitWithoutEvents([this] { return startedRealOne(); }));
    QThread::msleep(1000);
    QVERIFY(!QFile::exists(path(QStringLiteral("written"))));
#ifdef Q_OS_LINUX
    QFile statm(QStringLiteral("/proc/%1/statm").arg(process.processId()));
    QVERIFY(statm.open(QIODevice::ReadOnly));
    const qint64 resident = statm.readAll().split(' ').value(1).toLongLong() * ::getpagesize();
    const bool isTold = residentMemory() != 0; // not of a program with a sanitizer
    QVERIFY2(
        !isTold || resident < Mebibytes / 2 * 1024 * 1024, qPrintable(QString::number(resident)));
#endif
    const Result result = resultOf(process);
    QCOMPARE(result.status, 0);
    QVERIFY(result.output == QByteArray(Mebibytes * 1024 * 1024, 'x'));
    QVERIFY(recorded() == result.output);
}

void tst_Hvcp2Record::readerGone()
{
    QVERIFY(install("flood"));
    const QString reader = QStringLiteral("reader.exe");
    QVERIFY(installStandIn(m_directory->path(), "key\nexit 0", reader));
    QProcess process;
    QProcess other;
    process.setStandardOutputProcess(&other);
    start(process);
    other.start(path(reader), QStringList());
    QVERIFY(other.waitForFinished(Patience));
    QVERIFY(process.waitForFinished(Patience));
    QVERIFY(waitWithoutEvents([] { return !realOneRuns(); }));
}

void tst_Hvcp2Record::recorderKilled()
{
    QVERIFY(install("ignore-signals\nsay ready\nforever"));
    QProcess process;
    start(process);
    QVERIFY(process.waitForReadyRead(Patience));
    QVERIFY(realOneRuns());
    process.kill();
    QVERIFY(process.waitForFinished(Patience));
    QVERIFY(waitWithoutEvents([] { return !realOneRuns(); }));
}

void tst_Hvcp2Record::sensorKilled()
{
    QVERIFY(install("say ready\nforever"));
    QProcess process;
    start(process);
    QVERIFY(process.waitForReadyRead(Patience));
    QVERIFY(
        ProcessList::end(startedStandIns(m_directory->path()).value(0), RealName.toStdString()));
    const Result result = resultOf(process);
#ifdef Q_OS_UNIX
    QVERIFY(result.crashed);
#endif
    QVERIFY(result.status != 0);
    QCOMPARE(recorded(), QByteArray("ready"));
}

/// As the sensor program printed them, at their times.
void tst_Hvcp2Record::framesInPieces()
{
    const QByteArray output = frame(1) + frame(2) + frame(3);
    const QList<int> ends{frame(1).indexOf('\n') + 1, frame(1).size() - 5,
        frame(1).size() + frame(2).size(), output.size()};
    QByteArray commands;
    int from = 0;
    for (const int end : ends) {
        const QString name = QString::number(end);
        QVERIFY(write(name, output.mid(from, end - from)));
        commands += "copy " + name.toLatin1() + "\nsleep 60\n";
        from = end;
    }
    QVERIFY(install(commands));
    const qint64 beforeMs = QDateTime::currentMSecsSinceEpoch();
    QCOMPARE(record().output, output);
    const qint64 afterMs = QDateTime::currentMSecsSinceEpoch();

    QString error;
    const auto source = Analysis::EntrySource::open(recordings(), &error);
    QVERIFY2(source, qPrintable(error));
    qint64 earlierMs = beforeMs;
    for (int i = 1; i <= 3; ++i) {
        const auto entry = source->next();
        QVERIFY(entry);
        QCOMPARE(entry->kind, Analysis::Entry::Frame);
        QCOMPARE(entry->text.toUtf8(), frame(i));
        QVERIFY(entry->time.toMSecsSinceEpoch() >= earlierMs);
        earlierMs = entry->time.toMSecsSinceEpoch();
    }
    QVERIFY(earlierMs <= afterMs);
    QVERIFY(!source->next());
}

/// A program that cannot open its port is started again every five seconds.
void tst_Hvcp2Record::goesOnInTheNewestFile()
{
    for (const char *const commands : {"copy output", "say Failed", "copy output"}) {
        QVERIFY(write(QStringLiteral("output"), frame(1)));
        QVERIFY(install(commands));
        QCOMPARE(record().status, 0);
    }
    QCOMPARE(recordings().size(), 1);
    QCOMPARE(recorded(), frame(1) + "Failed\n" + frame(1));
    QVERIFY(!QFile::exists(path(QStringLiteral("recordings/recording.lock"))));
}

void tst_Hvcp2Record::rotation()
{
    QByteArray output;
    for (int i = 0; output.size() < 4 * 1024 * 1024 + 1000; ++i)
        output += frame(i);
    QVERIFY(write(QStringLiteral("output"), output));
    QVERIFY(install("copy output"));
    const Result result = record(words({"--max-size", "1", "--files", "3"}));
    QCOMPARE(result.error, QByteArray());
    QVERIFY(result.output == output);
    const QStringList files = recordings();
    QCOMPARE(files.size(), 3);
    for (int i = 0; i < files.size(); ++i) {
        const QByteArray bytes = readFile(files.at(i));
        QVERIFY(bytes.startsWith("Face result count:"));
        QVERIFY(readFile(Analysis::timesFileName(files.at(i))).startsWith("0 "));
        QVERIFY(bytes.endsWith(Prompt));
        QVERIFY(bytes.size() < 1100 * 1024);
        QVERIFY(i + 1 == files.size() || bytes.size() >= 1024 * 1024);
    }
    QVERIFY(output.endsWith(recorded()));
}

void tst_Hvcp2Record::unwritableFolder_data()
{
    QTest::addColumn<QString>("folder");

    QTest::newRow("a file of that name") << "file";
    QTest::newRow("in a file") << "file/recordings";
}

void tst_Hvcp2Record::unwritableFolder()
{
    QFETCH(QString, folder);
    QVERIFY(write(QStringLiteral("file"), {}));
    QVERIFY(install("say ready\nexit 7"));
    const Result result = record({QStringLiteral("--as"), folder});
    QCOMPARE(result.output, QByteArray("ready"));
    QCOMPARE(result.status, 7);
    const QByteArray start
        = "hvcp2 record: " + QFileInfo(path(folder)).absoluteFilePath().toUtf8() + ": cannot be ";
    QCOMPARE(result.error.left(start.size()), start);
    QCOMPARE(result.error.count('\n'), 1);
}

void tst_Hvcp2Record::fullDisk()
{
#ifdef Q_OS_UNIX
    QByteArray output;
    for (int i = 0; output.size() < 200 * 1024; ++i)
        output += frame(i);
    QVERIFY(write(QStringLiteral("output"), output));
    QVERIFY(install("copy output\nexit 7"));
    QProcess process;
    process.setWorkingDirectory(m_directory->path());
    // No file may become larger than some KiB.
    process.start(QStringLiteral("/bin/sh"),
        QStringList{QStringLiteral("-c"), QStringLiteral("ulimit -f 100; exec \"$@\""),
            QStringLiteral("sh"), recorder()}
            + recordArguments({}));
    const Result result = resultOf(process);
    QCOMPARE(result.status, 7);
    QVERIFY(result.output == output);
    QCOMPARE(result.error.count('\n'), 1);
    QVERIFY2(result.error.endsWith("nothing is recorded any more\n"), result.error.constData());
    const QByteArray bytes = recorded();
    QVERIFY(bytes.size() > 10 * 1024 && bytes.size() < output.size());
    QVERIFY(output.startsWith(bytes));
    QVERIFY(bytes.endsWith(Prompt));
    QVERIFY(!readFile(path(QStringLiteral("recordings/recording-ended.txt"))).isEmpty());
#else
    QSKIP("This system has no limit for the size of a file.");
#endif
}

void tst_Hvcp2Record::anotherRecorder()
{
    QVERIFY(install("say first\nwait go"));
    QProcess process;
    start(process);
    QVERIFY(process.waitForReadyRead(Patience));
    QVERIFY(install("say second"));
    const Result second = record();
    QCOMPARE(second.output, QByteArray("second"));
    QVERIFY2(second.error.contains("another program records there"), second.error.constData());
    QVERIFY(write(QStringLiteral("go"), {}));
    QCOMPARE(resultOf(process).status, 0);
    QCOMPARE(recorded(), QByteArray("first"));
}

void tst_Hvcp2Record::calledAsSensorProgram_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isLink");
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<QString>("folder");

    QTest::newRow("a copy") << "HvcCon.exe" << false << QByteArray() << "recordings";
    QTest::newRow("another letter case") << "hvccon.EXE" << false << QByteArray() << "recordings";
#ifdef Q_OS_UNIX
    QTest::newRow("a link") << "HvcCon.exe" << true << QByteArray() << "recordings";
#endif
    QTest::newRow("with a file of options")
        << "HvcCon.exe" << false
        << QByteArray("\xef\xbb\xbf; a comment\r\n[Record]\r\nas = other folder \r\n\r\nfiles=2")
        << "other folder";
}

void tst_Hvcp2Record::calledAsSensorProgram()
{
    QFETCH(QString, name);
    QFETCH(bool, isLink);
    QFETCH(QByteArray, options);
    QFETCH(QString, folder);

    QVERIFY(isLink ? QFile::link(recorder(), path(name)) : QFile::copy(recorder(), path(name)));
    if (!options.isEmpty())
        QVERIFY(write(QStringLiteral("hvcp2-record.ini"), options));
    QVERIFY(install("arguments\nexit 9"));
    QProcess process;
    process.start(path(name), words({"3", "--help", "record"}));
    const Result result = resultOf(process);
    QCOMPARE(result.output, QByteArray("<3><--help><record>"));
    QCOMPARE(result.error, QByteArray());
    QCOMPARE(result.status, 9);
    QCOMPARE(recorded(folder), result.output);
}

void tst_Hvcp2Record::options_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("folder");

    QTest::newRow("a folder") << words({"--as", "a/b"}) << "a/b";
    QTest::newRow("arguments without dashes before them") << words({"--as", "a", "3"}) << "a";
}

void tst_Hvcp2Record::options()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, folder);
    QVERIFY(install("say ready"));
    QCOMPARE(record(arguments).status, 0);
    QCOMPARE(recorded(folder), QByteArray("ready"));
}

void tst_Hvcp2Record::refused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("error"); // a part of it

    QTest::newRow("a program that is not there")
        << words({"--program", "none.exe"}) << QByteArray("none.exe: cannot be started: ");
    QTest::newRow("itself") << QStringList{QStringLiteral("--program"), recorder()}
                            << QByteArray(": is this program itself");
    QTest::newRow("no size") << words({"--max-size", "big"})
                             << QByteArray("max-size: \"big\" is no whole number from 1 to 100000");
    QTest::newRow("no files") << words({"--files", "0"})
                              << QByteArray("files: \"0\" is no whole number from 1 to 100000");
    QTest::newRow("an unknown option") << words({"--loud"}) << QByteArray("Unknown option 'loud'.");
}

void tst_Hvcp2Record::refused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, error);
    QVERIFY(install("say ready"));
    const Result result = record(arguments);
    QVERIFY2(result.error.startsWith("hvcp2 record: "), result.error.constData());
    QVERIFY2(result.error.contains(error), result.error.constData());
    QCOMPARE(result.error.count('\n'), 1);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.status, 2);
    QVERIFY(!startedRealOne());
}

/// The plug-in reads standard output alone.
void tst_Hvcp2Record::refusedInPlace()
{
    const QString program = path(QStringLiteral("HvcCon.exe"));
    QVERIFY(QFile::copy(recorder(), program));
    for (const QByteArray &options :
        {QByteArray(), QByteArray("files = 0"), QByteArray("\nsize=3")}) {
        QVERIFY(write(QStringLiteral("hvcp2-record.ini"), options));
        QProcess process;
        process.start(program, QStringList());
        const Result result = resultOf(process);
        QVERIFY2(result.output.startsWith("Failed to start the sensor program: "),
            result.output.constData());
        QVERIFY2(result.error.startsWith("HvcCon.exe: "), result.error.constData());
        QCOMPARE(result.status, 2);
    }
}

void tst_Hvcp2Record::controller()
{
    const SensorDirectory directory;
    QVERIFY(QFile::copy(recorder(), directory.filePath(QStringLiteral("HvcCon.exe"))));
    QVERIFY(directory.install("arguments\nnote-key key", RealName));
    WatchedController controller(directory.path());
    controller->start();
    QTRY_COMPARE_WITH_TIMEOUT(controller.log,
        (QStringList{QStringLiteral("started"), QStringLiteral("data: <3><921600><500>")}),
        Patience);
    QCOMPARE(sensorProcessCount(), 1);
    controller->stop();
    QCOMPARE(controller.log.last(), QStringLiteral("stopped"));
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    QTRY_VERIFY_WITH_TIMEOUT(!realOneRuns(), Patience);

    // One that has been left over is ended by the next controller, and the program with it.
    QVERIFY(directory.install(StandIn::NeverReads, RealName));
    QProcess left;
    left.start(directory.filePath(QStringLiteral("HvcCon.exe")), QStringList());
    QVERIFY(left.waitForReadyRead(Patience));
    controller.log.clear();
    controller->start();
    QTRY_COMPARE_WITH_TIMEOUT(controller.log.value(0), QStringLiteral("started"), Patience);
    QTRY_COMPARE_WITH_TIMEOUT(left.state(), QProcess::NotRunning, Patience);
    QTRY_COMPARE_WITH_TIMEOUT(directory.startedCopies().size(), 3, Patience);
    QCOMPARE(static_cast<int>(ProcessList::find(RealName.toStdString()).size()), 1);
}

QTEST_GUILESS_MAIN(tst_Hvcp2Record)

#include "tst_hvcp2record.moc"
