#include "demo/simulator/Recording.h"

#include <QtTest>

using namespace Simulation;

class tst_Recording : public QObject
{
    Q_OBJECT

private slots:
    void blocks_data();
    void blocks();
    void error_data();
    void error();
    void rhythm_data();
    void rhythm();
    void recordedBlock();
};

void tst_Recording::blocks_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArrayList>("expected"); // each as "time text"

    QTest::newRow("a block begins at each face count")
        << QByteArray("Face result count:1\nIndex:0\nFace result count:0\n")
        << QByteArrayList({"0 Face result count:1\nIndex:0\n", "0 Face result count:0\n"});
    QTest::newRow("what comes first belongs to the first block")
        << QByteArray("Press Space Key to end:\nFace result count:0\n")
        << QByteArrayList({"0 Press Space Key to end:\nFace result count:0\n"});
    QTest::newRow("what follows a block belongs to it")
        << QByteArray("Face result count:0\nPress\n\nFailed to\nFace result count:0\nPress\n")
        << QByteArrayList(
               {"0 Face result count:0\nPress\n\nFailed to\n", "0 Face result count:0\nPress\n"});
    QTest::newRow("a recording without a face count is one block") << QByteArray(
        "Failed to open COM port.\n") << QByteArrayList({"0 Failed to open COM port.\n"});
    QTest::newRow("letter case and blanks around do not matter, every byte is kept")
        << QByteArray(" FACE RESULT COUNT:0 \r\n\tface result count:0")
        << QByteArrayList({"0  FACE RESULT COUNT:0 \r\n", "0 \tface result count:0"});
    QTest::newRow("time stamps alone part the blocks")
        << QByteArray("@5\nFace result count:0\nFace result count:0\n@5\nx\n@90\n")
        << QByteArrayList({"5 Face result count:0\nFace result count:0\n", "5 x\n", "90 "});
    QTest::newRow("a line that only looks like a time stamp is text")
        << QByteArray("@\n@x\n@5 s\nFace result count:0\n")
        << QByteArrayList({"0 @\n@x\n@5 s\nFace result count:0\n"});
    QTest::newRow("time stamps of a clock, and the last one")
        << QByteArray("@1700000000000\na\n@3155760000000\nb\n")
        << QByteArrayList({"1700000000000 a\n", "3155760000000 b\n"});
}

void tst_Recording::blocks()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArrayList, expected);

    QString error;
    const auto recording = parseRecording(text, QStringLiteral("r"), &error);
    QCOMPARE(error, QString());
    QVERIFY(recording);
    QByteArrayList blocks;
    for (const Recording::Block &block : recording->blocks)
        blocks << QByteArray::number(block.timeMs) + ' ' + block.text;
    QCOMPARE(blocks, expected);
}

void tst_Recording::error_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("an empty file") << QByteArray() << QStringLiteral("r: the recording is empty");
    QTest::newRow("time runs backwards") << QByteArray(
        "@7\nx\n@6\n") << QStringLiteral("r:3: the time stamp is earlier than the one before");
    QTest::newRow("time stamps from the middle on")
        << QByteArray("x\n@6\n")
        << QStringLiteral("r:2: a time stamp in a recording that does not begin with one");
    const auto range = [](int line) {
        return QStringLiteral("r:%1: the time stamp must be a whole number from 0 to 3155760000000")
            .arg(line);
    };
    QTest::newRow("a negative time stamp") << QByteArray("@-1\nx\n") << range(1);
    QTest::newRow("a time stamp after the last one")
        << QByteArray("@0\nx\n@3155760000001\nx\n") << range(3);
    QTest::newRow("a time stamp that overflows a clock's nanoseconds")
        << QByteArray("@0\nx\n@9300000000000\nx\n") << range(3);
    QTest::newRow("the largest number of 64 bits")
        << QByteArray("@9223372036854775807\n") << range(1);
    QTest::newRow("a number beyond 64 bits") << QByteArray("@9223372036854775808\n") << range(1);
    QTest::newRow("a number that is no double either")
        << QByteArray("@9\nx").replace("9", QByteArray(400, '9')) << range(1);
    QTest::newRow("a time stamp with a fraction") << QByteArray("@0.5\n") << range(1);
    QTest::newRow("a time stamp with an exponent") << QByteArray("@1e3\n") << range(1);
    QTest::newRow("no number") << QByteArray("@0\nx\n@nan\n") << range(3);
    QTest::newRow("an endless time") << QByteArray("@0\nx\n@-inf\n") << range(3);
}

void tst_Recording::error()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);

    QString error;
    QVERIFY(!parseRecording(text, QStringLiteral("r"), &error));
    QCOMPARE(error, expected);
}

void tst_Recording::rhythm_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArrayList>("expected"); // five frames, each as "text pause"

    QTest::newRow("the interval without time stamps")
        << QByteArray("Face result count:0\nFace result count:1\n")
        << QByteArrayList({"Face result count:0\n 250", "Face result count:1\n 250",
               "Face result count:0\n 250", "Face result count:1\n 250",
               "Face result count:0\n 250"});
    QTest::newRow("the recorded times, and the interval before it begins anew")
        << QByteArray("@1000\na\n@1020\nb\n@1020\nc\n")
        << QByteArrayList({"a\n 20", "b\n 0", "c\n 250", "a\n 20", "b\n 0"});
}

void tst_Recording::rhythm()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArrayList, expected);

    QString error;
    const auto recording = parseRecording(text, QStringLiteral("r"), &error);
    QVERIFY(recording);
    QByteArrayList frames;
    for (int frame = 0; frame < 5; ++frame) {
        const FramePlan plan = recording->planFrame(frame, 250);
        frames << plan.output() + ' ' + QByteArray::number(plan.nextAfterMs);
    }
    QCOMPARE(frames, expected);
}

void tst_Recording::recordedBlock()
{
    QCOMPARE(Simulation::recordedBlock(12, "a\nb\n"), QByteArray("@12\na\nb\n"));
    QCOMPARE(Simulation::recordedBlock(0, "cut"), QByteArray("@0\ncut\n"));
}

QTEST_GUILESS_MAIN(tst_Recording)
#include "tst_recording.moc"
