#include "tools/analysis/LogMessage.h"

#include "host/KrPluginLogLevel.h"
#include "log/LogDivision.h"
#include "tools/analysis/ReportText.h"

#include <QCoreApplication>
#include <QStringView>

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>

namespace Analysis {

using namespace PluginKrHvcP2;

namespace {

constexpr int NoLevel = -1;
constexpr int MaxQuotedLength = 60; // characters

const QString FaceCount = QStringLiteral("Face result count:");
const QString Failed = QStringLiteral("Failed ");
const QString ProcessError = QStringLiteral("Error occured in the process controller. ");
const QString ProcessStarted = QStringLiteral("HvcCon process started.");
const QString ProcessStopped = QStringLiteral("HvcCon process stopped.");
const QString DeterminedNothing = QStringLiteral("The determined sequence number:");

QString tr(const char *text)
{
    return QCoreApplication::translate("Analysis::LogMessage", text);
}

/// The LogDivision that @p name stands for in English.
int levelOf(const QByteArray &name)
{
    const auto &names = Kora::LogLevel::Names;
    const auto found = std::find(names.cbegin(), names.cend(), name);
    return found == names.cend() ? NoLevel : static_cast<int>(std::distance(names.cbegin(), found));
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

/// Takes the digits at the front of @p text off. Nothing when there are none or too many.
std::optional<int> takeNumber(QStringView *text)
{
    qint64 number = 0;
    qsizetype length = 0;
    for (; length < text->size() && isDigit(text->at(length)); ++length)
        number = std::min<qint64>(
            10 * number + text->at(length).digitValue(), std::numeric_limits<qint64>::max() / 100);
    *text = text->mid(length);
    if (length == 0 || number > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(number);
}

/// "... #5 #6"
bool readDetermined(const QString &message, Entry *entry)
{
    const int start = message.indexOf(QLatin1String(" #"));
    const QStringView intro = QStringView(message).left(std::max(0, start));
    if (start < 1 || std::find(intro.cbegin(), intro.cend(), QLatin1Char('#')) != intro.cend())
        return false;
    QVector<int> numbers;
    QStringView rest = QStringView(message).mid(start);
    while (rest.size() > 2 && rest.at(0) == QLatin1Char(' ') && rest.at(1) == QLatin1Char('#')) {
        rest = rest.mid(2);
        const std::optional<int> number = takeNumber(&rest);
        if (!number)
            return false;
        numbers.append(*number);
    }
    if (!rest.isEmpty())
        return false;
    entry->kind = Entry::Determined;
    entry->numbers = numbers;
    return true;
}

/// "#5 ... 5000 ...": one number behind a '#' and one other, in any order.
bool readRestricted(const QString &message, Entry *entry)
{
    std::optional<int> sequence;
    std::optional<int> limit;
    for (QStringView rest = message; !rest.isEmpty();) {
        const bool isSequence = rest.at(0) == QLatin1Char('#');
        if (!isSequence && !isDigit(rest.at(0))) {
            rest = rest.mid(1);
            continue;
        }
        rest = rest.mid(isSequence ? 1 : 0);
        std::optional<int> &number = isSequence ? sequence : limit;
        if (number)
            return false;
        number = takeNumber(&rest);
        if (!number)
            return false;
    }
    if (!sequence || !limit)
        return false;
    entry->kind = Entry::Restricted;
    entry->number = *sequence;
    entry->limitMs = *limit;
    return true;
}

/// A message of the plug-in's own, in the words of its source.
bool readOwnMessage(const QString &message, Entry *entry)
{
    if (message == ProcessStarted) {
        entry->kind = Entry::Started;
    } else if (message == ProcessStopped) {
        entry->kind = Entry::Stopped;
    } else if (message == DeterminedNothing) {
        entry->kind = Entry::Determined;
    } else if (message.startsWith(ProcessError)) {
        entry->kind = Entry::Error;
        entry->text = message;
    } else {
        return false;
    }
    return true;
}

/// Whether some of @p lines are like none but the sensor program's.
bool isProgramText(const QString &lines)
{
    return lines.contains(QLatin1Char('\t')) || lines.contains(FaceCount, Qt::CaseInsensitive)
        || lines.contains(Failed, Qt::CaseInsensitive);
}

} // namespace

void readLogMessage(const QByteArray &levelName, const QString &message, Entry *entry)
{
    const int level = levelOf(levelName);
    const auto setFrame = [&](const QString &lines) {
        entry->kind = Entry::Frame;
        entry->text = lines;
    };
    // Most of all: a frame, or one without a row.
    if (message.isEmpty() || message.startsWith(FaceCount)) {
        setFrame(sensorLines(message));
        return;
    }

    if (!message.contains(QLatin1Char('\n'))) {
        const bool mayBeRequest = level == Information || level == Notice || level == NoLevel;
        if (readOwnMessage(message, entry)
            || (mayBeRequest && (readDetermined(message, entry) || readRestricted(message, entry))))
            return;
    }

    const QString lines = sensorLines(message);
    // Of a piece of a frame any word may be left; the plug-in logs nothing else at that level.
    if (level != Critical && (isProgramText(lines) || level == Information)) {
        setFrame(lines);
    } else if (level == Critical || level == Error) {
        entry->kind = Entry::Error;
        entry->text = message;
    } else {
        entry->kind = Entry::Unknown;
        entry->text = tr("a message that is not known: \"%1\"")
                          .arg(message.left(MaxQuotedLength).simplified());
    }
}

} // namespace Analysis
