#include "ControllerFixture.h"

#include <QEventLoop>
#include <QtTest>

#include <utility>

using namespace KrTest;
using PluginKrHvcP2::KrHvcController;

namespace {

const QByteArray Crashes = "say ready\ncrash abort";

constexpr int RestartDelay = 5000;

using Controller = QPointer<KrHvcController>;

void stop(const Controller &controller)
{
    controller->stop();
}

void stopAndStart(const Controller &controller)
{
    controller->stop();
    controller->start();
}

void deleteIt(const Controller &controller)
{
    delete controller;
}

} // namespace

using Action = void (*)(const Controller &);
Q_DECLARE_METATYPE(Action)

/// Receivers of the controller's signals write logs and run host code, so they may spin event loops
/// in which the process is let go. Its own code is still below them on the stack: it must be there
/// when they return.
class tst_KrHvcControllerNesting : public QObject
{
    Q_OBJECT

private slots:
    void processOutlivesItsSignals_data();
    void processOutlivesItsSignals();
    void processOutlivesTheRestartDuringItsError();
};

void tst_KrHvcControllerNesting::processOutlivesItsSignals_data()
{
    QTest::addColumn<QByteArray>("commands"); // empty: there is no program
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<Action>("action");

    struct Case
    {
        const char *name;
        QByteArray commands;
        QByteArray signal;
    };
    const Case cases[]{
        {"started", StandIn::NeverReads, SIGNAL(started())},
        {"output", StandIn::NeverReads, SIGNAL(dataReceived(QString))},
        {"crash", Crashes, SIGNAL(errorOccured(QString))},
        {"failed start", QByteArray(), SIGNAL(errorOccured(QString))},
    };
    for (const Case &one : cases) {
        QTest::addRow("stopped during %s", one.name) << one.commands << one.signal << Action(stop);
        QTest::addRow("stopped and started during %s", one.name)
            << one.commands << one.signal << Action(stopAndStart);
        QTest::addRow("deleted during %s", one.name)
            << one.commands << one.signal << Action(deleteIt);
    }
}

void tst_KrHvcControllerNesting::processOutlivesItsSignals()
{
    QFETCH(const QByteArray, commands);
    QFETCH(const QByteArray, signal);
    QFETCH(const Action, action);

    const SensorDirectory directory;
    if (!commands.isEmpty())
        QVERIFY(directory.install(commands));
    const Controller controller(new KrHvcController(directory.path()));
    QPointer<QProcess> process;
    bool handled = false;
    bool processWasThere = false;

    // A receiver by function for each signal; only the first call of the one under test acts.
    const auto receive = [&](const QByteArray &received) {
        if (received != signal || handled)
            return;
        handled = true;
        process = controller->findChild<QProcess *>();
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [&] { action(controller); });
        QTimer::singleShot(100, &loop, &QEventLoop::quit);
        loop.exec();
        processWasThere = !process.isNull();
    };
    connect(
        controller.data(), &KrHvcController::started, this, [&] { receive(SIGNAL(started())); });
    connect(controller.data(), &KrHvcController::dataReceived, this,
        [&] { receive(SIGNAL(dataReceived(QString))); });
    connect(controller.data(), &KrHvcController::errorOccured, this,
        [&] { receive(SIGNAL(errorOccured(QString))); });

    controller->start();
    QTRY_VERIFY_WITH_TIMEOUT(handled, Patience);
    QVERIFY(processWasThere);
    QTRY_VERIFY_WITH_TIMEOUT(process.isNull(), Patience); // but no longer than needed
    delete controller;
    QTRY_VERIFY_WITH_TIMEOUT(directory.livingCopies().isEmpty(), Patience);
}

void tst_KrHvcControllerNesting::processOutlivesTheRestartDuringItsError()
{
    const SensorDirectory empty;
    KrHvcController controller(empty.path());
    QPointer<QProcess> process;
    bool handled = false;
    bool wasReplaced = false;
    bool processWasThere = false;
    const auto currentProcess = [&controller] { return controller.findChild<QProcess *>(); };
    connect(&controller, &KrHvcController::errorOccured, this, [&] {
        if (std::exchange(handled, true))
            return;
        process = currentProcess();
        wasReplaced
            = QTest::qWaitFor([&] { return currentProcess() != process; }, RestartDelay + 1000);
        QTest::qWait(50);
        processWasThere = !process.isNull();
    });
    controller.start();
    QTRY_VERIFY_WITH_TIMEOUT(handled && processWasThere, Patience);
#ifdef Q_OS_WIN
    QVERIFY(!wasReplaced); // start() itself reports the failure: the restart waits for its return
#else
    QVERIFY(wasReplaced);
#endif
    QTRY_VERIFY_WITH_TIMEOUT(process.isNull(), Patience);
    QVERIFY(currentProcess() != nullptr);
}

QTEST_GUILESS_MAIN(tst_KrHvcControllerNesting)

#include "tst_krhvccontrollernesting.moc"
