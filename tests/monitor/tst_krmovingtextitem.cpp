#include "FakeScreenPlugin.h"

#include "monitor/KrMovingTextItem.h"
#include "monitor/KrTextItemButton_Private.h"
#include "monitor/KrTextItem_Private.h"

#include <QBrush>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPropertyAnimation>
#include <QTextDocument>
#include <QtTest>

#include <limits>
#include <memory>

using PluginKrHvcP2::KrMovingTextItem;
using PluginKrHvcP2::Private::KrTextItem_Private;
using PluginKrHvcP2::Private::KrTextItemButton_Private;

using ItemList = QList<KrTextItem_Private *>;
using ButtonList = QList<KrTextItemButton_Private *>;

namespace {

constexpr double Topmost = std::numeric_limits<double>::max();

KrTextItem_Private *asTextItem(QGraphicsItem *item)
{
    return dynamic_cast<KrTextItem_Private *>(item);
}

ButtonList buttonsOf(const KrMovingTextItem &panel)
{
    ButtonList buttons;
    const auto children = panel.childItems();
    for (QGraphicsItem *child : children) {
        if (auto *button = dynamic_cast<KrTextItemButton_Private *>(child))
            buttons << button;
    }
    return buttons;
}

KrTextItemButton_Private *buttonOf(const KrMovingTextItem &panel, const QString &name)
{
    const auto buttons = buttonsOf(panel);
    for (KrTextItemButton_Private *button : buttons) {
        if (button->property("buttonName").toString() == name)
            return button;
    }
    return nullptr;
}

const QString Title = QStringLiteral("HVC-P2 Monitoring");

KrTextItem_Private *titleOf(const KrMovingTextItem &panel)
{
    const auto children = panel.childItems();
    for (QGraphicsItem *child : children) {
        auto *item = asTextItem(child);
        if (item != nullptr && item->toPlainText() == Title)
            return item;
    }
    return nullptr;
}

/// The messages that are on the panel now, in stacking order: of one height, oldest first.
ItemList messagesOf(const KrMovingTextItem &panel)
{
    ItemList messages;
    const auto children = panel.childItems();
    for (QGraphicsItem *child : children) {
        auto *item = asTextItem(child);
        if (item != nullptr && dynamic_cast<KrTextItemButton_Private *>(child) == nullptr
            && item->toPlainText() != Title)
            messages << item;
    }
    return messages;
}

/// What the panel shows, sorted.
QStringList textsOf(const KrMovingTextItem &panel)
{
    QStringList texts;
    const auto messages = messagesOf(panel);
    for (const KrTextItem_Private *message : messages)
        texts << message->toPlainText();
    texts.sort();
    return texts;
}

/// The running animation of @p item; null when there is none or more than one.
QPropertyAnimation *animationOf(const KrMovingTextItem &panel, const QObject *item)
{
    QPropertyAnimation *found = nullptr;
    const auto animations = panel.findChildren<QPropertyAnimation *>();
    for (QPropertyAnimation *animation : animations) {
        if (animation->targetObject() != item || animation->state() != QAbstractAnimation::Running)
            continue;
        if (found != nullptr)
            return nullptr;
        found = animation;
    }
    return found;
}

/// Moves all animations to their ends and deletes what is to be deleted then.
void finishAnimations(const KrMovingTextItem &panel)
{
    const auto animations = panel.findChildren<QPropertyAnimation *>();
    for (QPropertyAnimation *animation : animations) {
        if (animation->state() == QAbstractAnimation::Running)
            animation->setCurrentTime(animation->duration());
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Shows the next message now instead of a millisecond later.
void showNext(KrMovingTextItem &panel)
{
    QVERIFY(QMetaObject::invokeMethod(&panel, "moveTextItem"));
}

} // namespace

/// Catches the text items that are made while it lives, also those that nobody can reach.
class TextItemSpy : public QObject
{
public:
    TextItemSpy() { qApp->installEventFilter(this); }

    QList<QPointer<QGraphicsTextItem>> items;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        // A text item gets children of its own while it is constructed.
        auto *item = qobject_cast<QGraphicsTextItem *>(watched);
        if (item != nullptr && event->type() == QEvent::ChildAdded && !items.contains(item))
            items << item;
        return false;
    }
};

class tst_KrMovingTextItem : public QObject
{
    Q_OBJECT

private slots:
    void metaObject();
    void interfaceCast();
    void constructionOfThePanel();
    void constructionOfTheTitle();
    void constructionOfTheButtons();

    void applicationFontStaysOut();

    void itemSize_data();
    void itemSize();
    void itemSizeByTwoNumbers();
    void itemSizeKeepsTheOrigin();
    void itemSizeOfOddValues_data();
    void itemSizeOfOddValues();
    void itemSizeLeavesMessagesAlone();

    void entering_data();
    void entering();
    void leaving_data();
    void leaving();
    void plainTextIsNoMarkup();
    void htmlIsMarkup();
    void htmlLoadsNothing();
    void neverShown_data();
    void neverShown();
    void cancelledDirectionLeavesTheShownOne();
    void directionsHaveTheirOwnMessages();
    void directionAsSetIsTheKey();
    void messagesAreShownInOrder();
    void emptyQueue();
    void twoAtOnce();
    void leavingMessageIsNotPushedAgain();
    void slidesEndByTheClock();
    void messageDeletedByAnother();
    void sizeOfTheMomentCounts();
    void clipping();
    void drawsWhatIsSeenAsIfWhole_data();
    void drawsWhatIsSeenAsIfWhole();
    void realTime();

    void clicks_data();
    void clicks();
    void doubleClick();
    void manyClicksOnTwoPanels();
    void buttonNames_data();
    void buttonNames();
    void buttonWithoutPlugin();
    void noButton();

    void destructorTellsThePlugin();
    void releasedPanelKeepsSilent();
    void replacedPanelKeepsSilent();
    void panelOutlivesThePlugin_data();
    void panelOutlivesThePlugin();
    void pluginTakenAway();
    void pluginWithoutObject();
    void hostDeletesThePanelInACall_data();
    void hostDeletesThePanelInACall();
    void hostDeletesThePluginInACall();
    void sceneDeletedFirst();
    void pendingIsDropped();
};

void tst_KrMovingTextItem::metaObject()
{
    const QMetaObject &meta = KrMovingTextItem::staticMetaObject;
    QCOMPARE(meta.className(), "PluginKrHvcP2::KrMovingTextItem");

    QByteArrayList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        methods << meta.method(i).methodSignature();
    }
    QCOMPARE(methods, QByteArrayList({"moveTextItem()", "buttonClicked(QObject*)"}));

