#include "detection/Determination.h"
#include "tools/analysis/Coverage.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QtTest>

using namespace Analysis;
using namespace PluginKrHvcP2;

namespace {

/// "#2 40-49 female default" for each; separated by semicolons.
DetectionContents readContents(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("#(\\d+) (\\d+)-(\\d+) (male|female|both)( default)?"));
    DetectionContents contents;
    auto matches = form.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        contents.append(
            {match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt(),
                genderFromText(match.captured(4)), !match.captured(5).isEmpty(), {2}});
    }
    return contents;
}

QString describe(const Choice &choice)
{
    const QString number = QLatin1Char('#') + QString::number(choice.number);
    switch (choice.fit) {
    case Choice::Nothing:
        return QStringLiteral("nothing");
    case Choice::Full:
        return number;
    case Choice::ByDefault:
        return number + QLatin1String(" default");
    case Choice::ByAge:
        return number + QLatin1String(" age");
    }
    return {};
}

/// "0-19 #1; 20-100 nothing; unknown #1 default"
QString describe(const GenderCoverage &coverage)
{
    QStringList texts;
    const QVector<Band> bands = coverage.bands();
    for (const Band &band : bands) {
        texts << QStringLiteral("%1-%2 %3")
                     .arg(QString::number(band.ages.from), QString::number(band.ages.to),
                         describe(band.choice));
    }
    texts << QLatin1String("unknown ") + describe(coverage.unknownAge);
    return texts.join(QLatin1String("; "));
}

QString describe(const QVector<int> &numbers)
{
    QStringList texts;
    for (const int number : numbers)
        texts << QString::number(number);
    return texts.join(QLatin1Char(' '));
}

/// Told by what the face scores: 0.5 alone in its frame, and the bonus of its match.
Choice decided(Gender gender, int age, const DetectionContents &contents)
{
    FaceResult face;
    face.index = 0;
    face.box = Measured<FaceBox>{{320, 240, 60}};
    if (gender != UnknownGender)
        face.gender = Measured<int>{gender};
    if (age >= 0)
        face.age = Measured<int>{age};
    const QList<CalculatedData> results
        = determineSequences({face}, {face.size()}, {UnknownDirectionValue}, contents);
    if (results.isEmpty())
        return {};
    const CalculatedData &result = results.constFirst();
    const Choice::Fit fit = result.score > 1.75 ? Choice::Full
        : result.score > 1.25                   ? Choice::ByDefault
                                                : Choice::ByAge;
    return {result.seqNumber, fit};
}

DetectionContents randomContents(QRandomGenerator &random)
{
    DetectionContents contents;
    const int count = random.bounded(8);
    for (int i = 0; i < count; ++i) {
        DetectionContent content;
        content.sequenceNumber = i + 1 + random.bounded(2) * 10;
        content.ageMin = random.bounded(110);
        content.ageMax = content.ageMin + random.bounded(40);
        content.genders = 1 + random.bounded(3);
        content.isDefault = random.bounded(4) == 0;
        contents.append(content);
    }
    return contents;
}

} // namespace

class tst_Coverage : public QObject
{
    Q_OBJECT

private slots:
    void choices_data();
    void choices();
    void asTheFacesAreDecided();
    void findings_data();
    void findings();
    void reach();
    void counts();
};

void tst_Coverage::choices_data()
{
    QTest::addColumn<QString>("contents");
    QTest::addColumn<QString>("female");
    QTest::addColumn<QString>("male");
    QTest::addColumn<QString>("unknown");

    QTest::newRow("no contents") << ""
                                 << "0-100 nothing; unknown nothing"
                                 << "0-100 nothing; unknown nothing"
                                 << "0-100 nothing; unknown nothing";
    QTest::newRow("for everybody") << "#1 0-120 both"
                                   << "0-100 #1; unknown nothing"
                                   << "0-100 #1; unknown nothing"
                                   << "0-100 #1 age; unknown nothing";
    QTest::newRow("both ends of a range are inside")
        << "#1 20-29 female default"
        << "0-19 #1 default; 20-29 #1; 30-100 #1 default; unknown #1 default"
        << "0-19 nothing; 20-29 #1 age; 30-100 nothing; unknown nothing"
        << "0-19 nothing; 20-29 #1 age; 30-100 nothing; unknown nothing";
    QTest::newRow("the first that fits, the last of the age alone, the last default")
        << "#1 0-50 female default; #2 40-60 female default; #5 30-70 male"
        << "0-50 #1; 51-60 #2; 61-100 #2 default; unknown #2 default"
        << "0-29 #1 age; 30-70 #5; 71-100 nothing; unknown nothing"
        << "0-29 #1 age; 30-70 #5 age; 71-100 nothing; unknown nothing";
    QTest::newRow("the first and the last year")
        << "#1 0-0 male; #2 100-100 male"
        << "0-0 #1 age; 1-99 nothing; 100-100 #2 age; unknown nothing"
        << "0-0 #1; 1-99 nothing; 100-100 #2; unknown nothing"
        << "0-0 #1 age; 1-99 nothing; 100-100 #2 age; unknown nothing";
}

void tst_Coverage::choices()
{
    QFETCH(QString, contents);
    QFETCH(QString, female);
    QFETCH(QString, male);
    QFETCH(QString, unknown);

    const Coverage coverage = coverageOf(readContents(contents));
    QCOMPARE(coverage.genders.size(), 3);
    QCOMPARE(coverage.genders.at(0).gender, Female);
    QCOMPARE(coverage.genders.at(1).gender, Male);
    QCOMPARE(coverage.genders.at(2).gender, UnknownGender);
    QCOMPARE(describe(coverage.genders.at(0)), female);
    QCOMPARE(describe(coverage.genders.at(1)), male);
    QCOMPARE(describe(coverage.genders.at(2)), unknown);
}

