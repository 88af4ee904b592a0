#include "tools/analysis/ReportText.h"

#include "detection/SensorOutputParser.h"

#include <QStringView>

#include <algorithm>
#include <iterator>

namespace Analysis {

using PluginKrHvcP2::SensorOutputParser;

namespace {

/// A block begins with its face count, behind the end prompt of the one before.
bool isFaceCount(QStringView line)
{
    return line.startsWith(QLatin1String("Face result count:"), Qt::CaseInsensitive);
}

} // namespace

QString sensorLines(const QString &report)
{
    if (report.contains(QLatin1Char('\t')))
        return report;

    QString lines;
    lines.reserve(report.size());
    bool isValue = false; // of the label before
    const QChar *in = report.cbegin();
    const QChar *const end = report.cend();
    while (in != end) {
        const QChar *const lineEnd = std::find(in, end, QLatin1Char('\n'));
        const QStringView line(in, lineEnd);
        in = lineEnd == end ? end : lineEnd + 1;
        if (line.isEmpty() && !isValue)
            continue;
        if (!lines.isEmpty())
            lines += isValue ? QLatin1Char('\t') : QLatin1Char('\n');
        if (!isValue && !lines.isEmpty() && isFaceCount(line))
            lines += QLatin1String("Press Space Key to end:\n");
        lines.append(line.data(), static_cast<int>(line.size()));
        isValue = !isValue && SensorOutputParser::isLabel(line);
    }
    return lines;
}

QStringList failuresIn(const QString &lines)
{
    QStringList failures;
    const QStringList all = SensorOutputParser::plainText(lines).split(QLatin1Char('\n'));
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(failures),
        [](const QString &line) { return SensorOutputParser::isError(line); });
    return failures;
}

} // namespace Analysis