    KrMovingTextItem panel;
    auto *base = static_cast<Kora::KrPluginGraphicsItem *>(&panel);
    QCOMPARE(panel.qt_metacast("KrPluginGraphicsItem"), static_cast<void *>(base));
    QVERIFY(panel.qt_metacast("SomethingElse") == nullptr);
}

void tst_KrMovingTextItem::interfaceCast()
{
    QCOMPARE(QByteArray(qobject_interface_iid<Kora::KrPluginGraphicsItem *>()),
        QByteArrayLiteral("KrPluginGraphicsItem"));
    KrMovingTextItem panel;
    QObject *object = &panel;
    QCOMPARE(qobject_cast<Kora::KrPluginGraphicsItem *>(object),
        static_cast<Kora::KrPluginGraphicsItem *>(&panel));
    QObject other;
    QVERIFY(qobject_cast<Kora::KrPluginGraphicsItem *>(&other) == nullptr);
}

void tst_KrMovingTextItem::constructionOfThePanel()
{
    QObject parent;
    const KrMovingTextItem panel(&parent);
    QCOMPARE(panel.parent(), &parent);
    QVERIFY(panel.parentItem() == nullptr);
    QCOMPARE(panel.rect(), QRectF(0, 0, 512, 384));
    QCOMPARE(panel.brush(), QBrush(QColor(0, 0, 0, 200), Qt::SolidPattern));
    QCOMPARE(panel.pen().widthF(), 0.0);
    QCOMPARE(panel.pen().color(), QColor(0, 0, 0, 0));
    QVERIFY(panel.flags().testFlag(QGraphicsItem::ItemClipsChildrenToShape));
    QCOMPARE(panel.childItems().size(), 1 + 22);
    QVERIFY(panel.findChildren<QPropertyAnimation *>().isEmpty());
}

void tst_KrMovingTextItem::constructionOfTheTitle()
{
    const KrMovingTextItem panel;
    const KrTextItem_Private *title = titleOf(panel);
    QVERIFY(title != nullptr);
    QCOMPARE(title->textWidth(), 512.0);
    QCOMPARE(title->pos(), QPointF(0, 0));
    QCOMPARE(title->zValue(), Topmost);
    QCOMPARE(title->backgroundColor(), QColor(0, 0, 0, 127));
    QCOMPARE(title->defaultTextColor(), QColor(Qt::cyan));
    QVERIFY(title->isVisible());
    QCOMPARE(title->font().family(), QStringLiteral("Yu Gothic"));
    QCOMPARE(title->font().pointSize(), 10);
    QCOMPARE(title->font().weight(), 75);
}

void tst_KrMovingTextItem::constructionOfTheButtons()
{
    const KrMovingTextItem panel;
    const ButtonList buttons = buttonsOf(panel);

    QStringList labels{QStringLiteral("Start"), QStringLiteral("Stop")};
    QStringList names{QStringLiteral("start"), QStringLiteral("stop")};
    for (int number = 1; number <= 20; ++number) {
        labels << QStringLiteral("#%1").arg(number);
        names << QStringLiteral("#%1").arg(number);
    }
    QStringList actualLabels;
    QStringList actualNames;
    qreal x = 0;
    for (const KrTextItemButton_Private *button : buttons) {
        actualLabels << button->toPlainText();
        actualNames << button->property("buttonName").toString();
        QCOMPARE(button->textWidth(), 512 / 22.0);
        QCOMPARE(button->pos(), QPointF(x, 384 - button->documentHeight() - 1));
        QCOMPARE(button->zValue(), Topmost);
        QVERIFY(button->isVisible());
        x += button->documentWidth();
    }
    QCOMPARE(actualLabels, labels);
    QCOMPARE(actualNames, names);
    QVERIFY(x > 0);
}

/// Gives the application another font while it lives.
class ApplicationFont
{
public:
    explicit ApplicationFont(const QFont &font) { QApplication::setFont(font); }
    ~ApplicationFont() { QApplication::setFont(m_before); }

private:
    Q_DISABLE_COPY(ApplicationFont)

    const QFont m_before = QApplication::font();
};

void tst_KrMovingTextItem::applicationFontStaysOut()
{
    QFont hostFont(QStringLiteral("Monospace"));
    hostFont.setPixelSize(40);
    hostFont.setBold(true);
    hostFont.setItalic(true);
    hostFont.setUnderline(true);
    hostFont.setLetterSpacing(QFont::AbsoluteSpacing, 5);
    const ApplicationFont changed(hostFont);
    QVERIFY(QGraphicsTextItem().font().italic()); // what other items start from

    KrMovingTextItem panel;
    panel.addText(QStringLiteral("text"), 2);
    panel.addHtml(QStringLiteral("text"), 4);
    showNext(panel);
    showNext(panel);
    const QString family = QStringLiteral("Yu Gothic");
    QCOMPARE(titleOf(panel)->font(), QFont(family, 10, QFont::Bold));
    QCOMPARE(buttonsOf(panel).size(), 22);
    for (const KrTextItemButton_Private *button : buttonsOf(panel))
        QCOMPARE(button->font(), QFont(family, 10));
    QCOMPARE(messagesOf(panel).size(), 2);
    for (const KrTextItem_Private *message : messagesOf(panel))
        QCOMPARE(message->font(), QFont(family, 11));
}

void tst_KrMovingTextItem::itemSize_data()
{
    QTest::addColumn<QSizeF>("size");

    QTest::newRow("a common screen") << QSizeF(1922, 1080);
    QTest::newRow("a small panel") << QSizeF(502, 300);
    QTest::newRow("the panel's own size") << QSizeF(512, 384);
    QTest::newRow("so narrow that labels wrap") << QSizeF(202, 400);
    QTest::newRow("fractions") << QSizeF(1000.5, 700.25);
}

