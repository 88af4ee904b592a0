#include "Goals.h"
#include "Report.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

#include <algorithm>
#include <iterator>

using namespace Bench;

namespace {

enum ExitStatus { Held = 0, Missed = 1, BadCommandLine = 2, NotWritten = 3 };

struct Measurement
{
    const char *goals;
    void (*measure)(Report &report);
};

constexpr Measurement Measurements[] = {
    {"P1 P1b", &measureSlot},
    {"P2", &measurePanel},
    {"P3", &measureLog},
    {"P4", &measureDecision},
    {"P5", &measureGrowth},
    {"P6", &measurePopulation},
    {"P7", &measureHeartbeat},
    {"P8", &measureMemory},
    {"P9", &measureReading},
};

QStringList goalsOf(const Measurement &measurement)
{
    return QString::fromLatin1(measurement.goals).split(QLatin1Char(' '));
}

QStringList allGoals()
{
    QStringList goals;
    for (const Measurement &measurement : Measurements)
        goals += goalsOf(measurement);
    return goals;
}

bool containsAny(const QStringList &list, const QStringList &wanted)
{
    return std::any_of(
        wanted.cbegin(), wanted.cend(), [&](const QString &entry) { return list.contains(entry); });
}

} // namespace

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen"); // no display is needed
    const QApplication application(argc, argv);

    const QCommandLineOption goalsOption(QStringLiteral("goals"),
        QStringLiteral("Print one line a goal and case; exit with 1 when one is missed."));
    const QCommandLineOption jsonOption(QStringLiteral("json"),
        QStringLiteral("Write all figures to <file>."), QStringLiteral("file"));
    const QCommandLineOption onlyOption(QStringLiteral("only"),
        QStringLiteral("Measure only <goal>; may be given several times."), QStringLiteral("goal"));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Measures what a frame costs beside the same calls made barely."));
    parser.addHelpOption();
    parser.addOptions({goalsOption, jsonOption, onlyOption});
    parser.process(application);

    const QStringList goals = parser.isSet(onlyOption) ? parser.values(onlyOption) : allGoals();
    for (const QString &goal : goals) {
        if (!allGoals().contains(goal)) {
            QTextStream(stderr) << "No such goal: " << goal << '\n';
            return BadCommandLine;
        }
    }

    Report report(parser.isSet(goalsOption) ? Report::Goals : Report::Table);
    for (const Measurement &measurement : Measurements) {
        if (containsAny(goalsOf(measurement), goals))
            measurement.measure(report);
    }
    if (parser.isSet(jsonOption) && !report.writeJson(parser.value(jsonOption))) {
        QTextStream(stderr) << "Cannot write " << parser.value(jsonOption) << '\n';
        return NotWritten;
    }
    return parser.isSet(goalsOption) && report.isMissed() ? Missed : Held;
}
