#include "sensor/SensorIni.h"
#include "tests/support/Files.h"

#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using namespace PluginKrHvcP2;

namespace {

constexpr SensorParameters Defaults{500, 921600, 3};

QString describe(const SensorParameters &parameters)
{
    return QStringLiteral("interval %1, speed %2, port %3")
        .arg(QString::number(parameters.interval), QString::number(parameters.speed),
            QString::number(parameters.port));
}

} // namespace

class tst_SensorIni : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void read_data();
    void read();
    void countsAsMissing_data();
    void countsAsMissing();
    void sayInTheTraceWhatCountsAsMissing_data();
    void sayInTheTraceWhatCountsAsMissing();
    void largestFile();
    void isReadAfresh();
    void missingFile();
    void directoryInPlaceOfFile();
    void fifoInPlaceOfFile();
    void linkThatLeadsNowhere_data();
    void linkThatLeadsNowhere();

private:
    bool write(const QByteArray &content) const { return KrTest::writeFile(m_fileName, content); }

    QString m_fileName;
    QScopedPointer<QTemporaryDir> m_directory;
};

void tst_SensorIni::init()
{
    m_directory.reset(new QTemporaryDir);
    QVERIFY(m_directory->isValid());
    m_fileName = m_directory->filePath(QStringLiteral("setting.ini"));
}

void tst_SensorIni::read_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected");

    const auto row
        = [](const char *name, const QByteArray &content, int interval, int speed, int port) {
              QTest::newRow(name) << content << describe({interval, speed, port});
          };

    row("all three keys", "[Main]\nInterval=250\nSpeed=115200\nPort=7\n", 250, 115200, 7);
    row("Windows line ends", "[Main]\r\nInterval=250\r\nSpeed=115200\r\nPort=7\r\n", 250, 115200,
        7);
    row("no line end behind the last key", "[Main]\nPort=7", 500, 921600, 7);
    row("only the port", "[Main]\nPort=5\n", 500, 921600, 5);
    row("only the speed", "[Main]\nSpeed=9600\n", 500, 9600, 3);
    row("only the interval", "[Main]\nInterval=40\n", 40, 921600, 3);
    row("blanks around the value", "[Main]\nPort = 5 \n", 500, 921600, 5);
    row("a value in quotes", "[Main]\nPort=\"5\"\n", 500, 921600, 5);
    row("comments", "; Port=1\n[Main]\n; Port=2\nPort=5\n", 500, 921600, 5);
    row("an empty file", "", 500, 921600, 3);
    row("an empty group", "[Main]\n", 500, 921600, 3);
    row("keys without a group", "Interval=1\nSpeed=2\nPort=4\n", 500, 921600, 3);
    row("keys of another group", "[Other]\nInterval=1\nSpeed=2\nPort=4\n", 500, 921600, 3);
    row("unknown keys", "[Main]\nBaud=1\nPort2=9\n", 500, 921600, 3);
    row("a speed that is not a number reads as 0", "[Main]\nSpeed=fast\n", 500, 0, 3);
    row("a port with its name reads as 0", "[Main]\nPort=COM5\n", 500, 921600, 0);
    row("an empty value reads as 0", "[Main]\nInterval=\n", 0, 921600, 3);
    row("a fraction reads as 0", "[Main]\nPort=5.5\n", 500, 921600, 0);
    row("a hexadecimal number reads as 0", "[Main]\nPort=0x10\n", 500, 921600, 0);
    row("a list reads as 0", "[Main]\nPort=1, 2\n", 500, 921600, 0);
    row("zero", "[Main]\nInterval=0\nSpeed=0\nPort=0\n", 0, 0, 0);
    row("negative numbers are not checked", "[Main]\nInterval=-1\nSpeed=-2\nPort=-3\n", -1, -2, -3);
    row("an interval above the accepted range is not checked", "[Main]\nInterval=360000\n", 360000,
        921600, 3);
    // As QVariant converts it.
    row("a number beyond 32 bits wraps", "[Main]\nSpeed=99999999999\n", 500, 1215752191, 3);
    row("a number beyond 64 bits reads as 0", "[Main]\nSpeed=99999999999999999999\n", 500, 0, 3);
    row("of a repeated key the last one wins", "[Main]\nPort=5\nPort=6\n", 500, 921600, 6);
    row("of a repeated group the last one wins", "[Main]\nPort=5\n[Main]\nPort=6\n", 500, 921600,
        6);
    row("text in UTF-8 beside the keys", "[Main]\nName=\xE6\x97\xA5\xE6\x9C\xAC\nPort=5\n", 500,
        921600, 5);
    row("digits of another script read as 0", "[Main]\nPort=\xD9\xA5\n", 500, 921600, 0);
    row("an at sign and a type in brackets", "[Main]\nMail=a@b.c\nType=Variant(1)\nPort=5\n", 500,
        921600, 5);
    row("a quoted at sign", "[Main]\nSign=\"@\"\nName=\"@Velmora\"\nPort=5\n", 500, 921600, 5);
    row("another letter case of a stored object", "[Main]\nText=@variant(1)\nPort=5\n", 500, 921600,
        5);
    row("stored numbers and texts read as 0",
        "[Main]\nInterval=@Rect(1 2 3 4)\nSpeed=@Size(99999999999 2)\nPort=@Invalid()\n", 0, 0, 0);
    row("a stored text that is a number", "[Main]\nPort=@ByteArray(5)\nSpeed=@String(96)\n", 500,
        96, 5);
    row("text in UTF-16", QByteArray("\xff\xfe[\0M\0a\0i\0n\0]\0\n\0P\0o\0r\0t\0=\0005\0\n\0", 30),
        500, 921600, 3);
    row("rubbish", QByteArray("\x00\xff\xfe[[[=]]\n=\n==\n%zz\\\n\x01\x02", 22), 500, 921600, 3);
}

