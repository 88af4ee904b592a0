#include "tests/support/OwnProcess.h"

#include <QByteArrayList>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <ctime>

#include <unistd.h>

namespace KrTest {

int openHandles()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries)
        .size();
}

double processorSeconds()
{
    return double(std::clock()) / CLOCKS_PER_SEC;
}

qint64 residentMemory()
{
#ifdef KRHVC_KEEPS_FREED_MEMORY
    return 0;
#else
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
#endif
}

bool isMapped(const QString &fileName)
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly))
        qFatal("the process's memory map cannot be read");
    return maps.readAll().contains(QFile::encodeName(QFileInfo(fileName).canonicalFilePath()));
}

void setTimeZone(const QByteArray &name)
{
    qputenv("TZ", name);
    tzset();
}

} // namespace KrTest
