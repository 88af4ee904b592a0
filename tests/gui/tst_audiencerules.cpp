#include "GuiTestData.h"

#include "gui/AudienceRules.h"

#include <QtTest>

#include <algorithm>
#include <array>
#include <limits>
#include <random>

using namespace GuiTest;
using namespace PluginKrHvcP2;

Q_DECLARE_METATYPE(PluginKrHvcP2::Audience)
Q_DECLARE_METATYPE(PluginKrHvcP2::Refusal)

namespace {

constexpr unsigned RandomSeed = 20261;

QString describe(const Audience &range)
{
    return "%1-%2 gender %3%4"_s.arg(range.ageMin)
        .arg(range.ageMax)
        .arg(range.gender)
        .arg(range.isDefault ? " default"_s : QString());
}

QStringList describe(const QVector<Audience> &ranges)
{
    QStringList result;
    for (const Audience &range : ranges)
        result.append(describe(range));
    return result;
}

QString describe(const std::optional<Audience> &range)
{
    return range ? describe(*range) : "none"_s;
}

Audience range(int ageMin, int ageMax, int gender, bool isDefault = false)
{
    return {ageMin, ageMax, gender, isDefault};
}

QVector<Audience> sorted(QVector<Audience> ranges)
{
    std::stable_sort(ranges.begin(), ranges.end(), [](const Audience &a, const Audience &b) {
        return a.ageMin != b.ageMin ? a.ageMin < b.ageMin : a.ageMax < b.ageMax;
    });
    return ranges;
}

bool shareBit(int a, int b)
{
    for (int bit = 1; bit <= 2; bit *= 2) {
        if ((a & bit) != 0 && (b & bit) != 0)
            return true;
    }
    return false;
}

bool lies(int value, int low, int high)
{
    return value >= low && value <= high;
}

/// The rules for free ranges, step by step and without any thought of speed.
QVector<Audience> referenceFreeRanges(const QVector<Audience> &contents)
{
    QVector<Audience> result;
    const auto add = [&result](int low, int high, int gender) {
        bool isThere = false;
        for (const Audience &known : result) {
            isThere = isThere
                || (known.ageMin == low && known.ageMax == high && known.gender == gender
                    && !known.isDefault);
        }
        if (!isThere)
            result.append(range(low, high, gender));
    };
    for (int gender = 1; gender <= 3; ++gender) {
        QVector<Audience> taking;
        for (const Audience &content : contents) {
            if (shareBit(content.gender, gender))
                taking.append(content);
        }
        if (taking.isEmpty())
            continue;
        if (taking[0].ageMin > 0)
            add(0, taking[0].ageMin - 1, gender);
        if (taking[0].ageMax < 75) {
            int start = taking[0].ageMax + 1;
            for (int i = 1; i < taking.size(); ++i) {
                if (lies(start, taking[i].ageMin, taking[i].ageMax)) {
                    start = taking[i].ageMax + 1;
                } else if (start < taking[i].ageMin) {
                    add(start, taking[i].ageMin - 1, gender);
                    start = taking[i].ageMax + 1;
                }
            }
            if (start <= 75)
                add(start, 75, gender);
        }
    }
    return result;
}

/// What well-formed contents leave free, found by looking at every single age.
QVector<Audience> bruteForceFreeRanges(const QVector<Audience> &contents)
{
    QVector<Audience> result;
    for (int gender = 1; gender <= 3; ++gender) {
        std::array<bool, 76> covered{};
        bool hasRival = false;
        for (const Audience &content : contents) {
            if (!shareBit(content.gender, gender))
                continue;
            hasRival = true;
            for (int age = content.ageMin; age <= content.ageMax; ++age)
                covered.at(static_cast<std::size_t>(age)) = true;
        }
        if (!hasRival)
            continue;
        int low = -1;
        for (int age = 0; age <= 76; ++age) {
            const bool isFree = age <= 75 && !covered.at(static_cast<std::size_t>(age));
            if (isFree && low < 0)
                low = age;
            if (!isFree && low >= 0) {
                result.append(range(low, age - 1, gender));
                low = -1;
            }
        }
    }
    return result;
}

std::optional<Audience> referenceNextRange(const Audience &current, const QVector<Audience> &free)
{
    if (free.isEmpty())
        return std::nullopt;
    QMap<int, int> indexByPriority;
    for (int i = 0; i < free.size(); ++i) {
        const Audience &f = free[i];
        if (f.ageMin > f.ageMax)
            continue;
        if (!lies(current.ageMin, f.ageMin, f.ageMax) && !lies(current.ageMax, f.ageMin, f.ageMax))
            continue;
        int priority = 1;
        if (f.gender == current.gender)
            priority = 3;
        else if (!shareBit(f.gender, current.gender))
            priority = 0;
        else if (f.gender == 2)
            priority = 2;
        indexByPriority[priority] = i;
    }
    if (!indexByPriority.isEmpty()) {
        const int index = indexByPriority.last();
        return index == free.size() - 1 ? free[0] : free[index + 1];
    }
    int highest = 0;
    for (const Audience &f : free)
        highest = qMax(highest, f.gender);
    Audience result;
    for (const Audience &f : free) {
        if (f.gender == highest)
            result = f;
    }
    return result;
}

class RandomRanges
{
public:
    int number(int low, int high) ///< both inclusive
    {
        return low + static_cast<int>(m_engine() % static_cast<unsigned>(high - low + 1));
    }

