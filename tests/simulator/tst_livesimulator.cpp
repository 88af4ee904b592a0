#include "demo/simulator/ScenarioReader.h"
#include "demo/simulator/ScenarioWriter.h"
#include "tests/support/Files.h"
#include "tests/support/Waiting.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Simulation;

/// Changes a live file under the running program.
class tst_LiveSimulator : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void framesFollowTheFile();
    void timeRunsOn();
    void seed();
    void stopKey();
    void everyPrefix();
    void randomDamage();
    void lockedAgainstNobody();

private:
    void start(const QStringList &options = {});
    bool replace(const QByteArray &text); ///< in one step
    /// The ages in a frame that came after this was called; "none" when none came. On a busy
    /// machine it may have been in the pipe for a while: what has changed is to be waited for.
    QByteArray nextAges();
    QByteArray complaints(); ///< without the program's and the file's name

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_file;
    std::unique_ptr<QProcess> m_process;
    QByteArray m_output;
    QByteArray m_errors;
};

static const char *const Prompt = "Press Space Key to end:";

/// Short, so that every part of it is soon tried.
static const char *const Good = R"({"viewers":[{"age":8,"size":240},{"age":30,"gender":"male"}]})";

static QByteArray agesOf(const QByteArray &frame)
{
    QByteArrayList ages;
    for (const QByteArray &line : frame.split('\n')) {
        if (line.startsWith("Age\tAge:"))
            ages << line.mid(8).split(' ').constFirst();
    }
    return ages.join(' ');
}

void tst_LiveSimulator::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_file = m_dir->filePath(QStringLiteral("live.json"));
    m_output.clear();
    m_errors.clear();
    m_process = std::make_unique<QProcess>();
    m_process->setProgram(QStringLiteral(KRHVC_SIMULATOR_FILE));
}

void tst_LiveSimulator::cleanup()
{
    if (m_process->state() != QProcess::NotRunning) {
        m_process->kill();
        m_process->waitForFinished();
    }
    m_process.reset();
}

void tst_LiveSimulator::start(const QStringList &options)
{
    m_process->setArguments(QStringList{QStringLiteral("3"), QStringLiteral("921600"),
                                QStringLiteral("3"), QStringLiteral("--live"), m_file}
        + options);
    m_process->start();
}

bool tst_LiveSimulator::replace(const QByteArray &text)
{
    // Where others look at the file it may not be replaceable for a moment.
    return KrTest::waitWithoutEvents([&] {
        QSaveFile file(m_file);
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
    });
}

QByteArray tst_LiveSimulator::nextAges()
{
    // What is on its way already is old.
    QElapsedTimer timer;
    timer.start();
    do {
        QCoreApplication::processEvents();
    } while (!m_process->readAllStandardOutput().isEmpty() && !timer.hasExpired(KrTest::Patience));
    // The first frame to come may have begun before, and the second one is whole.
    m_output.clear();
    while (m_output.count(Prompt) < 3) {
        if (timer.hasExpired(KrTest::Patience))
            return "none";
        QTest::qWait(1);
        m_output += m_process->readAllStandardOutput();
    }
    m_output.replace("\r\n", "\n");
    const int end = m_output.lastIndexOf(Prompt);
    const int begin = m_output.lastIndexOf(Prompt, end - 1);
    return agesOf(m_output.mid(begin, end - begin));
}

QByteArray tst_LiveSimulator::complaints()
{
    m_errors += m_process->readAllStandardError();
    return QByteArray(m_errors)
        .replace("\r\n", "\n")
        .replace("HvcCon.exe: " + QFile::encodeName(m_file), "");
}

void tst_LiveSimulator::framesFollowTheFile()
{
    start();
    QCOMPARE(nextAges(), QByteArray()); // there is no file yet
    QVERIFY(replace(Good));
    QTRY_COMPARE(nextAges(), QByteArray("8 30"));
    QVERIFY(replace(R"({ "viewers": [{ "age": 30 }] })"));
    QTRY_COMPARE(nextAges(), QByteArray("30"));
    QVERIFY(replace("{"));
    QTRY_VERIFY(complaints().endsWith(":1:2: unterminated object\n"));
    QCOMPARE(nextAges(), QByteArray("30"));
    QVERIFY(QFile::remove(m_file));
    QTRY_VERIFY(complaints().endsWith("object\n: no such file\n"));
    QCOMPARE(nextAges(), QByteArray("30"));
    QVERIFY(replace("{}"));
    QTRY_COMPARE(nextAges(), QByteArray());
    QTRY_COMPARE(complaints(),
        QByteArray(": no such file\n: is in order now\n:1:2: unterminated object\n"
                   ": no such file\n: is in order now\n"));
}

