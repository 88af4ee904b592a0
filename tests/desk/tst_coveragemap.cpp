#include "demo/desk/CoverageMap.h"
#include "demo/desk/CoverageText.h"
#include "tests/desk/PlanOf.h"
#include "tools/analysis/Words.h"

#include <QLineF>
#include <QtTest>

using namespace Desk;
using namespace KrTest;

namespace {

// The bands are 505 pixels wide: five for each year.
const QSizeF Roomy(630, 420);
constexpr CoverageFont Font{10, 60};
constexpr qreal BandsLeft = 72;

CoverageMap mapOf(const Analysis::Plan &plan, const QSizeF &size = Roomy)
{
    CoverageMap map(plan);
    map.layOut(size, Font);
    return map;
}

CoverageMap mapOf(const QString &contents, const QSizeF &size = Roomy)
{
    return mapOf(planOf(contents), size);
}

/// "F 0-19 #1", "M ? #2", "list #3".
QString describe(const CoverageItem &item)
{
    const QString number = QStringLiteral(" #%1").arg(item.number);
    if (item.kind == CoverageItem::Content)
        return QLatin1String("list") + number;
    const QString gender = genderName(item.gender).left(1);
    return gender + QLatin1Char(' ')
        + (item.kind == CoverageItem::UnknownAge ? QStringLiteral("?") : agesWord(item.ages))
        + number;
}

QString describeItem(const CoverageMap &map, int item)
{
    return item < 0 ? QStringLiteral("nothing") : describe(map.items().at(item));
}

int find(const CoverageMap &map, const QString &description)
{
    for (int i = 0; i < map.items().size(); ++i) {
        if (describe(map.items().at(i)) == description)
            return i;
    }
    return -1;
}

} // namespace

class tst_CoverageMap : public QObject
{
    Q_OBJECT

private slots:
    void items_data();
    void items();
    void agesOnTheAxis();
    void everythingHasItsPlace_data();
    void everythingHasItsPlace();
    void sharesTheRoom_data();
    void sharesTheRoom();
    void hits_data();
    void hits();
    void neighbours_data();
    void neighbours();
    void emptyMap();
    void marks_data();
    void marks();
    void marksDoNotOverlap();
    void marksInACrowdStayInside();
    void faceAtAPoint();
    void words_data();
    void words();
};

void tst_CoverageMap::items_data()
{
    QTest::addColumn<QString>("contents");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no contents") << ""
                                 << "F 0-100 #0; F ? #0; M 0-100 #0; M ? #0; U 0-100 #0; U ? #0";
    QTest::newRow("for everybody")
        << "#1 0-120 both"
        << "F 0-100 #1; F ? #0; M 0-100 #1; M ? #0; U 0-100 #1; U ? #0; list #1";
    QTest::newRow("holes and a default")
        << "#1 20-29 female default"
        << "F 0-19 #1; F 20-29 #1; F 30-100 #1; F ? #1; M 0-19 #0; M 20-29 #1; M 30-100 #0; "
           "M ? #0; U 0-19 #0; U 20-29 #1; U 30-100 #0; U ? #0; list #1";
    QTest::newRow("those that reach nobody or take no part come first")
        << "#1 0-120 both; #3 101-110 male; #4 0-120 both"
        << "F 0-100 #1; F ? #0; M 0-100 #1; M ? #0; U 0-100 #4; U ? #0; "
           "list #2; list #3; list #1; list #4";
}

void tst_CoverageMap::items()
{
    QFETCH(QString, contents);
    QFETCH(QString, expected);
    const CoverageMap map = mapOf(contents);
    QStringList descriptions;
    for (const CoverageItem &item : map.items())
        descriptions << describe(item);
    QCOMPARE(descriptions.join(QLatin1String("; ")), expected);
}

void tst_CoverageMap::agesOnTheAxis()
{
    const CoverageMap map = mapOf(QStringLiteral("#1 20-29 female"));
    QCOMPARE(map.xOf(0), BandsLeft);
    const QRectF band = map.items().at(find(map, QStringLiteral("F 20-29 #1"))).rect;
    QCOMPARE(band.left(), map.xOf(20));
    QCOMPARE(band.right(), map.xOf(30)); // the whole year of 29
    QCOMPARE(map.xOf(101), map.axisRect().right());
}

void tst_CoverageMap::everythingHasItsPlace_data()
{
    QTest::addColumn<QSizeF>("size");

    QTest::newRow("roomy") << Roomy;
    QTest::newRow("beside a list of events") << QSizeF(352, 460);
    QTest::newRow("large") << QSizeF(1600, 900);
    QTest::newRow("flat") << QSizeF(900, 140);
    QTest::newRow("narrow") << QSizeF(180, 600);
}

