#include "demo/player/Options.h"

#include <QDir>
#include <QTest>

using namespace Player;

class tst_PlayerOptions : public QObject
{
    Q_OBJECT

private slots:
    void defaults();
    void everything();
    void idle_data();
    void idle();
    void refused_data();
    void refused();
    void requests_data();
    void requests();
    void helpNamesEveryOption();
};

namespace {

/// A blank stands before each argument.
Options parse(const QString &arguments)
{
    const QString commandLine = QLatin1String("player") + arguments;
    return Options::fromArguments(commandLine.split(QLatin1Char(' ')), QStringLiteral("/opt/bin"));
}

} // namespace

void tst_PlayerOptions::defaults()
{
    const Options options = parse(QString());
    QCOMPARE(options.request, Options::Run);
    QVERIFY(!options.headless);
    QVERIFY(!options.milliseconds);
    QVERIFY(!options.screenId);
    QCOMPARE(options.stageFile, QStringLiteral("/opt/bin/stages/shop-window.json"));
    QVERIFY(options.pluginFile.startsWith(QStringLiteral("/opt/bin/KrHvcP2.")));
    QVERIFY(options.logDirectory.endsWith(QStringLiteral("/logs")));
    QCOMPARE(options.screenshotFile, QString());
    QCOMPARE(options.logFile, QString());
    QCOMPARE(options.replayFile, QString());
    QCOMPARE(options.scenarioFile, QString());
    QVERIFY(options.switching == Programme::Switching::Now);
    QVERIFY(!options.idle);
    QCOMPARE(options.proofFile, QString());
}

void tst_PlayerOptions::everything()
{
    const QString plugin = QDir::rootPath() + QLatin1String("p/x.so");
    const Options options
        = parse(QStringLiteral(" --headless --seconds 2.5 --stage a.json --screen -4 --plugin %1 "
                               "--log-dir ../l --screenshot s.png --replay=r.txt")
                    .arg(plugin));
    const QDir here = QDir::current();
    QCOMPARE(options.request, Options::Run);
    QVERIFY(options.headless);
    QCOMPARE(options.milliseconds.value_or(-1), 2500);
    QCOMPARE(options.stageFile, here.absoluteFilePath(QStringLiteral("a.json")));
    QCOMPARE(options.screenId.value_or(0), -4);
    QCOMPARE(options.pluginFile, plugin);
    QCOMPARE(options.logDirectory, QDir::cleanPath(here.absoluteFilePath(QStringLiteral("../l"))));
    QCOMPARE(options.screenshotFile, here.absoluteFilePath(QStringLiteral("s.png")));
    QCOMPARE(options.replayFile, here.absoluteFilePath(QStringLiteral("r.txt")));
    QCOMPARE(parse(QStringLiteral(" --scenario s.json")).scenarioFile,
        here.absoluteFilePath(QStringLiteral("s.json")));
    QCOMPARE(parse(QStringLiteral(" --log l.txt")).logFile,
        here.absoluteFilePath(QStringLiteral("l.txt")));
    QCOMPARE(parse(QStringLiteral(" --info p.so")).infoFile,
        here.absoluteFilePath(QStringLiteral("p.so")));
    QCOMPARE(parse(QStringLiteral(" --proof-of-play p.csv")).proofFile,
        here.absoluteFilePath(QStringLiteral("p.csv")));
    QVERIFY(parse(QStringLiteral(" --switch at-end")).switching == Programme::Switching::AtEnd);
    QVERIFY(parse(QStringLiteral(" --switch=now")).switching == Programme::Switching::Now);
}

void tst_PlayerOptions::idle_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("sequence");
    QTest::addColumn<int>("after");

    QTest::newRow("a sequence") << "3" << 3 << 20;
    QTest::newRow("a sequence with its time") << "12:5" << 12 << 5;
    QTest::newRow("none") << "0" << 0 << 20;
    QTest::newRow("the longest time") << "1:86400" << 1 << 86400;
}

