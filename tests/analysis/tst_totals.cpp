#include "demo/simulator/FramePlan.h"
#include "demo/simulator/ScenarioReader.h"
#include "tools/analysis/Totals.h"

#include <QtTest>

#include <cctype>
#include <limits>

using namespace Analysis;
using namespace PluginKrHvcP2;

namespace {

constexpr int IntervalMs = 500;
constexpr int Frames = 1000;
constexpr qint64 StartMs = 1517477400000; // 2018-02-01 09:30, a Thursday

QDateTime moment(qint64 seconds)
{
    return QDateTime::fromMSecsSinceEpoch(StartMs + seconds * 1000, Qt::UTC);
}

/// Women of 20 to 39 get #1, boys up to 12 get #2.
Plan plan()
{
    Plan plan;
    plan.contents = {{1, 20, 39, Female, false, {2}}, {2, 0, 12, Male, false, {3}}};
    return plan;
}

QString face(int index, const char *age, const char *gender)
{
    return QStringLiteral("Index:%1\tX:800 Y:600 Size:200 Confidence:800\n"
                          "Face Direction\tLR:0 UD:0 Roll:0 Confidence:700\n"
                          "Age\tAge:%2 Confidence:500\nGender\tGender:%3 Confidence:900\n")
        .arg(index)
        .arg(QLatin1String(age), QLatin1String(gender));
}

enum Origin { Recorded = 0, Logged = 999 }; // by the tolerance of its times

Entry entryAt(Entry::Kind kind, qint64 seconds, Origin origin = Logged)
{
    Entry entry;
    entry.kind = kind;
    entry.time = moment(seconds);
    entry.timeToleranceMs = origin;
    return entry;
}

Entry frameAt(qint64 seconds, const QString &text, Origin origin = Logged)
{
    Entry entry = entryAt(Entry::Frame, seconds, origin);
    entry.text = text;
    return entry;
}

Entry errorAt(qint64 seconds, const QString &message)
{
    Entry entry = entryAt(Entry::Error, seconds);
    entry.text = message;
    return entry;
}

Entry determinedAt(qint64 seconds, const QVector<int> &numbers)
{
    Entry entry = entryAt(Entry::Determined, seconds);
    entry.numbers = numbers;
    return entry;
}

Entry restrictedAt(qint64 seconds, int number)
{
    Entry entry = entryAt(Entry::Restricted, seconds);
    entry.number = number;
    return entry;
}

Totals totalsOf(const QVector<Entry> &entries, const std::optional<Plan> &plan = {})
{
    TotalsCounter counter(plan);
    for (const Entry &entry : entries)
        counter.add(entry);
    return counter.totals();
}

/// "1:5 3:2" for five of sequence 1 and two of sequence 3.
template <typename Map>
QString countsOf(const Map &map)
{
    QStringList counts;
    for (const auto &[key, tally] : map.values())
        counts << QStringLiteral("%1:%2").arg(key).arg(tally.count);
    return counts.join(QLatin1Char(' '));
}

/// What text says to somebody who knows its lines, but not the parser.
struct PlainCount
{
    qint64 faces = 0;
    qint64 female = 0;
    qint64 male = 0;
    qint64 failures = 0;
    std::array<qint64, AgeBands> ages{};

    void add(const QByteArray &text)
    {
        bool isFace = false;
        int age = -1;
        const QList<QByteArray> lines = text.split('\n');
        for (const QByteArray &line : lines) {
            failures += line.toLower().contains("failed ") ? 1 : 0;
            if (line.startsWith("Index:") && line.size() > 6 && std::isdigit(line.at(6)) != 0)
                isFace = true;
            if (line.startsWith("Press Space")) {
                isFace = false;
                age = -1;
            }
            if (line.startsWith("Age\tAge:")) {
                bool ok = false;
                const int number = line.mid(8).split(' ').constFirst().toInt(&ok);
                age = ok ? number : age;
            }
            if (!line.startsWith("Gender") || !isFace)
                continue;
            ++faces;
            female += line.contains("Gender:Female") ? 1 : 0;
            male += line.contains("Gender:Male") ? 1 : 0;
            ++ages.at(age < 0 ? 8 : age > 69 ? 7 : static_cast<std::size_t>(age) / 10);
            isFace = false;
            age = -1;
        }
    }
};

} // namespace

