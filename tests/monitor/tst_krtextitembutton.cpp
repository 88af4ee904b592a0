#include "monitor/KrTextItemButton_Private.h"

#include <QGraphicsScene>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>
#include <QImage>
#include <QPainter>
#include <QPropertyAnimation>
#include <QStyleOptionGraphicsItem>
#include <QTextDocument>
#include <QTextOption>
#include <QtTest>

#include <memory>

using PluginKrHvcP2::Private::KrTextItem_Private;
using PluginKrHvcP2::Private::KrTextItemButton_Private;

namespace {

const QColor Idle(0, 0, 0, 127);
const QColor Hovered(72, 72, 72, 127);
const QColor Pressed(127, 127, 127, 127);

} // namespace

class tst_KrTextItemButton : public QObject
{
    Q_OBJECT

private slots:
    void construction();
    void textOption();
    void metaObject();
    void documentSize_data();
    void documentSize();
    void handler_data();
    void handler();
    void handlerStartsFromTheCurrentColor();
    void framePainting();

    void click_data();
    void click();
    void releaseOutsideIsAClick();
    void releaseWithoutPressIsAClick();
    void pressAloneIsNoClick();
    void doubleClickIsTwoClicks();
    void colorsOfAClick();
    void fastSequence();
    void deletedWhileFading();
};

/// A shown button at (20, 30) of a view whose coordinates are the scene's.
struct ButtonView
{
    ButtonView()
    {
        view.setFrameStyle(QFrame::NoFrame);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.resize(300, 200);
        scene.setSceneRect(0, 0, 300, 200);
        view.setScene(&scene);
        button = new KrTextItemButton_Private(QStringLiteral("Start"));
        button->setTextWidth(100);
        button->setPos(20, 30);
        scene.addItem(button);
        view.show();
    }

    bool isReady() { return QTest::qWaitForWindowExposed(&view); }
    QPoint inside() const { return view.mapFromScene(button->sceneBoundingRect().center()); }
    QPoint outside() const { return {280, 180}; }

    /// Not by the cursor, which not every window system lets a program move.
    void movePointer(const QPoint &position)
    {
        QWidget *viewport = view.viewport();
        QMouseEvent event(QEvent::MouseMove, position, viewport->mapToGlobal(position),
            Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &event);
    }

    QGraphicsScene scene;
    QGraphicsView view;
    KrTextItemButton_Private *button = nullptr; // owned by the scene
};

static QList<QPropertyAnimation *> animationsOf(const KrTextItemButton_Private *button)
{
    return button->findChildren<QPropertyAnimation *>();
}

void tst_KrTextItemButton::construction()
{
    QGraphicsRectItem parent;
    auto *button = new KrTextItemButton_Private(QStringLiteral("#7"), &parent);
    QCOMPARE(button->toPlainText(), QStringLiteral("#7"));
    QCOMPARE(button->parentItem(), static_cast<QGraphicsItem *>(&parent));
    QCOMPARE(button->backgroundColor(), Idle);
    QCOMPARE(button->defaultTextColor(), QColor(255, 204, 102, 255));
    QCOMPARE(button->font().family(), QStringLiteral("Yu Gothic"));
    QCOMPARE(button->font().pointSize(), 10);
    QCOMPARE(button->direction(), 2);
}

void tst_KrTextItemButton::textOption()
{
    const KrTextItemButton_Private button(QStringLiteral("Stop"));
    const QTextOption option = button.document()->defaultTextOption();
    QCOMPARE(option.alignment(), Qt::AlignHCenter | Qt::AlignVCenter);

    // Nothing but the alignment changes.
    const KrTextItem_Private plain;
    const QTextOption usual = plain.document()->defaultTextOption();
    QCOMPARE(option.wrapMode(), usual.wrapMode());
    QCOMPARE(option.flags(), usual.flags());
    QCOMPARE(option.textDirection(), usual.textDirection());
    QCOMPARE(option.tabStopDistance(), usual.tabStopDistance());
    QCOMPARE(option.useDesignMetrics(), usual.useDesignMetrics());
}

void tst_KrTextItemButton::metaObject()
{
    const QMetaObject &meta = KrTextItemButton_Private::staticMetaObject;
    QCOMPARE(meta.className(), "PluginKrHvcP2::Private::KrTextItemButton_Private");
    QVERIFY(meta.inherits(&KrTextItem_Private::staticMetaObject));

    QByteArrayList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods << meta.method(i).methodSignature();
    QCOMPARE(methods, QByteArrayList({"clicked(QObject*)"}));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.method(meta.methodOffset()).parameterNames(),
        QList<QByteArray>({QByteArray("object")}));

    QByteArrayList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
        properties << QByteArray(meta.property(i).typeName()) + ' ' + meta.property(i).name();
    QCOMPARE(properties, QByteArrayList({"QColor backgroundColor"}));
}

void tst_KrTextItemButton::documentSize_data()
{
    QTest::addColumn<qreal>("textWidth");

    QTest::newRow("as wide as the text") << qreal(-1);
    QTest::newRow("wider than the text") << qreal(250);
    QTest::newRow("so narrow that the text wraps") << qreal(20);
}

