#include "monitor/KrTextItem_Private.h"

#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QPropertyAnimation>
#include <QStyleOptionGraphicsItem>
#include <QtTest>

#include <memory>

using PluginKrHvcP2::Private::KrTextItem_Private;

class tst_KrTextItem : public QObject
{
    Q_OBJECT

private slots:
    void construction_data();
    void construction();
    void metaObject();
    void direction();
    void setsColor_data();
    void setsColor();
    void repaintsTheWholeItem();
    void animatesItsProperties();
    void paintsItsBackground_data();
    void paintsItsBackground();
    void paintsTextOverBackground();
};

void tst_KrTextItem::construction_data()
{
    QTest::addColumn<bool>("withText");
    QTest::addColumn<bool>("withParent");

    QTest::newRow("text and parent") << true << true;
    QTest::newRow("text without parent") << true << false;
    QTest::newRow("parent only") << false << true;
    QTest::newRow("neither") << false << false;
}

void tst_KrTextItem::construction()
{
    QFETCH(bool, withText);
    QFETCH(bool, withParent);

    // Markup in the constructor's text is plain text.
    const QString text = QStringLiteral("<b>8</b> & more");
    QGraphicsRectItem parent;
    QGraphicsItem *parentItem = withParent ? &parent : nullptr;
    const std::unique_ptr<KrTextItem_Private> item(
        withText ? new KrTextItem_Private(text, parentItem) : new KrTextItem_Private(parentItem));

    QCOMPARE(item->toPlainText(), withText ? text : QString());
    QCOMPARE(item->parentItem(), parentItem);
    QCOMPARE(item->font().family(), QStringLiteral("Yu Gothic"));
    QCOMPARE(item->font().pointSize(), 11);
    QCOMPARE(item->defaultTextColor(), QColor(255, 255, 255, 255));
    QCOMPARE(item->backgroundColor(), QColor(255, 255, 255, 0));
    QCOMPARE(item->direction(), 2);
}

void tst_KrTextItem::metaObject()
{
    const QMetaObject &meta = KrTextItem_Private::staticMetaObject;
    QCOMPARE(meta.className(), "PluginKrHvcP2::Private::KrTextItem_Private");
    QVERIFY(meta.inherits(&QGraphicsTextItem::staticMetaObject));

    QByteArrayList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        QVERIFY(property.isReadable() && property.isWritable());
        properties << QByteArray(property.typeName()) + ' ' + property.name();
    }
    QCOMPARE(properties, QByteArrayList({"QColor backgroundColor", "QPointF pos"}));

    const QMetaMethod setter = meta.method(meta.indexOfMethod("setBackgroundColor(QColor)"));
    QVERIFY(setter.isValid());
    QCOMPARE(setter.methodType(), QMetaMethod::Method);
    QCOMPARE(setter.access(), QMetaMethod::Public);
}

void tst_KrTextItem::direction()
{
    KrTextItem_Private item;
    for (const int direction : {0, 1, 5, 15, 18, -1}) {
        item.setDirection(direction);
        QCOMPARE(item.direction(), direction); // kept as set
    }
}

void tst_KrTextItem::setsColor_data()
{
    QTest::addColumn<int>("way");

    QTest::newRow("through the setter") << 0;
    QTest::newRow("through the property") << 1;
    QTest::newRow("through the invokable method") << 2;
}

void tst_KrTextItem::setsColor()
{
    QFETCH(int, way);

    const QColor color(12, 34, 56, 78);
    KrTextItem_Private item;
    switch (way) {
    case 0:
        item.setBackgroundColor(color);
        break;
    case 1:
        QVERIFY(item.setProperty("backgroundColor", color));
        break;
    default:
        QVERIFY(QMetaObject::invokeMethod(&item, "setBackgroundColor", Q_ARG(QColor, color)));
    }
    QCOMPARE(item.backgroundColor(), color);
    QCOMPARE(item.property("backgroundColor").value<QColor>(), color);
}

void tst_KrTextItem::repaintsTheWholeItem()
{
    QGraphicsScene scene;
    auto *item = new KrTextItem_Private(QStringLiteral("three\nlines of\ntext"));
    scene.addItem(item);
    item->setPos(30, 40);
    QSignalSpy changed(&scene, &QGraphicsScene::changed);
    QVERIFY(changed.isValid());
    QVERIFY(changed.wait()); // the item's own arrival
    changed.clear();

    item->setBackgroundColor(Qt::red);
    QVERIFY(changed.wait());
    QRectF repainted;
    const auto regions = changed.first().first().value<QList<QRectF>>();
    for (const QRectF &region : regions)
        repainted |= region;
    QVERIFY(repainted.contains(item->sceneBoundingRect()));
}

void tst_KrTextItem::animatesItsProperties()
{
    KrTextItem_Private item;

    QPropertyAnimation color(&item, QByteArrayLiteral("backgroundColor"));
    color.setDuration(100);
    color.setStartValue(QColor(0, 0, 0, 127));
    color.setEndValue(QColor(100, 50, 200, 127));
    color.start();
    color.pause();
    color.setCurrentTime(50);
    QCOMPARE(item.backgroundColor(), QColor(50, 25, 100, 127));

    QPropertyAnimation position(&item, QByteArrayLiteral("pos"));
    position.setDuration(100);
    position.setStartValue(QPointF(0, 300));
    position.setEndValue(QPointF(-50, 100));
    position.start();
    position.pause();
    position.setCurrentTime(50);
    QCOMPARE(item.pos(), QPointF(-25, 200));
}

/// What @p item paints on an opaque ground of the given colour; the item's origin is the image's.
static QImage painted(KrTextItem_Private &item, const QColor &ground)
{
    QImage image(item.boundingRect().size().toSize(), QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    const QStyleOptionGraphicsItem option;
    item.paint(&painter, &option, nullptr);
    return image;
}

void tst_KrTextItem::paintsItsBackground_data()
{
    QTest::addColumn<QColor>("background"); // invalid: as constructed
    QTest::addColumn<QColor>("expected"); // on green ground

    QTest::newRow("nothing when no background was set") << QColor() << QColor(0, 255, 0);
    QTest::newRow("nothing for alpha 0") << QColor(255, 0, 0, 0) << QColor(0, 255, 0);
    QTest::newRow("an opaque colour covers the ground") << QColor(10, 20, 30) << QColor(10, 20, 30);
    QTest::newRow("half black halves the ground") << QColor(0, 0, 0, 127) << QColor(0, 128, 0);
}

void tst_KrTextItem::paintsItsBackground()
{
    QFETCH(QColor, background);
    QFETCH(QColor, expected);

    KrTextItem_Private item; // without text, so that nothing covers the background
    item.setTextWidth(60);
    if (background.isValid())
        item.setBackgroundColor(background);

    const QImage image = painted(item, QColor(0, 255, 0));
    QVERIFY(image.width() >= 60 && image.height() > 10);
    QImage filled(image.size(), image.format());
    filled.fill(expected);
    QCOMPARE(image, filled);
}

void tst_KrTextItem::paintsTextOverBackground()
{
    KrTextItem_Private item;
    item.setHtml(QStringLiteral("<span style='background-color:#ff0000'>MMMM</span>"));
    item.setBackgroundColor(Qt::blue);

    const QImage image = painted(item, Qt::green);
    bool text = false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            text = text || image.pixelColor(x, y) == QColor(Qt::red);
    }
    QVERIFY(text);
    QCOMPARE(image.pixelColor(0, 0), QColor(Qt::blue)); // the margin around the text
}

QTEST_MAIN(tst_KrTextItem)

#include "tst_krtextitem.moc"
