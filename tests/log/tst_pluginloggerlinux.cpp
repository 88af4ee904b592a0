#include "log/LogDivision.h"
#include "log/PluginLogger.h"
#include "tests/support/Files.h"
#include "tests/support/OwnNamespaces_linux.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#include <sys/mount.h>

using namespace KrTest;
using namespace PluginKrHvcP2;

namespace {

constexpr int TimeoutMs = 60000; // never reached: what waits for it has failed

const QString LogName = QStringLiteral("plugin_20180201.txt");
const QString LockName = QStringLiteral("plugin.lock");

} // namespace

/// File systems that refuse to be written to, also by somebody whom no permission stops. They are
/// mounted in a namespace of this program's own.
class tst_PluginLoggerLinux : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void readOnlyFileSystem_data();
    void readOnlyFileSystem();
    void readOnlyFile_data();
    void readOnlyFile();
    void fullFileSystem();

private:
    QString path(const QString &name) const { return m_directory->filePath(name); }
    QString log() const { return readText(path(LogName)); }
    QStringList files() const
    {
        return QDir(m_directory->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }
    bool remount(unsigned long flags) const
    {
        const QByteArray target = QFile::encodeName(m_directory->path());
        return ::mount("none", target.constData(), "tmpfs", MS_REMOUNT | flags, nullptr) == 0;
    }
    bool write(const QString &message) { return m_logger->write(message, Notice, TimeoutMs); }

    std::unique_ptr<QTemporaryDir> m_directory; // a file system of 64 KiB
    std::unique_ptr<PluginLogger> m_logger;
    QDateTime m_now; // what the logger takes for the time
};

void tst_PluginLoggerLinux::initTestCase()
{
    if (!isInOwnNamespaces())
        QSKIP("Needs a namespace of mounts of its own, which the system does not grant.");
}

void tst_PluginLoggerLinux::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
    const QByteArray target = QFile::encodeName(m_directory->path());
    if (::mount("none", target.constData(), "tmpfs", 0, "size=64k") != 0)
        QSKIP("Needs a file system of its own, which the system does not grant.");
    m_now = QDateTime(QDate(2018, 2, 1), QTime(9, 30));
    m_logger = std::make_unique<PluginLogger>([this] { return m_now; });
    LogSettings settings;
    settings.directory = m_directory->path();
    m_logger->setSettings(settings);
}

void tst_PluginLoggerLinux::cleanup()
{
    m_logger.reset();
    if (m_directory)
        ::umount2(QFile::encodeName(m_directory->path()).constData(), MNT_DETACH);
    m_directory.reset();
}

void tst_PluginLoggerLinux::readOnlyFileSystem_data()
{
    QTest::addColumn<QString>("directory");
    QTest::newRow("with the directory") << QString();
    QTest::newRow("without the directory") << QStringLiteral("a/b");
}

void tst_PluginLoggerLinux::readOnlyFileSystem()
{
    QFETCH(QString, directory);
    LogSettings settings = m_logger->settings();
    settings.directory = path(directory);
    m_logger->setSettings(settings);
    QVERIFY(remount(MS_RDONLY));
    QVERIFY(!write(QStringLiteral("a")));
    QCOMPARE(files(), QStringList());

    QVERIFY(remount(0));
    QVERIFY(write(QStringLiteral("b")));
    QCOMPARE(readText(QDir(settings.directory).filePath(LogName)),
        QStringLiteral("2018-02-01 09:30:00 Notice: b\n"));
}

void tst_PluginLoggerLinux::readOnlyFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("the day's file") << LogName;
    QTest::newRow("a stale lock file") << LockName;
}

void tst_PluginLoggerLinux::readOnlyFile()
{
    QFETCH(QString, name);
    constexpr int StaleMs = 40000;
    QVERIFY(writeFile(path(name), "before\n"));
    QFile aged(path(name));
    QVERIFY(aged.open(QIODevice::ReadWrite));
    QVERIFY(aged.setFileTime(m_now.addMSecs(-StaleMs), QFileDevice::FileModificationTime));
    aged.close();
    const QByteArray file = QFile::encodeName(path(name));
    QCOMPARE(::mount(file.constData(), file.constData(), nullptr, MS_BIND, nullptr), 0);
    QCOMPARE(
        ::mount("none", file.constData(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    QVERIFY(!write(QStringLiteral("a")));
    QCOMPARE(readFile(path(name)), QByteArray("before\n"));

    QCOMPARE(::umount(file.constData()), 0);
    QVERIFY(write(QStringLiteral("b")));
    QVERIFY(!QFile::exists(path(LockName)));
}

void tst_PluginLoggerLinux::fullFileSystem()
{
    QVERIFY(write(QStringLiteral("a")));
    const QString filler = path(QStringLiteral("filler"));
    for (QByteArray bytes(64 * 1024, 'x'); !bytes.isEmpty(); bytes.chop(4096)) {
        if (writeFile(filler, bytes))
            break;
    }
    // More than the day's file has left of its last page. What was begun of a record stays.
    QVERIFY(!write(QString(10000, QLatin1Char('b'))));
    QVERIFY(!QFile::exists(path(LockName)));
    QVERIFY(log().startsWith(QStringLiteral("2018-02-01 09:30:00 Notice: a\n")));

    QVERIFY(QFile::remove(filler));
    QVERIFY(write(QStringLiteral("c")));
    QVERIFY(log().endsWith(QStringLiteral("2018-02-01 09:30:00 Notice: c\n")));
    QCOMPARE(files(), QStringList{LogName});
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (!isInOwnNamespaces())
        runInOwnNamespaces({QStringLiteral("--mount")}, argv);
    tst_PluginLoggerLinux test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_pluginloggerlinux.moc"
