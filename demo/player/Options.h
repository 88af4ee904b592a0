#pragma once

#include "demo/player/Programme.h"
#include "demo/stage/IdleSequence.h"

#include <QString>

#include <optional>

namespace Player {

/// What the command line asks for. Paths are absolute.
struct Options
{
    enum Request { Run, ShowHelp, ShowVersion, ShowInfo, Refuse };

    Request request = Run;
    QString error; ///< what is wrong, for Refuse
    QString infoFile; ///< the plug-in file, for ShowInfo

    bool headless = false;
    std::optional<int> milliseconds; ///< after which the player ends by itself
    QString stageFile;
    std::optional<int> screenId;
    QString pluginFile;
    QString logDirectory;
    QString screenshotFile; ///< empty: none
    QString proofFile; ///< empty: none
    QString logFile; ///< a day to be looked at; empty: none
    QString replayFile; ///< empty: none
    QString scenarioFile; ///< empty: none
    Programme::Switching switching = Programme::Switching::Now;
    std::optional<Stage::IdleSequence> idle; ///< instead of the one of the stage

    /// @p arguments begin with the program's name. Needs no application object.
    static Options fromArguments(const QStringList &arguments, const QString &programDirectory);
    static QString helpText();
};

} // namespace Player
