#include "ProcessListFixture.h"
#include "tests/support/Files.h"
#include "tests/support/RefusedCalls_linux.h"

#include <QtTest>

#include <algorithm>
#include <array>
#include <thread>

#include <cerrno>
#include <csignal>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace KrTest;
using namespace PluginKrHvcP2;

/// What only Linux has: scripts under their own name, threads with names, zombies, suspended
/// programs, programs whose file is gone.
class tst_ProcessListLinux : public QObject
{
    Q_OBJECT

private slots:
    void scripts_data();
    void scripts();
    void programsAndScripts();
    void endingAScript_data();
    void endingAScript();
    void programWhoseFileIsGone();
    void threadsDoNotCount();
    void ownProcessDoesNotCount();
    void zombiesDoNotCount();
    void endingAZombie();
    void processesThatCannotBeRead();
    void endingASuspendedProgram();
};

/// A script that says a word and reads a line; empty when it cannot be made.
static QString script(const NamedPrograms &programs, const QString &fileName)
{
    const QString file = programs.path(fileName);
    if (!writeFile(file, "#!/bin/sh\necho script\nread line\n"))
        return {};
    QFile::setPermissions(file, QFile::ReadOwner | QFile::ExeOwner);
    return file;
}

void tst_ProcessListLinux::scripts_data()
{
    QTest::addColumn<QString>("file"); // %1: the name without ".exe"
    QTest::addColumn<bool>("upperCase");
    QTest::addColumn<bool>("counts");

    QTest::newRow("a script of the name") << QStringLiteral("%1.exe") << false << true;
    QTest::newRow("a script in upper case") << QStringLiteral("%1.exe") << true << true;
    QTest::newRow("a script without extension") << QStringLiteral("%1") << false << false;
    QTest::newRow("a longer name") << QStringLiteral("%1.exe2") << false << false;
}

void tst_ProcessListLinux::scripts()
{
    QFETCH(QString, file);
    QFETCH(bool, upperCase);
    QFETCH(bool, counts);

    NamedPrograms programs;
    QString stem = programs.fileName();
    stem.chop(4);
    file = file.arg(stem);
    const QProcess *process = programs.run(script(programs, upperCase ? file.toUpper() : file));
    QVERIFY(process != nullptr);
    QCOMPARE(programs.found(), counts ? Ids{idOf(process)} : Ids());
}

void tst_ProcessListLinux::programsAndScripts()
{
    NamedPrograms programs;
    const QString name = programs.fileName();
    const QProcess *program = programs.run(programs.copyOfProgram(name));
    const QProcess *shell = programs.run(script(programs, name.toUpper()));
    QVERIFY(program != nullptr && shell != nullptr);
    QCOMPARE(programs.found(), Ids({idOf(program), idOf(shell)}));
}

void tst_ProcessListLinux::endingAScript_data()
{
    QTest::addColumn<bool>("upperCase");

    QTest::newRow("a script") << false;
    QTest::newRow("a script in upper case") << true;
}

void tst_ProcessListLinux::endingAScript()
{
    QFETCH(bool, upperCase);

    NamedPrograms programs;
    const QString name = programs.fileName();
    QProcess *process = programs.run(script(programs, upperCase ? name.toUpper() : name));
    QVERIFY(process != nullptr);
    QVERIFY(ProcessList::end(idOf(process), programs.name));
    QVERIFY(process->waitForFinished());
    QCOMPARE(process->exitStatus(), QProcess::CrashExit);
    QCOMPARE(programs.found(), Ids());
}

void tst_ProcessListLinux::programWhoseFileIsGone()
{
    NamedPrograms programs;
    const QString program = programs.copyOfProgram(programs.fileName());
    const QProcess *process = programs.run(program);
    QVERIFY(process != nullptr);
    QVERIFY(QFile::remove(program));
    QCOMPARE(programs.found(), Ids{idOf(process)});
}

void tst_ProcessListLinux::threadsDoNotCount()
{
    NamedPrograms programs;
    const QString program = programs.copyOfProgram(QStringLiteral("innocent"));
    QVERIFY(writeFile(
        program + QLatin1String(".do"), "thread " + QByteArray::fromStdString(programs.name)));
    const QProcess *process = programs.run(program);
    QVERIFY(process != nullptr);

    // The thread really has the name.
    const QString tasks = QStringLiteral("/proc/%1/task").arg(process->processId());
    QByteArrayList names;
    const auto entries = QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        names << readFile(tasks + QLatin1Char('/') + entry + QLatin1String("/comm")).trimmed();
    }
    QVERIFY(names.contains(QByteArray::fromStdString(programs.name)));
    QCOMPARE(programs.found(), Ids());
}

