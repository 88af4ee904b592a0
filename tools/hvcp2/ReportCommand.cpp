#include "tools/hvcp2/ReportCommand.h"

#include "tools/hvcp2/FrameInput.h"
#include "tools/hvcp2/ReportCsv.h"
#include "tools/hvcp2/ReportPage.h"
#include "tools/hvcp2/TotalsReport.h"

#include <QJsonObject>

namespace Hvcp2 {

using namespace Analysis;

namespace {

constexpr int MsPerSecond = 1000;
const QString Silence = QStringLiteral("silence");
const QString DefaultSilence = QString::number(LongestFrameGapMs / MsPerSecond);

QCommandLineOption pageOption()
{
    return {{QStringLiteral("o"), QStringLiteral("output")},
        QStringLiteral("Write a page instead of the summary."), QStringLiteral("FILE.html")};
}

QCommandLineOption silenceOption()
{
    return {Silence,
        QStringLiteral("How long no frame makes a silent time (default: %1).").arg(DefaultSilence),
        QStringLiteral("SECONDS"), DefaultSilence};
}

/// Whether there is what a plan is read from, or something that needs one.
bool isPlanGiven(const QCommandLineParser &given)
{
    return isGiven(given, stageOption()) || isGiven(given, screenOption())
        || isGiven(given, settingsOption());
}

/// Nothing when it is no number of seconds.
std::optional<qint64> silenceMs(const QCommandLineParser &given)
{
    bool ok = false;
    const int seconds = given.value(Silence).toInt(&ok);
    return ok && seconds > 0 ? std::make_optional(qint64{seconds} * MsPerSecond) : std::nullopt;
}

ExitStatus run(const QCommandLineParser &given, Console &console)
{
    QString error;
    Report report;
    const std::optional<Form> form = givenForm(given, &error);
    if (!form)
        return refuse(reportCommand(), error, console);
    const std::optional<qint64> silence = silenceMs(given);
    if (!silence) {
        return refuse(reportCommand(),
            QStringLiteral("--silence: \"%1\" is no number of seconds").arg(given.value(Silence)),
            console);
    }
    report.silenceMs = *silence;
    if (isPlanGiven(given)) {
        report.plan = givenPlan(given, &error);
        if (!report.plan)
            return refuse(reportCommand(), error, console);
    }
    const Command command = reportCommand();
    const std::unique_ptr<FrameInput> input = FrameInput::open(command, given, console);
    if (!input)
        return BadUse;

    TotalsCounter counter(report.plan, report.silenceMs);
    while (const std::optional<Entry> entry = input->next())
        counter.add(*entry);
    const ExitStatus status = input->finish();
    if (status != Fine)
        return status;
    report.files = input->source().files();
    report.totals = counter.totals();
    report.totals.unreadable = input->unreadable();

    const bool wantsPage = isGiven(given, pageOption());
    if (wantsPage
        && !writeFile(given.value(pageOption().names().constFirst()), reportPage(report), &error))
        return refuse(command, error, console);
    if (*form != Form::Text || !wantsPage) {
        print(
            *form, [&] { return reportText(report, console.paint); },
            [&] { return reportJson(report); }, [&] { return reportCsv(report); }, console);
    }
    if (report.totals.frames == 0)
        console.error << "hvcp2 report: there are no frames\n";
    return report.totals.frames > 0 && report.totals.unreadable == 0 ? Fine : FoundSomething;
}

} // namespace

Command reportCommand()
{
    Command command;
    command.name = QStringLiteral("report");
    command.synopsis = QStringLiteral("FRAMES [--stage FILE] [-o FILE.html] [--json | --csv]");
    command.summary = QStringLiteral("whom the screen saw and what it did, in figures");
    command.description = QStringLiteral(
        "Counts what logs or recordings tell: faces by hour, weekday, age and gender, the\n"
        "sequences that were determined and held back, errors, restarts and times without\n"
        "frames. With a stage also the viewers whom no content fits, and what would have\n"
        "been requested for the frames of a recording, which does not tell that itself.\n"
        "FRAMES are a log directory, log files, recordings or - for standard input. The\n"
        "page is one file that needs no other. The exit status is 1 when there are no\n"
        "frames or places that cannot be read.\n"
        "\n"
        "The columns of --csv are figure, date, weekday, hour, gender, ageFrom, sequence,\n"
        "name and value; where a cell in front of the value is empty, it counts all.");
    command.options = {stageOption(), screenOption(), settingsOption(), pageOption(), csvOption(),
        jsonOption(), silenceOption(), intervalOption()};
    command.takesArguments = true;
    command.examples = QStringList{QStringLiteral("report log/KrHvcP2"),
        QStringLiteral("report log/KrHvcP2 --stage stages/shop-window.json -o report.html"),
        QStringLiteral("report HvcCon.out --stage stages/shop-window.json --json")};
    command.run = run;
    return command;
}

} // namespace Hvcp2
