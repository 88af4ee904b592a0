#include "tools/hvcp2/Installation.h"

#include "sensor/KrHvcController.h"
#include "sensor/SensorIni.h"

#include <QDir>
#include <QFile>
#include <QSettings>

#include <algorithm>
#include <array>

namespace Hvcp2 {

using PluginKrHvcP2::KrHvcController;
using PluginKrHvcP2::SensorParameters;

namespace {

const QString FileName = QStringLiteral("setting.ini");

struct Key
{
    const char *name; // in the group "Main"
    const char *unit;
    int SensorParameters::*value;
};

constexpr std::array<Key, 3> Keys{{{"Port", "the number of the COM port", &SensorParameters::port},
    {"Speed", "baud", &SensorParameters::speed},
    {"Interval", "milliseconds", &SensorParameters::interval}}};

QString pathOf(const Key &key)
{
    return QLatin1String("Main/") + QLatin1String(key.name);
}

bool isUtf16(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) && file.read(4096).contains('\0');
}

/// As it stands in the file; QSettings takes a comma for the end of a list's element.
QString writtenValue(const QSettings &settings, const Key &key)
{
    return settings.value(pathOf(key)).toStringList().join(QLatin1String(", "));
}

/// Of a key that stands in the file and is read as @p value.
Finding checkValue(const Key &key, const QString &written, int value)
{
    const QString subject = FileName + QLatin1String(", ") + QLatin1String(key.name);
    const QString advice = QStringLiteral("Write a whole number above 0: %1=%2, in digits alone.")
                               .arg(QLatin1String(key.name), QLatin1String(key.unit));
    bool ok = false;
    const qlonglong number = written.toLongLong(&ok);
    if (!ok)
        return {Finding::Error, subject,
            QStringLiteral("\"%1\" is no whole number, the plug-in reads %2")
                .arg(written, QString::number(value)),
            advice};
    if (number != value || value < 1)
        return {Finding::Error, subject,
            QStringLiteral("%1 is out of range, the plug-in reads %2")
                .arg(written, QString::number(value)),
            advice};
    return {Finding::Ok, subject, QString::number(value), QString()};
}

Finding checkKey(const QSettings &settings, const Key &key, const SensorParameters &read)
{
    const int value = read.*key.value;
    if (settings.contains(pathOf(key)))
        return checkValue(key, writtenValue(settings, key), value);
    return {Finding::Ok, FileName + QLatin1String(", ") + QLatin1String(key.name),
        QStringLiteral("%1, since the key is not there").arg(value), QString()};
}

/// What stands in the file under @p name is read under one of the three keys.
bool isRead(const QString &name)
{
#ifdef Q_OS_WIN
    constexpr Qt::CaseSensitivity Sensitivity = Qt::CaseInsensitive; // as QSettings has it
#else
    constexpr Qt::CaseSensitivity Sensitivity = Qt::CaseSensitive;
#endif
    return std::any_of(Keys.cbegin(), Keys.cend(),
        [&name](const Key &key) { return name.compare(pathOf(key), Sensitivity) == 0; });
}

} // namespace

Findings checkSettings(const QString &directory, int intervalMs)
{
    const QString fileName = QDir(directory).absoluteFilePath(FileName);
    const KrHvcController controller(directory);
    const SensorParameters defaults{intervalMs, controller.speed(), controller.port()};
    const QString defaultsText
        = QStringLiteral("port %1, %2 baud, %3 ms between frames")
              .arg(QString::number(defaults.port), QString::number(defaults.speed),
                  QString::number(defaults.interval));
    if (!QFile::exists(fileName))
        return {{Finding::Ok, FileName, QStringLiteral("is not there: %1").arg(defaultsText),
            QString()}};
    const QString objection = PluginKrHvcP2::sensorIniObjection(fileName);
    if (!objection.isEmpty())
        return {{Finding::Error, FileName,
            QStringLiteral("counts as missing, since %1: %2").arg(objection, defaultsText),
            QStringLiteral("Write the file anew, with the three keys alone.")}};

    Findings findings;
    if (isUtf16(fileName)) {
        findings.append({Finding::Error, FileName,
            QStringLiteral("is not written in UTF-8: its keys are not found"),
            QStringLiteral("Save it as UTF-8; \"Unicode\" in an editor often is another one.")});
    }
    QSettings settings(fileName, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    const SensorParameters read = PluginKrHvcP2::readSensorIni(fileName, defaults);
    for (const Key &key : Keys)
        findings.append(checkKey(settings, key, read));
    const QStringList names = settings.allKeys();
    for (const QString &name : names) {
        if (isRead(name))
            continue;
        findings.append({Finding::Warning, FileName,
            QStringLiteral("nobody reads %1")
                .arg(name.contains(QLatin1Char('/'))
                        ? name
                        : name + QLatin1String(", which stands in no group")),
            QStringLiteral("The group is [Main], its keys are Port, Speed and Interval; correct"
                           " the key or delete it.")});
    }
    return findings;
}

} // namespace Hvcp2
