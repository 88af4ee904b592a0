#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/stat.h>
#endif

/// The program as its user starts it, with a plug-in that needs no sensor.
class tst_PlayerProgram : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void refused_data();
    void refused();
    void helpNeedsNoDisplay_data();
    void helpNeedsNoDisplay();
    void info_data();
    void info();
    void headlessLines();
    void idleSequence_data();
    void idleSequence();
    void screenshot();
    void unwritableScreenshot_data();
    void unwritableScreenshot();
    void endedByASignal_data();
    void endedByASignal();

private:
    struct Result
    {
        int status = -1;
        QString output;
        QString error;
    };

    static Result run(const QStringList &arguments);
    static QString text(const QByteArray &printed);
    QString writeStage(const QByteArray &json);
    static QString withoutTimes(QString output);

    QTemporaryDir m_directory;
};

tst_PlayerProgram::Result tst_PlayerProgram::run(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(KRHVC_PLAYER_FILE), arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), text(process.readAllStandardOutput()),
        text(process.readAllStandardError())};
}

/// What was printed, with line feeds as line ends.
QString tst_PlayerProgram::text(const QByteArray &printed)
{
    QString text = QString::fromUtf8(printed);
#ifdef Q_OS_WIN
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
#endif
    return text;
}

QString tst_PlayerProgram::writeStage(const QByteArray &json)
{
    QFile file(m_directory.filePath(QStringLiteral("stage.json")));
    if (!file.open(QIODevice::WriteOnly) || file.write(json) != json.size())
        return {};
    return file.fileName();
}

QString tst_PlayerProgram::withoutTimes(QString output)
{
    static const QRegularExpression time(
        QStringLiteral("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d  "), QRegularExpression::MultilineOption);
    return output.remove(time);
}

void tst_PlayerProgram::initTestCase()
{
    QVERIFY(m_directory.isValid());
#ifdef Q_OS_UNIX
    const QString pipe = m_directory.filePath(QStringLiteral("pipe.png"));
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
#endif
    // For the child processes: without any display, and Qt warns when it has to choose this one.
    for (const char *const variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        qunsetenv(variable);
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_directory.path()));
}

void tst_PlayerProgram::refused_data()
{
    QTest::addColumn<QByteArray>("stage");
    QTest::addColumn<QString>(
        "options"); // separated by blanks; %1: the directory, %2: a plug-in of another kind
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("error"); // after the program's name; %1 likewise

    const QByteArray good = R"({"screens": [{"id": 1}]})";
    QTest::newRow("an unknown option")
        << good << "--headless --loud" << 2 << "Unknown option 'loud'.";
    QTest::newRow("a stage file that does not exist")
        << good << "--headless --stage %1/none.json" << 2 << "%1/none.json: no such file";
    QTest::newRow("a stage file that does not parse")
        << QByteArray("{\n\"screens\": [}") << "--headless --stage %1/stage.json" << 2
        << "%1/stage.json:2:14: object is missing after a comma";
    QTest::newRow("a stage file with a wrong type")
        << QByteArray(R"({"screens": [{"id": 1}, {"id": 2, "contents": [{"params": 3}]}]})")
        << "--headless --stage %1/stage.json" << 2
        << "%1/stage.json:1:49: screens[1].contents[0].params: must be an object";
    QTest::newRow("a screen that the stage does not have")
        << good << "--headless --stage %1/stage.json --screen 2" << 2
        << "%1/stage.json: there is no screen 2";
    QTest::newRow("an idle sequence that the screen does not have")
        << good << "--headless --stage %1/stage.json --idle 1" << 2
        << "%1/stage.json: screen 1 has no sequence 1";
    QTest::newRow("an idle sequence of the stage that the screen does not have")
        << QByteArray(R"({"screens": [{"id": 1, "idle": {"sequence": 2}, "contents":
            [{"params": {}}]}]})")
        << "--headless --stage %1/stage.json" << 2 << "%1/stage.json: screen 1 has no sequence 2";
    QTest::newRow("a recording that does not exist")
        << good << "--headless --stage %1/stage.json --replay %1/none.txt" << 2
        << "%1/none.txt: no such file";
    QTest::newRow("a recording that is a directory")
        << good << "--headless --stage %1/stage.json --replay %1" << 2 << "%1: is not a file";
    QTest::newRow("a log that does not exist")
        << good << "--stage %1/stage.json --log %1/none.txt" << 2 << "%1/none.txt: no such file";
    QTest::newRow("a log that is none") << good << "--stage %1/stage.json --log %1/stage.json" << 2
                                        << "%1/stage.json:1: this is no record of the plug-in";
    QTest::newRow("a scenario that is a directory")
        << good << "--headless --stage %1/stage.json --scenario %1" << 2 << "%1: is not a file";
