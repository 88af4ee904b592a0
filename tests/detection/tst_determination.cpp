#include "detection/Determination.h"
#include "detection/SensorOutputParser.h"

#include <QtTest>

#include <limits>

using namespace PluginKrHvcP2;

using Faces = QList<FaceResult>;

Q_DECLARE_METATYPE(FaceResult)
Q_DECLARE_METATYPE(Faces)
Q_DECLARE_METATYPE(DetectionContents)

namespace {

constexpr int UnknownAge = -1;
constexpr bool Marked = true;
constexpr bool IsDefault = true;

DetectionContent content(
    int sequenceNumber, int ageMin, int ageMax, int genders, bool isDefault = false)
{
    return {sequenceNumber, ageMin, ageMax, genders, isDefault, {sequenceNumber * 10}};
}

FaceResult viewer(
    int age, int gender, bool ageMarked = false, bool genderMarked = false, int index = 0)
{
    FaceResult face;
    face.index = index;
    face.time = QDateTime(QDate(2018, 2, 1), QTime(9, 30, index % 60), Qt::UTC);
    if (age != UnknownAge)
        face.setItem({FaceResultItem::Age, age, 0, ageMarked});
    if (gender != UnknownGender)
        face.setItem({FaceResultItem::Gender, gender, 0, genderMarked});
    return face;
}

/// A woman of 25 at a place in the picture.
FaceResult woman(int index, int size, int direction, bool marked = false)
{
    FaceResult face = viewer(25, Female, false, marked, index);
    face.setItem({FaceResultItem::Detection,
        QVariantMap{
            {QStringLiteral("X"), 1}, {QStringLiteral("Y"), 1}, {QStringLiteral("Size"), size}},
        0, false});
    face.setItem({FaceResultItem::Direction,
        QVariantMap{
            {QStringLiteral("LR"), direction}, {QStringLiteral("DirectionValue"), direction}},
        0, false});
    return face;
}

QList<CalculatedData> determine(const Faces &faces, const DetectionContents &contents)
{
    QVector<int> sizes;
    QVector<int> directionValues;
    for (const FaceResult &face : faces) {
        sizes.append(face.size());
        directionValues.append(face.directionValue());
    }
    return determineSequences(faces, sizes, directionValues, contents);
}

/// All digits, so that texts are equal exactly when the numbers are.
QString digits(double number)
{
    return QString::number(number, 'g', 17);
}

/// "face 0 -> #3 (2.5)"
QString describe(const QList<CalculatedData> &results)
{
    QStringList lines;
    for (const CalculatedData &result : results)
        lines.append(QStringLiteral("face %1 -> #%2 (%3)")
                         .arg(QString::number(result.faceIndex), QString::number(result.seqNumber),
                             digits(result.score)));
    return lines.join(QLatin1String("; "));
}

} // namespace

class tst_Determination : public QObject
{
    Q_OBJECT

private slots:
    void match_data();
    void match();
    void bonus_data();
    void bonus();
    void order_data();
    void order();
    void scoreIsExact();
    void equalResultsKeepTheOrder();
    void resultFields();
    void listsAreSortedHere();
    void valuesMissingInTheLists();
    void frameToResult();
    void manyFaces();
};

