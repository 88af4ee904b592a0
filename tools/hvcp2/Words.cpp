#include "tools/hvcp2/Words.h"

#include "core/screen/Gender.h"
#include "tools/hvcp2/ConsoleText.h"

#include <QJsonObject>

namespace Hvcp2 {

using namespace Analysis;
using PluginKrHvcP2::EntryReason;
using PluginKrHvcP2::Gender;

QString reasonWord(EntryReason reason)
{
    switch (reason) {
    case EntryReason::TakesPart:
        return QStringLiteral("takes part");
    case EntryReason::NoScreenId:
        return QStringLiteral("no screen id");
    case EntryReason::NoLowestAge:
        return QStringLiteral("no lowest age");
    case EntryReason::NoHighestAge:
        return QStringLiteral("no highest age");
    case EntryReason::NoGender:
        return QStringLiteral("no gender");
    case EntryReason::AgesReversed:
        return QStringLiteral("ages reversed");
    case EntryReason::NoOwnEvent:
        return QStringLiteral("no own event");
    case EntryReason::NoLinkingScreen:
        return QStringLiteral("no linking screen");
    }
    return {};
}

QString fitWord(Choice::Fit fit)
{
    switch (fit) {
    case Choice::Nothing:
        return QStringLiteral("nothing");
    case Choice::Full:
        return QStringLiteral("fits");
    case Choice::ByDefault:
        return QStringLiteral("default");
    case Choice::ByAge:
        return QStringLiteral("age alone");
    }
    return {};
}

QString outcomeWord(DecidedFace::Outcome outcome)
{
    switch (outcome) {
    case DecidedFace::NothingFits:
        return QStringLiteral("nothing");
    case DecidedFace::Cut:
        return QStringLiteral("cut");
    case DecidedFace::Restricted:
        return QStringLiteral("restricted");
    case DecidedFace::Sent:
        return QStringLiteral("sent");
    }
    return {};
}

QString requestsWord(const QVector<LoggedRequest> &requests)
{
    QStringList words;
    for (const LoggedRequest &request : requests) {
        words << QStringLiteral("#%1 %2").arg(QString::number(request.number),
            outcomeWord(request.isRestricted ? DecidedFace::Restricted : DecidedFace::Sent));
    }
    return words.isEmpty() ? QStringLiteral("nothing") : words.join(QLatin1String(", "));
}

QJsonArray requestsJson(const QVector<LoggedRequest> &requests)
{
    QJsonArray array;
    for (const LoggedRequest &request : requests) {
        array.append(QJsonObject{{QStringLiteral("sequence"), request.number},
            {QStringLiteral("outcome"),
                outcomeWord(request.isRestricted ? DecidedFace::Restricted : DecidedFace::Sent)}});
    }
    return array;
}

QString genderWord(Gender gender)
{
    const QString word = PluginKrHvcP2::genderToText(gender);
    return word.isEmpty() ? QStringLiteral("unknown") : word;
}

QString agesWord(const AgeRange &ages)
{
    const QString from = QString::number(ages.from);
    return ages.from == ages.to ? from : from + QLatin1Char('-') + QString::number(ages.to);
}

QString asKey(QString word)
{
    return word.replace(QLatin1Char(' '), QLatin1Char('-'));
}

QString timeWord(const QDateTime &time, int toleranceMs)
{
    QString word = time.toString(toleranceMs > 0 ? QStringLiteral("yyyy-MM-dd HH:mm:ss")
                                                 : QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
    if (time.timeSpec() == Qt::UTC)
        word += QLatin1String(" UTC");
    return word;
}

QString isoTime(const QDateTime &time, int toleranceMs)
{
    return time.toString(toleranceMs > 0 ? Qt::ISODate : Qt::ISODateWithMs);
}

QJsonValue timeJson(const QDateTime &time, int toleranceMs)
{
    return time.isNull() ? QJsonValue() : QJsonValue(isoTime(time, toleranceMs));
}

QString twoDigits(qint64 number)
{
    return QString::number(number).rightJustified(2, QLatin1Char('0'));
}

QString durationWord(qint64 ms)
{
    const qint64 minutes = ms / 60000;
    if (minutes == 0)
        return QStringLiteral("%1.%2 s").arg(
            QString::number(ms / 1000), QString::number(ms / 100 % 10));
    if (minutes < 60)
        return QStringLiteral("%1 min %2 s")
            .arg(QString::number(minutes), twoDigits(ms / 1000 % 60));
    return QStringLiteral("%1 h %2 min")
        .arg(QString::number(minutes / 60), twoDigits(minutes % 60));
}

QString contentWord(const Plan &plan, int number)
{
    return QStringLiteral("#%1 %2")
        .arg(QString::number(number), printable(plan.name(number)))
        .trimmed();
}

QString screenWord(const Plan &plan)
{
    const QString name = printable(plan.screenName);
    const QString screen = QStringLiteral("%1, screen %2")
                               .arg(printable(plan.title), QString::number(plan.screenId));
    return name.isEmpty() ? screen : screen + QLatin1String(" (") + name + QLatin1Char(')');
}

QString settingsWord(const Plan &plan)
{
    return QStringLiteral("concurrent %1, event-sending-limit %2 ms")
        .arg(plan.settings.concurrent)
        .arg(plan.settings.eventSendingLimit);
}

} // namespace Hvcp2
