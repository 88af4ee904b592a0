#include "FileAccessSpy.h"

#include "monitor/KrTextItem_Private.h"
#include "monitor/OfflineTextDocument.h"
#include "tests/support/Files.h"

#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QStyleOptionGraphicsItem>
#include <QTemporaryDir>
#include <QtTest>

using PluginKrHvcP2::OfflineTextDocument;
using PluginKrHvcP2::Private::KrTextItem_Private;

class tst_OfflineTextDocument : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void opensNoFile_data();
    void opensNoFile();
    void imageTakesNoRoom();
    void imageKeepsTheSizeOfItsTag_data();
    void imageKeepsTheSizeOfItsTag();
    void imageWithOneLength();
    void keepsTheText();
    void survivesTheNextText();

private:
    QString filePath(const QString &name) const { return m_directory.filePath(name); }

    QTemporaryDir m_directory;
};

void tst_OfflineTextDocument::initTestCase()
{
    QVERIFY(m_directory.isValid());
    QImage image(90, 70, QImage::Format_RGB32);
    image.fill(Qt::red);
    QVERIFY(image.save(filePath(QStringLiteral("image.png"))));

    QVERIFY(KrTest::writeFile(filePath(QStringLiteral("sheet.css")), "p { font-size: 60pt }"));
}

void tst_OfflineTextDocument::opensNoFile_data()
{
    QTest::addColumn<QString>("html"); // %1: path, %2: URL
    QTest::addColumn<QString>("fileName");

    const QString image = QStringLiteral("image.png");
    const QString sheet = QStringLiteral("sheet.css");

    QTest::newRow("an image by its path") << QStringLiteral("a<img src=\"%1\">b") << image;
    QTest::newRow("an image by its address") << QStringLiteral("a<img src=\"%2\">b") << image;
    QTest::newRow("an image with a size of its own")
        << QStringLiteral("a<img src=\"%1\" width=\"7\" height=\"9\">b") << image;
    QTest::newRow("an image in a table cell")
        << QStringLiteral("<table><tr><td><img src=\"%2\"></td></tr></table>") << image;
    QTest::newRow("the background of a body")
        << QStringLiteral("<body background=\"%2\">text</body>") << image;
    QTest::newRow("the background of a table cell")
        << QStringLiteral("<table><tr><td background=\"%2\">text</td></tr></table>") << image;
    QTest::newRow("a background image in a style")
        << QStringLiteral("<p style=\"background-image:url(%2)\">text</p>") << image;
    QTest::newRow("a linked style sheet") << QStringLiteral(
        "<html><head><link rel=\"stylesheet\" type=\"text/css\" href=\"%2\"></head>"
        "<body><p>text</p></body></html>") << sheet;
    QTest::newRow("an imported style sheet") << QStringLiteral(
        "<html><head><style>@import url(%2);</style></head>"
        "<body><p>text</p></body></html>") << sheet;
}

static void layOutAndPaint(QTextDocument *document)
{
    QImage canvas(300, 200, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    document->setTextWidth(300);
    QPainter painter(&canvas);
    document->drawContents(&painter);
}

void tst_OfflineTextDocument::opensNoFile()
{
    QFETCH(QString, html);
    QFETCH(QString, fileName);

    const QString path = filePath(fileName);
    html.replace(QLatin1String("%1"), path);
    html.replace(QLatin1String("%2"), QUrl::fromLocalFile(path).toString());

    FileAccessSpy spy(path);
    QVERIFY(spy.isValid());
    QTextDocument usual;
    usual.setHtml(html);
    layOutAndPaint(&usual);
    QVERIFY2(!FileAccessSpy::Watches || spy.takeAccess(),
        "the text names no file that a usual document opens");

    OfflineTextDocument document;
    document.setHtml(html);
    layOutAndPaint(&document);
    QVERIFY(!spy.takeAccess());

    KrTextItem_Private item;
    item.setHtml(html);
    item.setTextWidth(300);
    QImage canvas(300, 200, QImage::Format_RGB32);
    canvas.fill(Qt::black);
    QPainter painter(&canvas);
    const QStyleOptionGraphicsItem option;
    item.paint(&painter, &option, nullptr);
    painter.end();
    QVERIFY(!spy.takeAccess());
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x)
            QVERIFY(canvas.pixelColor(x, y) != QColor(Qt::red)); // no pixel of the image
    }
}

