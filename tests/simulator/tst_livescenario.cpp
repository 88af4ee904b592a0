#include "demo/simulator/LiveScenario.h"
#include "demo/simulator/ScenarioReader.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Simulation;
using KrTest::writeFile;

/// A file that changes is told by its ages here: viewers 1, 2 and 3 are "1 2 3".
class tst_LiveScenario : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void noFile();
    void everyChangeIsTakenOver();
    void sameContentAgain();
    void changesOfOneMoment();
    void oldFile();
    void problems_data();
    void problems();
    void eachProblemIsToldOnce();
    void goneAndBack();
    void everyPrefix();
    void randomDamage();

private:
    QString update();
    QString ages() const;
    bool replace(const QByteArray &text) const; ///< in one step
    bool setTime(const QDateTime &time) const; ///< of the content

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_file;
    std::unique_ptr<LiveScenario> m_live;
    QDateTime m_now;
};

static QByteArray viewers(const QByteArray &ages)
{
    QByteArray text;
    for (const QByteArray &age : ages.split(' '))
        text += (text.isEmpty() ? "{ \"age\": " : ", { \"age\": ") + age + " }";
    return "{ \"viewers\": [" + text + "] }";
}

void tst_LiveScenario::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_file = m_dir->filePath(QStringLiteral("live.json"));
    m_live = std::make_unique<LiveScenario>(m_file);
    m_now = QDateTime::currentDateTimeUtc();
}

/// What is told, less the file's name.
QString tst_LiveScenario::update()
{
    const QString news = m_live->update(m_now);
    if (news.isEmpty())
        return news;
    return news.startsWith(m_file) ? news.mid(m_file.size())
                                   : QStringLiteral("about what? ") + news;
}

QString tst_LiveScenario::ages() const
{
    QStringList ages;
    for (const Viewer &viewer : m_live->scenario().viewers)
        ages << QString::number(viewer.age.value_or(-1));
    return ages.join(QLatin1Char(' '));
}

bool tst_LiveScenario::replace(const QByteArray &text) const
{
    QSaveFile file(m_file);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
}

bool tst_LiveScenario::setTime(const QDateTime &time) const
{
    QFile file(m_file);
    return file.open(QIODevice::ReadWrite)
        && file.setFileTime(time, QFileDevice::FileModificationTime);
}

void tst_LiveScenario::noFile()
{
    QCOMPARE(update(), QStringLiteral(": no such file"));
    QCOMPARE(update(), QString());
    QCOMPARE(ages(), QString());
    QVERIFY(replace(viewers("8")));
    QCOMPARE(update(), QStringLiteral(": is in order now"));
    QCOMPARE(update(), QString());
    QCOMPARE(ages(), QStringLiteral("8"));
}

void tst_LiveScenario::everyChangeIsTakenOver()
{
    for (const char *text : {"8", "8 30", "1 2 3", "120"}) {
        QVERIFY(replace(viewers(text)));
        QCOMPARE(update(), QString());
        QCOMPARE(ages(), QString::fromLatin1(text));
    }
    QVERIFY(replace("{}"));
    QCOMPARE(update(), QString());
    QCOMPARE(ages(), QString()); // all have left
    QVERIFY(writeFile(m_file, viewers("40"))); // not in one step, but whole when it is looked at
    QCOMPARE(update(), QString());
    QCOMPARE(ages(), QStringLiteral("40"));
}

void tst_LiveScenario::sameContentAgain()
{
    QVERIFY(replace(viewers("8")));
    QCOMPARE(update(), QString());
    m_now = m_now.addSecs(3600);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(replace(viewers("8")));
        QCOMPARE(update(), QString());
        QCOMPARE(ages(), QStringLiteral("8"));
    }
}

/// Size and time stay the same, as with a clock of coarse steps. A time that is still to come goes
/// before that of the last rename, which nobody can set.
void tst_LiveScenario::changesOfOneMoment()
{
    const QDateTime time = m_now.addSecs(3600);
    for (int age = 10; age < 60; ++age) {
        QVERIFY(writeFile(m_file, viewers(QByteArray::number(age))));
        QVERIFY(setTime(time));
        m_now = QDateTime::currentDateTimeUtc();
        QCOMPARE(update(), QString());
        QCOMPARE(ages(), QString::number(age));
    }
}

/// A file of yesterday is replaced by one of the day before.
void tst_LiveScenario::oldFile()
{
    QVERIFY(replace(viewers("10")));
    QVERIFY(setTime(m_now.addDays(-1)));
    m_now = m_now.addSecs(3600);
    QCOMPARE(update(), QString());
    QCOMPARE(ages(), QStringLiteral("10"));
    QTest::qSleep(50); // a step of the file system's clock
    QVERIFY(replace(viewers("11")));
    QVERIFY(setTime(m_now.addDays(-2)));
    QCOMPARE(update(), QString());
    QCOMPARE(ages(), QStringLiteral("11"));
}