/// Nothing overlaps and nothing lies outside.
void tst_CoverageMap::everythingHasItsPlace()
{
    QFETCH(QSizeF, size);
    const CoverageMap map = mapOf(QStringLiteral("#1 0-19 female; #2 10-49 male default; "
                                                 "#3 0-9 female; #5 50-99 both; #6 20-24 male; "
                                                 "#7 0-120 female; #8 0-12 both"),
        size);
    QVector<QRectF> rects{map.axisRect()};
    for (const CoverageItem &item : map.items())
        rects << item.rect;
    for (int part = 0; part < map.keyParts(); ++part)
        rects << map.keyPartRect(part);
    if (!map.moreRect().isNull())
        rects << map.moreRect();
    const QRectF picture = QRectF(QPointF(), size).adjusted(-0.01, -0.01, 0.01, 0.01);
    for (int i = 0; i < rects.size(); ++i) {
        QVERIFY2(picture.contains(rects.at(i)), qPrintable(QString::number(i)));
        QVERIFY(rects.at(i).width() > 0 && rects.at(i).height() > 0);
        for (int j = 0; j < i; ++j) {
            const QRectF common = rects.at(i) & rects.at(j);
            QVERIFY2(common.width() < 0.01 || common.height() < 0.01,
                qPrintable(
                    QStringLiteral("%1 and %2").arg(QString::number(i), QString::number(j))));
        }
    }
}

void tst_CoverageMap::sharesTheRoom_data()
{
    QTest::addColumn<QSizeF>("size");
    QTest::addColumn<int>("keyParts");
    QTest::addColumn<bool>("hasNotes");
    QTest::addColumn<bool>("hasLabels");
    QTest::addColumn<int>("hiddenContents");

    QTest::newRow("for everything") << QSizeF(630, 260) << 8 << true << true << 0;
    QTest::newRow("not for the notes") << QSizeF(630, 200) << 8 << false << true << 0;
    QTest::newRow("nor for the marks in the key") << QSizeF(630, 174) << 4 << false << true << 0;
    QTest::newRow("nor for the key") << QSizeF(630, 160) << 0 << false << true << 0;
    QTest::newRow("nor for labels above the marks") << QSizeF(630, 135) << 0 << false << false << 0;
    QTest::newRow("nor for all contents") << QSizeF(630, 115) << 0 << false << false << 4;
    QTest::newRow("for no content at all") << QSizeF(630, 80) << 0 << false << false << 7;
    QTest::newRow("narrow") << QSizeF(320, 420) << 4 << true << true << 0;
}

void tst_CoverageMap::sharesTheRoom()
{
    QFETCH(QSizeF, size);
    const CoverageMap map = mapOf(QStringLiteral("#7 0-120 both"), size);
    QTEST(map.keyParts(), "keyParts");
    QTEST(map.hasNotes(), "hasNotes");
    QTEST(map.labelHeight() > 0, "hasLabels");
    QTEST(map.hiddenContents(), "hiddenContents");
    int shown = 0;
    for (const CoverageItem &item : map.items())
        shown += item.kind == CoverageItem::Content ? 1 : 0;
    QCOMPARE(shown + map.hiddenContents(), 7);
}

void tst_CoverageMap::hits_data()
{
    QTest::addColumn<int>("line"); // of a gender
    QTest::addColumn<double>("age"); // where on the axis; -1: the field beside it
    QTest::addColumn<QString>("expected");

    QTest::newRow("the first year") << 0 << 0.1 << "F 0-4 #0";
    QTest::newRow("the end of a band") << 0 << 19.9 << "F 10-19 #0";
    QTest::newRow("the beginning of the next") << 0 << 20.1 << "F 20-29 #1";
    QTest::newRow("the last year") << 1 << 100.9 << "M 10-100 #2";
    QTest::newRow("another line") << 2 << 25.5 << "U 20-29 #1";
    QTest::newRow("an age that is not known") << 1 << -1.0 << "M ? #2";
    QTest::newRow("behind the last year") << 1 << 101.5 << "nothing";
}

void tst_CoverageMap::hits()
{
    QFETCH(int, line);
    QFETCH(double, age);
    const CoverageMap map = mapOf(QStringLiteral("#1 20-29 female; #2 5-9 male default"));
    QPointF point = age < 0 ? map.unknownAgeRect(line).center() : map.rowRect(line).center();
    if (age >= 0)
        point.setX(map.xOf(age));
    QTEST(describeItem(map, map.itemAt(point)), "expected");
}

