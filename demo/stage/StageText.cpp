#include "demo/stage/StageText.h"

#include "demo/stage/StageKeys.h"
#include "host/KrPluginKeys.h"

namespace Stage {

namespace Keys = Kora::Keys;

namespace {

constexpr int MaxShown = 500; // characters of a text

} // namespace

QString shortened(const QString &text, int limit)
{
    if (text.size() <= limit)
        return text;
    QString beginning = text.left(limit - 1);
    if (text.at(limit - 1).isLowSurrogate())
        beginning.chop(1);
    return beginning + QChar(0x2026);
}

QString shownText(const QJsonObject &object, const QString &key)
{
    return shortened(object.value(key).toString(), MaxShown);
}

QString contentName(const QJsonObject &entry)
{
    const QString name = shownText(entry, Keys::Name);
    return name.isEmpty() ? shownText(entry.value(StageKeys::Params).toObject(), Keys::Name) : name;
}

} // namespace Stage