    Audience wellFormed()
    {
        const int ageMin = number(0, 75);
        // Short ones leave more free.
        const int ageMax = qMin(75, ageMin + number(0, number(0, 3) == 0 ? 75 : 8));
        return range(ageMin, ageMax, number(1, 3), number(0, 3) == 0);
    }

    Audience any()
    {
        return range(number(-5, 85), number(-5, 85), number(0, 3), number(0, 3) == 0);
    }

    template <typename Make>
    QVector<Audience> list(int maximum, Make make)
    {
        QVector<Audience> result(number(0, maximum));
        std::generate(result.begin(), result.end(), make);
        return result;
    }

private:
    std::mt19937 m_engine{RandomSeed};
};

} // namespace

class tst_AudienceRules : public QObject
{
    Q_OBJECT

private slots:
    void readsEntry_data();
    void readsEntry();
    void sortsContents_data();
    void sortsContents();
    void findsFreeRanges_data();
    void findsFreeRanges();
    void findsNextRange_data();
    void findsNextRange();
    void walksThroughAllFreeRanges();
    void findsConflicts_data();
    void findsConflicts();
    void findsRefusal_data();
    void findsRefusal();
    void freeRangesAgreeWithEverySingleAge();
    void freeRangesOfAnyContentsAgreeWithReference();
    void nextRangesAgreeWithReference();
    void proposalsOfFreeRangesNeverConflict();
};

void tst_AudienceRules::readsEntry_data()
{
    QTest::addColumn<QVariant>("entry");
    QTest::addColumn<Audience>("expected");

    const auto params = [](const QVariantMap &map) {
        return QVariant(QVariantMap{{"type"_s, 8}, {"params"_s, map}});
    };
    QTest::newRow("all fields as the editor stores them")
        << QVariant(content("a"_s, 20, 30, "female"_s, "true"_s)) << range(20, 30, 2, true);
    QTest::newRow("male") << QVariant(content("a"_s, 1, 2, "male"_s)) << range(1, 2, 1);
    QTest::newRow("both") << QVariant(content("a"_s, 1, 2, "both"_s)) << range(1, 2, 3);
    QTest::newRow("gender in upper case")
        << QVariant(content("a"_s, 1, 2, "FEMALE"_s)) << range(1, 2, 2);
    QTest::newRow("another gender is unknown")
        << QVariant(content("a"_s, 1, 2, "female "_s)) << range(1, 2, 0);
    QTest::newRow("missing age-min is 0")
        << params({{"age-max"_s, 30}, {"gender"_s, "male"_s}}) << range(0, 30, 1);
    QTest::newRow("missing age-max is 75")
        << params({{"age-min"_s, 30}, {"gender"_s, "male"_s}}) << range(30, 75, 1);
    QTest::newRow("ages that are no numbers are as good as missing")
        << QVariant(content("a"_s, "young"_s, "old"_s, "both"_s)) << range(0, 75, 3);
    QTest::newRow("ages as texts")
        << QVariant(content("a"_s, "20"_s, "30"_s, "both"_s)) << range(20, 30, 3);
    QTest::newRow("ages outside the editor's limits stay")
        << QVariant(content("a"_s, -4, 200, "both"_s)) << range(-4, 200, 3);
    QTest::newRow("missing default is false")
        << params({{"age-min"_s, 1}, {"age-max"_s, 2}, {"gender"_s, "male"_s}}) << range(1, 2, 1);
    QTest::newRow("default in upper case")
        << QVariant(content("a"_s, 1, 2, "male"_s, "TRUE"_s)) << range(1, 2, 1, true);
    QTest::newRow("default as a bool")
        << QVariant(content("a"_s, 1, 2, "male"_s, true)) << range(1, 2, 1, true);
    QTest::newRow("default as a text of false in upper case")
        << QVariant(content("a"_s, 1, 2, "male"_s, "FALSE"_s)) << range(1, 2, 1);
    QTest::newRow("no params") << QVariant(QVariantMap{{"type"_s, 8}}) << range(0, 75, 0);
    QTest::newRow("params of another type")
        << QVariant(QVariantMap{{"params"_s, "age-min"_s}}) << range(0, 75, 0);
    QTest::newRow("ages beside params do not count")
        << QVariant(QVariantMap{{"age-min"_s, 5}, {"gender"_s, "male"_s}}) << range(0, 75, 0);
    QTest::newRow("entry of another type") << QVariant("male"_s) << range(0, 75, 0);
    QTest::newRow("null entry") << QVariant() << range(0, 75, 0);
}

