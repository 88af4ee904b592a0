#include "tools/hvcp2/ExportCommand.h"

#include "tools/hvcp2/ExportLines.h"
#include "tools/hvcp2/ExportState.h"
#include "tools/hvcp2/FrameInput.h"

#include <QJsonDocument>

namespace Hvcp2 {

using namespace Analysis;

namespace {

const QString StandardInput = QStringLiteral("-");

QCommandLineOption sinceOption()
{
    return {QStringLiteral("since"),
        QStringLiteral("Go on where the call before ended, by this file."),
        QStringLiteral("STATE")};
}

QCommandLineOption labelOption()
{
    QCommandLineOption option = screenOption();
    option.setDescription(QStringLiteral("The screen of the ids (default: of the stage)."));
    return option;
}

ExitStatus run(const QCommandLineParser &given, Console &console)
{
    const Command command = exportCommand();
    QString error;
    std::optional<int> screen;
    if (!readGivenScreen(given, &screen, &error))
        return refuse(command, error, console);
    std::optional<Plan> plan;
    if (isGiven(given, stageOption())) {
        plan = givenPlan(given, &error);
        if (!plan)
            return refuse(command, error, console);
        screen = plan->screenId;
    }
    const QString state = given.value(QStringLiteral("since"));
    const bool hasState = isGiven(given, sinceOption());
    if (hasState && givenFrames(given).contains(StandardInput))
        return refuse(command, QStringLiteral("--since: standard input begins anew"), console);
    const std::unique_ptr<FrameInput> input = FrameInput::open(command, given, console);
    if (!input)
        return BadUse;
    if (hasState) {
        const auto positions = readExportState(state, input->source().files(), &error);
        if (!positions)
            return refuse(command, error, console);
        input->source().resume(*positions);
    }

    ExportLines lines(plan, screen);
    while (const std::optional<Entry> entry = input->next()) {
        const QVector<QJsonObject> objects = lines.linesOf(*entry);
        for (const QJsonObject &line : objects) {
            console.out << QString::fromUtf8(QJsonDocument(line).toJson(QJsonDocument::Compact))
                        << '\n';
        }
    }
    const ExitStatus status = input->finish();
    if (status != Fine)
        return status;
    // What was not written comes again in the next call.
    console.out.flush();
    if (hasState && console.out.status() == QTextStream::Ok
        && !writeExportState(state, input->source().positions(), &error))
        return refuse(command, error, console);
    return input->unreadable() == 0 ? Fine : FoundSomething;
}

} // namespace

Command exportCommand()
{
    Command command;
    command.name = QStringLiteral("export");
    command.synopsis = QStringLiteral("FRAMES [--since STATE] [--stage FILE] [--screen ID]");
    command.summary = QStringLiteral("what logs tell as JSON, one line for each thing");
    command.description = QStringLiteral(
        "Prints a line for each frame, face, decision, request that was held back, start\n"
        "and stop of the sensor program and error. Each has an \"id\" of screen, file name\n"
        "and place, so that what is loaded twice counts once. FRAMES are a log directory,\n"
        "log files, recordings or - for standard input; what a recording does not tell is\n"
        "decided with the stage. With --since the next call goes on where this one ended,\n"
        "also when files were added or cleaned up in between; the last thing may come\n"
        "again. The exit status is 1 when there are places that cannot be read.");
    command.options
        = {sinceOption(), stageOption(), labelOption(), settingsOption(), intervalOption()};
    command.takesArguments = true;
    command.examples = QStringList{QStringLiteral("export log/KrHvcP2 --screen 1"),
        QStringLiteral("export log/KrHvcP2 --screen 1 --since log.state >>log.jsonl"),
        QStringLiteral("export HvcCon.out --stage stages/shop-window.json")};
    command.run = run;
    return command;
}

} // namespace Hvcp2