void tst_Determination::match_data()
{
    QTest::addColumn<FaceResult>("face");
    QTest::addColumn<DetectionContents>("contents");
    QTest::addColumn<int>("position"); // -1: nothing fits

    const auto row = [](const char *name, const FaceResult &face, const DetectionContents &contents,
                         int position) { QTest::newRow(name) << face << contents << position; };
    const DetectionContents women{
        content(1, 20, 29, Female, IsDefault), content(2, 20, 29, Female)};
    const DetectionContents defaults{
        content(1, 20, 29, Male, IsDefault), content(2, 40, 49, Male, IsDefault)};
    const DetectionContents mixed{content(1, 30, 39, Female), content(2, 30, 39, Male, IsDefault)};

    row("no contents", viewer(25, Female), {}, -1);
    row("the first of two full fits", viewer(25, Female), women, 0);
    row("the lowest age is inside", viewer(20, Female), women, 0);
    row("the highest age is inside", viewer(29, Female), women, 0);
    row("below the range only the default is left", viewer(19, Female), women, 0);
    row("above the range only the default is left", viewer(30, Female), women, 0);
    row("a full fit behind a default", viewer(45, Male),
        {content(1, 20, 29, Male, IsDefault), content(2, 40, 49, Male)}, 1);
    row("a full fit before a default", viewer(45, Male),
        {content(1, 40, 49, Male), content(2, 20, 29, Male, IsDefault)}, 0);
    row("the last of two defaults", viewer(UnknownAge, Male), defaults, 1);
    row("the last of two defaults for an age outside", viewer(60, Male), defaults, 1);
    row("a man of 35 between women and men", viewer(35, Male), mixed, 1);
    row("a woman of 35 between women and men", viewer(35, Female), mixed, 0);
    row("a woman of 50 finds nothing", viewer(50, Female), mixed, -1);
    row("a woman of unknown age finds no default", viewer(UnknownAge, Female), mixed, -1);
    row("the default of the other gender is none", viewer(60, Female), defaults, -1);
    row("contents for both fit men", viewer(25, Male), {content(1, 20, 29, BothGenders)}, 0);
    row("contents for both fit women", viewer(25, Female), {content(1, 20, 29, BothGenders)}, 0);
    row("a default for both", viewer(60, Female), {content(1, 20, 29, BothGenders, IsDefault)}, 0);
    row("no full fit, no default", viewer(60, Female), {content(1, 20, 29, Female)}, -1);

    row("only the age fits", viewer(25, Male), {content(1, 20, 29, Female)}, 0);
    row("the last of two that only the age fits", viewer(25, Male),
        {content(1, 20, 29, Female), content(2, 25, 25, Female)}, 1);
    row("the age alone loses against a default before it", viewer(25, Male),
        {content(1, 40, 49, Male, IsDefault), content(2, 20, 29, Female)}, 0);
    row("the age alone loses against a default behind it", viewer(25, Male),
        {content(1, 20, 29, Female), content(2, 40, 49, Male, IsDefault)}, 1);
    row("the age alone loses against a full fit", viewer(25, Male),
        {content(1, 20, 29, Female), content(2, 20, 29, Male)}, 1);
    row("the age alone is at its lowest", viewer(20, Male), {content(1, 20, 29, Female)}, 0);
    row("the age alone is at its highest", viewer(29, Male), {content(1, 20, 29, Female)}, 0);
    row("the age alone is outside", viewer(30, Male), {content(1, 20, 29, Female)}, -1);

    row("an age without a gender fits by age alone", viewer(25, UnknownGender),
        {content(1, 20, 29, Female), content(2, 20, 29, BothGenders, IsDefault)}, 1);
    row("an age without a gender takes no default", viewer(60, UnknownGender),
        {content(1, 20, 29, BothGenders, IsDefault)}, -1);
    row("neither age nor gender", viewer(UnknownAge, UnknownGender),
        {content(1, 0, 150, BothGenders, IsDefault)}, -1);
    row("a negative age fits no range", viewer(-7, Female), {content(1, 0, 150, Female)}, -1);
    row("a newborn", viewer(0, Female), {content(1, 0, 0, Female)}, 0);
    row("the largest age", viewer(std::numeric_limits<int>::max(), Female),
        {content(1, 0, std::numeric_limits<int>::max(), Female)}, 0);
}

void tst_Determination::match()
{
    QFETCH(FaceResult, face);
    QFETCH(DetectionContents, contents);
    QFETCH(int, position);
    const ContentMatch match = matchContent(face, contents);
    QCOMPARE(match.position, position);
    QCOMPARE(match.isValid(), position >= 0);

    QStringList expected;
    if (position >= 0)
        expected.append(QString::number(contents.at(position).sequenceNumber));
    QStringList sequences;
    const QList<CalculatedData> results = determine({face}, contents);
    for (const CalculatedData &result : results)
        sequences.append(QString::number(result.seqNumber));
    QCOMPARE(sequences, expected);
}

