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
    QCOMPARE(options.replayFile, QString());
    QCOMPARE(options.scenarioFile, QString());
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
    for (const char *const option : {"--headless", "--seconds <N>", "--stage <FILE>",
             "--screen <ID>", "--plugin <FILE>", "--log-dir <DIR>", "--screenshot <FILE>",
             "--replay <FILE>", "--scenario <FILE>", "--help", "--version"})
        QVERIFY2(help.contains(QLatin1String(option)), option);
}

QTEST_GUILESS_MAIN(tst_PlayerOptions)

#include "tst_playeroptions.moc"