void tst_SensorIni::read()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    QVERIFY(write(content));
    QCOMPARE(describe(readSensorIni(m_fileName, Defaults)), expected);
}

void tst_SensorIni::countsAsMissing_data()
{
    QTest::addColumn<QByteArray>("content");

    // 2,147,483,647 elements, which no memory holds.
    const QByteArray list = "\\0\\0\\0\\t\\x7f\\xff\\xff\\xff)\n";
    const QByteArray newerList = "\\0\\0\\0\\t\\0\\x7f\\xff\\xff\\xff)\n";
    const auto row = [](const char *name, const QByteArray &lines) {
        QTest::newRow(name) << QByteArray("[Main]\nPort=5\n" + lines);
    };
    row("a stored number", "Speed=@Variant(\\0\\0\\0\\x2\\0\\0\\0\\x5)\n");
    row("a broken stored object", "Speed=@Variant(\\0\\0\\0\\x7f\\xff)\n");
    row("a stored date", "Speed=@DateTime(\\0\\0\\0\\x10\\0)\n");
    row("a stored list", "Speed=@Variant(" + list);
    row("a stored list by the name of a date", "Speed=@DateTime(" + newerList);
    row("under another key", "Name=@Variant(" + list);
    row("in a list", "Name=1, @Variant(" + list);
    row("in another group", "[Other]\nName=@Variant(" + list);
    row("in a comment", ";@Variant(" + list);
    row("behind another text", "Name=to@Variant(" + list);
    row("behind a byte order mark", "Name=\xEF\xBB\xBF@Variant(" + list);
    row("behind a NUL", QByteArray("Name=", 6) + "\nText=@Variant(" + list);
    row("behind a NUL of its own line", QByteArray("Name=", 6) + "@Variant(" + list);
    row("in quotes", "Name=\"@Variant(\"" + list);
    row("in two pairs of quotes", "Name=\"@Vari\"\"ant(\"" + list);
    row("in quotes and outside", "Name=\"@Vari\" \t ant(" + list);
    row("a mark between the quotes", "Name=@\"\"\xEF\xBB\xBFVariant(" + list);
    row("a joined line", "Name=@Vari\\\nant(" + list);
    row("a joined line, Windows", "Name=@Vari\\\r\nant(" + list);
    row("a joined line, turned round", "Name=@Vari\\\n\rant(" + list);
    row("a joined line, old", "Name=@Vari\\\rant(" + list);
    row("an escape without meaning", "Name=@Vari\\qant(" + list);
    row("an escaped x", "Name=@\\xVariant(" + list);
    row("a hexadecimal at sign", "Name=\\x40Variant(" + list);
    row("a hexadecimal at sign in front of a digit", "Name=\\x40\"\"DateTime(" + newerList);
    row("a hexadecimal letter", "Name=@V\\x61\"\"riant(" + list);
    row("an at sign with zeros in front",
        "Name=\\x" + QByteArray(60000, '0') + "40Variant(" + list);
    row("an at sign beyond 16 bits", "Name=\\x123450040Variant(" + list);
    row("an octal at sign", "Name=\\100Variant(" + list);
    row("an octal at sign beyond 16 bits", "Name=\\200100Variant(" + list);
    row("one byte too large", QByteArray(64 * 1024 - 14, ';') + '\n');
    row("4 MiB", "Name=" + QByteArray(4 * 1024 * 1024, 'x'));
    row("200,000 nested lists",
        "Name=@Variant(" + QByteArray("\\0\\0\\0\\t\\0\\0\\0\\x1").repeated(200000) + ")\n");
}