void tst_Determination::bonus_data()
{
    QTest::addColumn<FaceResult>("face");
    QTest::addColumn<double>("expected");

    // A full fit for women of 20 to 29, a default for men, an age that fits women alone.
    QTest::newRow("a full fit") << viewer(25, Female) << 1.5;
    QTest::newRow("a full fit with marked gender") << viewer(25, Female, !Marked, Marked) << 1.65;
    QTest::newRow("a full fit with marked age") << viewer(25, Female, Marked, !Marked) << 1.5 * 1.1;
    QTest::newRow("a full fit with both marked")
        << viewer(25, Female, Marked, Marked) << 1.65 * 1.1;
    QTest::newRow("a default") << viewer(60, Male) << 1.0;
    QTest::newRow("a default without age") << viewer(UnknownAge, Male) << 1.0;
    QTest::newRow("a default with marked gender") << viewer(60, Male, !Marked, Marked) << 1.1;
    QTest::newRow("a default with marked age") << viewer(60, Male, Marked, !Marked) << 1.0;
    QTest::newRow("a default with both marked") << viewer(60, Male, Marked, Marked) << 1.1;
    QTest::newRow("the age alone") << viewer(25, UnknownGender) << 0.5;
    QTest::newRow("the age alone, marked") << viewer(25, UnknownGender, Marked) << 0.55;
    QTest::newRow("the age alone of a known gender") << viewer(70, Female) << 0.5;
    QTest::newRow("the age alone with marked gender") << viewer(70, Female, !Marked, Marked) << 0.5;
    QTest::newRow("the age alone with both marked") << viewer(70, Female, Marked, Marked) << 0.55;
    QTest::newRow("nothing") << viewer(60, Female) << 0.0;
}

void tst_Determination::bonus()
{
    QFETCH(FaceResult, face);
    QFETCH(double, expected);
    const DetectionContents contents{
        content(1, 20, 29, Female), content(2, 40, 49, Male, IsDefault), content(3, 70, 79, Male)};
    QCOMPARE(digits(matchContent(face, contents).bonus), digits(expected));
}

void tst_Determination::order_data()
{
    QTest::addColumn<Faces>("faces");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const Faces &faces, const char *expected) {
        QTest::newRow(name) << faces << QString::fromLatin1(expected);
    };
    constexpr int Unknown = 2147483647;

    row("no faces", {}, "");
    // Size position + (number - direction position) / 2 + bonus 1.5
    row("one face", {woman(0, 100, 5)}, "face 0 -> #1 (2)");
    row("the larger face first", {woman(0, 100, 5), woman(1, 200, 5)},
        "face 1 -> #1 (3.5); face 0 -> #1 (2.5)");
    row("the larger face first, whatever the output's order", {woman(0, 200, 5), woman(1, 100, 5)},
        "face 0 -> #1 (3.5); face 1 -> #1 (2.5)");
    row("the straighter look first", {woman(0, 100, 50), woman(1, 100, 5)},
        "face 1 -> #1 (3.5); face 0 -> #1 (3)");
    row("equal faces: the larger index first", {woman(0, 100, 5), woman(1, 100, 5)},
        "face 1 -> #1 (3.5); face 0 -> #1 (3.5)");
    row("equal faces: the larger index first, whatever the output's order",
        {woman(7, 100, 5), woman(3, 100, 5)}, "face 7 -> #1 (3.5); face 3 -> #1 (3.5)");
    row("equal faces: the bonus decides", {woman(0, 100, 5, Marked), woman(1, 100, 5)},
        "face 0 -> #1 (3.6499999999999999); face 1 -> #1 (3.5)");
    row("size against direction: one rank of size is worth two of direction",
        {woman(0, 100, 0), woman(1, 200, 40)}, "face 1 -> #1 (3); face 0 -> #1 (2.5)");
    row("three sizes and three directions",
        {woman(0, 300, 30), woman(1, 100, 10), woman(2, 200, 20)},
        "face 0 -> #1 (4); face 2 -> #1 (3.5); face 1 -> #1 (3)");
    row("an unknown direction counts least", {woman(0, 100, Unknown), woman(1, 100, 1000)},
        "face 1 -> #1 (3.5); face 0 -> #1 (3)");
    row("unknown sizes count least", {viewer(25, Female, false, false, 0), woman(1, 1, Unknown)},
        "face 1 -> #1 (3.5); face 0 -> #1 (2.5)");
    row("a face that nothing fits is left out but counts",
        {woman(0, 100, 5), viewer(90, Female, false, false, 1)}, "face 0 -> #1 (3.5)");
    row("faces that nothing fits count in both ranks",
        {viewer(90, Female, false, false, 5), woman(0, 100, 5),
            viewer(90, Female, false, false, 6)},
        "face 0 -> #1 (5)");
    row("all faces fit nothing", {viewer(90, Female), viewer(UnknownAge, Female)}, "");
}

