#include "demo/player/StageContent.h"

#include "demo/player/ShownText.h"
#include "demo/player/StageKeys.h"
#include "host/KrPluginKeys.h"

#include <array>

namespace Player {

namespace Keys = Kora::Keys;

namespace {

constexpr int MaxShown = 500; // characters of a text

QColor defaultColor(int number)
{
    static const std::array<QColor, 8> colors{QColor(0xc2, 0x41, 0x5c), QColor(0x2f, 0x6f, 0xb5),
        QColor(0xd0, 0x7a, 0x1f), QColor(0x2b, 0x8a, 0x5a), QColor(0x7a, 0x4f, 0xb0),
        QColor(0x1d, 0x8a, 0x99), QColor(0xa8, 0x3f, 0x8b), QColor(0x5d, 0x72, 0x2f)};
    return colors.at(static_cast<size_t>(number - 1) % colors.size());
}

} // namespace

StageContent stageContent(const QJsonObject &entry, int number, const QDir &directory)
{
    const QJsonObject card = entry.value(StageKeys::Card).toObject();
    StageContent content;
    content.number = number;
    content.name = shownText(entry, Keys::Name);
    if (content.name.isEmpty())
        content.name = shownText(entry.value(StageKeys::Params).toObject(), Keys::Name);
    content.title
        = card.contains(StageKeys::Title) ? shownText(card, StageKeys::Title) : content.name;
    content.subtitle = shownText(card, StageKeys::Subtitle);
    content.color = QColor(card.value(StageKeys::Color).toString());
    if (!content.color.isValid())
        content.color = defaultColor(content.number);
    const QString picture = card.value(StageKeys::Picture).toString();
    if (!picture.isEmpty())
        content.picture = directory.absoluteFilePath(picture);
    return content;
}

QString shownText(const QJsonObject &object, const QString &key)
{
    return shortened(object.value(key).toString(), MaxShown);
}

} // namespace Player