void tst_CoverageMap::neighbours_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<int>("direction");
    QTest::addColumn<QString>("expected");

    const auto right = int(CoverageMap::Right);
    const auto left = int(CoverageMap::Left);
    const auto up = int(CoverageMap::Up);
    const auto down = int(CoverageMap::Down);
    QTest::newRow("from nothing") << "nothing" << right << "F 0-4 #0";
    QTest::newRow("right") << "F 10-19 #0" << right << "F 20-29 #1";
    QTest::newRow("right to the unknown age") << "F 60-100 #3" << right << "F ? #0";
    QTest::newRow("not on into the next line") << "F ? #0" << right << "F ? #0";
    QTest::newRow("left") << "F 20-29 #1" << left << "F 10-19 #0";
    QTest::newRow("not back into the line before") << "M 0-4 #2" << left << "M 0-4 #2";
    QTest::newRow("down to the same ages") << "F 5-9 #2" << down << "M 5-9 #2";
    QTest::newRow("up to what lies above the middle") << "M 10-100 #2" << up << "F 30-59 #0";
    QTest::newRow("not above the map") << "F 20-29 #1" << up << "F 20-29 #1";
    QTest::newRow("down to the list") << "U 0-4 #0" << down << "list #1";
    QTest::newRow("down to the nearest of the list") << "U ? #0" << down << "list #3";
    QTest::newRow("right in the list") << "list #1" << right << "list #2";
    QTest::newRow("not below the list") << "list #1" << down << "list #1";
    QTest::newRow("up from the list") << "list #2" << up << "U 30-59 #0";
    QTest::newRow("to the first") << "F ? #0" << int(CoverageMap::First) << "F 0-4 #0";
    QTest::newRow("to the last") << "M 0-4 #2" << int(CoverageMap::Last) << "M ? #2";
}

void tst_CoverageMap::neighbours()
{
    QFETCH(QString, from);
    QFETCH(int, direction);
    const CoverageMap map
        = mapOf(QStringLiteral("#1 20-29 female; #2 5-9 male default; #3 60-100 female"));
    const int item = find(map, from);
    QVERIFY(item >= 0 || from == QLatin1String("nothing"));
    const int next = map.neighbour(item, CoverageMap::Direction(direction));
    QTEST(describeItem(map, next), "expected");
}

void tst_CoverageMap::emptyMap()
{
    CoverageMap map;
    map.layOut(Roomy, Font);
    QCOMPARE(map.neighbour(-1, CoverageMap::Right), -1);
    QCOMPARE(map.itemAt({100, 100}), -1);
}

void tst_CoverageMap::marks_data()
{
    QTest::addColumn<QString>("face");
    QTest::addColumn<int>("line");
    QTest::addColumn<double>("age"); // on the axis; -1: the field beside it

    QTest::newRow("in the middle of its year") << "female 31 sent" << 0 << 31.5;
    QTest::newRow("a man") << "male 0 cut" << 1 << 0.5;
    QTest::newRow("no gender") << "? 40 sent" << 2 << 40.5;
    QTest::newRow("older than the axis") << "male 120 sent" << 1 << 100.5;
    QTest::newRow("no age") << "female ? sent" << 0 << -1.0;
    QTest::newRow("neither") << "? ? sent" << 2 << -1.0;
}

void tst_CoverageMap::marks()
{
    QFETCH(QString, face);
    QFETCH(int, line);
    QFETCH(double, age);
    const Analysis::Plan plan = planOf(QStringLiteral("#1 0-120 both"));
    const CoverageMap map = mapOf(plan);
    const QVector<CoverageMark> marks = map.marks(decisionOf(face, plan));
    QCOMPARE(marks.size(), 1);
    const QRectF room = age < 0 ? map.unknownAgeRect(line) : map.rowRect(line);
    QVERIFY(room.contains(marks.constFirst().center));
    const qreal x = age < 0 ? room.center().x() : map.xOf(age);
    QVERIFY(qAbs(marks.constFirst().center.x() - x) <= map.markRadius());
}

void tst_CoverageMap::marksDoNotOverlap()
{
    const Analysis::Plan plan = planOf(QStringLiteral("#1 0-120 both"));
    const CoverageMap map = mapOf(plan);
    const QVector<CoverageMark> marks = map.marks(decisionOf(
        QStringLiteral("female 31 sent; female 31 cut; female 32 cut; male 31 cut; female ? cut; "
                       "female ? cut"),
        plan));
    QCOMPARE(marks.size(), 6);
    for (int i = 0; i < marks.size(); ++i) {
        QCOMPARE(marks.at(i).face, i);
        for (int j = 0; j < i; ++j) {
            QVERIFY(QLineF(marks.at(i).center, marks.at(j).center).length()
                >= 2 * map.markRadius() - 1);
        }
    }
    QCOMPARE(marks.at(0).center.x(), marks.at(1).center.x());
}

