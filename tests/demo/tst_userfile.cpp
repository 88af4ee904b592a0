#include "demo/support/UserFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using namespace Demo;

class tst_UserFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void objection_data();
    void objection();
    void size_data();
    void size();

private:
    QTemporaryDir m_directory;
};

void tst_UserFile::initTestCase()
{
    QVERIFY(m_directory.isValid());
    QFile file(m_directory.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("x"), qint64(1));
#ifdef Q_OS_UNIX
    const QString pipe = m_directory.filePath(QStringLiteral("pipe"));
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
#endif
}

void tst_UserFile::objection_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isNoFile");
    QTest::addColumn<QString>("reason"); // empty: it can be read

    QTest::newRow("a file") << "file" << false << "";
    QTest::newRow("nothing") << "none" << false << "no such file";
    QTest::newRow("nothing in a directory that does not exist")
        << "none/none" << false << "no such file";
    QTest::newRow("a directory") << "." << true << "is not a file";
#ifdef Q_OS_UNIX
    QTest::newRow("a pipe that nobody writes to") << "pipe" << true << "is not a file";
    QTest::newRow("a device") << "/dev/null" << true << "is not a file";
#endif
}

void tst_UserFile::objection()
{
    QFETCH(QString, name);
    QFETCH(bool, isNoFile);
    QFETCH(QString, reason);

    const QString fileName = QDir(m_directory.path()).filePath(name);
    QCOMPARE(UserFile::isNoFile(fileName), isNoFile);
    QCOMPARE(UserFile::objection(fileName), reason);
    QString error;
    const std::optional<QByteArray> content = UserFile::read(fileName, 1, &error);
    QCOMPARE(content.has_value(), reason.isEmpty());
    if (reason.isEmpty())
        QCOMPARE(*content, QByteArray("x"));
    else
        QCOMPARE(error, QStringLiteral("%1: %2").arg(fileName, reason));
}

void tst_UserFile::size_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<QString>("reason");

    QTest::newRow("none") << 0 << "";
    QTest::newRow("all that are allowed") << 2 * 1024 * 1024 << "";
    QTest::newRow("one too many") << 2 * 1024 * 1024 + 1 << "is larger than 2 MiB";
}

void tst_UserFile::size()
{
    QFETCH(int, bytes);
    QFETCH(QString, reason);

    QFile file(m_directory.filePath(QStringLiteral("sized")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(bytes));
    file.close();
    QString error;
    const std::optional<QByteArray> content = UserFile::read(file.fileName(), 2, &error);
    QCOMPARE(content.value_or(QByteArray()).size(), reason.isEmpty() ? bytes : 0);
    QCOMPARE(error, reason.isEmpty() ? QString() : file.fileName() + QLatin1String(": ") + reason);
    QCOMPARE(UserFile::sizeObjection(bytes, 2), reason);
}

QTEST_GUILESS_MAIN(tst_UserFile)

#include "tst_userfile.moc"