void tst_AudienceRules::readsEntry()
{
    QFETCH(QVariant, entry);
    QFETCH(Audience, expected);
    QCOMPARE(describe(audienceForEditing(entry)), describe(expected));
}

void tst_AudienceRules::sortsContents_data()
{
    QTest::addColumn<QVariantList>("contents");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("no contents") << QVariantList() << QStringList();
    QTest::newRow("by age-min") << QVariantList{content("a"_s, 30, 40, "male"_s),
        content("b"_s, 10, 50, "male"_s)}
                                << QStringList{"10-50 gender 1"_s, "30-40 gender 1"_s};
    QTest::newRow("by age-max when age-min is equal")
        << QVariantList{content("a"_s, 10, 50, "male"_s), content("b"_s, 10, 40, "female"_s)}
        << QStringList{"10-40 gender 2"_s, "10-50 gender 1"_s};
    QTest::newRow("equal ages keep the order of the list")
        << QVariantList{content("a"_s, 20, 30, "both"_s), content("b"_s, 20, 30, "male"_s),
               content("c"_s, 5, 6, "male"_s), content("d"_s, 20, 30, "female"_s, "true"_s)}
        << QStringList{"5-6 gender 1"_s, "20-30 gender 3"_s, "20-30 gender 1"_s,
               "20-30 gender 2 default"_s};
    QTest::newRow("ages are compared as numbers")
        << QVariantList{content("a"_s, "10"_s, "20"_s, "male"_s),
               content("b"_s, "9"_s, "20"_s, "male"_s)}
        << QStringList{"9-20 gender 1"_s, "10-20 gender 1"_s};
    QTest::newRow("entries of other types count with open ages")
        << QVariantList{content("a"_s, 10, 20, "male"_s), QVariant(), 5}
        << QStringList{"0-75 gender 0"_s, "0-75 gender 0"_s, "10-20 gender 1"_s};
}

void tst_AudienceRules::sortsContents()
{
    QFETCH(QVariantList, contents);
    QFETCH(QStringList, expected);
    QCOMPARE(describe(contentRanges(contents)), expected);
}

