#include "sensor/ProcessList.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <memory>
#include <set>
#include <vector>

#include <csignal>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace PluginKrHvcP2;

using Ids = std::set<ProcessList::ProcessId>;

class tst_ProcessList : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void counting_data();
    void counting();
    void everyCopyCounts();
    void programWhoseFileIsGone();
    void threadsDoNotCount();
    void ownProcessDoesNotCount();
    void zombiesDoNotCount();
    void endedProcessesDoNotCount();

    void ending_data();
    void ending();
    void endingChecksTheName();
    void endingOfNothing();
    void endingAZombie();
    void endingASuspendedProgram();

private:
    QString copyOfProgram(const QString &fileName);
    QString script(const QString &fileName);
    QProcess *run(const QString &program, const QStringList &arguments = {});
    Ids found() const;

    std::unique_ptr<QTemporaryDir> m_directory;
    std::vector<std::unique_ptr<QProcess>> m_processes;
    std::string m_name; // looked for; nobody else's, and short enough for a command name
};

static Ids idsOf(const std::vector<ProcessList::ProcessId> &ids)
{
    return {ids.begin(), ids.end()};
}

static ProcessList::ProcessId idOf(const QProcess *process)
{
    return static_cast<ProcessList::ProcessId>(process->processId());
}

void tst_ProcessList::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
    m_name = "Kr" + std::to_string(::getpid()) + "t.exe";
    QVERIFY(m_name.size() <= 15);
    QCOMPARE(found(), Ids());
}

void tst_ProcessList::cleanup()
{
    for (const auto &process : m_processes) {
        process->kill();
        process->waitForFinished();
    }
    m_processes.clear();
    m_directory.reset();
}

QString tst_ProcessList::copyOfProgram(const QString &fileName)
{
    const QString path = m_directory->filePath(fileName);
    return QFile::copy(QStringLiteral(STANDIN), path) ? path : QString();
}

QString tst_ProcessList::script(const QString &fileName)
{
    QFile file(m_directory->filePath(fileName));
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write("#!/bin/sh\necho script\nread line\n");
    file.close();
    file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    return file.fileName();
}

/// Runs a program that says a word when it is up; null when it does not.
QProcess *tst_ProcessList::run(const QString &program, const QStringList &arguments)
{
    m_processes.push_back(std::make_unique<QProcess>());
    QProcess *process = m_processes.back().get();
    process->start(program, arguments);
    return process->waitForReadyRead(20000) ? process : nullptr;
}

Ids tst_ProcessList::found() const
{
    return idsOf(ProcessList::find(m_name));
}

void tst_ProcessList::counting_data()
{
    QTest::addColumn<QString>("fileName"); // %1: the name without ".exe"
    QTest::addColumn<bool>("native");
    QTest::addColumn<bool>("upperCase");
    QTest::addColumn<bool>("counts");

    const QString same = QStringLiteral("%1.exe");
    QTest::newRow("a native program of the name") << same << true << false << true;
    QTest::newRow("a native program in upper case") << same << true << true << true;
    QTest::newRow("a script of the name") << same << false << false << true;
    QTest::newRow("a script in upper case") << same << false << true << true;
    QTest::newRow("an odd extension") << QStringLiteral("%1.eXe") << true << false << true;
    QTest::newRow("another extension") << QStringLiteral("%1.ex2") << true << false << false;
    QTest::newRow("no extension") << QStringLiteral("%1") << true << false << false;
    QTest::newRow("a script without extension") << QStringLiteral("%1") << false << false << false;
    QTest::newRow("a longer name") << QStringLiteral("%1.exe2") << true << false << false;
    QTest::newRow("a longer script name") << QStringLiteral("%1.exe2") << false << false << false;
    QTest::newRow("the name at the end of another")
        << QStringLiteral("X%1.exe") << true << false << false;
}

void tst_ProcessList::counting()
{
    QFETCH(QString, fileName);
    QFETCH(bool, native);
    QFETCH(bool, upperCase);
    QFETCH(bool, counts);

    QString stem = QString::fromStdString(m_name);
    stem.chop(4);
    fileName = fileName.arg(stem);
    if (upperCase)
        fileName = fileName.toUpper();
    const QString program = native ? copyOfProgram(fileName) : script(fileName);
    QVERIFY(!program.isEmpty());
    const QProcess *process = run(program);
    QVERIFY(process != nullptr);
    QCOMPARE(found(), counts ? Ids{idOf(process)} : Ids());
}

void tst_ProcessList::everyCopyCounts()
{
    const QString name = QString::fromStdString(m_name);
    const QString program = copyOfProgram(name);
    const QString shell = script(name.toUpper());
    Ids ids;
    for (const QString &path : {program, program, shell}) {
        const QProcess *process = run(path);
        QVERIFY(process != nullptr);
        ids.insert(idOf(process));
    }
    QCOMPARE(ids.size(), std::size_t(3));
    QCOMPARE(found(), ids);
}

void tst_ProcessList::programWhoseFileIsGone()
{
    const QString program = copyOfProgram(QString::fromStdString(m_name));
    const QProcess *process = run(program);
    QVERIFY(process != nullptr);
    QVERIFY(QFile::remove(program));
    QCOMPARE(found(), Ids{idOf(process)});
}

