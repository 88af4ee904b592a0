#include "ProcessListFixture.h"
#include "tests/support/OwnProcess.h"

#include <QtTest>

#include <algorithm>

using namespace KrTest;
using namespace PluginKrHvcP2;

class tst_ProcessList : public QObject
{
    Q_OBJECT

private slots:
    void counting_data();
    void counting();
    void everyCopyCounts();
    void copiesOfOtherDirectoriesCount();
    void namesOfOtherLettersDoNotDisturb();
    void ownProcessDoesNotCount();
    void endedProcessesDoNotCount();
    void findingLeavesNothingOpen();

    void ending_data();
    void ending();
    void endingTwice();
    void endingChecksTheName();
    void endingOfNothing();
    void endingOfAnIdThatDoesNotExist_data();
    void endingOfAnIdThatDoesNotExist();
    void endingLeavesNothingOpen();
};

void tst_ProcessList::counting_data()
{
    QTest::addColumn<QString>("file"); // %1: the name without ".exe"
    QTest::addColumn<bool>("upperCase");
    QTest::addColumn<bool>("counts");

    const QString same = QStringLiteral("%1.exe");
    QTest::newRow("a program of the name") << same << false << true;
    QTest::newRow("a program in upper case") << same << true << true;
    QTest::newRow("an odd extension") << QStringLiteral("%1.eXe") << false << true;
    QTest::newRow("another extension") << QStringLiteral("%1.ex2") << false << false;
    QTest::newRow("no extension") << QStringLiteral("%1") << false << false;
    QTest::newRow("a longer name") << QStringLiteral("%1.exe2") << false << false;
    QTest::newRow("the name at the end of another") << QStringLiteral("X%1.exe") << false << false;
    QTest::newRow("the name with a blank before it") << QStringLiteral(" %1.exe") << false << false;
    QTest::newRow("a directory of letters of another script")
        << QString::fromUtf8("\u65e5\u672c\U0001f600/%1.exe") << false << true;
    QTest::newRow("a name with a letter of another script")
        << QString::fromUtf8("%1\u65e5.exe") << false << false;
    QTest::newRow("a name with a letter of two code units")
        << QString::fromUtf8("%1\U0001f600.exe") << false << false;
    QTest::newRow("an extension of full width letters")
        << QString::fromUtf8("%1.\uff45\uff58\uff45") << false << false;
    QTest::newRow("a directory of the name")
        << QStringLiteral("%1.exe/other.exe") << false << false;
}

void tst_ProcessList::counting()
{
    QFETCH(QString, file);
    QFETCH(bool, upperCase);
    QFETCH(bool, counts);

    NamedPrograms programs;
    QCOMPARE(programs.found(), Ids());
    QString stem = programs.fileName();
    stem.chop(4);
    file = file.arg(stem);
    const QString program = programs.copyOfProgram(upperCase ? file.toUpper() : file);
    QVERIFY(!program.isEmpty());
    const QProcess *process = programs.run(program);
    QVERIFY(process != nullptr);
    QCOMPARE(programs.found(), counts ? Ids{idOf(process)} : Ids());
}

void tst_ProcessList::everyCopyCounts()
{
    NamedPrograms programs;
    const QString program = programs.copyOfProgram(programs.fileName());
    Ids ids;
    for (int i = 0; i < 3; ++i) {
        const QProcess *process = programs.run(program);
        QVERIFY(process != nullptr);
        ids.insert(idOf(process));
    }
    QCOMPARE(ids.size(), std::size_t(3));
    QCOMPARE(programs.found(), ids);
}

void tst_ProcessList::copiesOfOtherDirectoriesCount()
{
    NamedPrograms programs;
    const QString name = programs.fileName();
    Ids ids;
    for (const QString &file :
        {QString(QLatin1String("a/") + name), QString(QLatin1String("b c/") + name.toUpper()),
            QString(QString::fromUtf8("\u5e74/") + name.toLower())}) {
        const QProcess *process = programs.run(programs.copyOfProgram(file));
        QVERIFY(process != nullptr);
        ids.insert(idOf(process));
    }
    QCOMPARE(programs.found(), ids);
}

void tst_ProcessList::namesOfOtherLettersDoNotDisturb()
{
    NamedPrograms programs;
    QVERIFY(programs.run(programs.copyOfProgram(QString::fromUtf8("\u65e5\U0001f600.exe"))));
    const QProcess *process = programs.run(programs.copyOfProgram(programs.fileName()));
    QVERIFY(process != nullptr);
    QVERIFY(programs.run(programs.copyOfProgram(QString::fromUtf8("\u00fc\u0130.exe"))));
    QCOMPARE(programs.found(), Ids{idOf(process)});
}

void tst_ProcessList::ownProcessDoesNotCount()
{
    const QString ownProgram = QCoreApplication::applicationFilePath();
    const auto ids = ProcessList::find(QFileInfo(ownProgram).fileName().toStdString());
    const auto ownId = static_cast<ProcessId>(QCoreApplication::applicationPid());
    QCOMPARE(std::count(ids.begin(), ids.end(), ownId), 0);
}

