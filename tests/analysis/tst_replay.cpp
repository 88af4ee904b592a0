#include "demo/simulator/FramePlan.h"
#include "demo/simulator/ScenarioReader.h"
#include "detection/Determination.h"
#include "detection/SensorOutputParser.h"
#include "log/LogFormat.h"
#include "tests/support/Files.h"
#include "tools/analysis/LogReader.h"
#include "tools/analysis/Replay.h"

#include <QBuffer>
#include <QDir>
#include <QtTest>

#include <random>

using namespace Analysis;
using namespace PluginKrHvcP2;

namespace {

constexpr int IntervalMs = 500;
constexpr int FramesOfAnHour = 7200;
constexpr int SomeFrames = 1500;

const QDateTime Begin(QDate(2018, 2, 1), QTime(9, 30));

/// What was requested for each frame.
using Requests = QVector<QVector<LoggedRequest>>;

QString textOf(const QVector<LoggedRequest> &requests)
{
    QString text;
    for (const LoggedRequest &request : requests)
        text += QStringLiteral("#%1 %2 ").arg(request.number).arg(request.isRestricted);
    return text;
}

/// Does and logs what the plug-in does and logs, at times that are given.
class LoggingPlugin
{
public:
    explicit LoggingPlugin(const Plan &plan)
        : m_settings(plan.settings)
    {
        setContents(plan.contents);
    }

    /// The request comes @p delayMs after the record of the frame.
    void receive(const QString &chunk, qint64 nowMs, int delayMs = 0);
    void startAgain(qint64 nowMs) { record(nowMs, "Notice", "HvcCon process started."); }
    void beAnotherOne(qint64 nowMs);
    bool request(int number, qint64 nowMs);
    void addText(const QByteArray &text) { m_log += text; }

    const QByteArray &log() const { return m_log; }
    const Requests &requests() const { return m_made; }

private:
    void setContents(const DetectionContents &contents) { m_requests.setContents(contents); }
    void record(qint64 nowMs, const char *level, const QString &text);
    void record(qint64 nowMs, const char *level, const char *text)
    {
        record(nowMs, level, QString::fromLatin1(text));
    }

