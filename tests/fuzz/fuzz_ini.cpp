// Any bytes as setting.ini: they are read at once, stored objects are never decoded, and a plain
// file says what it says.

#include "tests/fuzz/Finding.h"
#include "tests/fuzz/Target.h"

#include "sensor/SensorIni.h"

#include <QDataStream>
#include <QFile>
#include <QMetaType>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QVariant>

#include <ctime>

using namespace PluginKrHvcP2;

namespace Fuzz {

/// Whoever decodes a stored object of this type has been led to.
struct Decoy
{ };

QDataStream &operator<<(QDataStream &stream, const Decoy & /*decoy*/)
{
    return stream;
}

QDataStream &operator>>(QDataStream &stream, Decoy & /*decoy*/)
{
    expect(false, "a stored object was decoded");
    return stream;
}

} // namespace Fuzz

Q_DECLARE_METATYPE(Fuzz::Decoy)

namespace {

constexpr SensorParameters Defaults{500, 921600, 3};
constexpr int MaxSeconds = 1; // of the processor's time
#ifdef Q_OS_WIN
constexpr auto KeyCase = Qt::CaseInsensitive; // QSettings' own rule
#else
constexpr auto KeyCase = Qt::CaseSensitive;
#endif

QString latin1(const QByteArray &ini)
{
    return QString::fromLatin1(ini.constData(), ini.size()); // keeps NULs
}

/// In plain sight; an escaped at sign is none.
bool holdsStoredObject(const QByteArray &ini)
{
    static const QRegularExpression object(QStringLiteral("(^|[^\\\\])@(Variant|DateTime)\\("));
    return object.match(latin1(ini)).hasMatch();
}

/// Without escapes, quotes, lists and groups within groups.
bool isPlain(const QByteArray &ini)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9 \\t=;+.\\-\\[\\]\\r\\n]*$"));
    return plain.match(latin1(ini)).hasMatch();
}

void take(const QString &key, const QString &value, SensorParameters &parameters)
{
    const int number = QVariant(value).toInt();
    if (key.compare(QLatin1String("Interval"), KeyCase) == 0)
        parameters.interval = number;
    else if (key.compare(QLatin1String("Speed"), KeyCase) == 0)
        parameters.speed = number;
    else if (key.compare(QLatin1String("Port"), KeyCase) == 0)
        parameters.port = number;
}

/// A plain file, line by line: the last value of a key counts.
SensorParameters readPlainly(const QByteArray &ini)
{
    SensorParameters parameters = Defaults;
    QString group;
    QString text = latin1(ini);
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &untrimmed : lines) {
        const QString line = untrimmed.section(QLatin1Char(';'), 0, 0).trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            group = line.mid(1).section(QLatin1Char(']'), 0, 0).trimmed();
            continue;
        }
        const int sign = line.indexOf(QLatin1Char('='));
        if (sign >= 0 && group.compare(QLatin1String("Main"), KeyCase) == 0)
            take(line.left(sign).trimmed(), line.mid(sign + 1).trimmed(), parameters);
    }
    return parameters;
}

QString describe(const SensorParameters &parameters)
{
    return QStringLiteral("interval %1, speed %2, port %3")
        .arg(QString::number(parameters.interval), QString::number(parameters.speed),
            QString::number(parameters.port));
}

SensorParameters read(const QByteArray &ini)
{
    // QSettings reads a file again only when its size or time has changed, in milliseconds.
    static const QTemporaryDir directory;
    static quint64 number = 0;
    QFile file(directory.filePath(QString::number(++number)));
    Fuzz::expect(file.open(QIODevice::WriteOnly) && file.write(ini) == ini.size(), "no file");
    file.close();

    const std::clock_t start = std::clock();
    const SensorParameters parameters = readSensorIni(file.fileName(), Defaults);
    Fuzz::expect(std::clock() - start < MaxSeconds * CLOCKS_PER_SEC, "reading takes too long");
    file.remove();
    return parameters;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const int decoy = [] {
        qRegisterMetaTypeStreamOperators<Fuzz::Decoy>("Decoy");
        return qRegisterMetaType<Fuzz::Decoy>("Decoy");
    }();
    Q_UNUSED(decoy)

    const QByteArray ini(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const SensorParameters parameters = read(ini);
    if (holdsStoredObject(ini))
        Fuzz::expectSame(describe(parameters), describe(Defaults), "file with a stored object");
    else if (isPlain(ini))
        Fuzz::expectSame(describe(parameters), describe(readPlainly(ini)), "plain file");
    return 0;
}
