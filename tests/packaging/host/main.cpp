#include <host/KrPluginCommonInterface.h>
#include <host/KrPluginExtScreenInterface.h>
#include <host/KrPluginGraphicsItem.h>
#include <host/KrPluginGuiInterface.h>
#include <host/KrPluginKeys.h>
#include <host/KrPluginStage.h>

#include <QApplication>
#include <QPluginLoader>

#include <cstdio>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QPluginLoader loader(QString::fromLocal8Bit(argv[1]));
    auto *plugin = qobject_cast<Kora::KrPluginExtScreenInterface *>(loader.instance());
    if (plugin == nullptr || !plugin->init())
        return 1;
    std::printf("%s, status %d\n", qPrintable(plugin->displayName()), plugin->status());
    delete plugin;
    return 0;
}
