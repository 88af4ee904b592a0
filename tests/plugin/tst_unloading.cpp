#include "PluginFixture.h"

#include "host/KrPluginGuiInterface.h"
#include "tests/support/OwnProcess.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <functional>

using namespace KrTest;
using namespace PluginTest;

namespace {

const QString File = QStringLiteral(KRHVC_PLUGIN_FILE);

using Use = std::function<void(LoadedPlugin &plugin)>;

void leaveMessagesPending(LoadedPlugin &plugin)
{
    plugin->init();
    plugin->pause();
    plugin->requestSequenceNumber(9);
}

void leaveLongMessagePending(LoadedPlugin &plugin)
{
    plugin->graphicsItem();
    plugin.receive(QStringLiteral("Failed to do it\n").repeated(100)); // laid out little by little
}

void paintMovingMessages(LoadedPlugin &plugin)
{
    plugin->init();
    plugin->requestSequenceNumber(9);
    plugin.receive(faceLines(0, 100, 30, QStringLiteral("Male")) + QStringLiteral("<img src=x>"));
    QGraphicsScene scene;
    scene.addItem(plugin->graphicsItem());
    plugin->graphicsItem()->setVisible(true);
    QTest::qWait(5);
    QImage image(200, 150, QImage::Format_RGB32);
    QPainter painter(&image);
    scene.render(&painter);
    plugin->pause();
    plugin.destroy(); // takes the panel off the scene
}

/// Sends results while it takes some, so that these wait for the event loop.
class NestingHost : public QObject
{
    Q_OBJECT

public:
    explicit NestingHost(LoadedPlugin &plugin)
        : m_plugin(plugin)
    {
        connect(plugin.object(), SIGNAL(contentStarted(int)), this, SLOT(onContentStarted()));
    }

    int calls = 0;

private slots:
    void onContentStarted()
    {
        if (++calls == 1)
            m_plugin.receive(faceLines(0, 100, 30, QStringLiteral("Male")));
    }

private:
    LoadedPlugin &m_plugin;
};

void leaveResultsPending(LoadedPlugin &plugin)
{
    plugin.init({{20, 40, QStringLiteral("male"), true}});
    const NestingHost host(plugin);
    plugin.receive(faceLines(0, 100, 30, QStringLiteral("Male")));
    QCOMPARE(host.calls, 1);
}

void openContentDialog(LoadedPlugin &plugin)
{
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [] {
        if (QWidget *dialog = QApplication::activeModalWidget())
            dialog->close();
    });
    closer.start(1);
    QVERIFY(!plugin->gui()->addContentActions().isEmpty());
    plugin->gui()->execContentPropertyDialog(0, QRect());
}

} // namespace

Q_DECLARE_METATYPE(Use)

/// The plug-in is taken out of the memory for good, which hosts have to ask for.
class tst_Unloading : public QObject
{
    Q_OBJECT

private slots:
    void leavesNothingBehind_data();
    void leavesNothingBehind();
};

void tst_Unloading::leavesNothingBehind_data()
{
    QTest::addColumn<Use>("use");

    QTest::newRow("only loaded") << Use([](LoadedPlugin &) {});
    QTest::newRow("messages pending") << Use(leaveMessagesPending);
    QTest::newRow("a long message pending") << Use(leaveLongMessagePending);
    QTest::newRow("messages moving") << Use(paintMovingMessages);
    QTest::newRow("results pending") << Use(leaveResultsPending);
    QTest::newRow("a dialog was open") << Use(openContentDialog);
}

void tst_Unloading::leavesNothingBehind()
{
    QFETCH(Use, use);

    for (int round = 0; round < 20; ++round) {
        QPluginLoader loader(File);
        loader.setLoadHints({}); // else it stays in the memory
        QVERIFY2(loader.load(), qPrintable(loader.errorString()));
        QVERIFY(isMapped(File));
        {
            LoadedPlugin plugin;
            use(plugin);
            if (QTest::currentTestFailed())
                return;
        }
        QVERIFY(loader.unload());
        QVERIFY(!isMapped(File));
        QTest::qWait(3); // what is left would run now
    }
}

QTEST_MAIN(tst_Unloading)

#include "tst_unloading.moc"
