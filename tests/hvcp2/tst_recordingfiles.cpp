#include "tests/support/Files.h"
#include "tools/analysis/RecordingTimes.h"
#include "tools/hvcp2/RecordingFiles.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace Hvcp2;
using namespace KrTest;

namespace {

constexpr qint64 NowMs = 1517477400250;
const QByteArray Frame("Face result count:0\n");

/// Each file of @p directory, the oldest first, with what is beside it: "bytes|times".
QByteArrayList filesOf(const QTemporaryDir &directory)
{
    QByteArrayList files;
    const QStringList names = Analysis::recordingsIn(directory.path());
    for (const QString &name : names)
        files << readFile(name) + '|' + readFile(Analysis::timesFileName(name));
    return files;
}

} // namespace

/// Sizes and clocks as a test of the program cannot have them.
class tst_RecordingFiles : public QObject
{
    Q_OBJECT

private slots:
    void pieces_data();
    void pieces();
    void frameThatNeverEnds();
    void anotherRun_data();
    void anotherRun();
    void oldestGo();
    void clockSetBack();
};

void tst_RecordingFiles::pieces_data()
{
    QTest::addColumn<QByteArrayList>("pieces"); // a millisecond from each other
    QTest::addColumn<QByteArrayList>("expected"); // the files, of 20 bytes or more; times less Now

    QTest::newRow("nothing") << QByteArrayList{""} << QByteArrayList{"|"};
    QTest::newRow("a file that is not full")
        << QByteArrayList{"a\n", Frame} << QByteArrayList{"a\n" + Frame + "|0 0\n2 1\n"};
    QTest::newRow("a frame behind a full one")
        << QByteArrayList{Frame, Frame} << QByteArrayList{Frame + "|0 0\n", Frame + "|0 1\n"};
    QTest::newRow("a frame in any letter case, behind a blank")
        << QByteArrayList{Frame, " face RESULT count:0\n"}
        << QByteArrayList{Frame + "|0 0\n", " face RESULT count:0\n|0 1\n"};
    QTest::newRow("a frame in the middle of a piece") << QByteArrayList{
        Frame, "a\n" + Frame + "b"} << QByteArrayList{Frame + "a\n|0 0\n20 1\n", Frame + "b|0 1\n"};
    QTest::newRow("no frame behind a full one") << QByteArrayList{
        Frame, "a\n", "b\n"} << QByteArrayList{Frame + "a\nb\n|0 0\n20 1\n22 2\n"};
    QTest::newRow("the words of a frame within a line") << QByteArrayList{Frame + "x", Frame,
        Frame} << QByteArrayList{Frame + "x" + Frame + "|0 0\n21 1\n", Frame + "|0 2\n"};
}

void tst_RecordingFiles::pieces()
{
    QFETCH(QByteArrayList, pieces);

    const QTemporaryDir directory;
    RecordingFiles files(directory.path(), {Frame.size(), 8});
    QVERIFY(files.open());
    qint64 timeMs = 0;
    for (const QByteArray &piece : qAsConst(pieces))
        QVERIFY(files.write(piece, timeMs++));
    files.close();
    QTEST(filesOf(directory), "expected");
}

void tst_RecordingFiles::frameThatNeverEnds()
{
    const QTemporaryDir directory;
    RecordingFiles files(directory.path(), {1, 8});
    QVERIFY(files.open());
    const QByteArray piece(256 * 1024, 'x');
    for (int i = 0; i < 6; ++i)
        QVERIFY(files.write(piece, NowMs));
    const QByteArrayList written = filesOf(directory);
    QCOMPARE(written.size(), 2);
    QCOMPARE(written.first().count('x'), RecordingFiles::MaxFrameBytes + piece.size());
    QCOMPARE(written.last().count('x'), piece.size());
}

void tst_RecordingFiles::anotherRun_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArrayList>("expected"); // after another run with "b\n"

    QTest::newRow("behind a whole line")
        << QByteArray("a\n") << QByteArrayList{"a\nb\n|0 1\n2 2\n"};
    QTest::newRow("behind a line that was cut")
        << QByteArray("a") << QByteArrayList{"a\nb\n|0 1\n1 2\n2 2\n"};
    QTest::newRow("behind a full file")
        << Frame << QByteArrayList{Frame + "|0 1\n", QByteArray("b\n|0 2\n")};
}

void tst_RecordingFiles::anotherRun()
{
    QFETCH(QByteArray, first);

    const QTemporaryDir directory;
    qint64 timeMs = 0;
    for (const QByteArray &bytes : {first, QByteArray("b\n")}) {
        RecordingFiles files(directory.path(), {Frame.size(), 8});
        QVERIFY(files.open());
        QVERIFY(files.write(bytes, ++timeMs));
    }
    QTEST(filesOf(directory), "expected");
}

void tst_RecordingFiles::oldestGo()
{
    const QTemporaryDir directory;
    QVERIFY(writeFile(directory.filePath(QStringLiteral("foreign.out")), "x"));
    RecordingFiles files(directory.path(), {1, 2});
    QVERIFY(files.open());
    for (int i = 0; i < 4; ++i) // all in one moment
        QVERIFY(files.write(Frame + QByteArray::number(i) + '\n', NowMs));
    QCOMPARE(filesOf(directory),
        QByteArrayList({Frame + "2\n|" + Analysis::recordedTime(0, NowMs),
            Frame + "3\n|" + Analysis::recordedTime(0, NowMs)}));
    files.close();
    const QStringList left = QDir(directory.path()).entryList(QDir::Files);
    QCOMPARE(left.size(), 5); // two with their times, and the foreign one
}

/// The order of the names stays that of the writing, so that the oldest go and the newest goes on.
void tst_RecordingFiles::clockSetBack()
{
    const QTemporaryDir directory;
    for (const qint64 timeMs : {NowMs, NowMs - 3600000, NowMs - 7200000}) {
        RecordingFiles files(directory.path(), {1, 2});
        QVERIFY(files.open());
        QVERIFY(files.write(QByteArray::number(timeMs) + '\n', timeMs));
    }
    const QByteArrayList written = filesOf(directory);
    QCOMPARE(written.size(), 2);
    QVERIFY(written.first().startsWith(QByteArray::number(NowMs - 3600000)));
    QVERIFY(written.last().startsWith(QByteArray::number(NowMs - 7200000)));
}

QTEST_GUILESS_MAIN(tst_RecordingFiles)

#include "tst_recordingfiles.moc"
