#include "demo/desk/FrameHistory.h"
#include "demo/desk/ShownFrame.h"
#include "tests/desk/SampleFrames.h"

#include <QtTest>

#include <memory>

using namespace Desk;

/// What the views hear, as words: "plan Sample", "frame 1", "nothing", "picked", "following".
class tst_ShownFrame : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void follows();
    void pickedOne();
    void newPlan();
    void pickedOneOfAnOldPlan();
    void again();
    void framesOfALog();

private:
    QStringList heard();
    void addFrame();
    void setPlan(const QString &title);

    std::unique_ptr<FrameHistory> m_history;
    std::unique_ptr<ShownFrame> m_shown;
    QStringList m_heard;
    int m_seconds = 0;
};

void tst_ShownFrame::init()
{
    m_seconds = 0;
    m_heard.clear();
    m_shown.reset();
    m_history = std::make_unique<FrameHistory>(samplePlan());
    m_shown = std::make_unique<ShownFrame>(m_history.get());
    connect(m_shown.get(), &ShownFrame::planShown, this,
        [this](const Analysis::Plan &plan) { m_heard << QStringLiteral("plan ") + plan.title; });
    connect(m_shown.get(), &ShownFrame::frameShown, this, [this](const SeenFrame &frame) {
        m_heard << QStringLiteral("frame %1").arg(frame.number);
    });
    connect(m_shown.get(), &ShownFrame::nothingShown, this,
        [this] { m_heard << QStringLiteral("nothing"); });
    connect(m_shown.get(), &ShownFrame::pickedChanged, this, [this](bool isPicked) {
        m_heard << (isPicked ? QStringLiteral("picked") : QStringLiteral("following"));
    });
}

QStringList tst_ShownFrame::heard()
{
    return std::exchange(m_heard, {});
}

void tst_ShownFrame::addFrame()
{
    m_history->take(sampleFace(0, 200, 30, "Female"), sampleTime(++m_seconds * 1000));
}

void tst_ShownFrame::setPlan(const QString &title)
{
    Analysis::Plan plan = samplePlan();
    plan.title = title;
    m_history->setPlan(plan);
}

void tst_ShownFrame::follows()
{
    QCOMPARE(m_shown->number(), 0);
    addFrame();
    addFrame();
    QCOMPARE(heard(),
        QStringList(
            {QStringLiteral("plan Sample"), QStringLiteral("frame 1"), QStringLiteral("frame 2")}));
    QCOMPARE(m_shown->number(), 2);
    m_shown->follow();
    QCOMPARE(heard(), QStringList());
}

void tst_ShownFrame::pickedOne()
{
    addFrame();
    addFrame();
    heard();
    m_shown->pick(m_history->frames().front());
    QVERIFY(m_shown->isPicked());
    addFrame();
    m_shown->pick(m_history->frames().at(1));
    QCOMPARE(heard(),
        QStringList(
            {QStringLiteral("picked"), QStringLiteral("frame 1"), QStringLiteral("frame 2")}));
    m_shown->follow();
    QVERIFY(!m_shown->isPicked());
    addFrame();
    QCOMPARE(heard(),
        QStringList(
            {QStringLiteral("following"), QStringLiteral("frame 3"), QStringLiteral("frame 4")}));
}

void tst_ShownFrame::newPlan()
{
    addFrame();
    heard();
    setPlan(QStringLiteral("B"));
    QCOMPARE(heard(), QStringList({QStringLiteral("plan B"), QStringLiteral("nothing")}));
    QCOMPARE(m_shown->number(), 0);
    addFrame();
    QCOMPARE(heard(), QStringList({QStringLiteral("frame 2")}));
}

void tst_ShownFrame::pickedOneOfAnOldPlan()
{
    addFrame();
    setPlan(QStringLiteral("B"));
    addFrame();
    heard();
    m_shown->pick(m_history->frames().front());
    setPlan(QStringLiteral("C"));
    QCOMPARE(heard(),
        QStringList(
            {QStringLiteral("picked"), QStringLiteral("plan Sample"), QStringLiteral("frame 1")}));
    m_shown->follow(); // the newest frame is not of the newest plan
    QCOMPARE(heard(),
        QStringList(
            {QStringLiteral("following"), QStringLiteral("plan C"), QStringLiteral("nothing")}));
}

void tst_ShownFrame::again()
{
    m_shown->showAgain();
    QCOMPARE(heard(), QStringList({QStringLiteral("plan Sample"), QStringLiteral("nothing")}));
    addFrame();
    addFrame();
    m_shown->pick(m_history->frames().front());
    heard();
    m_shown->showAgain();
    QCOMPARE(heard(), QStringList({QStringLiteral("plan Sample"), QStringLiteral("frame 1")}));
}

/// And nothing else while it is open.
void tst_ShownFrame::framesOfALog()
{
    addFrame();
    m_shown->pick(m_history->newest());
    heard();
    const auto plan = std::make_shared<const Analysis::Plan>(samplePlan(2));
    m_shown->openLog(plan);
    QCOMPARE(heard().join(QStringLiteral(", ")), QStringLiteral("picked, plan Sample, nothing"));
    SeenFrame logged;
    logged.number = 77;
    m_shown->showLogged(logged);
    QCOMPARE(m_shown->number(), qint64{77});
    addFrame();
    setPlan(QStringLiteral("New"));
    m_shown->pick(m_history->newest());
    m_shown->follow();
    QVERIFY(m_shown->isPicked());
    QCOMPARE(heard().join(QStringLiteral(", ")), QStringLiteral("frame 77"));
    m_shown->closeLog();
    QVERIFY(!m_shown->isPicked());
    QCOMPARE(heard().join(QStringLiteral(", ")), QStringLiteral("following, plan New, nothing"));
    m_shown->showLogged(logged);
    QVERIFY(heard().isEmpty());
}

QTEST_GUILESS_MAIN(tst_ShownFrame)

#include "tst_shownframe.moc"
