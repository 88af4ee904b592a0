#include "OwnerMetadata.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <QTest>

#ifdef Q_OS_WIN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

class tst_Metadata : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void loaderKeys_data();
    void loaderKeys();
    void block_data();
    void block();
    void nothingElseInTheBlock();
    void entryPoints_data();
    void entryPoints();
#ifdef Q_OS_WIN
    void versionResource_data();
    void versionResource();
#endif

private:
    QPluginLoader m_loader{QStringLiteral(KRHVC_PLUGIN_FILE)};
};

void tst_Metadata::init()
{
    QVERIFY2(!m_loader.isLoaded(), "the metadata must be there before the library is loaded");
}

void tst_Metadata::cleanup()
{
    QVERIFY(!m_loader.isLoaded());
}

void tst_Metadata::loaderKeys_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("expected");

#ifdef QT_NO_DEBUG
    constexpr bool DebugBuild = false;
#else
    constexpr bool DebugBuild = true;
#endif
    QTest::newRow("interface identifier") << QStringLiteral(
        "IID") << QJsonValue(QStringLiteral("com.velmora.kora.plugin.ExtScreenInterface/1.0"));
    QTest::newRow("class name without its namespace")
        << QStringLiteral("className") << QJsonValue(QStringLiteral("KrHvcP2"));
    QTest::newRow("debug flag of this build") << QStringLiteral("debug") << QJsonValue(DebugBuild);
    QTest::newRow("Qt version of this build, major and minor")
        << QStringLiteral("version") << QJsonValue(QT_VERSION & 0xffff00);
}

void tst_Metadata::loaderKeys()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, expected);
    QCOMPARE(m_loader.metaData().value(key), expected);
}

void tst_Metadata::block_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("expected");

    const auto text = [](const char *utf8) { return QJsonValue(QString::fromUtf8(utf8)); };
    QTest::newRow("name") << QStringLiteral("Name") << text("KrHvcP2");
    QTest::newRow("version is not that of the project")
        << QStringLiteral("Version") << text("1.0.0");
    QTest::newRow("compatible version") << QStringLiteral("CompatVersion") << text("1.0.0");
    QTest::newRow("vendor is the owner's value") << QStringLiteral("Vendor") << text(KRHVC_VENDOR);
    QTest::newRow("copyright is the owner's value")
        << QStringLiteral("Copyright") << text(KRHVC_COPYRIGHT);
    QTest::newRow("licence is the owner's two lines")
        << QStringLiteral("License")
        << QJsonValue(QJsonArray{text(KRHVC_LICENSE_LINE_1), text(KRHVC_LICENSE_LINE_2)});
    QTest::newRow("category") << QStringLiteral("Category") << text("Kora");
    QTest::newRow("description has three lines and the model number twice")
        << QStringLiteral("Description")
        << QJsonValue(QJsonArray{
               text("This plug-in is intended to use \"OMRON(R) Human Vision Conponents\""
                    " on Parvista."),
               text("To use PC, one of the following equipment must be installed."),
               text("B5T-007001-010, B5T-007001-010"),
           });
    QTest::newRow("URL is the owner's value") << QStringLiteral("Url") << text(KRHVC_URL);
}

void tst_Metadata::block()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, expected);
    const QJsonObject block = m_loader.metaData().value(QStringLiteral("MetaData")).toObject();
    QCOMPARE(block.value(key), expected);
}

void tst_Metadata::nothingElseInTheBlock()
{
    const QJsonObject block = m_loader.metaData().value(QStringLiteral("MetaData")).toObject();
    QStringList expected{
        QStringLiteral("Name"),
        QStringLiteral("Version"),
        QStringLiteral("CompatVersion"),
        QStringLiteral("Vendor"),
        QStringLiteral("Copyright"),
        QStringLiteral("License"),
        QStringLiteral("Category"),
        QStringLiteral("Description"),
        QStringLiteral("Url"),
    };
    expected.sort(); // as QJsonObject gives its keys
    QCOMPARE(block.keys(), expected);
}

void tst_Metadata::entryPoints_data()
{
    QTest::addColumn<QByteArray>("symbol");
    QTest::addColumn<bool>("exported");

    QTest::newRow("instance") << QByteArrayLiteral("qt_plugin_instance") << true;
    QTest::newRow("metadata") << QByteArrayLiteral("qt_plugin_query_metadata") << true;
    QTest::newRow("nothing under another name") << QByteArrayLiteral("qt_plugin_create") << false;
}

void tst_Metadata::entryPoints()
{
    QFETCH(QByteArray, symbol);
    QFETCH(bool, exported);
    const QFunctionPointer function
        = QLibrary::resolve(QStringLiteral(KRHVC_PLUGIN_FILE), symbol.constData());
    QCOMPARE(function != nullptr, exported);
}

#ifdef Q_OS_WIN
void tst_Metadata::versionResource_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("expected");

    const auto text = [](const char *utf8) { return QString::fromUtf8(utf8); };
    QTest::newRow("file version") << text("FileVersion") << text(KRHVC_VERSION);
    QTest::newRow("product version") << text("ProductVersion") << text(KRHVC_VERSION);
    QTest::newRow("product") << text("ProductName") << text("KrHvcP2");
    QTest::newRow("file name") << text("OriginalFilename") << text("KrHvcP2.dll");
    QTest::newRow("vendor") << text("CompanyName") << text(KRHVC_VENDOR);
    QTest::newRow("copyright") << text("LegalCopyright") << text(KRHVC_COPYRIGHT);
}

void tst_Metadata::versionResource()
{
    QFETCH(QString, key);
    QFETCH(QString, expected);

    const std::wstring file = QStringLiteral(KRHVC_PLUGIN_FILE).toStdWString();
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), nullptr);
    QVERIFY(size > 0);
    QByteArray resource(int(size), '\0');
    QVERIFY(GetFileVersionInfoW(file.c_str(), 0, size, resource.data()));
    const std::wstring path
        = QStringLiteral("\\StringFileInfo\\040904B0\\%1").arg(key).toStdWString();
    void *value = nullptr;
    UINT length = 0; // with the terminating character
    QVERIFY(VerQueryValueW(resource.constData(), path.c_str(), &value, &length));
    QCOMPARE(QString::fromWCharArray(static_cast<const wchar_t *>(value)), expected);
}
#endif

QTEST_GUILESS_MAIN(tst_Metadata)
#include "tst_metadata.moc"
