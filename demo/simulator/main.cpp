#include "demo/simulator/FramePlan.h"
#include "demo/simulator/LiveScenario.h"
#include "demo/simulator/Platform.h"
#include "demo/simulator/Recording.h"
#include "demo/simulator/ScenarioReader.h"
#include "demo/simulator/Session.h"
#include "demo/support/JsonReader.h"
#include "demo/support/SimulatorVariables.h"
#include "demo/support/UserFile.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <cstdio>
#include <limits>

using namespace Simulation;

namespace {

constexpr int MaxRecordingMebibytes = 128; // some days of one viewer

enum ExitStatus { Ended = 0, BadCommandLine = 1, BadInput = 2, PortAbsent = 3 };

/// The command line and what the environment adds to it; an empty name means none.
struct Options
{
    int port = 0;
    int intervalMs = 0;
    int frames = 0;
    std::optional<quint32> seed;
    QString live;
    QString scenario;
    QString replay;
    bool once = false;
    QString record;
};

void printError(const QString &message)
{
    QTextStream(stderr) << "HvcCon.exe: " << message << '\n';
}

/// A whole number in [min, max], else an error message and nothing.
template <typename T>
std::optional<T> toNumber(const QString &text, const QString &what, qint64 min, qint64 max)
{
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    if (ok && number >= min && number <= max)
        return static_cast<T>(number);
    printError(QStringLiteral("%1 must be a whole number from %2 to %3, not \"%4\"")
                   .arg(what, QString::number(min), QString::number(max), text));
    return std::nullopt;
}

std::optional<Options> parseOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "A test and demonstration tool that stands in for the sensor program: it opens no serial\n"
        "port and needs no sensor, but prints what a sensor would see of the viewers that a\n"
        "scenario file describes. A space on standard input ends it."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("port"),
        QStringLiteral("Number of the COM port; not opened."), QStringLiteral("port"));
    parser.addPositionalArgument(QStringLiteral("speed"),
        QStringLiteral("Baud rate; without effect."), QStringLiteral("speed"));
    parser.addPositionalArgument(QStringLiteral("interval"),
        QStringLiteral("Milliseconds between two frames."), QStringLiteral("interval"));
    const QCommandLineOption live(QStringLiteral("live"),
        QStringLiteral(
            "Play the viewers in FILE, a scenario that is read again whenever it changes."
            " Without it: the file that KRHVC_LIVE names."),
        QStringLiteral("FILE"));
    const QCommandLineOption scenario(QStringLiteral("scenario"),
        QStringLiteral("Play the scenario in FILE. Without it: the file that KRHVC_SCENARIO names,"
                       " else \"scenario.json\" beside the program, else a built-in scenario."),
        QStringLiteral("FILE"));
    const QCommandLineOption replay(QStringLiteral("replay"),
        QStringLiteral("Play the recorded output in FILE, over and over, instead of a scenario."
                       " Without it: the file that KRHVC_REPLAY names."),
        QStringLiteral("FILE"));
    const QCommandLineOption once(
        QStringLiteral("once"), QStringLiteral("End after a recording's last block."));
    const QCommandLineOption record(QStringLiteral("record"),
        QStringLiteral("Write the output with time stamps to FILE as well."),
        QStringLiteral("FILE"));
    const QCommandLineOption frames(
        QStringLiteral("frames"), QStringLiteral("End after N frames."), QStringLiteral("N"));
    const QCommandLineOption seed(QStringLiteral("seed"),
        QStringLiteral("Seed of the noise; goes before the scenario's."), QStringLiteral("N"));
    parser.addOptions({live, scenario, replay, once, record, frames, seed});
    parser.process(arguments);

    const QStringList values = parser.positionalArguments();
    if (values.size() != 3) {
        printError(QStringLiteral("three arguments are needed: port, speed and interval"));
        return std::nullopt;
    }
    QStringList played;
    for (const QCommandLineOption &option : {live, scenario, replay}) {
        if (parser.isSet(option))
            played << QLatin1String("--") + option.names().constFirst();
    }
    if (played.size() > 1) {
        printError(QStringLiteral("%1 and %2 exclude each other").arg(played.at(0), played.at(1)));
        return std::nullopt;
    }
    constexpr int MaxInt = std::numeric_limits<int>::max();
    const auto port = toNumber<int>(values.at(0), QStringLiteral("port"), 0, MaxInt);
    const auto speed = toNumber<int>(values.at(1), QStringLiteral("speed"), 0, MaxInt);
    const auto interval = toNumber<int>(values.at(2), QStringLiteral("interval"), 1, MaxInt);
    if (!port || !speed || !interval)
        return std::nullopt;

    Options options;
    options.port = *port;
    options.intervalMs = *interval;
    options.live = parser.value(live);
    options.scenario = parser.value(scenario);
    options.replay = parser.value(replay);
    options.once = parser.isSet(once);
    options.record = parser.value(record);
    if (parser.isSet(frames)) {
        const auto number
            = toNumber<int>(parser.value(frames), QStringLiteral("--frames"), 1, MaxInt);
        if (!number)
            return std::nullopt;
        options.frames = *number;
    }
    if (parser.isSet(seed)) {
        options.seed = toNumber<quint32>(
            parser.value(seed), QStringLiteral("--seed"), 0, std::numeric_limits<quint32>::max());
        if (!options.seed)
            return std::nullopt;
    }
    // The plug-in starts the program with the three numbers alone.
    if (options.live.isEmpty() && options.scenario.isEmpty() && options.replay.isEmpty()) {
        options.live = qEnvironmentVariable(Demo::LiveVariable);
        options.replay = qEnvironmentVariable(Demo::ReplayVariable);
        options.scenario = qEnvironmentVariable(Demo::ScenarioVariable);
    }
    return options;
}

