#include "sensor/ProcessList.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

// The player's end where nothing ends it earlier: not every system has signals.
const QString SecondsAtMost = QStringLiteral("10");

// A directory of any user may have such letters.
const QString RecordingName = QString::fromUtf8("recording \u65e5\u672c.txt");

/// The product at work: player, plug-in and a simulated sensor, which plays a recording.
class tst_PlayerDemo : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void recordingSwitchesTheStage();
    void panelIsOnTheStage();
    void nothingIsLeftBehind_data();
    void nothingIsLeftBehind();

private:
    QStringList arguments(const QStringList &more) const;
    QString file(const QString &name) const { return m_directory->filePath(name); }
    bool write(const QString &name, const QByteArray &data) const;
    static QByteArray readOutput(QProcess *process);
    static bool waitForOutput(QProcess *process, QByteArray *output, const QByteArray &text);
    static int sensorProgramCount();
    static int averageRed(const QImage &image);

    std::unique_ptr<QTemporaryDir> m_directory; // of the current test; holds a plug-in directory
};

void tst_PlayerDemo::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
    for (const char *const variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        qunsetenv(variable);
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_directory->path()));

    QVERIFY(write(QStringLiteral("stage.json"), R"({"screens": [
        {"id": 1, "plugindata": {"display-monitoring": true, "interval": 100,
                                 "event-sending-limit": 0},
         "contents": [
            {"type": 8, "params": {"name": "Women 20-39", "age-min": 20, "age-max": 39,
                                   "gender": "female", "default": "true"},
             "card": {"color": "#ff0000"}},
            {"type": 8, "params": {"name": "Men 20-39", "age-min": 20, "age-max": 39,
                                   "gender": "male", "default": "true"},
             "card": {"color": "#ff0000"}}],
         "event": [{"type": 2, "direction": 1, "seq": []}]},
        {"id": 2, "event": [{"type": 2, "direction": 0, "id": 1, "screenseq": 1},
                            {"type": 2, "direction": 0, "id": 1, "screenseq": 2}]}]})"));
    QVERIFY(write(RecordingName,
        "Face result count:1\n"
        "Index:0\tX:320 Y:240 Size:120 Confidence:800\n"
        "Face Direction\tLR:5 UD:-3 Roll:1 Confidence:700\n"
        "Age\tAge:34 Confidence:500\n"
        "Gender\tGender:Female Confidence:900 *\n"
        "Face result count:1\n"
        "Index:0\tX:320 Y:240 Size:120 Confidence:800\n"
        "Face Direction\tLR:5 UD:-3 Roll:1 Confidence:700\n"
        "Age\tAge:25 Confidence:500\n"
        "Gender\tGender:Male Confidence:900\n"));
}

bool tst_PlayerDemo::write(const QString &name, const QByteArray &data) const
{
    QFile file(this->file(name));
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

QStringList tst_PlayerDemo::arguments(const QStringList &more) const
{
    return QStringList{QStringLiteral("--headless"), QStringLiteral("--plugin"),
               QStringLiteral(KRHVC_PLUGIN_FILE), QStringLiteral("--stage"),
               file(QStringLiteral("stage.json")), QStringLiteral("--replay"), file(RecordingName),
               QStringLiteral("--log-dir"), file(QStringLiteral("logs")),
               QStringLiteral("--seconds"), SecondsAtMost}
    + more;
}

/// What the player has printed, with line feeds as line ends.
QByteArray tst_PlayerDemo::readOutput(QProcess *process)
{
    QByteArray output = process->readAllStandardOutput();
#ifdef Q_OS_WIN
    output.replace('\r', QByteArray()); // each is half of a line end, which may come in two reads
#endif
    return output;
}

bool tst_PlayerDemo::waitForOutput(QProcess *process, QByteArray *output, const QByteArray &text)
{
    // A sensor program of an earlier test or of somebody else costs the plug-in five seconds.
    QElapsedTimer timer;
    timer.start();
    bool lives = true;
    while (lives && !output->contains(text) && timer.elapsed() < 30000) {
        process->waitForReadyRead(100);
        lives = process->state() != QProcess::NotRunning;
        *output += readOutput(process);
    }
    return output->contains(text);
}

int tst_PlayerDemo::sensorProgramCount()
{
    return static_cast<int>(PluginKrHvcP2::ProcessList::find("HvcCon.exe").size());
}

int tst_PlayerDemo::averageRed(const QImage &image)
{
    return image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .pixelColor(0, 0)
        .red();
}

void tst_PlayerDemo::recordingSwitchesTheStage()
{
    QProcess process;
    process.start(QStringLiteral(KRHVC_PLAYER_FILE), arguments({}));
    QByteArray output;
    QVERIFY2(waitForOutput(&process, &output, "  switch  #1  Women 20-39\n"), output.constData());
    QVERIFY2(waitForOutput(&process, &output, "  switch  #2  Men 20-39\n"), output.constData());
    QVERIFY(output.contains("  player  Plug-in KrHvcP2 1.0.0\n"));
    QVERIFY(output.contains("  status  102  Started\n"));

    const QDir logs(file(QStringLiteral("logs/KrHvcP2")));
    const QStringList names = logs.entryList({QStringLiteral("KrHvcP2Log_*.txt")}, QDir::Files);
    QCOMPARE(names.size(), 1);
    process.terminate();
    QVERIFY(process.waitForFinished());
}

void tst_PlayerDemo::panelIsOnTheStage()
{
    QProcess process;
    const QString picture = file(QStringLiteral("stage.png"));
    process.start(
        QStringLiteral(KRHVC_PLAYER_FILE), arguments({QStringLiteral("--screenshot"), picture}));
    QByteArray output;
    QVERIFY2(waitForOutput(&process, &output, "  switch  #"), output.constData());
    process.terminate();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    const QImage image(picture);
    QCOMPARE(image.size(), QSize(1280, 720));
    // Both cards are red; the panel darkens its part, whatever text is on it just now.
    QVERIFY(averageRed(image.copy(0, 0, 640, 50)) > 180);
    QVERIFY(averageRed(image.copy(800, 80, 400, 500)) < 110);
}

void tst_PlayerDemo::nothingIsLeftBehind_data()
{
    QTest::addColumn<int>("signal"); // 0: none, its time is up

    QTest::newRow("time is up") << 0;
#ifdef Q_OS_UNIX
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
#endif
}

void tst_PlayerDemo::nothingIsLeftBehind()
{
    QFETCH(int, signal);

    QProcess process;
    process.start(QStringLiteral(KRHVC_PLAYER_FILE), arguments({}));
    QByteArray output;
    QVERIFY2(waitForOutput(&process, &output, "  switch  #"), output.constData());
    QCOMPARE(sensorProgramCount(), 1);
#ifdef Q_OS_UNIX
    if (signal != 0)
        QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
#else
    QCOMPARE(signal, 0);
#endif
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(sensorProgramCount(), 0);
    output += readOutput(&process);
    QVERIFY(output.endsWith("  status  100  Stopped\n"));
}

QTEST_GUILESS_MAIN(tst_PlayerDemo)

#include "tst_playerdemo.moc"
