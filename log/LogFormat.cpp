#include "log/LogFormat.h"

#include <QLocale>

#include <algorithm>
#include <iterator>

namespace PluginKrHvcP2::LogFormat {

namespace {

constexpr int FrameWidth = 40;
constexpr int DateLength = 8;

QString compactDate(const QDate &date)
{
    return QLocale::c().toString(date, QStringLiteral("yyyyMMdd"));
}

QString datePart(const QString &fileName, const QString &extension)
{
    const int suffixLength = extension.size() + 1;
    const QString tail = fileName.right(DateLength + suffixLength);
    return tail.left(tail.size() - suffixLength);
}

bool isCompactDate(const QString &text)
{
    const QDate date = QDate::fromString(text, QStringLiteral("yyyyMMdd"));
    return date.isValid() && compactDate(date) == text;
}

} // namespace

// The templates below are filled one placeholder after the other on purpose: readers of the files
// rely on the outcome for messages that hold a "%1" themselves.
// clazy:excludeall=qstring-arg

QString logFileName(const QString &baseName, const QDate &date, const QString &extension)
{
    return QStringLiteral("%1_%2.%3").arg(baseName).arg(compactDate(date)).arg(extension);
}

QString lockFileName(const QString &baseName)
{
    return QStringLiteral("%1.lock").arg(baseName);
}

QString record(int style, const QDateTime &time, const QString &levelName, const QString &message)
{
    const QString timestamp = QLocale::c().toString(time, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    if (style == 0)
        return QStringLiteral("%1 %2: %3\n").arg(timestamp).arg(levelName).arg(message);

    const QChar fill = QLatin1Char('=');
    const QString header = QStringLiteral(">> %1 [%2]").arg(timestamp).arg(levelName);
    return QStringLiteral("%1\n%2\n%3\n\n")
        .arg(header, -FrameWidth, fill)
        .arg(message.trimmed())
        .arg(QStringLiteral(" <<"), FrameWidth, fill);
}

QStringList expiredFiles(
    const QStringList &fileNames, const QString &extension, const QDate &oldestKept)
{
    const QString limit = compactDate(oldestKept);
    QStringList expired;
    std::copy_if(fileNames.cbegin(), fileNames.cend(), std::back_inserter(expired),
        [&](const QString &fileName) {
            const QString date = datePart(fileName, extension);
            return isCompactDate(date) && date < limit;
        });
    return expired;
}

} // namespace PluginKrHvcP2::LogFormat
