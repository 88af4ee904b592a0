#pragma once

#include "tools/analysis/Entry.h"

#include <QByteArray>

namespace Analysis {

/// Sets kind and values of @p entry to what a record with @p levelName (UTF-8) and the text
/// @p message, without carriage returns, tells.
///
/// Names of levels and messages may have been translated by the host. What the sensor program
/// prints never is, but for one sentence; requests are known by their numbers: "#5 #6" at the end,
/// "#5" and one more number. A start and a stop of the sensor program in another language are not
/// known; an error is by its level unless that is translated, too.
void readLogMessage(const QByteArray &levelName, const QString &message, Entry *entry);

} // namespace Analysis