    ScreenSettings m_settings;
    SequenceRequests m_requests;
    QByteArray m_log;
    Requests m_made;
};

void LoggingPlugin::record(qint64 nowMs, const char *level, const QString &text)
{
    m_log += LogFormat::record(1, Begin.addMSecs(nowMs), QString::fromLatin1(level), text).toUtf8();
}

bool LoggingPlugin::request(int number, qint64 nowMs)
{
    const int limit = m_settings.eventSendingLimit;
    if (m_requests.request(number, Begin.addMSecs(nowMs), limit)
        == SequenceRequests::Answer::Admitted)
        return true;
    record(nowMs, "Notice",
        QStringLiteral("#%1 is not sent now because it is within the limited min-time(%2 msec.).")
            .arg(number)
            .arg(limit));
    return false;
}

void LoggingPlugin::receive(const QString &chunk, qint64 nowMs, int delayMs)
{
    const SensorFrame frame = SensorOutputParser::parse(chunk, Begin.addMSecs(nowMs));
    record(nowMs, frame.errorSeen ? "Error" : (frame.noFace ? "Notice" : "Information"),
        SensorOutputParser::plainText(chunk));
    const auto determined = determineSequences(
        frame.faces, frame.sizes, frame.directionValues, m_requests.contents());
    QString message = QStringLiteral("The determined sequence number:");
    QVector<LoggedRequest> made;
    const auto best = determined.mid(0, m_settings.concurrent);
    for (const CalculatedData &data : best) {
        made.append({data.seqNumber, !request(data.seqNumber, nowMs + delayMs)});
        message += QStringLiteral(" #%1").arg(data.seqNumber);
    }
    if (!made.isEmpty())
        record(nowMs + delayMs, "Information", message);
    m_made.append(made);
}

void LoggingPlugin::beAnotherOne(qint64 nowMs)
{
    const DetectionContents contents = m_requests.contents();
    m_requests = SequenceRequests();
    setContents(contents);
    startAgain(nowMs);
}

/// As a command feeds it.
QVector<ReplayedFrame> replayed(Replay &replay, const QByteArray &log)
{
    QBuffer buffer;
    buffer.setData(log);
    buffer.open(QIODevice::ReadOnly);
    LogReader reader(&buffer, {QStringLiteral("f"), 1, 0});
    QVector<ReplayedFrame> frames;
    while (const std::optional<Entry> entry = reader.next()) {
        if (entry->kind == Entry::Unknown)
            replay.skip();
        else if (const auto frame = replay.take(*entry))
            frames.append(*frame);
    }
    if (const auto frame = replay.finish())
        frames.append(*frame);
    return frames;
}

QVector<ReplayedFrame> replayed(const Plan &plan, const QByteArray &log)
{
    Replay replay(plan);
    return replayed(replay, log);
}

QVector<LoggedRequest> requestsOf(const Decision &decision)
{
    QVector<LoggedRequest> requests;
    for (const DecidedFace &face : decision.faces) {
        if (face.outcome == DecidedFace::Sent || face.outcome == DecidedFace::Restricted)
            requests.append({face.sequence, face.outcome == DecidedFace::Restricted});
    }
    return requests;
}

int countEvidence(const QVector<ReplayedFrame> &frames, DecidedFace::Evidence evidence)
{
    int count = 0;
    for (const ReplayedFrame &frame : frames) {
        for (const DecidedFace &face : frame.decision.faces) {
            const bool isRequested
                = face.outcome == DecidedFace::Sent || face.outcome == DecidedFace::Restricted;
            if (isRequested && face.evidence == evidence)
                ++count;
        }
    }
    return count;
}

int countDifferences(const QVector<ReplayedFrame> &frames)
{
    return static_cast<int>(
        std::count_if(frames.cbegin(), frames.cend(), [](const ReplayedFrame &frame) {
            return frame.difference != Difference::None
                && frame.difference != Difference::Explainable;
        }));
}

/// Women of 20 to 39 get #1, which screens 2 and 3 follow, men #2, which screen 3 follows.
Plan smallPlan(int concurrent = 1, int limitMs = 5000)
{
    Plan plan;
    plan.contents = {{1, 20, 39, Female, false, {2, 3}}, {2, 20, 39, Male, false, {3}}};
    plan.settings.concurrent = concurrent;
    plan.settings.eventSendingLimit = limitMs;
    return plan;
}

QString face(int index, const char *gender)
{
    return QStringLiteral("Index:%1\tX:800 Y:600 Size:%2 Confidence:800\n"
                          "Age\tAge:30 Confidence:500\nGender\tGender:%3 Confidence:900\n")
        .arg(index)
        .arg(100 - index)
        .arg(QLatin1String(gender));
}

QString frame(const QString &faces)
{
    return QStringLiteral("Face result count:1\n") + faces
        + QStringLiteral("Press Space Key to end:\n");
}

const QString Woman = frame(face(0, "Female"));
const QString Man = frame(face(0, "Male"));
const QString Couple = frame(face(0, "Female") + face(1, "Male"));
const QString Nobody = QStringLiteral("Face result count:0\nPress Space Key to end:\n");

} // namespace

class tst_Replay : public QObject
{
    Q_OBJECT

private slots:
    void stories_data();
    void stories();
    void damagedRecords_data();
    void damagedRecords();
    void translatedTexts();
    void recordings();
    void otherPlans_data();
    void otherPlans();
    void otherLimit();
    void startByHand();
    void requestByHandThatReachedAScreen();
    void logThatBeginsLate();
    void decisionWithoutFrame();
    void decisionThatIsMissing();
    void sameSequenceTwice();
    void lastFrameWithoutDecision();
    void clockThatWasSetBack();

private:
    void compare(const QVector<ReplayedFrame> &actual, const Requests &expected);
};

void tst_Replay::compare(const QVector<ReplayedFrame> &actual, const Requests &expected)
{
    QCOMPARE(actual.size(), expected.size());
    for (int i = 0; i < actual.size(); ++i) {
        const ReplayedFrame &frame = actual.at(i);
        QCOMPARE(frame.number, i + 1);
        const QString place = QStringLiteral("frame %1: ").arg(i + 1);
        QCOMPARE(place + textOf(requestsOf(frame.decision)), place + textOf(expected.at(i)));
        QCOMPARE(int(frame.difference), int(Difference::None));
    }
}

void tst_Replay::stories_data()
{
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<QString>("stage");
    QTest::addColumn<int>("concurrent");
    QTest::addColumn<int>("limitMs");
    QTest::addColumn<int>("frames");

    const auto add = [](const char *name, const char *scenario, const char *stage, int concurrent,
                         int limitMs, int frames) {
        QTest::newRow(name) << QString::fromLatin1(scenario) << QString::fromLatin1(stage)
                            << concurrent << limitMs << frames;
    };
    add("an hour, one at once", "busy-shop", "shop-window", 1, 3000, FramesOfAnHour);
    add("an hour, several at once", "busy-shop", "station-concourse", 3, 5000, FramesOfAnHour);
    add("long restriction", "everyday", "shop-window", 2, 60000, SomeFrames);
    add("short restriction", "everyday", "station-concourse", 2, 1000, SomeFrames);
    add("shorter than a second", "busy-shop", "shop-window", 3, 300, SomeFrames);
    add("no restriction", "calm-shop", "station-concourse", 2, 0, SomeFrames);
}

