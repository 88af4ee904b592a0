#include "demo/player/Options.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <limits>

namespace Player {

using Stage::IdleSequence;

namespace {

constexpr int MaximumSeconds = 1000000; // its milliseconds fit an int

QString tr(const char *text)
{
    return QCoreApplication::translate("Player::Options", text);
}

QString pluginFileName()
{
#if defined(Q_OS_WIN)
    return QStringLiteral("KrHvcP2.dll");
#elif defined(Q_OS_MACOS)
    return QStringLiteral("KrHvcP2.dylib");
#else
    return QStringLiteral("KrHvcP2.so");
#endif
}

QString defaultLogDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)
        + QLatin1String("/logs");
}

QCommandLineOption valueOption(const QString &name, const QString &value, const QString &text)
{
    return {name, text, value};
}

struct Parser
{
    QCommandLineOption headless{
        QStringLiteral("headless"), tr("Run without a display and print one line an event.")};
    QCommandLineOption seconds
        = valueOption(QStringLiteral("seconds"), QStringLiteral("N"), tr("End after <N> seconds."));
    QCommandLineOption stage = valueOption(QStringLiteral("stage"), QStringLiteral("FILE"),
        tr("Play the stage file <FILE> (default: stages/shop-window.json beside the program)."));
    QCommandLineOption screen = valueOption(QStringLiteral("screen"), QStringLiteral("ID"),
        tr("Play the screen <ID> (default: the one that the stage file names)."));
    QCommandLineOption plugin = valueOption(QStringLiteral("plugin"), QStringLiteral("FILE"),
        tr("Load the plug-in <FILE> (default: KrHvcP2 beside the program)."));
    QCommandLineOption logDirectory = valueOption(QStringLiteral("log-dir"), QStringLiteral("DIR"),
        tr("Let the plug-in write its log below <DIR>, which is created when missing."));
    QCommandLineOption log = valueOption(QStringLiteral("log"), QStringLiteral("FILE"),
        tr("Look through <FILE>, a day of the plug-in's log, without starting the plug-in."));
    QCommandLineOption info = valueOption(QStringLiteral("info"), QStringLiteral("FILE"),
        tr("Say what the plug-in <FILE> is and why it loads or does not, and end."));
    QCommandLineOption screenshot = valueOption(QStringLiteral("screenshot"),
        QStringLiteral("FILE"), tr("Write what is shown at the end to the picture <FILE>."));
    QCommandLineOption replay = valueOption(QStringLiteral("replay"), QStringLiteral("FILE"),
        tr("Let the sensor simulator play the recording <FILE>."));
    QCommandLineOption scenario = valueOption(QStringLiteral("scenario"), QStringLiteral("FILE"),
        tr("Let the sensor simulator play the scenario <FILE>."));
    QCommandLineOption switching
        = valueOption(QStringLiteral("switch"), QStringLiteral("now|at-end"),
            tr("Start a sequence at once, or when the content before it is over (default: now)."));
    QCommandLineOption proof = valueOption(QStringLiteral("proof-of-play"), QStringLiteral("FILE"),
        tr("Append a CSV line to <FILE> for each sequence that has played."));
    QCommandLineOption idle = valueOption(QStringLiteral("idle"), QStringLiteral("N[:SECONDS]"),
        tr("Go back to sequence <N> when nothing has been started for <SECONDS> (default: what the "
           "screen says, 20 seconds); 0: to none."));
    QCommandLineParser parser;
    QCommandLineOption help;
    QCommandLineOption version;

    Parser()
        : help(parser.addHelpOption())
        , version(parser.addVersionOption())
    {
        parser.setApplicationDescription(tr("Plays a stage as the host application does and lets "
                                            "the plug-in choose its sequences."));
        parser.addOptions({headless, seconds, stage, screen, plugin, logDirectory, screenshot, log,
            replay, scenario, switching, idle, proof, info});
    }

    /// The option's value as an absolute path, @p fallback when it is not given.
    QString path(const QCommandLineOption &option, const QString &fallback = {}) const
    {
        const QString value = parser.value(option);
        return value.isEmpty() ? fallback : QFileInfo(value).absoluteFilePath();
    }
};

std::optional<Programme::Switching> switchingFromText(const QString &text)
{
    if (text == QLatin1String("now"))
        return Programme::Switching::Now;
    if (text == QLatin1String("at-end"))
        return Programme::Switching::AtEnd;
    return std::nullopt;
}

