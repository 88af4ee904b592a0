#include "tests/support/OwnProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <ctime>

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
