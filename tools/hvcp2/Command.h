#pragma once

#include "tools/analysis/Plan.h"
#include "tools/hvcp2/Console.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class QJsonObject;

namespace Hvcp2 {

enum ExitStatus {
    Fine = 0,
    FoundSomething = 1, ///< the command did its work and found something wrong
    BadUse = 2, ///< or bad input
    Interrupted = 130, ///< by Ctrl+C; the number is the one that shells expect
};

/// One of the program's commands.
struct Command
{
    QString name;
    QString synopsis; ///< what follows the name, for example "--stage FILE [--json]"
    QString summary; ///< a line
    QString description; ///< lines of 80 characters at most, the last one without its end
    QList<QCommandLineOption> options;
    bool takesArguments = false; ///< beside options
    QStringList examples; ///< what follows the program's name
    ExitStatus (*run)(const QCommandLineParser &given, Console &console) = nullptr;
};

/// How a result is printed.
enum class Form { Text, Json, Csv };

/// "hvcp2 NAME: REASON" on standard error. Returns BadUse.
ExitStatus refuse(const Command &command, const QString &reason, Console &console);

// Options that several commands have.
QCommandLineOption stageOption();
QCommandLineOption screenOption();
QCommandLineOption settingsOption();
QCommandLineOption jsonOption();
QCommandLineOption csvOption(); ///< goes with jsonOption()

/// The plan that --stage and --screen name, with the --settings that there are. Nothing, and the
/// reason in @p error, when there is none.
std::optional<Analysis::Plan> givenPlan(const QCommandLineParser &given, QString *error);

/// Sets @p screen to the one that --screen names, if any. False, and the reason in @p error, when
/// that is no number.
bool readGivenScreen(const QCommandLineParser &given, std::optional<int> *screen, QString *error);

/// The two steps of givenPlan(), for a command with several stages.
std::optional<Analysis::Plan> readGivenPlan(
    const QCommandLineParser &given, const QString &stage, QString *error);
bool assignGivenSettings(const QCommandLineParser &given, Analysis::Plan *plan, QString *error);

/// The form that --json or --csv asks for, of a command that has both. Nothing, and the reason in
/// @p error, when both are given.
std::optional<Form> givenForm(const QCommandLineParser &given, QString *error);

/// The arguments that are no options, and no KEY=VALUE that belongs to --settings.
QStringList givenFrames(const QCommandLineParser &given);

bool isGiven(const QCommandLineParser &given, const QCommandLineOption &option);

void printJson(const QJsonObject &document, Console &console);
/// What the function for @p form makes.
void print(Form form, const std::function<QString()> &text,
    const std::function<QJsonObject()> &json, const std::function<QString()> &csv,
    Console &console);

/// Replaces the file @p fileName. False with "file: reason" in @p error when that fails.
bool writeFile(const QString &fileName, const QByteArray &content, QString *error);

} // namespace Hvcp2