void tst_CoverageMap::marksInACrowdStayInside()
{
    const Analysis::Plan plan = planOf(QStringLiteral("#1 0-120 both"));
    const CoverageMap map = mapOf(plan);
    const QString faces = QStringLiteral("female 31 cut; female ? cut; ").repeated(35);
    const QVector<CoverageMark> marks = map.marks(decisionOf(faces, plan));
    QCOMPARE(marks.size(), 70);
    for (const CoverageMark &mark : marks) {
        const QRectF room = mark.face % 2 == 0 ? map.rowRect(0) : map.unknownAgeRect(0);
        QVERIFY(room.contains(mark.center));
    }
}

void tst_CoverageMap::faceAtAPoint()
{
    const Analysis::Plan plan = planOf(QStringLiteral("#1 0-120 both"));
    const CoverageMap map = mapOf(plan);
    const QVector<CoverageMark> marks
        = map.marks(decisionOf(QStringLiteral("female 31 sent; male 60 cut"), plan));
    QCOMPARE(map.faceAt(marks.at(0).center, marks), 0);
    QCOMPARE(map.faceAt(marks.at(1).center + QPointF(map.markRadius(), 0), marks), 1);
    QCOMPARE(map.faceAt(marks.at(1).center + QPointF(4 * map.markRadius(), 0), marks), -1);
}

void tst_CoverageMap::words_data()
{
    QTest::addColumn<QString>("contents");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("expected");

    // clang-format off
    const QString contents = QStringLiteral("#1 20-29 female default; #2 101-110 male; #4 15-40 both; #5 16-20 both; #6 15-40 both");
    QTest::newRow("a full fit") << contents << "F 20-29 #1"
        << "Female, 20-29 years|#1 Content 1|The first content for this gender and age.";
    QTest::newRow("a single year") << "#1 7-7 male" << "M 7 #1"
        << "Male, 7 years|#1 Content 1|The first content for this gender and age.";
    QTest::newRow("a default") << contents << "F 0-14 #1"
        << "Female, 0-14 years|#1 Content 1|No content is for this gender and age: the last default of the gender.";
    QTest::newRow("a default without an age") << contents << "F ? #1"
        << "Female, age unknown|#1 Content 1|Without an age: the last default of the gender.";
    QTest::newRow("the age alone") << "#1 7-7 male" << "F 7 #1"
        << "Female, 7 years|#1 Content 1|No content is for this gender: the last one for the age.";
    QTest::newRow("the age without a gender") << contents << "U 15-40 #6"
        << "Gender unknown, 15-40 years|#6 Content 6|Without a gender: the last content for the age.";
    QTest::newRow("a hole") << contents << "M 0-14 #0"
        << "Male, 0-14 years|Nothing|No content is for this age, and the gender has no default.";
    QTest::newRow("a hole without an age") << contents << "M ? #0"
        << "Male, age unknown|Nothing|The gender has no default.";
    QTest::newRow("a hole without a gender") << contents << "U 41-100 #0"
        << "Gender unknown, 41-100 years|Nothing|No content is for this age.";
    QTest::newRow("a hole without both") << contents << "U ? #0"
        << "Gender unknown, age unknown|Nothing|Neither gender nor age was measured.";
    QTest::newRow("what a content reaches") << contents << "list #1"
        << "#1 Content 1|20-29, female, default|Ages that get it: 10 that it fits, 76 as a default";
    QTest::newRow("likewise by the age alone") << contents << "list #6"
        << "#6 Content 6|15-40, everybody|Ages that get it: 26 by the age alone";
    QTest::newRow("above the ages of the map") << contents << "list #2"
        << "#2 Content 2|101-110, male|reaches nobody: it is for ages above 100";
    QTest::newRow("hidden by others") << contents << "list #5"
        << "#5 Content 5|16-20, everybody|reaches nobody: its viewers get #1, #4";
    QTest::newRow("takes no part") << contents << "list #3"
        << "#3 Content 3|takes no part: no screen is linked to it";
    // clang-format on
}

void tst_CoverageMap::words()
{
    QFETCH(QString, contents);
    QFETCH(QString, item);
    const Analysis::Plan plan = planOf(contents);
    const CoverageMap map = mapOf(plan);
    const int found = find(map, item);
    QVERIFY(found >= 0);
    const QStringList lines = itemLines(plan, map.coverage(), map.items().at(found));
    QTEST(lines.join(QLatin1Char('|')), "expected");
}

QTEST_GUILESS_MAIN(tst_CoverageMap)

#include "tst_coveragemap.moc"
