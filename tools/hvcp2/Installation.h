#pragma once

#include "tools/analysis/Plan.h"
#include "tools/hvcp2/Finding.h"

#include <QString>

/// What is looked at before opening day. Nothing is changed and no program is started; the plug-in
/// file is loaded into this process.
namespace Hvcp2 {

/// The plug-in file in @p directory, as the loader of this program's Qt sees it.
Findings checkPlugin(const QString &directory);

/// The sensor program in @p directory and, when that is the recorder, the one behind it.
Findings checkSensorProgram(const QString &directory);

Findings checkRunningCopies(); ///< of the sensor program

/// The three values of "setting.ini" in @p directory as the plug-in reads them, and what nobody
/// reads. @p intervalMs is that of the screen.
Findings checkSettings(const QString &directory, int intervalMs);

/// The host's log directory, the plug-in's folder in it and its lock file.
Findings checkLogDirectory(const QString &directory);

Findings checkContents(const Analysis::Plan &plan); ///< that take no part

} // namespace Hvcp2
