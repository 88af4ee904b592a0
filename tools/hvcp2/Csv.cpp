#include "tools/hvcp2/Csv.h"

#include "tools/hvcp2/ConsoleText.h"

namespace Hvcp2 {

namespace {

constexpr int Digits = 15; // all that a fraction surely has

/// @p cell as a spreadsheet reads it.
QString written(const QString &cell)
{
    const QLatin1Char quote('"');
    QString text = printable(cell);
    if (!text.contains(QLatin1Char(',')) && !text.contains(quote))
        return text;
    return quote + text.replace(quote, QLatin1String("\"\"")) + quote;
}

} // namespace

QString csvLine(const QStringList &cells)
{
    QStringList line;
    for (const QString &cell : cells)
        line << written(cell);
    return line.join(QLatin1Char(',')) + QLatin1Char('\n');
}

QString csvNumber(double number)
{
    return QString::number(number, 'g', Digits);
}

} // namespace Hvcp2