class tst_Totals : public QObject
{
    Q_OBJECT

private slots:
    void ageBands_data();
    void ageBands();
    void nothing();
    void faces();
    void withoutTimes();
    void localTime();
    void beforeTheYear1970();
    void requestsOfALog();
    void requestsOfARecording();
    void unmatched_data();
    void unmatched();
    void sensorErrors();
    void process_data();
    void process();
    void silences();
    void longestSilences();
    void limits();
    void everyScenario_data();
    void everyScenario();
};

void tst_Totals::ageBands_data()
{
    QTest::addColumn<int>("age");
    QTest::addColumn<int>("band");

    QTest::newRow("not known") << -1 << UnknownAgeBand;
    QTest::newRow("least") << std::numeric_limits<int>::min() << UnknownAgeBand;
    QTest::newRow("newborn") << 0 << 0;
    QTest::newRow("last of a band") << 9 << 0;
    QTest::newRow("first of a band") << 10 << 1;
    QTest::newRow("before the last band") << 69 << 6;
    QTest::newRow("last band") << 70 << 7;
    QTest::newRow("largest") << std::numeric_limits<int>::max() << 7;
}

void tst_Totals::ageBands()
{
    QFETCH(int, age);
    QFETCH(int, band);

    QCOMPARE(ageBandOf(age), band);
    if (band == UnknownAgeBand)
        return;
    const AgeRange ages = agesOfBand(band);
    QVERIFY(ages.from <= age && age <= ages.to);
}

void tst_Totals::nothing()
{
    const Totals totals = totalsOf({});
    QCOMPARE(totals.frames, 0);
    QCOMPARE(sumOf(totals.audience()), 0);
    QVERIFY(totals.first.isNull());
    QVERIFY(!totals.unmatched);
    QCOMPARE(sumOf(*totalsOf({}, plan()).unmatched), 0);
}

void tst_Totals::faces()
{
    const QString two = face(0, "34", "Female") + face(1, "8", "Male");
    const Totals totals
        = totalsOf({frameAt(0, two), frameAt(1, QStringLiteral("Face result count:0\n")),
            frameAt(1800, face(0, "-", "Male") + face(1, "99", "-"))});
    QCOMPARE(totals.frames, 3);
    QCOMPARE(totals.framesWithFaces, 2);
    QCOMPARE(totals.faces, 4);
    const Audience audience = totals.audience();
    QCOMPARE(sumOf(audience, Female), 1);
    QCOMPARE(sumOf(audience, Male), 2);
    QCOMPARE(sumOf(audience, UnknownGender), 1);
    const Audience nine = totals.facesByHour.at(9);
    QCOMPARE(sumOf(nine), 2);
    QCOMPARE(nine.at(0).at(3), 1); // women of 30 to 39
    QCOMPARE(nine.at(1).at(0), 1); // boys
    const Audience ten = totals.facesByHour.at(10);
    QCOMPARE(ten.at(1).at(UnknownAgeBand), 1);
    QCOMPARE(ten.at(2).at(7), 1);
    constexpr std::size_t Thursday = 3;
    QCOMPARE(totals.facesByWeekday.at(Thursday).at(9), 2);
    QCOMPARE(totals.facesByWeekday.at(Thursday).at(10), 2);
    const DayTotals day = totals.days.value(QDate(2018, 2, 1));
    QCOMPARE(day.frames, 3);
    QCOMPARE(day.faces, 4);
    QCOMPARE(totals.first, moment(0));
    QCOMPARE(totals.last, moment(1800));
    QCOMPARE(totals.timeToleranceMs, 999);
}

