#include "demo/support/PluginFile.h"

#include "demo/support/UserFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QPluginLoader>
#include <QVersionNumber>

namespace Demo {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Demo::PluginFile", text);
}

/// "5.15" for what plug-ins have as 0x050f00.
QString versionText(int version)
{
    return QStringLiteral("%1.%2").arg(
        QString::number(version >> 16), QString::number((version >> 8) & 0xff));
}

QString buildText(bool isDebug)
{
    return isDebug ? tr("debug") : tr("release");
}

/// Whether a program with this Qt takes plug-ins that were made with @p version.
bool acceptsQt(const QString &version)
{
    const QVersionNumber own = QVersionNumber::fromString(QLatin1String(qVersion()));
    const QVersionNumber other = QVersionNumber::fromString(version);
    return other.majorVersion() == own.majorVersion() && other.minorVersion() <= own.minorVersion();
}

} // namespace

PluginFile PluginFile::examine(const QString &fileName)
{
    PluginFile plugin;
    plugin.fileName = QFileInfo(fileName).absoluteFilePath();
    QFile file(plugin.fileName);
    if (!file.exists()) {
        plugin.problem = Missing;
    } else if (UserFile::isNoFile(plugin.fileName)) {
        plugin.problem = NoFile;
    } else if (!file.open(QIODevice::ReadOnly)) {
        plugin.problem = Unreadable;
        plugin.message = file.errorString();
    } else {
        plugin.format = ExecutableFormat::of(file.read(ExecutableFormat::HeaderBytes));
        plugin.message = plugin.tryToLoad();
        plugin.problem = plugin.diagnose();
    }
    return plugin;
}

/// Returns what the loader says when it fails.
QString PluginFile::tryToLoad()
{
    QPluginLoader loader(fileName);
    const QJsonObject found = loader.metaData();
    metaData = found.value(QLatin1String("MetaData")).toObject();
    interfaceId = found.value(QLatin1String("IID")).toString();
    if (!interfaceId.isEmpty()) {
        qtVersion = versionText(found.value(QLatin1String("version")).toInt());
        isDebug = found.value(QLatin1String("debug")).toBool();
        if (interfaceId != QLatin1String(InterfaceId))
            return tr("The file is not a screen plug-in."); // whose code need not run
    }
    return loader.load() ? QString() : loader.errorString();
}

PluginFile::Problem PluginFile::diagnose() const
{
    if (message.isEmpty())
        return None;
    if (format.system == ExecutableFormat::Unknown || format.system == ExecutableFormat::Script)
        return NoLibrary;
    const ExecutableFormat own = ExecutableFormat::ofThisProgram();
    if (format.system != own.system || format.processor != own.processor)
        return OtherMachine;
    if (interfaceId.isEmpty())
        return NoPlugin;
    if (interfaceId != QLatin1String(InterfaceId))
        return OtherInterface;
    if (!acceptsQt(qtVersion))
        return OtherQt;
    if (isDebug != QLibraryInfo::isDebugBuild())
        return OtherBuild;
    return NotLoaded;
}

QString PluginFile::reason() const
{
    switch (problem) {
    case None:
        return {};
    case Missing:
        return tr("is not there");
    case NoFile:
        return tr("is not a file");
    case Unreadable:
        return tr("cannot be read: %1").arg(message);
    case NoLibrary:
        return tr("is no library");
    case OtherMachine:
        return tr("is %1, and this is %2")
            .arg(format.toText(), ExecutableFormat::ofThisProgram().toText());
    case NoPlugin:
        return tr("holds no plug-in of Qt");
    case OtherInterface:
        return tr("is a plug-in for something else: %1").arg(interfaceId);
    case OtherQt:
        return tr("was made with Qt %1, and this is Qt %2")
            .arg(qtVersion, QLatin1String(qVersion()));
    case OtherBuild:
        return tr("is a %1 version, and the Qt here is a %2 one")
            .arg(buildText(isDebug), buildText(QLibraryInfo::isDebugBuild()));
    case NotLoaded:
        break;
    }
    return tr("is refused by the system");
}

QString PluginFile::advice() const
{
    switch (problem) {
    case None:
        return {};
    case Missing:
        return tr("Copy the plug-in file to %1.")
            .arg(QDir::toNativeSeparators(QFileInfo(fileName).absolutePath()));
    case NoFile:
    case NoLibrary:
    case NoPlugin:
    case OtherInterface:
        return tr("Put the plug-in file of this product in its place.");
    case Unreadable:
        return tr("Give the user of the host the right to read it.");
    case OtherMachine:
        return tr("Take the plug-in file for the host's system and processor.");
    case OtherQt:
        return tr("Take the plug-in file that was built with the host's Qt or an older one of the "
                  "same major version.");
    case OtherBuild:
        return tr("Take the plug-in file that was built as the host was.");
    case NotLoaded:
        break;
    }
    return tr("Take the plug-in file that was built by the host's compiler with the host's Qt or "
              "an older one, and put the libraries that it misses where the host finds them.");
}

} // namespace Demo
