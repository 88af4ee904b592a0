#include "tools/hvcp2/ExplainCommand.h"

#include "tools/hvcp2/ContentTable.h"
#include "tools/hvcp2/FrameChoice.h"
#include "tools/hvcp2/FrameCsv.h"
#include "tools/hvcp2/FrameInput.h"
#include "tools/hvcp2/FrameReplay.h"
#include "tools/hvcp2/FrameReport.h"

#include <QJsonObject>

namespace Hvcp2 {

using Analysis::Plan;

namespace {

ExitStatus explainStage(const Plan &plan, Form form, Console &console)
{
    print(
        form, [&] { return contentTableText(plan, console.paint); },
        [&] { return contentTableJson(plan); }, [&] { return contentTableCsv(plan); }, console);
    return plan.takesPartEntirely() ? Fine : FoundSomething;
}

ExitStatus explainFrame(
    const Plan &plan, Form form, const QCommandLineParser &given, Console &console)
{
    const Command command = explainCommand();
    QString error;
    std::optional<FrameChoice> choice = FrameChoice::fromOptions(given, &error);
    if (!choice)
        return refuse(command, error, console);
    const std::unique_ptr<FrameInput> input = FrameInput::open(command, given, console);
    if (!input)
        return BadUse;

    FrameReplay replay(plan, *input);
    std::optional<Analysis::ReplayedFrame> frame;
    do {
        frame = replay.next();
    } while (frame && choice->take(*frame));
    const ExitStatus status = input->finish();
    if (status != Fine)
        return status;
    if (!choice->chosen())
        return refuse(command, choice->objection(), console);
    print(
        form, [&] { return frameText(plan, *choice, console.paint); },
        [&] { return frameJson(plan, *choice); }, [&] { return frameCsv(plan, *choice); }, console);
    return choice->chosen()->difference == Analysis::Difference::None ? Fine : FoundSomething;
}

ExitStatus run(const QCommandLineParser &given, Console &console)
{
    QString error;
    const std::optional<Plan> plan = givenPlan(given, &error);
    const std::optional<Form> form = plan ? givenForm(given, &error) : std::nullopt;
    if (!form)
        return refuse(explainCommand(), error, console);
    if (!givenFrames(given).isEmpty())
        return explainFrame(*plan, *form, given, console);
    if (isGiven(given, atOption()) || isGiven(given, frameOption()))
        return refuse(explainCommand(), QStringLiteral("--at and --frame need FRAMES."), console);
    return explainStage(*plan, *form, console);
}

} // namespace

Command explainCommand()
{
    Command command;
    command.name = QStringLiteral("explain");
    command.synopsis = QStringLiteral("--stage FILE [FRAMES [--at TIME | --frame N]] [OPTION...]");
    command.summary
        = QStringLiteral("why a frame got its sequence; which contents take part, and why");
    command.description = QStringLiteral(
        "With FRAMES, a log directory, log files or recordings (- is standard input),\n"
        "shows what the plug-in makes of one frame: for each face its place in size and\n"
        "direction, its score, each content with the reason why it was taken or not, and\n"
        "what became of the sequence. That is the frame that --at or --frame names, or\n"
        "else the last one for which something was sent, or else the last one. The exit\n"
        "status is 1 when a log says otherwise about it.\n"
        "\n"
        "TIME is \"2018-02-01 09:30:00\", also with milliseconds, or \"09:30\" or \"09:30:00\"\n"
        "of the first day that has it, each in the time of the frames, or has its zone:\n"
        "\"2018-02-01T09:30:00Z\".\n"
        "\n"
        "Without FRAMES lists the contents of a screen as the detection reads them: for\n"
        "whom each one is, which other screens link to it and, when it takes no part,\n"
        "why, with the place in the file. The exit status is 1 when a content takes no\n"
        "part.\n"
        "\n"
        "--csv prints a row for each content, of a frame for each face and content.");
    command.options = {stageOption(), screenOption(), atOption(), frameOption(), settingsOption(),
        intervalOption(), csvOption(), jsonOption()};
    command.takesArguments = true;
    command.examples = QStringList{QStringLiteral("explain --stage stages/shop-window.json"),
        QStringLiteral("explain --stage stages/shop-window.json --screen 2"),
        QStringLiteral("explain log --stage stages/shop-window.json --at 09:30"),
        QStringLiteral("explain day.txt --stage stages/shop-window.json --frame 12 --json")};
    command.run = run;
    return command;
}

} // namespace Hvcp2
