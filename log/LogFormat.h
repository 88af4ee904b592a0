#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>

/// Names and texts of the log files, as plain functions of their inputs.
namespace PluginKrHvcP2::LogFormat {

/// "plugin_20180201.txt": one file for each local @p date.
QString logFileName(const QString &baseName, const QDate &date, const QString &extension);

/// "plugin.lock": taken by whoever appends to one of the files of that base name.
QString lockFileName(const QString &baseName);

/// The text that is appended for one message. Style 0 is one line, any other a framed block.
QString record(int style, const QDateTime &time, const QString &levelName, const QString &message);

/// Those of @p fileNames whose date lies before @p oldestKept, in their order. The date is the
/// eight characters before the dot and @p extension; names without a valid one are never expired.
QStringList expiredFiles(
    const QStringList &fileNames, const QString &extension, const QDate &oldestKept);

} // namespace PluginKrHvcP2::LogFormat
