#pragma once

#include <QFile>
#include <QString>

/// Files that one program reads while another writes them; one source file for each platform.
namespace Demo {

/// Opens @p file for reading so that others can write it anew, replace or remove it meanwhile.
/// False with the reason in @p error.
bool openShared(QFile &file, QString *error);

/// Gives @p from the name @p to, in one step: at any moment there is a file of that name, the old
/// one or the new one. False with the reason in @p error.
bool renameOver(const QString &from, const QString &to, QString *error);

} // namespace Demo
