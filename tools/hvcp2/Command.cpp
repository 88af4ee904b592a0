#include "tools/hvcp2/Command.h"

#include "demo/support/UserFile.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>
#include <iterator>

namespace Hvcp2 {

namespace {

const QString Settings = QStringLiteral("settings");

/// "--settings a=1 b=2" leaves the second one to the other arguments.
bool isAssignment(const QCommandLineParser &given, const QString &argument)
{
    return given.optionNames().contains(Settings) && argument.contains(QLatin1Char('='))
        && !QFileInfo::exists(argument);
}

QStringList givenAssignments(const QCommandLineParser &given)
{
    if (!given.optionNames().contains(Settings)) // not every command has it
        return {};
    QStringList assignments = given.values(Settings);
    const QStringList arguments = given.positionalArguments();
    std::copy_if(arguments.cbegin(), arguments.cend(), std::back_inserter(assignments),
        [&](const QString &argument) { return isAssignment(given, argument); });
    return assignments;
}

} // namespace

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

QCommandLineOption settingsOption()
{
    return {Settings, QStringLiteral("Other values for settings of the screen."),
        QStringLiteral("KEY=VALUE...")};
}

QCommandLineOption jsonOption()
{
    return {QStringLiteral("json"), QStringLiteral("Print one JSON document.")};
}

QCommandLineOption csvOption()
{
    return {QStringLiteral("csv"), QStringLiteral("Print a table for a spreadsheet.")};
}

bool readGivenScreen(const QCommandLineParser &given, std::optional<int> *screen, QString *error)
{
    if (!isGiven(given, screenOption()))
        return true;
    const QString id = given.value(QStringLiteral("screen"));
    bool ok = false;
    *screen = id.toInt(&ok);
    if (!ok)
        *error = QStringLiteral("--screen: \"%1\" is no whole number").arg(id);
    return ok;
}

std::optional<Analysis::Plan> readGivenPlan(
    const QCommandLineParser &given, const QString &stage, QString *error)
{
    std::optional<int> screen;
    if (!readGivenScreen(given, &screen, error))
        return std::nullopt;
    return Analysis::readPlan(stage, screen, error);
}

bool assignGivenSettings(const QCommandLineParser &given, Analysis::Plan *plan, QString *error)
{
    const QStringList assignments = givenAssignments(given);
    return std::all_of(assignments.cbegin(), assignments.cend(), [&](const QString &assignment) {
        return Analysis::assignSetting(assignment, &plan->settings, error);
    });
}

std::optional<Analysis::Plan> givenPlan(const QCommandLineParser &given, QString *error)
{
    const QString stage = given.value(QStringLiteral("stage"));
    if (stage.isEmpty()) {
        *error = QStringLiteral("--stage FILE is needed.");
        return std::nullopt;
    }
    std::optional<Analysis::Plan> plan = readGivenPlan(given, stage, error);
    if (plan && !assignGivenSettings(given, &*plan, error))
        return std::nullopt;
    return plan;
}

std::optional<Form> givenForm(const QCommandLineParser &given, QString *error)
{
    const bool isJson = isGiven(given, jsonOption());
    const bool isCsv = isGiven(given, csvOption());
    if (isJson && isCsv) {
        *error = QStringLiteral("--csv and --json exclude each other.");
        return std::nullopt;
    }
    if (isCsv)
        return Form::Csv;
    return isJson ? Form::Json : Form::Text;
}

QStringList givenFrames(const QCommandLineParser &given)
{
    QStringList frames = given.positionalArguments();
    frames.erase(std::remove_if(frames.begin(), frames.end(),
                     [&](const QString &argument) { return isAssignment(given, argument); }),
        frames.end());
    return frames;
}

bool isGiven(const QCommandLineParser &given, const QCommandLineOption &option)
{
    return given.isSet(option.names().constFirst());
}

void printJson(const QJsonObject &document, Console &console)
{
    console.out << QString::fromUtf8(QJsonDocument(document).toJson());
}

void print(Form form, const std::function<QString()> &text,
    const std::function<QJsonObject()> &json, const std::function<QString()> &csv, Console &console)
{
    switch (form) {
    case Form::Text:
        console.out << text();
        break;
    case Form::Json:
        printJson(json(), console);
        break;
    case Form::Csv:
        console.out << csv();
        break;
    }
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
