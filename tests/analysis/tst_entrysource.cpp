#include "log/LogFormat.h"
#include "tests/support/Files.h"
#include "tools/analysis/EntrySource.h"
#include "tools/analysis/RecordingTimes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Analysis;
using namespace KrTest;
using namespace PluginKrHvcP2;

namespace {

QByteArray record(const QString &message)
{
    const QDateTime time(QDate(2018, 2, 1), QTime(9, 30));
    return LogFormat::record(1, time, QStringLiteral("Notice"), message).toUtf8();
}

QByteArray determined(int number)
{
    return record(QStringLiteral("The determined sequence number: #%1").arg(number));
}

QByteArray restricted(int number)
{
    return record(QStringLiteral("#%1 is not sent now because it is within the limited "
                                 "min-time(5000 msec.).")
                      .arg(number));
}

/// "file:line kind text"
QString describe(const Entry &entry)
{
    QString text = QStringLiteral("%1:%2 %3 %4")
                       .arg(entry.position.file.section(QLatin1Char('/'), -1))
                       .arg(entry.position.line)
                       .arg(entry.kind)
                       .arg(entry.text);
    text.replace(QLatin1Char('\n'), QLatin1Char('|'));
    for (const int number : entry.numbers)
        text += QStringLiteral("#%1").arg(number);
    return text;
}

QStringList readAll(EntrySource *source)
{
    QStringList entries;
    while (const std::optional<Entry> entry = source->next())
        entries << describe(*entry);
    return entries;
}

QStringList readAll(const QStringList &paths)
{
    QString error;
    const std::unique_ptr<EntrySource> source = EntrySource::open(paths, &error);
    return source ? readAll(source.get()) : QStringList(QStringLiteral("error: ") + error);
}

} // namespace

class tst_EntrySource : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void directory();
    void directoryOfTheHost();
    void fileKinds_data();
    void fileKinds();
    void recordedTimes();
    void timesBesideARecording_data();
    void timesBesideARecording();
    void directoryOfRecordings();
    void severalPaths();
    void refused_data();
    void refused();
    void fileThatIsGone();
    void resumed();
    void recordingResumed();
    void bytes();
#ifdef Q_OS_UNIX
    void pipes();
    void standardInput();
#endif

private:
    QString path(const QString &name) const
    {
        return m_directory->filePath(name);
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_EntrySource::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
}

void tst_EntrySource::directory()
{
    QVERIFY(writeFile(path(QStringLiteral("KrHvcP2Log_20180201.txt")), determined(3)));
    QVERIFY(writeFile(path(QStringLiteral("KrHvcP2Log_20171231.txt")), determined(1)));
    QVERIFY(writeFile(path(QStringLiteral("KrHvcP2Log_20180131.txt")), "x\n" + determined(2)));
    for (const char *name : {"KrHvcP2Log_20180230.txt", "KrHvcP2Log_20180201.bak",
             "KrHvcP2Log.lock", "plugin_20180201.txt", "KrHvcP2Log_20180201.txt.txt"})
        QVERIFY(writeFile(path(QString::fromLatin1(name)), determined(9)));
    QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("KrHvcP2Log_20180101.txt")));

    QCOMPARE(readAll({m_directory->path()}),
        QStringList({QStringLiteral("KrHvcP2Log_20171231.txt:1 2 #1"),
            QStringLiteral("KrHvcP2Log_20180131.txt:1 0 this is no record of the plug-in"),
            QStringLiteral("KrHvcP2Log_20180131.txt:2 2 #2"),
            QStringLiteral("KrHvcP2Log_20180201.txt:1 2 #3")}));
}

void tst_EntrySource::directoryOfTheHost()
{
    QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("KrHvcP2")));
    QVERIFY(writeFile(path(QStringLiteral("KrHvcP2/KrHvcP2Log_20180201.txt")), determined(3)));
    QCOMPARE(readAll({m_directory->path()}),
        QStringList({QStringLiteral("KrHvcP2Log_20180201.txt:1 2 #3")}));
}

