#include "demo/support/CsvRow.h"

#include <algorithm>

namespace Demo {

namespace {

QString quotedIfNeeded(QString field)
{
    static const QString special = QStringLiteral(",\"\r\n");
    const QLatin1Char quote('"');
    const bool isSpecial = std::any_of(
        field.cbegin(), field.cend(), [](QChar character) { return special.contains(character); });
    return isSpecial ? quote + field.replace(quote, QLatin1String("\"\"")) + quote : field;
}

} // namespace

QString csvRow(const QStringList &fields)
{
    QStringList row;
    for (const QString &field : fields)
        row << quotedIfNeeded(field);
    return row.join(QLatin1Char(','));
}

} // namespace Demo
