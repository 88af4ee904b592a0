#include "log/LogFormat.h"
#include "tests/support/Files.h"
#include "tools/analysis/Coverage.h"
#include "tools/analysis/Plan.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/stat.h>
#endif

using namespace KrTest;

namespace {

/// The program runs in another folder, on Windows perhaps on another drive.
QString shippedStage(const char *name)
{
    return QFileInfo(QStringLiteral(KRHVC_STAGE_DIR "/") + QLatin1String(name)).absoluteFilePath();
}

} // namespace

/// The program as its user starts it.
class tst_Hvcp2Program : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void refused_data();
    void refused();
    void help_data();
    void help();
    void statuses_data();
    void statuses();
    void namesInAnyScript();
    void noColorsInAPipe();
    void coverageJson_data();
    void coverageJson();
    void framesOnStandardInput();
    void pacedReplay();
    void interruptedReplay();
    void pictureIsReplaced();
    void pictureThatCannotBeWritten_data();
    void pictureThatCannotBeWritten();
    void fullDisk();
    void damagedFrames();
    void framesFromStandardInput();

private:
    struct Result
    {
        int status = -1;
        QString output;
        QString error;
    };

    Result run(const QStringList &arguments, const QString &outputFile = {},
        const QString &inputFile = {}) const;
    static QString text(const QByteArray &printed);
    QString writeStage(const QByteArray &json) const;

    QTemporaryDir m_directory;
};

tst_Hvcp2Program::Result tst_Hvcp2Program::run(
    const QStringList &arguments, const QString &outputFile, const QString &inputFile) const
{
    QProcess process;
    if (!inputFile.isEmpty())
        process.setStandardInputFile(inputFile);
    process.setWorkingDirectory(m_directory.path());
    if (!outputFile.isEmpty())
        process.setStandardOutputFile(outputFile);
    process.start(QStringLiteral(KRHVC_HVCP2_FILE), arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), text(process.readAllStandardOutput()),
        text(process.readAllStandardError())};
}

/// What was printed, with line feeds as line ends.
QString tst_Hvcp2Program::text(const QByteArray &printed)
{
    QString text = QString::fromUtf8(printed);
#ifdef Q_OS_WIN
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
#endif
    return text;
}

/// Returns the name by which the program finds it.
QString tst_Hvcp2Program::writeStage(const QByteArray &json) const
{
    const QString name = QStringLiteral("stage.json");
    return writeFile(m_directory.filePath(name), json) ? name : QString();
}

void tst_Hvcp2Program::initTestCase()
{
    QVERIFY(m_directory.isValid());
    QVERIFY(QDir(m_directory.path()).mkdir(QStringLiteral("folder")));
#ifdef Q_OS_UNIX
    const QString pipe = m_directory.filePath(QStringLiteral("pipe"));
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
#endif
}

