#include "demo/desk/LiveFile.h"
#include "demo/desk/ViewerDesk.h"
#include "demo/simulator/ScenarioReader.h"
#include "tests/support/Files.h"
#include "tests/support/Waiting.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

using namespace Desk;
using KrTest::Patience;

class tst_LiveFile : public QObject
{
    Q_OBJECT

private slots:
    void tellsOfTheDesk();
    void lastStateIsWritten();
    void notTooOften();
    void eachHasItsOwn();
    void goneAtTheEnd();
    void failure();
};

static bool tellsOf(const LiveFile &file, const ViewerDesk &desk)
{
    QString error;
    const auto scenario = Simulation::parseLiveScenario(
        KrTest::readFile(file.fileName()), QStringLiteral("s"), &error);
    return scenario && *scenario == toSimulation(desk.viewers());
}

void tst_LiveFile::tellsOfTheDesk()
{
    ViewerDesk desk;
    desk.addGroup(ViewerGroup::Family);
    const LiveFile file(&desk);
    QVERIFY(tellsOf(file, desk)); // at once
    desk.moveTo(1, {10, 20});
    QTRY_VERIFY_WITH_TIMEOUT(tellsOf(file, desk), Patience);
    desk.remove(2);
    QTRY_VERIFY_WITH_TIMEOUT(tellsOf(file, desk), Patience);
    desk.clear();
    QTRY_VERIFY_WITH_TIMEOUT(tellsOf(file, desk), Patience);
    QCOMPARE(QFileInfo(file.fileName()).dir().entryList(QDir::Files).size(), 1);
}

/// After a rest the first change is written before any event, and the rest when there is time.
void tst_LiveFile::lastStateIsWritten()
{
    ViewerDesk desk;
    const LiveFile file(&desk);
    QTest::qWait(150);
    const int id = desk.add({0, 0});
    QVERIFY(tellsOf(file, desk));
    for (int x = 1; x < 500; ++x)
        desk.moveTo(id, {x, x});
    QVERIFY(!tellsOf(file, desk));
    QTRY_VERIFY_WITH_TIMEOUT(tellsOf(file, desk), Patience);
    QCOMPARE(desk.viewer(id).position.x, 499);
}

void tst_LiveFile::notTooOften()
{
    ViewerDesk desk;
    const int id = desk.add({0, 0});
    const LiveFile file(&desk);
    QByteArray content;
    int writings = 0;
    QElapsedTimer timer;
    timer.start();
    for (int x = 1; timer.elapsed() < 400; ++x) {
        desk.moveTo(id, {x % 1600, 0});
        QCoreApplication::processEvents();
        const QByteArray now = KrTest::readFile(file.fileName());
        writings += int(now != content);
        content = now;
    }
    // Slow machines write less often.
    QVERIFY2(writings >= 2 && writings <= timer.elapsed() / 50 + 2,
        qPrintable(QString::number(writings)));
}

void tst_LiveFile::eachHasItsOwn()
{
    ViewerDesk one;
    ViewerDesk other;
    one.add({1, 1});
    const LiveFile file(&one);
    const LiveFile otherFile(&other);
    QVERIFY(file.fileName() != otherFile.fileName());
    QVERIFY(tellsOf(file, one));
    QVERIFY(tellsOf(otherFile, other));
}

void tst_LiveFile::goneAtTheEnd()
{
    ViewerDesk desk;
    auto file = std::make_unique<LiveFile>(&desk);
    const QString name = file->fileName();
    QVERIFY(QFile::exists(name));
    desk.add({1, 1}); // something waits to be written
    file.reset();
    QVERIFY(!QFile::exists(name));
    QVERIFY(!QFileInfo(name).dir().exists());
    desk.add({2, 2});
}

void tst_LiveFile::failure()
{
    ViewerDesk desk;
    const LiveFile file(&desk);
    const QSignalSpy failed(&file, &LiveFile::failed);
    QVERIFY(failed.isValid());
    QVERIFY(QFile::remove(file.fileName()));
    QVERIFY(QDir().mkdir(file.fileName())); // in the way
    desk.add({1, 1});
    QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, Patience);
    const QString reason = failed.first().first().toString();
    QVERIFY2(reason.startsWith(file.fileName() + QLatin1String(": cannot be written: ")),
        qPrintable(reason));
    desk.add({2, 2});
    QTest::qWait(1200); // tried on, and not told again
    QCOMPARE(failed.count(), 1);

    QVERIFY(QDir().rmdir(file.fileName()));
    QTRY_VERIFY_WITH_TIMEOUT(tellsOf(file, desk), Patience);
    QVERIFY(QFile::remove(file.fileName()));
    QVERIFY(QDir().mkdir(file.fileName()));
    desk.add({3, 3});
    QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 2, Patience);
    QVERIFY(QDir().rmdir(file.fileName()));
}

QTEST_GUILESS_MAIN(tst_LiveFile)
#include "tst_livefile.moc"
