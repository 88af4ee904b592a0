#include "core/SensorIni.h"

#include <QFile>
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
    void hugeValue();
    void isReadAfresh();
    void missingFile();
    void directoryInPlaceOfFile();
    void fifoInPlaceOfFile();

private:
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
    row("a broken stored value reads as 0", "[Main]\nPort=@Variant(\\0\\0\\0\\x7f\\xff)\n", 500,
        921600, 0);
    row("rubbish", QByteArray("\x00\xff\xfe[[[=]]\n=\n==\n%zz\\\n\x01\x02", 22), 500, 921600, 3);
}

void tst_SensorIni::read()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    QFile file(m_fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
    file.close();

    QCOMPARE(describe(readSensorIni(m_fileName, Defaults)), expected);
}

void tst_SensorIni::hugeValue()
{
    QFile file(m_fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Main]\nSpeed=");
    file.write(QByteArray(4 * 1024 * 1024, 'x'));
    file.write("\nPort=5\n");
    file.close();

    QCOMPARE(describe(readSensorIni(m_fileName, Defaults)), describe({500, 0, 5}));
}

void tst_SensorIni::isReadAfresh()
{
    for (const int port : {5, 16}) {
        QFile file(m_fileName);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Main]\nPort=" + QByteArray::number(port) + '\n');
        file.close();
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

QTEST_GUILESS_MAIN(tst_SensorIni)

#include "tst_sensorini.moc"
