#include "log/LogFormat.h"
#include "tests/support/Files.h"
#include "tools/hvcp2/ExportState.h"
#include "tools/hvcp2/Program.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Hvcp2;
using namespace KrTest;
using namespace PluginKrHvcP2;

namespace {

struct Result
{
    ExitStatus status = Fine;
    QString output;
    QString error;

    QStringList ids() const
    {
        QStringList ids;
        const QStringList lines = output.split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            if (!line.isEmpty())
                ids << QJsonDocument::fromJson(line.toUtf8())
                           .object()[QStringLiteral("id")]
                           .toString();
        }
        return ids;
    }
};

Result runExport(const QStringList &arguments)
{
    Result result;
    QTextStream out(&result.output);
    QTextStream errors(&result.error);
    Console console{out, errors, Paint()};
    result.status = runProgram(
        QStringList(QStringLiteral("export")) + arguments, QStringLiteral("1.2.3"), console);
    out.flush();
    errors.flush();
    return result;
}

QByteArray record(int number)
{
    const QDateTime time(QDate(2018, 2, 1), QTime(9, 30));
    return LogFormat::record(1, time, QStringLiteral("Information"),
        QStringLiteral("The determined sequence number: #%1").arg(number))
        .toUtf8();
}

} // namespace

class tst_Hvcp2Export : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void eachThingOnce();
    void times_data();
    void times();
    void decided();
    void unknownScreen();
    void since();
    void sinceWithRecordings();
    void cleanedUp();
    void shorterFile();
    void otherFolder();
    void interruptedWriting();
    void badStates_data();
    void badStates();
    void refused_data();
    void refused();

private:
    QString path(const char *name) const { return m_directory->filePath(QLatin1String(name)); }
    void append(const char *name, const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_golden;
};

void tst_Hvcp2Export::init()
{
    if (m_golden.isEmpty())
        m_golden = QFileInfo(QFINDTESTDATA("golden")).absoluteFilePath();
    QVERIFY(!m_golden.isEmpty());
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(m_directory->path()));
    QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("log")));
}

void tst_Hvcp2Export::cleanup()
{
    QVERIFY(QDir::setCurrent(QDir::rootPath())); // else Windows keeps the folder
}

void tst_Hvcp2Export::append(const char *name, const QByteArray &bytes) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Append));
    QCOMPARE(file.write(bytes), qint64{bytes.size()});
}

/// Every kind of line, and that ids are of one thing each.
void tst_Hvcp2Export::eachThingOnce()
{
    const Result result = runExport({m_golden + QLatin1String("/visitors.log.txt"),
        QStringLiteral("--screen"), QStringLiteral("3")});
    QCOMPARE(result.status, FoundSomething); // the line that is not of the plug-in
    QMap<QString, int> types;
    QSet<QString> ids;
    QSet<QString> frames;
    const QStringList lines = result.output.trimmed().split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QJsonObject object = QJsonDocument::fromJson(line.toUtf8()).object();
        const QString id = object[QStringLiteral("id")].toString();
        const QString type = object[QStringLiteral("type")].toString();
        QVERIFY2(id.startsWith(QStringLiteral("3/visitors.log.txt/")), qPrintable(id));
        QVERIFY2(!ids.contains(id), qPrintable(id));
        ids << id;
        ++types[type];
        if (type == QLatin1String("frame"))
            frames << id;
        if (type == QLatin1String("face"))
            QVERIFY(frames.contains(object[QStringLiteral("frame")].toString()));
        QCOMPARE(object[QStringLiteral("screen")].toInt(), 3);
    }
    QMap<QString, int> expected;
    expected[QStringLiteral("frame")] = 9;
    expected[QStringLiteral("face")] = 11;
    expected[QStringLiteral("determined")] = 5;
    expected[QStringLiteral("restricted")] = 1;
    expected[QStringLiteral("sensorError")] = 3;
    expected[QStringLiteral("error")] = 1;
    expected[QStringLiteral("started")] = 3;
    expected[QStringLiteral("stopped")] = 1;
    QCOMPARE(types, expected);
}

void tst_Hvcp2Export::times_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("digits"); // of the seconds' fraction

    QTest::newRow("a log has whole seconds") << "visitors.log.txt" << 0;
    QTest::newRow("a recording has milliseconds") << "visitors.out" << 3;
}