void tst_AudienceRules::findsFreeRanges_data()
{
    QTest::addColumn<QVector<Audience>>("contents");
    QTest::addColumn<QStringList>("expected");

    using Ranges = QVector<Audience>;
    QTest::newRow("a screen without contents has none") << Ranges() << QStringList();
    QTest::newRow("a gap in the middle is free for each gender")
        << Ranges{range(0, 19, 3), range(30, 75, 3)}
        << QStringList{"20-29 gender 1"_s, "20-29 gender 2"_s, "20-29 gender 3"_s};
    QTest::newRow("everything covered") << Ranges{range(0, 75, 3)} << QStringList();
    QTest::newRow("everything covered by neighbours")
        << Ranges{range(0, 19, 3), range(20, 40, 3), range(41, 75, 3)} << QStringList();
    QTest::newRow("a gender without rivals has none, Both has the same rivals")
        << Ranges{range(20, 30, 1)}
        << QStringList{
               "0-19 gender 1"_s, "31-75 gender 1"_s, "0-19 gender 3"_s, "31-75 gender 3"_s};
    QTest::newRow("Both is free only where no gender is covered")
        << Ranges{range(0, 40, 1), range(30, 60, 2)}
        << QStringList{
               "41-75 gender 1"_s, "0-29 gender 2"_s, "61-75 gender 2"_s, "61-75 gender 3"_s};
    QTest::newRow("an unknown gender covers nothing") << Ranges{range(20, 30, 0)} << QStringList();
    QTest::newRow("an unknown gender beside a known one changes nothing") << Ranges{
        range(0, 10, 0), range(0, 70, 2)} << QStringList{"71-75 gender 2"_s, "71-75 gender 3"_s};
    QTest::newRow("a range inside another one leaves the walk as it is") << Ranges{
        range(0, 50, 1), range(10, 20, 1)} << QStringList{"51-75 gender 1"_s, "51-75 gender 3"_s};
    QTest::newRow("overlapping ranges join") << Ranges{range(0, 20, 2), range(10, 40, 2)}
                                             << QStringList{"41-75 gender 2"_s, "41-75 gender 3"_s};
    QTest::newRow("one free age at each end")
        << Ranges{range(1, 74, 2)}
        << QStringList{"0-0 gender 2"_s, "75-75 gender 2"_s, "0-0 gender 3"_s, "75-75 gender 3"_s};
    QTest::newRow("a first range up to 75 leaves only what is before it") << Ranges{
        range(10, 75, 2), range(20, 30, 2)} << QStringList{"0-9 gender 2"_s, "0-9 gender 3"_s};
    QTest::newRow("a first range beyond 75 counts as one up to 75")
        << Ranges{range(10, 90, 2)} << QStringList{"0-9 gender 2"_s, "0-9 gender 3"_s};
    QTest::newRow("a negative start leaves nothing before it")
        << Ranges{range(-5, 70, 2)} << QStringList{"71-75 gender 2"_s, "71-75 gender 3"_s};
    QTest::newRow("a gap before a range beyond 75 follows the stored ages") << Ranges{
        range(0, 60, 2), range(80, 90, 2)} << QStringList{"61-79 gender 2"_s, "61-79 gender 3"_s};
    QTest::newRow("an inverted first range starts the walk behind its end")
        << Ranges{range(40, 20, 2)}
        << QStringList{
               "0-39 gender 2"_s, "21-75 gender 2"_s, "0-39 gender 3"_s, "21-75 gender 3"_s};
    QTest::newRow("an inverted range in the walk sets it back to its end")
        << Ranges{range(0, 10, 2), range(40, 20, 2)}
        << QStringList{
               "11-39 gender 2"_s, "21-75 gender 2"_s, "11-39 gender 3"_s, "21-75 gender 3"_s};
    QTest::newRow("the default flag of a content is not taken over")
        << Ranges{range(0, 19, 2, true)} << QStringList{"20-75 gender 2"_s, "20-75 gender 3"_s};
    QTest::newRow("identical records are listed once")
        << Ranges{range(30, 9, 2), range(30, 9, 2), range(30, 9, 2), range(60, 9, 2)}
        << QStringList{"0-29 gender 2"_s, "10-29 gender 2"_s, "10-59 gender 2"_s,
               "10-75 gender 2"_s, "0-29 gender 3"_s, "10-29 gender 3"_s, "10-59 gender 3"_s,
               "10-75 gender 3"_s};
    constexpr int Lowest = std::numeric_limits<int>::min();
    constexpr int Highest = std::numeric_limits<int>::max();
    QTest::newRow("the largest ages overflow nothing")
        << Ranges{range(Lowest, Lowest, 2), range(5, Highest, 2), range(Highest, Highest, 2)}
        << QStringList{"%1-4 gender 2"_s.arg(Lowest + 1), "%1-4 gender 3"_s.arg(Lowest + 1)};
}

