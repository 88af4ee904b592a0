#include "tests/hvcp2/GoldenOutput.h"
#include "tests/support/Files.h"
#include "tests/support/TimeZone.h"
#include "tools/hvcp2/FrameChoice.h"
#include "tools/hvcp2/Program.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

using namespace Hvcp2;
using namespace KrTest;

/// What the commands print about frames; golden/ has the inputs, and what is expected beside them.
class tst_Hvcp2Frames : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void outputs_data();
    void outputs();
    void givenTimes_data();
    void givenTimes();
    void chosenFrames_data();
    void chosenFrames();
    void fullScreen();
    void documentsOfReplay_data();
    void documentsOfReplay();

private:
    const TimeZone m_zone{"UTC"}; // of the logs
    QString m_directory;
};

void tst_Hvcp2Frames::initTestCase()
{
    m_directory = QFINDTESTDATA("golden");
    QVERIFY(!m_directory.isEmpty());
    // So that outputs name the files without a folder.
    QVERIFY(QDir::setCurrent(m_directory));
}

void tst_Hvcp2Frames::outputs_data()
{
    QTest::addColumn<QString>("arguments"); // separated by blanks

    const auto add = [](const char *file, const char *arguments) {
        QTest::newRow(file) << QString::fromLatin1(arguments);
    };
    add("hall.1.explain.txt", "explain hall.txt --stage door.json --frame 1");
    add("hall.4.explain.txt", "explain hall.txt --stage door.json --frame 4");
    add("hall.4.explain.json.txt", "explain hall.txt --stage door.json --frame 4 --json");
    add("hall.4.explain.csv.txt", "explain hall.txt --stage door.json --frame 4 --csv");
    add("hall.concurrent.explain.txt",
        "explain hall.txt --stage door.json --frame 4 --settings concurrent=3"
        " event-sending-limit=1000");
    add("hall.crowd.explain.txt", "explain hall.txt --stage door.json");
    add("hall.failure.explain.txt", "explain hall.txt --stage door.json --frame 8");
    add("hall.failure.explain.json.txt", "explain hall.txt --stage door.json --frame 8 --json");
    add("hall.second.explain.txt", "explain hall.txt --stage names.json --at 00:00:03");
    add("hall.second.explain.json.txt", "explain hall.txt --stage names.json --at 00:00:03 --json");
    add("hall.second.explain.csv.txt", "explain hall.txt --stage names.json --at 00:00:03 --csv");
    add("hall.nothing.explain.txt", "explain hall.txt --stage empty.json");
    add("log.explain.txt", "explain KrHvcP2Log_20180201.txt --stage window.json");
    add("log.restricted.explain.txt",
        "explain KrHvcP2Log_20180201.txt --stage window.json --at 09:30:04");
    add("log.open.explain.txt", "explain KrHvcP2Log_20180201.txt --stage window.json --frame 6");
    add("log.differs.explain.txt",
        "explain KrHvcP2Log_20180201.txt --stage window.json --frame 3 --settings concurrent=2");
    add("log.differs.explain.json.txt",
        "explain KrHvcP2Log_20180201.txt --stage window.json --frame 3 --settings concurrent=2"
        " --json");
    add("log.explainable.explain.txt",
        "explain KrHvcP2Log_20180201.txt --stage window.json --frame 6 --settings"
        " event-sending-limit=4000");
    add("hall.replay.txt", "replay hall.txt --stage door.json");
    add("hall.replay.json.txt", "replay hall.txt --stage door.json --json");
    add("hall.replay.csv.txt", "replay hall.txt --stage door.json --csv");
    add("hall.nothing.replay.txt", "replay hall.txt --stage empty.json");
    add("hall.nothing.replay.json.txt", "replay hall.txt --stage empty.json --json");
    add("log.replay.txt", "replay KrHvcP2Log_20180201.txt --stage window.json");
    add("log.replay.json.txt", "replay KrHvcP2Log_20180201.txt --stage window.json --json");
    add("log.settings.replay.txt",
        "replay KrHvcP2Log_20180201.txt --stage window.json --settings concurrent=2"
        " event-sending-limit=3000");
    add("log.settings.replay.json.txt",
        "replay KrHvcP2Log_20180201.txt --stage window.json --settings concurrent=2"
        " event-sending-limit=3000 --json");
    add("log.stage.replay.csv.txt", "replay KrHvcP2Log_20180201.txt --stage door.json --csv");
    add("damaged.replay.txt", "replay KrHvcP2Log_20180202.txt --stage window.json");
    add("damaged.replay.csv.txt", "replay KrHvcP2Log_20180202.txt --stage window.json --csv");
    add("days.replay.txt",
        "replay KrHvcP2Log_20180201.txt KrHvcP2Log_20180202.txt --stage window.json"
        " --settings concurrent=20");
}

void tst_Hvcp2Frames::outputs()
{
    QFETCH(QString, arguments);

    compareWithGolden(
        outputOf(arguments.split(QLatin1Char(' '))), QString::fromLatin1(QTest::currentDataTag()));
}

