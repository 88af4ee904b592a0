#include "demo/simulator/FramePlan.h"
#include "demo/simulator/ScenarioReader.h"
#include "demo/stage/StageFile.h"
#include "detection/Determination.h"
#include "detection/LayoutBound.h"
#include "detection/SensorOutputParser.h"
#include "log/LogFormat.h"
#include "monitor/OfflineTextDocument.h"
#include "tests/support/Files.h"
#include "tools/analysis/LogReader.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QtTest>

#include <random>

using namespace Analysis;
using namespace PluginKrHvcP2;

namespace {

constexpr int Frames = 400;
constexpr int DamagedFrames = 2000;
constexpr int FramesInAChunk = 2;
constexpr int IntervalMs = 1000;

const QDateTime Time(QDate(2018, 2, 1), QTime(9, 30));

/// A line for each face, with all that was measured of it, and one for each decision.
QStringList describe(const QString &chunk, const QVector<DetectionContents> &tables)
{
    const SensorFrame frame = SensorOutputParser::parse(chunk, Time);
    QStringList lines;
    for (int i = 0; i < frame.faces.size(); ++i) {
        const FaceResult &face = frame.faces.at(i);
        QString line = QStringLiteral("face %1").arg(face.index);
        for (int kind = FaceResultItem::Detection; kind <= FaceResultItem::Gender; ++kind) {
            const FaceResultItem item = face.item(kind);
            QDebug(&line) << kind << item.value << item.confidence << item.marked;
        }
        QDebug(&line) << face.time << frame.sizes.at(i) << frame.directionValues.at(i);
        lines << line;
    }
    for (const DetectionContents &contents : tables) {
        const auto results
            = determineSequences(frame.faces, frame.sizes, frame.directionValues, contents);
        for (const CalculatedData &result : results)
            lines << QStringLiteral("#%1 face %2 %3")
                         .arg(result.seqNumber)
                         .arg(result.faceIndex)
                         .arg(result.score, 0, 'g', 17);
    }
    lines << QStringLiteral("nobody %1, failure %2").arg(frame.noFace).arg(frame.errorSeen);
    return lines;
}

/// The record that the plug-in writes for @p chunk.
QByteArray record(const QString &chunk)
{
    static OfflineTextDocument document;
    const SensorFrame frame = SensorOutputParser::parse(chunk, Time);
    QString report = SensorOutputParser::plainText(chunk);
    if (isLayoutBounded(frame)) {
        document.clear();
        document.setHtml(frame.html);
        report = document.toPlainText();
    }
    const char *const level = frame.errorSeen ? "Error" : (frame.noFace ? "Notice" : "Information");
    return LogFormat::record(1, Time, QString::fromLatin1(level), report).toUtf8();
}

QVector<Entry> readLog(const QByteArray &log)
{
    QBuffer buffer;
    buffer.setData(log);
    buffer.open(QIODevice::ReadOnly);
    LogReader reader(&buffer, {QStringLiteral("f"), 1, 0});
    QVector<Entry> entries;
    while (const std::optional<Entry> entry = reader.next())
        entries.append(*entry);
    return entries;
}

/// A chunk of two frames with one to three damaged places.
QString damaged(const Simulation::Scenario &scenario, std::mt19937 &random)
{
    static const QString characters = QStringLiteral("\t\n :-*0123456789aeAGIXYSLRC%<>&;");
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<std::mt19937::result_type>(limit));
    };
    QString text = QString::fromUtf8(Simulation::planFrame(scenario, below(60), IntervalMs).output()
        + Simulation::planFrame(scenario, below(60), IntervalMs).output());
    for (int count = 1 + below(3); count > 0; --count) {
        const int place = below(text.size());
        const QString character = characters.at(below(characters.size()));
        switch (below(4)) {
        case 0:
            text.replace(place, 1, character);
            break;
        case 1:
            text.insert(place, character);
            break;
        case 2:
            text.remove(place, 1 + below(3));
            break;
        default:
            text.remove(place, below(60));
            break;
        }
    }
    return text;
}

/// Whether @p text has a flaw of the kinds that ReportText.h names.
bool hasFlaw(const QString &text)
{
    static const QRegularExpression markup(QStringLiteral("[<&]"));
    static const QRegularExpression bareGender(
        QStringLiteral("^\\s*Gender[^\\t\\n]*\\s*$"), QRegularExpression::MultilineOption);
    static const QRegularExpression value(
        QStringLiteral("^\\s*(Age|Gender)[^\\t\\n]*\\t(?!(Age:-?\\d+|Gender:(Fem|M)ale)"
                       " Confidence:\\d+( \\*)?$)"),
        QRegularExpression::MultilineOption);
    const auto count = [&](const char *line) { return text.count(QLatin1String(line)); };
    return markup.match(text).hasMatch() || bareGender.match(text).hasMatch()
        || value.match(text).hasMatch() || count("\nPress Space Key to end:\n") != FramesInAChunk
        || count("\nFace result count:") != FramesInAChunk - 1;
}