void tst_SensorIni::countsAsMissing()
{
    QFETCH(QByteArray, content);
    QVERIFY(write(content));
    QCOMPARE(describe(readSensorIni(m_fileName, Defaults)), describe(Defaults));
}

void tst_SensorIni::sayInTheTraceWhatCountsAsMissing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected"); // behind the name of the file

    QTest::newRow("a stored object")
        << QByteArray("[Main]\nPort=@Variant(\\0\\0\\0\\x2\\0\\0\\0\\x5)\n")
        << QStringLiteral(" counts as missing: it holds \"@Variant(\" or \"@DateTime(\"");
    QTest::newRow("too large") << QByteArray(
        64 * 1024 + 1, '\n') << QStringLiteral(" counts as missing: it is larger than 65536 bytes");
}

void tst_SensorIni::sayInTheTraceWhatCountsAsMissing()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    QVERIFY(write(content));
    QLoggingCategory::setFilterRules(QStringLiteral("krhvcp2.sensor.debug=true"));
    QTest::ignoreMessage(QtDebugMsg, qPrintable(m_fileName + expected));
    readSensorIni(m_fileName, Defaults);
    QLoggingCategory::setFilterRules(QString());
}

void tst_SensorIni::largestFile()
{
    const QByteArray values = "[Main]\nPort=5\nSpeed=";
    QVERIFY(write(values + QByteArray(64 * 1024 - values.size(), 'x')));
    QCOMPARE(describe(readSensorIni(m_fileName, Defaults)), describe({500, 0, 5}));
}

void tst_SensorIni::isReadAfresh()
{
    for (const int port : {5, 16}) {
        QVERIFY(write("[Main]\nPort=" + QByteArray::number(port) + '\n'));
        QCOMPARE(describe(readSensorIni(m_fileName, Defaults)), describe({500, 921600, port}));
    }
}

void tst_SensorIni::missingFile()
{
    QCOMPARE(describe(readSensorIni(m_fileName, Defaults)), describe(Defaults));
    QVERIFY(!QFile::exists(m_fileName));
    QCOMPARE(describe(readSensorIni(QString(), Defaults)), describe(Defaults));
}

void tst_SensorIni::directoryInPlaceOfFile()
{
    QVERIFY(QDir().mkdir(m_fileName));
    QCOMPARE(describe(readSensorIni(m_fileName, Defaults)), describe(Defaults));
}

void tst_SensorIni::fifoInPlaceOfFile()
{
#ifdef Q_OS_UNIX
    QCOMPARE(mkfifo(QFile::encodeName(m_fileName).constData(), 0600), 0);
    // Would hang here if the FIFO was opened.
    QCOMPARE(describe(readSensorIni(m_fileName, Defaults)), describe(Defaults));
#else
    QSKIP("there are no FIFOs in this file system");
#endif
}

void tst_SensorIni::linkThatLeadsNowhere_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("to itself") << QStringLiteral("setting.ini");
    QTest::newRow("to nothing") << QStringLiteral("missing.ini");
    QTest::newRow("to a device without an end") << QStringLiteral("/dev/zero");
}

void tst_SensorIni::linkThatLeadsNowhere()
{
    QFETCH(QString, target);
#ifdef Q_OS_UNIX
    QVERIFY(QFile::link(target, m_fileName));
    QCOMPARE(describe(readSensorIni(m_fileName, Defaults)), describe(Defaults));
#else
    QSKIP("links are shortcuts in this file system");
#endif
}

QTEST_GUILESS_MAIN(tst_SensorIni)

#include "tst_sensorini.moc"
