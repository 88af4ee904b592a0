#include "core/SensorIni.h"

#include <QFileInfo>
#include <QSettings>

namespace PluginKrHvcP2 {

SensorParameters readSensorIni(const QString &fileName, const SensorParameters &defaults)
{
    // isFile(): reading a FIFO of that name would block the host for ever.
    if (!QFileInfo(fileName).isFile())
        return defaults;

    QSettings settings(fileName, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    settings.beginGroup(QStringLiteral("Main"));
    SensorParameters parameters;
    parameters.interval = settings.value(QStringLiteral("Interval"), defaults.interval).toInt();
    parameters.speed = settings.value(QStringLiteral("Speed"), defaults.speed).toInt();
    parameters.port = settings.value(QStringLiteral("Port"), defaults.port).toInt();
    return parameters;
}

} // namespace PluginKrHvcP2
