#include "demo/player/StageScene.h"

#include "demo/player/CardItem.h"
#include "demo/player/StageView.h"
#include "host/KrPluginGraphicsItem.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using namespace Player;

class tst_StageScene : public QObject
{
    Q_OBJECT

private slots:
    void stageKeepsItsProportions_data();
    void stageKeepsItsProportions();
    void textsKeepClearOfThePanel_data();
    void textsKeepClearOfThePanel();
    void panelFollowsTheStage();
    void panelStaysItsOwners();
    void panelThatGoesFirst();
    void contentsFade();
    void manySwitchesLeaveOneCard();
    void cardColourFillsTheStage();
    void uselessPictureIsSaidOnce_data();
    void uselessPictureIsSaidOnce();
    void sceneGoesWithCardsFading();
};

namespace {

class Panel : public QObject, public Kora::KrPluginGraphicsItem
{
public:
    void setItemSize(qreal width, qreal height) override { setItemSize(QSizeF(width, height)); }
    void setItemSize(const QSizeF &size) override { setRect({QPointF(), size}); }
};

StageContent makeContent(int number, const QColor &color)
{
    StageContent content;
    content.number = number;
    content.name = QStringLiteral("Name %1").arg(number);
    content.title = QStringLiteral("A title of some words %1").arg(number);
    content.color = color;
    return content;
}

int cardCount(const StageScene &scene)
{
    int count = 0;
    const QList<QGraphicsItem *> items = scene.items();
    for (QGraphicsItem *item : items)
        count += dynamic_cast<CardItem *>(item) ? 1 : 0;
    return count;
}

} // namespace

void tst_StageScene::stageKeepsItsProportions_data()
{
    QTest::addColumn<QSize>("room");
    QTest::addColumn<QSize>("stage");

    QTest::newRow("room of the same shape") << QSize(1600, 900) << QSize(1600, 900);
    QTest::newRow("wide room") << QSize(2000, 900) << QSize(1600, 900);
    QTest::newRow("high room") << QSize(1600, 1600) << QSize(1600, 900);
}

void tst_StageScene::stageKeepsItsProportions()
{
    QFETCH(QSize, room);
    QFETCH(QSize, stage);

    QCOMPARE(StageView::fittingSize(room), stage);

    StageScene scene;
    StageView view(&scene);
    view.resize(room);
    view.show();
    QTRY_COMPARE(scene.stageSize(), QSizeF(stage));
    QCOMPARE(scene.sceneRect(), QRectF(QPointF(), stage));
}

void tst_StageScene::textsKeepClearOfThePanel_data()
{
    QTest::addColumn<QSizeF>("stage");

    QTest::newRow("small stage") << QSizeF(480, 270);
    QTest::newRow("usual stage") << QSizeF(1280, 720);
    QTest::newRow("large stage") << QSizeF(3840, 2160);
}

void tst_StageScene::textsKeepClearOfThePanel()
{
    QFETCH(QSizeF, stage);

    const QRectF whole(QPointF(), stage);
    const QRectF panel = StageScene::panelArea(stage);
    const QRectF beside = StageScene::textArea(stage, true);
    const QRectF alone = StageScene::textArea(stage, false);
    QVERIFY(whole.contains(panel));
    QVERIFY(whole.contains(alone));
    QVERIFY(alone.contains(beside));
    QVERIFY(beside.right() < panel.left());
    QVERIFY(alone.intersects(panel));
    QVERIFY(beside.width() > stage.width() * 0.35);
}

void tst_StageScene::panelFollowsTheStage()
{
    StageScene scene;
    Panel panel;
    scene.setPanel(&panel);
    for (const QSizeF &size : {QSizeF(1280, 720), QSizeF(640, 360)}) {
        scene.setStageSize(size);
        const QRectF area = StageScene::panelArea(size);
        QCOMPARE(panel.pos(), area.topLeft());
        QCOMPARE(panel.rect(), QRectF(QPointF(), area.size()));
    }
    scene.setStageSize(QSizeF()); // a view without room
    QCOMPARE(scene.stageSize(), QSizeF(640, 360));
}

void tst_StageScene::panelStaysItsOwners()
{
    auto scene = std::make_unique<StageScene>();
    Panel panel;
    scene->setPanel(&panel);
    QCOMPARE(panel.scene(), scene.get());
    scene->removePanel();
    QCOMPARE(panel.scene(), nullptr);
    scene->setPanel(&panel);
    scene.reset();
    QCOMPARE(panel.scene(), nullptr);
}

