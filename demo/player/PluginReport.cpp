#include "demo/player/PluginReport.h"

#include "demo/player/ShownText.h"
#include "demo/support/PluginFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QStringList>

namespace Player {

using Demo::PluginFile;

namespace {

constexpr int LabelWidth = 14; // columns

QString tr(const char *text)
{
    return QCoreApplication::translate("Player::PluginReport", text);
}

/// Further lines of @p value stand below the first one.
QString row(const QString &label, const QStringList &value)
{
    QString text;
    QString first = oneLine(label).leftJustified(LabelWidth - 1) + QLatin1Char(' ');
    for (const QString &line : value) {
        text += first + oneLine(line) + QLatin1Char('\n');
        first = QString(LabelWidth, QLatin1Char(' '));
    }
    return text;
}

QStringList linesOf(const QJsonValue &value)
{
    if (!value.isArray())
        return {value.toVariant().toString()};
    QStringList lines;
    const QJsonArray array = value.toArray();
    for (const QJsonValue &line : array)
        lines << line.toVariant().toString();
    return lines;
}

QString qtText(const PluginFile &plugin)
{
    return tr("%1, %2; here %3")
        .arg(plugin.qtVersion, plugin.isDebug ? tr("debug") : tr("release"),
            QLatin1String(qVersion()));
}

QString metaDataRows(const PluginFile &plugin)
{
    QStringList keys{QStringLiteral("Name"), QStringLiteral("Version"), QStringLiteral("Vendor"),
        QStringLiteral("Category")};
    const QStringList allKeys = plugin.metaData.keys();
    for (const QString &key : allKeys) {
        if (!keys.contains(key))
            keys << key;
    }
    QString text;
    for (const QString &key : qAsConst(keys)) {
        if (plugin.metaData.contains(key))
            text += row(key, linesOf(plugin.metaData.value(key)));
    }
    return text;
}

} // namespace

QString pluginReport(const PluginFile &plugin)
{
    QString text = row(tr("File"), {QDir::toNativeSeparators(plugin.fileName)});
    if (plugin.problem == PluginFile::Missing || plugin.problem == PluginFile::NoFile
        || plugin.problem == PluginFile::Unreadable)
        return text + tr("It %1.").arg(plugin.reason()) + QLatin1Char('\n') + plugin.advice()
            + QLatin1Char('\n');
    text += row(tr("Format"), {plugin.format.toText()});
    if (!plugin.interfaceId.isEmpty()) {
        text += row(tr("Interface"), {plugin.interfaceId}) + row(tr("Qt"), {qtText(plugin)})
            + metaDataRows(plugin);
    }
    text += QLatin1Char('\n');
    if (plugin.problem == PluginFile::None)
        return text + tr("It loads.") + QLatin1Char('\n');
    return text + tr("It does not load: it %1.").arg(oneLine(plugin.reason())) + QLatin1Char('\n')
        + tr("The loader says: %1").arg(oneLine(plugin.message)) + QLatin1Char('\n')
        + plugin.advice() + QLatin1Char('\n');
}

} // namespace Player