void tst_EntrySource::fileKinds_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected");

    const QString foreign = QStringLiteral("f:1 0 this is no record of the plug-in");
    const auto add = [](const char *name, const char *fileName, const QByteArray &content,
                         const QStringList &expected) {
        QTest::newRow(name) << QString::fromLatin1(fileName) << content << expected;
    };
    add("nothing", "f", "", {});
    add("a log", "f", determined(3), {QStringLiteral("f:1 2 #3")});
    add("the rest of a log", "f", determined(3).mid(20) + determined(4),
        {foreign, QStringLiteral("f:5 2 #4")});
    add("a recording", "f", "Face result count:0\nPress\nface RESULT count:0\n",
        {QStringLiteral("f:1 1 Face result count:0|Press|"),
            QStringLiteral("f:3 1 face RESULT count:0|")});
    add("a recording with times", "f", "@1\nx\n@2\ny",
        {QStringLiteral("f:1 1 x|"), QStringLiteral("f:3 1 y")});
    add("a recording that is wrong", "f", "@2\nx\n@1\ny\n",
        {QStringLiteral("f:1 1 x|"),
            QStringLiteral("f:3 0 the time stamp is earlier than the one before"),
            QStringLiteral("f:3 1 y|")});
    add("a recorded NUL", "f", QByteArray("Face result count:0\nA\0B\n", 24),
        {QStringLiteral("f:1 1 Face result count:0|A") + QChar(0) + QStringLiteral("B|")});
    add("a recorded failure", "f", "Failed to open COM port.\n",
        {QStringLiteral("f:1 1 Failed to open COM port.|")});
    add("another text", "f", "Dear all,\nit Failed to start.\n", {foreign});
    add("bytes", "f",
        QByteArray("\x7f"
                   "ELF\0\0\1\2\n\n\n",
            11),
        {foreign});
    add("a recording with the name of a log", "KrHvcP2Log_20180201.txt", "Face result count:0\n",
        {QStringLiteral("KrHvcP2Log_20180201.txt:1 0 this is no record of the plug-in")});
    add("a recorded block that is too long", "f", "@2\n" + QByteArray(1048577, 'x') + "\n@3\ny\n",
        {QStringLiteral("f:1 0 the block is longer than 1048576 bytes"),
            QStringLiteral("f:3 1 y|")});
}

void tst_EntrySource::fileKinds()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QStringList, expected);

    QVERIFY(writeFile(path(name), content));
    QCOMPARE(readAll({path(name)}), expected);
}

void tst_EntrySource::recordedTimes()
{
    QVERIFY(writeFile(path(QStringLiteral("timed")), "@1517477400250\nFace result count:0\n"));
    QVERIFY(writeFile(path(QStringLiteral("untimed")), "Face result count:0\n"));
    QString error;
    const auto source = EntrySource::open(
        {path(QStringLiteral("timed")), path(QStringLiteral("untimed"))}, &error);
    QVERIFY(source);
    const std::optional<Entry> timed = source->next();
    QVERIFY(timed);
    QCOMPARE(timed->time, QDateTime(QDate(2018, 2, 1), QTime(9, 30, 0, 250), Qt::UTC));
    QCOMPARE(timed->timeToleranceMs, 0);
    const std::optional<Entry> untimed = source->next();
    QVERIFY(untimed);
    QVERIFY(untimed->time.isNull());
    QVERIFY(!source->next());
    QVERIFY(!source->next());
}

void tst_EntrySource::timesBesideARecording_data()
{
    QTest::addColumn<QByteArray>("times");
    QTest::addColumn<QString>("expected"); // milliseconds of each frame, or a problem

    // The recording has frames at 0, 20 and 40.
    QTest::newRow("none") << QByteArray() << "-|-|-";
    QTest::newRow("a piece for each frame")
        << recordedTime(0, 5) + recordedTime(20, 6) + recordedTime(40, 7) << "5|6|7";
    QTest::newRow("frames in one piece") << recordedTime(0, 5) + recordedTime(40, 7) << "5|5|7";
    QTest::newRow("a frame in pieces")
        << recordedTime(0, 5) + recordedTime(19, 6) + recordedTime(21, 7) + recordedTime(22, 8)
        << "5|6|8";
    QTest::newRow("no time for the first") << recordedTime(20, 6) << "-|6|6";
    QTest::newRow("a clock that was set back")
        << recordedTime(0, 5) + recordedTime(20, 3) << "5|3|3";
    QTest::newRow("no line end") << recordedTime(0, 5) + "20 6"
                                 << "5|6|6";
    QTest::newRow("lines of another file") << recordedTime(0, 5) + "x y\n20\n20 6 7\n0x14 6\n"
            + recordedTime(40, 7) << "r.times:2 this is no time of a recording|5|5|7";
    QTest::newRow("an offset that goes back") << recordedTime(0, 5) + recordedTime(20, 6)
            + recordedTime(10, 7) << "5|r.times:3 this is no time of a recording|6|6";
}