void tst_Hvcp2Export::times()
{
    QFETCH(QString, file);
    QFETCH(int, digits);

    const QStringList lines
        = runExport({m_golden + QLatin1Char('/') + file}).output.trimmed().split(QLatin1Char('\n'));
    QVERIFY(lines.size() > 1);
    for (const QString &line : lines) {
        const QString time = QJsonDocument::fromJson(line.toUtf8())
                                 .object()
                                 .value(QStringLiteral("time"))
                                 .toString();
        QVERIFY2(QDateTime::fromString(time, Qt::ISODateWithMs).isValid(), qPrintable(time));
        const int point = time.indexOf(QLatin1Char('.'));
        int count = 0;
        while (point >= 0 && time.at(point + 1 + count).isDigit())
            ++count;
        QCOMPARE(count, digits);
    }
}

void tst_Hvcp2Export::decided()
{
    const QString frames = m_golden + QLatin1String("/visitors.out");
    QVERIFY(!runExport({frames}).output.contains(QLatin1String("determined")));
    const Result result
        = runExport({frames, QStringLiteral("--stage"), m_golden + QLatin1String("/door.json")});
    QCOMPARE(result.error, QString());
    QCOMPARE(result.status, Fine);
    QCOMPARE(result.output.count(QLatin1String("\"type\":\"determined\"")), 4);
    QCOMPARE(result.output.count(QLatin1String("\"type\":\"restricted\"")), 1);
    QVERIFY(result.ids().contains(QStringLiteral("3/visitors.out/0/determined")));
    const QStringList ids = result.ids();
    QCOMPARE(QSet<QString>(ids.cbegin(), ids.cend()).size(), ids.size());
    const QJsonObject face
        = QJsonDocument::fromJson(result.output.split(QLatin1Char('\n')).at(1).toUtf8()).object();
    QCOMPARE(face,
        QJsonObject({{QStringLiteral("id"), QStringLiteral("3/visitors.out/0/face/0")},
            {QStringLiteral("type"), QStringLiteral("face")},
            {QStringLiteral("frame"), QStringLiteral("3/visitors.out/0")},
            {QStringLiteral("screen"), 3}, {QStringLiteral("file"), QStringLiteral("visitors.out")},
            {QStringLiteral("line"), 1}, {QStringLiteral("offset"), 0},
            {QStringLiteral("time"), QStringLiteral("2018-02-01T09:30:00.000Z")},
            {QStringLiteral("index"), 0}, {QStringLiteral("x"), 760}, {QStringLiteral("y"), 600},
            {QStringLiteral("size"), 280}, {QStringLiteral("confidence"), 800},
            {QStringLiteral("leftRight"), 5}, {QStringLiteral("upDown"), -3},
            {QStringLiteral("roll"), 1}, {QStringLiteral("directionConfidence"), 700},
            {QStringLiteral("age"), 34}, {QStringLiteral("ageConfidence"), 500},
            {QStringLiteral("ageMarked"), false},
            {QStringLiteral("gender"), QStringLiteral("female")},
            {QStringLiteral("genderConfidence"), 900}, {QStringLiteral("genderMarked"), false}}));
}

void tst_Hvcp2Export::unknownScreen()
{
    append("f.txt", record(5));
    const Result result = runExport({path("f.txt")});
    QCOMPARE(result.ids(), QStringList(QStringLiteral("-/f.txt/0")));
    QVERIFY(result.output.contains(QLatin1String("\"screen\":null")));
}

/// Records that are appended, and a new day, come once; a record that is half written when it is
/// whole.
void tst_Hvcp2Export::since()
{
    const QStringList arguments{
        path("log"), QStringLiteral("--since"), path("state"), QStringLiteral("--screen=1")};
    const QByteArray two = record(1) + record(2);
    append("log/KrHvcP2Log_20180201.txt", two + record(3).left(50));
    const QString first = QStringLiteral("1/KrHvcP2Log_20180201.txt/");
    const Result begin = runExport(arguments);
    QCOMPARE(begin.ids(),
        QStringList({first + QLatin1Char('0'), first + QString::number(record(1).size())}));

    append("log/KrHvcP2Log_20180201.txt", record(3).mid(50));
    append("log/KrHvcP2Log_20180202.txt", record(4));
    QCOMPARE(runExport(arguments).ids(),
        QStringList(
            {first + QString::number(two.size()), QStringLiteral("1/KrHvcP2Log_20180202.txt/0")}));

    const Result nothing = runExport(arguments);
    QCOMPARE(nothing.output, QString());
    QCOMPARE(nothing.status, Fine);
}

/// The last frame may have grown, and comes again as the same thing.
void tst_Hvcp2Export::sinceWithRecordings()
{
    const QStringList arguments{path("r"), QStringLiteral("--since"), path("state")};
    const QByteArray frame("Face result count:0\n");
    append("r", "@1\n" + frame + "@2\n" + frame);
    QCOMPARE(runExport(arguments).ids(),
        QStringList({QStringLiteral("-/r/0"), QStringLiteral("-/r/23")}));
    append("r", "@3\n" + frame);
    QCOMPARE(runExport(arguments).ids(),
        QStringList({QStringLiteral("-/r/23"), QStringLiteral("-/r/46")}));
}

