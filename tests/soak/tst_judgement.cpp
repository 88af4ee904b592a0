#include "Judgement.h"

#include <QTest>

#include <functional>

using namespace Soak;

namespace {

constexpr double Allowance = 4;
constexpr int Lines = 20;

/// Changes the sample of the line that is counted from 0.
using Change = std::function<void(Sample &sample, int line)>;

/// A run that neither grows nor shrinks, but for @p change.
QVector<Sample> run(const Change &change)
{
    QVector<Sample> samples;
    for (int line = 0; line < Lines; ++line) {
        Sample sample;
        sample.memory = qint64{100} << 20;
        sample.liveItems = 300;
        sample.items = 27;
        sample.objects = 200;
        sample.timers = 2;
        sample.descriptors = 12;
        change(sample, line);
        samples.append(sample);
    }
    return samples;
}

qint64 kibibytes(int count)
{
    return qint64{count} * 1024;
}

} // namespace

Q_DECLARE_METATYPE(Change)

class tst_Judgement : public QObject
{
    Q_OBJECT

private slots:
    void memory_data();
    void memory();
    void counts_data();
    void counts();
    void memoryThatIsNotLookedAt();
    void shortRun_data();
    void shortRun();
};

void tst_Judgement::memory_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("grows");

    QTest::newRow("flat") << Change([](Sample &, int) {}) << false;
    QTest::newRow("noise of 8 MiB about a level")
        << Change([](Sample &sample, int line) { sample.memory += kibibytes(4096) * (line % 3); })
        << false;
    QTest::newRow("a steady leak of more than the allowance")
        << Change([](Sample &sample, int line) { sample.memory += kibibytes(500) * line; }) << true;
    QTest::newRow("a steady leak below the noise")
        << Change([](Sample &sample, int line) { sample.memory += kibibytes(300) * line; })
        << false;
    QTest::newRow("a leak covered by noise") << Change([](Sample &sample, int line) {
        sample.memory += kibibytes(900) * line + kibibytes(2048) * (line % 3);
    }) << true;
    QTest::newRow("a start that takes memory, then level") << Change([](Sample &sample, int line) {
        sample.memory += kibibytes(20480) * std::min(line, 4);
    }) << false;
    // It has gone again: nothing that a month would add up.
    QTest::newRow("one late peak") << Change([](Sample &sample, int line) {
        if (line == 17)
            sample.memory += kibibytes(102400);
    }) << false;
    QTest::newRow("a late step that stays") << Change([](Sample &sample, int line) {
        if (line >= 16)
            sample.memory += kibibytes(5120);
    }) << true;
    QTest::newRow("shrinking") << Change([](Sample &sample, int line) {
        sample.memory -= kibibytes(2048) * line;
    }) << false;
}

void tst_Judgement::memory()
{
    QFETCH(Change, change);
    QFETCH(bool, grows);
    const QStringList found = growth(run(change), Allowance);
    QCOMPARE(found.size(), grows ? 1 : 0);
    if (grows)
        QVERIFY2(found.constFirst().startsWith(QLatin1String("memory: ")), qPrintable(found[0]));
}

void tst_Judgement::counts_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QStringList>("expected");

    const auto from = [](int Sample::*member, int line, int more) {
        return Change([=](Sample &sample, int at) {
            if (at >= line)
                sample.*member += more;
        });
    };
    const auto sentence = [](const char *text) { return QStringList{QString::fromLatin1(text)}; };

    QTest::newRow("one item more at the end")
        << from(&Sample::items, 19, 1) << sentence("items: 27 at half time, 28 at the end");
    QTest::newRow("one item more just after half time")
        << from(&Sample::items, 14, 1) << sentence("items: 27 at half time, 28 at the end");
    QTest::newRow("one item more at half time") << from(&Sample::items, 9, 1) << QStringList();
    QTest::newRow("one item less") << from(&Sample::items, 19, -1) << QStringList();
    QTest::newRow("an object") << from(&Sample::objects, 19, 1)
                               << sentence("objects: 200 at half time, 201 at the end");
    QTest::newRow("a timer") << from(&Sample::timers, 19, 1)
                             << sentence("timers: 2 at half time, 3 at the end");
    QTest::newRow("a descriptor") << from(&Sample::descriptors, 19, 1)
                                  << sentence("descriptors: 12 at half time, 13 at the end");
    QTest::newRow("a child") << from(&Sample::children, 19, 1)
                             << sentence("children: 0 at half time, 1 at the end");
    QTest::newRow("a crowd in the flow")
        << Change([](Sample &sample, int line) { sample.liveItems += 100 * line; })
        << QStringList();
    QTest::newRow("a line with more, which has gone at the end") << Change(
        [](Sample &sample, int line) {
            if (line == 14)
                sample.items += 5;
        }) << QStringList();
}

void tst_Judgement::counts()
{
    QFETCH(Change, change);
    QFETCH(QStringList, expected);
    QCOMPARE(growth(run(change), Allowance), expected);
}

void tst_Judgement::memoryThatIsNotLookedAt()
{
    const auto leak = [](Sample &sample, int line) { sample.memory += kibibytes(10240) * line; };
    QCOMPARE(growth(run(leak), std::nullopt), QStringList());
}

void tst_Judgement::shortRun_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<bool>("isJudged");

    QTest::newRow("nothing") << 0 << false;
    QTest::newRow("a line too few") << 7 << false;
    QTest::newRow("two a quarter") << 8 << true;
}

void tst_Judgement::shortRun()
{
    QFETCH(int, lines);
    QFETCH(bool, isJudged);
    QCOMPARE(growth(QVector<Sample>(lines), Allowance).isEmpty(), isJudged);
}

QTEST_APPLESS_MAIN(tst_Judgement)
#include "tst_judgement.moc"
