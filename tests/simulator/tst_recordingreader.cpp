#include "demo/simulator/RecordingReader.h"

#include <QBuffer>
#include <QtTest>

using namespace Simulation;

namespace {

constexpr int MaxBlockBytes = 40;

/// Each part as "line:offset time text" or "line:offset problem".
QByteArrayList readParts(const QByteArray &text)
{
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    RecordingReader reader(&buffer, MaxBlockBytes);
    QByteArrayList parts;
    while (const auto part = reader.next()) {
        const QByteArray place
            = QByteArray::number(part->line) + ':' + QByteArray::number(part->offset) + ' ';
        parts << place
                + (part->isProblem()
                        ? part->problem.toUtf8()
                        : QByteArray::number(part->block.timeMs) + ' ' + part->block.text);
    }
    return parts;
}

} // namespace

/// What tst_recording does not see: places, and that reading goes on behind a problem.
class tst_RecordingReader : public QObject
{
    Q_OBJECT

private slots:
    void parts_data();
    void parts();
    void pieceOfALongLine();
};

void tst_RecordingReader::parts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArrayList>("expected");

    QTest::newRow("nothing") << QByteArray() << QByteArrayList();
    QTest::newRow("blocks without times")
        << QByteArray("x\nFace result count:1\r\ny\nFace result count:0")
        << QByteArrayList({"1:0 0 x\nFace result count:1\r\ny\n", "4:25 0 Face result count:0"});
    QTest::newRow("blocks with times") << QByteArray("@5\nx\ny\n@7\n@9\nz")
                                       << QByteArrayList({"1:0 5 x\ny\n", "4:7 7 ", "5:10 9 z"});
    QTest::newRow("behind a time that runs backwards")
        << QByteArray("@5\nx\n@4\ny\n@6\nz\n")
        << QByteArrayList({"1:0 5 x\n", "3:5 the time stamp is earlier than the one before",
               "3:5 5 y\n", "5:10 6 z\n"});
    QTest::newRow("behind a first time that is none")
        << QByteArray("@-5\nx\n@4\ny\n")
        << QByteArrayList({"1:0 the time stamp must be a whole number from 0 to 3155760000000",
               "1:0 0 x\n", "3:6 4 y\n"});
    QTest::newRow("behind a time in a recording without")
        << QByteArray("x\n@5\ny\n")
        << QByteArrayList(
               {"1:0 0 x\ny\n", "2:2 a time stamp in a recording that does not begin with one"});
    QTest::newRow("a block of the allowed length")
        << QByteArray("@5\n" + QByteArray(39, 'x') + "\n@6\ny\n")
        << QByteArrayList({"1:0 5 " + QByteArray(39, 'x') + "\n", "3:43 6 y\n"});
    QTest::newRow("a block that is too long")
        << QByteArray("@5\n" + QByteArray(38, 'x') + "\n\n\n\n@6\ny\n")
        << QByteArrayList({"1:0 the block is longer than 40 bytes", "6:45 6 y\n"});
    QTest::newRow("a block that is too long at the end") << QByteArray(
        "@5\n" + QByteArray(41, 'x')) << QByteArrayList({"1:0 the block is longer than 40 bytes"});
}

void tst_RecordingReader::parts()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArrayList, expected);
    QCOMPARE(readParts(text), expected);
}

/// Very long lines are read in pieces; only a line's begin can part blocks.
void tst_RecordingReader::pieceOfALongLine()
{
    constexpr int MaxSize = 200000;
    QByteArray text = "Face result count:1\n";
    while (text.size() < MaxSize / 2)
        text += "Face result count:1 @5 ";
    text += "\n";
    QBuffer buffer;
    buffer.setData(text + "Face result count:0\n");
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    RecordingReader reader(&buffer, MaxSize);
    QByteArrayList blocks;
    while (const auto part = reader.next())
        blocks << part->block.text;
    const int second = text.indexOf('\n') + 1;
    QCOMPARE(
        blocks, QByteArrayList({text.left(second), text.mid(second), "Face result count:0\n"}));
    QVERIFY(!reader.isTimed());
}

QTEST_GUILESS_MAIN(tst_RecordingReader)

#include "tst_recordingreader.moc"
