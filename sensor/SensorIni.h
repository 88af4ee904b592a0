#pragma once

#include <QString>

namespace PluginKrHvcP2 {

/// What the sensor program is started with.
struct SensorParameters
{
    int interval = 0; ///< milliseconds
    int speed = 0; ///< baud
    int port = 0; ///< COM port number
};

/// The group "Main" of the INI file @p fileName, @p defaults where file or keys are missing. A
/// value that is not a number reads as 0.
///
/// A file of more than 64 KiB, or with "@Variant(" or "@DateTime(" in it, counts as missing: it
/// could take the host's memory or stack.
SensorParameters readSensorIni(const QString &fileName, const SensorParameters &defaults);

/// Why @p fileName counts as missing; empty when it is read.
QString sensorIniObjection(const QString &fileName);

} // namespace PluginKrHvcP2
