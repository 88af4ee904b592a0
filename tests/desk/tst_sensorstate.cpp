#include "demo/desk/SensorState.h"

#include <QtTest>

using namespace Desk;

class tst_SensorState : public QObject
{
    Q_OBJECT

private slots:
    void message_data();
    void message();
    void span_data();
    void span();
    void spoken();
};

void tst_SensorState::message_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<int>("ageMs"); // -1: no frame
    QTest::addColumn<int>("intervalMs");
    QTest::addColumn<int>("restarts");
    QTest::addColumn<bool>("isLive");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");

    const auto row = [](const char *name, const char *frame, int ageMs, int intervalMs,
                         int restarts, bool isLive, int kind, const char *text) {
        QTest::newRow(name) << QString::fromLatin1(frame) << ageMs << intervalMs << restarts
                            << isLive << kind << QString::fromLatin1(text);
    };
    row("no frame yet", "", -1, 0, 0, true, SensorMessage::Waiting, "Waiting for the first frame");
    row("no frame yet, all that is known", "", -1, 500, 2, true, SensorMessage::Waiting,
        "Waiting for the first frame/There should be one every 0.5 s/"
        "Restarts of the sensor program: 2");
    row("a face", "face", 0, 1000, 3, true, SensorMessage::None, "");
    row("nobody", "nobody", 0, 1000, 0, true, SensorMessage::Nobody, "Nobody is there");
    row("no face", "", 0, 1000, 0, true, SensorMessage::Nobody, "There is no face in this frame");
    row("just in time", "face", 2999, 1000, 0, true, SensorMessage::None, "");
    row("three intervals", "face", 3000, 1000, 0, true, SensorMessage::Stale,
        "No frame for 3 s/There should be one every 1 s");
    row("quick frames, just in time", "face", 1999, 100, 0, true, SensorMessage::None, "");
    row("quick frames", "face", 2000, 100, 0, true, SensorMessage::Stale,
        "No frame for 2 s/There should be one every 0.1 s");
    row("interval not known", "face", 59999, 0, 0, true, SensorMessage::Stale, "No frame for 59 s");
    row("for long", "nobody", 125000, 0, 1, true, SensorMessage::Stale,
        "No frame for 2 min/Restarts of the sensor program: 1");
    row("long interval", "face", 179999, 60000, 0, true, SensorMessage::None, "");
    row("of the past", "face", 3600000, 1000, 0, false, SensorMessage::None, "");
    row("failure", "failure", 0, 1000, 0, true, SensorMessage::Failure,
        "The sensor program reports a failure/Failed to open COM port.");
    row("failure, then silence", "failure", 7000, 1000, 1, true, SensorMessage::Failure,
        "The sensor program reports a failure/Failed to open COM port./No frame for 7 s/"
        "There should be one every 1 s/Restarts of the sensor program: 1");
}

void tst_SensorState::message()
{
    QFETCH(QString, frame);
    QFETCH(int, ageMs);
    QFETCH(int, intervalMs);
    QFETCH(int, restarts);
    QFETCH(bool, isLive);

    FaceMarks marks;
    if (frame == QLatin1String("face"))
        marks.faces.append(FaceMark());
    marks.nobody = frame == QLatin1String("nobody");
    marks.hasFailed = frame == QLatin1String("failure");
    if (marks.hasFailed)
        marks.failure = QStringLiteral("Failed to open COM port.");
    const SensorMessage message = sensorMessage(marks, {intervalMs, restarts, isLive},
        ageMs < 0 ? std::nullopt : std::optional<qint64>(ageMs));
    QTEST(static_cast<int>(message.kind), "kind");
    QTEST((QStringList(message.title) + message.lines).join(QLatin1Char('/')), "text");
}

void tst_SensorState::span_data()
{
    QTest::addColumn<qint64>("ms");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nothing") << qint64{0} << "0 s";
    QTest::newRow("milliseconds") << qint64{25} << "0.025 s";
    QTest::newRow("half a second") << qint64{500} << "0.5 s";
    QTest::newRow("a second") << qint64{1000} << "1 s";
    QTest::newRow("almost a minute") << qint64{59000} << "59 s";
    QTest::newRow("a minute") << qint64{60000} << "1 min";
    QTest::newRow("almost an hour") << qint64{3599999} << "59 min";
    QTest::newRow("hours") << qint64{3 * 3600000 + 120000} << "3 h 02 min";
}

void tst_SensorState::span()
{
    QFETCH(qint64, ms);

    QTEST(spanText(ms), "expected");
}

void tst_SensorState::spoken()
{
    FaceMark mark;
    mark.age.text = QStringLiteral("34");
    mark.gender.text = QStringLiteral("Female");
    mark.sequence = 5;
    mark.content = QStringLiteral("Handbags");
    FaceMark decided = mark;
    decided.outcome = Analysis::DecidedFace::Sent;
    FaceMarks marks;
    marks.faces = {decided, mark};
    QCOMPARE(spokenText(marks, {SensorMessage::Stale, QStringLiteral("Late"), {}}),
        QStringLiteral("Late. Faces: 2. Female, 34: #5 Handbags"));
}

QTEST_GUILESS_MAIN(tst_SensorState)

#include "tst_sensorstate.moc"
