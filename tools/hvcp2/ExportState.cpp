#include "tools/hvcp2/ExportState.h"

#include "demo/support/UserFile.h"
#include "tools/hvcp2/Command.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace Hvcp2 {

using Analysis::Position;

namespace {

const QString Files = QStringLiteral("files");
const QString File = QStringLiteral("file");
const QString Line = QStringLiteral("line");
const QString Offset = QStringLiteral("offset");

/// The next call may be made in another folder.
QString keyOf(const QString &file)
{
    return QFileInfo(file).absoluteFilePath();
}

std::optional<Position> positionFrom(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    const Position position{object.value(File).toString(),
        static_cast<qint64>(object.value(Line).toDouble()),
        static_cast<qint64>(object.value(Offset).toDouble(-1))};
    const bool isValid = !position.file.isEmpty() && position.line > 0 && position.offset >= 0;
    return isValid ? std::make_optional(position) : std::nullopt;
}

} // namespace

std::optional<QVector<Position>> readExportState(
    const QString &fileName, const QStringList &files, QString *error)
{
    if (!QFileInfo::exists(fileName))
        return QVector<Position>();
    const QString objection = Demo::UserFile::objection(fileName);
    QFile file(fileName);
    if (!objection.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: %2").arg(
            fileName, objection.isEmpty() ? file.errorString() : objection);
        return std::nullopt;
    }
    const QJsonValue list = QJsonDocument::fromJson(file.readAll()).object().value(Files);
    const QJsonArray entries = list.toArray();
    QVector<Position> positions;
    bool isValid = list.isArray();
    for (const QJsonValue &entry : entries) {
        std::optional<Position> position = positionFrom(entry);
        isValid = isValid && position;
        const auto name = std::find_if(files.cbegin(), files.cend(),
            [&](const QString &each) { return position && keyOf(each) == position->file; });
        if (name == files.cend())
            continue; // cleaned up since
        position->file = *name;
        positions.append(*position);
    }
    if (isValid)
        return positions;
    *error = QStringLiteral("%1: is no state of an export").arg(fileName);
    return std::nullopt;
}

bool writeExportState(const QString &fileName, const QVector<Position> &positions, QString *error)
{
    QJsonArray entries;
    for (const Position &position : positions) {
        entries.append(QJsonObject{
            {File, keyOf(position.file)}, {Line, position.line}, {Offset, position.offset}});
    }
    return writeFile(fileName, QJsonDocument(QJsonObject{{Files, entries}}).toJson(), error);
}

} // namespace Hvcp2
