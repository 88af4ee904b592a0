#include "tools/hvcp2/Words.h"

#include "tools/hvcp2/ConsoleText.h"

#include <QJsonObject>

namespace Hvcp2 {

using namespace Analysis;

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

QJsonValue timeJson(const QDateTime &time, int toleranceMs)
{
    return time.isNull() ? QJsonValue() : QJsonValue(isoTime(time, toleranceMs));
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