#ifdef Q_OS_UNIX
    QTest::newRow("a stage file that is a pipe")
        << good << "--headless --stage %1/pipe.png" << 2 << "%1/pipe.png: is not a file";
    QTest::newRow("a recording that is a pipe")
        << good << "--headless --stage %1/stage.json --replay %1/pipe.png" << 2
        << "%1/pipe.png: is not a file";
    QTest::newRow("a scenario that is a pipe")
        << good << "--headless --stage %1/stage.json --scenario %1/pipe.png" << 2
        << "%1/pipe.png: is not a file";
    QTest::newRow("a plug-in file that is a pipe")
        << good << "--headless --stage %1/stage.json --plugin %1/pipe.png" << 1
        << "%1/pipe.png: The file is not a screen plug-in.";
#endif
    QTest::newRow("a plug-in file that is of another kind")
        << good << "--headless --stage %1/stage.json --plugin %2" << 1
        << QFileInfo(QStringLiteral(KRHVC_PLAIN_PLUGIN_FILE)).absoluteFilePath()
            + QLatin1String(": The file is not a screen plug-in.");
    QTest::newRow("a plug-in file that does not exist")
        << good << "--headless --stage %1/stage.json --plugin %1/none.so" << 1
        << "%1/none.so: The shared library was not found.";
}

void tst_PlayerProgram::refused()
{
    QFETCH(QByteArray, stage);
    QFETCH(QString, options);
    QFETCH(int, status);
    QFETCH(QString, error);

    QVERIFY(!writeStage(stage).isEmpty());
    error.replace(QLatin1String("%1"), m_directory.path());
    QStringList arguments = options.split(QLatin1Char(' ')); // before there are paths in it
    arguments.replaceInStrings(QStringLiteral("%1"), m_directory.path());
    arguments.replaceInStrings(QStringLiteral("%2"), QStringLiteral(KRHVC_PLAIN_PLUGIN_FILE));
    const Result result = run(arguments);
    QCOMPARE(result.error, QLatin1String("KrStagePlayer: ") + error + QLatin1Char('\n'));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, status);
}

void tst_PlayerProgram::helpNeedsNoDisplay_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("start");

    QTest::newRow("--help") << "--help"
                            << "Usage: ";
    QTest::newRow("--version") << "--version"
                               << "KrStagePlayer " KRHVC_VERSION "\n";
}

void tst_PlayerProgram::helpNeedsNoDisplay()
{
    QFETCH(QString, option);
    QFETCH(QString, start);

    const Result result = run({option});
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.startsWith(start));
    QCOMPARE(result.error, QString());
}