void tst_Hvcp2Program::refused_data()
{
    QTest::addColumn<QByteArray>("stage");
    QTest::addColumn<QString>("arguments"); // separated by blanks
    QTest::addColumn<QString>("error"); // a line, less its end

    const QByteArray good = R"({"screens": [{"id": 1}]})";
    // clang-format off
    QTest::newRow("nothing") << good << ""
        << "hvcp2: A command is needed. See 'hvcp2 --help'.";
    QTest::newRow("an unknown command") << good << "explian --stage stage.json"
        << "hvcp2: Unknown command 'explian'. See 'hvcp2 --help'.";
    QTest::newRow("an unknown option") << good << "--loud"
        << "hvcp2: Unknown option 'loud'. See 'hvcp2 --help'.";
    QTest::newRow("neither an option nor a command") << good << "-- explain"
        << "hvcp2: Options go behind the command. See 'hvcp2 --help'.";
    QTest::newRow("an unknown option of a command") << good << "coverage --stage stage.json --loud"
        << "hvcp2 coverage: Unknown option 'loud'. See 'hvcp2 coverage --help'.";
    QTest::newRow("one argument more") << good << "coverage --stage stage.json more"
        << "hvcp2 coverage: Unexpected argument 'more'. See 'hvcp2 coverage --help'.";
    QTest::newRow("frames that do not exist") << good << "explain --stage stage.json more"
        << "hvcp2 explain: more: no such file";
    QTest::newRow("frames that are none") << good << "explain --stage stage.json stage.json"
        << "hvcp2 explain: stage.json:1: this is no record of the plug-in\nhvcp2 explain: there are no frames";
    QTest::newRow("a time without frames") << good << "explain --stage stage.json --at 09:30"
        << "hvcp2 explain: --at and --frame need FRAMES.";
    QTest::newRow("a frame without frames") << good << "explain --stage stage.json --frame 3"
        << "hvcp2 explain: --at and --frame need FRAMES.";
    QTest::newRow("a time and a frame") << good << "explain stage.json --stage stage.json --frame 3 --at 09:30"
        << "hvcp2 explain: --at and --frame exclude each other.";
    QTest::newRow("a time that is none") << good << "explain stage.json --stage stage.json --at noon"
        << "hvcp2 explain: --at: \"noon\" is no time";
    QTest::newRow("a frame that is no number") << good << "explain stage.json --stage stage.json --frame last"
        << "hvcp2 explain: --frame: \"last\" is no number of a frame";
    QTest::newRow("frame 0") << good << "explain stage.json --stage stage.json --frame 0"
        << "hvcp2 explain: --frame: \"0\" is no number of a frame";
    QTest::newRow("a setting that is no number") << good << "explain stage.json --stage stage.json --settings interval=1 concurrent=x"
        << "hvcp2 explain: \"x\" is no value for concurrent";
    QTest::newRow("no stage") << good << "explain"
        << "hvcp2 explain: --stage FILE is needed.";
    QTest::newRow("a stage without its name") << good << "coverage --stage"
        << "hvcp2 coverage: Missing value after '--stage'. See 'hvcp2 coverage --help'.";
    QTest::newRow("a screen that is no number") << good << "explain --stage stage.json --screen one"
        << "hvcp2 explain: --screen: \"one\" is no whole number";
    QTest::newRow("a screen that the stage does not have") << good << "coverage --stage stage.json --screen 2"
        << "hvcp2 coverage: stage.json: there is no screen 2";
    QTest::newRow("a stage file that does not exist") << good << "explain --stage none.json"
        << "hvcp2 explain: none.json: no such file";
    QTest::newRow("a stage file that is a folder") << good << "explain --stage folder"
        << "hvcp2 explain: folder: is not a file";
    QTest::newRow("nothing to replay") << good << "replay --stage stage.json"
        << "hvcp2 replay: FRAMES are needed: a log directory, files or -.";
    QTest::newRow("a replay without a stage") << good << "replay stage.json"
        << "hvcp2 replay: --stage FILE is needed.";
    QTest::newRow("no speed") << good << "replay stage.json --stage stage.json --speed 0"
        << "hvcp2 replay: --speed: \"0\" is no number above 0";
    QTest::newRow("a speed that is no number") << good << "replay stage.json --stage stage.json --speed fast"
        << "hvcp2 replay: --speed: \"fast\" is no number above 0";
    QTest::newRow("an endless speed") << good << "replay stage.json --stage stage.json --speed inf"
        << "hvcp2 replay: --speed: \"inf\" is no number above 0";
    QTest::newRow("two forms of an explanation") << good << "explain --stage stage.json --csv --json"
        << "hvcp2 explain: --csv and --json exclude each other.";
    QTest::newRow("two forms of a map") << good << "coverage --stage stage.json --csv --json"
        << "hvcp2 coverage: --csv and --json exclude each other.";
    QTest::newRow("two forms of a replay") << good << "replay stage.json --stage stage.json --csv --json"
        << "hvcp2 replay: --csv and --json exclude each other.";
    QTest::newRow("two forms of a comparison") << good << "compare stage.json --stage stage.json --stage stage.json --csv --json"
        << "hvcp2 compare: --csv and --json exclude each other.";
    QTest::newRow("two forms of a report") << good << "report stage.json --csv --json"
        << "hvcp2 report: --csv and --json exclude each other.";
#ifdef Q_OS_UNIX
    QTest::newRow("a stage file that is a pipe") << good << "explain --stage pipe"
        << "hvcp2 explain: pipe: is not a file";
#endif
    QTest::newRow("a stage file that does not parse") << QByteArray("{\n\"screens\": [}") << "coverage --stage stage.json"
        << "hvcp2 coverage: stage.json:2:14: object is missing after a comma";
    QTest::newRow("a stage file with a wrong type")
        << QByteArray("{\"screens\": [{\"id\": 1},\n  {\"id\": 2, \"contents\": [{\"params\": 3}]}]}") << "explain --stage stage.json"
        << "hvcp2 explain: stage.json:2:27: screens[1].contents[0].params: must be an object";
    const QString twoPlans = QStringLiteral("hvcp2 compare: Two plans are needed: --stage A --stage B, or --stage A --settings KEY=VALUE.");
    QTest::newRow("no plan to compare") << good << "compare stage.json" << twoPlans;
    QTest::newRow("one plan to compare") << good << "compare stage.json --stage stage.json" << twoPlans;
    QTest::newRow("three plans to compare") << good << "compare stage.json --stage stage.json --stage stage.json --stage stage.json" << twoPlans;
    QTest::newRow("a second plan that does not exist") << good << "compare stage.json --stage stage.json --stage none.json"
        << "hvcp2 compare: none.json: no such file";
    const QString settings = QStringLiteral("age-confidence, concurrent, display-monitoring, event-sending-limit, face-detection-confidence, face-direction-confidence, gender-confidence, interval");
    QTest::newRow("a setting that is none") << good << "compare stage.json --stage stage.json --settings concurrently=1"
        << QStringLiteral("hvcp2 compare: \"concurrently\" is no setting; there are ") + settings;
    QTest::newRow("a setting without a value") << good << "compare stage.json --stage stage.json --settings concurrent"
        << "hvcp2 compare: \"concurrent\" is not of the form KEY=VALUE";
    QTest::newRow("a second setting that is none") << good << "compare stage.json --stage stage.json --settings concurrent=1 none=2"
        << QStringLiteral("hvcp2 compare: \"none\" is no setting; there are ") + settings;
    QTest::newRow("no frames") << good << "compare --stage stage.json --stage stage.json"
        << "hvcp2 compare: FRAMES are needed: a log directory, files or -.";
    QTest::newRow("frames that do not exist") << good << "compare none --stage stage.json --stage stage.json"
        << "hvcp2 compare: none: no such file";
    QTest::newRow("a folder without frames") << good << "compare folder --stage stage.json --stage stage.json"
        << "hvcp2 compare: folder: holds neither log files of the plug-in nor recordings";
    QTest::newRow("an interval of nothing") << good << "compare stage.json --stage stage.json --stage stage.json --interval 0"
        << "hvcp2 compare: --interval: \"0\" is no number of milliseconds";
    // clang-format on
}