void tst_KrTextItemButton::documentSize()
{
    QFETCH(qreal, textWidth);

    KrTextItemButton_Private button(QStringLiteral("Start"));
    button.setTextWidth(textWidth);
    QVERIFY(!button.document()->size().isEmpty());
    QCOMPARE(button.documentWidth(), button.document()->size().width());
    QCOMPARE(button.documentHeight(), button.document()->size().height());
}

void tst_KrTextItemButton::handler_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QColor>("target");
    QTest::addColumn<int>("clicks");

    QTest::newRow("pointer enters") << int(QEvent::GraphicsSceneHoverEnter) << Hovered << 0;
    QTest::newRow("pointer leaves") << int(QEvent::GraphicsSceneHoverLeave) << Idle << 0;
    QTest::newRow("mouse button pressed") << int(QEvent::GraphicsSceneMousePress) << Pressed << 0;
    QTest::newRow("mouse button released")
        << int(QEvent::GraphicsSceneMouseRelease) << Hovered << 1;
}

static std::unique_ptr<QEvent> sceneEvent(QEvent::Type type)
{
    if (type == QEvent::GraphicsSceneHoverEnter || type == QEvent::GraphicsSceneHoverLeave)
        return std::make_unique<QGraphicsSceneHoverEvent>(type);
    auto event = std::make_unique<QGraphicsSceneMouseEvent>(type);
    event->setButton(Qt::LeftButton);
    return event;
}

void tst_KrTextItemButton::handler()
{
    QFETCH(int, type);
    QFETCH(QColor, target);
    QFETCH(int, clicks);

    QGraphicsScene scene;
    auto *button = new KrTextItemButton_Private(QStringLiteral("Start"));
    scene.addItem(button);
    const QColor current(10, 20, 30, 40);
    button->setBackgroundColor(current);
    QSignalSpy clicked(button, SIGNAL(clicked(QObject *)));
    QVERIFY(clicked.isValid());

    const std::unique_ptr<QEvent> event = sceneEvent(static_cast<QEvent::Type>(type));
    event->ignore();
    scene.sendEvent(button, event.get());
    QVERIFY(event->isAccepted());
    QCOMPARE(clicked.count(), clicks);
    if (clicks > 0)
        QCOMPARE(clicked.first().first().value<QObject *>(), static_cast<QObject *>(button));

    QCOMPARE(animationsOf(button).size(), 1);
    const QPointer<QPropertyAnimation> animation = animationsOf(button).first();
    QCOMPARE(animation->propertyName(), QByteArray("backgroundColor"));
    QCOMPARE(animation->targetObject(), static_cast<QObject *>(button));
    QCOMPARE(animation->parent(), static_cast<QObject *>(button));
    QCOMPARE(animation->duration(), 150);
    QCOMPARE(animation->easingCurve().type(), QEasingCurve::Linear);
    QCOMPARE(animation->startValue().value<QColor>(), current);
    QCOMPARE(animation->endValue().value<QColor>(), target);
    QCOMPARE(animation->state(), QAbstractAnimation::Running);

    animation->setCurrentTime(150);
    QCOMPARE(button->backgroundColor(), target);
    QTRY_VERIFY(animation.isNull()); // deletes itself when it has stopped
}

void tst_KrTextItemButton::handlerStartsFromTheCurrentColor()
{
    QGraphicsScene scene;
    auto *button = new KrTextItemButton_Private(QStringLiteral("Start"));
    scene.addItem(button);

    scene.sendEvent(button, sceneEvent(QEvent::GraphicsSceneMousePress).get());
    QCOMPARE(animationsOf(button).size(), 1);
    animationsOf(button).first()->setCurrentTime(75);
    const QColor halfWay = button->backgroundColor();
    QVERIFY(halfWay != Idle && halfWay != Pressed);

    scene.sendEvent(button, sceneEvent(QEvent::GraphicsSceneMouseRelease).get());
    bool found = false;
    const auto animations = animationsOf(button);
    for (const QPropertyAnimation *animation : animations) {
        if (animation->endValue().value<QColor>() != Hovered)
            continue;
        QCOMPARE(animation->startValue().value<QColor>(), halfWay);
        found = true;
    }
    QVERIFY(found);
}

void tst_KrTextItemButton::framePainting()
{
    KrTextItemButton_Private button{QString()};
    button.setTextWidth(60);
    button.setBackgroundColor(QColor(0, 0, 0, 0));

    const QRectF bounds = button.boundingRect();
    const QPoint offset(10, 10);
    QImage image(bounds.size().toSize() + QSize(20, 20), QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.translate(offset);
    const QStyleOptionGraphicsItem option;
    button.paint(&painter, &option, nullptr);
    painter.end();

    // (198, 198, 198) with alpha 127 on black.
    const QRect frame(offset, bounds.size().toSize() + QSize(1, 1));
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const bool onFrame = frame.contains(x, y)
                && (x == frame.left() || x == frame.right() || y == frame.top()
                    || y == frame.bottom());
            const int gray = qRed(image.pixel(x, y));
            const QByteArray where = QByteArray::number(x) + ',' + QByteArray::number(y);
            if (onFrame)
                QVERIFY2(gray >= 98 && gray <= 100, where.constData());
            else
                QVERIFY2(gray == 0, where.constData());
        }
    }
}

