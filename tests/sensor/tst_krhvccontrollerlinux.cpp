#include "ControllerFixture.h"
#include "tests/support/OwnProcess.h"
#include "tests/support/RefusedCalls_linux.h"

#include <QProcess>
#include <QtTest>

#include <cerrno>

using namespace KrTest;
using PluginKrHvcP2::KrHvcController;

/// A copy of the sensor program that belongs to somebody else: the system does not let it be ended.
class tst_KrHvcControllerLinux : public QObject
{
    Q_OBJECT

private slots:
    void copyThatCannotBeEnded();
};

void tst_KrHvcControllerLinux::copyThatCannotBeEnded()
{
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    const SensorDirectory elsewhere;
    QVERIFY(elsewhere.install(StandIn::EndsOnKey));
    QProcess copy;
    copy.start(elsewhere.filePath(QStringLiteral("HvcCon.exe")), QStringList());
    QVERIFY(copy.waitForReadyRead(Patience));
#ifdef SYS_pidfd_send_signal
    const bool refused = refuseCalls({SYS_kill, SYS_pidfd_send_signal}, EPERM);
#else
    const bool refused = refuseCalls({SYS_kill}, EPERM);
#endif
    if (!refused)
        QSKIP("Needs a filter of system calls, which the system does not grant.");

    // As when it has been found 5 s ago. A program of the controller's own could not be ended
    // either, so there is none.
    const SensorDirectory directory;
    const WatchedController watched(directory.path());
    const double before = processorSeconds();
    QVERIFY(QMetaObject::invokeMethod(watched.controller, "killAndStartProcess"));
    QTest::qWait(1000);
    QCOMPARE(copy.state(), QProcess::Running);
    QVERIFY(watched->findChildren<QProcess *>().isEmpty());
    QCOMPARE(watched.log, QStringList());
    QVERIFY2(processorSeconds() - before < 0.5, "it is tried without a pause");

    // It ends by itself; the next try comes 5.1 s after the one that found it again.
    copy.write(" ");
    QVERIFY(copy.waitForFinished(Patience));
    const QStringList log{ErrorStart + QLatin1String("Failed to start.")};
    QTRY_COMPARE_WITH_TIMEOUT(watched.log, log, Patience);
    const qint64 delay = watched.times.first();
    QVERIFY2(delay >= 100 + 5100 - 260, QByteArray::number(delay).constData()); // 5 % early
}

QTEST_GUILESS_MAIN(tst_KrHvcControllerLinux)

#include "tst_krhvccontrollerlinux.moc"
