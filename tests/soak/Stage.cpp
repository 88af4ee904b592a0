#include "Stage.h"

#include "host/KrPluginKeys.h"

namespace Soak {

namespace Keys = Kora::Keys;

namespace {

constexpr int ScreenId = 10;
constexpr int FirstLinkedScreen = 100;
constexpr int HvcContent = 8; // the type of such an entry
constexpr int ContentAges = 10; // years that a content spans

QVariantMap content(int index)
{
    const int ageMin = index / 2 * ContentAges;
    const bool isFemale = index % 2 == 0;
    return {
        {QStringLiteral("type"), HvcContent},
        {QStringLiteral("params"),
            QVariantMap{
                {Keys::Name, QStringLiteral("content")},
                {Keys::AgeMin, ageMin},
                {Keys::AgeMax, ageMin + ContentAges - 1},
                {Keys::Gender, isFemale ? Keys::Female : Keys::Male},
                {Keys::Default, index < 2 ? Keys::True : Keys::False},
            }},
    };
}

QVariantMap event(int direction, int type, const QVariant &screenSequence)
{
    return {
        {QStringLiteral("type"), type},
        {QStringLiteral("direction"), direction},
        {QStringLiteral("seq"), QVariantList()},
        {QStringLiteral("id"), ScreenId},
        {QStringLiteral("screenseq"), screenSequence},
    };
}

} // namespace

QVariantMap screen(int contents)
{
    QVariantList entries;
    for (int index = 0; index < contents; ++index)
        entries.append(content(index));
    return {{Keys::Id, ScreenId}, {Keys::Contents, entries}};
}

Kora::KrPluginStage stage(int contents)
{
    const QString events = QStringLiteral("event");
    QMap<int, QVariantMap> screens{{ScreenId, {{events, QVariantList{event(1, 2, QVariant())}}}}};
    for (int number = 1; number <= contents; ++number)
        screens.insert(FirstLinkedScreen + number, {{events, QVariantList{event(2, 1, number)}}});
    Kora::KrPluginStage stage;
    stage.setScreens(screens);
    return stage;
}

} // namespace Soak
