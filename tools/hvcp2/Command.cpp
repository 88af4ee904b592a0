#include "tools/hvcp2/Command.h"

#include "demo/support/UserFile.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace Hvcp2 {

ExitStatus refuse(const Command &command, const QString &reason, Console &console)
{
    console.error << "hvcp2 " << command.name << ": " << reason << '\n';
    return BadUse;
}

QCommandLineOption stageOption()
{
    return {QStringLiteral("stage"), QStringLiteral("The stage file."), QStringLiteral("FILE")};
}

QCommandLineOption screenOption()
{
    return {QStringLiteral("screen"),
        QStringLiteral("The screen (default: the one that the stage plays)."),
        QStringLiteral("ID")};
}

QCommandLineOption jsonOption()
{
    return {QStringLiteral("json"), QStringLiteral("Print one JSON document.")};
}

std::optional<Analysis::Plan> givenPlan(const QCommandLineParser &given, QString *error)
{
    const QString stage = given.value(QStringLiteral("stage"));
    if (stage.isEmpty()) {
        *error = QStringLiteral("--stage FILE is needed.");
        return std::nullopt;
    }
    std::optional<int> screen;
    if (given.isSet(QStringLiteral("screen"))) {
        const QString id = given.value(QStringLiteral("screen"));
        bool ok = false;
        screen = id.toInt(&ok);
        if (!ok) {
            *error = QStringLiteral("--screen: \"%1\" is no whole number").arg(id);
            return std::nullopt;
        }
    }
    return Analysis::readPlan(stage, screen, error);
}

void printJson(const QJsonObject &document, Console &console)
{
    console.out << QString::fromUtf8(QJsonDocument(document).toJson());
}

bool writeFile(const QString &fileName, const QByteArray &content, QString *error)
{
    if (Demo::UserFile::isNoFile(fileName)) {
        *error = QStringLiteral("%1: is not a file").arg(fileName);
        return false;
    }
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit())
        return true;
    *error = QStringLiteral("%1: cannot be written: %2").arg(fileName, file.errorString());
    return false;
}

} // namespace Hvcp2
