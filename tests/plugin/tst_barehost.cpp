#include "tests/support/Files.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// Hosts that are no signage application, and hosts that leave everything to the end of the
/// process.
class tst_BareHost : public QObject
{
    Q_OBJECT

private slots:
    void endsInPeace_data();
    void endsInPeace();
    void reportWithoutFonts();

private:
    static QByteArray run(const QString &directory, const QString &arguments);
};

/// What the host prints; its exit code when it fails.
QByteArray tst_BareHost::run(const QString &directory, const QString &arguments)
{
    // Under Wine a path without a drive would lead elsewhere from another directory.
    const QString plugin = QFileInfo(QStringLiteral(KRHVC_PLUGIN_FILE)).absoluteFilePath();
    QProcess host;
    host.setWorkingDirectory(directory);
    host.start(QStringLiteral(KRHVC_BARE_HOST_FILE),
        QStringList{plugin} + arguments.split(QLatin1Char(' ')));
    if (!host.waitForFinished(60000))
        return QByteArrayLiteral("no end");
    if (host.exitStatus() != QProcess::NormalExit)
        return "crash: " + host.readAllStandardError();
    if (host.exitCode() != 0)
        return "exit code " + QByteArray::number(host.exitCode());
    return host.readAllStandardOutput().trimmed();
}

void tst_BareHost::endsInPeace_data()
{
    QTest::addColumn<QString>("arguments");

    QTest::newRow("no application, plug-in kept") << QStringLiteral("none ask");
    QTest::newRow("no application, plug-in deleted") << QStringLiteral("none ask delete");
    QTest::newRow("an application without GUI, plug-in kept") << QStringLiteral("core ask");
    QTest::newRow("an application without GUI, plug-in deleted")
        << QStringLiteral("core ask delete");
    QTest::newRow("plug-in kept") << QStringLiteral("gui ask");
    QTest::newRow("panel kept") << QStringLiteral("gui ask panel");
    QTest::newRow("panel with messages kept") << QStringLiteral("gui ask panel init text");
    QTest::newRow("dialogs kept") << QStringLiteral("gui ask dialogs");
    QTest::newRow("panel and dialogs kept") << QStringLiteral("gui ask init text dialogs");
    QTest::newRow("panel and dialogs deleted")
        << QStringLiteral("gui ask init text dialogs delete");
}

void tst_BareHost::endsInPeace()
{
    QFETCH(QString, arguments);

    const QTemporaryDir directory;
    QVERIFY(directory.isValid());
    QCOMPARE(run(directory.path(), arguments), QByteArrayLiteral("KrHvcP2"));
}

void tst_BareHost::reportWithoutFonts()
{
    // The log has the plain text of what came, although nothing can be laid out.
    const QTemporaryDir directory;
    QVERIFY(directory.isValid());
    QCOMPARE(run(directory.path(), QStringLiteral("core ask text")), QByteArrayLiteral("KrHvcP2"));
    const QStringList files = QDir(directory.path()).entryList(QDir::Files);
    QCOMPARE(files.size(), 1);
    const QString text = KrTest::readText(directory.filePath(files.first()));
    QVERIFY2(text.contains(QStringLiteral("Failed to do \uFFFCit")), qPrintable(text));
}

QTEST_GUILESS_MAIN(tst_BareHost)

#include "tst_barehost.moc"
