#include "demo/player/ProofOfPlay.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#endif

using namespace Player;
using KrTest::readFile;
using KrTest::writeFile;

class tst_ProofOfPlay : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void lines();
    void offsets();
    void fields_data();
    void fields();
    void existingFile_data();
    void existingFile();
    void refused_data();
    void refused();
    void writtenLater();
    void keptLines();
    void fullDisk();

private:
    QString path(const QString &name) const { return m_directory->filePath(name); }
    QString file() const { return path(QStringLiteral("p.csv")); }

    std::unique_ptr<QTemporaryDir> m_directory; // of the current test
};

namespace {

const QByteArray Header = QByteArrayLiteral("time,sequence,name,until,why\r\n");

/// @p seconds after noon.
QDateTime at(int seconds)
{
    return QDateTime({2026, 5, 17}, {12, 0}, Qt::UTC).addSecs(seconds);
}

ProofOfPlay::Start viewer(int sequence, const QString &name = QStringLiteral("A"))
{
    return {sequence, name, QStringLiteral("viewer")};
}

#ifdef Q_OS_UNIX
/// While there is one, files of this process cannot grow beyond a size, as on a full disk.
class SmallFiles
{
public:
    explicit SmallFiles(qint64 bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_limit);
        rlimit small = m_limit;
        small.rlim_cur = static_cast<rlim_t>(bytes);
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallFiles()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_handler);
    }
    Q_DISABLE_COPY(SmallFiles)

private:
    void (*m_handler)(int);
    rlimit m_limit = {};
};
#endif

} // namespace

void tst_ProofOfPlay::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
#ifdef Q_OS_UNIX
    QCOMPARE(::mkfifo(QFile::encodeName(path(QStringLiteral("pipe.csv"))).constData(), 0600), 0);
#endif
}

void tst_ProofOfPlay::lines()
{
    ProofOfPlay proof(file());
    QVERIFY(!QFile::exists(file()));
    proof.open();
    QCOMPARE(readFile(file()), Header);
    proof.end(at(0)); // nothing has played
    proof.start(viewer(3, QStringLiteral("Women 20-39")), at(1));
    QCOMPARE(readFile(file()), Header);
    proof.start({2, QStringLiteral("M\u00e4nner"), QStringLiteral("idle")}, at(5).addMSecs(250));
    const QByteArray first = "2026-05-17T12:00:01.000Z,3,Women 20-39,"
                             "2026-05-17T12:00:05.250Z,viewer\r\n";
    QCOMPARE(readFile(file()), Header + first);
    proof.end(at(9));
    proof.end(at(10));
    QCOMPARE(readFile(file()),
        Header + first
            + "2026-05-17T12:00:05.250Z,2,M\xc3\xa4nner,2026-05-17T12:00:09.000Z,idle\r\n");
    QCOMPARE(proof.problem(), QString());
}

void tst_ProofOfPlay::offsets()
{
    // The last hour of summer time, and the same hour once more
    ProofOfPlay proof(file());
    proof.start(viewer(1), at(0).toOffsetFromUtc(7200));
    proof.end(at(1800).toOffsetFromUtc(3600));
    QCOMPARE(readFile(file()),
        Header + "2026-05-17T14:00:00.000+02:00,1,A,2026-05-17T13:30:00.000+01:00,viewer\r\n");
}

void tst_ProofOfPlay::fields_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("field");

    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("blanks stay") << " a b "
                                 << " a b ";
    QTest::newRow("a semicolon needs nothing") << "a;b"
                                               << "a;b";
    QTest::newRow("a comma") << "Women, 20-39"
                             << "\"Women, 20-39\"";
    QTest::newRow("quotes are doubled") << "the \"best\""
                                        << "\"the \"\"best\"\"\"";
    QTest::newRow("a quote alone") << "\""
                                   << "\"\"\"\"";
    QTest::newRow("a line feed") << "a\nb"
                                 << "\"a\nb\"";
    QTest::newRow("a carriage return") << "a\rb"
                                       << "\"a\rb\"";
}

void tst_ProofOfPlay::fields()
{
    QFETCH(QString, name);
    QFETCH(QString, field);

    ProofOfPlay proof(file());
    proof.start(viewer(1, name), at(0));
    proof.end(at(1));
    QCOMPARE(readFile(file()),
        Header + "2026-05-17T12:00:00.000Z,1," + field.toUtf8()
            + ",2026-05-17T12:00:01.000Z,viewer\r\n");
}

