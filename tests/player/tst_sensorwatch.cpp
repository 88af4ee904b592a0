#include "demo/player/SensorWatch.h"

#include "demo/player/HostPane.h"
#include "tests/support/SensorProgram.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Player;

/// Keeps a program as the child of a plug-in does.
class Keeper : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    QProcess *start(const QString &program)
    {
        auto *const process = new QProcess(this);
        connect(process, &QProcess::started, this, &Keeper::started);
        process->start(program, QStringList());
        return process;
    }

signals:
    void started();
    void dataReceived(const QString &data);
};

class tst_SensorWatch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void noKeeper();
    void processAndRestarts();
    void otherKeeper();
    void texts_data();
    void texts();

private:
    QTemporaryDir m_directory;
    QString m_program;
};

void tst_SensorWatch::initTestCase()
{
    const QString name = QStringLiteral("watched.exe"); // not the one that plug-ins end
    QVERIFY(KrTest::installStandIn(m_directory.path(), "key", name));
    m_program = m_directory.filePath(name);
}

void tst_SensorWatch::noKeeper()
{
    SensorWatch watch;
    QVERIFY(!watch.isKnown());
    watch.watch(nullptr);
    QVERIFY(!watch.isKnown());
    QObject plugin;
    QObject other(&plugin);
    watch.watch(&plugin);
    QVERIFY(!watch.isKnown());
    QCOMPARE(watch.processId(), qint64(0));
}

void tst_SensorWatch::processAndRestarts()
{
    QObject plugin;
    QObject other(&plugin);
    auto *const keeper = new Keeper(&plugin);
    SensorWatch watch;
    QSignalSpy changed(&watch, &SensorWatch::changed);
    watch.watch(&plugin);
    QVERIFY(watch.isKnown());
    QCOMPARE(watch.processId(), qint64(0));
    QCOMPARE(changed.count(), 1);

    QProcess *process = keeper->start(m_program);
    QVERIFY(process->waitForStarted());
    QTRY_COMPARE(changed.count(), 2);
    QCOMPARE(watch.processId(), process->processId());
    QCOMPARE(watch.restarts(), 0);
    process->kill();
    QVERIFY(process->waitForFinished());
    QTRY_COMPARE(changed.count(), 3);
    QCOMPARE(watch.processId(), qint64(0));

    for (int i = 1; i <= 2; ++i) {
        process = keeper->start(m_program);
        QVERIFY(process->waitForStarted());
        QTRY_COMPARE(watch.restarts(), i);
        QCOMPARE(watch.processId(), process->processId());
        process->kill();
        QVERIFY(process->waitForFinished());
    }
    watch.countAnew();
    QCOMPARE(watch.restarts(), 0);
    process = keeper->start(m_program);
    QVERIFY(process->waitForStarted());
    QTRY_COMPARE(watch.processId(), process->processId());
    QCOMPARE(watch.restarts(), 0);

    changed.clear();
    delete keeper;
    QVERIFY(changed.count() > 0);
    QVERIFY(!watch.isKnown());
    QCOMPARE(watch.processId(), qint64(0));
}

void tst_SensorWatch::otherKeeper()
{
    QObject plugin;
    auto *const former = new Keeper;
    former->setParent(&plugin);
    SensorWatch watch;
    watch.watch(&plugin);
    emit former->started();
    emit former->started();
    QCOMPARE(watch.restarts(), 1);
    watch.watch(&plugin); // the same one
    QCOMPARE(watch.restarts(), 0);
    emit former->started();
    emit former->started();
    QCOMPARE(watch.restarts(), 1); // heard once each

    former->setParent(this);
    Keeper keeper(&plugin);
    watch.watch(&plugin);
    emit former->started();
    emit keeper.started();
    QCOMPARE(watch.restarts(), 0);
    emit keeper.started();
    QCOMPARE(watch.restarts(), 1);
}

void tst_SensorWatch::texts_data()
{
    QTest::addColumn<bool>("isKnown");
    QTest::addColumn<qint64>("process");
    QTest::addColumn<int>("restarts");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no such child") << false << qint64(0) << 0 << "not known";
    QTest::newRow("not started") << true << qint64(0) << 0 << "does not run";
    QTest::newRow("started") << true << qint64(4711) << 0 << "process 4711";
    QTest::newRow("one restart") << true << qint64(4711) << 1 << "process 4711, restarted once";
    QTest::newRow("ended again") << true << qint64(0) << 2 << "does not run, restarted 2 times";
}

void tst_SensorWatch::texts()
{
    QFETCH(bool, isKnown);
    QFETCH(qint64, process);
    QFETCH(int, restarts);
    QFETCH(QString, expected);

    QCOMPARE(HostPane::sensorText(isKnown, process, restarts), expected);
}

QTEST_GUILESS_MAIN(tst_SensorWatch)

#include "tst_sensorwatch.moc"
