#include "host/KrPluginExtScreenInterface.h"
#include "host/KrPluginGraphicsItem.h"
#include "host/KrPluginGuiInterface.h"

#include <QApplication>
#include <QPluginLoader>
#include <QRect>
#include <QTextStream>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <memory>

// A host that does nothing by itself. It loads a plug-in, does what its arguments say, one after
// the other, and leaves main() with whatever is there then:
//
//   krhvc_barehost <plug-in> <application> [step...]
//
//   application   none, core (without GUI) or gui
//   ask           asks for what a list of plug-ins shows, and prints the name
//   panel         takes the panel and gives it a size
//   init          initializes the plug-in
//   dialogs       takes what an editor of screens is offered, and lets each dialog open and close
//   text          hands over a line of sensor output
//   delete        deletes the plug-in
//
// Its exit code is 0 when all of that could be done.

namespace {

using Plugin = Kora::KrPluginExtScreenInterface;

std::unique_ptr<QCoreApplication> createApplication(const QString &kind, int &argc, char *argv[])
{
    if (kind == QLatin1String("gui"))
        return std::make_unique<QApplication>(argc, argv);
    if (kind == QLatin1String("core"))
        return std::make_unique<QCoreApplication>(argc, argv);
    return nullptr;
}

bool takeDialogs(Kora::KrPluginGuiInterface *gui)
{
    if (gui->pluginPropertyActions().isEmpty() || gui->addContentActions().isEmpty())
        return false;

    QTimer closer;
    int closed = 0;
    QObject::connect(&closer, &QTimer::timeout, [&closed] {
        if (QWidget *dialog = QApplication::activeModalWidget()) {
            dialog->close();
            ++closed;
        }
    });
    closer.start(10);
    gui->execScreenPropertyDialog(QRect());
    gui->execContentPropertyDialog(0, QRect());
    return closed == 2;
}

bool doStep(Plugin *plugin, const QString &step)
{
    QObject *object = plugin->object();
    if (step == QLatin1String("ask")) {
        QTextStream(stdout) << plugin->name() << '\n';
        return plugin->kind() == 3 && plugin->params().isValid() && plugin->hasGraphicsItem();
    }
    if (step == QLatin1String("panel")) {
        Kora::KrPluginGraphicsItem *panel = plugin->graphicsItem();
        panel->setItemSize(400, 300);
        return panel->isVisible();
    }
    if (step == QLatin1String("init"))
        return plugin->init();
    if (step == QLatin1String("dialogs"))
        return takeDialogs(plugin->gui());
    if (step == QLatin1String("text")) {
        const QString line = QStringLiteral("Failed to do <img src=\"x\">it");
        return QMetaObject::invokeMethod(
            object, "onDataReceived", Qt::DirectConnection, Q_ARG(QString, line));
    }
    if (step == QLatin1String("delete")) {
        delete object;
        return true;
    }
    return false;
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto application = createApplication(arguments.value(1), argc, argv);

    QPluginLoader loader(arguments.value(0));
    auto *plugin = qobject_cast<Plugin *>(loader.instance());
    if (plugin == nullptr)
        return 2;
    const QStringList steps = arguments.mid(2);
    for (const QString &step : steps) {
        if (!doStep(plugin, step))
            return 3;
    }
    return 0;
}