void tst_LiveScenario::problems_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nothing in it") << QByteArray() << QStringLiteral(":1:1: illegal value");
    QTest::newRow("cut") << viewers("8 30").left(30)
                         << QStringLiteral(":1:31: unterminated object");
    QTest::newRow("a wrong value in the second line")
        << QByteArray("{ \"viewers\": [\n { \"age\": 121 }] }")
        << QStringLiteral(":2:4: viewers[0].age: must be a whole number from 0 to 120");
    QTest::newRow("an unknown key")
        << QByteArray(R"({ "viewer": [] })") << QStringLiteral(":1:3: viewer: unknown key");
    QTest::newRow("faults") << QByteArray(R"({ "viewers": [{ "age": 9 }], "faults": [] })")
                            << QStringLiteral(":1:30: faults: has no place in a live file");
    QTest::newRow("a deaf program")
        << QByteArray(R"({ "ignoreStopKey": false })")
        << QStringLiteral(":1:3: ignoreStopKey: has no place in a live file");
    QTest::newRow("a slow program") << QByteArray(
        R"({ "stopDelay": 1 })") << QStringLiteral(":1:3: stopDelay: has no place in a live file");
    QTest::newRow("an absent port")
        << QByteArray(R"({ "absentPorts": [3] })")
        << QStringLiteral(":1:3: absentPorts: has no place in a live file");
    QTest::newRow("more than is allowed")
        << QByteArray(16 * 1024 * 1024 + 1, ' ') << QStringLiteral(": is larger than 16 MiB");
}

void tst_LiveScenario::problems()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);

    QVERIFY(replace(viewers("8 30")));
    QCOMPARE(update(), QString());
    QVERIFY(replace(text));
    QCOMPARE(update(), expected);
    QCOMPARE(ages(), QStringLiteral("8 30"));
    QCOMPARE(update(), QString());
    QVERIFY(replace(text)); // the same once more
    QCOMPARE(update(), QString());
    QVERIFY(replace(viewers("9")));
    QCOMPARE(update(), QStringLiteral(": is in order now"));
    QCOMPARE(ages(), QStringLiteral("9"));
}

void tst_LiveScenario::eachProblemIsToldOnce()
{
    QVERIFY(replace("{ \"seed\": -1, \"repeat\": -1 }"));
    QVERIFY(update().contains(QLatin1String("seed")));
    QCOMPARE(update(), QString());
    QVERIFY(replace("{ \"seed\": 1, \"repeat\": -1 }"));
    QVERIFY(update().contains(QLatin1String("repeat")));
    QCOMPARE(update(), QString());
    QVERIFY(replace("{ \"seed\": 1, \"repeat\": 1 }"));
    QCOMPARE(update(), QStringLiteral(": is in order now"));
    QCOMPARE(update(), QString());
}

void tst_LiveScenario::goneAndBack()
{
    QVERIFY(replace(viewers("8")));
    QCOMPARE(update(), QString());
    m_now = m_now.addSecs(3600);
    QVERIFY(QFile::remove(m_file));
    QCOMPARE(update(), QStringLiteral(": no such file"));
    QCOMPARE(ages(), QStringLiteral("8"));
    QVERIFY(QDir().mkdir(m_file));
    QCOMPARE(update(), QStringLiteral(": is not a file"));
    QCOMPARE(ages(), QStringLiteral("8"));
    QVERIFY(QDir().rmdir(m_file));
    QVERIFY(replace(viewers("8"))); // what it was before
    QCOMPARE(update(), QStringLiteral(": is in order now"));
    QCOMPARE(ages(), QStringLiteral("8"));
}

void tst_LiveScenario::everyPrefix()
{
    const QByteArray good = viewers("8 30 41 120");
    QVERIFY(writeFile(m_file, good));
    QCOMPARE(update(), QString());
    const Scenario expected = m_live->scenario();
    QVERIFY(!expected.viewers.isEmpty());
    for (int size = good.size() - 1; size >= 0; --size) {
        QVERIFY(writeFile(m_file, good.left(size)));
        update();
        QVERIFY2(m_live->scenario() == expected, qPrintable(QString::number(size)));
    }
    QVERIFY(writeFile(m_file, good));
    QCOMPARE(update(), QStringLiteral(": is in order now"));
}

void tst_LiveScenario::randomDamage()
{
    QRandomGenerator random(4711);
    const QByteArray good = viewers("8 30 41 120");
    QString error;
    Scenario expected = *parseLiveScenario(good, QString(), &error);
    QVERIFY(writeFile(m_file, good));
    QCOMPARE(update(), QString());
    for (int i = 0; i < 200; ++i) {
        QByteArray text = good;
        for (int changes = 1 + random.bounded(4); changes > 0; --changes)
            text[random.bounded(text.size())] = static_cast<char>(random.bounded(256));
        if (const auto scenario = parseLiveScenario(text, QString(), &error))
            expected = *scenario;
        QVERIFY(writeFile(m_file, text));
        update();
        QVERIFY2(m_live->scenario() == expected, text.constData());
    }
}

QTEST_GUILESS_MAIN(tst_LiveScenario)
#include "tst_livescenario.moc"
