#include "tools/hvcp2/RecordOptions.h"

#include "demo/support/UserFile.h"

#include <QDir>
#include <QMap>

namespace Hvcp2 {

namespace {

constexpr int MaxFileMebibytes = 1; // of the file of options
constexpr int MaxNumber = 100000;
constexpr qint64 Mebibyte = Q_INT64_C(1024) * 1024; // bytes

const QString Program = QStringLiteral("program");
const QString Directory = QStringLiteral("as");
const QString MaxSize = QStringLiteral("max-size");
const QString Files = QStringLiteral("files");

using Values = QMap<QString, QString>; // of options, by name

/// The relative path of a file or folder is meant from where it is written.
QString resolved(const QString &path, const QString &folder)
{
    return QDir::cleanPath(QDir(folder).absoluteFilePath(path));
}

void resolvePaths(Values *values, const QString &folder)
{
    for (const QString &name : {Program, Directory}) {
        if (values->contains(name))
            values->insert(name, resolved(values->value(name), folder));
    }
}

bool readLine(const QString &line, Values *values)
{
    if (line.isEmpty() || QStringLiteral(";#[").contains(line.at(0)))
        return true;
    const int equals = line.indexOf(QLatin1Char('='));
    const QString name = line.left(equals).trimmed();
    const QString value = line.mid(equals + 1).trimmed();
    if (equals < 0 || value.isEmpty() || !values->contains(name))
        return false;
    values->insert(name, value);
    return true;
}

/// Takes the options of the file in @p folder over, if there is one.
bool readFile(const QString &folder, Values *values, QString *error)
{
    const QString fileName = QDir(folder).filePath(QLatin1String(RecordOptions::FileName));
    if (!QFile::exists(fileName))
        return true;
    const std::optional<QByteArray> text = Demo::UserFile::read(fileName, MaxFileMebibytes, error);
    if (!text)
        return false;
    const QStringList lines = QString::fromUtf8(*text).split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        if (!readLine(lines.at(i).trimmed(), values)) {
            *error = QStringLiteral("%1:%2: \"%3\" is no option")
                         .arg(fileName, QString::number(i + 1), lines.at(i).trimmed());
            return false;
        }
    }
    return true;
}

std::optional<int> number(const Values &values, const QString &name, QString *error)
{
    bool ok = false;
    const int number = values.value(name).toInt(&ok);
    if (ok && number >= 1 && number <= MaxNumber)
        return number;
    *error = QStringLiteral("%1: \"%2\" is no whole number from 1 to %3")
                 .arg(name, values.value(name), QString::number(MaxNumber));
    return std::nullopt;
}

} // namespace

QList<QCommandLineOption> recordCommandOptions()
{
    return {
        {Directory, QStringLiteral("The folder of the recordings (default: recordings)."),
            QStringLiteral("DIR")},
        {Program, QStringLiteral("The sensor program (default: HvcCon-real.exe beside hvcp2)."),
            QStringLiteral("FILE")},
        {MaxSize, QStringLiteral("Size at which a new file is begun (default: 64)."),
            QStringLiteral("MIB")},
        {Files, QStringLiteral("Number of files that are kept (default: 8)."), QStringLiteral("N")},
    };
}

std::optional<RecordOptions> readRecordOptions(
    const QCommandLineParser *given, const QString &folder, QString *error)
{
    Values values{{Program, QStringLiteral("HvcCon-real.exe")},
        {Directory, QStringLiteral("recordings")}, {MaxSize, QStringLiteral("64")},
        {Files, QStringLiteral("8")}};
    const QStringList names = values.keys();
    if (given != nullptr) // a user looks for them in the current folder
        values.insert(Directory, resolved(values.value(Directory), QDir::currentPath()));
    if (!readFile(folder, &values, error))
        return std::nullopt;
    resolvePaths(&values, folder);
    for (const QString &name : names) {
        if (given != nullptr && given->isSet(name))
            values.insert(name, given->value(name));
    }
    resolvePaths(&values, QDir::currentPath());
    const std::optional<int> mebibytes = number(values, MaxSize, error);
    const std::optional<int> files = number(values, Files, error);
    if (!mebibytes || !files)
        return std::nullopt;
    return RecordOptions{
        values.value(Program), values.value(Directory), {*mebibytes * Mebibyte, *files}};
}

} // namespace Hvcp2