void tst_KrTextItemButton::click_data()
{
    QTest::addColumn<int>("mouseButton");

    QTest::newRow("left") << int(Qt::LeftButton);
    QTest::newRow("right") << int(Qt::RightButton);
    QTest::newRow("middle") << int(Qt::MiddleButton);
}

void tst_KrTextItemButton::click()
{
    QFETCH(int, mouseButton);
    const auto pressed = static_cast<Qt::MouseButton>(mouseButton);

    ButtonView on;
    QVERIFY(on.isReady());
    QSignalSpy clicked(on.button, SIGNAL(clicked(QObject *)));
    on.movePointer(on.inside());
    QTest::mouseClick(on.view.viewport(), pressed, {}, on.inside());
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.first().first().value<QObject *>(), static_cast<QObject *>(on.button));

    QTest::mouseClick(on.view.viewport(), pressed, {}, on.outside());
    QCOMPARE(clicked.count(), 1);
}

void tst_KrTextItemButton::releaseOutsideIsAClick()
{
    ButtonView on;
    QVERIFY(on.isReady());
    QSignalSpy clicked(on.button, SIGNAL(clicked(QObject *)));
    QTest::mousePress(on.view.viewport(), Qt::LeftButton, {}, on.inside());
    QTest::mouseRelease(on.view.viewport(), Qt::LeftButton, {}, on.outside());
    QCOMPARE(clicked.count(), 1);
}

void tst_KrTextItemButton::releaseWithoutPressIsAClick()
{
    ButtonView on;
    QSignalSpy clicked(on.button, SIGNAL(clicked(QObject *)));
    on.scene.sendEvent(on.button, sceneEvent(QEvent::GraphicsSceneMouseRelease).get());
    QCOMPARE(clicked.count(), 1);
}

void tst_KrTextItemButton::pressAloneIsNoClick()
{
    ButtonView on;
    QVERIFY(on.isReady());
    QSignalSpy clicked(on.button, SIGNAL(clicked(QObject *)));
    QTest::mousePress(on.view.viewport(), Qt::LeftButton, {}, on.inside());
    QTRY_COMPARE(on.button->backgroundColor(), Pressed);
    QCOMPARE(clicked.count(), 0);
    QTest::mouseRelease(on.view.viewport(), Qt::LeftButton, {}, on.inside());
}

void tst_KrTextItemButton::doubleClickIsTwoClicks()
{
    ButtonView on;
    QVERIFY(on.isReady());
    QSignalSpy clicked(on.button, SIGNAL(clicked(QObject *)));
    QWidget *viewport = on.view.viewport();
    // What a window system sends for a double click.
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
             QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        const bool release = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, on.inside(), viewport->mapToGlobal(on.inside()), Qt::LeftButton,
            release ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &event);
    }
    QCOMPARE(clicked.count(), 2);
}

void tst_KrTextItemButton::colorsOfAClick()
{
    ButtonView on;
    QVERIFY(on.isReady());
    QWidget *viewport = on.view.viewport();
    QSignalSpy clicked(on.button, SIGNAL(clicked(QObject *)));

    on.movePointer(on.outside());
    on.movePointer(on.inside());
    QTRY_COMPARE(on.button->backgroundColor(), Hovered);
    QTest::mousePress(viewport, Qt::LeftButton, {}, on.inside());
    QTRY_COMPARE(on.button->backgroundColor(), Pressed);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, on.inside());
    QTRY_COMPARE(on.button->backgroundColor(), Hovered);
    on.movePointer(on.outside());
    QTRY_COMPARE(on.button->backgroundColor(), Idle);
    QCOMPARE(clicked.count(), 1);
    QTRY_VERIFY(animationsOf(on.button).isEmpty());
}

void tst_KrTextItemButton::fastSequence()
{
    ButtonView on;
    QVERIFY(on.isReady());
    for (const QEvent::Type type :
        {QEvent::GraphicsSceneHoverEnter, QEvent::GraphicsSceneMousePress,
            QEvent::GraphicsSceneMouseRelease, QEvent::GraphicsSceneHoverLeave})
        on.scene.sendEvent(on.button, sceneEvent(type).get());
    QTRY_VERIFY(animationsOf(on.button).isEmpty());
    QCOMPARE(on.button->backgroundColor(), Idle);
}

void tst_KrTextItemButton::deletedWhileFading()
{
    ButtonView on;
    on.scene.sendEvent(on.button, sceneEvent(QEvent::GraphicsSceneMousePress).get());
    const QPointer<QPropertyAnimation> animation = animationsOf(on.button).value(0);
    QVERIFY(animation);
    delete on.button;
    QVERIFY(animation.isNull());
    QCoreApplication::processEvents();
}

QTEST_MAIN(tst_KrTextItemButton)

#include "tst_krtextitembutton.moc"