void tst_StageScene::panelThatGoesFirst()
{
    StageScene scene;
    auto panel = std::make_unique<Panel>();
    scene.setPanel(panel.get());
    panel.reset();
    scene.setStageSize({640, 360});
    scene.showContent(makeContent(1, Qt::red), 1);
    scene.setPanel(nullptr);
    QCOMPARE(cardCount(scene), 1);
}

void tst_StageScene::contentsFade()
{
    StageScene scene;
    QCOMPARE(scene.shownNumber(), -1);
    scene.showContent(makeContent(0, Qt::gray), 3);
    QCOMPARE(scene.shownNumber(), 0);
    QCOMPARE(cardCount(scene), 1); // the first one is there at once

    scene.showContent(makeContent(2, Qt::red), 3);
    QCOMPARE(scene.shownNumber(), 2);
    QCOMPARE(cardCount(scene), 2);
    QVERIFY(scene.isMoving());
    QTRY_COMPARE(cardCount(scene), 1);
    QVERIFY(!scene.isMoving());
    QCOMPARE(scene.shownNumber(), 2);

    scene.showContent(makeContent(2, Qt::red), 3);
    QCOMPARE(cardCount(scene), 1);
}

void tst_StageScene::manySwitchesLeaveOneCard()
{
    StageScene scene;
    for (int number = 1; number <= 20; ++number)
        scene.showContent(makeContent(number, Qt::blue), 20);
    QCOMPARE(scene.shownNumber(), 20);
    QTRY_COMPARE(cardCount(scene), 1);
    QCOMPARE(scene.shownNumber(), 20);
}

void tst_StageScene::cardColourFillsTheStage()
{
    StageScene scene;
    scene.setStageSize({640, 360});
    scene.showContent(makeContent(1, Qt::red), 3);
    const QImage image = scene.toImage();
    QCOMPARE(image.size(), QSize(640, 360));
    for (const QPoint &corner : {QPoint(1, 1), QPoint(638, 1), QPoint(1, 358), QPoint(638, 358)}) {
        const QColor color = image.pixelColor(corner);
        QVERIFY(color.red() > 100);
        QVERIFY(color.red() > 3 * color.green());
        QVERIFY(color.red() > 3 * color.blue());
    }
}

void tst_StageScene::uselessPictureIsSaidOnce_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("data"); // null: no such file
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("reason");

    const auto row
        = [](const char *what, const char *name, const QByteArray &data, qint64 size,
              const char *reason) { QTest::newRow(what) << name << data << size << reason; };
    row("it is missing", "none.png", {}, 0, "File not found");
    row("it is a directory", ".", {}, 0, "is not a file");
#ifdef Q_OS_UNIX
    row("it is a pipe that nobody writes to", "pipe.png", {}, 0, "is not a file");
#endif
    row("it is wide beyond all measure", "wide.pbm", "P4\n30000 30000\n", 15, "is too large");
    row("its file is", "long.pbm", "P4\n8 8\n", 64 * 1024 * 1024 + 1, "is too large");
}

void tst_StageScene::uselessPictureIsSaidOnce()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, data);
    QFETCH(qint64, size);
    QFETCH(QString, reason);

    const QTemporaryDir directory;
#ifdef Q_OS_UNIX
    const QString pipe = directory.filePath(QStringLiteral("pipe.png"));
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
#endif
    StageContent content = makeContent(1, Qt::red);
    content.picture = directory.filePath(name);
    if (!data.isNull()) {
        QFile file(content.picture);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(data) == data.size());
        QVERIFY(file.resize(size));
    }
    StageScene scene;
    const QString warning = content.picture + QLatin1String(": ") + reason;
    QTest::ignoreMessage(QtWarningMsg, qUtf8Printable(warning));
    scene.showContent(content, 1);
    scene.setStageSize({640, 360}); // a second message would fail the test below
    QCOMPARE(scene.shownNumber(), 1);
}

void tst_StageScene::sceneGoesWithCardsFading()
{
    auto scene = std::make_unique<StageScene>();
    for (int number = 1; number <= 3; ++number)
        scene->showContent(makeContent(number, Qt::blue), 3);
    QSignalSpy destroyed(scene.get(), &QObject::destroyed);
    scene.reset();
    QCOMPARE(destroyed.count(), 1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QTEST_MAIN(tst_StageScene)

#include "tst_stagescene.moc"