void tst_KrMovingTextItem::itemSize()
{
    QFETCH(QSizeF, size);

    KrMovingTextItem panel;
    panel.setItemSize(size);
    QCOMPARE(panel.rect(), QRectF(QPointF(0, 0), size));
    QCOMPARE(titleOf(panel)->textWidth(), size.width());
    QCOMPARE(titleOf(panel)->pos(), QPointF(0, 0));

    const ButtonList buttons = buttonsOf(panel);
    QCOMPARE(buttons.size(), 22);
    const qreal right = size.width() - 2;

    // From the bottom: #11 to #20, #1 to #10, "Start" and "Stop".
    struct Row
    {
        int first;
        int count;
    };
    qreal offset = 0;
    qreal greatest = 0;
    for (const Row &row : {Row{12, 10}, Row{2, 10}, Row{0, 2}}) {
        qreal x = right;
        for (int i = row.first + row.count - 1; i >= row.first; --i) {
            const KrTextItemButton_Private &button = *buttons.at(i);
            QCOMPARE(button.textWidth(), right / row.count);
            x -= button.documentWidth();
            QCOMPARE(
                button.pos(), QPointF(x, size.height() - (button.documentHeight() + offset) - 2));
            greatest = qMax(greatest, button.documentHeight());
        }
        offset += greatest;
    }
}

void tst_KrMovingTextItem::itemSizeByTwoNumbers()
{
    // Wide enough for the labels, so that a button is as wide as it is told to be.
    KrMovingTextItem panel;
    Kora::KrPluginGraphicsItem &item = panel;
    item.setItemSize(1002, 500);
    QCOMPARE(panel.rect(), QRectF(0, 0, 1002, 500));

    const ButtonList buttons = buttonsOf(panel);
    const qreal height = buttons.first()->documentHeight();
    QCOMPARE(buttons.at(0)->pos(), QPointF(0, 500 - 3 * height - 2)); // "Start"
    QCOMPARE(buttons.at(1)->pos(), QPointF(500, 500 - 3 * height - 2)); // "Stop"
    QCOMPARE(buttons.at(2)->pos(), QPointF(0, 500 - 2 * height - 2)); // #1
    QCOMPARE(buttons.at(11)->pos(), QPointF(900, 500 - 2 * height - 2)); // #10
    QCOMPARE(buttons.at(12)->pos(), QPointF(0, 500 - height - 2)); // #11
    QCOMPARE(buttons.at(21)->pos(), QPointF(900, 500 - height - 2)); // #20
}

void tst_KrMovingTextItem::itemSizeKeepsTheOrigin()
{
    KrMovingTextItem panel;
    panel.setRect(7, -9, 100, 100);
    panel.setItemSize(QSizeF(640, 480));
    QCOMPARE(panel.rect(), QRectF(7, -9, 640, 480));
}

void tst_KrMovingTextItem::itemSizeOfOddValues_data()
{
    QTest::addColumn<QSizeF>("size");

    QTest::newRow("nothing") << QSizeF(0, 0);
    QTest::newRow("less than the margin") << QSizeF(1, 1);
    QTest::newRow("negative") << QSizeF(-100, -50);
    QTest::newRow("invalid") << QSizeF();
    QTest::newRow("huge") << QSizeF(1e7, 1e7);
}

void tst_KrMovingTextItem::itemSizeOfOddValues()
{
    QFETCH(QSizeF, size);

    KrMovingTextItem panel;
    panel.setItemSize(size);
    QCOMPARE(panel.rect().width(), size.width());
    QCOMPARE(panel.rect().height(), size.height());
    panel.addText(QStringLiteral("message"), 6);
    showNext(panel);
    finishAnimations(panel);
    QCOMPARE(textsOf(panel), QStringList{QStringLiteral("message")});
}

void tst_KrMovingTextItem::itemSizeLeavesMessagesAlone()
{
    KrMovingTextItem panel;
    panel.setItemSize(400, 300);
    panel.addText(QStringLiteral("resting"), 2);
    showNext(panel);
    finishAnimations(panel);
    panel.addText(QStringLiteral("moving"), 4);
    showNext(panel);

    const ItemList messages = messagesOf(panel);
    QCOMPARE(messages.size(), 2);
    const QPointF resting = messages.at(0)->pos();
    const QPointF moving = messages.at(1)->pos();
    const QVariant end = animationOf(panel, messages.at(1))->endValue();

    panel.setItemSize(800, 600);
    QCOMPARE(messages.at(0)->pos(), resting);
    QCOMPARE(messages.at(1)->pos(), moving);
    QCOMPARE(messages.at(0)->textWidth(), 400.0);
    QCOMPARE(messages.at(1)->textWidth(), 400.0);
    QVERIFY(animationOf(panel, messages.at(0)) == nullptr);
    QCOMPARE(animationOf(panel, messages.at(1))->endValue(), end);
}

static void addDirections()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<int>("horizontal"); // -1 leftwards, 1 rightwards
    QTest::addColumn<int>("vertical"); // -1 upwards, 1 downwards

    QTest::newRow("leftwards") << 1 << -1 << 0;
    QTest::newRow("upwards") << 2 << 0 << -1;
    QTest::newRow("left and up") << 3 << -1 << -1;
    QTest::newRow("rightwards") << 4 << 1 << 0;
    QTest::newRow("right and up") << 6 << 1 << -1;
    QTest::newRow("left and right cancelled, up") << 7 << 0 << -1;
    QTest::newRow("downwards") << 8 << 0 << 1;
    QTest::newRow("left and down") << 9 << -1 << 1;
    QTest::newRow("up and down cancelled, left") << 11 << -1 << 0;
    QTest::newRow("right and down") << 12 << 1 << 1;
    QTest::newRow("left and right cancelled, down") << 13 << 0 << 1;
    QTest::newRow("up and down cancelled, right") << 14 << 1 << 0;
    QTest::newRow("upwards with a bit that means nothing") << 18 << 0 << -1;
    QTest::newRow("leftwards with a bit that means nothing") << 17 << -1 << 0;
    QTest::newRow("only a bit that means nothing") << 16 << 0 << 0;
    QTest::newRow("all four cancelled, a bit that means nothing") << 31 << 0 << 0;
    QTest::newRow("every bit of a negative number") << -1 << 0 << 0;
}

/// Panel of 400 x 300; where a text starts, rests and leaves to.
static QPointF startOf(int horizontal, int vertical, const KrTextItem_Private &item)
{
    const qreal width = item.document()->idealWidth();
    return {horizontal < 0 ? 400 : horizontal > 0 ? -width : 0, vertical < 0 ? 300.0 : 0.0};
}

static QPointF restOf(int horizontal, int vertical, const KrTextItem_Private &item)
{
    const qreal width = item.document()->idealWidth();
    const qreal height = item.document()->size().height();
    return {horizontal > 0 ? 400 - width : 0, vertical != 0 ? (300 - height) / 2 : 0};
}