void tst_Totals::withoutTimes()
{
    Entry entry;
    entry.kind = Entry::Frame;
    entry.text = face(0, "34", "Female");
    const Totals totals = totalsOf({entry, entry, frameAt(0, entry.text), entry});
    QCOMPARE(totals.frames, 4);
    QCOMPARE(sumOf(totals.audience()), 4);
    QCOMPARE(sumOf(totals.facesByHour.at(9)), 1);
    QCOMPARE(totals.days.values().size(), std::size_t{1});
    QCOMPARE(totals.days.value(QDate(2018, 2, 1)).frames, 1);
    QCOMPARE(totals.silences.count, 0);
}

/// 22:30 in UTC is 7:30 on Friday, nine hours to the east.
void tst_Totals::localTime()
{
    Entry frame = frameAt(13 * 3600, face(0, "34", "Female"));
    frame.time = frame.time.toOffsetFromUtc(9 * 3600);
    const Totals totals = totalsOf({frame});
    QCOMPARE(sumOf(totals.facesByHour.at(7)), 1);
    QCOMPARE(totals.facesByWeekday.at(4).at(7), 1);
    QCOMPARE(totals.days.value(QDate(2018, 2, 2)).frames, 1);
}

void tst_Totals::beforeTheYear1970()
{
    Entry frame = frameAt(0, face(0, "34", "Female"));
    frame.time = QDateTime(QDate(1969, 12, 31), QTime(23, 59, 59), Qt::UTC);
    const Totals totals = totalsOf({frame});
    QCOMPARE(sumOf(totals.facesByHour.at(23)), 1);
    QCOMPARE(totals.facesByWeekday.at(2).at(23), 1); // a Wednesday
}

/// A log says itself what was determined, even when there is a plan.
void tst_Totals::requestsOfALog()
{
    const QVector<Entry> entries{frameAt(0, face(0, "34", "Female")), restrictedAt(0, 3),
        determinedAt(0, {5, 3}), frameAt(3600, face(0, "34", "Female")), determinedAt(3600, {5})};
    for (const std::optional<Plan> &each : {std::optional<Plan>(), std::make_optional(plan())}) {
        const Totals totals = totalsOf(entries, each);
        QCOMPARE(totals.recordedFrames, 0);
        QCOMPARE(totals.determined, 3);
        QCOMPARE(totals.restricted, 1);
        QCOMPARE(countsOf(totals.determinedSequences), QStringLiteral("3:1 5:2"));
        QCOMPARE(countsOf(totals.restrictedSequences), QStringLiteral("3:1"));
        const Tally five = totals.determinedSequences.value(5);
        QCOMPARE(five.hours.at(9), 1);
        QCOMPARE(five.hours.at(10), 1);
        QCOMPARE(five.first, moment(0));
        QCOMPARE(five.last, moment(3600));
        QCOMPARE(totals.days.value(QDate(2018, 2, 1)).determined, 3);
        QCOMPARE(totals.days.value(QDate(2018, 2, 1)).restricted, 1);
    }
}

void tst_Totals::requestsOfARecording()
{
    const QString woman = face(0, "34", "Female");
    const QVector<Entry> entries{frameAt(0, woman, Recorded), frameAt(1, woman, Recorded),
        frameAt(9, woman + face(1, "8", "Male"), Recorded)};
    QCOMPARE(totalsOf(entries).determined, 0);
    QCOMPARE(totalsOf(entries).recordedFrames, 3);

    Plan plan = ::plan();
    QCOMPARE(countsOf(totalsOf(entries, plan).determinedSequences), QStringLiteral("1:2 2:1"));
    plan.settings.concurrent = 2;
    const Totals totals = totalsOf(entries, plan);
    QCOMPARE(countsOf(totals.determinedSequences), QStringLiteral("1:3 2:1"));
    QCOMPARE(countsOf(totals.restrictedSequences), QStringLiteral("1:1"));
    QCOMPARE(totals.faces, 4);
}