void tst_AudienceRules::findsFreeRanges()
{
    QFETCH(QVector<Audience>, contents);
    QFETCH(QStringList, expected);
    QCOMPARE(describe(freeRanges(contents)), expected);
}

void tst_AudienceRules::findsNextRange_data()
{
    QTest::addColumn<Audience>("current");
    QTest::addColumn<QVector<Audience>>("free");
    QTest::addColumn<QString>("expected");

    using Ranges = QVector<Audience>;
    const Ranges gap{range(20, 29, 1), range(20, 29, 2), range(20, 29, 3)};
    const Ranges mixed{range(0, 9, 1), range(40, 49, 1), range(0, 9, 2), range(40, 49, 2),
        range(0, 9, 3), range(40, 49, 3)};

    QTest::newRow("nothing is free") << range(10, 19, 3) << Ranges() << "none"_s;
    QTest::newRow("nothing touches: the last one of Both")
        << range(30, 75, 3) << gap << "20-29 gender 3"_s;
    QTest::newRow("nothing touches: the last one in the list, not the highest ages") << range(60,
        70, 1) << Ranges{range(40, 49, 3), range(0, 9, 3), range(20, 29, 2)} << "0-9 gender 3"_s;
    QTest::newRow("nothing touches and no Both: Female before Male")
        << range(60, 70, 1) << Ranges{range(0, 9, 2), range(40, 49, 1)} << "0-9 gender 2"_s;
    QTest::newRow("nothing touches and only Male")
        << range(60, 70, 2) << Ranges{range(0, 9, 1), range(40, 49, 1)} << "40-49 gender 1"_s;
    QTest::newRow("behind the one of the same gender")
        << range(0, 9, 2) << mixed << "40-49 gender 2"_s;
    QTest::newRow("behind the last one is the first one")
        << range(40, 49, 3) << mixed << "0-9 gender 1"_s;
    QTest::newRow("the only one follows itself")
        << range(0, 75, 1) << Ranges{range(41, 75, 2)} << "41-75 gender 2"_s;
    QTest::newRow("touching with the lower end only")
        << range(9, 20, 1) << mixed << "40-49 gender 1"_s;
    QTest::newRow("touching with the upper end only")
        << range(20, 40, 1) << mixed << "0-9 gender 2"_s;
    QTest::newRow("one year beside the lower and the upper end does not touch")
        << range(10, 39, 1) << mixed << "40-49 gender 3"_s;
    QTest::newRow("a free range inside the current one does not touch")
        << range(10, 60, 1) << Ranges{range(20, 29, 1), range(0, 5, 2)} << "0-5 gender 2"_s;
    QTest::newRow("of two of the same gender the later one counts")
        << range(0, 49, 1) << mixed << "0-9 gender 2"_s;
    QTest::newRow("Female has the higher priority though Male is earlier") << range(0, 9,
        3) << Ranges{range(0, 9, 1), range(0, 9, 2), range(50, 55, 1)} << "50-55 gender 1"_s;
    QTest::newRow("Male for Both has the lower priority though it is later") << range(
        0, 9, 3) << Ranges{range(0, 9, 2), range(0, 9, 1), range(50, 55, 1)} << "0-9 gender 1"_s;
    QTest::newRow("Both before a gender that shares nothing")
        << range(0, 9, 1) << Ranges{range(0, 9, 3), range(0, 9, 2), range(50, 55, 2)}
        << "0-9 gender 2"_s;
    QTest::newRow("a gender that shares nothing is better than none")
        << range(0, 9, 1) << Ranges{range(0, 9, 2), range(60, 65, 2), range(50, 55, 3)}
        << "60-65 gender 2"_s;
    QTest::newRow("the same gender before Female")
        << range(0, 9, 3) << Ranges{range(0, 9, 3), range(0, 9, 2), range(50, 55, 1)}
        << "0-9 gender 2"_s;
    QTest::newRow("an inverted free range never touches")
        << range(15, 15, 2) << Ranges{range(20, 10, 2), range(50, 55, 2), range(60, 65, 2)}
        << "60-65 gender 2"_s;
    QTest::newRow("an inverted free range can still be the next one")
        << range(50, 55, 2) << Ranges{range(50, 55, 2), range(20, 10, 2)} << "20-10 gender 2"_s;
    QTest::newRow("an inverted current range touches with its ends")
        << range(45, 5, 1) << mixed << "0-9 gender 2"_s;
    QTest::newRow("an unknown gender shares nothing")
        << range(0, 9, 0) << mixed << "40-49 gender 3"_s;
    QTest::newRow("the default flag of the next one is kept") << range(20, 29,
        3) << Ranges{range(20, 29, 3), range(22, 25, 3, true)} << "22-25 gender 3 default"_s;
    QTest::newRow("the current one's default flag does not matter")
        << range(0, 9, 2, true) << mixed << "40-49 gender 2"_s;
}