void tst_Hvcp2Program::refused()
{
    QFETCH(QByteArray, stage);
    QFETCH(QString, arguments);
    QFETCH(QString, error);

    QVERIFY(!writeStage(stage).isEmpty());
    const QStringList list
        = arguments.isEmpty() ? QStringList() : arguments.split(QLatin1Char(' '));
    const Result result = run(list);
    QCOMPARE(result.error, error + QLatin1Char('\n'));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, 2);
}

void tst_Hvcp2Program::help_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("start");

    QTest::newRow("--help") << "--help"
                            << "Usage: hvcp2 COMMAND [OPTION...]\n";
    QTest::newRow("-h") << "-h"
                        << "Usage: hvcp2 COMMAND [OPTION...]\n";
    QTest::newRow("--version") << "--version"
                               << "hvcp2 " KRHVC_VERSION "\n";
    QTest::newRow("of a command") << "explain --help"
                                  << "Usage: hvcp2 explain --stage FILE";
    QTest::newRow("of a command, whatever else is there") << "coverage more -h"
                                                          << "Usage: hvcp2 coverage --stage FILE";
}

void tst_Hvcp2Program::help()
{
    QFETCH(QString, arguments);
    QFETCH(QString, start);

    const Result result = run(arguments.split(QLatin1Char(' ')));
    QCOMPARE(result.output.left(start.size()), start);
    QCOMPARE(result.error, QString());
    QCOMPARE(result.status, 0);
}

