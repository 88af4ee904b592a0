#include "demo/player/StageChanges.h"

#include "demo/stage/StageKeys.h"
#include "host/KrPluginKeys.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Player {

namespace Keys = Kora::Keys;

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Player::StageChanges", text);
}

QString valueText(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Undefined:
        return tr("(none)");
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Array:
        return QString::fromUtf8(QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact));
    case QJsonValue::Object:
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
    default:
        return value.toVariant().toString();
    }
}

/// "key old -> new" for each key with different values.
QStringList differences(const QJsonObject &before, const QJsonObject &after)
{
    QJsonObject all = before;
    for (auto it = after.begin(); it != after.end(); ++it)
        all.insert(it.key(), it.value());
    QStringList lines;
    const QStringList keys = all.keys();
    for (const QString &key : keys) {
        const QJsonValue oldValue = before.value(key);
        const QJsonValue newValue = after.value(key);
        if (oldValue != newValue) {
            lines
                << QStringLiteral("%1 %2 -> %3").arg(key, valueText(oldValue), valueText(newValue));
        }
    }
    return lines;
}

QStringList contentDifferences(QJsonObject before, QJsonObject after)
{
    const QJsonObject paramsBefore = before.take(Stage::StageKeys::Params).toObject();
    const QJsonObject paramsAfter = after.take(Stage::StageKeys::Params).toObject();
    return differences(before, after) + differences(paramsBefore, paramsAfter);
}

} // namespace

QStringList describeChanges(const QVariantMap &before, const QVariantMap &after)
{
    // JSON knows one kind of number, whatever a plug-in stores.
    const QJsonObject oldScreen = QJsonObject::fromVariantMap(before);
    const QJsonObject newScreen = QJsonObject::fromVariantMap(after);
    const auto join = [](const QStringList &list) { return list.join(QLatin1String(", ")); };

    QStringList lines;
    const QStringList settings = differences(
        oldScreen.value(Keys::PluginData).toObject(), newScreen.value(Keys::PluginData).toObject());
    if (!settings.isEmpty())
        lines << tr("settings: %1").arg(join(settings));

    const QJsonArray oldContents = oldScreen.value(Keys::Contents).toArray();
    const QJsonArray newContents = newScreen.value(Keys::Contents).toArray();
    for (int i = 0; i < qMax(oldContents.size(), newContents.size()); ++i) {
        const QString number = QString::number(i + 1);
        if (i >= oldContents.size()) {
            lines << tr("content #%1 added").arg(number);
        } else if (i >= newContents.size()) {
            lines << tr("content #%1 removed").arg(number);
        } else {
            const QStringList changes
                = contentDifferences(oldContents.at(i).toObject(), newContents.at(i).toObject());
            if (!changes.isEmpty())
                lines << tr("content #%1: %2").arg(number, join(changes));
        }
    }
    return lines;
}

} // namespace Player