/// A change of the file sends nobody back to where he began.
void tst_LiveSimulator::timeRunsOn()
{
    QVERIFY(replace(R"({ "viewers": [{ "age": 5, "leave": 0.05 }, { "age": 6 }] })"));
    start();
    while (nextAges() == "5 6") { }
    QVERIFY(replace(R"({ "viewers": [{ "age": 7, "leave": 0.05 }, { "age": 8 }] })"));
    QTRY_COMPARE(nextAges(), QByteArray("8"));
}

void tst_LiveSimulator::seed()
{
    const QByteArray text = R"({ "seed": %1, "noise": { "age": 60 }, "viewers": [{ "age": 60 }] })";
    QSet<QByteArray> outputs;
    for (const char *ofTheFile : {"1", "2"}) {
        QVERIFY(replace(QByteArray(text).replace("%1", ofTheFile)));
        start({QStringLiteral("--seed"), QStringLiteral("9"), QStringLiteral("--frames"),
            QStringLiteral("5")});
        QVERIFY(m_process->waitForFinished());
        outputs << m_process->readAllStandardOutput();
    }
    QCOMPARE(outputs.size(), 1);
    QVERIFY(!outputs.contains(QByteArray()));
}

void tst_LiveSimulator::stopKey()
{
    QVERIFY(replace(Good));
    start();
    QCOMPARE(nextAges(), QByteArray("8 30"));
    m_process->write(" ");
    QVERIFY(m_process->waitForFinished());
    QCOMPARE(m_process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_process->exitCode(), 0);
}

void tst_LiveSimulator::everyPrefix()
{
    const QByteArray good = Good;
    QVERIFY(replace(good));
    start();
    QCOMPARE(nextAges(), QByteArray("8 30"));
    for (int size = good.size() - 1; size >= 0; --size) {
        QVERIFY(replace(good.left(size)));
        QCOMPARE(nextAges(), QByteArray("8 30"));
    }
    QVERIFY(replace(good));
    QCOMPARE(nextAges(), QByteArray("8 30"));
    QCOMPARE(m_process->state(), QProcess::Running);
    QTRY_VERIFY(complaints().endsWith(": is in order now\n"));
    QCOMPARE(complaints().count("in order"), 1); // none of the prefixes was taken for a file
}

void tst_LiveSimulator::randomDamage()
{
    QRandomGenerator random(4711);
    const QByteArray good = Good;
    QByteArray expected = "8 30";
    QVERIFY(replace(good));
    start();
    QCOMPARE(nextAges(), expected);
    for (int i = 0; i < 100; ++i) {
        QByteArray text = good;
        for (int changes = 1 + random.bounded(3); changes > 0; --changes) {
            const int at = random.bounded(text.size());
            switch (random.bounded(3)) {
            case 0:
                text[at] = static_cast<char>(random.bounded(256));
                break;
            case 1:
                text.remove(at, 1 + random.bounded(8));
                break;
            default:
                text.insert(at, text.mid(random.bounded(text.size()), 1 + random.bounded(8)));
            }
        }
        QString error;
        if (const auto scenario = parseLiveScenario(text, QString(), &error)) {
            QByteArrayList ages;
            for (const Viewer &viewer : scenario->viewers)
                ages << (viewer.age ? QByteArray::number(*viewer.age) : QByteArray("-"));
            expected = ages.join(' ');
        }
        QVERIFY(replace(text));
        QTRY_VERIFY2(nextAges() == expected, text.constData());
    }
    QCOMPARE(m_process->state(), QProcess::Running);
}

/// Whoever writes without care for readers, piece by piece, is read in the end all the same.
void tst_LiveSimulator::lockedAgainstNobody()
{
    start();
    QCOMPARE(nextAges(), QByteArray());
    for (int round = 0; round < 5; ++round) {
        QFile file(m_file);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        const QByteArray before = nextAges();
        for (const char *c = Good; *c != 0; ++c) {
            QCOMPARE(file.write(c, 1), qint64(1));
        }
        QVERIFY(before == "8 30" || round == 0);
        file.close();
        QTRY_COMPARE(nextAges(), QByteArray("8 30"));
    }
}

QTEST_GUILESS_MAIN(tst_LiveSimulator)
#include "tst_livesimulator.moc"