void tst_AudienceRules::findsNextRange()
{
    QFETCH(Audience, current);
    QFETCH(QVector<Audience>, free);
    QFETCH(QString, expected);
    QCOMPARE(describe(nextRange(current, free)), expected);
}

void tst_AudienceRules::walksThroughAllFreeRanges()
{
    const QVector<Audience> free = freeRanges({range(20, 30, 2), range(20, 30, 1)});
    QStringList visited;
    Audience current = free.last();
    for (int i = 0; i < free.size(); ++i) {
        current = nextRange(current, free).value_or(Audience());
        visited.append(describe(current));
    }
    QCOMPARE(visited, describe(free));
}

void tst_AudienceRules::findsConflicts_data()
{
    QTest::addColumn<Audience>("entered");
    QTest::addColumn<QVector<Audience>>("others");
    QTest::addColumn<bool>("ages");
    QTest::addColumn<bool>("defaults");

    using Ranges = QVector<Audience>;
    QTest::newRow("no others") << range(0, 75, 3, true) << Ranges() << false << false;
    QTest::newRow("40 to 50 reaches into 45 to 60")
        << range(40, 50, 1) << Ranges{range(45, 60, 1)} << true << false;
    QTest::newRow("50 to 70 starts within 45 to 60")
        << range(50, 70, 1) << Ranges{range(45, 60, 1)} << true << false;
    QTest::newRow("inside another one")
        << range(50, 55, 1) << Ranges{range(45, 60, 1)} << true << false;
    QTest::newRow("the same ages") << range(45, 60, 1) << Ranges{range(45, 60, 1)} << true << false;
    QTest::newRow("10 to 70 merely encloses 20 to 30")
        << range(10, 70, 1) << Ranges{range(20, 30, 1)} << false << false;
    QTest::newRow("ending on the other's first age")
        << range(40, 45, 1) << Ranges{range(45, 60, 1)} << true << false;
    QTest::newRow("ending one year before")
        << range(40, 44, 1) << Ranges{range(45, 60, 1)} << false << false;
    QTest::newRow("starting on the other's last age")
        << range(60, 70, 1) << Ranges{range(45, 60, 1)} << true << false;
    QTest::newRow("starting one year behind")
        << range(61, 70, 1) << Ranges{range(45, 60, 1)} << false << false;
    QTest::newRow("Male and Female may share ages")
        << range(45, 60, 1) << Ranges{range(45, 60, 2)} << false << false;
    QTest::newRow("Both may not share ages with Male")
        << range(45, 60, 3) << Ranges{range(45, 60, 1)} << true << false;
    QTest::newRow("Both may not share ages with Female")
        << range(45, 60, 3) << Ranges{range(45, 60, 2)} << true << false;
    QTest::newRow("Female may not share ages with Both")
        << range(45, 60, 2) << Ranges{range(45, 60, 3)} << true << false;
    QTest::newRow("an unknown gender of the other never conflicts")
        << range(45, 60, 3, true) << Ranges{range(45, 60, 0, true)} << false << false;
    QTest::newRow("an unknown entered gender never conflicts")
        << range(45, 60, 0, true) << Ranges{range(45, 60, 3, true)} << false << false;
    QTest::newRow("an inverted other never conflicts by its ages")
        << range(25, 25, 1) << Ranges{range(30, 20, 1)} << false << false;
    QTest::newRow("an inverted other conflicts by its default")
        << range(25, 25, 1, true) << Ranges{range(30, 20, 1, true)} << false << true;
    QTest::newRow("two defaults for Male")
        << range(0, 9, 1, true) << Ranges{range(20, 30, 1, true)} << false << true;
    QTest::newRow("a default for Male and one for Female")
        << range(0, 9, 1, true) << Ranges{range(20, 30, 2, true)} << false << false;
    QTest::newRow("a default for Both beside one for Male")
        << range(0, 9, 3, true) << Ranges{range(20, 30, 1, true)} << false << true;
    QTest::newRow("a default for Both beside one for Female")
        << range(0, 9, 3, true) << Ranges{range(20, 30, 2, true)} << false << true;
    QTest::newRow("a default for Male beside one for Both")
        << range(0, 9, 1, true) << Ranges{range(20, 30, 3, true)} << false << true;
    QTest::newRow("only the other is a default")
        << range(0, 9, 1) << Ranges{range(20, 30, 1, true)} << false << false;
    QTest::newRow("only the entered one is a default")
        << range(0, 9, 1, true) << Ranges{range(20, 30, 1)} << false << false;
    QTest::newRow("both conflicts with one other")
        << range(20, 25, 1, true) << Ranges{range(20, 30, 1, true)} << true << true;
    QTest::newRow("each conflict with another one")
        << range(20, 25, 1, true)
        << Ranges{range(40, 50, 1, true), range(60, 61, 1), range(25, 30, 1)} << true << true;
    QTest::newRow("the first of several counts like the last")
        << range(20, 25, 1) << Ranges{range(25, 30, 1), range(60, 61, 1)} << true << false;
}

