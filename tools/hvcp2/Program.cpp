#include "tools/hvcp2/Program.h"

#include "tools/hvcp2/CheckCommand.h"
#include "tools/hvcp2/CompareCommand.h"
#include "tools/hvcp2/CoverageCommand.h"
#include "tools/hvcp2/ExplainCommand.h"
#include "tools/hvcp2/ExportCommand.h"
#include "tools/hvcp2/RecordCommand.h"
#include "tools/hvcp2/ReplayCommand.h"
#include "tools/hvcp2/ReportCommand.h"

#include <algorithm>

namespace Hvcp2 {

namespace {

QCommandLineOption helpOption()
{
    return {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Print this help.")};
}

QCommandLineOption versionOption()
{
    return {{QStringLiteral("v"), QStringLiteral("version")},
        QStringLiteral("Print the program's version.")};
}

/// Two columns; the second one begins where the longest of the first ends.
QString listText(const QVector<QPair<QString, QString>> &list)
{
    int width = 0;
    for (const auto &[term, meaning] : list)
        width = qMax(width, term.size());
    QString text;
    for (const auto &[term, meaning] : list)
        text += QStringLiteral("  %1  %2\n").arg(term.leftJustified(width), meaning);
    return text;
}

QString optionsText(const QList<QCommandLineOption> &options)
{
    QVector<QPair<QString, QString>> list;
    for (const QCommandLineOption &option : options) {
        QStringList names;
        const QStringList given = option.names();
        for (const QString &name : given)
            names << QLatin1String(name.size() == 1 ? "-" : "--") + name;
        QString term = names.join(QLatin1String(", "));
        if (!option.valueName().isEmpty())
            term += QLatin1Char(' ') + option.valueName();
        list.append({term, option.description()});
    }
    return listText(list);
}

QString examplesText(const QStringList &examples)
{
    QString text;
    for (const QString &example : examples)
        text += QLatin1String("  hvcp2 ") + example + QLatin1Char('\n');
    return text;
}

QString programHelp()
{
    QVector<QPair<QString, QString>> list;
    QStringList examples;
    const QVector<Command> commands = allCommands();
    for (const Command &command : commands) {
        list.append({command.name, command.summary});
        examples << command.examples.constFirst();
    }
    return QStringLiteral("Usage: hvcp2 COMMAND [OPTION...]\n\n"
                          "Tells what the plug-in does with a stage, and why.\n\n"
                          "Commands:\n%1\n"
                          "Options:\n%2\n"
                          "Examples:\n%3\n"
                          "\"hvcp2 COMMAND --help\" tells more about a command. The exit status is"
                          " 0 when all\nis fine, 1 when something wrong was found and 2 after bad"
                          " use or bad input.\n")
        .arg(listText(list), optionsText({helpOption(), versionOption()}), examplesText(examples));
}

QString commandHelp(const Command &command)
{
    return QStringLiteral("Usage: hvcp2 %1 %2\n\n%3\n\nOptions:\n%4\nExamples:\n%5")
        .arg(command.name, command.synopsis, command.description,
            optionsText(command.options + QList<QCommandLineOption>{helpOption()}),
            examplesText(command.examples));
}

/// Without a command, or with what is none.
ExitStatus runWithoutCommand(const QStringList &arguments, const QString &version, Console &console)
{
    QCommandLineParser parser;
    parser.addOptions({helpOption(), versionOption()});
    QString reason;
    if (arguments.isEmpty()) {
        reason = QStringLiteral("A command is needed.");
    } else if (!arguments.constFirst().startsWith(QLatin1Char('-'))) {
        reason = QStringLiteral("Unknown command '%1'.").arg(arguments.constFirst());
    } else if (!parser.parse(QStringList(QStringLiteral("hvcp2")) + arguments)) {
        reason = parser.errorText();
    } else if (parser.isSet(helpOption().names().constFirst())) {
        console.out << programHelp();
        return Fine;
    } else if (parser.isSet(versionOption().names().constFirst())) {
        console.out << "hvcp2 " << version << '\n';
        return Fine;
    } else {
        reason = QStringLiteral("Options go behind the command.");
    }
    console.error << "hvcp2: " << reason << " See 'hvcp2 --help'.\n";
    return BadUse;
}

ExitStatus runCommand(const Command &command, const QStringList &arguments, Console &console)
{
    QCommandLineParser parser;
    parser.addOptions(command.options);
    parser.addOption(helpOption());
    QString reason;
    if (!parser.parse(arguments)) {
        reason = parser.errorText();
    } else if (parser.isSet(helpOption().names().constFirst())) {
        console.out << commandHelp(command);
        return Fine;
    } else if (!command.takesArguments && !parser.positionalArguments().isEmpty()) {
        reason = QStringLiteral("Unexpected argument '%1'.")
                     .arg(parser.positionalArguments().constFirst());
    }
    if (reason.isEmpty())
        return command.run(parser, console);
    return refuse(
        command, QStringLiteral("%1 See 'hvcp2 %2 --help'.").arg(reason, command.name), console);
}

} // namespace

QVector<Command> allCommands()
{
    return {explainCommand(), coverageCommand(), replayCommand(), compareCommand(), reportCommand(),
        exportCommand(), recordCommand(), checkCommand()};
}

ExitStatus runProgram(const QStringList &arguments, const QString &version, Console &console)
{
    const QVector<Command> commands = allCommands();
    const auto command = std::find_if(commands.cbegin(), commands.cend(),
        [name = arguments.value(0)](const Command &each) { return each.name == name; });
    return command == commands.cend() ? runWithoutCommand(arguments, version, console)
                                      : runCommand(*command, arguments, console);
}

} // namespace Hvcp2
