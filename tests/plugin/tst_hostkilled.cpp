#include "tests/support/Files.h"
#include "tests/support/SensorProgram.h"
#include "tests/support/Waiting.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace KrTest;

/// A host that is killed cannot end its sensor program. The next one does, and starts its own.
class tst_HostKilled : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void theNextHostEndsTheOldProgram();

private:
    void startHost(QProcess &host) const;
    QVector<ProcessId> started() const { return startedStandIns(m_directory.path()); }
    static bool runs(ProcessId id);

    QTemporaryDir m_directory;
    QString m_plugin;
};

void tst_HostKilled::initTestCase()
{
    QVERIFY(m_directory.isValid());
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
    // A copy of the plug-in, for it looks for its sensor program beside itself.
    const QString original = QStringLiteral(KRHVC_PLUGIN_FILE);
    m_plugin = m_directory.filePath(QFileInfo(original).fileName());
    QVERIFY(QFile::copy(original, m_plugin));
    QVERIFY(writeFile(m_directory.filePath(QStringLiteral("stage.json")),
        R"({"screens": [{"id": 1, "contents": [{"params": {"name": "A", "default": "true"}}]}]})"));
}

void tst_HostKilled::cleanup()
{
    // What lost its host goes when this file is there.
    QVERIFY(writeFile(m_directory.filePath(QStringLiteral("end"))));
    QTRY_COMPARE_WITH_TIMEOUT(sensorProcessCount(), 0, Patience);
}

void tst_HostKilled::startHost(QProcess &host) const
{
    host.start(QStringLiteral(KRHVC_PLAYER_FILE),
        {QStringLiteral("--headless"), QStringLiteral("--plugin"), m_plugin,
            QStringLiteral("--stage"), m_directory.filePath(QStringLiteral("stage.json")),
            QStringLiteral("--log-dir"), m_directory.filePath(QStringLiteral("logs"))});
}

bool tst_HostKilled::runs(ProcessId id)
{
    const auto ids = PluginKrHvcP2::ProcessList::find("HvcCon.exe");
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

void tst_HostKilled::theNextHostEndsTheOldProgram()
{
    // It takes no notice of the end of its input, as if it hung on its serial port.
    QVERIFY(installStandIn(m_directory.path(), "note-arguments starts\ndrain\nwait end"));

    QProcess first;
    startHost(first);
    QTRY_COMPARE_WITH_TIMEOUT(started().size(), 1, Patience);
    const ProcessId oldProgram = started().first();
    QVERIFY(runs(oldProgram));
    first.kill();
    QVERIFY(first.waitForFinished(Patience));
    QTest::qWait(200);
    QVERIFY(runs(oldProgram)); // still holds the port
    QCOMPARE(sensorProcessCount(), 1);

    QProcess second;
    QElapsedTimer clock;
    clock.start();
    startHost(second);
    QTRY_VERIFY_WITH_TIMEOUT(!runs(oldProgram), Patience);
    const qint64 ended = clock.elapsed();
    QTRY_COMPARE_WITH_TIMEOUT(started().size(), 2, Patience);
    const qint64 restarted = clock.elapsed();
    // Timers may be 5 % early.
    QVERIFY2(ended >= 5000 - 250, QByteArray::number(ended).constData());
    QVERIFY2(restarted >= 5100 - 255, QByteArray::number(restarted).constData());
    const ProcessId newProgram = started().last();
    QVERIFY(newProgram != oldProgram);
    QTest::qWait(200);
    QVERIFY(runs(newProgram));
    QCOMPARE(sensorProcessCount(), 1);
    QCOMPARE(readFile(m_directory.filePath(QStringLiteral("starts"))),
        QByteArrayLiteral("3 921600 500\n3 921600 500\n"));
    QCOMPARE(second.state(), QProcess::Running);

    second.kill();
    QVERIFY(second.waitForFinished(Patience));
}

QTEST_GUILESS_MAIN(tst_HostKilled)

#include "tst_hostkilled.moc"