/// A story, with ends of the sensor program and of the plug-in: what the plug-in has
/// logged is what a replay of its log makes of the frames.
void tst_Replay::stories()
{
    QFETCH(QString, scenario);
    QFETCH(QString, stage);
    QFETCH(int, concurrent);
    QFETCH(int, limitMs);
    QFETCH(int, frames);

    QString error;
    std::optional<Plan> plan
        = readPlan(QStringLiteral(KRHVC_STAGE_DIR "/%1.json").arg(stage), {}, &error);
    QVERIFY2(plan, qPrintable(error));
    plan->settings.concurrent = concurrent;
    plan->settings.eventSendingLimit = limitMs;
    const QString file = QStringLiteral(KRHVC_SCENARIO_DIR "/%1.json").arg(scenario);
    const auto story = Simulation::parseScenario(KrTest::readFile(file), file, &error);
    QVERIFY2(story, qPrintable(error));

    std::mt19937 random(11);
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<std::mt19937::result_type>(limit));
    };
    LoggingPlugin plugin(*plan);
    plugin.startAgain(0);
    qint64 now = 0;
    for (int i = 0; i < frames; ++i) {
        now += IntervalMs - 30 + below(60);
        if (below(600) == 0)
            plugin.startAgain(now);
        else if (below(600) == 0)
            plugin.beAnotherOne(now);
        const Simulation::FramePlan frame = Simulation::planFrame(*story, i, IntervalMs);
        plugin.receive(QString::fromUtf8(frame.output()), now, below(40));
    }
    const QVector<ReplayedFrame> decided = replayed(*plan, plugin.log());
    compare(decided, plugin.requests());
    QCOMPARE(countEvidence(decided, DecidedFace::Likelihood), 0);
    const int byTimes = countEvidence(decided, DecidedFace::Times);
    if (limitMs == 0 || limitMs >= 3000)
        QVERIFY(countEvidence(decided, DecidedFace::Log) < byTimes / 2 + 1);
}

void tst_Replay::damagedRecords_data()
{
    QTest::addColumn<int>("oneOf");

    QTest::newRow("one of 100") << 100;
    QTest::newRow("one of 10") << 10;
    QTest::newRow("one of 3") << 3;
}

/// What cannot be read is no difference.
void tst_Replay::damagedRecords()
{
    QFETCH(int, oneOf);

    const Plan plan = smallPlan(2, 3000);
    std::mt19937 random(3);
    LoggingPlugin plugin(plan);
    for (int i = 0; i < 3000; ++i)
        plugin.receive(QVector<QString>{Woman, Man, Couple, Nobody}.at(random() % 4), i * 300);
    QByteArray log = plugin.log();
    for (int i = log.indexOf(">> "); i >= 0; i = log.indexOf("\n>> ", i + 1)) {
        if (random() % static_cast<std::mt19937::result_type>(oneOf) == 0)
            log[log.indexOf('[', i)] = '(';
    }
    const QVector<ReplayedFrame> frames = replayed(plan, log);
    QVERIFY(frames.size() > 1500 && frames.size() < 3000);
    QCOMPARE(countDifferences(frames), 0);
}

void tst_Replay::translatedTexts()
{
    const Plan plan = smallPlan(2, 3000);
    LoggingPlugin plugin(plan);
    for (int i = 0; i < 100; ++i) {
        if (i % 30 == 0)
            plugin.beAnotherOne(i * 300);
        plugin.receive(i % 3 == 0 ? Couple : Man, i * 300);
    }
    QByteArray log = plugin.log();
    log.replace("The determined sequence number:", "Ermittelte Folgen:");
    log.replace(" is not sent now because it is within the limited min-time(",
        " wird jetzt nicht gesendet, die Mindestzeit (");
    log.replace("HvcCon process started.", "HvcCon wurde gestartet.");
    log.replace("[Notice]=", "[Hinweis]").replace("[Information]====", "[Mitteilung]=====");
    compare(replayed(plan, log), plugin.requests());
}

