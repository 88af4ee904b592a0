#include "tests/support/OwnProcess.h"

#include <QByteArrayList>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <ctime>

#include <unistd.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

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

double stolenSeconds()
{
    constexpr int position = 8; // of the first line: "cpu", user, nice, system, ..., steal
    QFile file(QStringLiteral("/proc/stat"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const double ticks = file.readLine().simplified().split(' ').value(position).toDouble();
    return ticks / static_cast<double>(::sysconf(_SC_CLK_TCK));
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

qint64 allocatedMemory()
{
#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 33)
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
#else
    return 0;
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