void tst_Determination::order()
{
    QFETCH(Faces, faces);
    QFETCH(QString, expected);
    const DetectionContents contents{content(1, 20, 29, Female)};
    QCOMPARE(describe(determine(faces, contents)), expected);
    QCOMPARE(describe(determine(faces, {})), QString());
}

void tst_Determination::scoreIsExact()
{
    // To the last bit, over many ranks: scores that differ by rounding would change the order.
    constexpr int Count = 100;
    Faces faces;
    for (int index = 0; index < Count; ++index)
        faces.append(woman(index, index, index, Marked));
    const QList<CalculatedData> results = determine(faces, {content(1, 20, 29, Female)});
    QCOMPARE(results.size(), Count);
    for (const CalculatedData &result : results) {
        const double base = result.faceIndex + (Count - result.faceIndex) * 0.5;
        QCOMPARE(digits(result.score), digits(base + 1.65));
    }
}

void tst_Determination::equalResultsKeepTheOrder()
{
    constexpr int Count = 100;
    Faces faces;
    QList<QDateTime> times;
    for (int second = 0; second < Count; ++second) {
        FaceResult face = viewer(25, Female);
        face.time = face.time.addSecs(second);
        times.append(face.time);
        faces.append(face);
    }
    QList<QDateTime> sorted;
    const QList<CalculatedData> results = determine(faces, {content(1, 20, 29, Female)});
    for (const CalculatedData &result : results)
        sorted.append(result.time);
    QCOMPARE(sorted, times);
}

void tst_Determination::resultFields()
{
    DetectionContent first = content(4, 20, 29, Female);
    first.identifiers = {7, -2, 7000};
    // Equal in score and index: the times tell which came first in the output.
    FaceResult one = viewer(25, Female, false, false, 9);
    FaceResult other = one;
    other.time = one.time.addSecs(1);

    const QList<CalculatedData> results = determine({one, other}, {first});
    QCOMPARE(results.size(), 2);
    QCOMPARE(results.at(0).faceIndex, 9);
    QCOMPARE(results.at(0).seqNumber, 4);
    QCOMPARE(results.at(0).restrictionKeys, QList<int>({7, -2, 7000}));
    QCOMPARE(results.at(0).time, one.time);
    QCOMPARE(results.at(1).time, other.time);

    const CalculatedData empty;
    QCOMPARE(empty.seqNumber, 0);
    QVERIFY(empty.restrictionKeys.isEmpty());
    QVERIFY(empty.time.isNull());
}

