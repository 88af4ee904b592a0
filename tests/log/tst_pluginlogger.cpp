#include "log/LogDivision.h"
#include "log/LogFormat.h"
#include "log/PluginLogger.h"
#include "tests/support/Files.h"
#include "tests/support/OwnProcess.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QTimer>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using namespace KrTest;
using namespace PluginKrHvcP2;

namespace {

constexpr int LongTimeoutMs = 60000; // never reached: what waits for it has failed
constexpr int ShortTimeoutMs = 200;
constexpr qint64 AtOnceMs = 10000; // on a machine that is busy with other things, too

const QString LogName = QStringLiteral("plugin_20180201.txt");
const QString LockName = QStringLiteral("plugin.lock");

bool setFileTime(const QString &path, const QDateTime &time)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite)
        && file.setFileTime(time, QFileDevice::FileModificationTime);
}

QStringList messages(const QString &text)
{
    // "2018-02-01 09:30:00 Notice: message"
    QStringList result;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (!line.isEmpty())
            result.append(line.section(QStringLiteral(": "), 1));
    }
    return result;
}

QStringList numbers(int first, int last)
{
    QStringList result;
    for (int number = first; number <= last; ++number)
        result.append(QString::number(number));
    return result;
}

LogSettings settingsFor(const QString &directory)
{
    LogSettings settings;
    settings.directory = directory;
    return settings;
}

/// Appends @p count records, as another process or thread would. True when all went through.
bool writeRecords(
    PluginLogger &logger, const QString &name, int count, int timeoutMs = LongTimeoutMs)
{
    bool ok = true;
    for (int number = 1; number <= count; ++number) {
        const QString message = name + QLatin1Char('-') + QString::number(number);
        ok = logger.write(message, Notice, timeoutMs) && ok;
    }
    return ok;
}

/// Lets the lock go after a while, as another process would.
std::thread removeLater(const QString &lockPath, unsigned long ms)
{
    return std::thread([=] {
        QThread::msleep(ms);
        QFile::remove(lockPath);
    });
}

/// The whole life of a process that has no application object. 0 when all went well.
int runWithoutApplication(const QString &directory)
{
    PluginLogger logger;
    logger.setSettings(settingsFor(directory));
    if (!logger.write(QStringLiteral("free"), Notice, LongTimeoutMs))
        return 1;
    const QString lockPath = QDir(directory).absoluteFilePath(LockName);
    if (!writeFile(lockPath))
        return 2;
    if (logger.write(QStringLiteral("locked"), Notice, ShortTimeoutMs))
        return 3;
    std::thread other = removeLater(lockPath, 100);
    const bool written = logger.write(QStringLiteral("freed"), Notice, LongTimeoutMs);
    other.join();
    return written ? 0 : 4;
}

/// Logs among the static destructors, when the application object is long gone.
struct LateWriter
{
    ~LateWriter()
    {
        if (directory.isEmpty())
            return;
        PluginLogger &logger = PluginLogger::instance();
        logger.setSettings(settingsFor(directory));
        writeFile(QDir(directory).absoluteFilePath(LockName));
        logger.write(QStringLiteral("locked"), Notice, ShortTimeoutMs);
        QFile::remove(QDir(directory).absoluteFilePath(LockName));
        logger.write(QStringLiteral("late"), Notice, LongTimeoutMs);
    }

    QString directory;
};

LateWriter &lateWriter()
{
    static LateWriter writer;
    return writer;
}

} // namespace

class tst_PluginLogger : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void levels_data();
    void levels();
    void defaults();
    void oneInstance();
    void filter_data();
    void filter();
    void record_data();
    void record();
    void wrappers();
    void appends();
    void bytes();
    void bytesAreUtf8_data();
    void bytesAreUtf8();
    void hugeMessage();
    void currentDirectory();

    void missingDirectory();
    void removedDirectory();
    void fileInPlaceOfDirectory();

    void lockAge_data();
    void lockAge();
    void lockAgeIsJudgedOnce();
    void lockThatIsRenewed();
    void lockVanishes();
    void midnightInTheWait();
    void waitingLetsEventsRun();
    void noTimeToWait_data();
    void noTimeToWait();
    void oneTurnComesBeforeTheTimeIsUp();
    void lockThatComesAndGoes();

    void recordsThatArriveInTheWait();
    void levelOfRecordsThatArriveInTheWait();
    void recordsBelowALoopOfTheHost();
    void recordsOutliveTheirWaiter();
    void recordsHaveTheirOwnDeadline();
    void waiterBehindRecordsOfAnother();
    void settingsThatChangeInTheWait();
    void boundedNumberOfKeptRecords();
    void boundedSizeOfKeptRecords();

    void quitInTheWait_data();
    void quitInTheWait();
    void withoutEvents_data();
    void withoutEvents();
    void withoutEventsBehindAnotherThread();
    void withoutEventsInTheWait();
    void otherThreadHoldsTheLogger();
    void manyThreads_data();
    void manyThreads();
    void settingsOfAnotherThread();
    void manyProcesses();
    void withoutApplication();
    void staticDestructor_data();
    void staticDestructor();

    void oddLockFile_data();
    void oddLockFile();
    void oddLogFile_data();
    void oddLogFile();
    void linkedLockFile_data();
    void linkedLockFile();
    void linkedLockFileLosesItsTarget();
    void linkedLogFile();
    void fullDevice();

    void cleanUp_data();
    void cleanUp();
    void cleanUpOtherKinds();
    void cleanUpOnceADay();
    void cleanUpAfterTheClockWasSetBack();
    void cleanUpWhileTheClockIsFarAhead();
    void cleanUpOfManyFiles();
    void cleanUpNeedsALock();
    void filteredRecordsDoNotCleanUp();
    void defaultDirectoryDoesNotCount();

private:
    QString path(const QString &name) const { return m_directory->filePath(name); }
    QString log() const { return readText(path(LogName)); }
    QStringList files() const
    {
        return QDir(m_directory->path())
            .entryList(
                QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    /// A lock file that another process took @p ageMs milliseconds ago.
    bool createLock(qint64 ageMs = 0) const
    {
        return writeFile(path(LockName)) && setFileTime(path(LockName), m_now.addMSecs(-ageMs));
    }
    bool write(const QString &message, int timeoutMs = LongTimeoutMs) const
    {
        return m_logger->write(message, Notice, timeoutMs);
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<PluginLogger> m_logger;
    QDateTime m_now; // what the logger takes for the time
};

void tst_PluginLogger::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
    m_now = QDateTime(QDate(2018, 2, 1), QTime(9, 30));
    m_logger = std::make_unique<PluginLogger>([this] { return m_now; });
    m_logger->setSettings(settingsFor(m_directory->path()));
}

void tst_PluginLogger::cleanup()
{
    m_logger.reset();
    m_directory.reset();
}

void tst_PluginLogger::levels_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("name");

    QTest::newRow("no logging") << int(NoLogging) << 0 << QStringLiteral("NoLogging");
    QTest::newRow("critical") << int(Critical) << 1 << QStringLiteral("Critical");
    QTest::newRow("error") << int(Error) << 2 << QStringLiteral("Error");
    QTest::newRow("warning") << int(Warning) << 3 << QStringLiteral("Warning");
    QTest::newRow("notice") << int(Notice) << 4 << QStringLiteral("Notice");
    QTest::newRow("information") << int(Information) << 5 << QStringLiteral("Information");
}

