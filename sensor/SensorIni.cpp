#include "sensor/SensorIni.h"

#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QSettings>

namespace PluginKrHvcP2 {

namespace {

Q_LOGGING_CATEGORY(krhvcSensor, "krhvcp2.sensor", QtWarningMsg)

constexpr int LargestIni = 64 * 1024; // bytes

/// What QSettings makes of the values in @p ini before it looks for stored objects in them: escapes
/// replaced; quotes, joints of lines and byte order marks gone.
QString unescaped(const QByteArray &ini)
{
    static const QRegularExpression pattern(
        QStringLiteral(
            "\\\\x([0-9A-Fa-f]+)|\\\\([0-7]+)|\\\\(?:\r\n|\n\r|.)|\"[ \t]*|\xEF\xBB\xBF"),
        QRegularExpression::DotMatchesEverythingOption);
    const QString text = QString::fromLatin1(ini.constData(), ini.size()); // beyond a NUL, too
    QString result;
    int end = 0;
    QRegularExpressionMatchIterator matches = pattern.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        result.append(text.midRef(end, match.capturedStart() - end));
        // Of a longer number the last 16 bits count.
        if (match.capturedLength(1) > 0)
            result.append(QChar(match.capturedRef(1).right(4).toUShort(nullptr, 16)));
        else if (match.capturedLength(2) > 0)
            result.append(QChar(match.capturedRef(2).right(6).toUInt(nullptr, 8) & 0xffff));
        end = match.capturedEnd();
    }
    return result + text.midRef(end);
}

/// QSettings decodes stored objects of any type, with all sorts of sizes: a few bytes ask for more
/// memory than there is or nest lists deeper than the stack.
bool holdsStoredObject(const QByteArray &ini)
{
    const QString text = unescaped(ini);
    return text.contains(QLatin1String("@Variant(")) || text.contains(QLatin1String("@DateTime("));
}

} // namespace

QString sensorIniObjection(const QString &fileName)
{
    // isFile(): reading a FIFO of that name would block the host for ever.
    QFile file(fileName);
    if (!QFileInfo(file).isFile())
        return QStringLiteral("there is no such file");
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("it cannot be opened");

    const QByteArray ini = file.read(LargestIni + 1);
    if (ini.size() > LargestIni)
        return QStringLiteral("it is larger than %1 bytes").arg(LargestIni);
    if (holdsStoredObject(ini))
        return QStringLiteral("it holds \"@Variant(\" or \"@DateTime(\"");
    return {};
}

SensorParameters readSensorIni(const QString &fileName, const SensorParameters &defaults)
{
    const QString objection = sensorIniObjection(fileName);
    if (!objection.isEmpty()) {
        qCDebug(krhvcSensor, "%ls counts as missing: %ls", qUtf16Printable(fileName),
            qUtf16Printable(objection));
        return defaults;
    }

    QSettings settings(fileName, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    settings.beginGroup(QStringLiteral("Main"));
    SensorParameters parameters;
    parameters.interval = settings.value(QStringLiteral("Interval"), defaults.interval).toInt();
    parameters.speed = settings.value(QStringLiteral("Speed"), defaults.speed).toInt();
    parameters.port = settings.value(QStringLiteral("Port"), defaults.port).toInt();
    return parameters;
}

} // namespace PluginKrHvcP2