void tst_Hvcp2Program::statuses_data()
{
    QTest::addColumn<QByteArray>("contents"); // of screen 1; screen 2 follows the first two
    QTest::addColumn<int>("explain");
    QTest::addColumn<int>("coverage");

    const auto content = [](int from, int to, const char *gender, const char *isDefault) {
        return QStringLiteral(R"({"params": {"age-min": %1, "age-max": %2, "gender": "%3",)"
                              R"( "default": "%4"}})")
            .arg(QString::number(from), QString::number(to), QString::fromLatin1(gender),
                QString::fromLatin1(isDefault))
            .toUtf8();
    };
    QTest::newRow("no contents") << QByteArray() << 0 << 1;
    QTest::newRow("for everybody") << content(0, 120, "both", "false") << 0 << 0;
    QTest::newRow("defaults for the rest") << content(20, 30, "both", "true") << 0 << 0;
    QTest::newRow("men are left out") << content(20, 30, "female", "true") << 0 << 1;
    QTest::newRow("a content for nobody")
        << content(0, 100, "both", "false") + ',' + content(101, 120, "both", "false") << 0 << 1;
    QTest::newRow("a content that takes no part")
        << content(0, 120, "both", "false") + ',' + content(30, 20, "both", "false") << 1 << 1;
}

void tst_Hvcp2Program::statuses()
{
    QFETCH(QByteArray, contents);
    QFETCH(int, explain);
    QFETCH(int, coverage);

    const QString stage = writeStage(R"({"screens": [{"id": 1, "contents": [)" + contents
        + R"(], "event": [{"type": 2, "direction": 1, "seq": []}]}, {"id": 2, "event": [
            {"type": 2, "id": 1, "screenseq": 1}, {"type": 2, "id": 1, "screenseq": 2}]}]})");
    for (const QString &form : {QString(), QStringLiteral("--json")}) {
        QStringList arguments{QStringLiteral("explain"), QStringLiteral("--stage"), stage};
        if (!form.isEmpty())
            arguments << form;
        Result result = run(arguments);
        QCOMPARE(result.status, explain);
        QCOMPARE(result.error, QString());
        arguments[0] = QStringLiteral("coverage");
        result = run(arguments);
        QCOMPARE(result.status, coverage);
        QCOMPARE(result.error, QString());
    }
}

void tst_Hvcp2Program::namesInAnyScript()
{
    const QByteArray json
        = QStringLiteral(R"({"title": "\u5e97\u8217", "screens": [{"id": 1}]})").toUtf8();
    const QString name = QStringLiteral("B\u00fchne \u5e97.json");
    QVERIFY(writeFile(m_directory.filePath(name), json));
    const Result result = run({QStringLiteral("explain"), QStringLiteral("--stage"), name});
    QCOMPARE(result.error, QString());
    QCOMPARE(
        result.output, QStringLiteral("\u5e97\u8217, screen 1\n\n  The screen has no contents.\n"));
}

void tst_Hvcp2Program::noColorsInAPipe()
{
    const QString stage = shippedStage("shop-window.json");
    for (const char *const command : {"explain", "coverage"}) {
        const Result result = run({QString::fromLatin1(command), QStringLiteral("--stage"), stage});
        QCOMPARE(result.status, 0);
        QVERIFY(result.output.startsWith(QLatin1String("Shop window, screen 1 (Window)\n")));
        QVERIFY(!result.output.contains(QChar(0x1b)));
    }
}

void tst_Hvcp2Program::coverageJson_data()
{
    QTest::addColumn<QString>("fileName");

    QTest::newRow("the shop window") << shippedStage("shop-window.json");
    QTest::newRow("the station concourse") << shippedStage("station-concourse.json");
}