void tst_PluginLogger::levels()
{
    QFETCH(int, level);
    QFETCH(int, value);
    QFETCH(QString, name);
    QCOMPARE(level, value);
    QCOMPARE(LogSettings().levelNames.value(level), name);
    QCOMPARE(LogSettings().levelNames.size(), 6);
}

void tst_PluginLogger::defaults()
{
    const LogSettings settings = PluginLogger().settings();
    QCOMPARE(settings.style, 0);
    QCOMPARE(settings.maxLevel, 5);
    QCOMPARE(settings.directory, QString());
    QCOMPARE(settings.baseName, QStringLiteral("plugin"));
    QCOMPARE(settings.extension, QStringLiteral("txt"));
    QCOMPARE(settings.retentionDays, 30);
    QCOMPARE(PluginLogger::DefaultTimeoutMs, 10000);
}

void tst_PluginLogger::oneInstance()
{
    const PluginLogger *const here = &PluginLogger::instance();
    const PluginLogger *there = nullptr;
    std::thread([&] { there = &PluginLogger::instance(); }).join();
    QCOMPARE(there, here);
}

void tst_PluginLogger::filter_data()
{
    QTest::addColumn<int>("maxLevel");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("expected");

    for (int level = 1; level <= 5; ++level)
        QTest::addRow("level %d when there shall be no logging", level) << 0 << level << false;
    QTest::newRow("level 0 when there shall be no logging") << 0 << 0 << true;
    QTest::newRow("the maximum itself") << 3 << 3 << true;
    QTest::newRow("just above the maximum") << 3 << 4 << false;
    QTest::newRow("information by default") << 5 << 5 << true;
    QTest::newRow("a level without a name above the maximum") << 5 << 6 << false;
    QTest::newRow("a level without a name below the maximum") << 9 << 7 << true;
    QTest::newRow("a negative level") << 0 << -1 << true;
    QTest::newRow("a negative maximum") << -1 << 0 << false;
}

void tst_PluginLogger::filter()
{
    QFETCH(int, maxLevel);
    QFETCH(int, level);
    QFETCH(bool, expected);
    LogSettings settings = settingsFor(path(QStringLiteral("sub")));
    settings.maxLevel = maxLevel;
    m_logger->setSettings(settings);

    QVERIFY(m_logger->write(QStringLiteral("a"), level, LongTimeoutMs));
    // What is filtered touches nothing, not even the directory.
    QCOMPARE(files(), expected ? QStringList{QStringLiteral("sub")} : QStringList());
    QCOMPARE(QFile::exists(path(QStringLiteral("sub/") + LogName)), expected);
}

void tst_PluginLogger::record_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("expected");

    const QString footer = QStringLiteral("===================================== <<");
    const QString noticeHeader = QStringLiteral(">> 2018-02-01 09:30:00 [Notice]=========\n");
    QTest::newRow("one line") << 0 << int(Notice) << QStringLiteral("Started.")
                              << QStringLiteral("2018-02-01 09:30:00 Notice: Started.\n");
    QTest::newRow("one line is not trimmed")
        << 0 << int(Error) << QStringLiteral("\n a \n")
        << QStringLiteral("2018-02-01 09:30:00 Error: \n a \n\n");
    QTest::newRow("one line with markers")
        << 0 << int(Critical) << QStringLiteral("%1 %2 %3")
        << QStringLiteral("2018-02-01 09:30:00 Critical: %1 %2 %3\n");
    QTest::newRow("one line with every marker")
        << 0 << int(Notice) << QStringLiteral("%99 %1%2%3%L1 %%1")
        << QStringLiteral("2018-02-01 09:30:00 Notice: %99 %1%2%3%L1 %%1\n");
    QTest::newRow("a level without a name")
        << 0 << -3 << QStringLiteral("a") << QStringLiteral("2018-02-01 09:30:00 : a\n");
    QTest::newRow("a block") << 1 << int(Notice) << QStringLiteral("Started.")
                             << QString(noticeHeader + QStringLiteral("Started.\n") + footer
                                    + QStringLiteral("\n\n"));
    QTest::newRow("a block is trimmed")
        << 1 << int(Notice) << QStringLiteral("\n\n  a\nb \n\n")
        << QString(noticeHeader + QStringLiteral("a\nb\n") + footer + QStringLiteral("\n\n"));
    QTest::newRow("a block with a marker")
        << 1 << int(Notice) << QStringLiteral("%1.")
        << QString(noticeHeader + footer + QStringLiteral(".\n%3\n\n"));
    QTest::newRow("a block of blanks")
        << 7 << int(Notice) << QStringLiteral("  ")
        << QString(noticeHeader + QLatin1Char('\n') + footer + QStringLiteral("\n\n"));
}

void tst_PluginLogger::record()
{
    QFETCH(int, style);
    QFETCH(int, level);
    QFETCH(QString, message);
    QFETCH(QString, expected);
    LogSettings settings = m_logger->settings();
    settings.style = style;
    m_logger->setSettings(settings);
    QVERIFY(m_logger->write(message, level, LongTimeoutMs));
    QCOMPARE(log(), expected);
    QCOMPARE(files(), QStringList{LogName}); // the lock file is gone
}

void tst_PluginLogger::wrappers()
{
    QVERIFY(m_logger->writeError(QStringLiteral("a")));
    QVERIFY(m_logger->writeCritical(QStringLiteral("b")));
    QCOMPARE(
        log(), QStringLiteral("2018-02-01 09:30:00 Error: a\n2018-02-01 09:30:00 Critical: b\n"));
}

void tst_PluginLogger::appends()
{
    QVERIFY(writeFile(path(LogName), "before\n"));
    QVERIFY(write(QStringLiteral("a")));
    m_now = m_now.addSecs(1);
    QVERIFY(write(QStringLiteral("b")));
    m_now = m_now.addDays(1);
    QVERIFY(write(QStringLiteral("c")));
    QCOMPARE(log(),
        QStringLiteral("before\n2018-02-01 09:30:00 Notice: a\n2018-02-01 09:30:01 Notice: b\n"));
    QCOMPARE(readText(path(QStringLiteral("plugin_20180202.txt"))),
        QStringLiteral("2018-02-02 09:30:01 Notice: c\n"));
}

void tst_PluginLogger::bytes()
{
    QVERIFY(write(QString::fromUtf8("\xE5\xB9\xB4 \xC3\xA4 \xF0\x9F\x98\x80")));
#ifdef Q_OS_WIN
    const QByteArray lineEnd = "\r\n";
#else
    const QByteArray lineEnd = "\n";
#endif
    QCOMPARE(readFile(path(LogName)),
        QByteArray("2018-02-01 09:30:00 Notice: \xE5\xB9\xB4 \xC3\xA4 \xF0\x9F\x98\x80" + lineEnd));
}