static QPointF exitOf(int horizontal, int vertical, const KrTextItem_Private &item)
{
    const qreal width = item.document()->idealWidth();
    const qreal height = item.document()->size().height();
    return {horizontal < 0   ? -width
            : horizontal > 0 ? 400
                             : 0,
        vertical < 0       ? -height
            : vertical > 0 ? 300
                           : 0};
}

void tst_KrMovingTextItem::entering_data()
{
    addDirections();
}

void tst_KrMovingTextItem::entering()
{
    QFETCH(int, direction);
    QFETCH(int, horizontal);
    QFETCH(int, vertical);

    KrMovingTextItem panel;
    panel.setItemSize(400, 300);
    panel.addText(QStringLiteral("Starting..."), direction);
    QVERIFY(messagesOf(panel).isEmpty()); // until the event loop runs
    showNext(panel);

    QCOMPARE(messagesOf(panel).size(), 1);
    const QPointer<KrTextItem_Private> item = messagesOf(panel).first();
    QCOMPARE(item->toPlainText(), QStringLiteral("Starting..."));
    QCOMPARE(item->direction(), direction);
    QCOMPARE(item->parentItem(), static_cast<QGraphicsItem *>(&panel));
    QCOMPARE(item->textWidth(), 400.0);
    QVERIFY(item->isVisible());
    QVERIFY(item->document()->idealWidth() > 0 && item->document()->idealWidth() < 400);
    const bool onTop = horizontal != 0 && vertical == 0;
    QCOMPARE(item->zValue(), onTop ? Topmost + 0.1 : 0.0);

    const QPointF start = startOf(horizontal, vertical, *item);
    const QPointF rest = restOf(horizontal, vertical, *item);
    const QPointer<QPropertyAnimation> animation = animationOf(panel, item);
    QVERIFY(animation);
    QCOMPARE(item->pos(), start);
    QCOMPARE(animation->propertyName(), QByteArray("pos"));
    QCOMPARE(animation->parent(), static_cast<QObject *>(&panel));
    QCOMPARE(animation->duration(), 800);
    QCOMPARE(animation->easingCurve().type(), QEasingCurve::OutQuint);
    QCOMPARE(animation->startValue().toPointF(), start);
    QCOMPARE(animation->endValue().toPointF(), rest);

    finishAnimations(panel);
    QVERIFY(animation.isNull());
    QVERIFY(item);
    QCOMPARE(item->pos(), rest);
}

void tst_KrMovingTextItem::leaving_data()
{
    addDirections();
}

void tst_KrMovingTextItem::leaving()
{
    QFETCH(int, direction);
    QFETCH(int, horizontal);
    QFETCH(int, vertical);

    KrMovingTextItem panel;
    panel.setItemSize(400, 300);
    panel.addText(QStringLiteral("first"), direction);
    showNext(panel);
    finishAnimations(panel);
    const QPointer<KrTextItem_Private> first = messagesOf(panel).value(0);
    QVERIFY(first);

    panel.addText(QStringLiteral("second"), direction);
    showNext(panel);
    QCOMPARE(textsOf(panel), QStringList({QStringLiteral("first"), QStringLiteral("second")}));
    const QPointer<KrTextItem_Private> second = messagesOf(panel).value(1);

    const QPointer<QPropertyAnimation> animation = animationOf(panel, first);
    QVERIFY(animation);
    QCOMPARE(animation->propertyName(), QByteArray("pos"));
    QCOMPARE(animation->parent(), static_cast<QObject *>(&panel));
    QCOMPARE(animation->duration(), 800);
    QCOMPARE(animation->easingCurve().type(), QEasingCurve::OutQuint);
    QCOMPARE(animation->startValue().toPointF(), restOf(horizontal, vertical, *first));
    QCOMPARE(animation->endValue().toPointF(), exitOf(horizontal, vertical, *first));

    finishAnimations(panel);
    QVERIFY(animation.isNull());
    QVERIFY(first.isNull());
    QVERIFY(second);
    QCOMPARE(second->pos(), restOf(horizontal, vertical, *second));
}

void tst_KrMovingTextItem::plainTextIsNoMarkup()
{
    KrMovingTextItem panel;
    panel.addText(QStringLiteral("<b>1 < 2</b> &amp;"), 2);
    showNext(panel);
    QCOMPARE(textsOf(panel), QStringList{QStringLiteral("<b>1 < 2</b> &amp;")});
}

void tst_KrMovingTextItem::htmlIsMarkup()
{
    KrMovingTextItem panel;
    panel.addHtml(QStringLiteral("<font color=\"red\">Failed &amp; more</font>"), 4);
    showNext(panel);
    const ItemList messages = messagesOf(panel);
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first()->toPlainText(), QStringLiteral("Failed & more"));
    QCOMPARE(messages.first()->direction(), 4);
    QVERIFY(messages.first()->toHtml().contains(QStringLiteral("color:#ff0000")));
}

void tst_KrMovingTextItem::htmlLoadsNothing()
{
    const QTemporaryDir directory;
    QVERIFY(directory.isValid());
    const QString fileName = directory.filePath(QStringLiteral("image.png"));
    QImage image(90, 70, QImage::Format_RGB32);
    image.fill(Qt::red);
    QVERIFY(image.save(fileName));

    KrMovingTextItem panel;
    panel.addHtml(QStringLiteral("Index <img src=\"%1\">0").arg(fileName), 2);
    panel.addHtml(QStringLiteral("Index 0"), 4);
    showNext(panel);
    showNext(panel);
    const ItemList messages = messagesOf(panel);
    QCOMPARE(messages.size(), 2);
    QCOMPARE(messages.at(0)->document()->size(), messages.at(1)->document()->size());
    QCOMPARE(messages.at(0)->document()->idealWidth(), messages.at(1)->document()->idealWidth());
}

void tst_KrMovingTextItem::neverShown_data()
{
    QTest::addColumn<int>("direction");

    QTest::newRow("no bit") << 0;
    QTest::newRow("left and right") << 5;
    QTest::newRow("up and down") << 10;
    QTest::newRow("all four") << 15;
}