std::optional<int> wholeNumber(const QString &text, int min, int max)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    return ok && number >= min && number <= max ? std::make_optional(number) : std::nullopt;
}

/// "N" or "N:SECONDS"
std::optional<IdleSequence> idleFromText(const QString &text)
{
    const std::optional<int> sequence
        = wholeNumber(text.section(QLatin1Char(':'), 0, 0), 0, std::numeric_limits<int>::max());
    if (!sequence)
        return std::nullopt;
    if (!text.contains(QLatin1Char(':')))
        return IdleSequence{*sequence, IdleSequence::DefaultAfter};
    const std::optional<int> after = wholeNumber(
        text.section(QLatin1Char(':'), 1), IdleSequence::MinAfter, IdleSequence::MaxAfter);
    return after ? std::make_optional(IdleSequence{*sequence, *after}) : std::nullopt;
}

Options refuse(const QString &reason)
{
    Options options;
    options.request = Options::Refuse;
    options.error = reason;
    return options;
}

} // namespace

Options Options::fromArguments(const QStringList &arguments, const QString &programDirectory)
{
    Parser given;
    QCommandLineParser &parser = given.parser;
    if (!parser.parse(arguments))
        return refuse(parser.errorText());

    Options options;
    if (parser.isSet(given.help)) {
        options.request = ShowHelp;
        return options;
    }
    if (parser.isSet(given.version)) {
        options.request = ShowVersion;
        return options;
    }
    if (!parser.positionalArguments().isEmpty())
        return refuse(
            tr("Unexpected argument '%1'.").arg(parser.positionalArguments().constFirst()));
    if (parser.isSet(given.info)) {
        options.request = ShowInfo;
        options.infoFile = given.path(given.info);
        return options;
    }
    if (parser.isSet(given.seconds)) {
        bool ok = false;
        const double value = parser.value(given.seconds).toDouble(&ok);
        if (!ok || !(value >= 0 && value <= MaximumSeconds)) {
            return refuse(tr("--seconds: '%1' is not a number from 0 to %2.")
                              .arg(parser.value(given.seconds), QString::number(MaximumSeconds)));
        }
        options.milliseconds = qRound(value * 1000);
    }
    if (parser.isSet(given.screen)) {
        bool ok = false;
        options.screenId = parser.value(given.screen).toInt(&ok);
        if (!ok) {
            return refuse(
                tr("--screen: '%1' is not a whole number.").arg(parser.value(given.screen)));
        }
    }
    if (parser.isSet(given.switching)) {
        const QString value = parser.value(given.switching);
        const std::optional<Programme::Switching> switching = switchingFromText(value);
        if (!switching)
            return refuse(tr("--switch: '%1' is neither 'now' nor 'at-end'.").arg(value));
        options.switching = *switching;
    }
    if (parser.isSet(given.idle)) {
        const QString value = parser.value(given.idle);
        options.idle = idleFromText(value);
        if (!options.idle) {
            return refuse(tr("--idle: '%1' is no number of a sequence, or none with seconds from "
                             "%2 to %3 behind a colon.")
                              .arg(value, QString::number(IdleSequence::MinAfter),
                                  QString::number(IdleSequence::MaxAfter)));
        }
    }
    if (parser.isSet(given.replay) && parser.isSet(given.scenario))
        return refuse(tr("--replay and --scenario exclude each other."));
    if (parser.isSet(given.log) && parser.isSet(given.headless))
        return refuse(tr("--log and --headless exclude each other."));

    const QDir directory(programDirectory);
    options.headless = parser.isSet(given.headless);
    options.stageFile = given.path(
        given.stage, directory.absoluteFilePath(QStringLiteral("stages/shop-window.json")));
    options.pluginFile = given.path(given.plugin, directory.absoluteFilePath(pluginFileName()));
    options.logDirectory = given.path(given.logDirectory, defaultLogDirectory());
    options.screenshotFile = given.path(given.screenshot);
    options.proofFile = given.path(given.proof);
    options.logFile = given.path(given.log);
    options.replayFile = given.path(given.replay);
    options.scenarioFile = given.path(given.scenario);
    return options;
}

QString Options::helpText()
{
    return Parser().parser.helpText();
}

} // namespace Player
