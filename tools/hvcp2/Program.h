#pragma once

#include "tools/hvcp2/Command.h"

#include <QStringList>
#include <QVector>

namespace Hvcp2 {

QVector<Command> allCommands();

/// Runs the command that @p arguments, less the program's name, ask for. @p version is that of the
/// program.
ExitStatus runProgram(const QStringList &arguments, const QString &version, Console &console);

} // namespace Hvcp2
