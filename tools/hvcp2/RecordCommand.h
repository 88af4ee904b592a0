#pragma once

#include "tools/hvcp2/Command.h"

namespace Hvcp2 {

Command recordCommand();

/// Whether this program was started by the sensor program's name, as @p arguments begin.
bool standsForSensorProgram(const QStringList &arguments);

/// Does the sensor program's work: all @p arguments behind the first one are that program's.
/// Returns when it could not be started, else ends this process as that program ended.
ExitStatus standForSensorProgram(const QStringList &arguments, Console &console);

} // namespace Hvcp2