void tst_Determination::listsAreSortedHere()
{
    // The lists stand in the output's order when they come in.
    const Faces faces{woman(0, 300, 10), woman(1, 100, 30), woman(2, 200, 20)};
    const DetectionContents contents{content(1, 20, 29, Female)};
    const QString expected
        = QStringLiteral("face 0 -> #1 (5); face 2 -> #1 (3.5); face 1 -> #1 (2)");
    QCOMPARE(
        describe(determineSequences(faces, {300, 100, 200}, {10, 30, 20}, contents)), expected);
    QCOMPARE(
        describe(determineSequences(faces, {100, 200, 300}, {30, 20, 10}, contents)), expected);
}

void tst_Determination::valuesMissingInTheLists()
{
    // Not found counts as position -1 in either list.
    const DetectionContents contents{content(1, 20, 29, Female)};
    QCOMPARE(describe(determineSequences({woman(0, 100, 5)}, {1, 2}, {3, 4}, contents)),
        QStringLiteral("face 0 -> #1 (2)"));
    QCOMPARE(describe(determineSequences({woman(0, 100, 5)}, {}, {}, contents)),
        QStringLiteral("face 0 -> #1 (1)"));
}

void tst_Determination::frameToResult()
{
    const DetectionContents contents{content(1, 20, 29, Female, IsDefault),
        content(2, 30, 39, Male, IsDefault), content(3, 0, 12, BothGenders)};
    const QString text = QStringLiteral("Face result count:4\n"
                                        "Index:0\tX:100 Y:200 Size:80 Confidence:640\n"
                                        "Face Direction\tLR:-20 UD:7 Roll:-2 Confidence:610\n"
                                        "Age\tAge:25 Confidence:310\n"
                                        "Gender\tGender:Male Confidence:420 *\n"
                                        "Index:1\tX:520 Y:180 Size:140 Confidence:910\n"
                                        "Face Direction\tLR:0 UD:0 Roll:0 Confidence:880\n"
                                        "Age\tAge:7 Confidence:200 *\n"
                                        "Gender\tGender:Female Confidence:150\n"
                                        "Index:2\tX:900 Y:300 Size:60 Confidence:500\n"
                                        "Face Direction\tLR:45 UD:-30 Roll:10 Confidence:220\n"
                                        "Age\t-\n"
                                        "Gender\t-\n"
                                        "Index:3\tX:700 Y:300 Size:140 Confidence:500\n"
                                        "Age\tAge:22 Confidence:1\n"
                                        "Gender\t-\n");
    const SensorFrame frame
        = SensorOutputParser::parse(text, QDateTime(QDate(2018, 2, 1), QTime(9, 30), Qt::UTC));
    QCOMPARE(frame.faces.size(), 4);

    // Sizes 60 80 140 140; directions 0 27 75 unknown.
    // 0: 1 + 3 / 2, default for men, marked. 1: 3 + 4 / 2, full fit, age marked.
    // 2: neither age nor gender. 3: 3 + 1 / 2, the age alone.
    QStringList expected{
        QStringLiteral("face 1 -> #3 (%1)").arg(digits(5 + 1.5 * 1.1)),
        QStringLiteral("face 3 -> #1 (%1)").arg(digits(3.5 + 0.5)),
        QStringLiteral("face 0 -> #2 (%1)").arg(digits(2.5 + 1.1)),
    };
    QCOMPARE(
        describe(determineSequences(frame.faces, frame.sizes, frame.directionValues, contents)),
        expected.join(QLatin1String("; ")));
}

void tst_Determination::manyFaces()
{
    constexpr int Count = 20000;
    Faces faces;
    for (int index = 0; index < Count; ++index)
        faces.append(woman(index, index, 5));
    const QList<CalculatedData> results = determine(faces, {content(1, 20, 29, Female)});
    QCOMPARE(results.size(), Count);
    for (int i = 0; i < Count; ++i)
        QCOMPARE(results.at(i).faceIndex, Count - 1 - i);
}

QTEST_GUILESS_MAIN(tst_Determination)

#include "tst_determination.moc"