std::optional<Recording> loadRecording(const QString &name)
{
    QString error;
    const std::optional<QByteArray> text
        = Demo::UserFile::read(name, MaxRecordingMebibytes, &error);
    std::optional<Recording> recording;
    if (text)
        recording = parseRecording(*text, name, &error);
    if (!recording)
        printError(error);
    return recording;
}

std::optional<Scenario> loadScenario(QString name)
{
    const QString beside
        = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("scenario.json"));
    if (name.isEmpty() && QFile::exists(beside))
        name = beside;
    QString error;
    const std::optional<QByteArray> json = name.isEmpty()
        ? builtInScenario()
        : Demo::UserFile::read(name, Demo::MaxJsonMebibytes, &error);
    std::optional<Scenario> scenario;
    if (json)
        scenario = parseScenario(*json, name.isEmpty() ? QStringLiteral("built-in") : name, &error);
    if (!scenario)
        printError(error);
    return scenario;
}

int replay(const Options &options, Session::Settings settings, QFile &recordFile)
{
    const std::optional<Recording> recording = loadRecording(options.replay);
    if (!recording)
        return BadInput;
    const int blocks = recording->blocks.size();
    if (options.once && (settings.frames == 0 || settings.frames > blocks))
        settings.frames = blocks;
    return Session(settings, recordFile).run([&](qint64 frame) {
        return recording->planFrame(frame, options.intervalMs);
    });
}

int simulate(const Options &options, Session::Settings settings, QFile &recordFile)
{
    std::optional<Scenario> scenario = loadScenario(options.scenario);
    if (!scenario)
        return BadInput;
    if (scenario->absentPorts.contains(options.port)) {
        std::fputs("Failed to open COM port.\n", stdout);
        return PortAbsent;
    }
    if (options.seed)
        scenario->seed = *options.seed;
    settings.stopKey.ignoreKey = scenario->ignoreStopKey;
    settings.stopKey.delayMs = scenario->stopDelayMs;
    return Session(settings, recordFile).run([&](qint64 frame) {
        return planFrame(*scenario, frame, options.intervalMs);
    });
}

int simulateLive(const Options &options, const Session::Settings &settings, QFile &recordFile)
{
    LiveScenario live(options.live);
    return Session(settings, recordFile).run([&](qint64 frame) {
        const QString news = live.update(QDateTime::currentDateTimeUtc());
        if (!news.isEmpty())
            printError(news);
        Scenario scenario = live.scenario();
        if (options.seed)
            scenario.seed = *options.seed;
        return planFrame(scenario, frame, options.intervalMs);
    });
}

int play(const Options &options, const Session::Settings &settings, QFile &recordFile)
{
    if (!options.live.isEmpty())
        return simulateLive(options, settings, recordFile);
    if (!options.replay.isEmpty())
        return replay(options, settings, recordFile);
    return simulate(options, settings, recordFile);
}

} // namespace

int main(int argc, char *argv[])
{
    Session::Settings settings;
    settings.stopKey.endOfInputStops = standardInputIsStream();

    const QCoreApplication application(argc, argv);
    const std::optional<Options> options = parseOptions(QCoreApplication::arguments());
    if (!options)
        return BadCommandLine;
    settings.frames = options->frames;

    QFile recordFile(options->record);
    if (Demo::UserFile::isNoFile(options->record)) {
        printError(QStringLiteral("%1: is not a file").arg(options->record));
        return BadInput;
    }
    if (!options->record.isEmpty() && !recordFile.open(QIODevice::WriteOnly)) {
        printError(QStringLiteral("%1: cannot be written: %2")
                       .arg(options->record, recordFile.errorString()));
        return BadInput;
    }
    return play(*options, settings, recordFile);
}