void tst_Hvcp2Frames::givenTimes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected"); // empty: it is no time

    const auto add = [](const char *text, const char *expected) {
        QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(expected);
    };
    add("09:30", "any day 09:30:00.000 (60000 ms)");
    add("09:30:05", "any day 09:30:05.000 (1000 ms)");
    add("2018-02-01 09:30:05", "2018-02-01 09:30:05.000 (1 ms)");
    add("2018-02-01 09:30:05.250", "2018-02-01 09:30:05.250 (1 ms)");
    add("2018-02-01T09:30:05", "2018-02-01 09:30:05.000 (1 ms)");
    add("2018-02-01T09:30:05Z", "2018-02-01T09:30:05.000Z");
    add("2018-02-01T09:30:05.250+09:00", "2018-02-01T00:30:05.250Z");
    add("2018-02-01T09:30:05-03:30", "2018-02-01T13:00:05.000Z");
    add("", "");
    add("noon", "");
    add("25:00", "");
    add("09:30:61", "");
    add("2018-02-30 09:30:05", "");
    add("2018-02-01 09:30:05 later", "");
    add("2018-02-01 09:30:05+99:00", "");
    add("2018-02-01", "");
}

void tst_Hvcp2Frames::givenTimes()
{
    QFETCH(QString, text);

    QString actual;
    const std::optional<GivenTime> given = givenTime(text);
    if (given && !given->moment.isNull()) {
        actual = given->moment.toUTC().toString(Qt::ISODateWithMs);
    } else if (given) {
        actual = QStringLiteral("%1 %2 (%3 ms)")
                     .arg(given->date.isNull() ? QStringLiteral("any day")
                                               : given->date.toString(Qt::ISODate),
                         given->time.toString(QStringLiteral("HH:mm:ss.zzz")))
                     .arg(given->precisionMs);
    }
    QTEST(actual, "expected");
}

void tst_Hvcp2Frames::chosenFrames_data()
{
    QTest::addColumn<QString>("options"); // separated by blanks
    QTest::addColumn<QString>("expected"); // the beginning of the second line, or the refusal

    const auto add = [](const char *file, const char *options, const char *expected) {
        QTest::addRow("%s %s", file, options)
            << QStringLiteral("%1 %2").arg(QLatin1String(file), QLatin1String(options)).trimmed()
            << QString::fromLatin1(expected);
    };
    const char *const log = "KrHvcP2Log_20180201.txt";
    const char *const hall = "hall.txt";
    add(log, "", "Frame 10, 2018-02-01 09:30:16");
    add(log, "--at 09:30", "Frame 1, 2018-02-01 09:30:00");
    add(log, "--at 09:30:03", "Frame 4, 2018-02-01 09:30:04");
    add(log, "--at 2018-02-01T09:30:03", "Frame 4, 2018-02-01 09:30:04");
    add(log, "--at 2018-02-01T18:30:03+09:00", "Frame 4, 2018-02-01 09:30:04");
    add(log, "--at 2018-01-01T00:00:00", "Frame 1, 2018-02-01 09:30:00");
    add(log, "--at 09:29", "hvcp2 explain: no frame is of 09:29 or later");
    add(log, "--at 09:30:25", "hvcp2 explain: no frame is of 09:30:25 or later");
    add(log, "--frame 12", "Frame 12, 2018-02-01 09:30:24");
    add(log, "--frame 13", "hvcp2 explain: there are only 12 frames");
    add(log, "KrHvcP2Log_20180202.txt --at 09:29", "Frame 13, 2018-02-02 09:30:01");
    add(hall, "--frame 5", "Frame 5, 1970-01-01 00:00:03.700 UTC, hall.txt:44");
    add(hall, "--at 1970-01-01T00:00:03.201", "Frame 5, 1970-01-01 00:00:03.700 UTC");
    add(hall, "log --frame 20", "hvcp2 explain: log: no such file");
}

void tst_Hvcp2Frames::chosenFrames()
{
    QFETCH(QString, options);
    QFETCH(QString, expected);

    const QStringList arguments{
        QStringLiteral("explain"), QStringLiteral("--stage"), QStringLiteral("window.json")};
    const QStringList lines
        = outputOf(arguments + options.split(QLatin1Char(' '))).split(QLatin1Char('\n'));
    const QString line = lines.at(lines.constFirst().startsWith(QLatin1String("hvcp2 ")) ? 0 : 1);
    QCOMPARE(line.left(expected.size()), expected);
}

/// Five faces and six contents.
void tst_Hvcp2Frames::fullScreen()
{
    const QString stage
        = QFileInfo(m_directory + QStringLiteral("/../../../demo/player/stages/shop-window.json"))
              .absoluteFilePath();
    const QStringList lines = outputOf(
        {QStringLiteral("explain"), QStringLiteral("hall.txt"), QStringLiteral("--stage"), stage,
            QStringLiteral("--frame"), QStringLiteral("4")})
                                  .split(QLatin1Char('\n'));
    QVERIFY(lines.size() <= 50);
    QCOMPARE(lines.at(3).count(QStringLiteral("face ")), 5);
    for (const QString &line : lines)
        QVERIFY2(line.size() <= 80, qPrintable(line));
}

void tst_Hvcp2Frames::documentsOfReplay_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<int>("starts");

    QTest::newRow("several starts") << "log.replay.json.txt" << 4;
    QTest::newRow("no starts") << "hall.nothing.replay.json.txt" << 0;
}

/// They are written piece by piece.
void tst_Hvcp2Frames::documentsOfReplay()
{
    QFETCH(QString, fileName);

    QString text = readText(fileName);
    text.truncate(text.lastIndexOf(QLatin1String("[status")));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(error.errorString()));
    QTEST(document.object().value(QStringLiteral("starts")).toArray().size(), "starts");
    QVERIFY(document.object().contains(QStringLiteral("log")));
}

QTEST_GUILESS_MAIN(tst_Hvcp2Frames)

#include "tst_hvcp2frames.moc"
