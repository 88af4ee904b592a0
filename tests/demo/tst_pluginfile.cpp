#include "demo/support/PluginFile.h"

#include "host/KrPluginExtScreenInterface.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using Demo::ExecutableFormat;
using Demo::PluginFile;
using KrTest::readFile;
using KrTest::writeFile;

class tst_PluginFile : public QObject
{
    Q_OBJECT

private slots:
    void interfaceOfTheHost();
    void loads();
    void refused_data();
    void refused();
    void unreadable();

private:
    QTemporaryDir m_directory;
};

namespace {

// Before what moc has put into a plug-in: a version of the form, and Qt's version in two bytes.
const QByteArray Mark = QByteArrayLiteral("QTMETADATA !");

/// The fake plug-in with @p after in place of @p before, which are of one length.
QByteArray changedPlugin(const QByteArray &before, const QByteArray &after)
{
    return readFile(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)).replace(before, after);
}

/// Likewise as made with Qt @p major . @p minor.
QByteArray pluginOfQt(int major, int minor)
{
    QByteArray plugin = readFile(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE));
    const int start = plugin.indexOf(Mark) + Mark.size();
    plugin[start + 1] = static_cast<char>(major);
    plugin[start + 2] = static_cast<char>(minor);
    return plugin;
}

QByteArray otherMachine()
{
    QByteArray header(256, '\0');
    if (ExecutableFormat::ofThisProgram().system == ExecutableFormat::Windows) {
        header.replace(0, 4,
            "\x7f"
            "ELF");
        header[18] = 62;
    } else {
        header.replace(0, 2, "MZ");
        header[60] = '\x80';
        header.replace(128, 2, "PE");
        header[132] = '\x64';
        header[133] = '\x86';
    }
    return header;
}

} // namespace

void tst_PluginFile::interfaceOfTheHost()
{
    QCOMPARE(PluginFile::InterfaceId, qobject_interface_iid<Kora::KrPluginExtScreenInterface *>());
}

void tst_PluginFile::loads()
{
    const PluginFile plugin = PluginFile::examine(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE));
    QCOMPARE(plugin.message, QString());
    QCOMPARE(plugin.problem, PluginFile::None);
    QCOMPARE(plugin.reason(), QString());
    QCOMPARE(plugin.advice(), QString());
    QCOMPARE(plugin.interfaceId, QLatin1String(PluginFile::InterfaceId));
    QCOMPARE(plugin.qtVersion,
        QStringLiteral("%1.%2").arg(
            QString::number(QT_VERSION_MAJOR), QString::number(QT_VERSION_MINOR)));
    QCOMPARE(
        plugin.metaData.value(QStringLiteral("Name")).toString(), QStringLiteral("FakePlugin"));
    QCOMPARE(plugin.format.toText(), ExecutableFormat::ofThisProgram().toText());
    QVERIFY(QFileInfo(plugin.fileName).isAbsolute());
}

void tst_PluginFile::refused_data()
{
    QTest::addColumn<QByteArray>("content"); // null: no file
    QTest::addColumn<int>("problem");
    QTest::addColumn<QString>("reason"); // its beginning
    QTest::addColumn<bool>("hasMetaData");

    const auto row = [](const char *name, const QByteArray &content, PluginFile::Problem problem,
                         const QString &reason, bool hasMetaData) {
        QTest::newRow(name) << content << int(problem) << reason << hasMetaData;
    };
    const QByteArray plugin = readFile(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE));
    const int mark = plugin.indexOf(Mark);
    QVERIFY(mark > 0);
    row("nothing", QByteArray(), PluginFile::Missing, QStringLiteral("is not there"), false);
    row("text", "text", PluginFile::NoLibrary, QStringLiteral("is no library"), false);
    row("a script", "#!/bin/sh\n", PluginFile::NoLibrary, QStringLiteral("is no library"), false);
    row("a library for another system", otherMachine(), PluginFile::OtherMachine,
        ExecutableFormat::ofThisProgram().system == ExecutableFormat::Windows
            ? QStringLiteral("is a Linux program for x86_64, and this is a Windows program")
            : QStringLiteral("is a Windows program for x86_64, and this is a Linux program"),
        false);
    row("a library without metadata", changedPlugin(Mark, "QTMETADATA ?"), PluginFile::NoPlugin,
        QStringLiteral("holds no plug-in of Qt"), false);
    row("another version of the interface",
        changedPlugin("ExtScreenInterface/1.0\x03", "ExtScreenInterface/2.0\x03"),
        PluginFile::OtherInterface,
        QStringLiteral("is a plug-in for something else: "
                       "com.velmora.kora.plugin.ExtScreenInterface/2.0"),
        true);
    row("a newer Qt", pluginOfQt(QT_VERSION_MAJOR, 99), PluginFile::OtherQt,
        QStringLiteral("was made with Qt %1.99, and this is Qt " QT_VERSION_STR)
            .arg(QT_VERSION_MAJOR),
        true);
    row("a Qt of another major version", pluginOfQt(4, 8), PluginFile::OtherQt,
        QStringLiteral("was made with Qt 4.8, and this is Qt "), true);
}

void tst_PluginFile::refused()
{
    QFETCH(QByteArray, content);
    QFETCH(int, problem);
    QFETCH(QString, reason);
    QFETCH(bool, hasMetaData);

    const QString suffix = QFileInfo(QStringLiteral(KRHVC_FAKE_PLUGIN_FILE)).suffix();
    const QString fileName = m_directory.filePath(
        QStringLiteral("%1.%2").arg(QString::fromLatin1(QTest::currentDataTag()), suffix));
    if (!content.isNull())
        QVERIFY(writeFile(fileName, content));
    const PluginFile plugin = PluginFile::examine(fileName);
    QCOMPARE(int(plugin.problem), problem);
    QCOMPARE(plugin.reason().left(reason.size()), reason);
    QVERIFY(!plugin.advice().isEmpty());
    QCOMPARE(plugin.message.isEmpty(), content.isNull());
    QCOMPARE(!plugin.metaData.isEmpty(), hasMetaData);
}

void tst_PluginFile::unreadable()
{
    const PluginFile directory = PluginFile::examine(m_directory.path());
    QCOMPARE(directory.problem, PluginFile::NoFile);
    QCOMPARE(directory.reason(), QStringLiteral("is not a file"));

    const PluginFile other = PluginFile::examine(QStringLiteral(KRHVC_PLAIN_PLUGIN_FILE));
    QCOMPARE(other.problem, PluginFile::OtherInterface);
    QCOMPARE(
        other.reason(), QStringLiteral("is a plug-in for something else: com.example.plain/1.0"));
}

QTEST_GUILESS_MAIN(tst_PluginFile)

#include "tst_pluginfile.moc"
