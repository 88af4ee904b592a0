#include "tests/support/SensorProgram.h"

#include "tests/support/Files.h"

#include <QDir>
#include <QFile>

namespace KrTest {

namespace ProcessList = PluginKrHvcP2::ProcessList;

namespace {

constexpr char ProgramName[] = "HvcCon.exe";

} // namespace

int sensorProcessCount()
{
    return static_cast<int>(ProcessList::find(ProgramName).size());
}

void endSensorPrograms()
{
    for (const ProcessId id : ProcessList::find(ProgramName))
        ProcessList::end(id, ProgramName);
}

bool installStandIn(const QString &directory, const QByteArray &commands, const QString &name)
{
    const QString program = QDir(directory).filePath(name);
    return (QFile::exists(program) || QFile::copy(QStringLiteral(KRHVC_STANDIN_FILE), program))
        && writeFile(program + QLatin1String(".do"), commands);
}

QVector<ProcessId> startedStandIns(const QString &directory)
{
    QVector<ProcessId> ids;
    const auto lines = readFile(QDir(directory).filePath(QStringLiteral("pids"))).split('\n');
    for (const QByteArray &line : lines) {
        if (!line.isEmpty())
            ids << line.toUInt();
    }
    return ids;
}

} // namespace KrTest