void tst_PluginLogger::bytesAreUtf8_data()
{
    QTest::addColumn<QString>("message");
    QTest::newRow("the first half of a pair") << QString(QChar(0xD83D));
    QTest::newRow("the second half of a pair") << QString(QChar(0xDE00));
    QTest::newRow("a pair turned round") << QString(QChar(0xDE00)) + QChar(0xD83D);
    QTest::newRow("half a pair within text")
        << QString(QChar(0xE4) + QString(QChar(0xD83D)) + QChar(0xE4));
    QTest::newRow("no characters") << QString(QChar(0xFFFE)) + QChar(0xFFFF);
    QTest::newRow("a NUL") << QString(3, QChar(0));
}

void tst_PluginLogger::bytesAreUtf8()
{
    QFETCH(QString, message);
    QVERIFY(write(message));
    const QByteArray bytes = readFile(path(LogName));
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    QCOMPARE(state.invalidChars, 0);
    QCOMPARE(state.remainingChars, 0);
    QVERIFY(bytes.startsWith("2018-02-01 09:30:00 Notice: "));
    QVERIFY(bytes.endsWith('\n'));
}

void tst_PluginLogger::hugeMessage()
{
    constexpr int Length = 16 * 1024 * 1024;
    LogSettings settings = m_logger->settings();
    settings.style = 1;
    m_logger->setSettings(settings);
    QVERIFY(write(QString(Length, QLatin1Char('z'))));
    QVERIFY(write(QStringLiteral("next")));
    const QString text = log();
    QCOMPARE(text.count(QLatin1Char('z')), Length);
    QCOMPARE(text.count(QStringLiteral(" <<\n\n")), 2);
}

void tst_PluginLogger::currentDirectory()
{
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_directory->path()));
    m_logger->setSettings(LogSettings());
    const bool written = write(QStringLiteral("a"));
    QVERIFY(QDir::setCurrent(before));
    QVERIFY(written);
    QCOMPARE(log(), QStringLiteral("2018-02-01 09:30:00 Notice: a\n"));
    QCOMPARE(files(), QStringList{LogName});
}

void tst_PluginLogger::missingDirectory()
{
    const QString directory = path(QStringLiteral("a/b/c"));
    m_logger->setSettings(settingsFor(directory));
    QVERIFY(write(QStringLiteral("a")));
    QCOMPARE(QDir(directory).entryList(QDir::Files), QStringList{LogName});
}

void tst_PluginLogger::removedDirectory()
{
    const QString directory = path(QStringLiteral("logs"));
    m_logger->setSettings(settingsFor(directory));
    QVERIFY(write(QStringLiteral("a")));
    QVERIFY(QDir(directory).removeRecursively());
    QVERIFY(write(QStringLiteral("b")));
    QCOMPARE(
        messages(readText(QDir(directory).filePath(LogName))), QStringList{QStringLiteral("b")});
}

void tst_PluginLogger::fileInPlaceOfDirectory()
{
    QVERIFY(writeFile(path(QStringLiteral("file")), "text"));
    for (const char *directory : {"file", "file/logs"}) {
        m_logger->setSettings(settingsFor(path(QString::fromLatin1(directory))));
        QVERIFY(!write(QStringLiteral("a")));
        QCOMPARE(files(), QStringList{QStringLiteral("file")});
        QCOMPARE(readText(path(QStringLiteral("file"))), QStringLiteral("text"));
    }
    // The failure leaves the logger usable.
    m_logger->setSettings(settingsFor(m_directory->path()));
    QVERIFY(write(QStringLiteral("b")));
    QCOMPARE(messages(log()), QStringList{QStringLiteral("b")});
}

void tst_PluginLogger::lockAge_data()
{
    QTest::addColumn<qint64>("ageMs");
    QTest::addColumn<bool>("isStale");

    QTest::newRow("just taken") << qint64(0) << false;
    QTest::newRow("29.9 seconds old") << qint64(29900) << false;
    QTest::newRow("exactly 30 seconds old") << qint64(30000) << false;
    QTest::newRow("30.001 seconds old") << qint64(30001) << true;
    QTest::newRow("a day old") << qint64(86400000) << true;
    // A clock that was set back: waited for, the stopwatch ends it.
    QTest::newRow("an hour in the future") << qint64(-3600000) << false;
}

void tst_PluginLogger::lockAge()
{
    QFETCH(qint64, ageMs);
    QFETCH(bool, isStale);
    QVERIFY(createLock(ageMs));

    QElapsedTimer stopwatch;
    stopwatch.start();
    QCOMPARE(write(QStringLiteral("a"), ShortTimeoutMs), isStale);
    const qint64 elapsed = stopwatch.elapsed();
    QCOMPARE(log(), isStale ? QStringLiteral("2018-02-01 09:30:00 Notice: a\n") : QString());
    // A writer that gives up leaves the lock to its owner.
    QCOMPARE(files(), QStringList{isStale ? LogName : LockName});
    if (!isStale)
        QVERIFY2(elapsed >= ShortTimeoutMs && elapsed < ShortTimeoutMs + AtOnceMs,
            qPrintable(QString::number(elapsed)));
}

void tst_PluginLogger::lockAgeIsJudgedOnce()
{
    QVERIFY(createLock(29990));
    QTimer::singleShot(20, this, [this] { m_now = m_now.addSecs(60); });
    QVERIFY(!write(QStringLiteral("a"), 2 * ShortTimeoutMs));
    QCOMPARE(files(), QStringList{LockName});
}

void tst_PluginLogger::lockThatIsRenewed()
{
    QVERIFY(createLock());
    QTimer owner;
    int renewals = 0;
    connect(&owner, &QTimer::timeout, this, [&] {
        m_now = m_now.addSecs(5);
        renewals += createLock() ? 1 : 0;
    });
    owner.start(10);
    QVERIFY(!write(QStringLiteral("a"), ShortTimeoutMs));
    QVERIFY(renewals > 0);
    QCOMPARE(files(), QStringList{LockName});
}

void tst_PluginLogger::lockVanishes()
{
    QVERIFY(createLock());
    bool wasFree = true;
    QTimer::singleShot(100, this, [&] {
        wasFree = !QFile::remove(path(LockName)) || QFile::exists(path(LogName));
        m_now = m_now.addSecs(5);
    });
    QElapsedTimer stopwatch;
    stopwatch.start();
    QVERIFY(write(QStringLiteral("a")));
    QVERIFY(!wasFree);
    QVERIFY(stopwatch.elapsed() >= 50 && stopwatch.elapsed() < AtOnceMs);
    // The time is that of the writing, not of the call.
    QCOMPARE(log(), QStringLiteral("2018-02-01 09:30:05 Notice: a\n"));
    QCOMPARE(files(), QStringList{LogName});
}

