#pragma once

#include "tools/hvcp2/RecordingFiles.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>

#include <optional>

namespace Hvcp2 {

/// What is started and where its output is recorded.
struct RecordOptions
{
    static constexpr char FileName[] = "hvcp2-record.ini"; ///< beside the executable

    QString program; ///< absolute
    QString directory; ///< of the recordings; absolute
    RecordingFiles::Limits limits;
};

QList<QCommandLineOption> recordCommandOptions();

/// Those of @p given, if any, then those of the file in @p folder, then the defaults. Nothing, and
/// "option: reason" in @p error, when there is something wrong with one.
std::optional<RecordOptions> readRecordOptions(
    const QCommandLineParser *given, const QString &folder, QString *error);

} // namespace Hvcp2
