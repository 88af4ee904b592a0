#include "demo/desk/LogDay.h"
#include "demo/player/MainWindow.h"
#include "demo/player/Options.h"
#include "demo/player/Platform.h"
#include "demo/player/PluginReport.h"
#include "demo/player/StagePlayer.h"
#include "demo/player/TerminationNotifier.h"
#include "demo/player/WindowState.h"
#include "demo/support/PluginFile.h"
#include "demo/support/SimulatorVariables.h"
#include "demo/support/UserFile.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QScreen>
#include <QTextStream>
#include <QThread>
#include <QTimer>

#include <memory>
#include <optional>

using namespace Player;

namespace {

constexpr int SettleTimeout = 2000; // ms

enum ExitStatus { Success, RunFailure, BadInput };

QTextStream &out()
{
    static QTextStream stream(stdout);
    stream.setCodec("UTF-8");
    return stream;
}

int fail(ExitStatus status, const QString &message)
{
    QTextStream error(stderr);
    error.setCodec("UTF-8");
    error << QCoreApplication::applicationName() << QLatin1String(": ") << message
          << QLatin1Char('\n');
    return status;
}

/// All that is known before there is anything to show.
struct Order
{
    std::optional<int> exitStatus; // the program has nothing more to do
    Options options;
    Stage::StageFile stage;
    int screenId = 0;
    Programme::Rules rules;
};

Order refuse(const QString &message)
{
    Order order;
    order.exitStatus = fail(BadInput, message);
    return order;
}

ExitStatus showInfo(const QString &fileName)
{
    const Demo::PluginFile plugin = Demo::PluginFile::examine(fileName);
    out() << pluginReport(plugin);
    return plugin.problem == Demo::PluginFile::None ? Success : RunFailure;
}

Order takeOrder(const Options &options)
{
    Order order;
    order.options = options;
    switch (options.request) {
    case Options::ShowHelp:
        out() << Options::helpText();
        order.exitStatus = Success;
        return order;
    case Options::ShowVersion:
        out() << QCoreApplication::applicationName() << QLatin1Char(' ')
              << QCoreApplication::applicationVersion() << QLatin1Char('\n');
        order.exitStatus = Success;
        return order;
    case Options::ShowInfo:
        order.exitStatus = showInfo(options.infoFile);
        return order;
    case Options::Refuse:
        return refuse(options.error);
    case Options::Run:
        break;
    }
    for (const QString &file : {options.replayFile, options.scenarioFile}) {
        if (file.isEmpty())
            continue;
        const QString objection = Demo::UserFile::objection(file);
        if (!objection.isEmpty())
            return refuse(QStringLiteral("%1: %2").arg(file, objection));
    }
    if (!options.logFile.isEmpty()) {
        const QString objection = Desk::LogDay::objection(options.logFile);
        if (!objection.isEmpty())
            return refuse(objection);
    }
    QString error;
    const std::optional<Stage::StageFile> stage = Stage::StageFile::read(options.stageFile, &error);
    if (!stage)
        return refuse(error);
    order.stage = *stage;
    order.screenId = options.screenId.value_or(stage->defaultScreenId());
    if (!stage->hasScreen(order.screenId)) {
        return refuse(QStringLiteral("%1: there is no screen %2")
                          .arg(options.stageFile, QString::number(order.screenId)));
    }
    const Stage::IdleSequence idle
        = options.idle.value_or(order.stage.idleSequence(order.screenId));
    if (idle.sequence > order.stage.contents(order.screenId).size()) {
        return refuse(QStringLiteral("%1: screen %2 has no sequence %3")
                          .arg(options.stageFile, QString::number(order.screenId),
                              QString::number(idle.sequence)));
    }
    order.rules = {options.switching, idle.sequence, qint64(idle.after) * 1000};
    return order;
}

/// The simulator is started by the plug-in with fixed arguments, so it is told by environment.
void tellSimulator(const Options &options)
{
    if (options.replayFile.isEmpty() && options.scenarioFile.isEmpty())
        return;
    setPathVariable(Demo::LiveVariable, QString()); // it would go before the others
    setPathVariable(Demo::ReplayVariable, options.replayFile);
    setPathVariable(Demo::ScenarioVariable, options.scenarioFile);
}

/// One that is asked for a picture, or for some seconds, is to look the same everywhere.
bool isUsersOwn(const Options &options)
{
    return !options.milliseconds && options.screenshotFile.isEmpty();
}

void rememberState(MainWindow *window)
{
    const QString file = WindowState::defaultFile();
    window->resize(window->size().boundedTo(QGuiApplication::primaryScreen()->availableSize()));
    WindowState::restore(window, file);
    QObject::connect(
        window, &MainWindow::closed, window, [window, file] { WindowState::save(window, file); });
}

bool saveScreenshot(StagePlayer &player, MainWindow *window, const QString &fileName)
{
    if (Demo::UserFile::isNoFile(fileName))
        return false;
    // A picture of a message half way over another one would be hard to read.
    const QDeadlineTimer deadline(SettleTimeout);
    while (player.scene().isMoving() && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
        QThread::msleep(5);
    }
    return window ? window->grab().save(fileName) : player.scene().toImage().save(fileName);
}

int play(const Order &order)
{
    const Options &options = order.options;
    tellSimulator(options);
    StagePlayer player(order.stage, order.screenId);
    player.setRules(order.rules);
    if (!options.proofFile.isEmpty())
        player.setProofOfPlay(options.proofFile);
    if (!player.loadPlugin(options.pluginFile)) {
        return fail(RunFailure,
            QStringLiteral("%1: %2").arg(options.pluginFile, player.host().errorString()));
    }

    std::unique_ptr<MainWindow> window;
    if (options.headless) {
        QObject::connect(&player.log(), &EventLog::appended, [](const PlayerEvent &event) {
            out() << event.line() << QLatin1Char('\n');
            out().flush();
        });
    } else {
        closeOwnConsoleWindow();
        MainWindow::applyTheme();
        window = std::make_unique<MainWindow>(&player);
        if (isUsersOwn(options))
            rememberState(window.get());
        // Below a dialog of the plug-in it is not the last window.
        QObject::connect(window.get(), &MainWindow::closed, qApp, &QCoreApplication::quit);
        window->show();
        if (!options.logFile.isEmpty())
            window->openLog(options.logFile); // before the plug-in begins
    }

    const TerminationNotifier termination;
    QObject::connect(&termination, &TerminationNotifier::requested, qApp, &QCoreApplication::quit);
    if (options.milliseconds)
        QTimer::singleShot(*options.milliseconds, qApp, &QCoreApplication::quit);
    QTimer::singleShot(0, &player, [&] {
        player.begin(options.logDirectory);
        if (window)
            window->showPluginInformation();
    });
    const int result = QApplication::exec();

    if (!options.screenshotFile.isEmpty()
        && !saveScreenshot(player, window.get(), options.screenshotFile)) {
        return fail(RunFailure,
            QStringLiteral("%1: the screenshot cannot be written").arg(options.screenshotFile));
    }
    player.end();
    return result;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(QStringLiteral("KrStagePlayer"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KRHVC_VERSION));

    // Before there is a GUI: help and complaints need no display, the platform has to be chosen,
    // and QApplication would take "--plugin" for an option of its own.
    Order order;
    {
        const QCoreApplication application(argc, argv);
        order = takeOrder(Options::fromArguments(
            QCoreApplication::arguments(), QCoreApplication::applicationDirPath()));
    }
    if (order.exitStatus)
        return *order.exitStatus;

    if (order.options.headless)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    int guiArgc = 1;
    const QApplication application(guiArgc, argv);
    return play(order);
}