void tst_PluginLogger::midnightInTheWait()
{
    m_now.setTime(QTime(23, 59, 59, 900));
    QVERIFY(createLock());
    QTimer::singleShot(30, this, [this] {
        m_now = m_now.addMSecs(100);
        QFile::remove(path(LockName));
    });
    QVERIFY(write(QStringLiteral("a")));
    QCOMPARE(files(), QStringList{QStringLiteral("plugin_20180202.txt")});
    QCOMPARE(readText(path(QStringLiteral("plugin_20180202.txt"))),
        QStringLiteral("2018-02-02 00:00:00 Notice: a\n"));
}

void tst_PluginLogger::waitingLetsEventsRun()
{
    QVERIFY(createLock());
    int beats = 0;
    QTimer heart;
    connect(&heart, &QTimer::timeout, this, [&] {
        if (++beats == 10)
            QFile::remove(path(LockName));
    });
    heart.start(5);
    QVERIFY(write(QStringLiteral("a")));
    QVERIFY(beats >= 10);
}

void tst_PluginLogger::noTimeToWait_data()
{
    QTest::addColumn<int>("timeoutMs");
    QTest::newRow("none") << 0;
    QTest::newRow("less than none") << -5;
}

void tst_PluginLogger::noTimeToWait()
{
    QFETCH(int, timeoutMs);
    QVERIFY(write(QStringLiteral("a"), timeoutMs));
    QVERIFY(createLock());
    QElapsedTimer stopwatch;
    stopwatch.start();
    QVERIFY(!write(QStringLiteral("b"), timeoutMs));
    QVERIFY(stopwatch.elapsed() < AtOnceMs);
    QCOMPARE(messages(log()), QStringList{QStringLiteral("a")});
}

void tst_PluginLogger::oneTurnComesBeforeTheTimeIsUp()
{
    QVERIFY(createLock());
    QTimer::singleShot(0, this, [this] { QFile::remove(path(LockName)); });
    QVERIFY(write(QStringLiteral("a"), 0));
    QCOMPARE(messages(log()), QStringList{QStringLiteral("a")});
}

void tst_PluginLogger::lockThatComesAndGoes()
{
#ifdef Q_OS_UNIX
    constexpr int Records = 20000; // what goes wrong between two looks, seldom does
    std::atomic<bool> isDone{false};
    std::thread other([&] {
        while (!isDone) {
            writeFile(path(LockName));
            QFile::remove(path(LockName));
            for (int pause = 0; pause < 3 && !isDone; ++pause)
                std::this_thread::yield();
        }
    });
    // Judged by the real clock, since the other thread's files carry its time.
    PluginLogger logger;
    logger.setSettings(settingsFor(m_directory->path()));
    const bool written = writeRecords(logger, QStringLiteral("here"), Records);
    isDone = true;
    other.join();
    QVERIFY(written);
#else
    QSKIP("a file that is being removed cannot be opened in this file system");
#endif
}

void tst_PluginLogger::recordsThatArriveInTheWait()
{
    QVERIFY(createLock());
    int count = 0;
    int depth = 0;
    int deepest = 0;
    bool allKept = true;
    QTimer sensor;
    connect(&sensor, &QTimer::timeout, this, [&] {
        deepest = qMax(deepest, ++depth);
        allKept = write(QString::number(++count)) && !QFile::exists(path(LogName)) && allKept;
        m_now = m_now.addMSecs(400); // the lock stays young
        --depth;
        if (count == 60) {
            sensor.stop();
            QFile::remove(path(LockName));
        }
    });
    sensor.start(2);
    QVERIFY(write(QStringLiteral("first")));
    QCOMPARE(count, 60);
    QCOMPARE(deepest, 1);
    QVERIFY(allKept);
    QCOMPARE(messages(log()), QStringList{QStringLiteral("first")} + numbers(1, 60));
    QCOMPARE(files(), QStringList{LogName});

    const QStringList lines = log().split(QLatin1Char('\n'));
    QString latest;
    for (int i = 0; i < lines.size() - 1; ++i) {
        const QString stamp = lines.at(i).left(19);
        QVERIFY2(stamp >= latest, qPrintable(lines.at(i)));
        latest = stamp;
    }

    // Nothing is left over for the next one.
    QVERIFY(write(QStringLiteral("next")));
    QCOMPARE(messages(log()).size(), 62);
    QCOMPARE(messages(log()).last(), QStringLiteral("next"));
}

void tst_PluginLogger::levelOfRecordsThatArriveInTheWait()
{
    LogSettings settings = m_logger->settings();
    settings.maxLevel = Notice;
    m_logger->setSettings(settings);
    QVERIFY(createLock());
    bool kept = false;
    QTimer::singleShot(10, this, [&] {
        kept = m_logger->write(QStringLiteral("filtered"), Information, LongTimeoutMs)
            && m_logger->writeError(QStringLiteral("kept"));
        QFile::remove(path(LockName));
    });
    QVERIFY(write(QStringLiteral("first")));
    QVERIFY(kept);
    QCOMPARE(log(),
        QStringLiteral("2018-02-01 09:30:00 Notice: first\n2018-02-01 09:30:00 Error: kept\n"));
}

void tst_PluginLogger::recordsBelowALoopOfTheHost()
{
    QVERIFY(createLock());
    bool allWritten = true;
    bool outerWritten = false;
    QTimer::singleShot(10, this, [&] {
        // Say, a dialog: the waiting call cannot look at the lock file until it is closed.
        QEventLoop dialog;
        int count = 0;
        QTimer sensor;
        connect(&sensor, &QTimer::timeout, this, [&] {
            if (++count == 3)
                QFile::remove(path(LockName));
            allWritten = write(QString::number(count)) && allWritten;
            if (count == 10)
                dialog.quit();
        });
        sensor.start(5);
        dialog.exec();
        allWritten = allWritten
            && messages(log()) == QStringList{QStringLiteral("first")} + numbers(1, 10);
    });
    outerWritten = write(QStringLiteral("first"), ShortTimeoutMs);
    QVERIFY(allWritten);
    QVERIFY(outerWritten);
    QCOMPARE(messages(log()), QStringList{QStringLiteral("first")} + numbers(1, 10));
    QCOMPARE(files(), QStringList{LogName});
}

void tst_PluginLogger::recordsOutliveTheirWaiter()
{
    QVERIFY(createLock());
    bool kept = false;
    QTimer::singleShot(10, this, [&] { kept = write(QStringLiteral("kept")); });
    QVERIFY(!write(QStringLiteral("first"), ShortTimeoutMs));
    QVERIFY(kept);
    QCOMPARE(files(), QStringList{LockName});

    QVERIFY(QFile::remove(path(LockName)));
    QVERIFY(write(QStringLiteral("next")));
    QCOMPARE(messages(log()), QStringList({QStringLiteral("kept"), QStringLiteral("next")}));
}

