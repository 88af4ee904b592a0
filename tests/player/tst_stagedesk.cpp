#include "demo/player/StageDesk.h"

#include "demo/player/StagePlayer.h"
#include "demo/support/SimulatorVariables.h"
#include "host/KrPluginExtScreenInterface.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Analysis;
using namespace Player;

namespace {

constexpr qint64 LimitMs = 1500; // as in the stage
constexpr qint64 ToleranceMs = 200; // between a request and the time when it is heard of

QVector<const DecidedFace *> facesWith(const StageDesk &desk, DecidedFace::Outcome outcome)
{
    QVector<const DecidedFace *> faces;
    for (const Desk::SeenFrame &frame : desk.history().frames()) {
        for (const DecidedFace &face : frame.decision.faces) {
            if (face.outcome == outcome)
                faces << &face;
        }
    }
    return faces;
}

} // namespace

/// What is seen of the product at work: the plug-in and a simulated sensor.
class tst_StageDesk : public QObject
{
    Q_OBJECT

private slots:
    void decidesAsThePlugin();
};

/// A woman, and before she is seen a button of the panel.
void tst_StageDesk::decidesAsThePlugin()
{
    const QTemporaryDir directory;
    QFile recording(directory.filePath(QStringLiteral("recording.txt")));
    QVERIFY(recording.open(QIODevice::WriteOnly));
    recording.write("Face result count:1\n"
                    "Index:0\tX:320 Y:240 Size:120 Confidence:800\n"
                    "Face Direction\tLR:5 UD:-3 Roll:1 Confidence:700\n"
                    "Age\tAge:34 Confidence:500\n"
                    "Gender\tGender:Female Confidence:900 *\n");
    recording.close();
    qputenv(Demo::ReplayVariable, QFile::encodeName(recording.fileName()));
    QString error;
    const auto stage = Stage::StageFile::fromJson(R"({"screens": [
        {"id": 1, "plugindata": {"interval": 100, "event-sending-limit": 1500},
         "contents": [{"params": {"age-min": 20, "age-max": 39, "gender": "female"}}],
         "event": [{"type": 2, "direction": 1, "seq": []}]},
        {"id": 2, "event": [{"type": 2, "direction": 0, "id": 1, "screenseq": 1}]}]})",
        QStringLiteral("s.json"), &error);
    QVERIFY2(stage, qUtf8Printable(error));

    StagePlayer player(*stage, 1);
    QVERIFY(player.loadPlugin(QStringLiteral(KRHVC_PLUGIN_FILE)));
    StageDesk desk(&player);
    const QSignalSpy started(&player.host(), &PluginHost::contentStarted);
    player.begin(QString());
    QVERIFY(desk.sensor().isWatching());
    auto *const plugin = qobject_cast<Kora::KrPluginExtScreenInterface *>(player.host().object());
    plugin->requestSequenceNumber(1);
    const QDateTime button = QDateTime::currentDateTime();
    QCOMPARE(started.count(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(started.count(), 3, 30000);
    QTRY_COMPARE(facesWith(desk, DecidedFace::Sent).size(), 2);
    player.host().stop();

    // What is started by hand restricts the viewer.
    const Decision &first = desk.history().frames().front().decision;
    const qint64 expectedMs = LimitMs - button.msecsTo(first.time);
    if (expectedMs > ToleranceMs) {
        QCOMPARE(first.faces.at(0).outcome, DecidedFace::Restricted);
        QVERIFY(qAbs(first.faces.at(0).remainingMs - expectedMs) < ToleranceMs);
    }
    const QVector<const DecidedFace *> restricted = facesWith(desk, DecidedFace::Restricted);
    QVERIFY(!restricted.isEmpty());
    for (const DecidedFace *face : restricted)
        QVERIFY(face->remainingMs <= LimitMs);
    player.end();
    QVERIFY(!desk.sensor().isWatching());
}

QTEST_MAIN(tst_StageDesk)

#include "tst_stagedesk.moc"