void tst_ProcessListLinux::ownProcessDoesNotCount()
{
    const auto own = static_cast<ProcessId>(::getpid());
    const QString executable = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    const auto ids = ProcessList::find(executable.toStdString());
    QCOMPARE(std::count(ids.begin(), ids.end(), own), 0);

    // By its command name neither.
    const NamedPrograms programs;
    std::array<char, 17> before{};
    QCOMPARE(::prctl(PR_GET_NAME, before.data()), 0);
    QCOMPARE(::prctl(PR_SET_NAME, programs.name.c_str()), 0);
    const Ids found = programs.found();
    ::prctl(PR_SET_NAME, before.data());
    QCOMPARE(found, Ids());
}

/// A child that has ended and is not waited for.
class Zombie
{
public:
    explicit Zombie(const QString &program)
    {
        QByteArray path = QFile::encodeName(program);
        std::array<char *, 2> arguments{path.data(), nullptr};
        std::array<char *, 1> environment{nullptr};
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", 0, 0);
        ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", 1, 0);
        if (::posix_spawn(
                &m_id, path.constData(), &actions, nullptr, arguments.data(), environment.data())
            != 0)
            m_id = -1;
        ::posix_spawn_file_actions_destroy(&actions);

        siginfo_t info;
        m_valid
            = m_id > 0 && ::waitid(P_PID, static_cast<id_t>(m_id), &info, WEXITED | WNOWAIT) == 0;
    }
    ~Zombie()
    {
        if (m_id > 0)
            ::waitpid(m_id, nullptr, 0);
    }

    bool isValid() const { return m_valid; }
    ProcessId id() const { return static_cast<ProcessId>(m_id); }

    /// The state letter of the process.
    QByteArray state() const
    {
        return readFile(QStringLiteral("/proc/%1/stat").arg(m_id)).split(' ').value(2);
    }

private:
    Q_DISABLE_COPY(Zombie)

    pid_t m_id = -1;
    bool m_valid = false;
};

void tst_ProcessListLinux::zombiesDoNotCount()
{
    const NamedPrograms programs;
    const Zombie zombie(programs.copyOfProgram(programs.fileName()));
    QVERIFY(zombie.isValid());
    QCOMPARE(zombie.state(), QByteArray("Z"));
    QCOMPARE(programs.found(), Ids());
}

void tst_ProcessListLinux::endingAZombie()
{
    const NamedPrograms programs;
    const Zombie zombie(programs.copyOfProgram(programs.fileName()));
    QVERIFY(zombie.isValid());
    QVERIFY(!ProcessList::end(zombie.id(), programs.name));
}

void tst_ProcessListLinux::endingASuspendedProgram()
{
    NamedPrograms programs;
    QProcess *process = programs.run(programs.copyOfProgram(programs.fileName()));
    QVERIFY(process != nullptr);
    QCOMPARE(::kill(static_cast<pid_t>(process->processId()), SIGSTOP), 0);
    QCOMPARE(programs.found(), Ids{idOf(process)});
    QVERIFY(ProcessList::end(idOf(process), programs.name));
    QVERIFY(process->waitForFinished());
}

/// A process that ends between the opening of its state and the reading is answered with ESRCH.
void tst_ProcessListLinux::processesThatCannotBeRead()
{
    NamedPrograms programs;
    const QProcess *process = programs.run(programs.copyOfProgram(programs.fileName()));
    QVERIFY(process != nullptr);

    bool refused = false;
    Ids found{idOf(process)};
    bool ended = true;
    std::thread caller([&] { // what is refused to a thread stays refused to it
        refused = refuseCalls({SYS_read, SYS_readv, SYS_pread64}, ESRCH);
        found = programs.found();
        ended = ProcessList::end(idOf(process), programs.name);
    });
    caller.join();
    QVERIFY(refused);
    QCOMPARE(found, Ids());
    QVERIFY(!ended);
    QCOMPARE(programs.found(), Ids{idOf(process)});
}

QTEST_GUILESS_MAIN(tst_ProcessListLinux)

#include "tst_processlistlinux.moc"
