#include "tools/hvcp2/ExplainCommand.h"

#include "tools/hvcp2/ContentTable.h"

#include <QJsonObject>

namespace Hvcp2 {

namespace {

ExitStatus run(const QCommandLineParser &given, Console &console)
{
    QString error;
    const std::optional<Analysis::Plan> plan = givenPlan(given, &error);
    if (!plan)
        return refuse(explainCommand(), error, console);
    if (given.isSet(jsonOption().names().constFirst()))
        printJson(contentTableJson(*plan), console);
    else
        console.out << contentTableText(*plan, console.paint);
    return plan->takesPartEntirely() ? Fine : FoundSomething;
}

} // namespace

Command explainCommand()
{
    Command command;
    command.name = QStringLiteral("explain");
    command.synopsis = QStringLiteral("--stage FILE [--screen ID] [--json]");
    command.summary
        = QStringLiteral("which contents of a stage take part, and why the others do not");
    command.description = QStringLiteral(
        "Lists the contents of a screen as the detection reads them: for whom each one\n"
        "is, which other screens link to it and, when it takes no part, why, with the\n"
        "place in the file. The exit status is 1 when a content takes no part.");
    command.options = {stageOption(), screenOption(), jsonOption()};
    command.examples = QStringList{QStringLiteral("explain --stage stages/shop-window.json"),
        QStringLiteral("explain --stage stages/shop-window.json --screen 2"),
        QStringLiteral("explain --stage stages/shop-window.json --json")};
    command.run = run;
    return command;
}

} // namespace Hvcp2
