#include "Table.h"

#include "Judgement.h"

#include <QTextStream>
#include <QVector>

namespace Soak {

namespace {

constexpr int Width = 9;
constexpr double Mebibyte = 1024 * 1024;

QString mebibytes(qint64 bytes)
{
    return QString::number(static_cast<double>(bytes) / Mebibyte, 'f', 2);
}

QString memory(qint64 bytes)
{
    return bytes == 0 ? QStringLiteral("-") : mebibytes(bytes);
}

void print(const QStringList &cells)
{
    QTextStream out(stdout);
    for (const QString &cell : cells)
        out << cell.rightJustified(Width);
    out << '\n';
}

} // namespace

void printHeader()
{
    print({QStringLiteral("frames"), QStringLiteral("chunks"), QStringLiteral("seconds"),
        QStringLiteral("gap ms"), QStringLiteral("log MiB"), QStringLiteral("live"),
        QStringLiteral("heap MiB"), QStringLiteral("RSS MiB"), QStringLiteral("items"),
        QStringLiteral("objects"), QStringLiteral("timers"), QStringLiteral("files"),
        QStringLiteral("children")});
}

void printLine(const Sample &sample)
{
    QStringList cells{QString::number(sample.frame), QString::number(sample.chunks),
        QString::number(sample.seconds, 'f', 1), QString::number(sample.longestGapMs),
        mebibytes(sample.logBytes), QString::number(sample.liveItems), memory(sample.memory),
        memory(sample.residentMemory)};
    for (const int number :
        {sample.items, sample.objects, sample.timers, sample.descriptors, sample.children})
        cells += QString::number(number);
    print(cells);
}

} // namespace Soak
