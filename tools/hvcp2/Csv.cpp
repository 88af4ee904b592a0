#include "tools/hvcp2/Csv.h"

#include "demo/support/CsvRow.h"
#include "tools/hvcp2/ConsoleText.h"

namespace Hvcp2 {

namespace {

constexpr int Digits = 15; // all that a fraction surely has

} // namespace

QString csvLine(const QStringList &cells)
{
    QStringList fields;
    for (const QString &cell : cells)
        fields << printable(cell);
    return Demo::csvRow(fields) + QLatin1Char('\n');
}

QString csvNumber(double number)
{
    return QString::number(number, 'g', Digits);
}

} // namespace Hvcp2