void tst_Hvcp2Export::cleanedUp()
{
    const QStringList arguments{path("log"), QStringLiteral("--since"), path("state")};
    append("log/KrHvcP2Log_20180201.txt", record(1));
    append("log/KrHvcP2Log_20180202.txt", record(2));
    QCOMPARE(runExport(arguments).ids().size(), 2);
    QVERIFY(QFile::remove(path("log/KrHvcP2Log_20180201.txt")));
    append("log/KrHvcP2Log_20180203.txt", record(3));
    QCOMPARE(
        runExport(arguments).ids(), QStringList(QStringLiteral("-/KrHvcP2Log_20180203.txt/0")));
    QVERIFY(!readText(path("state")).contains(QLatin1String("20180201")));
}

void tst_Hvcp2Export::shorterFile()
{
    const QStringList arguments{path("f"), QStringLiteral("--since"), path("state")};
    append("f", record(1) + record(2));
    QCOMPARE(runExport(arguments).ids().size(), 2);
    QVERIFY(writeFile(path("f"), record(3)));
    QCOMPARE(runExport(arguments).ids(), QStringList(QStringLiteral("-/f/0")));
}

/// The same files by another name.
void tst_Hvcp2Export::otherFolder()
{
    append("log/KrHvcP2Log_20180201.txt", record(1));
    QCOMPARE(
        runExport({QStringLiteral("log"), QStringLiteral("--since"), path("state")}).ids().size(),
        1);
    QVERIFY(QDir::setCurrent(path("log")));
    QCOMPARE(runExport({QStringLiteral("."), QStringLiteral("--since"), path("state")}).output,
        QString());
}

/// What could not be written comes again.
void tst_Hvcp2Export::interruptedWriting()
{
    append("f", record(1));
    QFile closed(path("output"));
    QVERIFY(writeFile(path("output")));
    QVERIFY(closed.open(QIODevice::ReadOnly)); // so that writing fails
    QTextStream out(&closed);
    QString error;
    QTextStream errors(&error);
    Console console{out, errors, Paint()};
    runProgram({QStringLiteral("export"), path("f"), QStringLiteral("--since"), path("state")},
        QStringLiteral("1.2.3"), console);
    QVERIFY(!QFile::exists(path("state")));
    QCOMPARE(runExport({path("f"), QStringLiteral("--since"), path("state")}).ids().size(), 1);
}

void tst_Hvcp2Export::badStates_data()
{
    QTest::addColumn<QByteArray>("state");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("{");
    QTest::newRow("another document") << QByteArray("{\"totals\": 1}");
    QTest::newRow("a negative place")
        << QByteArray(R"({"files": [{"file": "/f", "line": 1, "offset": -1}]})");
    QTest::newRow("no line") << QByteArray(R"({"files": [{"file": "/f", "offset": 1}]})");
    QTest::newRow("no file") << QByteArray(R"({"files": [{"line": 1, "offset": 1}]})");
}

/// Nothing is printed, and the file stays as it is.
void tst_Hvcp2Export::badStates()
{
    QFETCH(QByteArray, state);

    append("f", record(1));
    QVERIFY(writeFile(path("state"), state));
    const Result result = runExport({path("f"), QStringLiteral("--since"), path("state")});
    QCOMPARE(result.error,
        QStringLiteral("hvcp2 export: %1: is no state of an export\n").arg(path("state")));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, BadUse);
    QCOMPARE(readFile(path("state")), state);
}

void tst_Hvcp2Export::refused_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("error");

    QTest::newRow("no frames") << "--screen 1"
                               << "FRAMES are needed: a log directory, files or -.";
    QTest::newRow("a screen that is no number") << "f --screen one"
                                                << "--screen: \"one\" is no whole number";
    QTest::newRow("standard input") << "- --since state"
                                    << "--since: standard input begins anew";
    QTest::newRow("a state that is a folder") << "f --since log"
                                              << "log: is not a file";
}

void tst_Hvcp2Export::refused()
{
    QFETCH(QString, arguments);
    QFETCH(QString, error);

    append("f", record(1));
    const Result result = runExport(arguments.split(QLatin1Char(' ')));
    QCOMPARE(result.error, QStringLiteral("hvcp2 export: %1\n").arg(error));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, BadUse);
}

QTEST_GUILESS_MAIN(tst_Hvcp2Export)

#include "tst_hvcp2export.moc"