void tst_KrMovingTextItem::neverShown()
{
    QFETCH(int, direction);

    KrMovingTextItem panel;
    TextItemSpy spy;
    panel.addText(QStringLiteral("text"), direction);
    panel.addHtml(QStringLiteral("<b>html</b>"), direction);
    panel.addText(QStringLiteral("shown"), 2);
    QCOMPARE(spy.items.size(), 3);
    QVERIFY(spy.items.at(0));

    // They are taken from the queue, so the third message comes third.
    showNext(panel);
    showNext(panel);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(spy.items.at(0).isNull());
    QVERIFY(spy.items.at(1).isNull());
    QVERIFY(messagesOf(panel).isEmpty());
    QVERIFY(panel.findChildren<QPropertyAnimation *>().isEmpty());
    showNext(panel);
    QCOMPARE(textsOf(panel), QStringList{QStringLiteral("shown")});
}

void tst_KrMovingTextItem::cancelledDirectionLeavesTheShownOne()
{
    KrMovingTextItem panel;
    panel.addText(QStringLiteral("shown"), 2);
    showNext(panel);
    finishAnimations(panel);
    const QPointF rest = messagesOf(panel).first()->pos();

    panel.addText(QStringLiteral("never"), 10);
    showNext(panel);
    QCOMPARE(textsOf(panel), QStringList{QStringLiteral("shown")});
    QVERIFY(panel.findChildren<QPropertyAnimation *>().isEmpty());
    QCOMPARE(messagesOf(panel).first()->pos(), rest);
}

void tst_KrMovingTextItem::directionsHaveTheirOwnMessages()
{
    KrMovingTextItem panel;
    const QList<int> directions{2, 4, 1, 8};
    for (const int direction : directions) {
        panel.addText(QString::number(direction), direction);
        showNext(panel);
    }
    finishAnimations(panel);
    QCOMPARE(textsOf(panel).join(QLatin1Char(' ')), QStringLiteral("1 2 4 8"));

    panel.addText(QStringLiteral("new"), 4);
    showNext(panel);
    finishAnimations(panel);
    QCOMPARE(textsOf(panel).join(QLatin1Char(' ')), QStringLiteral("1 2 8 new"));
}

void tst_KrMovingTextItem::directionAsSetIsTheKey()
{
    // 2, 7 and 18 all travel upwards, each with its own current message.
    KrMovingTextItem panel;
    for (const int direction : {2, 7, 18}) {
        panel.addText(QString::number(direction), direction);
        showNext(panel);
    }
    finishAnimations(panel);
    QCOMPARE(textsOf(panel).join(QLatin1Char(' ')), QStringLiteral("18 2 7"));

    panel.addText(QStringLiteral("new"), 7);
    showNext(panel);
    finishAnimations(panel);
    QCOMPARE(textsOf(panel).join(QLatin1Char(' ')), QStringLiteral("18 2 new"));
}

void tst_KrMovingTextItem::messagesAreShownInOrder()
{
    KrMovingTextItem panel;
    panel.addText(QStringLiteral("a"), 2);
    panel.addHtml(QStringLiteral("b"), 4);
    panel.addText(QStringLiteral("c"), 8);
    for (const char *shown : {"a", "a b", "a b c"}) {
        showNext(panel);
        QCOMPARE(textsOf(panel).join(QLatin1Char(' ')), QString::fromLatin1(shown));
    }
}

void tst_KrMovingTextItem::emptyQueue()
{
    KrMovingTextItem panel;
    panel.addText(QStringLiteral("a"), 2);
    showNext(panel);
    finishAnimations(panel);
    showNext(panel);
    showNext(panel);
    QCOMPARE(textsOf(panel), QStringList{QStringLiteral("a")});
    QVERIFY(panel.findChildren<QPropertyAnimation *>().isEmpty());
}

void tst_KrMovingTextItem::twoAtOnce()
{
    KrMovingTextItem panel;
    panel.setItemSize(400, 300);
    panel.addText(QStringLiteral("first"), 2);
    panel.addText(QStringLiteral("second"), 2);
    showNext(panel);
    const QPointer<KrTextItem_Private> first = messagesOf(panel).value(0);
    QVERIFY(first);
    animationOf(panel, first)->setCurrentTime(20); // on its way in
    const QPointF turning = first->pos();
    QVERIFY(turning.y() < 300 && turning.y() > restOf(0, -1, *first).y());

    showNext(panel);
    const QPointer<KrTextItem_Private> second = messagesOf(panel).value(1);
    QVERIFY(second);
    // The first one goes out from where it is, and nothing moves it back in.
    QPropertyAnimation *out = animationOf(panel, first);
    QVERIFY(out != nullptr);
    QCOMPARE(out->startValue().toPointF(), turning);
    QCOMPARE(out->endValue().toPointF(), exitOf(0, -1, *first));
    QPropertyAnimation *in = animationOf(panel, second);
    QVERIFY(in != nullptr);
    QCOMPARE(in->startValue().toPointF(), QPointF(0, 300));

    finishAnimations(panel);
    QVERIFY(first.isNull());
    QCOMPARE(second->pos(), restOf(0, -1, *second));
}

void tst_KrMovingTextItem::leavingMessageIsNotPushedAgain()
{
    KrMovingTextItem panel;
    panel.setItemSize(400, 300);
    for (const char *text : {"first", "second", "third"}) {
        panel.addText(QString::fromLatin1(text), 2);
        showNext(panel);
    }
    const ItemList messages = messagesOf(panel);
    QCOMPARE(messages.size(), 3);
    QCOMPARE(
        animationOf(panel, messages.at(0))->endValue().toPointF(), exitOf(0, -1, *messages.at(0)));
    QCOMPARE(
        animationOf(panel, messages.at(1))->endValue().toPointF(), exitOf(0, -1, *messages.at(1)));
    QCOMPARE(
        animationOf(panel, messages.at(2))->endValue().toPointF(), restOf(0, -1, *messages.at(2)));

    finishAnimations(panel);
    QCOMPARE(textsOf(panel), QStringList{QStringLiteral("third")});
}

