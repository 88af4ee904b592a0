#pragma once

#include "sensor/ProcessList.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace KrTest {

using PluginKrHvcP2::ProcessList::ProcessId;

/// Number of living processes with the sensor program's name, whoever started them.
int sensorProcessCount();

void endSensorPrograms(); ///< the same ones, at once

/// Puts a stand-in for the sensor program into @p directory, or lets the next start of the one that
/// is there do something else. @p commands are those of ../sensor/standin/Standin.cpp.
bool installStandIn(const QString &directory, const QByteArray &commands,
    const QString &name = QStringLiteral("HvcCon.exe"));

/// The stand-ins that were ever started in @p directory, oldest first.
QVector<ProcessId> startedStandIns(const QString &directory);

} // namespace KrTest
