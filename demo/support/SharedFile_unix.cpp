#include "demo/support/SharedFile.h"

#include <cerrno>
#include <cstdio>

namespace Demo {

bool openShared(QFile &file, QString *error)
{
    const bool opened = file.open(QIODevice::ReadOnly);
    if (!opened)
        *error = file.errorString();
    return opened;
}

bool renameOver(const QString &from, const QString &to, QString *error)
{
    if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0)
        return true;
    *error = qt_error_string(errno);
    return false;
}

} // namespace Demo