void tst_PluginLogger::recordsHaveTheirOwnDeadline()
{
    QVERIFY(createLock());
    QTimer::singleShot(10, this, [this] {
        write(QStringLiteral("worthless soon"), 50);
        write(QStringLiteral("kept"));
    });
    QVERIFY(!write(QStringLiteral("first"), ShortTimeoutMs));
    QVERIFY(QFile::remove(path(LockName)));
    QVERIFY(write(QStringLiteral("next")));
    QCOMPARE(messages(log()), QStringList({QStringLiteral("kept"), QStringLiteral("next")}));
}

void tst_PluginLogger::waiterBehindRecordsOfAnother()
{
    QVERIFY(createLock());
    QTimer::singleShot(10, this, [this] { write(QStringLiteral("kept")); });
    QVERIFY(!write(QStringLiteral("first"), ShortTimeoutMs));
    // The one that gives up takes its own record back, not that in front of it.
    QVERIFY(!write(QStringLiteral("second"), ShortTimeoutMs));
    QVERIFY(QFile::remove(path(LockName)));
    QVERIFY(write(QStringLiteral("third")));
    QCOMPARE(messages(log()), QStringList({QStringLiteral("kept"), QStringLiteral("third")}));
}

void tst_PluginLogger::settingsThatChangeInTheWait()
{
    QVERIFY(createLock());
    const QString other = path(QStringLiteral("other"));
    QTimer::singleShot(10, this, [&] {
        m_logger->setSettings(settingsFor(other));
        write(QStringLiteral("kept"));
    });
    // Nobody holds the lock of the new directory.
    QVERIFY(write(QStringLiteral("first")));
    QCOMPARE(files(), QStringList({QStringLiteral("other"), LockName}));
    QCOMPARE(messages(readText(QDir(other).filePath(LogName))),
        QStringList({QStringLiteral("first"), QStringLiteral("kept")}));
    QCOMPARE(QDir(other).entryList(QDir::Files), QStringList{LogName});
}

void tst_PluginLogger::boundedNumberOfKeptRecords()
{
    QVERIFY(createLock());
    QTimer::singleShot(10, this, [this] {
        for (int number = 1; number <= 5000; ++number)
            write(QString::number(number));
        QFile::remove(path(LockName));
    });
    QVERIFY(write(QStringLiteral("first")));
    // The newest are worth most.
    QCOMPARE(messages(log()), QStringList{QStringLiteral("first")} + numbers(1002, 5000));
}

void tst_PluginLogger::boundedSizeOfKeptRecords()
{
    constexpr int Length = 500000; // characters, of two bytes each
    QVERIFY(createLock());
    QTimer::singleShot(10, this, [this] {
        for (char letter = 'a'; letter <= 'z'; ++letter)
            write(QString(Length, QLatin1Char(letter)));
        QFile::remove(path(LockName));
    });
    QVERIFY(write(QStringLiteral("first")));
    const QStringList written = messages(log());
    QCOMPARE(written.size(), 1 + 8); // as many as fit into 8 MiB
    QCOMPARE(written.first(), QStringLiteral("first"));
    for (int i = 1; i < written.size(); ++i) {
        const char letter = static_cast<char>('z' - (written.size() - 1 - i));
        QVERIFY(written.at(i) == QString(Length, QLatin1Char(letter)));
    }
}

void tst_PluginLogger::quitInTheWait_data()
{
    QTest::addColumn<int>("records");
    QTest::newRow("one record") << 1;
    QTest::newRow("several in a row") << 4;
}

void tst_PluginLogger::quitInTheWait()
{
    QFETCH(int, records);
    QVERIFY(createLock());
    int written = 0;
    double used = 0; // processor time of this process, whatever the others do
    QElapsedTimer stopwatch;
    QTimer::singleShot(0, this, [&] {
        QTimer::singleShot(10, QCoreApplication::instance(), &QCoreApplication::quit);
        stopwatch.start();
        const double before = processorSeconds();
        for (int record = 0; record < records; ++record)
            written += write(QStringLiteral("a")) ? 1 : 0;
        used = processorSeconds() - before;
    });
    QCoreApplication::exec();
    // Whoever waits holds up the end of the application.
    QVERIFY(stopwatch.elapsed() < AtOnceMs);
    QCOMPARE(written, 0);
    QVERIFY2(used < 0.25, qPrintable(QString::number(used)));

    // Once the application's own loop has returned, there is time again.
    std::thread other = removeLater(path(LockName), 50);
    const bool afterwards = write(QStringLiteral("b"));
    other.join();
    QVERIFY(afterwards);
    QCOMPARE(messages(log()), QStringList{QStringLiteral("b")});
}

void tst_PluginLogger::withoutEvents_data()
{
    QTest::addColumn<bool>("vanishes");
    QTest::newRow("a lock that stays") << false;
    QTest::newRow("a lock that vanishes") << true;
}

void tst_PluginLogger::withoutEvents()
{
    QFETCH(bool, vanishes);
    QVERIFY(createLock());
    int events = 0;
    QTimer::singleShot(0, this, [&] { ++events; });
    std::thread other = removeLater(path(vanishes ? LockName : LogName), 50);
    QElapsedTimer stopwatch;
    stopwatch.start();
    const bool written = m_logger->writeWithoutEvents(
        QStringLiteral("a"), Notice, vanishes ? LongTimeoutMs : ShortTimeoutMs);
    const qint64 elapsed = stopwatch.elapsed();
    other.join();
    QCOMPARE(written, vanishes);
    QCOMPARE(events, 0);
    QVERIFY(elapsed < ShortTimeoutMs + AtOnceMs);
    QCOMPARE(messages(log()), vanishes ? QStringList{QStringLiteral("a")} : QStringList());
    QTRY_COMPARE(events, 1);
}

void tst_PluginLogger::withoutEventsBehindAnotherThread()
{
    QVERIFY(createLock());
    std::atomic<bool> waits{false};
    std::atomic<bool> written{false};
    std::thread other([&] {
        QTimer::singleShot(0, [&] { waits = true; });
        written = write(QStringLiteral("other"));
    });
    while (!waits)
        QThread::yieldCurrentThread();

    QVERIFY(!m_logger->writeWithoutEvents(QStringLiteral("here"), Notice, ShortTimeoutMs));
    QFile::remove(path(LockName));
    other.join();
    QVERIFY(written);
    QCOMPARE(messages(log()), QStringList{QStringLiteral("other")});
}

void tst_PluginLogger::withoutEventsInTheWait()
{
    QVERIFY(createLock());
    bool kept = false;
    QTimer::singleShot(10, this, [&] {
        kept = m_logger->writeWithoutEvents(QStringLiteral("inner"), Notice, LongTimeoutMs);
        QFile::remove(path(LockName));
    });
    QVERIFY(write(QStringLiteral("outer")));
    QVERIFY(kept);
    QCOMPARE(messages(log()), QStringList({QStringLiteral("outer"), QStringLiteral("inner")}));
}