void tst_OfflineTextDocument::imageTakesNoRoom()
{
    const QString image
        = QStringLiteral("<img src=\"%1\">").arg(filePath(QStringLiteral("image.png")));
    OfflineTextDocument with;
    with.setHtml(QStringLiteral("<p>before %1after</p>").arg(image));
    OfflineTextDocument without;
    without.setHtml(QStringLiteral("<p>before after</p>"));

    QTextDocument usual;
    usual.setHtml(QStringLiteral("<p>before %1after</p>").arg(image));
    QVERIFY(usual.size().height() > without.size().height());

    QCOMPARE(with.size(), without.size());
    QCOMPARE(with.idealWidth(), without.idealWidth());
}

void tst_OfflineTextDocument::imageKeepsTheSizeOfItsTag_data()
{
    QTest::addColumn<QString>("html"); // %1: path of the image

    QTest::newRow("in a line") << QStringLiteral(
        "<p>a<img src=\"%1\" width=\"120\" height=\"35\">b</p>");
    QTest::newRow("beside the text")
        << QStringLiteral("<p><img src=\"%1\" width=\"120\" height=\"35\" align=\"left\">b</p>");
    QTest::newRow("in a table cell") << QStringLiteral(
        "<table><tr><td><img src=\"%1\" width=\"120\" height=\"35\"></td><td>b</td></tr></table>");
    QTest::newRow("larger than the document")
        << QStringLiteral("<p>a<img src=\"%1\" width=\"500\" height=\"400\">b</p>");
    QTest::newRow("a file that does not exist")
        << QStringLiteral("<p>a<img src=\"%1.missing\" width=\"120\" height=\"35\">b</p>");
}

void tst_OfflineTextDocument::imageKeepsTheSizeOfItsTag()
{
    QFETCH(QString, html);

    const QString path = filePath(QStringLiteral("image.png"));
    html = html.arg(path);
    QTextDocument usual;
    usual.setHtml(html);
    layOutAndPaint(&usual);
    QTextDocument withoutSize;
    withoutSize.setHtml(
        QString(html).remove(QRegularExpression(QStringLiteral(" width=.* height=\"\\d+\""))));
    layOutAndPaint(&withoutSize);
    QVERIFY(usual.size() != withoutSize.size());

    FileAccessSpy spy(path);
    QVERIFY(spy.isValid());
    OfflineTextDocument document;
    document.setHtml(html);
    layOutAndPaint(&document);
    QCOMPARE(document.size(), usual.size());
    QCOMPARE(document.idealWidth(), usual.idealWidth());
    QVERIFY(!spy.takeAccess());
}

void tst_OfflineTextDocument::imageWithOneLength()
{
    // The other one would have to be asked of the file.
    const auto sizeOf = [](const QString &attributes) {
        OfflineTextDocument document;
        document.setHtml(QStringLiteral("a<img src=\"x\" %1>b").arg(attributes));
        return QSizeF(document.idealWidth(), document.size().height());
    };
    const QSizeF none = sizeOf(QString());
    QCOMPARE(sizeOf(QStringLiteral("width=\"120\"")), none + QSizeF(120, 0));
    const QSizeF high = sizeOf(QStringLiteral("height=\"90\""));
    QCOMPARE(high.width(), none.width());
    QVERIFY(high.height() >= 90);
}

void tst_OfflineTextDocument::keepsTheText()
{
    OfflineTextDocument document;
    document.setHtml(QStringLiteral("<table><tr><td>A &lt; B</td><td>C</td></tr></table>"
                                    "<p>&#x5e74;&#x9f62;</p>"));
    QTextDocument usual;
    usual.setHtml(document.toHtml());
    QCOMPARE(document.toPlainText(), usual.toPlainText());
    QVERIFY(document.toPlainText().contains(QStringLiteral("A < B")));
}

void tst_OfflineTextDocument::survivesTheNextText()
{
    // The report document is used for every frame.
    const QString path = filePath(QStringLiteral("image.png"));
    FileAccessSpy spy(path);
    QVERIFY(spy.isValid());
    OfflineTextDocument document;
    for (int i = 0; i < 3; ++i) {
        document.clear();
        document.setHtml(QStringLiteral("a<img src=\"%1\">b").arg(path));
        layOutAndPaint(&document);
        QVERIFY(!spy.takeAccess());
    }
}

QTEST_MAIN(tst_OfflineTextDocument)

#include "tst_offlinetextdocument.moc"
