#include "demo/support/SharedFile.h"

namespace Demo {

bool openShared(QFile &file, QString *error)
{
    const bool opened = file.open(QIODevice::ReadOnly);
    if (!opened)
        *error = file.errorString();
    return opened;
}

} // namespace Demo
