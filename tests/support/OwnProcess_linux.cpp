#include "tests/support/OwnProcess.h"

#include <QDir>

#include <ctime>

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