/// Frames without a log: nothing is logged about them, and nothing is open.
void tst_Replay::recordings()
{
    Replay replay(smallPlan());
    QVector<ReplayedFrame> frames;
    for (int i = 0; i < 3; ++i) {
        Entry entry;
        entry.kind = Entry::Frame;
        entry.text = Woman;
        entry.time = Begin.addMSecs(i * 2500);
        if (const auto frame = replay.take(entry))
            frames.append(*frame);
    }
    frames.append(*replay.finish());
    QCOMPARE(textOf(requestsOf(frames.at(0).decision)), QStringLiteral("#1 0 "));
    QCOMPARE(textOf(requestsOf(frames.at(1).decision)), QStringLiteral("#1 1 "));
    QCOMPARE(textOf(requestsOf(frames.at(2).decision)), QStringLiteral("#1 0 "));
    QCOMPARE(countEvidence(frames, DecidedFace::Times), 3);
    QCOMPARE(countDifferences(frames), 0);
    QVERIFY(!frames.at(0).isLogged);
}

void tst_Replay::otherPlans_data()
{
    QTest::addColumn<int>("concurrent");
    QTest::addColumn<QList<int>>("screensOfMen"); // that follow #2
    QTest::addColumn<int>("differing"); // frame; 0: none
    QTest::addColumn<int>("difference");

    QTest::newRow("the same") << 1 << QList<int>{3} << 0 << int(Difference::None);
    QTest::newRow("more at once") << 2 << QList<int>{3} << 1 << int(Difference::Determined);
    QTest::newRow("another screen follows")
        << 1 << QList<int>{4} << 2 << int(Difference::Restriction);
}

void tst_Replay::otherPlans()
{
    QFETCH(int, concurrent);
    QFETCH(QList<int>, screensOfMen);
    QFETCH(int, differing);
    QFETCH(int, difference);

    LoggingPlugin plugin(smallPlan());
    plugin.receive(Couple, 0);
    plugin.receive(Man, 1500);
    Plan other = smallPlan(concurrent);
    other.contents[1].identifiers = screensOfMen;
    // A start before the log began could explain it.
    const QByteArray earlier = LogFormat::record(
        1, Begin.addSecs(-60), QStringLiteral("Notice"), QStringLiteral("Face result count:0"))
                                   .toUtf8();
    const QVector<ReplayedFrame> frames = replayed(other, earlier + plugin.log());
    QCOMPARE(frames.size(), 3);
    QCOMPARE(int(frames.at(0).difference), int(Difference::None));
    for (int i = 1; i < frames.size(); ++i) {
        if (i == differing)
            QCOMPARE(int(frames.at(i).difference), difference);
        else if (differing == 0)
            QCOMPARE(int(frames.at(i).difference), int(Difference::None));
    }
}

/// The log's restriction time is told, and what it restricted tells nothing about another one.
void tst_Replay::otherLimit()
{
    LoggingPlugin plugin(smallPlan(1, 2000));
    plugin.receive(Nobody, -60000);
    for (int i = 0; i < 12; ++i)
        plugin.receive(Woman, i * 1000);
    Replay replay(smallPlan(1, 5000));
    const QVector<ReplayedFrame> frames = replayed(replay, plugin.log());
    QCOMPARE(replay.otherLimitMs().value_or(0), 2000);
    QVERIFY(countDifferences(frames) > 0);
    QStringList sent;
    for (const ReplayedFrame &frame : frames) {
        if (requestsOf(frame.decision) == QVector<LoggedRequest>{{1, false}})
            sent << QString::number(Begin.secsTo(frame.decision.time));
    }
    QCOMPARE(sent.join(QLatin1Char(' ')), QStringLiteral("0 5 10"));
}

/// A start by a button of the panel is not logged; what it restricts is.
void tst_Replay::startByHand()
{
    LoggingPlugin plugin(smallPlan());
    plugin.receive(Nobody, 0);
    QVERIFY(plugin.request(1, 30000));
    plugin.receive(Woman, 31000); // restricted
    QVERIFY(!plugin.request(1, 31500)); // by hand again
    plugin.receive(Woman, 33500); // restricted as well, by the same start
    plugin.receive(Woman, 35100); // sent, but too soon behind the one before
    plugin.receive(Woman, 50000);
    const QVector<ReplayedFrame> frames = replayed(smallPlan(), plugin.log());
    QCOMPARE(frames.size(), 5);
    QCOMPARE(int(frames.at(1).difference), int(Difference::Restriction));
    QCOMPARE(frames.at(1).differing, 0);
    QCOMPARE(textOf(frames.at(1).logged), QStringLiteral("#1 1 "));
    QCOMPARE(int(frames.at(2).difference), int(Difference::None));
    QCOMPARE(int(frames.at(3).difference), int(Difference::Explainable));
    QCOMPARE(textOf(frames.at(3).logged), QStringLiteral("#1 0 "));
    QCOMPARE(int(frames.at(4).difference), int(Difference::None));
}

