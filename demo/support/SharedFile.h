#pragma once

#include <QFile>
#include <QString>

namespace Demo {

/// Opens @p file for reading so that others can write it anew, replace or remove it meanwhile; one
/// source file for each platform. False with the reason in @p error.
bool openShared(QFile &file, QString *error);

} // namespace Demo