void tst_EntrySource::timesBesideARecording()
{
    QFETCH(QByteArray, times);
    QFETCH(QString, expected);

    const QByteArray frame("Face result count:0\n");
    QCOMPARE(frame.size(), 20);
    const QString recording = path(QStringLiteral("r"));
    QVERIFY(writeFile(recording, frame + frame + frame));
    if (!times.isEmpty())
        QVERIFY(writeFile(timesFileName(recording), times));
    QString error;
    const auto source = EntrySource::open({recording}, &error);
    QVERIFY2(source, qPrintable(error));
    QStringList actual;
    while (const std::optional<Entry> entry = source->next()) {
        if (entry->kind == Entry::Unknown) {
            actual << QStringLiteral("%1:%2 %3")
                          .arg(QFileInfo(entry->position.file).fileName(),
                              QString::number(entry->position.line), entry->text);
        } else {
            actual << (entry->time.isNull() ? QStringLiteral("-")
                                            : QString::number(entry->time.toMSecsSinceEpoch()));
        }
    }
    QCOMPARE(actual.join(QLatin1Char('|')), expected);
}

void tst_EntrySource::directoryOfRecordings()
{
    const qint64 firstMs = 1517477400250;
    QCOMPARE(recordingFileName(firstMs), QStringLiteral("HvcCon_20180201_093000_250.out"));
    QCOMPARE(recordingTime(path(recordingFileName(firstMs))).value_or(0), firstMs);
    QVERIFY(!recordingTime(QStringLiteral("HvcCon_20180201_093000.out")));
    for (const int hours : {1, 0}) {
        const QString name = recordingFileName(firstMs + hours * 3600000);
        QVERIFY(writeFile(path(name), "Face result count:0\n"));
        QVERIFY(writeFile(timesFileName(path(name)), "0 5\n"));
    }
    QVERIFY(writeFile(path(QStringLiteral("HvcCon_20180201.out")), "Face result count:0\n"));
    QCOMPARE(readAll({m_directory->path()}),
        QStringList({QStringLiteral("HvcCon_20180201_093000_250.out:1 1 Face result count:0|"),
            QStringLiteral("HvcCon_20180201_103000_250.out:1 1 Face result count:0|")}));
}

void tst_EntrySource::severalPaths()
{
    QVERIFY(writeFile(path(QStringLiteral("b")), determined(1)));
    QVERIFY(writeFile(path(QStringLiteral("a")), "Face result count:0\n"));
    QVERIFY(writeFile(path(QStringLiteral("KrHvcP2Log_20180201.txt")), determined(3)));
    QCOMPARE(readAll({path(QStringLiteral("b")), m_directory->path(), path(QStringLiteral("a"))}),
        QStringList({QStringLiteral("b:1 2 #1"), QStringLiteral("KrHvcP2Log_20180201.txt:1 2 #3"),
            QStringLiteral("a:1 1 Face result count:0|")}));
    QCOMPARE(readAll(QStringList()), QStringList());
}

void tst_EntrySource::refused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");

    QTest::newRow("a directory without logs")
        << "."
        << "holds neither log files of the plug-in nor recordings";
    QTest::newRow("nothing") << "none"
                             << "no such file";
    QTest::newRow("nothing in a directory that does not exist") << "none/x"
                                                                << "no such file";
#ifdef Q_OS_UNIX
    QTest::newRow("a device") << "/dev/zero"
                              << "is not a file";
#endif
}

void tst_EntrySource::refused()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);

    QVERIFY(writeFile(path(QStringLiteral("good")), determined(1)));
    const QString file = QDir(m_directory->path()).filePath(name);
    QCOMPARE(readAll({path(QStringLiteral("good")), file}),
        QStringList({QStringLiteral("error: %1: %2").arg(file, reason)}));
}

/// The plug-in deletes its oldest file every day.
void tst_EntrySource::fileThatIsGone()
{
    QVERIFY(writeFile(path(QStringLiteral("KrHvcP2Log_20180131.txt")), determined(1)));
    QVERIFY(writeFile(path(QStringLiteral("KrHvcP2Log_20180201.txt")), determined(2)));
    QString error;
    const auto source = EntrySource::open({m_directory->path()}, &error);
    QVERIFY(source);
    QVERIFY(QFile::remove(path(QStringLiteral("KrHvcP2Log_20180131.txt"))));
    QCOMPARE(readAll(source.get()),
        QStringList({QStringLiteral("KrHvcP2Log_20180131.txt:1 0 no such file"),
            QStringLiteral("KrHvcP2Log_20180201.txt:1 2 #2")}));
}

