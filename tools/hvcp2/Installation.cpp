#include "tools/hvcp2/Installation.h"

#include "demo/support/ExecutableFormat.h"
#include "demo/support/PluginFile.h"
#include "demo/support/SimulatorVariables.h"
#include "log/LockFile.h"
#include "log/LogFormat.h"
#include "sensor/KrHvcController.h"
#include "sensor/ProcessList.h"
#include "tools/hvcp2/RecordOptions.h"
#include "tools/hvcp2/Words.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSysInfo>
#include <QTemporaryFile>

#include <vector>

namespace Hvcp2 {

using Demo::ExecutableFormat;
using PluginKrHvcP2::KrHvcController;

namespace LockFile = PluginKrHvcP2::LockFile;
namespace LogFormat = PluginKrHvcP2::LogFormat;
namespace ProcessList = PluginKrHvcP2::ProcessList;

namespace {

const QString PluginName = QStringLiteral("KrHvcP2"); // of its log folder, too
const QString LogBaseName = QStringLiteral("KrHvcP2Log");
constexpr qint64 MaxProgramBytes = Q_INT64_C(64) * 1024 * 1024; // that are looked at

#ifdef Q_OS_WIN
const QString PluginFileName = QStringLiteral("KrHvcP2.dll");
#else
const QString PluginFileName = QStringLiteral("KrHvcP2.so");
#endif

/// A file that is to be started: whether it is there and of this system.
Finding checkProgram(const QString &fileName)
{
    const QFileInfo info(fileName);
    const QString name = info.fileName();
    if (!info.exists())
        return {Finding::Error, name, QStringLiteral("is not there"),
            QStringLiteral("Copy it to %1.").arg(info.absolutePath())};
    QFile file(fileName);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly))
        return {Finding::Error, name, QStringLiteral("is no file that can be read"),
            QStringLiteral("Put the sensor program in its place.")};
    const ExecutableFormat format = ExecutableFormat::of(file.read(ExecutableFormat::HeaderBytes));
    const ExecutableFormat::System system = ExecutableFormat::ofThisProgram().system;
    if (!format.runsOn(system, QSysInfo::currentCpuArchitecture()))
        return {Finding::Error, name,
            QStringLiteral("is %1, which does not run here").arg(format.toText()),
            QStringLiteral("Put the sensor program for this system in its place.")};
    if (!info.isExecutable())
        return {Finding::Error, name, QStringLiteral("may not be run"),
            QStringLiteral("Make it executable: chmod +x %1").arg(info.absoluteFilePath())};
    return {Finding::Ok, name, format.toText(), QString()};
}

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.read(MaxProgramBytes) : QByteArray();
}

Findings checkRecorded(const QString &directory)
{
    QString error;
    const std::optional<RecordOptions> options = readRecordOptions(nullptr, directory, &error);
    if (!options)
        return {{Finding::Error, QLatin1String(RecordOptions::FileName), error,
            QStringLiteral("See 'hvcp2 record --help'.")}};
    Finding program = checkProgram(options->program);
    const QString ownName = QLatin1String(KrHvcController::ProgramName);
    if (program.level == Finding::Ok
        && program.subject.compare(ownName, Qt::CaseInsensitive) == 0) {
        program.level = Finding::Warning;
        program.text = QStringLiteral("has the name by which the plug-in ends what is left over");
        program.advice = QStringLiteral("Rename the recorded program to HvcCon-real.exe.");
    }
    return {program};
}

/// Writes nothing that stays.
bool isWritable(const QString &directory)
{
    QTemporaryFile file(QDir(directory).filePath(QStringLiteral("hvcp2-check-XXXXXX")));
    return file.open() && file.write("x") == 1 && file.flush();
}

Finding checkLock(const QString &folder)
{
    const QString name = LogFormat::lockFileName(LogBaseName);
    const QString path = QDir(folder).absoluteFilePath(name);
    switch (LockFile::look(path, &QDateTime::currentDateTime).state) {
    case LockFile::State::Absent:
        return {Finding::Ok, name, QStringLiteral("nobody holds the log"), QString()};
    case LockFile::State::Young:
        return {Finding::Warning, name,
            QStringLiteral("somebody writes the log at this moment, or has just crashed"),
            QStringLiteral("Look again in a minute: a lock that stays is taken after 30 seconds.")};
    case LockFile::State::Stale:
        return {Finding::Warning, name, QStringLiteral("was left behind by a crash"),
            QStringLiteral("Delete %1, or leave it: the plug-in takes it over.").arg(path)};
    case LockFile::State::Unusable:
        break;
    }
    return {Finding::Error, name,
        QStringLiteral("something that is no file stands in its place: nothing is logged"),
        QStringLiteral("Remove %1.").arg(path)};
}

} // namespace

