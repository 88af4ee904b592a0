#pragma once

#include "tools/analysis/Entry.h"

#include <QStringList>
#include <QVector>

#include <optional>

namespace Hvcp2 {

// How far an export has come, in a file: the place in each of the files that were read.

/// The places in those of @p files, named as there. None when there is no file @p fileName yet;
/// nothing, and "file: reason" in @p error, when it cannot be read.
std::optional<QVector<Analysis::Position>> readExportState(
    const QString &fileName, const QStringList &files, QString *error);

/// Replaces the file in one go. False with "file: reason" in @p error when that fails.
bool writeExportState(
    const QString &fileName, const QVector<Analysis::Position> &positions, QString *error);

} // namespace Hvcp2
