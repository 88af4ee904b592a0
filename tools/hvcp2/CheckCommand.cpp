#include "tools/hvcp2/CheckCommand.h"

#include "tools/hvcp2/Installation.h"

#include <QFileInfo>
#include <QJsonObject>

namespace Hvcp2 {

namespace {

QCommandLineOption logDirectoryOption()
{
    return {QStringLiteral("log-dir"), QStringLiteral("The host's log directory."),
        QStringLiteral("DIR")};
}

/// The installation's directory; empty, and the reason in @p error, when there is none.
QString givenDirectory(const QCommandLineParser &given, QString *error)
{
    const QStringList directories = given.positionalArguments();
    if (directories.size() != 1) {
        *error = QStringLiteral("One DIR is needed. See 'hvcp2 check --help'.");
        return {};
    }
    if (QFileInfo(directories.constFirst()).isDir())
        return directories.constFirst();
    *error = QStringLiteral("%1: is not a folder").arg(directories.constFirst());
    return {};
}

ExitStatus run(const QCommandLineParser &given, Console &console)
{
    QString error;
    const QString directory = givenDirectory(given, &error);
    std::optional<Analysis::Plan> plan;
    if (error.isEmpty() && given.isSet(stageOption().names().constFirst()))
        plan = givenPlan(given, &error);
    if (!error.isEmpty())
        return refuse(checkCommand(), error, console);

    const int intervalMs
        = plan ? plan->settings.interval : PluginKrHvcP2::ScreenSettings().interval;
    Findings findings = checkPlugin(directory) + checkSensorProgram(directory)
        + checkRunningCopies() + checkSettings(directory, intervalMs);
    const QString logDirectory = given.value(logDirectoryOption().names().constFirst());
    if (!logDirectory.isEmpty())
        findings += checkLogDirectory(logDirectory);
    if (plan)
        findings += checkContents(*plan);

    if (given.isSet(jsonOption().names().constFirst()))
        printJson(findingsJson(findings), console);
    else
        console.out << findingsText(findings, console.paint);
    return isFine(findings) ? Fine : FoundSomething;
}

} // namespace

Command checkCommand()
{
    Command command;
    command.name = QStringLiteral("check");
    command.synopsis = QStringLiteral("DIR [--stage FILE] [--screen ID] [--log-dir DIR] [--json]");
    command.summary = QStringLiteral("whether an installation is ready for opening day");
    command.description = QStringLiteral(
        "Looks at the folder with the plug-in file and the sensor program: whether the\n"
        "plug-in loads with the Qt of this program and the sensor program can run, what\n"
        "setting.ini says to the plug-in, whether a copy of the sensor program runs\n"
        "already; whether the log can be written, and which contents of a stage take no\n"
        "part. Each warning and each error says what to do. Nothing is started. The exit\n"
        "status is 1 when there is a warning or an error.");
    command.options = {stageOption(), screenOption(), logDirectoryOption(), jsonOption()};
    command.takesArguments = true;
    command.examples = QStringList{QStringLiteral("check C:/host/plugins"),
        QStringLiteral("check C:/host/plugins --log-dir C:/host/log --stage window.json")};
    command.run = run;
    return command;
}

} // namespace Hvcp2
