#include "demo/support/SharedFile.h"
#include "tests/support/Files.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace Demo;
using KrTest::readFile;
using KrTest::writeFile;

class tst_SharedFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void rename();
    void renameFails();
    void openFile();
    void openFails();
    void writtenWhileItIsRead();
    void removedWhileItIsRead();

private:
    QString path(const char *name) const { return m_directory.filePath(QLatin1String(name)); }

    QTemporaryDir m_directory;
};

void tst_SharedFile::initTestCase()
{
    QVERIFY(m_directory.isValid());
}

void tst_SharedFile::rename()
{
    const QString umlaut = m_directory.filePath(QStringLiteral("\u00e4 b"));
    QString error;
    QVERIFY(writeFile(path("from"), "1"));
    QVERIFY(renameOver(path("from"), umlaut, &error));
    QCOMPARE(readFile(umlaut), QByteArray("1"));
    QVERIFY(writeFile(path("from"), "2"));
    QVERIFY(renameOver(path("from"), umlaut, &error));
    QCOMPARE(readFile(umlaut), QByteArray("2"));
    QVERIFY(!QFile::exists(path("from")));
    QCOMPARE(error, QString());
}

void tst_SharedFile::renameFails()
{
    QString error;
    QVERIFY(writeFile(path("to"), "3"));
    QVERIFY(!renameOver(path("none"), path("to"), &error));
    QVERIFY(!error.isEmpty());
    QCOMPARE(readFile(path("to")), QByteArray("3"));
}

void tst_SharedFile::openFile()
{
    const QByteArray bytes("a\r\nb\n\x1a\0c", 8);
    QVERIFY(writeFile(path("file"), bytes));
    QFile file(path("file"));
    QString error;
    QVERIFY(openShared(file, &error));
    QCOMPARE(file.size(), qint64(bytes.size()));
    QCOMPARE(file.readAll(), bytes);
    QVERIFY(!file.isWritable());
}

void tst_SharedFile::openFails()
{
    QFile file(path("none"));
    QString error;
    QVERIFY(!openShared(file, &error));
    QVERIFY(!error.isEmpty());
    QVERIFY(!file.isOpen());
}

void tst_SharedFile::writtenWhileItIsRead()
{
    QVERIFY(writeFile(path("file"), "old"));
    QFile file(path("file"));
    QString error;
    QVERIFY(openShared(file, &error));
    QVERIFY(writeFile(path("file"), "new"));
    QCOMPARE(file.readAll(), QByteArray("new"));
}

/// Without a shared open Windows would refuse both.
void tst_SharedFile::removedWhileItIsRead()
{
    QVERIFY(writeFile(path("file"), "old"));
    QFile file(path("file"));
    QString error;
    QVERIFY(openShared(file, &error));
    QVERIFY(QFile::rename(path("file"), path("elsewhere")));
    QVERIFY(QFile::remove(path("elsewhere")));
    QCOMPARE(file.readAll(), QByteArray("old"));
}

QTEST_GUILESS_MAIN(tst_SharedFile)
#include "tst_sharedfile.moc"