void tst_AudienceRules::findsConflicts()
{
    QFETCH(Audience, entered);
    QFETCH(QVector<Audience>, others);
    QFETCH(bool, ages);
    QFETCH(bool, defaults);
    const RangeConflicts conflicts = PluginKrHvcP2::findConflicts(entered, others);
    QCOMPARE(conflicts.ages, ages);
    QCOMPARE(conflicts.defaults, defaults);
}

void tst_AudienceRules::findsRefusal_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Audience>("entered");
    QTest::addColumn<QVariantList>("others");
    QTest::addColumn<Refusal>("expected");

    const QVariantList male{content("a"_s, 45, 60, "male"_s, "true"_s)};
    const QVariantList none;

    QTest::newRow("the first content") << "a"_s << range(0, 75, 3, true) << none << Refusal::None;
    QTest::newRow("beside another one") << "n"_s << range(1, 2, 1) << male << Refusal::None;
    QTest::newRow("a used name") << "a"_s << range(1, 2, 2) << male << Refusal::NameInUse;
    QTest::newRow("a used name in another letter case")
        << "A"_s << range(1, 2, 2) << male << Refusal::None;
    QTest::newRow("a used name with a blank") << "a "_s << range(1, 2, 2) << male << Refusal::None;
    QTest::newRow("the name of the last of several")
        << "c"_s << range(1, 2, 1)
        << QVariantList{content("a"_s, 5, 6, "male"_s), content("b"_s, 7, 8, "male"_s),
               content("c"_s, 9, 10, "male"_s)}
        << Refusal::NameInUse;
    QTest::newRow("a name in params is nobody's")
        << "inner"_s << range(1, 2, 1)
        << QVariantList{QVariantMap{{"params"_s,
               QVariantMap{{"name"_s, "inner"_s}, {"age-min"_s, 45}, {"gender"_s, "male"_s}}}}}
        << Refusal::None;
    QTest::newRow("no name beside one without a name")
        << QString() << range(1, 2, 1) << QVariantList{5} << Refusal::NameInUse;
    QTest::newRow("ages of another one") << "n"_s << range(40, 50, 1) << male << Refusal::AgesInUse;
    QTest::newRow("ages around those of another one")
        << "n"_s << range(40, 70, 1) << male << Refusal::None;
    QTest::newRow("ages of another gender")
        << "n"_s << range(45, 60, 2, true) << male << Refusal::None;
    QTest::newRow("missing ages of another one cover all")
        << "n"_s << range(1, 2, 1)
        << QVariantList{QVariantMap{{"params"_s, QVariantMap{{"gender"_s, "male"_s}}}}}
        << Refusal::AgesInUse;
    QTest::newRow("a second default")
        << "n"_s << range(1, 2, 1, true) << male << Refusal::DefaultInUse;
    QTest::newRow("a second default, stored as a bool")
        << "n"_s << range(1, 2, 1, true) << QVariantList{content("a"_s, 45, 60, "both"_s, true)}
        << Refusal::DefaultInUse;

    QTest::newRow("the name comes before the ages")
        << "a"_s << range(45, 60, 1) << male << Refusal::NameInUse;
    QTest::newRow("the name comes before the default")
        << "a"_s << range(1, 2, 1, true) << male << Refusal::NameInUse;
    QTest::newRow("the ages come before the default")
        << "n"_s << range(45, 60, 1, true) << male << Refusal::AgesInUse;
    QTest::newRow("the order is that of the reasons, not that of the list")
        << "c"_s << range(1, 2, 1, true)
        << QVariantList{content("a"_s, 45, 60, "male"_s, "true"_s), content("b"_s, 0, 1, "both"_s),
               content("c"_s, 9, 10, "female"_s)}
        << Refusal::NameInUse;
}

