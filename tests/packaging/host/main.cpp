// tinyhost PLUGIN_FILE LOG_DIRECTORY: plays one screen until the first sequence is started.
#include <host/KrPluginCommonInterface.h>
#include <host/KrPluginExtScreenInterface.h>
#include <host/KrPluginGraphicsItem.h>
#include <host/KrPluginGuiInterface.h>
#include <host/KrPluginKeys.h>
#include <host/KrPluginLogLevel.h>
#include <host/KrPluginStage.h>

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QGraphicsScene>
#include <QPluginLoader>
#include <QTimer>

#include <cstdio>

using Kora::KrPluginExtScreenInterface;
namespace Keys = Kora::Keys;

namespace {

constexpr int Screen = 1;
constexpr int NextScreen = 2;
constexpr int Patience = 30000; // ms

} // namespace

/// What the plug-in asks its host for.
class Playback : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

public slots:
    void onContentStarted(int seqIndex)
    {
        std::printf("start #%d\n", seqIndex + 1);
        QCoreApplication::exit(0); // ends the loop; the plug-in is not deleted inside of its signal
    }

    void onThrowLogMessage(const QString &message, int level)
    {
        const QString name = Kora::LogLevel::translatedName(level);
        std::printf("%s: %s\n", qPrintable(name), qPrintable(message));
    }
};

/// The screen has sequences to start, and the next one follows the first two of them.
static Kora::KrPluginStage makeStage()
{
    const QVariantMap own{{"direction", 1}, {"type", 2}, {"seq", QVariantList{1, 2}}};
    QVariantList links;
    for (int number = 1; number <= 2; ++number)
        links << QVariantMap{{"id", Screen}, {"type", 2}, {"screenseq", number}};
    Kora::KrPluginStage stage;
    stage.setScreens({{Screen, {{"event", QVariantList{own}}}}, {NextScreen, {{"event", links}}}});
    return stage;
}

static void setUp(
    KrPluginExtScreenInterface *plugin, const QString &file, const QString &logDirectory)
{
    QVariant screen = QVariantMap{{Keys::Id, Screen}}; // as it was stored; this one is new
    plugin->makeDefaultPluginData(&screen);

    QDir().mkpath(logDirectory); // a folder that is not there would be ignored
    plugin->setPath(QFileInfo(file).absolutePath());
    plugin->setLogSetting(logDirectory);
    plugin->setStage(makeStage());
    plugin->setPluginData(screen);
    plugin->setParams(screen.toMap().value(Keys::PluginData).toMap());
}

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    if (argc < 3)
        return 2;
    const QString file = QString::fromLocal8Bit(argv[1]);
    QPluginLoader loader(file);
    auto *plugin = qobject_cast<KrPluginExtScreenInterface *>(loader.instance());
    if (plugin == nullptr) {
        std::printf("%s\n", qPrintable(loader.errorString()));
        return 1;
    }

    Playback playback;
    // clang-format off
    QObject::connect(plugin->object(), SIGNAL(contentStarted(int)),
        &playback, SLOT(onContentStarted(int)));
    QObject::connect(plugin->object(), SIGNAL(throwLogMessage(QString,int)),
        &playback, SLOT(onThrowLogMessage(QString,int)));
    // clang-format on

    setUp(plugin, file, QString::fromLocal8Bit(argv[2]));
    QGraphicsScene scene; // goes behind the plug-in, which takes its panel away
    scene.addItem(plugin->graphicsItem());
    plugin->graphicsItem()->setItemSize(512, 384);

    plugin->init();
    std::printf("%s, status %d\n", qPrintable(plugin->displayName()), plugin->status());
    plugin->start();
    QTimer::singleShot(Patience, &playback, [] { QCoreApplication::exit(1); });
    const int result = QCoreApplication::exec();

    plugin->stop();
    delete plugin; // the library stays loaded
    return result;
}

#include "main.moc"