void tst_PlayerProgram::info_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("start"); // %1: the file
    QTest::addColumn<QString>("end");

    QTest::newRow("a screen plug-in")
        << KRHVC_FAKE_PLUGIN_FILE << 0 << "File          %1\nFormat        a "
        << "Name          FakePlugin\n"
           "Version       3.2.1\n"
           "Vendor        Tests\n"
           "Copyright     None\n"
           "Description   Pretends to be a screen plug-in.\n"
           "              Writes down what its host does.\n"
           "Url           https://example.com/fake\n"
           "\n"
           "It loads.\n";
    QTest::newRow("a plug-in of another kind")
        << KRHVC_PLAIN_PLUGIN_FILE << 1 << "File          %1\nFormat        a "
        << "\n"
           "It does not load: it is a plug-in for something else: com.example.plain/1.0.\n"
           "The loader says: The file is not a screen plug-in.\n"
           "Put the plug-in file of this product in its place.\n";
    QTest::newRow("text") << writeStage("text") << 1
                          << "File          %1\nFormat        no program\n\n"
                             "It does not load: it is no library.\nThe loader says: "
                          << "Put the plug-in file of this product in its place.\n";
    QTest::newRow("nothing") << m_directory.filePath(QStringLiteral("none.so")) << 1
                             << "File          %1\nIt is not there.\nCopy "
                             << ".\n";
}

void tst_PlayerProgram::info()
{
    QFETCH(QString, fileName);
    QFETCH(int, status);
    QFETCH(QString, start);
    QFETCH(QString, end);

    const Result result = run({QStringLiteral("--info"), fileName});
    QCOMPARE(result.error, QString());
    const QString file = QDir::toNativeSeparators(QFileInfo(fileName).absoluteFilePath());
    QVERIFY2(result.output.startsWith(start.arg(file)), qUtf8Printable(result.output));
    QVERIFY2(result.output.endsWith(end), qUtf8Printable(result.output));
    QCOMPARE(result.status, status);
}

void tst_PlayerProgram::headlessLines()
{
    const QString stage = writeStage(R"({"title": "Door", "screens": [{"id": 4,
        "plugindata": {"switches": [1, 0]}, "contents": [
            {"params": {"name": "Women 20-39"}}, {"name": "M\u00e4nner", "params": {}}]}]})");
    const QString logs = m_directory.filePath(QStringLiteral("deep/logs"));
    const Result result = run({QStringLiteral("--headless"), QStringLiteral("--stage"), stage,
        QStringLiteral("--plugin"), QStringLiteral(KRHVC_FAKE_PLUGIN_FILE),
        QStringLiteral("--log-dir"), logs, QStringLiteral("--seconds"), QStringLiteral("0.3")});
    QCOMPARE(result.error, QString());
    QVERIFY(result.output != withoutTimes(result.output));
    QCOMPARE(withoutTimes(result.output),
        QStringLiteral("player  Plug-in FakePlugin 3.2.1\n"
                       "player  Stage \"Door\", screen 4 with 2 contents\n"
                       "player  Logs below %1\n"
                       "status  110  Initialised\n"
                       "status  102  Started\n"
                       "switch  #2  M\u00e4nner\n"
                       "switch  #1  Women 20-39\n"
                       "status  104  Stopping\n"
                       "status  100  Stopped\n")
            .arg(QDir::toNativeSeparators(logs)));
    QCOMPARE(result.status, 0);
    QVERIFY(QFile::exists(logs));
}

void tst_PlayerProgram::idleSequence_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("expected");

    QTest::newRow("of the stage") << QStringList() << "play    #2  Men, idle\n";
    QTest::newRow("of the command line") << QStringList{QStringLiteral("--idle"),
        QStringLiteral("1:1")} << "play    #1  Women, idle\n";
    QTest::newRow("none on the command line")
        << QStringList{QStringLiteral("--idle"), QStringLiteral("0")} << "";
}