void tst_ProcessList::endedProcessesDoNotCount()
{
    NamedPrograms programs;
    QProcess *process = programs.run(programs.copyOfProgram(programs.fileName()));
    QVERIFY(process != nullptr);
    QCOMPARE(programs.found(), Ids{idOf(process)});
    process->write(" ");
    QVERIFY(process->waitForFinished());
    QCOMPARE(programs.found(), Ids());
}

void tst_ProcessList::findingLeavesNothingOpen()
{
    NamedPrograms programs;
    const QProcess *process = programs.run(programs.copyOfProgram(programs.fileName()));
    QVERIFY(process != nullptr);
    QCOMPARE(programs.found(), Ids{idOf(process)});
    const int before = openHandles();
    QVERIFY(before > 0);
    for (int i = 0; i < 1000; ++i)
        QCOMPARE(ProcessList::find(programs.name).size(), std::size_t(1));
    QCOMPARE(openHandles(), before);
}

void tst_ProcessList::ending_data()
{
    QTest::addColumn<bool>("upperCase");

    QTest::newRow("a program of the name") << false;
    QTest::newRow("a program in upper case") << true;
}

void tst_ProcessList::ending()
{
    QFETCH(bool, upperCase);

    NamedPrograms programs;
    const QString name = programs.fileName();
    QProcess *process = programs.run(programs.copyOfProgram(upperCase ? name.toUpper() : name));
    QVERIFY(process != nullptr);
    QProcess *other = programs.run(programs.copyOfProgram(QStringLiteral("innocent")));
    QVERIFY(other != nullptr);

    QVERIFY(ProcessList::end(idOf(process), programs.name));
    QVERIFY(process->waitForFinished());
#ifdef Q_OS_WIN
    QCOMPARE(process->exitCode(), -1); // by which the controller knows that it was no crash
#else
    QCOMPARE(process->exitStatus(), QProcess::CrashExit);
#endif
    QCOMPARE(programs.found(), Ids());
    QVERIFY(!other->waitForFinished(50));
}

void tst_ProcessList::endingTwice()
{
    NamedPrograms programs;
    QProcess *process = programs.run(programs.copyOfProgram(programs.fileName()));
    QVERIFY(process != nullptr);
    const ProcessId id = idOf(process);
    QVERIFY(ProcessList::end(id, programs.name));
    QVERIFY(process->waitForFinished());
    QVERIFY(!ProcessList::end(id, programs.name));
}

void tst_ProcessList::endingChecksTheName()
{
    // An id that was given to another program since the list was made.
    NamedPrograms programs;
    QProcess *process = programs.run(programs.copyOfProgram(QStringLiteral("innocent")));
    QVERIFY(process != nullptr);
    QVERIFY(!ProcessList::end(idOf(process), programs.name));
    QVERIFY(!process->waitForFinished(50));
    process->write(" ");
    QVERIFY(process->waitForFinished());
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 0);
}

void tst_ProcessList::endingOfNothing()
{
    NamedPrograms programs;
    QProcess *process = programs.run(programs.copyOfProgram(programs.fileName()));
    QVERIFY(process != nullptr);
    const ProcessId id = idOf(process);
    process->write(" ");
    QVERIFY(process->waitForFinished());
    QVERIFY(!ProcessList::end(id, programs.name));
}

void tst_ProcessList::endingOfAnIdThatDoesNotExist_data()
{
    QTest::addColumn<ProcessId>("id");

    QTest::newRow("the system's own") << ProcessId(0);
    QTest::newRow("more than there can be") << ProcessId(0x7ffffffc);
    QTest::newRow("the greatest number") << ProcessId(0xffffffff);
}

void tst_ProcessList::endingOfAnIdThatDoesNotExist()
{
    QFETCH(ProcessId, id);

    NamedPrograms programs;
    QProcess *process = programs.run(programs.copyOfProgram(programs.fileName()));
    QVERIFY(process != nullptr);
    QVERIFY(!ProcessList::end(id, programs.name));
    QVERIFY(!process->waitForFinished(50));
}

void tst_ProcessList::endingLeavesNothingOpen()
{
    // Of one that is not there, and of one that has another name.
    NamedPrograms programs;
    const QProcess *process = programs.run(programs.copyOfProgram(QStringLiteral("innocent")));
    QVERIFY(process != nullptr);
    QVERIFY(!ProcessList::end(idOf(process), programs.name));
    const int before = openHandles();
    for (int i = 0; i < 1000; ++i) {
        QVERIFY(!ProcessList::end(idOf(process), programs.name));
        QVERIFY(!ProcessList::end(0x7ffffffc, programs.name));
    }
    QCOMPARE(openHandles(), before);
}

QTEST_GUILESS_MAIN(tst_ProcessList)

#include "tst_processlist.moc"