void tst_ProofOfPlay::existingFile_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("between"); // and the new line

    QTest::newRow("an empty file gets the header") << QByteArray() << Header;
    QTest::newRow("lines stay") << Header + "x\r\n" << QByteArray();
    QTest::newRow("lines that somebody has edited") << Header + "x\n" << QByteArray();
    QTest::newRow("a line that was cut is ended") << Header + "2026-05" << QByteArray("\r\n");
}

void tst_ProofOfPlay::existingFile()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, between);

    QVERIFY(writeFile(file(), before));
    ProofOfPlay proof(file());
    proof.open();
    proof.start(viewer(1), at(0));
    proof.end(at(1));
    QCOMPARE(readFile(file()),
        before + between + "2026-05-17T12:00:00.000Z,1,A,2026-05-17T12:00:01.000Z,viewer\r\n");
}

void tst_ProofOfPlay::refused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason"); // empty: the system's

    QTest::newRow("a directory that does not exist") << "none/p.csv"
                                                     << "";
    QTest::newRow("a directory") << "."
                                 << "is not a file";
#ifdef Q_OS_UNIX
    QTest::newRow("a pipe that nobody reads") << "pipe.csv"
                                              << "is not a file";
#endif
}

void tst_ProofOfPlay::refused()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);

    if (reason.isEmpty()) {
        QFile file(path(name));
        QVERIFY(!file.open(QIODevice::ReadWrite));
        reason = file.errorString();
    }
    ProofOfPlay proof(path(name));
    proof.open();
    QCOMPARE(proof.problem(), QStringLiteral("%1: %2").arg(path(name), reason));
    proof.start(viewer(1), at(0));
    proof.end(at(1));
    QCOMPARE(proof.problem(), QStringLiteral("%1: %2").arg(path(name), reason));
}

void tst_ProofOfPlay::writtenLater()
{
    const QString late = path(QStringLiteral("late/p.csv"));
    ProofOfPlay proof(late);
    proof.start(viewer(1), at(0));
    proof.start(viewer(2), at(1));
    QVERIFY(!proof.problem().isEmpty());
    QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("late")));
    proof.end(at(2));
    QCOMPARE(proof.problem(), QString());
    QCOMPARE(readFile(late),
        Header + "2026-05-17T12:00:00.000Z,1,A,2026-05-17T12:00:01.000Z,viewer\r\n"
            + "2026-05-17T12:00:01.000Z,2,A,2026-05-17T12:00:02.000Z,viewer\r\n");
}

void tst_ProofOfPlay::keptLines()
{
    const QString late = path(QStringLiteral("late/p.csv"));
    ProofOfPlay proof(late);
    for (int i = 0; i < ProofOfPlay::MaxKept + 2; ++i) {
        proof.start(viewer(i), at(i));
        proof.end(at(i + 1));
    }
    QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("late")));
    proof.open();
    const QList<QByteArray> lines = readFile(late).split('\n');
    QCOMPARE(lines.size(), ProofOfPlay::MaxKept + 2); // with the header and nothing at the end
    QVERIFY(lines.at(1).contains(",2,A,"));
}

void tst_ProofOfPlay::fullDisk()
{
#ifdef Q_OS_UNIX
    ProofOfPlay proof(file());
    proof.open();
    {
        const SmallFiles limit(Header.size() + 20);
        proof.start(viewer(1), at(0));
        proof.end(at(1));
        QVERIFY2(proof.problem().startsWith(file() + QLatin1String(": ")),
            qUtf8Printable(proof.problem()));
        QCOMPARE(readFile(file()), Header);
    }
    proof.start(viewer(2), at(1));
    proof.end(at(2));
    QCOMPARE(proof.problem(), QString());
    QCOMPARE(readFile(file()).count("\r\n"), 3);
    QVERIFY(readFile(file()).endsWith("\r\n"));
#else
    QSKIP("There is no limit for the size of files.");
#endif
}

QTEST_GUILESS_MAIN(tst_ProofOfPlay)

#include "tst_proofofplay.moc"
