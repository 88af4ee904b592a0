#include "tools/hvcp2/RecordCommand.h"

#include "sensor/KrHvcController.h"
#include "tools/hvcp2/RecordOptions.h"
#include "tools/hvcp2/SensorSession.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace Hvcp2 {

namespace {

QString sensorProgram()
{
    return QLatin1String(PluginKrHvcP2::KrHvcController::ProgramName);
}

bool isSensorProgram(const QString &fileName)
{
    const QString name = QFileInfo(fileName).fileName();
    return name.compare(sensorProgram(), Qt::CaseInsensitive) == 0;
}

/// Where the executable was called, which may be a link to where it lies.
QString ownFolder()
{
    const QString called = QCoreApplication::arguments().value(0);
    const QFileInfo file(called);
    const bool hasFolder = file.fileName() != called;
    return hasFolder && file.exists() ? file.absolutePath()
                                      : QCoreApplication::applicationDirPath();
}

bool isOwnFile(const QString &fileName)
{
    const QString file = QFileInfo(fileName).canonicalFilePath();
    return !file.isEmpty()
        && file == QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath();
}

/// Returns the reason why the program could not be started, else not at all.
QString runInPlace(const RecordOptions &options, const QStringList &arguments,
    QTextStream *messages, const QString &speaker)
{
    if (isOwnFile(options.program))
        return QStringLiteral("%1: is this program itself").arg(options.program);
    QString error;
    SensorSession session(options, messages, speaker);
    if (session.run(arguments, &error))
        BoundProcess::endLike(session.process());
    return error;
}

ExitStatus run(const QCommandLineParser &given, Console &console)
{
    QString error;
    const std::optional<RecordOptions> options = readRecordOptions(&given, ownFolder(), &error);
    if (options) {
        error = runInPlace(
            *options, given.positionalArguments(), &console.error, QStringLiteral("hvcp2 record"));
    }
    return refuse(recordCommand(), error, console);
}

} // namespace

Command recordCommand()
{
    Command command;
    command.name = QStringLiteral("record");
    command.synopsis = QStringLiteral("[--as DIR] [--program FILE] [-- ARGUMENT...]");
    command.summary = QStringLiteral("stand in the place of the sensor program and record it");
    command.description = QStringLiteral(
        "Starts the sensor program with the arguments, passes everything through as it\n"
        "is (output, errors, input with the stop key, exit status) and records the output\n"
        "with the times of its frames, for the commands that read frames. A full disk or\n"
        "another failure ends the recording, never the sensor program; the note\n"
        "recording-ended.txt in the folder of the recordings says why.\n\n"
        "For use under a host, rename the sensor program to HvcCon-real.exe and put a\n"
        "copy of hvcp2 named HvcCon.exe in its place. By that name it takes all arguments\n"
        "as those of the sensor program, which must have another name then: the plug-in\n"
        "ends every HvcCon.exe that is left over. Options stand in hvcp2-record.ini\n"
        "beside the executable, one a line; relative names are meant from that folder:\n\n"
        "  program = HvcCon-real.exe\n"
        "  as = D:/recordings\n"
        "  max-size = 64\n"
        "  files = 8");
    command.options = recordCommandOptions();
    command.takesArguments = true;
    command.examples = QStringList{
        QStringLiteral("record --program HvcCon.exe -- 3 921600 500"),
        QStringLiteral("record --program HvcCon.exe --as morning -- 3 921600 500 > output.txt"),
    };
    command.run = run;
    return command;
}

bool standsForSensorProgram(const QStringList &arguments)
{
    return isSensorProgram(arguments.value(0))
        || isSensorProgram(QCoreApplication::applicationFilePath());
}

ExitStatus standForSensorProgram(const QStringList &arguments, Console &console)
{
    QString error;
    const std::optional<RecordOptions> options = readRecordOptions(nullptr, ownFolder(), &error);
    if (options)
        error = runInPlace(*options, arguments.mid(1), nullptr, QString());
    // The plug-in shows and logs as an error what the output says like this.
    console.out << "Failed to start the sensor program: " << error << '\n';
    console.error << sensorProgram() << ": " << error << '\n';
    return BadUse;
}

} // namespace Hvcp2
