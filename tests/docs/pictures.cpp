// krhvc_pictures PLUGIN_FILE STAGE_FILE LOG_DIRECTORY FOLDER: writes the pictures of the stage
// player's window and of the plug-in's dialogs that the pages show. scripts/pictures runs it.
#include "demo/player/MainWindow.h"
#include "demo/player/StagePlayer.h"
#include "demo/stage/StageFile.h"
#include "host/KrPluginGuiInterface.h"
#include "host/KrPluginKeys.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFont>
#include <QTabWidget>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <functional>
#include <optional>

namespace Keys = Kora::Keys;

namespace {

constexpr int PlayMs = 40000; // until there is something on the strip of the last minutes
constexpr int SettleMs = 2000;
constexpr int SensorTab = 1;
constexpr int FontSize = 9; // points

bool save(QWidget *widget, const QString &fileName)
{
    // As small as it goes without a loss.
    return widget->grab().save(fileName, "png", 0);
}

void wait(
    int milliseconds, const std::function<bool()> &isDone = [] { return false; })
{
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < milliseconds && !isDone()) {
        QCoreApplication::processEvents();
        QThread::msleep(5);
    }
}

bool saveWindow(Player::StagePlayer *player, const QString &logDirectory, const QString &fileName)
{
    Player::MainWindow window(player);
    window.show();
    player->begin(logDirectory);
    window.showPluginInformation();
    const auto tabs = window.findChildren<QTabWidget *>();
    if (tabs.isEmpty())
        return false;
    tabs.constFirst()->setCurrentIndex(SensorTab);
    wait(PlayMs);
    wait(SettleMs, [&] { return !player->scene().isMoving(); });
    return save(&window, fileName);
}

/// Opens a dialog, which runs a loop of its own, and closes it when it has been painted.
bool saveDialog(const std::function<void()> &open, const QString &fileName)
{
    bool saved = false;
    QTimer::singleShot(500, qApp, [&] {
        QWidget *dialog = QApplication::activeModalWidget();
        if (dialog == nullptr)
            return;
        saved = save(dialog, fileName);
        dialog->close();
    });
    open();
    return saved;
}

QVariantMap content(const char *gender)
{
    return {{Keys::Name, QStringLiteral("20 - 30")}, {Keys::AgeMin, 20}, {Keys::AgeMax, 30},
        {Keys::Gender, QLatin1String(gender)}, {Keys::Default, Keys::True}};
}

/// A screen as it begins.
QVariant newScreen()
{
    const QString params = QStringLiteral("params");
    const QVariantList contents{
        QVariantMap{{params, content("female")}}, QVariantMap{{params, content("male")}}};
    return QVariantMap{
        {Keys::PluginData, QVariantMap{{Keys::Interval, 1000}}}, {Keys::Contents, contents}};
}

bool saveDialogs(Kora::KrPluginGuiInterface *gui, const QDir &folder)
{
    QVariant screen = newScreen();
    QVariant *const played = gui->pluginData();
    gui->setPluginData(&screen); // of the dialogs, which are made now
    const bool saved = saveDialog([gui] { gui->execScreenPropertyDialog(QRect()); },
                           folder.filePath(QStringLiteral("screen-settings.png")))
        && saveDialog([gui] { gui->addContentActions().constFirst()->trigger(); },
            folder.filePath(QStringLiteral("detection-content.png")));
    gui->setPluginData(played);
    return saved;
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 5)
        return 2;
    QString error;
    const std::optional<Stage::StageFile> stage = Stage::StageFile::read(arguments.at(2), &error);
    if (!stage) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 2;
    }
    // The same on every machine that has the font.
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), FontSize));
    Player::MainWindow::applyTheme();
    Player::StagePlayer player(*stage, stage->defaultScreenId());
    if (!player.loadPlugin(arguments.at(1))) {
        std::fprintf(stderr, "%s\n", qPrintable(player.host().errorString()));
        return 1;
    }
    const QDir folder(arguments.at(4));
    const bool saved
        = saveWindow(&player, arguments.at(3), folder.filePath(QStringLiteral("stage-player.png")))
        && saveDialogs(player.host().gui(), folder);
    player.end();
    return saved ? 0 : 1;
}