void tst_PluginLogger::otherThreadHoldsTheLogger()
{
    QVERIFY(createLock());
    std::atomic<bool> waits{false};
    std::atomic<bool> written{false};
    std::thread other([&] {
        QTimer::singleShot(0, [&] { waits = true; });
        written = write(QStringLiteral("other"));
    });
    while (!waits)
        QThread::yieldCurrentThread();

    // The time-out bounds the wait for the lock file, not that for the other thread.
    std::thread owner = removeLater(path(LockName), 3 * ShortTimeoutMs);
    const bool here = write(QStringLiteral("here"), ShortTimeoutMs);
    owner.join();
    other.join();
    QVERIFY(here);
    QVERIFY(written);
    QCOMPARE(messages(log()), QStringList({QStringLiteral("other"), QStringLiteral("here")}));
}

void tst_PluginLogger::manyThreads_data()
{
    QTest::addColumn<int>("timeoutMs");
    QTest::newRow("with time") << LongTimeoutMs;
    QTest::newRow("with a millisecond") << 1;
    QTest::newRow("without time") << 0;
}

void tst_PluginLogger::manyThreads()
{
    QFETCH(int, timeoutMs);
    constexpr int Threads = 4;
    constexpr int Records = 200;
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    threads.reserve(Threads);
    for (int number = 0; number < Threads; ++number) {
        threads.emplace_back([&, number] {
            if (!writeRecords(
                    *m_logger, QStringLiteral("thread%1").arg(number), Records, timeoutMs))
                ++failures;
        });
    }
    for (std::thread &thread : threads)
        thread.join();

    QCOMPARE(int(failures), 0);
    const QStringList written = messages(log());
    QCOMPARE(written.size(), Threads * Records);
    for (int number = 0; number < Threads; ++number) {
        const QString name = QStringLiteral("thread%1-").arg(number);
        QStringList expected;
        for (int record = 1; record <= Records; ++record)
            expected.append(name + QString::number(record));
        QCOMPARE(written.filter(name), expected);
    }
    QCOMPARE(files(), QStringList{LogName});
}

void tst_PluginLogger::settingsOfAnotherThread()
{
    constexpr int Records = 200;
    const QStringList names{QStringLiteral("one"), QStringLiteral("two")};
    std::atomic<bool> isDone{false};
    std::thread host([&] {
        for (int turn = 0; !isDone; ++turn) {
            m_logger->setSettings(settingsFor(path(names.at(turn % names.size()))));
            QThread::msleep(1); // a mutex is not fair
        }
    });
    const bool written = writeRecords(*m_logger, QStringLiteral("here"), Records);
    isDone = true;
    host.join();
    QVERIFY(written);

    // Every record is whole, wherever it went; the first may have come before the thread.
    int count = messages(log()).size();
    for (const QString &name : names)
        count += messages(readText(path(name + QLatin1Char('/') + LogName))).size();
    QCOMPARE(count, Records);
}

void tst_PluginLogger::manyProcesses()
{
    constexpr int Processes = 3;
    constexpr int Records = 40;
    std::vector<std::unique_ptr<QProcess>> processes;
    processes.reserve(Processes);
    for (int number = 0; number < Processes; ++number) {
        processes.push_back(std::make_unique<QProcess>());
        processes.back()->setProcessChannelMode(QProcess::ForwardedChannels);
        processes.back()->start(QCoreApplication::applicationFilePath(),
            {QStringLiteral("--write-records"), m_directory->path(),
                QStringLiteral("process%1").arg(number), QString::number(Records)});
    }
    for (const std::unique_ptr<QProcess> &process : processes) {
        QVERIFY(process->waitForFinished(LongTimeoutMs));
        QCOMPARE(int(process->exitStatus()), int(QProcess::NormalExit));
        QCOMPARE(process->exitCode(), 0);
    }

    QStringList written;
    const QStringList logFiles = files(); // two when it is midnight now
    for (const QString &name : logFiles) {
        QVERIFY2(name.startsWith(QLatin1String("plugin_")), qPrintable(name));
        written += messages(readText(path(name)));
    }
#ifdef Q_OS_WIN
    // Two writers may take the lock at the same moment, and files have no common end there: a
    // record may be lost to another one, now and then.
    constexpr int Lost = Processes * Records / 20;
    QVERIFY2(
        written.size() >= Processes * Records - Lost, qPrintable(written.join(QLatin1Char(' '))));
#else
    QCOMPARE(written.size(), Processes * Records);
    for (int number = 0; number < Processes; ++number) {
        const QString name = QStringLiteral("process%1-").arg(number);
        QStringList expected;
        for (int record = 1; record <= Records; ++record)
            expected.append(name + QString::number(record));
        QCOMPARE(written.filter(name), expected);
    }
#endif
}

void tst_PluginLogger::withoutApplication()
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QCoreApplication::applicationFilePath(),
        {QStringLiteral("--without-application"), m_directory->path()});
    QVERIFY(process.waitForFinished(LongTimeoutMs));
    QCOMPARE(int(process.exitStatus()), int(QProcess::NormalExit));
    QCOMPARE(process.exitCode(), 0);
}

void tst_PluginLogger::staticDestructor_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("before Qt's own")
        << QStringLiteral("--write-late") << QStringList{QStringLiteral("late")};
#ifdef Q_OS_WIN
    // Those of a program come before those of its libraries there.
    const QStringList last{QStringLiteral("early"), QStringLiteral("late")};
#else
    const QStringList last{QStringLiteral("early")};
#endif
    QTest::newRow("after Qt's own") << QStringLiteral("--write-last") << last;
}

void tst_PluginLogger::staticDestructor()
{
    QFETCH(QString, mode);
    QFETCH(QStringList, expected);
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QCoreApplication::applicationFilePath(), {mode, m_directory->path()});
    QVERIFY(process.waitForFinished(LongTimeoutMs));
    QCOMPARE(int(process.exitStatus()), int(QProcess::NormalExit));
    QCOMPARE(process.exitCode(), 0);
    const QStringList logFiles = files();
    QCOMPARE(logFiles.size(), 1);
    QCOMPARE(messages(readText(path(logFiles.first()))), expected);
}

void tst_PluginLogger::oddLockFile_data()
{
    QTest::addColumn<bool>("isFifo");
    QTest::addColumn<qint64>("ageMs");

    QTest::newRow("a young directory") << false << qint64(0);
    QTest::newRow("a stale directory") << false << qint64(40000);
    QTest::newRow("a young FIFO") << true << qint64(0);
    QTest::newRow("a stale FIFO") << true << qint64(40000);
}

void tst_PluginLogger::oddLockFile()
{
    QFETCH(bool, isFifo);
    QFETCH(qint64, ageMs);
#ifdef Q_OS_UNIX
    if (isFifo)
        QCOMPARE(mkfifo(QFile::encodeName(path(LockName)).constData(), 0600), 0);
#else
    if (isFifo)
        QSKIP("there are no FIFOs in this file system");
#endif
    if (!isFifo)
        QVERIFY(QDir().mkdir(path(LockName)));
    // Neither can be given another time here, so it is the clock that moves.
    m_now = QFileInfo(path(LockName)).lastModified().addMSecs(ageMs);

    QElapsedTimer stopwatch;
    stopwatch.start();
    QVERIFY(!write(QStringLiteral("a"), ShortTimeoutMs));
    QVERIFY(stopwatch.elapsed() < ShortTimeoutMs + AtOnceMs);
    QCOMPARE(files(), QStringList{LockName});
}

