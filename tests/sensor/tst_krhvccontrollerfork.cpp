#include "ControllerFixture.h"
#include "tests/support/OwnNamespaces_linux.h"
#include "tests/support/RefusedCalls_linux.h"

#include <QtTest>

#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace KrTest;
using PluginKrHvcP2::KrHvcController;

namespace {

/// True in the program that was started once more: there is nobody else's process to be ended.
bool hasOwnIds()
{
    return isInOwnNamespaces() && ::getpid() == 1;
}

/// From now on this thread can make no process. False when the system does not know how.
bool refuseProcesses()
{
    return refuseCalls(
        {
            SYS_clone,
#ifdef SYS_clone3
            SYS_clone3,
#endif
#ifdef SYS_fork
            SYS_fork,
            SYS_vfork,
#endif
        },
        EAGAIN);
}

/// Somebody else's process of the same user.
pid_t startBystander()
{
    const pid_t id = ::fork();
    if (id == 0) {
        while (true)
            ::pause();
    }
    return id;
}

} // namespace

/// The system lets nobody make another process, as at the limit of the user's processes. A process
/// that was never made must not be ended: its id would stand for all processes of the user, so this
/// runs only where there are none but its own.
class tst_KrHvcControllerFork : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void refusedStart_data();
    void refusedStart();
    void refusedStartIsTriedAgain();

private:
    pid_t m_bystander = -1;
};

void tst_KrHvcControllerFork::initTestCase()
{
    if (!hasOwnIds())
        QSKIP("Needs a namespace of process ids of its own, which the system does not grant.");
    m_bystander = startBystander();
    QVERIFY(m_bystander > 1);
    if (!refuseProcesses())
        QSKIP("Needs a filter of system calls, which the system does not grant.");
}

void tst_KrHvcControllerFork::cleanup()
{
    QCOMPARE(::waitpid(m_bystander, nullptr, WNOHANG), 0); // it lives
}

using Action = void (*)(KrHvcController *);
Q_DECLARE_METATYPE(Action)

void tst_KrHvcControllerFork::refusedStart_data()
{
    QTest::addColumn<bool>("atOnce"); // else once the event loop has run
    QTest::addColumn<Action>("action");

    struct Case
    {
        const char *name;
        Action action;
    };
    const Case cases[]{
        {"stopped", [](KrHvcController *controller) { controller->stop(); }},
        {"started again", [](KrHvcController *controller) { controller->start(); }},
        {"deleted", [](KrHvcController *controller) { delete controller; }},
    };
    for (const Case &one : cases) {
        QTest::addRow("%s at once", one.name) << true << one.action;
        QTest::addRow("%s later", one.name) << false << one.action;
    }
}

void tst_KrHvcControllerFork::refusedStart()
{
    QFETCH(const bool, atOnce);
    QFETCH(const Action, action);

    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::EndsOnKey));
    const WatchedController watched(directory.path());
    const QString failed = ErrorStart + QLatin1String("Failed to start.");
    watched->start();
    if (!atOnce) {
        QTest::qWait(50);
        QCOMPARE(watched.log, QStringList(failed));
    }
    action(watched.controller);
    QTest::qWait(50);
    QCOMPARE(watched.log.first(), failed);
    QVERIFY(!watched.log.contains(QStringLiteral("started")));
}

void tst_KrHvcControllerFork::refusedStartIsTriedAgain()
{
    const SensorDirectory directory;
    QVERIFY(directory.install(StandIn::EndsOnKey));
    const WatchedController watched(directory.path());
    watched->start();
    QStringList log{ErrorStart + QLatin1String("Failed to start.")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    log << log.first();
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    const qint64 delay = watched.times.at(1) - watched.times.at(0);
    QVERIFY2(delay >= 5000 - 250, QByteArray::number(delay).constData());
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (!hasOwnIds()) {
        runInOwnNamespaces({QStringLiteral("--pid"), QStringLiteral("--fork"),
                               QStringLiteral("--kill-child"), QStringLiteral("--mount-proc")},
            argv);
    }
    tst_KrHvcControllerFork test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_krhvccontrollerfork.moc"