void tst_EntrySource::resumed()
{
    const QString first = path(QStringLiteral("KrHvcP2Log_20180131.txt"));
    const QString second = path(QStringLiteral("KrHvcP2Log_20180201.txt"));
    const QString third = path(QStringLiteral("KrHvcP2Log_20180202.txt"));
    QVERIFY(writeFile(first, determined(1)));
    QVERIFY(writeFile(second, determined(2) + determined(3).left(60)));
    QString error;
    const auto source = EntrySource::open({m_directory->path()}, &error);
    QVERIFY(source);
    QCOMPARE(source->positions().size(), 0);
    QCOMPARE(readAll(source.get()).size(), 3);
    QCOMPARE(source->positions().size(), 2);

    QVERIFY(writeFile(second, determined(2) + determined(3) + determined(4)));
    QVERIFY(writeFile(third, determined(5)));
    const auto next = EntrySource::open({m_directory->path()}, &error);
    QVERIFY(next);
    next->resume(source->positions());
    QCOMPARE(readAll(next.get()),
        QStringList({QStringLiteral("KrHvcP2Log_20180201.txt:5 2 #3"),
            QStringLiteral("KrHvcP2Log_20180201.txt:9 2 #4"),
            QStringLiteral("KrHvcP2Log_20180202.txt:1 2 #5")}));

    QVERIFY(QFile::remove(first));
    QVERIFY(writeFile(third)); // begun anew
    QVERIFY(writeFile(second, determined(2) + determined(3) + determined(4) + restricted(4)));
    const auto last = EntrySource::open({m_directory->path()}, &error);
    QVERIFY(last);
    last->resume(next->positions());
    QCOMPARE(readAll(last.get()), QStringList({QStringLiteral("KrHvcP2Log_20180201.txt:13 3 ")}));
    QCOMPARE(last->positions().size(), 2);
    QCOMPARE(last->positions().last().offset, qint64(0));
}

/// The last block may have grown, so it comes again with its position.
void tst_EntrySource::recordingResumed()
{
    const QString file = path(QStringLiteral("r"));
    QVERIFY(writeFile(file, "@1\nx\n@2\ny\n"));
    QString error;
    const auto source = EntrySource::open({file}, &error);
    QVERIFY(source);
    QCOMPARE(readAll(source.get()).size(), 2);
    QVERIFY(writeFile(file, "@1\nx\n@2\ny\ny\n@3\nz\n"));
    const auto next = EntrySource::open({file}, &error);
    QVERIFY(next);
    next->resume(source->positions());
    QCOMPARE(readAll(next.get()),
        QStringList({QStringLiteral("r:3 1 y|y|"), QStringLiteral("r:6 1 z|")}));
}

void tst_EntrySource::bytes()
{
    const QByteArray log = determined(1);
    QVERIFY(writeFile(path(QStringLiteral("KrHvcP2Log_20180131.txt")), log));
    QVERIFY(writeFile(path(QStringLiteral("KrHvcP2Log_20180201.txt")), log + log));
    QString error;
    const auto source = EntrySource::open({m_directory->path()}, &error);
    QVERIFY(source);
    QCOMPARE(source->totalBytes(), qint64(3 * log.size()));
    QCOMPARE(source->readBytes(), qint64(0));
    QVERIFY(source->next());
    QCOMPARE(source->readBytes(), qint64(log.size() - 2)); // as far as the end line
    while (source->next()) { }
    QCOMPARE(source->readBytes(), qint64(3 * log.size()));
}

#ifdef Q_OS_UNIX

void tst_EntrySource::pipes()
{
    const QString pipe = path(QStringLiteral("KrHvcP2Log_20180131.txt"));
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QCOMPARE(readAll({pipe}), QStringList({QStringLiteral("error: %1: is not a file").arg(pipe)}));
    QVERIFY(writeFile(path(QStringLiteral("KrHvcP2Log_20180201.txt")), determined(2)));
    QCOMPARE(readAll({m_directory->path()}),
        QStringList({QStringLiteral("KrHvcP2Log_20180201.txt:1 2 #2")}));
}

void tst_EntrySource::standardInput()
{
    int pipe[2] = {-1, -1};
    QCOMPARE(::pipe(pipe), 0);
    const QByteArray log = determined(1) + determined(2);
    QCOMPARE(::write(pipe[1], log.constData(), static_cast<std::size_t>(log.size())),
        static_cast<ssize_t>(log.size()));
    ::close(pipe[1]);
    const int original = ::dup(STDIN_FILENO);
    QVERIFY(::dup2(pipe[0], STDIN_FILENO) >= 0);
    ::close(pipe[0]);
    const QStringList entries = readAll({QStringLiteral("-")});
    ::dup2(original, STDIN_FILENO);
    ::close(original);
    QCOMPARE(entries, QStringList({QStringLiteral("-:1 2 #1"), QStringLiteral("-:5 2 #2")}));
}

#endif

QTEST_GUILESS_MAIN(tst_EntrySource)

#include "tst_entrysource.moc"