/// Whatever the contents are, a coverage says what becomes of a face in the plug-in.
void tst_Coverage::asTheFacesAreDecided()
{
    QRandomGenerator random(11);
    int choices = 0;
    for (int run = 0; run < 300; ++run) {
        const DetectionContents contents = randomContents(random);
        const Coverage coverage = coverageOf(contents);
        for (const GenderCoverage &row : coverage.genders) {
            QCOMPARE(row.ages.size(), 101);
            for (int age = 0; age <= 100; ++age) {
                const Choice expected = decided(row.gender, age, contents);
                QCOMPARE(describe(row.ages.at(age)), describe(expected));
                choices += expected.number > 0 ? 1 : 0;
            }
            QCOMPARE(describe(row.unknownAge), describe(decided(row.gender, -1, contents)));
        }
    }
    QVERIFY(choices > 10000);
}

void tst_Coverage::findings_data()
{
    QTest::addColumn<QString>("contents");
    QTest::addColumn<bool>("hasHoles");
    QTest::addColumn<QString>("unreached");
    QTest::addColumn<QString>("onlyFallbacks");

    // clang-format off
    QTest::newRow("no contents") << "" << true << "" << "";
    QTest::newRow("for everybody") << "#1 0-120 both" << false << "" << "";
    QTest::newRow("a year is missing") << "#1 0-99 both" << true << "" << "";
    QTest::newRow("the age alone fills the holes") << "#1 0-120 male" << false << "" << "";
    QTest::newRow("a default fills the holes of its gender")
        << "#1 0-49 female; #2 0-49 male default" << true << "" << "";
    QTest::newRow("an unknown gender has no default, which is no hole")
        << "#1 20-30 both default" << false << "" << "";
    QTest::newRow("hidden by an earlier one, but the last of its age")
        << "#1 0-120 female; #2 20-29 female" << false << "" << "2";
    QTest::newRow("hidden by an earlier one and by a later one of its age")
        << "#1 0-120 both; #2 20-29 both; #3 0-120 both" << false << "2" << "3";
    QTest::newRow("above the covered ages") << "#1 0-100 both; #2 101-120 both" << false << "2" << "";
    QTest::newRow("only as default, for viewers without an age")
        << "#1 0-100 both; #2 101-120 both default" << false << "" << "2";
    // clang-format on
}

void tst_Coverage::findings()
{
    QFETCH(QString, contents);
    QFETCH(bool, hasHoles);
    QFETCH(QString, unreached);
    QFETCH(QString, onlyFallbacks);

    const Coverage coverage = coverageOf(readContents(contents));
    QCOMPARE(coverage.hasHoles(), hasHoles);
    QCOMPARE(describe(coverage.unreached()), unreached);
    QCOMPARE(describe(coverage.onlyFallbacks()), onlyFallbacks);
}

void tst_Coverage::reach()
{
    const Coverage coverage = coverageOf(readContents(QStringLiteral(
        "#1 20-29 female default; #3 0-24 both; #4 25-29 both; #5 22-26 female; #6 101-110 male")));
    QCOMPARE(coverage.contents.size(), 5);
    const Reach &first = coverage.contents.at(0);
    QCOMPARE(first.number, 1);
    QCOMPARE(first.full, 10);
    QCOMPARE(first.byDefault, 72); // 30 to 100 and an unknown age
    QCOMPARE(first.byAge, 0);
    QVERIFY(first.hiddenBy.isEmpty());
    const Reach &second = coverage.contents.at(1);
    QCOMPARE(second.full, 45); // women to 19, men to 24
    QCOMPARE(second.byDefault, 0);
    QCOMPARE(second.byAge, 22); // those younger and older than #5 says
    const Reach &fifth = coverage.contents.at(3);
    QVERIFY(fifth.isOnlyFallback());
    QCOMPARE(fifth.byAge, 5);
    QVERIFY(fifth.hiddenBy.isEmpty());
    QVERIFY(coverage.contents.at(4).isNobody());
    QVERIFY(coverage.contents.at(4).hiddenBy.isEmpty());

    const Coverage hidden = coverageOf(
        readContents(QStringLiteral("#2 0-24 both; #4 25-60 both; #7 20-29 both; #8 0-60 both")));
    QVERIFY(hidden.contents.at(2).isNobody());
    QCOMPARE(describe(hidden.contents.at(2).hiddenBy), QStringLiteral("2 4"));
}

void tst_Coverage::counts()
{
    const Coverage coverage
        = coverageOf(readContents(QStringLiteral("#1 20-29 female default; #2 50-54 male")));
    const GenderCoverage &female = coverage.genders.at(0);
    QCOMPARE(female.count(Choice::Full), 10);
    QCOMPARE(female.count(Choice::ByDefault), 91);
    QVERIFY(female.holes().isEmpty());
    const GenderCoverage &male = coverage.genders.at(1);
    QCOMPARE(male.count(Choice::Full), 5);
    QCOMPARE(male.count(Choice::ByAge), 10);
    QCOMPARE(male.count(Choice::Nothing), 86);
    QCOMPARE(male.holes(), QVector<AgeRange>({{0, 19}, {30, 49}, {55, 100}}));
}

QTEST_GUILESS_MAIN(tst_Coverage)

#include "tst_coverage.moc"