void tst_AudienceRules::findsRefusal()
{
    QFETCH(QString, name);
    QFETCH(Audience, entered);
    QFETCH(QVariantList, others);
    QTEST(findRefusal(name, entered, others), "expected");
}

void tst_AudienceRules::freeRangesAgreeWithEverySingleAge()
{
    RandomRanges random;
    int withFreeRanges = 0;
    for (int i = 0; i < 10000; ++i) {
        const QVector<Audience> contents
            = sorted(random.list(20, [&random] { return random.wellFormed(); }));
        const QVector<Audience> expected = bruteForceFreeRanges(contents);
        const QVector<Audience> actual = freeRanges(contents);
        if (actual != expected) {
            qInfo() << "set" << i << describe(contents);
            QCOMPARE(describe(actual), describe(expected));
        }
        withFreeRanges += expected.isEmpty() ? 0 : 1;
    }
    QVERIFY2(withFreeRanges > 1000 && withFreeRanges < 10000, "the sets must be of both kinds");
}

void tst_AudienceRules::freeRangesOfAnyContentsAgreeWithReference()
{
    RandomRanges random;
    for (int i = 0; i < 10000; ++i) {
        const QVector<Audience> contents
            = sorted(random.list(12, [&random] { return random.any(); }));
        const QVector<Audience> expected = referenceFreeRanges(contents);
        const QVector<Audience> actual = freeRanges(contents);
        if (actual != expected) {
            qInfo() << "set" << i << describe(contents);
            QCOMPARE(describe(actual), describe(expected));
        }
    }
}

void tst_AudienceRules::nextRangesAgreeWithReference()
{
    RandomRanges random;
    int different = 0; // from the range that is taken when nothing touches
    for (int i = 0; i < 10000; ++i) {
        QVector<Audience> free
            = freeRanges(sorted(random.list(12, [&random] { return random.any(); })));
        // As "Find Range" leaves it: with what was entered before.
        free += random.list(3, [&random] { return random.any(); });
        const Audience current = random.any();
        const std::optional<Audience> expected = referenceNextRange(current, free);
        const std::optional<Audience> actual = nextRange(current, free);
        if (actual.has_value() != expected.has_value() || (actual && !(*actual == *expected))) {
            qInfo() << "set" << i << describe(current) << "in" << describe(free);
            QCOMPARE(describe(actual), describe(expected));
        }
        const std::optional<Audience> untouched = referenceNextRange(range(1000, 1000, 0), free);
        if (actual && !(*actual == *untouched))
            ++different;
    }
    QVERIFY2(different > 1000, "the current ranges must touch often enough");
}

void tst_AudienceRules::proposalsOfFreeRangesNeverConflict()
{
    RandomRanges random;
    for (int i = 0; i < 2000; ++i) {
        const QVector<Audience> contents
            = sorted(random.list(12, [&random] { return random.wellFormed(); }));
        const QVector<Audience> free = freeRanges(contents);
        for (const Audience &proposal : free)
            QVERIFY2(!PluginKrHvcP2::findConflicts(proposal, contents).ages,
                qPrintable(describe(proposal)));
    }
}

QTEST_GUILESS_MAIN(tst_AudienceRules)
#include "tst_audiencerules.moc"