/// Animations are moved by ticks, of which there are none without an event loop.
void tst_KrMovingTextItem::slidesEndByTheClock()
{
    KrMovingTextItem panel;
    panel.setItemSize(400, 300);
    const auto show = [&panel](const QString &text) {
        panel.addText(text, 2);
        showNext(panel);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    show(QStringLiteral("first"));
    show(QStringLiteral("second"));
    QCOMPARE(textsOf(panel), QStringList({QStringLiteral("first"), QStringLiteral("second")}));

    QThread::msleep(801);
    show(QStringLiteral("third"));
    QCOMPARE(textsOf(panel), QStringList({QStringLiteral("second"), QStringLiteral("third")}));
}

void tst_KrMovingTextItem::messageDeletedByAnother()
{
    // The scene is the host's; it may clear away what is on it.
    KrMovingTextItem panel;
    panel.addText(QStringLiteral("first"), 2);
    showNext(panel);
    delete messagesOf(panel).first();
    panel.addText(QStringLiteral("second"), 2);
    showNext(panel);
    finishAnimations(panel);
    QCOMPARE(textsOf(panel), QStringList{QStringLiteral("second")});
}

void tst_KrMovingTextItem::sizeOfTheMomentCounts()
{
    // Sized between queueing and showing, and between entering and leaving.
    KrMovingTextItem panel;
    panel.addText(QStringLiteral("first"), 4);
    panel.setItemSize(400, 300);
    showNext(panel);
    const KrTextItem_Private *first = messagesOf(panel).first();
    QCOMPARE(first->textWidth(), 400.0);
    QCOMPARE(animationOf(panel, first)->endValue().toPointF(), restOf(1, 0, *first));
    finishAnimations(panel);

    panel.setItemSize(800, 600);
    panel.addText(QStringLiteral("second"), 4);
    showNext(panel);
    QCOMPARE(animationOf(panel, first)->endValue().toPointF(), QPointF(800, 0));
}

static QImage rendered(QGraphicsScene &scene)
{
    QImage image(scene.sceneRect().size().toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    scene.render(&painter);
    return image;
}

void tst_KrMovingTextItem::clipping()
{
    QGraphicsScene scene(0, 0, 300, 200);
    auto *panel = new KrMovingTextItem;
    scene.addItem(panel);
    panel->setItemSize(100, 60);
    panel->setPos(100, 70);

    QString html;
    for (int line = 0; line < 40; ++line) {
        html += QStringLiteral(
            "<span style='background-color:#ff0000'>MMMMMMMMMMMMMMMMMMMMMMMMM</span><br>");
    }
    panel->addHtml(html, 2);
    panel->addHtml(
        QStringLiteral("<table width='290' bgcolor='#ff0000'><tr><td>x</td></tr></table>"), 4);
    showNext(*panel);
    showNext(*panel);
    finishAnimations(*panel);
    const ItemList messages = messagesOf(*panel);
    QVERIFY(messages.at(0)->document()->size().height() > 200);
    QVERIFY(messages.at(1)->sceneBoundingRect().width() > 200);

    const QImage image = rendered(scene);
    bool red = false;
    const QRect inside(100, 70, 100, 60);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (inside.contains(x, y))
                red = red || image.pixelColor(x, y) == QColor(Qt::red);
            else if (!inside.adjusted(-1, -1, 1, 1).contains(x, y))
                QCOMPARE(image.pixelColor(x, y), QColor(Qt::white));
        }
    }
    QVERIFY(red);
}

void tst_KrMovingTextItem::drawsWhatIsSeenAsIfWhole_data()
{
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<bool>("isSeen");

    QTest::newRow("at the top") << QPointF(0, 0) << true;
    QTest::newRow("in the middle of a row") << QPointF(0, -100.5) << true;
    QTest::newRow("its end") << QPointF(0, -650) << true;
    QTest::newRow("half to the left") << QPointF(-70.25, 3) << true;
    QTest::newRow("half to the right") << QPointF(70.75, -3) << true;
    QTest::newRow("its first rows alone") << QPointF(0, 75.5) << true;
    QTest::newRow("above") << QPointF(0, -2000) << false;
    QTest::newRow("below") << QPointF(0, 120) << false;
    QTest::newRow("left of it") << QPointF(-200, 0) << false;
}

/// As if nothing had been left out for being cut off.
void tst_KrMovingTextItem::drawsWhatIsSeenAsIfWhole()
{
    QFETCH(QPointF, position);
    QFETCH(bool, isSeen);

    QGraphicsScene scene(0, 0, 140, 100);
    auto *panel = new KrMovingTextItem;
    scene.addItem(panel);
    panel->setItemSize(140, 100);
    const QImage empty = rendered(scene);

    QString html = QStringLiteral("<table border='1'>");
    for (int row = 0; row < 35; ++row)
        html += QStringLiteral("<tr><td>%1</td><td bgcolor='#00ff00'>M</td></tr>").arg(row);
    panel->addHtml(html + QStringLiteral("</table>"), 2);
    showNext(*panel);
    finishAnimations(*panel);
    KrTextItem_Private *message = asTextItem(messagesOf(*panel).constFirst());
    QVERIFY(message->boundingRect().height() > 700);
    message->setBackgroundColor(QColor(255, 0, 0, 100));
    message->setPos(position);
    const QImage image = rendered(scene);
    QCOMPARE(image != empty, isSeen);

    panel->setFlag(QGraphicsItem::ItemClipsChildrenToShape, false);
    QCOMPARE(image, rendered(scene));
}

void tst_KrMovingTextItem::realTime()
{
    // Both messages are queued at once; the event loop does the rest.
    KrMovingTextItem panel;
    panel.setItemSize(400, 300);
    TextItemSpy spy;
    QElapsedTimer clock;
    clock.start();
    panel.addText(QStringLiteral("first"), 2);
    panel.addText(QStringLiteral("second"), 2);
    QCOMPARE(spy.items.size(), 2);
    const QPointer<QGraphicsTextItem> first = spy.items.at(0);

    QTRY_COMPARE(textsOf(panel).size(), 2);
    QTRY_COMPARE(textsOf(panel), QStringList{QStringLiteral("second")});
    QVERIFY(clock.elapsed() >= 750); // the animation's 800 ms, in its timer's steps
    QVERIFY(first.isNull());
    QTRY_VERIFY(panel.findChildren<QPropertyAnimation *>().isEmpty());
    const KrTextItem_Private *second = messagesOf(panel).first();
    QCOMPARE(second->pos(), restOf(0, -1, *second));
}

void tst_KrMovingTextItem::clicks_data()
{
    QTest::addColumn<QString>("buttonName");
    QTest::addColumn<QString>("call");

    QTest::newRow("Start starts") << QStringLiteral("start") << QStringLiteral("start()");
    QTest::newRow("Stop stops") << QStringLiteral("stop") << QStringLiteral("stop()");
    for (int number = 1; number <= 20; ++number) {
        QTest::addRow("#%d requests sequence number %d", number, number)
            << QStringLiteral("#%1").arg(number)
            << QStringLiteral("requestSequenceNumber(%1)").arg(number);
    }
}