void tst_PluginLogger::oddLogFile_data()
{
    QTest::addColumn<bool>("isFifo");

    QTest::newRow("a directory") << false;
    QTest::newRow("a FIFO") << true;
}

void tst_PluginLogger::oddLogFile()
{
    QFETCH(bool, isFifo);
#ifdef Q_OS_UNIX
    if (isFifo)
        QCOMPARE(mkfifo(QFile::encodeName(path(LogName)).constData(), 0600), 0);
#else
    if (isFifo)
        QSKIP("there are no FIFOs in this file system");
#endif
    if (!isFifo)
        QVERIFY(QDir().mkdir(path(LogName)));

    // Would hang here if the FIFO was opened.
    QVERIFY(!write(QStringLiteral("a")));
    QCOMPARE(files(), QStringList{LogName}); // the lock file is gone

    QVERIFY(isFifo ? QFile::remove(path(LogName)) : QDir().rmdir(path(LogName)));
    QVERIFY(write(QStringLiteral("b")));
    QCOMPARE(messages(log()), QStringList{QStringLiteral("b")});
}

void tst_PluginLogger::linkedLockFile_data()
{
    QTest::addColumn<bool>("isDangling");
    QTest::addColumn<qint64>("ageMs");
    QTest::addColumn<bool>("isFree");

    QTest::newRow("to a young file") << false << qint64(0) << false;
    QTest::newRow("to an old file") << false << qint64(3600000) << true;
    QTest::newRow("to nothing") << true << qint64(0) << true;
}

void tst_PluginLogger::linkedLockFile()
{
    QFETCH(bool, isDangling);
    QFETCH(qint64, ageMs);
    QFETCH(bool, isFree);
#ifdef Q_OS_UNIX
    const QString victim = path(QStringLiteral("victim"));
    if (!isDangling) {
        QVERIFY(writeFile(victim, "precious"));
        QVERIFY(setFileTime(victim, m_now.addMSecs(-ageMs)));
    }
    QVERIFY(QFile::link(victim, path(LockName)));

    QElapsedTimer stopwatch;
    stopwatch.start();
    QCOMPARE(write(QStringLiteral("a"), ShortTimeoutMs), isFree);
    QVERIFY(stopwatch.elapsed() < ShortTimeoutMs + AtOnceMs);
    QVERIFY(isFree || stopwatch.elapsed() >= ShortTimeoutMs);
    QCOMPARE(messages(log()), isFree ? QStringList{QStringLiteral("a")} : QStringList());
    QCOMPARE(QFile::exists(victim), !isDangling);
    QCOMPARE(readText(victim), isDangling ? QString() : QStringLiteral("precious"));
    // A lock that is taken belongs to whoever took it, and goes with it.
    QCOMPARE(QFileInfo(path(LockName)).isSymLink(), !isFree);
#else
    Q_UNUSED(isDangling)
    Q_UNUSED(ageMs)
    Q_UNUSED(isFree)
    QSKIP("links are shortcuts in this file system");
#endif
}

void tst_PluginLogger::linkedLockFileLosesItsTarget()
{
#ifdef Q_OS_UNIX
    const QString target = path(QStringLiteral("target"));
    QVERIFY(writeFile(target));
    QVERIFY(setFileTime(target, m_now));
    QVERIFY(QFile::link(target, path(LockName)));
    QTimer::singleShot(50, this, [&] { QFile::remove(target); });
    QVERIFY(write(QStringLiteral("a")));
    QCOMPARE(files(), QStringList{LogName});
#else
    QSKIP("links are shortcuts in this file system");
#endif
}

void tst_PluginLogger::linkedLogFile()
{
#ifdef Q_OS_UNIX
    const QString victim = path(QStringLiteral("victim"));
    QVERIFY(writeFile(victim, "precious\n"));
    QVERIFY(QFile::link(victim, path(LogName)));

    write(QStringLiteral("a")); // appends, or refuses
    QVERIFY(readText(victim).startsWith(QLatin1String("precious\n")));
    QVERIFY(!QFile::exists(path(LockName)));
#else
    QSKIP("links are shortcuts in this file system");
#endif
}

void tst_PluginLogger::fullDevice()
{
    const QString device = QStringLiteral("/dev/full");
    if (!QFile::exists(device))
        QSKIP("there is no full device to write to");
    QVERIFY(QFile::link(device, path(LogName)));
    QVERIFY(!write(QStringLiteral("a")));
    QVERIFY(!QFile::exists(path(LockName)));

    QVERIFY(QFile::remove(path(LogName)));
    QVERIFY(write(QStringLiteral("b")));
    QCOMPARE(messages(log()), QStringList{QStringLiteral("b")});
}

void tst_PluginLogger::cleanUp_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<int>("retentionDays");
    QTest::addColumn<bool>("isKept");

    const auto row = [](const char *name, const char *fileName, int retentionDays, bool isKept) {
        QTest::newRow(name) << QString::fromLatin1(fileName) << retentionDays << isKept;
    };
    // Today is 2018-02-01.
    row("exactly 30 days old", "plugin_20180102.txt", 30, true);
    row("31 days old", "plugin_20180101.txt", 30, false);
    row("years old", "plugin_20100101.txt", 30, false);
    row("of the future", "plugin_20180301.txt", 30, true);
    row("an old file of others", "other_20170101.txt", 30, false);
    row("no date", "notes.txt", 30, true);
    row("no valid date", "x_2017011.txt", 30, true);
    row("a day that no month has", "plugin_20170230.txt", 30, true);
    row("nines", "plugin_99999999.txt", 30, true);
    row("zeros", "plugin_00000000.txt", 30, true);
    row("nothing but a date", "20170101.txt", 30, false);
    row("a date before the date", "20170101_20180131.txt", 30, true);
    row("a long name", QByteArray(QByteArray(120, 'x') + "_20170101.txt").constData(), 30, false);
#ifdef Q_OS_UNIX // no file of Windows has one
    row("a line feed in the name", "x\n_20170101.txt", 30, false);
    row("a line feed in the date", "x_2017\n0101.txt", 30, true);
    row("wildcards", "*?[a]_20170101.txt", 30, false);
#endif
    row("another extension", "plugin_20170101.log", 30, true);
    row("a lock file with a date", "plugin_20170101.lock", 30, true);
    row("yesterday's, kept a day", "plugin_20180131.txt", 1, true);
    row("two days old, kept a day", "plugin_20180130.txt", 1, false);
    row("yesterday's, kept no day", "plugin_20180131.txt", 0, false);
    row("a long time kept", "plugin_20170101.txt", 400, true);
}

