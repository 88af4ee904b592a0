#include "BareCalls.h"
#include "Frames.h"
#include "Goals.h"
#include "Report.h"

#include "log/PluginLogger.h"

#include <QDir>
#include <QTemporaryDir>

namespace Bench {

using namespace PluginKrHvcP2;

namespace {

constexpr double Bar = 1.05;
constexpr int ManyPairs = 2001; // a record is short

} // namespace

void measureLog(Report &report)
{
    const QTemporaryDir directory;
    PluginLogger logger;
    LogSettings settings;
    settings.directory = directory.filePath(QStringLiteral("ours"));
    settings.style = 1;
    logger.setSettings(settings);
    BareLog bare(directory.filePath(QStringLiteral("bare")));

    const QString levelName = settings.levelNames.value(Information);
    for (const int faces : FaceCounts) {
        const QString message = chunk(faces);
        const Side ours{
            {[&] { logger.write(message, Information, PluginLogger::DefaultTimeoutMs); }}, {}};
        const Side theirs{{[&] { bare.write(message, levelName); }}, {}};
        const Comparison worst = compare(ours, theirs, ManyPairs).front();
        report.addRatio(QStringLiteral("P3"), facesText(faces), worst, Bar);
    }
}

} // namespace Bench