void tst_PlayerOptions::idle()
{
    QFETCH(QString, value);
    QFETCH(int, sequence);
    QFETCH(int, after);

    const Options options = parse(QLatin1String(" --idle ") + value);
    QCOMPARE(options.request, Options::Run);
    QVERIFY(options.idle);
    QCOMPARE(options.idle->sequence, sequence);
    QCOMPARE(options.idle->after, after);
}

void tst_PlayerOptions::refused_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("error");

    QTest::newRow("an unknown option") << " --loud"
                                       << "Unknown option 'loud'.";
    QTest::newRow("an option without its value") << " --stage"
                                                 << "Missing value after '--stage'.";
    QTest::newRow("an argument that belongs to no option") << " stage.json"
                                                           << "Unexpected argument 'stage.json'.";
    QTest::newRow("seconds that are no number")
        << " --seconds ten"
        << "--seconds: 'ten' is not a number from 0 to 1000000.";
    QTest::newRow("negative seconds") << " --seconds=-1"
                                      << "--seconds: '-1' is not a number from 0 to 1000000.";
    QTest::newRow("seconds that are not finite")
        << " --seconds=nan"
        << "--seconds: 'nan' is not a number from 0 to 1000000.";
    QTest::newRow("a screen that is no number") << " --screen first"
                                                << "--screen: 'first' is not a whole number.";
    QTest::newRow("an unknown way to switch") << " --switch later"
                                              << "--switch: 'later' is neither 'now' nor 'at-end'.";
    const QString idle = QStringLiteral("--idle: '%1' is no number of a sequence, or none with "
                                        "seconds from 1 to 86400 behind a colon.");
    for (const char *const value : {"-1", "one", ":5", "1:", "1:0", "1:86401", "1:5:5", "1:2.5"}) {
        const QString text = QLatin1String(value);
        QTest::newRow(value) << QString(QLatin1String(" --idle=") + text) << idle.arg(text);
    }
    QTest::newRow("a log without a window") << " --log a --headless"
                                            << "--log and --headless exclude each other.";
    QTest::newRow("a recording and a scenario") << " --replay a --scenario b"
                                                << "--replay and --scenario exclude each other.";
}

void tst_PlayerOptions::refused()
{
    QFETCH(QString, arguments);
    QFETCH(QString, error);

    const Options options = parse(arguments);
    QCOMPARE(options.request, Options::Refuse);
    QCOMPARE(options.error, error);
}

void tst_PlayerOptions::requests_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("request");

    QTest::newRow("--help") << " --help" << int(Options::ShowHelp);
    QTest::newRow("-h among others") << " --headless -h" << int(Options::ShowHelp);
    QTest::newRow("--version") << " --version" << int(Options::ShowVersion);
    QTest::newRow("--info") << " --info p.so" << int(Options::ShowInfo);
    QTest::newRow("--info without a file") << " --info" << int(Options::Refuse);
    QTest::newRow("an unknown option beside --help") << " --help --loud" << int(Options::Refuse);
}

void tst_PlayerOptions::requests()
{
    QFETCH(QString, arguments);
    QFETCH(int, request);

    QCOMPARE(int(parse(arguments).request), request);
}

void tst_PlayerOptions::helpNamesEveryOption()
{
    const QString help = Options::helpText();
    for (const char *const option :
        {"--headless", "--seconds <N>", "--stage <FILE>", "--screen <ID>", "--plugin <FILE>",
            "--log-dir <DIR>", "--log <FILE>", "--screenshot <FILE>", "--replay <FILE>",
            "--scenario <FILE>", "--switch <now|at-end>", "--idle <N[:SECONDS]>",
            "--proof-of-play <FILE>", "--info <FILE>", "--help", "--version"})
        QVERIFY2(help.contains(QLatin1String(option)), option);
}

QTEST_GUILESS_MAIN(tst_PlayerOptions)

#include "tst_playeroptions.moc"
