#include "ProcessListFixture.h"

#include <QtTest>

#ifdef Q_OS_WIN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include "tests/support/NoMoreFiles_unix.h"
#endif

using namespace PluginKrHvcP2;

#ifdef Q_OS_WIN
/// While there is one, the system's list of processes cannot be read.
class UnreadableProcessList
{
public:
    UnreadableProcessList() { exists = true; }
    ~UnreadableProcessList() { exists = false; }
    Q_DISABLE_COPY(UnreadableProcessList)

    inline static bool exists = false;
};

/// Stands between the code under test, which is built to call it, and the system.
extern "C" HANDLE WINAPI snapshotThatMayFail(DWORD flags, DWORD id)
{
    if (UnreadableProcessList::exists) {
        SetLastError(ERROR_BAD_LENGTH);
        return INVALID_HANDLE_VALUE;
    }
    using Snapshot = HANDLE(WINAPI *)(DWORD, DWORD);
    const FARPROC function
        = GetProcAddress(GetModuleHandleW(L"kernel32"), "CreateToolhelp32Snapshot");
    return reinterpret_cast<Snapshot>(reinterpret_cast<void *>(function))(flags, id);
}
#else
using UnreadableProcessList = KrTest::NoMoreFiles; // the list is made of files
#endif

class tst_ProcessListFailure : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsFound();
    void endingWithoutTheList();
    void ownProcessIsNotEnded();
};

void tst_ProcessListFailure::nothingIsFound()
{
    NamedPrograms programs;
    QProcess *process = programs.run(programs.copyOfProgram(programs.fileName()));
    QVERIFY(process != nullptr);
    const ProcessId id = idOf(process);
    QCOMPARE(programs.found(), Ids{id});

    Ids found;
    {
        const UnreadableProcessList list;
        found = programs.found();
    }
    QCOMPARE(found, Ids());
    QCOMPARE(programs.found(), Ids{id});
}

void tst_ProcessListFailure::endingWithoutTheList()
{
    NamedPrograms programs;
    QProcess *process = programs.run(programs.copyOfProgram(programs.fileName()));
    QVERIFY(process != nullptr);
    const ProcessId id = idOf(process);

    bool ended = false;
    {
        const UnreadableProcessList list;
        ended = ProcessList::end(id, programs.name);
    }
#ifdef Q_OS_WIN
    QVERIFY(ended);
#else
    QVERIFY(!ended); // it could be another program by now
    QVERIFY(!process->waitForFinished(50));
    QVERIFY(ProcessList::end(id, programs.name));
#endif
    QVERIFY(process->waitForFinished());
    QCOMPARE(programs.found(), Ids());
}

void tst_ProcessListFailure::ownProcessIsNotEnded()
{
    const auto ownId = static_cast<ProcessId>(QCoreApplication::applicationPid());
    const std::string ownName
        = QFileInfo(QCoreApplication::applicationFilePath()).fileName().toStdString();
    QVERIFY(!ProcessList::end(ownId, ownName));
    const UnreadableProcessList list;
    QVERIFY(!ProcessList::end(ownId, ownName));
}

QTEST_GUILESS_MAIN(tst_ProcessListFailure)

#include "tst_processlistfailure.moc"
