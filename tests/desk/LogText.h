#pragma once

#include "demo/desk/LogDay.h"
#include "detection/SensorOutputParser.h"
#include "log/LogFormat.h"
#include "tests/desk/DeskFrames.h"
#include "tests/support/Files.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVector>

#include <limits>
#include <memory>

namespace DeskTest {

/// A log of the plug-in, as it writes it.
class LogText
{
public:
    void frame(const QDateTime &time, const QString &chunk)
    {
        record(time, "Information", PluginKrHvcP2::SensorOutputParser::plainText(chunk));
    }

    void determined(const QDateTime &time, const QVector<int> &numbers)
    {
        QString message = QStringLiteral("The determined sequence number:");
        for (const int number : numbers)
            message += QStringLiteral(" #%1").arg(number);
        record(time, "Information", message);
    }

    void restricted(const QDateTime &time, int number, int limitMs)
    {
        record(time, "Notice",
            QStringLiteral(
                "#%1 is not sent now because it is within the limited min-time(%2 msec.).")
                .arg(QString::number(number), QString::number(limitMs)));
    }

    void started(const QDateTime &time)
    {
        record(time, "Notice", QStringLiteral("HvcCon process started."));
    }

    void text(const QByteArray &text) { m_bytes += text; }

    const QByteArray &bytes() const { return m_bytes; }

private:
    void record(const QDateTime &time, const char *level, const QString &text)
    {
        m_bytes
            += PluginKrHvcP2::LogFormat::record(1, time, QString::fromLatin1(level), text).toUtf8();
    }

    QByteArray m_bytes;
};

/// "09:30:00" of a day, or with a date before it.
inline QDateTime moment(const QString &text)
{
    return text.contains(QLatin1Char(' '))
        ? QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm:ss"))
        : QDateTime(QDate(2018, 2, 1), QTime::fromString(text, QStringLiteral("HH:mm:ss")));
}

/// A frame with nobody for each of @p times, which are separated by commas.
inline QByteArray logOf(const QString &times)
{
    LogText log;
    const QStringList all = times.split(QStringLiteral(", "));
    for (const QString &time : all)
        log.frame(moment(time), nobodyText());
    return log.bytes();
}

/// The log @p bytes, written as @p fileName and read to its end under shopPlan(). Null when that
/// fails.
inline std::unique_ptr<Desk::LogDay> readDay(const QString &fileName, const QByteArray &bytes)
{
    QString error;
    if (!KrTest::writeFile(fileName, bytes))
        return nullptr;
    std::unique_ptr<Desk::LogDay> day = Desk::LogDay::open(fileName, shopPlan(), &error);
    if (day)
        day->read(std::numeric_limits<int>::max());
    else
        qWarning("%s", qPrintable(error));
    return day;
}

} // namespace DeskTest