void tst_Totals::unmatched_data()
{
    QTest::addColumn<int>("origin");

    QTest::newRow("log") << int{Logged};
    QTest::newRow("recording") << int{Recorded};
}

void tst_Totals::unmatched()
{
    QFETCH(int, origin);

    const Totals totals
        = totalsOf({frameAt(0,
                       face(0, "34", "Female") + face(1, "50", "Female") + face(2, "50", "Male")
                           + face(3, "-", "Male") + face(4, "8", "-"),
                       static_cast<Origin>(origin))},
            plan());
    QVERIFY(totals.unmatched);
    QCOMPARE(sumOf(*totals.unmatched), 3); // #2 fits the age of the last one
    QCOMPARE(totals.unmatched->at(0).at(5), 1);
    QCOMPARE(totals.unmatched->at(1).at(5), 1);
    QCOMPARE(totals.unmatched->at(1).at(UnknownAgeBand), 1);
}

void tst_Totals::sensorErrors()
{
    const QString port = QStringLiteral("Failed to open COM port.");
    const QString both = port + QStringLiteral("\r\nIt has FAILED again.\n\n");
    for (const Origin origin : {Logged, Recorded}) {
        const Totals totals
            = totalsOf({frameAt(0, port, origin), frameAt(3600, both, origin)}, plan());
        QCOMPARE(totals.sensorErrors, 3);
        QCOMPARE(countsOf(totals.sensorErrorMessages),
            QStringLiteral("Failed to open COM port.:2 It has FAILED again.:1"));
        QCOMPARE(totals.sensorErrorMessages.value(port).hours.at(10), 1);
        QCOMPARE(totals.sensorErrorMessages.value(port).last, moment(3600));
        QCOMPARE(totals.days.value(QDate(2018, 2, 1)).sensorErrors, 3);
        QCOMPARE(totals.errors, 0);
    }
}

void tst_Totals::process_data()
{
    QTest::addColumn<QString>("events"); // s: start, p: stop, e: error
    QTest::addColumn<int>("starts");
    QTest::addColumn<int>("stops");
    QTest::addColumn<int>("restarts");

    QTest::newRow("none") << "" << 0 << 0 << 0;
    QTest::newRow("one start") << "s" << 1 << 0 << 0;
    QTest::newRow("stopped in between") << "sps" << 2 << 1 << 0;
    QTest::newRow("ended by itself") << "sesesp" << 3 << 1 << 2;
    QTest::newRow("running before the log") << "ps" << 1 << 1 << 0;
}

void tst_Totals::process()
{
    QFETCH(QString, events);

    QVector<Entry> entries;
    for (const QChar event : qAsConst(events)) {
        if (event == QLatin1Char('e'))
            entries << errorAt(0, QStringLiteral("Crashed."));
        else
            entries << entryAt(event == QLatin1Char('s') ? Entry::Started : Entry::Stopped, 0);
    }
    const Totals totals = totalsOf(entries);
    QTEST(static_cast<int>(totals.starts), "starts");
    QTEST(static_cast<int>(totals.stops), "stops");
    QTEST(static_cast<int>(totals.restarts), "restarts");
    QCOMPARE(totals.errors, events.count(QLatin1Char('e')));
    QCOMPARE(totals.errorMessages.value(QStringLiteral("Crashed.")).count, totals.errors);
}

void tst_Totals::silences()
{
    const Totals totals
        = totalsOf({frameAt(0, {}), frameAt(60, {}), frameAt(121, {}), entryAt(Entry::Stopped, 122),
            entryAt(Entry::Started, 300), frameAt(321, {}), frameAt(100, {}), frameAt(1100, {})});
    QCOMPARE(totals.silences.count, 3);
    QCOMPARE(totals.silences.ms, 61000 + 200000 + 1000000);
    QCOMPARE(totals.silences.longest.size(), 3);
    QCOMPARE(totals.silences.longest.at(0).from, moment(60));
    QCOMPARE(totals.silences.longest.at(0).to, moment(121));
    QVERIFY(!totals.silences.longest.at(0).isStopped);
    QVERIFY(totals.silences.longest.at(1).isStopped);
    QVERIFY(!totals.silences.longest.at(2).isStopped);
}