/// The keys that other programs read.
void tst_Hvcp2Program::coverageJson()
{
    QFETCH(QString, fileName);

    const Result result = run({QStringLiteral("coverage"), QStringLiteral("--stage"), fileName,
        QStringLiteral("--json")});
    const QJsonObject document = QJsonDocument::fromJson(result.output.toUtf8()).object();
    QString error;
    const std::optional<Analysis::Plan> plan = Analysis::readPlan(fileName, {}, &error);
    QVERIFY2(plan, qUtf8Printable(error));
    const Analysis::Coverage coverage = Analysis::coverageOf(plan->contents);
    const QStringList keys{
        QStringLiteral("female"), QStringLiteral("male"), QStringLiteral("unknown")};
    for (int gender = 0; gender < keys.size(); ++gender) {
        const QJsonArray ages = document.value(keys.at(gender)).toArray();
        QCOMPARE(ages.size(), 101);
        for (int age = 0; age <= 100; ++age) {
            const int number = coverage.genders.at(gender).ages.at(age).number;
            QCOMPARE(ages.at(age), number > 0 ? QJsonValue(number) : QJsonValue());
        }
    }
}

/// Two women, two seconds apart, for a restriction of a second.
QByteArray recordedVisits()
{
    const QByteArray face = "Face result count:1\nIndex:0\tX:1 Y:2 Size:3 Confidence:4\n"
                            "Age\tAge:30 Confidence:5\nGender\tGender:Female Confidence:6\n";
    return "@1000\n" + face + "@3000\n" + face;
}

void tst_Hvcp2Program::framesOnStandardInput()
{
    const QString file = m_directory.filePath(QStringLiteral("frames.txt"));
    QVERIFY(writeFile(file, recordedVisits()));
    const QStringList more{QStringLiteral("-"), QStringLiteral("--stage"),
        shippedStage("shop-window.json"), QStringLiteral("--settings"),
        QStringLiteral("event-sending-limit=1000")};
    Result result = run(QStringList{QStringLiteral("explain")} + more, {}, file);
    QCOMPARE(result.error, QString());
    QVERIFY(result.output.contains(QLatin1String("Frame 2, 1970-01-01 00:00:03.000 UTC, -:6\n")));
    QVERIFY(result.output.endsWith(QLatin1String("\nSent: #5 Women 25-54\n")));
    QCOMPARE(result.status, 0);
    result = run(QStringList{QStringLiteral("replay"), QStringLiteral("--csv")} + more, {}, file);
    QCOMPARE(result.error, QString());
    QCOMPARE(result.output,
        QStringLiteral("frame,time,face,sequence,score,outcome\n"
                       "1,1970-01-01T00:00:01.000Z,0,5,2,sent\n"
                       "2,1970-01-01T00:00:03.000Z,0,5,2,sent\n"));
    QCOMPARE(result.status, 0);
}

void tst_Hvcp2Program::pacedReplay()
{
    const QString file = m_directory.filePath(QStringLiteral("frames.txt"));
    QVERIFY(writeFile(file, recordedVisits()));
    const QStringList arguments{QStringLiteral("replay"), QStringLiteral("frames.txt"),
        QStringLiteral("--stage"), shippedStage("shop-window.json")};
    const Result atOnce = run(arguments);
    QElapsedTimer timer;
    timer.start();
    const Result paced
        = run(arguments + QStringList{QStringLiteral("--speed"), QStringLiteral("4")});
    QVERIFY(timer.elapsed() >= 450);
    QCOMPARE(paced.output, atOnce.output);
    QCOMPARE(paced.status, 0);
}

/// Its document is whole.
void tst_Hvcp2Program::interruptedReplay()
{
#ifdef Q_OS_UNIX
    const QString file = m_directory.filePath(QStringLiteral("frames.txt"));
    QVERIFY(writeFile(file, recordedVisits()));
    QProcess process;
    process.start(QStringLiteral(KRHVC_HVCP2_FILE),
        {QStringLiteral("replay"), file, QStringLiteral("--stage"),
            shippedStage("shop-window.json"), QStringLiteral("--json"), QStringLiteral("--speed"),
            QStringLiteral("0.001")});
    QVERIFY(process.waitForReadyRead());
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 130);
    QCOMPARE(text(process.readAllStandardError()), QStringLiteral("hvcp2 replay: interrupted\n"));
    const QJsonDocument document = QJsonDocument::fromJson(process.readAllStandardOutput());
    QVERIFY(!document.object().value(QStringLiteral("starts")).toArray().isEmpty());
#else
    QSKIP("Only a console can interrupt a program there.");
#endif
}

