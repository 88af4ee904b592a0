#include "ControllerFixture.h"

#include <QtTest>

#include <vector>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace KrTest;
using PluginKrHvcP2::KrHvcController;

namespace {

const QByteArray OwnIdsMark = "KRHVC_OWN_PROCESS_IDS";

/// True in the program that runInOwnIds() has started: there is nobody else's process to be ended.
bool hasOwnIds()
{
    return qEnvironmentVariableIsSet(OwnIdsMark.constData()) && ::getpid() == 1;
}

/// Runs the program once more as the first process of a namespace of process ids. Does not return,
/// unless the system does not let it.
void runInOwnIds(char *argv[])
{
    QStringList options{QStringLiteral("--pid"), QStringLiteral("--fork"),
        QStringLiteral("--kill-child"), QStringLiteral("--mount-proc")};
    if (::geteuid() != 0)
        options << QStringLiteral("--user") << QStringLiteral("--map-root-user");
    if (QProcess::execute(QStringLiteral("unshare"), options + QStringList(QStringLiteral("true")))
        != 0)
        return;

    std::vector<QByteArray> words{"unshare"};
    for (const QString &option : qAsConst(options))
        words.push_back(option.toLocal8Bit());
    words.push_back(QFile::encodeName(QCoreApplication::applicationFilePath()));
    std::vector<char *> arguments;
    for (QByteArray &word : words)
        arguments.push_back(word.data());
    for (char **argument = argv + 1; *argument != nullptr; ++argument)
        arguments.push_back(*argument);
    arguments.push_back(nullptr);
    qputenv(OwnIdsMark.constData(), "1");
    ::execvp(arguments.front(), arguments.data());
}

/// From now on this thread can make no process. False when the system does not know how.
bool refuseProcesses()
{
    constexpr auto number = static_cast<__u32>(offsetof(seccomp_data, nr));
    std::vector<sock_filter> filter{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, number)};
    for (const long call : {
             long(SYS_clone),
#ifdef SYS_clone3
             long(SYS_clone3),
#endif
#ifdef SYS_fork
             long(SYS_fork),
             long(SYS_vfork),
#endif
         }) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(call), 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EAGAIN));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
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
    if (!hasOwnIds())
        runInOwnIds(argv);
    tst_KrHvcControllerFork test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_krhvccontrollerfork.moc"