void tst_Totals::longestSilences()
{
    Silences silences;
    QDateTime from = moment(0);
    for (int i = 0; i < 2 * Silences::MaxListed; ++i) {
        const QDateTime to = from.addSecs(i % 2 == 0 ? 100 : 200 + i);
        silences.add({from, to, false});
        from = to;
    }
    QCOMPARE(silences.count, 2 * Silences::MaxListed);
    QCOMPARE(silences.longest.size(), Silences::MaxListed);
    for (int i = 0; i < Silences::MaxListed; ++i)
        QCOMPARE(silences.longest.at(i).ms(), (200 + 2 * i + 1) * 1000);
}

void tst_Totals::limits()
{
    TotalsCounter counter;
    constexpr int Many = 5000;
    for (int i = 0; i < Many; ++i) {
        counter.add(determinedAt(qint64{i} * 86400, {i}));
        counter.add(errorAt(0, QStringLiteral("error %1").arg(i)));
    }
    counter.add(errorAt(0, QString(100000, QLatin1Char('x'))));
    const Totals &totals = counter.totals();
    QCOMPARE(totals.determinedSequences.values().size(), std::size_t{1000});
    QCOMPARE(totals.determinedSequences.others().count, Many - 1000);
    QCOMPARE(totals.days.values().size(), std::size_t{1000});
    QCOMPARE(totals.days.others().determined, Many - 1000);
    QCOMPARE(totals.errorMessages.values().size(), std::size_t{50});
    QCOMPARE(totals.errorMessages.others().count, Many + 1 - 50);

    const Totals one = totalsOf({errorAt(0, QString(100000, QLatin1Char('x')))});
    QCOMPARE(one.errorMessages.values().begin()->first.size(), Totals::MaxMessageLength);
}

void tst_Totals::everyScenario_data()
{
    QTest::addColumn<QString>("scenario");

    const QFileInfoList scenarios = QDir(QStringLiteral(KRHVC_SCENARIO_DIR))
                                        .entryInfoList({QStringLiteral("*.json")}, QDir::Files);
    QVERIFY(!scenarios.isEmpty());
    for (const QFileInfo &scenario : scenarios)
        QTest::newRow(qUtf8Printable(scenario.baseName())) << scenario.filePath();
}

void tst_Totals::everyScenario()
{
    QFETCH(QString, scenario);

    QFile file(scenario);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QString error;
    const auto viewers = Simulation::parseScenario(file.readAll(), scenario, &error);
    QVERIFY2(viewers, qUtf8Printable(error));

    TotalsCounter counter;
    PlainCount plain;
    for (int i = 0; i < Frames; ++i) {
        const QByteArray text = Simulation::planFrame(*viewers, i, IntervalMs).output();
        plain.add(text);
        counter.add(
            frameAt(i, QString::fromUtf8(text.constData(), text.size()), Recorded)); // NULs, too
    }
    const Totals &totals = counter.totals();
    const Audience audience = totals.audience();
    QCOMPARE(totals.frames, Frames);
    QCOMPARE(totals.faces, plain.faces);
    QCOMPARE(sumOf(audience), plain.faces);
    QCOMPARE(sumOf(audience, Female), plain.female);
    QCOMPARE(sumOf(audience, Male), plain.male);
    QCOMPARE(totals.sensorErrors, plain.failures);
    for (std::size_t band = 0; band < AgeBands; ++band)
        QCOMPARE(audience.at(0).at(band) + audience.at(1).at(band) + audience.at(2).at(band),
            plain.ages.at(band));
}

QTEST_APPLESS_MAIN(tst_Totals)

#include "tst_totals.moc"