void tst_PlayerProgram::idleSequence()
{
    QFETCH(QStringList, options);
    QFETCH(QString, expected);

    const QString stage = writeStage(R"({"screens": [{"id": 4, "idle": {"sequence": 2},
        "contents": [{"params": {"name": "Women"}}, {"params": {"name": "Men"}}]}]})");
    const Result result
        = run(QStringList{QStringLiteral("--headless"), QStringLiteral("--stage"), stage,
                  QStringLiteral("--plugin"), QStringLiteral(KRHVC_FAKE_PLUGIN_FILE),
                  QStringLiteral("--log-dir"), m_directory.path(), QStringLiteral("--seconds"),
                  QStringLiteral("0.1")}
            + options);
    QCOMPARE(result.status, 0);
    const QStringList lines = withoutTimes(result.output).split(QLatin1Char('\n'));
    const QString plays = lines.filter(QStringLiteral("play ")).join(QLatin1Char('\n'));
    QCOMPARE(plays.isEmpty() ? plays : plays + QLatin1Char('\n'), expected);
}

void tst_PlayerProgram::screenshot()
{
    const QString stage = writeStage(R"({"screens": [{"id": 4, "plugindata": {"switches": [0]},
        "contents": [{"params": {"name": "A"}, "card": {"color": "#00ff00"}}]}]})");
    const QString picture = m_directory.filePath(QStringLiteral("shot.png"));
    const Result result = run({QStringLiteral("--headless"), QStringLiteral("--stage"), stage,
        QStringLiteral("--plugin"), QStringLiteral(KRHVC_FAKE_PLUGIN_FILE),
        QStringLiteral("--log-dir"), m_directory.path(), QStringLiteral("--seconds"),
        QStringLiteral("2"), QStringLiteral("--screenshot"), picture});
    QCOMPARE(result.status, 0);
    const QImage image(picture);
    QCOMPARE(image.size(), QSize(1280, 720));
    const QColor corner = image.pixelColor(2, 2);
    QVERIFY(corner.green() > 200);
    QVERIFY(corner.red() < 60);
}

void tst_PlayerProgram::unwritableScreenshot_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("in a directory that does not exist") << "none/shot.png";
#ifdef Q_OS_UNIX
    QTest::newRow("a pipe that nobody reads") << "pipe.png";
#endif
}

void tst_PlayerProgram::unwritableScreenshot()
{
    QFETCH(QString, name);

    const QString stage = writeStage(R"({"screens": [{"id": 4}]})");
    const QString picture = m_directory.filePath(name);
    const Result result = run({QStringLiteral("--headless"), QStringLiteral("--stage"), stage,
        QStringLiteral("--plugin"), QStringLiteral(KRHVC_FAKE_PLUGIN_FILE),
        QStringLiteral("--log-dir"), m_directory.path(), QStringLiteral("--seconds"),
        QStringLiteral("0"), QStringLiteral("--screenshot"), picture});
    QCOMPARE(result.error,
        QStringLiteral("KrStagePlayer: %1: the screenshot cannot be written\n").arg(picture));
    QCOMPARE(result.status, 1);
}

void tst_PlayerProgram::endedByASignal_data()
{
    QTest::addColumn<int>("signal");

#ifdef Q_OS_UNIX
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
#else
    QTest::newRow("none on this system") << 0;
#endif
}

void tst_PlayerProgram::endedByASignal()
{
#ifdef Q_OS_UNIX
    QFETCH(int, signal);

    QProcess process;
    process.start(QStringLiteral(KRHVC_PLAYER_FILE),
        {QStringLiteral("--headless"), QStringLiteral("--stage"),
            writeStage(R"({"screens": [{"id": 4}]})"), QStringLiteral("--plugin"),
            QStringLiteral(KRHVC_FAKE_PLUGIN_FILE), QStringLiteral("--log-dir"),
            m_directory.path()});
    QByteArray output;
    QTRY_VERIFY((output += process.readAllStandardOutput()).contains("102  Started"));
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    output += process.readAllStandardOutput();
    QVERIFY(output.endsWith("100  Stopped\n"));
#else
    QSKIP("A console event cannot be sent to one process alone.");
#endif
}

QTEST_GUILESS_MAIN(tst_PlayerProgram)

#include "tst_playerprogram.moc"
