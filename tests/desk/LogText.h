#pragma once

#include "detection/SensorOutputParser.h"
#include "log/LogFormat.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QVector>

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

} // namespace DeskTest