Findings checkPlugin(const QString &directory)
{
    using Demo::PluginFile;
    const PluginFile plugin = PluginFile::examine(QDir(directory).absoluteFilePath(PluginFileName));
    switch (plugin.problem) {
    case PluginFile::None:
        return {{Finding::Ok, PluginFileName,
            QStringLiteral("loads with Qt %1; it was built with Qt %2 (%3)")
                .arg(QString::fromLatin1(qVersion()), plugin.qtVersion,
                    plugin.isDebug ? QStringLiteral("debug") : QStringLiteral("release")),
            QString()}};
    case PluginFile::Missing:
    case PluginFile::OtherInterface:
        return {{Finding::Error, PluginFileName, plugin.reason(), plugin.advice()}};
    default:
        break;
    }
    QString text = QStringLiteral("does not load: it %1").arg(plugin.reason());
    if (!text.contains(plugin.message))
        text += QStringLiteral(" (%1)").arg(plugin.message);
    return {{Finding::Error, PluginFileName, text, plugin.advice()}};
}

Findings checkSensorProgram(const QString &directory)
{
    const QString path
        = QDir(directory).absoluteFilePath(QLatin1String(KrHvcController::ProgramName));
    Finding program = checkProgram(path);
    if (program.level != Finding::Ok)
        return {program};
    const QByteArray content = contentOf(path);
    if (content.contains(RecordOptions::FileName)) {
        program.text = QStringLiteral("hvcp2, which records the sensor program behind it");
        return Findings{program} + checkRecorded(directory);
    }
    if (content.contains(Demo::ReplayVariable)) {
        program.level = Finding::Warning;
        program.text = QStringLiteral("is the simulator of the demonstration: it opens no port");
        program.advice = QStringLiteral("Put the sensor program in its place.");
    }
    return {program};
}

Findings checkRunningCopies()
{
    const QString name = QLatin1String(KrHvcController::ProgramName);
    QStringList ids;
    const std::vector<ProcessList::ProcessId> found
        = ProcessList::find(KrHvcController::ProgramName);
    for (const ProcessList::ProcessId id : found)
        ids << QString::number(id);
    const QString subject = QStringLiteral("Running programs");
    if (ids.isEmpty())
        return {{Finding::Ok, subject, QStringLiteral("none is called %1").arg(name), QString()}};
    return {{Finding::Warning, subject,
        QStringLiteral("%1 runs already, process %2").arg(name, ids.join(QLatin1String(", "))),
        QStringLiteral("If no host plays on this machine, end it: it may hold the COM port. The"
                       " plug-in ends it when it starts, 5 seconds late.")}};
}

Findings checkLogDirectory(const QString &directory)
{
    const QString subject = QStringLiteral("Log directory");
    if (!QFileInfo(directory).isDir())
        return {{Finding::Error, subject,
            QStringLiteral("%1 is no folder: nothing is logged").arg(directory),
            QStringLiteral("Make the folder, or correct the host's setting.")}};
    const QString folder = QDir(directory).filePath(PluginName);
    const bool hasFolder = QFileInfo::exists(folder);
    const QString written = hasFolder ? folder : directory; // the plug-in makes its folder
    if (!QFileInfo(written).isDir() || !isWritable(written))
        return {{Finding::Error, subject, QStringLiteral("%1 cannot be written").arg(written),
            QStringLiteral("Give the host's user the right to write there, and free some space.")}};
    return {{Finding::Ok, subject, QStringLiteral("%1 can be written").arg(written), QString()},
        checkLock(folder)};
}

Findings checkContents(const Analysis::Plan &plan)
{
    Findings findings;
    for (const Analysis::PlannedContent &entry : plan.entries) {
        if (entry.takesPart())
            continue;
        findings.append(
            {Finding::Error, QStringLiteral("Content ") + contentWord(plan, entry.number),
                QStringLiteral("takes no part: %1").arg(Analysis::reasonWord(entry.reason)),
                QStringLiteral("See %1:%2: %3: %4")
                    .arg(plan.fileName, QString::number(entry.problem.line),
                        entry.problem.path.toString(), entry.problem.reason)});
    }
    if (findings.isEmpty()) {
        findings.append({Finding::Ok, QStringLiteral("Contents"),
            QStringLiteral("all %1 take part").arg(plan.entries.size()), QString()});
    }
    return findings;
}

} // namespace Hvcp2
