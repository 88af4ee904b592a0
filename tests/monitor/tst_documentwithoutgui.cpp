#include "FileAccessSpy.h"

#include "monitor/OfflineTextDocument.h"
#include "tests/support/Files.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <memory>

using PluginKrHvcP2::OfflineTextDocument;

/// The document as the report of a frame uses it: text in, text out, and no layout, for that would
/// need the fonts of a GUI application.
class tst_DocumentWithoutGui : public QObject
{
    Q_OBJECT

private slots:
    void plainText_data();
    void plainText();
};

void tst_DocumentWithoutGui::plainText_data()
{
    QTest::addColumn<bool>("withApplication");
    QTest::addColumn<QString>("html"); // %1: path of a file
    QTest::addColumn<QString>("text");

    const struct
    {
        const char *name;
        QString html;
        QString text;
    } texts[] = {
        {"nothing", QString(), QString()},
        {"a table",
            QStringLiteral("<table><tr><td style=\"font-weight:bold;\">Age</td>"
                           "<td>A &lt; <span style=\"color:yellow;\">B</span></td></tr></table>"),
            QStringLiteral("\nAge\nA < B\n")},
        {"an image", QStringLiteral("a<img src=\"%1\" width=\"7\" height=\"9\">b"),
            QStringLiteral("a\uFFFCb")},
        {"backgrounds",
            QStringLiteral("<body background=\"%1\"><table><tr><td background=\"%1\">a</td></tr>"
                           "</table></body>"),
            QStringLiteral("\na\n")},
        {"a style sheet",
            QStringLiteral("<html><head><link rel=\"stylesheet\" type=\"text/css\" href=\"%1\">"
                           "</head><body><p>a</p></body></html>"),
            QStringLiteral("a")},
        {"a list and a rule", QStringLiteral("a<ul><li>b</li></ul><hr><h1>c</h1>"),
            QStringLiteral("a\nb\n\nc")},
        {"letters that many fonts lack", QStringLiteral("&#x5e74;&#x1f600;"),
            QStringLiteral("\u5e74\U0001f600")},
    };
    for (const auto &row : texts) {
        // Qt itself asks the application for its thread when it meets a background.
        if (!row.html.contains(QLatin1String("background=")))
            QTest::addRow("%s, no application", row.name) << false << row.html << row.text;
        QTest::addRow("%s, an application without GUI", row.name) << true << row.html << row.text;
    }
}

void tst_DocumentWithoutGui::plainText()
{
    QFETCH(bool, withApplication);
    QFETCH(QString, html);
    QFETCH(QString, text);

    int argc = 1;
    char name[] = "tst_documentwithoutgui";
    std::array<char *, 2> argv{name, nullptr};
    const auto application
        = withApplication ? std::make_unique<QCoreApplication>(argc, argv.data()) : nullptr;

    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("named"));
    QVERIFY(KrTest::writeFile(file));
    FileAccessSpy access(file);
    QVERIFY(access.isValid());

    OfflineTextDocument document;
    QSignalSpy layout(&document, &QTextDocument::documentLayoutChanged);
    QVERIFY(layout.isValid());
    for (int frame = 0; frame < 2; ++frame) {
        document.clear();
        document.setHtml(html.replace(QLatin1String("%1"), file));
        QCOMPARE(document.toPlainText(), text);
    }
    QVERIFY(layout.isEmpty());
    QVERIFY(!access.takeAccess());
}

QTEST_APPLESS_MAIN(tst_DocumentWithoutGui)

#include "tst_documentwithoutgui.moc"
