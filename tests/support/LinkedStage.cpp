#include "tests/support/LinkedStage.h"

#include "core/screen/ContentEntry.h"
#include "core/screen/Gender.h"
#include "host/KrPluginKeys.h"

namespace KrTest {

using namespace PluginKrHvcP2;

namespace {

constexpr int ScreenId = 10;
constexpr int FirstLinkedScreen = 100;
constexpr int ContentAges = 10; // years that a content spans

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

QVariantMap linkedScreen(int contents)
{
    QVariantList entries;
    for (int i = 0; i < contents; ++i) {
        const int ageMin = i / 2 * ContentAges % HighestAge;
        entries.append(contentEntry(QStringLiteral("content"), ageMin, ageMin + ContentAges - 1,
            i % 2 == 0 ? Female : Male, i < 2));
    }
    return {{Kora::Keys::Id, ScreenId}, {Kora::Keys::Contents, entries}};
}

Kora::KrPluginStage linkedStage(int contents, int links)
{
    const QString events = QStringLiteral("event");
    QMap<int, QVariantMap> screens{{ScreenId, {{events, QVariantList{event(1, 2, QVariant())}}}}};
    for (int number = 1; number <= contents; ++number) {
        QVariantList list;
        for (int link = 0; link < links; ++link)
            list.append(event(2, 1, number));
        screens.insert(FirstLinkedScreen + number, {{events, list}});
    }
    Kora::KrPluginStage stage;
    stage.setScreens(screens);
    return stage;
}

} // namespace KrTest