void tst_Hvcp2Program::pictureIsReplaced()
{
    const QString picture = m_directory.filePath(QStringLiteral("map.svg"));
    QVERIFY(writeFile(picture, "something else"));
    const QString stage = shippedStage("shop-window.json");
    const Result result = run({QStringLiteral("coverage"), QStringLiteral("--stage"), stage,
        QStringLiteral("-o"), QStringLiteral("map.svg")});
    QCOMPARE(result.status, 0);
    const QString svg = readText(picture);
    QVERIFY(svg.startsWith(QLatin1String("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg ")));
    QVERIFY(svg.endsWith(QLatin1String("</svg>\n")));
}

void tst_Hvcp2Program::pictureThatCannotBeWritten_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("error"); // its beginning

    QTest::newRow("in a folder that does not exist") << "none/map.svg"
                                                     << "none/map.svg: cannot be written: ";
    QTest::newRow("a folder") << "folder"
                              << "folder: is not a file";
#ifdef Q_OS_UNIX
    QTest::newRow("a pipe that nobody reads") << "pipe"
                                              << "pipe: is not a file";
#endif
}

void tst_Hvcp2Program::pictureThatCannotBeWritten()
{
    QFETCH(QString, name);
    QFETCH(QString, error);

    const QString stage = shippedStage("shop-window.json");
    const Result result = run(
        {QStringLiteral("coverage"), QStringLiteral("--stage"), stage, QStringLiteral("-o"), name});
    const QString start = QLatin1String("hvcp2 coverage: ") + error;
    QCOMPARE(result.error.left(start.size()), start);
    QCOMPARE(result.error.count(QLatin1Char('\n')), 1);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, 2);
}

void tst_Hvcp2Program::fullDisk()
{
    const QString full = QStringLiteral("/dev/full");
    if (!QFile::exists(full))
        QSKIP("This system has no device that is always full.");
    const Result result = run({QStringLiteral("--help")}, full);
    QCOMPARE(result.error, QStringLiteral("hvcp2: standard output cannot be written\n"));
    QCOMPARE(result.status, 2);
}

/// Foreign text in a log never ends a command.
void tst_Hvcp2Program::damagedFrames()
{
    const QDateTime time(QDate(2018, 2, 1), QTime(9, 30));
    const QString record = PluginKrHvcP2::LogFormat::record(
        1, time, QStringLiteral("Notice"), QStringLiteral("The determined sequence number: #1"));
    QByteArray log;
    for (int i = 0; i < 12; ++i)
        log += "foreign\n" + record.toUtf8();
    QVERIFY(writeFile(m_directory.filePath(QStringLiteral("KrHvcP2Log_20180201.txt")), log));
    const QString stage = shippedStage("shop-window.json");
    const Result result = run({QStringLiteral("compare"), QStringLiteral("KrHvcP2Log_20180201.txt"),
        QStringLiteral("--stage"), stage, QStringLiteral("--stage"), stage});
    QStringList expected;
    const int linesOfRecord = record.count(QLatin1Char('\n'));
    for (int i = 0; i < 10; ++i) {
        expected << QStringLiteral("hvcp2 compare: KrHvcP2Log_20180201.txt:%1:"
                                   " this is no record of the plug-in")
                        .arg(1 + i * (1 + linesOfRecord));
    }
    expected << QStringLiteral("hvcp2 compare: and 2 more places that cannot be read") << QString();
    QCOMPARE(result.error.split(QLatin1Char('\n')), expected);
    QCOMPARE(result.status, 0);
}

void tst_Hvcp2Program::framesFromStandardInput()
{
    const QString stage = shippedStage("shop-window.json");
    QProcess process;
    process.start(QStringLiteral(KRHVC_HVCP2_FILE),
        {QStringLiteral("compare"), QStringLiteral("-"), QStringLiteral("--stage"), stage,
            QStringLiteral("--stage"), stage, QStringLiteral("--json")});
    process.write("Face result count:0\nFace result count:0\n");
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    const QJsonObject document = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    QCOMPARE(document.value(QStringLiteral("a")).toObject().value(QStringLiteral("frames")),
        QJsonValue(2));
    QCOMPARE(process.exitCode(), 0);
}

QTEST_GUILESS_MAIN(tst_Hvcp2Program)

#include "tst_hvcp2program.moc"
