#include "core/screen/NewScreen.h"

#include "core/screen/ContentEntry.h"
#include "core/screen/ScreenSettings.h"
#include "host/KrPluginKeys.h"

namespace PluginKrHvcP2 {

namespace Keys = Kora::Keys;

QVariantMap newScreen(QVariantMap screen)
{
    QVariantMap settings = screen.value(Keys::PluginData).toMap();
    const QVariantMap defaults = ScreenSettings::newScreenMap();
    for (auto it = defaults.cbegin(); it != defaults.cend(); ++it)
        settings.insert(it.key(), it.value());
    screen.insert(Keys::PluginData, settings);
    screen.insert(Keys::Contents,
        QVariantList{
            contentEntry(QStringLiteral("20 - 30 (Female)"), 20, 30, Female, true),
            contentEntry(QStringLiteral("20 - 30 (Male)"), 20, 30, Male, true),
        });
    return screen;
}

} // namespace PluginKrHvcP2
