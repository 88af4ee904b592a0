#include "tools/hvcp2/CoverageCommand.h"

#include "tools/analysis/Coverage.h"
#include "tools/hvcp2/CoverageReport.h"
#include "tools/hvcp2/CoverageSvg.h"

#include <QJsonObject>

namespace Hvcp2 {

namespace {

QCommandLineOption pictureOption()
{
    return {{QStringLiteral("o"), QStringLiteral("output")},
        QStringLiteral("Also write the map as a picture (SVG)."), QStringLiteral("FILE.svg")};
}

ExitStatus run(const QCommandLineParser &given, Console &console)
{
    QString error;
    const std::optional<Analysis::Plan> plan = givenPlan(given, &error);
    if (!plan)
        return refuse(coverageCommand(), error, console);
    const std::optional<Form> form = givenForm(given, &error);
    if (!form)
        return refuse(coverageCommand(), error, console);
    const Analysis::Coverage coverage = Analysis::coverageOf(plan->contents);

    const QString picture = pictureOption().names().constFirst();
    if (given.isSet(picture)
        && !writeFile(given.value(picture), coverageSvg(*plan, coverage), &error))
        return refuse(coverageCommand(), error, console);
    print(
        *form, [&] { return coverageText(*plan, coverage, console.paint); },
        [&] { return coverageJson(*plan, coverage); }, [&] { return coverageCsv(*plan, coverage); },
        console);
    const bool isFine
        = plan->takesPartEntirely() && !coverage.hasHoles() && coverage.unreached().isEmpty();
    return isFine ? Fine : FoundSomething;
}

} // namespace

Command coverageCommand()
{
    Command command;
    command.name = QStringLiteral("coverage");
    command.synopsis = QStringLiteral("--stage FILE [--screen ID] [-o FILE.svg] [--json | --csv]");
    command.summary = QStringLiteral("who gets which content: ages 0 to 100 by gender");
    command.description = QStringLiteral(
        "Shows which content a viewer of each age and gender gets, and names the viewers\n"
        "that no content fits, the contents that reach nobody and those that reach people\n"
        "only in place of another. The exit status is 1 when a woman or man of some age\n"
        "gets no content, and when a content reaches nobody.\n"
        "\n"
        "The columns of --csv are gender, ageFrom, ageTo, content, name and fit.");
    command.options = {stageOption(), screenOption(), pictureOption(), csvOption(), jsonOption()};
    command.examples = QStringList{QStringLiteral("coverage --stage stages/shop-window.json"),
        QStringLiteral("coverage --stage stages/shop-window.json -o shop-window.svg"),
        QStringLiteral("coverage --stage stages/shop-window.json --json")};
    command.run = run;
    return command;
}

} // namespace Hvcp2