/// Screen 2, but not screen 3.
void tst_Replay::requestByHandThatReachedAScreen()
{
    LoggingPlugin plugin(smallPlan());
    plugin.receive(Man, 30000);
    QVERIFY(!plugin.request(1, 32000));
    plugin.receive(Woman, 36000);
    const QVector<ReplayedFrame> frames = replayed(smallPlan(), plugin.log());
    compare(frames, plugin.requests());
    QCOMPARE(textOf(frames.at(1).logged), QStringLiteral("#1 1 "));
}

void tst_Replay::logThatBeginsLate()
{
    LoggingPlugin plugin(smallPlan());
    plugin.receive(Woman, 0);
    const int size = plugin.log().size();
    for (int i = 1; i < 10; ++i)
        plugin.receive(Woman, i * 1000);
    const QVector<ReplayedFrame> frames = replayed(smallPlan(), plugin.log().mid(size));
    compare(frames, plugin.requests().mid(1));
    QCOMPARE(int(frames.at(0).decision.faces.at(0).evidence), int(DecidedFace::Log));
}

void tst_Replay::decisionWithoutFrame()
{
    LoggingPlugin plugin(smallPlan());
    plugin.receive(Nobody, -60000);
    plugin.receive(Man, 0);
    plugin.addText("something else\n\n");
    const int begin = plugin.log().size();
    plugin.receive(Woman, 30000);
    const int size = plugin.log().indexOf(">> ", begin + 1) - begin;
    plugin.receive(Woman, 33000);
    QByteArray log = plugin.log();
    log.remove(begin, size);
    Replay replay(smallPlan());
    const QVector<ReplayedFrame> frames = replayed(replay, log);
    QCOMPARE(replay.decisionsWithoutFrame(), 1);
    QCOMPARE(frames.size(), 3);
    QCOMPARE(countDifferences(frames), 0);
    QCOMPARE(textOf(requestsOf(frames.at(2).decision)), QStringLiteral("#1 1 "));
    QCOMPARE(int(frames.at(2).decision.faces.at(0).evidence), int(DecidedFace::Log));
}

void tst_Replay::decisionThatIsMissing()
{
    LoggingPlugin plugin(smallPlan());
    plugin.receive(Woman, 0);
    QByteArray log = plugin.log();
    log.truncate(log.indexOf(">> ", 1));
    log += plugin.log();
    const QVector<ReplayedFrame> frames = replayed(smallPlan(), log);
    QCOMPARE(frames.size(), 2);
    QCOMPARE(int(frames.at(0).difference), int(Difference::Determined));
    QVERIFY(frames.at(0).isLogged);
    QVERIFY(frames.at(0).logged.isEmpty());
    QCOMPARE(int(frames.at(1).difference), int(Difference::Explainable));
}

void tst_Replay::sameSequenceTwice()
{
    const QString women = frame(face(0, "Female") + face(1, "Female"));
    LoggingPlugin plugin(smallPlan(2));
    plugin.receive(women, 0);
    plugin.receive(women, 5400);
    const QVector<ReplayedFrame> frames = replayed(smallPlan(2), plugin.log());
    compare(frames, plugin.requests());
    QCOMPARE(textOf(frames.at(1).logged), QStringLiteral("#1 0 #1 1 "));
}

/// A log that goes on has not told it yet.
void tst_Replay::lastFrameWithoutDecision()
{
    LoggingPlugin plugin(smallPlan());
    plugin.receive(Woman, 0);
    QByteArray log = plugin.log();
    log.truncate(log.indexOf(">> ", 1));
    const QVector<ReplayedFrame> frames = replayed(smallPlan(), log);
    QCOMPARE(frames.size(), 1);
    QVERIFY(!frames.at(0).isLogged);
    QCOMPARE(countDifferences(frames), 0);
}

/// Whether it was the clock or the end of summer time: the log tells.
void tst_Replay::clockThatWasSetBack()
{
    for (const bool isSummerTime : {false, true}) {
        LoggingPlugin plugin(smallPlan());
        for (int i = 0; i < 20; ++i)
            plugin.receive(Woman, i * 1000 - (i < 10 || isSummerTime ? 0 : 3600000));
        QByteArray log = plugin.log();
        if (isSummerTime)
            log.replace(" 09:30:1", " 08:30:1");
        compare(replayed(smallPlan(), log), plugin.requests());
    }
}

QTEST_APPLESS_MAIN(tst_Replay)

#include "tst_replay.moc"
