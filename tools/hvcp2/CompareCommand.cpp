#include "tools/hvcp2/CompareCommand.h"

#include "tools/hvcp2/Comparison.h"
#include "tools/hvcp2/FrameInput.h"

#include <QJsonObject>

namespace Hvcp2 {

namespace {

QCommandLineOption screensOption()
{
    QCommandLineOption option = screenOption();
    option.setDescription(QStringLiteral("The screen (default: those that the stages play)."));
    return option;
}

QCommandLineOption secondSettingsOption()
{
    QCommandLineOption option = settingsOption();
    option.setDescription(QStringLiteral("Other values for settings of the second plan."));
    return option;
}

/// The second plan is the first one with other settings when only one stage is named.
std::optional<Comparison> givenComparison(const QCommandLineParser &given, QString *error)
{
    const QStringList stages = given.values(stageOption().names().constFirst());
    const bool isOneEnough = isGiven(given, settingsOption());
    if (stages.size() > 2 || stages.size() + (isOneEnough ? 1 : 0) < 2) {
        *error = QStringLiteral("Two plans are needed: --stage A --stage B, or --stage A"
                                " --settings KEY=VALUE.");
        return std::nullopt;
    }
    const std::optional<Analysis::Plan> first = readGivenPlan(given, stages.first(), error);
    if (!first)
        return std::nullopt;
    std::optional<Analysis::Plan> second = readGivenPlan(given, stages.last(), error);
    if (!second || !assignGivenSettings(given, &*second, error))
        return std::nullopt;
    return Comparison(*first, *second);
}

ExitStatus run(const QCommandLineParser &given, Console &console)
{
    const Command command = compareCommand();
    QString error;
    std::optional<Comparison> comparison = givenComparison(given, &error);
    const std::optional<Form> form = comparison ? givenForm(given, &error) : std::nullopt;
    if (!form)
        return refuse(command, error, console);
    const std::unique_ptr<FrameInput> input = FrameInput::open(command, given, console);
    if (!input)
        return BadUse;
    while (const std::optional<Analysis::Entry> entry = input->next())
        comparison->add(*entry);
    const ExitStatus status = input->finish();
    if (status != Fine)
        return status;
    print(
        *form, [&] { return comparison->toText(console.paint); },
        [&] { return comparison->toJson(); }, [&] { return comparison->toCsv(); }, console);
    return Fine;
}

} // namespace

Command compareCommand()
{
    Command command;
    command.name = QStringLiteral("compare");
    command.synopsis = QStringLiteral("FRAMES... --stage A --stage B [--settings KEY=VALUE...]\n"
                                      "       [--screen ID] [--interval MS] [--json | --csv]");
    command.summary = QStringLiteral("the same audience under two plans");
    command.description = QStringLiteral(
        "Decides every frame twice, as the plug-in would with either plan, and puts side\n"
        "by side what came of it: how often a content was started, whose faces started\n"
        "one, were held back by the restriction, cut off by \"concurrent\" or left out, and\n"
        "for each content how often it was started. With one stage the second plan is\n"
        "the first one with other settings.\n\n"
        "FRAMES are a directory of the plug-in's logs or of recordings, files of these,\n"
        "or - for standard input. A face counts in each frame: the sensor follows nobody\n"
        "from one to the next.\n\n"
        "The columns of --csv are figure, sequence, nameA, nameB, gender, ageFrom, a, b;\n"
        "where a cell in front of a and b is empty, they are for all.");
    command.options = {stageOption(), secondSettingsOption(), screensOption(), intervalOption(),
        csvOption(), jsonOption()};
    command.takesArguments = true;
    command.examples
        = QStringList{QStringLiteral("compare logs --stage today.json --stage tomorrow.json"),
            QStringLiteral("compare logs --stage today.json --settings event-sending-limit=5000"),
            QStringLiteral("compare day.out --stage a.json --stage b.json --json")};
    command.run = run;
    return command;
}

} // namespace Hvcp2