/// What the plug-in reads at once: each write of the program for itself.
QStringList chunks(const Simulation::FramePlan &plan)
{
    QStringList result;
    for (const Simulation::Step &step : plan.steps) {
        if (step.kind == Simulation::Step::Write)
            result << QString::fromUtf8(step.data);
    }
    return result;
}

} // namespace

/// What the plug-in has logged is what it saw.
class tst_LogRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void scenarios_data();
    void scenarios();
    void hostileText();
    void damagedFrames();

private:
    void check(const QStringList &chunks);

    QVector<DetectionContents> m_tables; // of all screens of the stages that are shipped
};

void tst_LogRoundTrip::initTestCase()
{
    const QDir directory(QStringLiteral(KRHVC_STAGE_DIR));
    const auto files = directory.entryInfoList({QStringLiteral("*.json")}, QDir::Files);
    for (const QFileInfo &file : files) {
        QString error;
        const auto stage = Stage::StageFile::read(file.filePath(), &error);
        QVERIFY2(stage, qPrintable(error));
        const QList<int> screens = stage->screenIds();
        for (const int screen : screens) {
            const DetectionContents contents
                = detectionContents(stage->screenParameters(screen), stage->screens());
            if (!contents.isEmpty())
                m_tables.append(contents);
        }
    }
    QVERIFY(m_tables.size() >= 2);
}

void tst_LogRoundTrip::check(const QStringList &chunks)
{
    QByteArray log;
    for (const QString &chunk : chunks)
        log += record(chunk);
    const QVector<Entry> entries = readLog(log);
    QCOMPARE(entries.size(), chunks.size());
    for (int i = 0; i < chunks.size(); ++i) {
        const Entry &entry = entries.at(i);
        QCOMPARE(entry.kind, Entry::Frame);
        QCOMPARE(entry.time, Time);
        const QStringList actual = describe(entry.text, m_tables);
        const QStringList expected = describe(chunks.at(i), m_tables);
        if (actual != expected)
            qInfo("%s\n--- was logged as\n%s", qPrintable(chunks.at(i)), qPrintable(entry.text));
        QCOMPARE(actual, expected);
    }
}

void tst_LogRoundTrip::scenarios_data()
{
    QTest::addColumn<QString>("fileName");

    const QDir directory(QStringLiteral(KRHVC_SCENARIO_DIR));
    const auto files = directory.entryInfoList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    QVERIFY(!files.isEmpty());
    for (const QFileInfo &file : files)
        QTest::newRow(qPrintable(file.baseName())) << file.filePath();
}

void tst_LogRoundTrip::scenarios()
{
    QFETCH(QString, fileName);

    QString error;
    const auto scenario = Simulation::parseScenario(KrTest::readFile(fileName), fileName, &error);
    QVERIFY2(scenario, qPrintable(error));
    QStringList frames;
    for (int i = 0; i < Frames; ++i)
        frames << chunks(Simulation::planFrame(*scenario, i, IntervalMs));
    check(frames);
}

/// Text that is not laid out is logged line by line, also a line like a header.
void tst_LogRoundTrip::hostileText()
{
    const QString face = QStringLiteral("Index:%1\tX:1 Y:2 Size:3 Confidence:4\n"
                                        "Age\tAge:30 * Confidence:5\nGender\tGender:Male\n");
    QString nested = face.arg(0);
    for (int i = 0; i < 20; ++i)
        nested += QStringLiteral("<table><tr><td>");
    nested += QStringLiteral("\tx\n>> 2018-02-01 09:30:00 [Notice]=========\n\n") + face.arg(1);
    check({nested, nested});
}

/// Frames that a bad cable has damaged: each that reads otherwise has one of the flaws that
/// ReportText.h names.
void tst_LogRoundTrip::damagedFrames()
{
    QString error;
    const QString fileName
        = QDir(QStringLiteral(KRHVC_SCENARIO_DIR)).filePath(QStringLiteral("everyday.json"));
    const auto scenario = Simulation::parseScenario(KrTest::readFile(fileName), fileName, &error);
    QVERIFY2(scenario, qPrintable(error));
    std::mt19937 random(1);
    QStringList frames;
    for (int i = 0; i < DamagedFrames; ++i)
        frames << damaged(*scenario, random);
    QByteArray log;
    for (const QString &frame : qAsConst(frames))
        log += record(frame);
    const QVector<Entry> entries = readLog(log);
    QCOMPARE(entries.size(), frames.size());
    int different = 0;
    for (int i = 0; i < frames.size(); ++i) {
        const QString &logged = entries.at(i).text;
        if (entries.at(i).kind == Entry::Frame
            && describe(logged, {}) == describe(frames.at(i), {}))
            continue;
        ++different;
        QVERIFY2(hasFlaw(frames.at(i)),
            qPrintable(frames.at(i) + QStringLiteral("--- was logged as\n") + logged));
    }
    QVERIFY(different > 0);
    QVERIFY(different < frames.size() / 25);
}

QTEST_MAIN(tst_LogRoundTrip)

#include "tst_logroundtrip.moc"