void tst_ProcessList::threadsDoNotCount()
{
    const QString program = copyOfProgram(QStringLiteral("innocent"));
    QProcess *process = run(program, {QStringLiteral("--thread"), QString::fromStdString(m_name)});
    QVERIFY(process != nullptr);

    // The thread really has the name.
    const QString tasks = QStringLiteral("/proc/%1/task").arg(process->processId());
    QByteArrayList names;
    const auto entries = QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        QFile file(tasks + QLatin1Char('/') + entry + QLatin1String("/comm"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        names << file.readAll().trimmed();
    }
    QVERIFY(names.contains(QByteArray::fromStdString(m_name)));
    QCOMPARE(found(), Ids());
}

void tst_ProcessList::ownProcessDoesNotCount()
{
    const auto own = static_cast<ProcessList::ProcessId>(::getpid());
    const QString executable = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    QCOMPARE(idsOf(ProcessList::find(executable.toStdString())).count(own), std::size_t(0));

    // By its command name neither.
    std::array<char, 17> before{};
    QCOMPARE(::prctl(PR_GET_NAME, before.data()), 0);
    QCOMPARE(::prctl(PR_SET_NAME, m_name.c_str()), 0);
    const Ids ids = found();
    ::prctl(PR_SET_NAME, before.data());
    QCOMPARE(ids, Ids());
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
    ProcessList::ProcessId id() const { return static_cast<ProcessList::ProcessId>(m_id); }

    /// The state letter of the process.
    QByteArray state() const
    {
        QFile file(QStringLiteral("/proc/%1/stat").arg(m_id));
        return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(2) : QByteArray();
    }

private:
    Q_DISABLE_COPY(Zombie)

    pid_t m_id = -1;
    bool m_valid = false;
};

void tst_ProcessList::zombiesDoNotCount()
{
    const Zombie zombie(copyOfProgram(QString::fromStdString(m_name)));
    QVERIFY(zombie.isValid());
    QCOMPARE(zombie.state(), QByteArray("Z"));
    QCOMPARE(found(), Ids());
}

void tst_ProcessList::endedProcessesDoNotCount()
{
    QProcess *process = run(copyOfProgram(QString::fromStdString(m_name)));
    QVERIFY(process != nullptr);
    QCOMPARE(found(), Ids{idOf(process)});
    process->write(" ");
    QVERIFY(process->waitForFinished());
    QCOMPARE(found(), Ids());
}

void tst_ProcessList::ending_data()
{
    QTest::addColumn<bool>("native");
    QTest::addColumn<bool>("upperCase");

    QTest::newRow("a native program") << true << false;
    QTest::newRow("a native program in upper case") << true << true;
    QTest::newRow("a script") << false << false;
    QTest::newRow("a script in upper case") << false << true;
}

void tst_ProcessList::ending()
{
    QFETCH(bool, native);
    QFETCH(bool, upperCase);

    const QString name = QString::fromStdString(m_name);
    const QString fileName = upperCase ? name.toUpper() : name;
    QProcess *process = run(native ? copyOfProgram(fileName) : script(fileName));
    QVERIFY(process != nullptr);
    QProcess *other = run(copyOfProgram(QStringLiteral("innocent")));
    QVERIFY(other != nullptr);

    QVERIFY(ProcessList::end(idOf(process), m_name));
    QVERIFY(process->waitForFinished());
    QCOMPARE(process->exitStatus(), QProcess::CrashExit);
    QCOMPARE(found(), Ids());
    QVERIFY(!other->waitForFinished(50));
}

void tst_ProcessList::endingChecksTheName()
{
    // An id that was given to another program since the list was made.
    QProcess *process = run(copyOfProgram(QStringLiteral("innocent")));
    QVERIFY(process != nullptr);
    QVERIFY(!ProcessList::end(idOf(process), m_name));
    QVERIFY(!process->waitForFinished(50));
    process->write(" ");
    QVERIFY(process->waitForFinished());
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
}

void tst_ProcessList::endingOfNothing()
{
    QProcess *process = run(copyOfProgram(QString::fromStdString(m_name)));
    QVERIFY(process != nullptr);
    const ProcessList::ProcessId id = idOf(process);
    process->write(" ");
    QVERIFY(process->waitForFinished());
    QVERIFY(!ProcessList::end(id, m_name));
}

void tst_ProcessList::endingAZombie()
{
    const Zombie zombie(copyOfProgram(QString::fromStdString(m_name)));
    QVERIFY(zombie.isValid());
    QVERIFY(!ProcessList::end(zombie.id(), m_name));
}

void tst_ProcessList::endingASuspendedProgram()
{
    QProcess *process = run(copyOfProgram(QString::fromStdString(m_name)));
    QVERIFY(process != nullptr);
    QCOMPARE(::kill(static_cast<pid_t>(process->processId()), SIGSTOP), 0);
    QCOMPARE(found(), Ids{idOf(process)});
    QVERIFY(ProcessList::end(idOf(process), m_name));
    QVERIFY(process->waitForFinished());
}

QTEST_GUILESS_MAIN(tst_ProcessList)

#include "tst_processlist.moc"