/// Panel of 600 x 400 in a view of that size.
struct PanelView
{
    PanelView()
    {
        view.setFrameStyle(QFrame::NoFrame);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.resize(600, 400);
        scene.setSceneRect(0, 0, 600, 400);
        view.setScene(&scene);
        panel = new KrMovingTextItem;
        panel->setItemSize(600, 400);
        panel->setPlugin(&plugin);
        scene.addItem(panel);
        view.show();
    }

    bool isReady() { return QTest::qWaitForWindowExposed(&view); }

    QPoint centerOf(const QString &buttonName) const
    {
        return view.mapFromScene(buttonOf(*panel, buttonName)->sceneBoundingRect().center());
    }

    void click(const QString &buttonName)
    {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, centerOf(buttonName));
    }

    FakeScreenPlugin plugin;
    QGraphicsScene scene;
    QGraphicsView view;
    QPointer<KrMovingTextItem> panel; // owned by the scene
};

void tst_KrMovingTextItem::clicks()
{
    QFETCH(QString, buttonName);
    QFETCH(QString, call);

    PanelView on;
    QVERIFY(on.isReady());
    on.click(buttonName);
    QCOMPARE(on.plugin.calls, QStringList{call});
}

void tst_KrMovingTextItem::doubleClick()
{
    PanelView on;
    QVERIFY(on.isReady());
    QWidget *viewport = on.view.viewport();
    const QPoint position = on.centerOf(QStringLiteral("#7"));
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
             QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        const bool release = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, position, viewport->mapToGlobal(position), Qt::LeftButton,
            release ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &event);
    }
    const QString call = QStringLiteral("requestSequenceNumber(7)");
    QCOMPARE(on.plugin.calls, QStringList({call, call}));
}

void tst_KrMovingTextItem::manyClicksOnTwoPanels()
{
    constexpr int Clicks = 300; // on each
    PanelView first;
    PanelView second;
    QVERIFY(first.isReady() && second.isReady());
    const QStringList names{QStringLiteral("start"), QStringLiteral("stop"), QStringLiteral("#20")};
    for (int click = 0; click < Clicks; ++click) {
        first.click(names.at(click % names.size()));
        second.click(names.at((click + 1) % names.size()));
        QTest::qWait(1);
    }
    // One click, one request.
    for (const PanelView *on : {&first, &second}) {
        QCOMPARE(on->plugin.calls.size(), Clicks);
        for (const char *call : {"start()", "stop()", "requestSequenceNumber(20)"})
            QCOMPARE(on->plugin.calls.count(QString::fromLatin1(call)), Clicks / names.size());
    }
    // None piles up: all that a click has set going is over soon after it.
    const auto animations = [](const KrMovingTextItem &panel) {
        int count = panel.findChildren<QAbstractAnimation *>().size();
        for (const KrTextItemButton_Private *button : buttonsOf(panel))
            count += button->findChildren<QAbstractAnimation *>().size();
        return count;
    };
    QTRY_COMPARE(animations(*first.panel), 0);
    QTRY_COMPARE(animations(*second.panel), 0);
}

void tst_KrMovingTextItem::buttonNames_data()
{
    QTest::addColumn<QVariant>("name");
    QTest::addColumn<QStringList>("calls");

    const auto request = [](int number) {
        return QStringList{QStringLiteral("requestSequenceNumber(%1)").arg(number)};
    };
    const QStringList start{QStringLiteral("start()")};
    const QStringList stop{QStringLiteral("stop()")};
    const QStringList nothing;
    const auto text = [](const char *name) { return QVariant(QString::fromLatin1(name)); };

    QTest::newRow("start in any letter case") << text("StArT") << start;
    QTest::newRow("stop in any letter case") << text("STOP") << stop;
    QTest::newRow("bytes are a text too") << QVariant(QByteArray("start")) << start;
    QTest::newRow("a word that begins with start") << text("starter") << nothing;
    QTest::newRow("start with a blank") << text(" start") << nothing;
    QTest::newRow("a number") << text("#7") << request(7);
    QTest::newRow("a number beyond the buttons") << text("#99") << request(99);
    QTest::newRow("zero") << text("#0") << request(0);
    QTest::newRow("a negative number") << text("#-3") << request(-3);
    QTest::newRow("leading zeros are decimal") << text("#010") << request(10);
    QTest::newRow("two number signs") << text("##7") << request(7);
    QTest::newRow("every number sign is removed") << text("#1#2#") << request(12);
    QTest::newRow("no number") << text("#x") << nothing;
    QTest::newRow("a number sign alone") << text("#") << nothing;
    QTest::newRow("a number with a letter behind it") << text("#7a") << nothing;
    QTest::newRow("a hexadecimal number") << text("#0x10") << nothing;
    QTest::newRow("a fraction") << text("#1.5") << nothing;
    QTest::newRow("a number that is too large") << text("#99999999999") << nothing;
    QTest::newRow("a number without a number sign") << text("7") << nothing;
    QTest::newRow("a number sign that is not first") << text("7#") << nothing;
    QTest::newRow("an int") << QVariant(7) << nothing;
    QTest::newRow("an empty name") << text("") << nothing;
    QTest::newRow("no name at all") << QVariant() << nothing;
}

void tst_KrMovingTextItem::buttonNames()
{
    QFETCH(QVariant, name);
    QFETCH(QStringList, calls);

    FakeScreenPlugin plugin;
    KrMovingTextItem panel;
    panel.setPlugin(&plugin);
    QObject button;
    if (name.isValid())
        button.setProperty("buttonName", name);
    QVERIFY(QMetaObject::invokeMethod(
        &panel, "buttonClicked", Q_ARG(QObject *, static_cast<QObject *>(&button))));
    QCOMPARE(plugin.calls, calls);
    panel.setPlugin(nullptr);
}

void tst_KrMovingTextItem::buttonWithoutPlugin()
{
    KrMovingTextItem panel;
    for (KrTextItemButton_Private *button : buttonsOf(panel))
        panel.buttonClicked(button);
    QVERIFY(textsOf(panel).isEmpty());
}

void tst_KrMovingTextItem::noButton()
{
    FakeScreenPlugin plugin;
    KrMovingTextItem panel;
    panel.setPlugin(&plugin);
    panel.buttonClicked(nullptr);
    QCOMPARE(plugin.calls, QStringList());
    panel.setPlugin(nullptr);
}

