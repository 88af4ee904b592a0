#pragma once

#include "demo/support/ExecutableFormat.h"

#include <QJsonObject>
#include <QString>

namespace Demo {

/// What a plug-in file is, and why it loads or does not, as this program's Qt sees it.
struct PluginFile
{
    /// Of the only kind of plug-in that is wanted.
    static constexpr char InterfaceId[] = "com.velmora.kora.plugin.ExtScreenInterface/1.0";

    enum Problem {
        None, ///< it loads
        Missing,
        NoFile, ///< something else stands in its place
        Unreadable,
        NoLibrary,
        OtherMachine, ///< made for another system or processor
        NoPlugin, ///< a library, but not one of Qt's plug-ins
        OtherInterface, ///< a plug-in for something else
        OtherQt, ///< made with a newer Qt, or another major version
        OtherBuild, ///< debug and release differ
        NotLoaded, ///< what else the system says, for example that a library is missing
    };

    QString fileName;
    Problem problem = None;
    ExecutableFormat format;
    QJsonObject metaData; ///< the plug-in's own; empty when it has none
    QString interfaceId; ///< empty when the file is no plug-in
    QString qtVersion; ///< that it was made with, for example "5.15"; empty likewise
    bool isDebug = false; ///< how it was made; false likewise
    QString message; ///< the system's or the loader's; empty when the file loads

    /// Looks at @p fileName and loads it, unless it is for another interface. No object is made of
    /// it. What was loaded stays.
    static PluginFile examine(const QString &fileName);

    QString reason() const; ///< why it does not load, to follow "It "; empty when it does
    QString advice() const; ///< what to do about that; likewise

private:
    QString tryToLoad();
    Problem diagnose() const;
};

} // namespace Demo
