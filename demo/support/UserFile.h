#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Files that the user names, for reading or writing.
namespace Demo::UserFile {

/// True for a directory, a device and a pipe, which an open could block on for ever; false for a
/// file and for what does not exist.
bool isNoFile(const QString &fileName);

/// Why there is nothing to read; empty when there is a file.
QString objection(const QString &fileName);

/// Why a content of @p bytes, of a file that may have @p maxMebibytes, is refused; empty when it is
/// not.
QString sizeObjection(qint64 bytes, int maxMebibytes);

/// The whole file, which others may replace meanwhile; nothing, and "file: reason" in @p error,
/// when it cannot be read or is larger than @p maxMebibytes.
std::optional<QByteArray> read(const QString &fileName, int maxMebibytes, QString *error);

} // namespace Demo::UserFile