void tst_PluginLogger::cleanUp()
{
    QFETCH(QString, fileName);
    QFETCH(int, retentionDays);
    QFETCH(bool, isKept);
    LogSettings settings = m_logger->settings();
    settings.retentionDays = retentionDays;
    m_logger->setSettings(settings);
    QVERIFY(writeFile(path(fileName), "old"));
    QVERIFY(write(QStringLiteral("a")));
    QCOMPARE(QFile::exists(path(fileName)), isKept);
    QCOMPARE(messages(log()), QStringList{QStringLiteral("a")});
}

void tst_PluginLogger::cleanUpOtherKinds()
{
    LogSettings settings = m_logger->settings();
    settings.extension = QStringLiteral("log");
    m_logger->setSettings(settings);
    QVERIFY(QDir().mkdir(path(QStringLiteral("d_20170101.log"))));
    QVERIFY(writeFile(path(QStringLiteral("x_20170101.txt"))));
    QVERIFY(writeFile(path(QStringLiteral("x_20170101.log"))));
    QVERIFY(writeFile(path(QStringLiteral("x_20170101log"))));
    QVERIFY(write(QStringLiteral("a")));
    QCOMPARE(files(),
        QStringList({QStringLiteral("d_20170101.log"), QStringLiteral("plugin_20180201.log"),
            QStringLiteral("x_20170101.txt"), QStringLiteral("x_20170101log")}));
}

void tst_PluginLogger::cleanUpOnceADay()
{
    const QString old = path(QStringLiteral("plugin_20170101.txt"));
    QVERIFY(write(QStringLiteral("a")));
    QVERIFY(writeFile(old));
    m_now.setTime(QTime(23, 59, 59, 999));
    QVERIFY(write(QStringLiteral("b")));
    QVERIFY(QFile::exists(old));
    m_now = m_now.addMSecs(1);
    QVERIFY(write(QStringLiteral("c")));
    QVERIFY(!QFile::exists(old));
    QVERIFY(writeFile(old));
    QVERIFY(write(QStringLiteral("d")));
    QVERIFY(QFile::exists(old));
}

void tst_PluginLogger::cleanUpAfterTheClockWasSetBack()
{
    const QString old = path(QStringLiteral("plugin_20170101.txt"));
    QVERIFY(write(QStringLiteral("a")));
    m_now = m_now.addDays(1);
    QVERIFY(write(QStringLiteral("b")));
    QVERIFY(writeFile(old));
    m_now = m_now.addDays(-1);
    QVERIFY(write(QStringLiteral("c")));
    QVERIFY(!QFile::exists(old)); // another date than that of the last time
    QCOMPARE(messages(log()), QStringList({QStringLiteral("a"), QStringLiteral("c")}));
}

void tst_PluginLogger::cleanUpWhileTheClockIsFarAhead()
{
    // What is yesterday's then goes; no record can tell that the clock is wrong.
    const QString old = path(QStringLiteral("plugin_20280101.txt"));
    const QDateTime before = m_now;
    QVERIFY(write(QStringLiteral("a")));
    m_now = m_now.addYears(10);
    QVERIFY(write(QStringLiteral("b")));
    QCOMPARE(files(), QStringList{QStringLiteral("plugin_20280201.txt")});
    QVERIFY(writeFile(old));
    m_now = m_now.addSecs(60);
    QVERIFY(write(QStringLiteral("c")));
    QVERIFY(QFile::exists(old)); // once a day

    m_now = before.addSecs(60);
    QVERIFY(write(QStringLiteral("d")));
    QCOMPARE(messages(log()), QStringList{QStringLiteral("d")});
    QCOMPARE(files(),
        QStringList({LogName, QStringLiteral("plugin_20280101.txt"),
            QStringLiteral("plugin_20280201.txt")}));
}

void tst_PluginLogger::cleanUpOfManyFiles()
{
    constexpr int Files = 5000;
    for (int number = 0; number < Files; ++number) {
        const QString name
            = number % 2 == 0 ? QStringLiteral("x%1_20170101.txt") : QStringLiteral("x%1.txt");
        QVERIFY(writeFile(path(name.arg(number))));
    }
    QElapsedTimer stopwatch;
    stopwatch.start();
    QVERIFY(write(QStringLiteral("a")));
    QVERIFY(stopwatch.elapsed() < AtOnceMs);
    QCOMPARE(files().size(), Files / 2 + 1);
}

void tst_PluginLogger::cleanUpNeedsALock()
{
    const QString old = path(QStringLiteral("plugin_20170101.txt"));
    QVERIFY(writeFile(old));
    QVERIFY(createLock());
    QVERIFY(!write(QStringLiteral("a"), ShortTimeoutMs));
    QVERIFY(QFile::exists(old));
    QVERIFY(QFile::remove(path(LockName)));
    QVERIFY(write(QStringLiteral("b")));
    QVERIFY(!QFile::exists(old)); // the failed one did not count
}

void tst_PluginLogger::filteredRecordsDoNotCleanUp()
{
    const QString old = path(QStringLiteral("plugin_20170101.txt"));
    QVERIFY(writeFile(old));
    QVERIFY(m_logger->write(QStringLiteral("a"), 6, LongTimeoutMs));
    QCOMPARE(files(), QStringList{QStringLiteral("plugin_20170101.txt")});
}

void tst_PluginLogger::defaultDirectoryDoesNotCount()
{
    const QString old = path(QStringLiteral("plugin_20170101.txt"));
    QVERIFY(writeFile(old));
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_directory->path()));
    m_logger->setSettings(LogSettings());
    const bool written = write(QStringLiteral("a"));
    const bool wasKept = QFile::exists(old);
    QVERIFY(QDir::setCurrent(before));
    QVERIFY(written);
    QVERIFY(wasKept);

    m_logger->setSettings(settingsFor(m_directory->path()));
    QVERIFY(write(QStringLiteral("b")));
    QVERIFY(!QFile::exists(old));
}

int main(int argc, char *argv[])
{
    // Some tests start this program again as the other process.
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const QString mode = arguments.value(0);
    const QString directory = arguments.value(1);
    if (mode == QLatin1String("--without-application"))
        return runWithoutApplication(directory);
    if (mode == QLatin1String("--write-late") || mode == QLatin1String("--write-last")) {
        lateWriter().directory = directory;
        const QCoreApplication application(argc, argv);
        if (mode == QLatin1String("--write-late"))
            return 0;
        // What Qt creates for this goes before the writer that is older.
        PluginLogger logger;
        logger.setSettings(settingsFor(directory));
        return logger.write(QStringLiteral("early"), Notice, LongTimeoutMs) ? 0 : 1;
    }

    const QCoreApplication application(argc, argv);
    if (mode == QLatin1String("--write-records")) {
        PluginLogger logger;
        logger.setSettings(settingsFor(directory));
        return writeRecords(logger, arguments.value(2), arguments.value(3).toInt()) ? 0 : 1;
    }
    tst_PluginLogger test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_pluginlogger.moc"