void tst_KrMovingTextItem::destructorTellsThePlugin()
{
    FakeScreenPlugin plugin;
    auto panel = std::make_unique<KrMovingTextItem>();
    panel->setPlugin(&plugin);
    QCOMPARE(plugin.calls, QStringList());
    panel.reset();
    QCOMPARE(plugin.calls, QStringList{QStringLiteral("releaseGraphicsItem()")});
}

void tst_KrMovingTextItem::releasedPanelKeepsSilent()
{
    FakeScreenPlugin plugin;
    auto panel = std::make_unique<KrMovingTextItem>();
    panel->setPlugin(&plugin);
    panel->setReleased();

    // Its buttons still work.
    panel->buttonClicked(buttonOf(*panel, QStringLiteral("#3")));
    QCOMPARE(plugin.calls, QStringList{QStringLiteral("requestSequenceNumber(3)")});
    plugin.calls.clear();
    panel.reset();
    QCOMPARE(plugin.calls, QStringList());
}

void tst_KrMovingTextItem::replacedPanelKeepsSilent()
{
    FakeScreenPlugin plugin;
    auto older = std::make_unique<KrMovingTextItem>();
    older->setPlugin(&plugin);
    older->setReleased();
    auto newer = std::make_unique<KrMovingTextItem>();
    newer->setPlugin(&plugin);

    older.reset();
    QCOMPARE(plugin.calls, QStringList());
    newer.reset();
    QCOMPARE(plugin.calls, QStringList{QStringLiteral("releaseGraphicsItem()")});
}

void tst_KrMovingTextItem::panelOutlivesThePlugin_data()
{
    QTest::addColumn<bool>("released");

    QTest::newRow("after it was released") << true;
    QTest::newRow("without having been released") << false;
}

void tst_KrMovingTextItem::panelOutlivesThePlugin()
{
    QFETCH(bool, released);

    auto plugin = std::make_unique<FakeScreenPlugin>();
    auto panel = std::make_unique<KrMovingTextItem>();
    panel->setPlugin(plugin.get());
    if (released)
        panel->setReleased();
    panel->addText(QStringLiteral("pending"), 2);
    plugin.reset();

    for (KrTextItemButton_Private *button : buttonsOf(*panel))
        panel->buttonClicked(button);
    showNext(*panel);
    QCOMPARE(textsOf(*panel), QStringList{QStringLiteral("pending")});
    panel.reset();
}

void tst_KrMovingTextItem::pluginTakenAway()
{
    FakeScreenPlugin plugin;
    auto panel = std::make_unique<KrMovingTextItem>();
    panel->setPlugin(&plugin);
    panel->setPlugin(nullptr);
    panel->buttonClicked(buttonOf(*panel, QStringLiteral("start")));
    panel.reset();
    QCOMPARE(plugin.calls, QStringList());
}

void tst_KrMovingTextItem::pluginWithoutObject()
{
    // Nothing tells whether such a plug-in is still there, so it is taken to be.
    FakeScreenPlugin plugin;
    plugin.hasObject = false;
    auto panel = std::make_unique<KrMovingTextItem>();
    panel->setPlugin(&plugin);
    for (const char *name : {"start", "stop", "#4"})
        panel->buttonClicked(buttonOf(*panel, QString::fromLatin1(name)));
    panel.reset();
    QCOMPARE(plugin.calls,
        QStringList({QStringLiteral("start()"), QStringLiteral("stop()"),
            QStringLiteral("requestSequenceNumber(4)"), QStringLiteral("releaseGraphicsItem()")}));
}

void tst_KrMovingTextItem::hostDeletesThePanelInACall_data()
{
    QTest::addColumn<QString>("buttonName");

    QTest::newRow("in start") << QStringLiteral("start");
    QTest::newRow("in stop") << QStringLiteral("stop");
    QTest::newRow("in the request for a sequence") << QStringLiteral("#20");
}

void tst_KrMovingTextItem::hostDeletesThePanelInACall()
{
    QFETCH(QString, buttonName);

    PanelView on;
    QVERIFY(on.isReady());
    on.plugin.onCall = [&on] {
        on.plugin.onCall = nullptr;
        delete on.panel;
    };
    on.click(buttonName);
    QVERIFY(on.panel.isNull());
    QCOMPARE(on.plugin.calls.size(), 2);
    QCOMPARE(on.plugin.calls.last(), QStringLiteral("releaseGraphicsItem()"));
    QCoreApplication::processEvents();
}

void tst_KrMovingTextItem::hostDeletesThePluginInACall()
{
    KrMovingTextItem panel;
    auto *plugin = new FakeScreenPlugin;
    panel.setPlugin(plugin);
    QPointer<QObject> watched(plugin);
    plugin->onCall = [plugin] { plugin->deleteLater(); };
    panel.buttonClicked(buttonOf(panel, QStringLiteral("stop")));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(watched.isNull());
    panel.buttonClicked(buttonOf(panel, QStringLiteral("stop")));
}

void tst_KrMovingTextItem::sceneDeletedFirst()
{
    FakeScreenPlugin plugin;
    auto scene = std::make_unique<QGraphicsScene>();
    const QPointer<KrMovingTextItem> panel = new KrMovingTextItem;
    panel->setPlugin(&plugin);
    scene->addItem(panel);
    panel->addText(QStringLiteral("moving"), 2);
    showNext(*panel);
    scene.reset();
    QVERIFY(panel.isNull());
    QCOMPARE(plugin.calls, QStringList{QStringLiteral("releaseGraphicsItem()")});
    QCoreApplication::processEvents();
}

void tst_KrMovingTextItem::pendingIsDropped()
{
    TextItemSpy spy;
    auto panel = std::make_unique<KrMovingTextItem>();
    spy.items.clear();
    panel->addText(QStringLiteral("shown"), 2);
    showNext(*panel);
    panel->addText(QStringLiteral("pending"), 2);
    QCOMPARE(spy.items.size(), 2);
    const QPointer<QGraphicsTextItem> shown = spy.items.at(0);
    const QPointer<QGraphicsTextItem> pending = spy.items.at(1);
    panel.reset();
    QVERIFY(shown.isNull()); // a child of the panel
    QVERIFY(pending); // dropped from the list, not deleted
    QVERIFY(pending->parentItem() == nullptr);

    QSignalSpy idle(&spy, &QObject::destroyed);
    QVERIFY(!idle.wait(20)); // the timer of the message died with the panel
    QVERIFY(pending);
    delete pending;
}

QTEST_MAIN(tst_KrMovingTextItem)

#include "tst_krmovingtextitem.moc"
