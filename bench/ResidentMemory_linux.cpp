#include "ResidentMemory.h"

#include <QByteArrayList>
#include <QFile>

#include <unistd.h>

namespace Bench {

qint64 residentMemory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

} // namespace Bench
