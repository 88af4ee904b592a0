#include "tools/hvcp2/ReplayCommand.h"

#include "tools/hvcp2/FrameInput.h"
#include "tools/hvcp2/FrameReplay.h"
#include "tools/hvcp2/Pace.h"
#include "tools/hvcp2/ReplayOutput.h"

#include <cmath>
#include <memory>

namespace Hvcp2 {

using Analysis::Plan;
using Analysis::ReplayedFrame;

namespace {

QCommandLineOption speedOption()
{
    return {QStringLiteral("speed"),
        QStringLiteral("Play N times as fast as it was; without it, at once."),
        QStringLiteral("N")};
}

QCommandLineOption rowsOption()
{
    QCommandLineOption option = csvOption();
    option.setDescription(QStringLiteral("Print a row for each face that got a content."));
    return option;
}

std::unique_ptr<ReplayOutput> makeOutput(Form form, const Plan &plan, Console &console)
{
    switch (form) {
    case Form::Csv:
        return std::make_unique<ReplayCsv>(plan, console);
    case Form::Json:
        return std::make_unique<ReplayJson>(plan, console);
    case Form::Text:
        break;
    }
    return std::make_unique<ReplayText>(plan, console);
}

/// False, and the reason in @p error, when --speed makes no sense.
bool readPace(const QCommandLineParser &given, std::optional<Pace> *pace, QString *error)
{
    if (!isGiven(given, speedOption()))
        return true;
    const QString text = given.value(speedOption());
    bool ok = false;
    const double speed = text.toDouble(&ok);
    if (!ok || !std::isfinite(speed) || speed <= 0) {
        *error = QStringLiteral("--speed: \"%1\" is no number above 0").arg(text);
        return false;
    }
    *pace = Pace(speed);
    return true;
}

ExitStatus replay(const Plan &plan, FrameInput *input, std::optional<Pace> pace,
    ReplayOutput *output, Console &console)
{
    FrameReplay replay(plan, *input);
    ReplaySummary summary(plan);
    output->begin();
    while (const std::optional<ReplayedFrame> frame = replay.next()) {
        if (pace)
            pace->waitFor(frame->decision.time);
        summary.add(*frame);
        if (console.isErrorTerminal)
            input->clearProgress();
        output->add(*frame);
        if (pace || console.isErrorTerminal)
            console.out.flush();
    }
    const ExitStatus status = input->finish();
    output->end({summary, replay.replay().otherLimitMs(), replay.replay().decisionsWithoutFrame(),
        input->unreadable()});
    if (status != Fine)
        return status;
    return summary.differing() > 0 ? FoundSomething : Fine;
}

ExitStatus run(const QCommandLineParser &given, Console &console)
{
    const Command command = replayCommand();
    QString error;
    std::optional<Pace> pace;
    const std::optional<Plan> plan = givenPlan(given, &error);
    if (!plan || !readPace(given, &pace, &error))
        return refuse(command, error, console);
    const std::optional<Form> form = givenForm(given, &error);
    if (!form)
        return refuse(command, error, console);
    const std::unique_ptr<FrameInput> input = FrameInput::open(command, given, console);
    if (!input)
        return BadUse;
    const std::unique_ptr<ReplayOutput> output = makeOutput(*form, *plan, console);
    return replay(*plan, input.get(), pace, output.get(), console);
}

} // namespace

Command replayCommand()
{
    Command command;
    command.name = QStringLiteral("replay");
    command.synopsis = QStringLiteral("FRAMES --stage FILE [--settings KEY=VALUE...] [OPTION...]");
    command.summary = QStringLiteral("what would have been started when");
    command.description = QStringLiteral(
        "Decides all frames of a log directory, of log files or of recordings (- is\n"
        "standard input) as the plug-in does with a stage: a line for each sequence that\n"
        "would have been started, and how many there were.\n"
        "\n"
        "With frames of a log it says where that log has other decisions or restricted\n"
        "requests, and why it can have; the exit status is then 1. Each frame is judged\n"
        "by the starts that the log tells of before. A log has whole seconds: where these\n"
        "leave open whether a request came too soon, its own record counts.\n"
        "\n"
        "The columns of --csv are frame, time, face, sequence, score and outcome, which\n"
        "is sent, restricted or cut (more faces than \"concurrent\").");
    command.options = {stageOption(), screenOption(), settingsOption(), speedOption(),
        intervalOption(), rowsOption(), jsonOption()};
    command.takesArguments = true;
    command.examples = QStringList{QStringLiteral("replay log --stage stages/shop-window.json"),
        QStringLiteral("replay log --stage stages/shop-window.json --settings concurrent=2"),
        QStringLiteral("replay day.txt --stage stages/shop-window.json --speed 10"),
        QStringLiteral("replay log --stage stages/shop-window.json --csv > starts.csv")};
    command.run = run;
    return command;
}

} // namespace Hvcp2
