#include "core/screen/ContentEntry.h"
#include "core/screen/DetectionContent.h"

#include <QtTest>

#include <limits>

using namespace PluginKrHvcP2;

using StageScreens = QMap<int, QVariantMap>;

Q_DECLARE_METATYPE(StageScreens)

namespace {

constexpr int ScreenId = 10;

QVariantMap entry(const QVariantMap &params)
{
    return {{QStringLiteral("type"), 8}, {QStringLiteral("params"), params}};
}

QVariantMap content(const QVariant &ageMin, const QVariant &ageMax, const QVariant &gender,
    const QVariant &isDefault = QStringLiteral("false"))
{
    return entry({
        {QStringLiteral("name"), QStringLiteral("any")},
        {QStringLiteral("age-min"), ageMin},
        {QStringLiteral("age-max"), ageMax},
        {QStringLiteral("gender"), gender},
        {QStringLiteral("default"), isDefault},
    });
}

QVariantMap women()
{
    return content(20, 29, QStringLiteral("female"));
}

QVariantMap men()
{
    return content(30, 39, QStringLiteral("male"));
}

QVariantMap without(QVariantMap map, const char *key)
{
    map.remove(QString::fromLatin1(key));
    return map;
}

QVariantMap withValue(QVariantMap map, const char *key, const QVariant &value)
{
    map.insert(QString::fromLatin1(key), value);
    return map;
}

QVariantMap screen(const QVariantList &contents, const QVariant &id = ScreenId)
{
    return {{QStringLiteral("id"), id}, {QStringLiteral("contents"), contents}};
}

/// An event by which our screen opens sequences.
QVariantMap opening(const QVariant &seq, const QVariant &type = 2, const QVariant &direction = 1)
{
    return {
        {QStringLiteral("type"), type},
        {QStringLiteral("direction"), direction},
        {QStringLiteral("seq"), seq},
        {QStringLiteral("id"), 99},
        {QStringLiteral("screenseq"), 1},
    };
}

/// An event by which another screen links to a sequence of ours.
QVariantMap link(const QVariant &sequence, const QVariant &id = ScreenId, const QVariant &type = 2)
{
    return {
        {QStringLiteral("type"), type},
        {QStringLiteral("direction"), 2},
        {QStringLiteral("seq"), QVariantList{7}},
        {QStringLiteral("id"), id},
        {QStringLiteral("screenseq"), sequence},
    };
}

QVariantList repeatedLinks(int count, int sequence)
{
    QVariantList events;
    for (int i = 0; i < count; ++i)
        events.append(link(sequence));
    return events;
}

QVariantMap stageScreen(const QVariantList &events)
{
    return {{QStringLiteral("event"), events}};
}

/// Our screen opens all sequences; one other screen, 20, links to those of @p sequences.
StageScreens linkedStage(const QList<int> &sequences)
{
    QVariantList links;
    for (const int sequence : sequences)
        links.append(link(sequence));
    return {{ScreenId, stageScreen({opening(QVariantList())})}, {20, stageScreen(links)}};
}

QString describe(const DetectionContent &content)
{
    QStringList identifiers;
    for (const int identifier : content.identifiers)
        identifiers.append(QString::number(identifier));
    const QString gender = genderToText(content.genders);
    return QStringLiteral("#%1 %2..%3 %4%5 [%6]")
        .arg(QString::number(content.sequenceNumber), QString::number(content.ageMin),
            QString::number(content.ageMax), gender.isEmpty() ? QStringLiteral("nobody") : gender,
            content.isDefault ? QStringLiteral(" default") : QString(),
            identifiers.join(QLatin1Char(' ')));
}

QString describe(const DetectionContents &contents)
{
    QStringList lines;
    for (const DetectionContent &content : contents)
        lines.append(describe(content));
    return lines.join(QLatin1String("; "));
}

} // namespace

class tst_DetectionContent : public QObject
{
    Q_OBJECT

private slots:
    void defaults();
    void validity_data();
    void validity();
    void coversAge_data();
    void coversAge();
    void fields_data();
    void fields();
    void screenMap_data();
    void screenMap();
    void identifiers_data();
    void identifiers();
    void reasons_data();
    void reasons();
    void manyContents();
    void manyLinkingScreens();
    void find_data();
    void find();
    void newEntry_data();
    void newEntry();
};

void tst_DetectionContent::defaults()
{
    QCOMPARE(describe(DetectionContent()), QStringLiteral("#-1 -1..-1 nobody []"));
}

void tst_DetectionContent::validity_data()
{
    QTest::addColumn<int>("sequence");
    QTest::addColumn<int>("ageMin");
    QTest::addColumn<int>("ageMax");
    QTest::addColumn<int>("genders");
    QTest::addColumn<bool>("expected");

    QTest::newRow("a usual content") << 1 << 20 << 29 << int(Female) << true;
    QTest::newRow("one year") << 1 << 20 << 20 << int(Male) << true;
    QTest::newRow("newborns") << 1 << 0 << 0 << int(BothGenders) << true;
    QTest::newRow("sequence 0") << 0 << 20 << 29 << int(Female) << true;
    QTest::newRow("no sequence") << -1 << 20 << 29 << int(Female) << false;
    QTest::newRow("no lowest age") << 1 << -1 << 29 << int(Female) << false;
    QTest::newRow("no highest age") << 1 << 20 << -1 << int(Female) << false;
    QTest::newRow("no ages") << 1 << -1 << -1 << int(Female) << false;
    QTest::newRow("lowest above highest age") << 1 << 30 << 29 << int(Female) << false;
    QTest::newRow("no gender") << 1 << 20 << 29 << int(UnknownGender) << false;
}

void tst_DetectionContent::validity()
{
    QFETCH(int, sequence);
    QFETCH(int, ageMin);
    QFETCH(int, ageMax);
    QFETCH(int, genders);
    QFETCH(bool, expected);
    DetectionContent content;
    content.sequenceNumber = sequence;
    content.ageMin = ageMin;
    content.ageMax = ageMax;
    content.genders = genders;
    QCOMPARE(content.isValid(), expected);
}

void tst_DetectionContent::coversAge_data()
{
    QTest::addColumn<int>("age");
    QTest::addColumn<bool>("expected");

    QTest::newRow("just below") << 19 << false;
    QTest::newRow("the lowest age is inside") << 20 << true;
    QTest::newRow("between") << 25 << true;
    QTest::newRow("the highest age is inside") << 29 << true;
    QTest::newRow("just above") << 30 << false;
    QTest::newRow("unknown") << -1 << false;
}

void tst_DetectionContent::coversAge()
{
    QFETCH(int, age);
    QFETCH(bool, expected);
    DetectionContent content;
    content.ageMin = 20;
    content.ageMax = 29;
    QCOMPARE(content.coversAge(age), expected);
}

void tst_DetectionContent::fields_data()
{
    QTest::addColumn<QVariant>("content");
    QTest::addColumn<QString>("expected"); // empty: the content is dropped

    const auto row = [](const char *name, const QVariant &content, const char *expected) {
        QTest::newRow(name) << content << QString::fromLatin1(expected);
    };
    const auto withGender = [](const QVariant &gender) { return content(20, 29, gender); };
    const auto withDefault
        = [](const QVariant &value) { return content(20, 29, QStringLiteral("male"), value); };

    row("female", withGender(QStringLiteral("female")), "#1 20..29 female [20]");
    row("male", withGender(QStringLiteral("male")), "#1 20..29 male [20]");
    row("both", withGender(QStringLiteral("both")), "#1 20..29 both [20]");
    row("gender in capitals", withGender(QStringLiteral("FEMALE")), "#1 20..29 female [20]");
    row("gender with a blank", withGender(QStringLiteral("female ")), "");
    row("unknown gender", withGender(QStringLiteral("child")), "");
    row("gender as a number", withGender(1), "");
    row("gender as a list", withGender(QVariantList{1}), "");
    row("gender as nothing", withGender(QVariant()), "");

    row("default", withDefault(QStringLiteral("true")), "#1 20..29 male default [20]");
    row("default in capitals", withDefault(QStringLiteral("TRUE")), "#1 20..29 male default [20]");
    row("default as bool", withDefault(true), "#1 20..29 male default [20]");
    row("default as 1 is none", withDefault(1), "#1 20..29 male [20]");
    row("default as yes is none", withDefault(QStringLiteral("yes")), "#1 20..29 male [20]");
    row("default as nothing is none", withDefault(QVariant()), "#1 20..29 male [20]");

    row("ages as text", content(QStringLiteral("20"), QStringLiteral("29"), QStringLiteral("male")),
        "#1 20..29 male [20]");
    row("ages 0 to 0", content(0, 0, QStringLiteral("male")), "#1 0..0 male [20]");
    row("the largest age", content(0, std::numeric_limits<int>::max(), QStringLiteral("male")),
        "#1 0..2147483647 male [20]");
    row("lowest above highest age", content(30, 29, QStringLiteral("male")), "");
    row("negative lowest age", content(-1, 29, QStringLiteral("male")), "");
    row("negative highest age", content(-2, -1, QStringLiteral("male")), "");
    row("lowest age as letters", content(QStringLiteral("a"), 29, QStringLiteral("male")), "");
    row("highest age as letters", content(20, QStringLiteral("a"), QStringLiteral("male")), "");
    row("lowest age as nothing", content(QVariant(), 29, QStringLiteral("male")), "");
    row("highest age as a map", content(20, QVariantMap(), QStringLiteral("male")), "");
    // As QVariant converts them.
    row("an age beyond 32 bits wraps",
        content(20, Q_INT64_C(0x100000000) + 29, QStringLiteral("male")), "#1 20..29 male [20]");

    row("keys in other letter cases",
        entry({{QStringLiteral("Age-Min"), 20}, {QStringLiteral("AGE-MAX"), 29},
            {QStringLiteral("Gender"), QStringLiteral("both")},
            {QStringLiteral("DEFAULT"), QStringLiteral("true")}}),
        "#1 20..29 both default [20]");
    row("of a key in two letter cases the later in order wins",
        entry({{QStringLiteral("AGE-MIN"), 1}, {QStringLiteral("age-min"), 20},
            {QStringLiteral("age-max"), 29}, {QStringLiteral("gender"), QStringLiteral("both")}}),
        "#1 20..29 both [20]");
    row("a missing default is none",
        entry({{QStringLiteral("age-min"), 20}, {QStringLiteral("age-max"), 29},
            {QStringLiteral("gender"), QStringLiteral("male")}}),
        "#1 20..29 male [20]");
    row("a missing lowest age",
        entry(
            {{QStringLiteral("age-max"), 29}, {QStringLiteral("gender"), QStringLiteral("male")}}),
        "");
    row("a missing highest age",
        entry(
            {{QStringLiteral("age-min"), 20}, {QStringLiteral("gender"), QStringLiteral("male")}}),
        "");
    row("a missing gender",
        entry({{QStringLiteral("age-min"), 20}, {QStringLiteral("age-max"), 29}}), "");
    row("other keys do not matter", withValue(women(), "type", QStringLiteral("no number")),
        "#1 20..29 female [20]");
    row("no fields", entry({}), "");
    row("an entry without params", QVariantMap{{QStringLiteral("type"), 8}}, "");
    row("params that are not a map",
        QVariantMap{{QStringLiteral("type"), 8}, {QStringLiteral("params"), 5}}, "");
    row("an entry that is not a map", 5, "");
    row("an entry that is nothing", QVariant(), "");
}

void tst_DetectionContent::fields()
{
    QFETCH(QVariant, content);
    QFETCH(QString, expected);
    // A second content keeps the number of kept records off the question.
    const DetectionContents contents
        = detectionContents(screen({content, men()}), linkedStage({1}));
    QCOMPARE(describe(contents), expected);
}

void tst_DetectionContent::screenMap_data()
{
    QTest::addColumn<QVariantMap>("screenMap");
    QTest::addColumn<QString>("expected");

    const QVariantMap usual = screen({women(), men()});
    const QString table = QStringLiteral("#1 20..29 female [20]; #2 30..39 male [20]");

    QTest::newRow("a usual screen") << usual << table;
    QTest::newRow("an empty map") << QVariantMap() << QString();
    QTest::newRow("no id") << without(usual, "id") << QString();
    QTest::newRow("id is nothing") << withValue(usual, "id", QVariant()) << QString();
    QTest::newRow("id is a null text") << withValue(usual, "id", QString()) << QString();
    QTest::newRow("id is letters") << withValue(usual, "id", QStringLiteral("ten")) << QString();
    QTest::newRow("id is a list") << withValue(usual, "id", QVariantList{10}) << QString();
    QTest::newRow("id is a text that converts")
        << withValue(usual, "id", QStringLiteral("10")) << table;
    QTest::newRow("id is not on the stage") << withValue(usual, "id", 11) << QString();
    QTest::newRow("no contents") << without(usual, "contents") << QString();
    QTest::newRow("contents are nothing") << withValue(usual, "contents", QVariant()) << QString();
    QTest::newRow("contents are empty")
        << withValue(usual, "contents", QVariantList()) << QString();
    QTest::newRow("contents are a text")
        << withValue(usual, "contents", QStringLiteral("female")) << QString();
    QTest::newRow("contents are a map") << withValue(usual, "contents", women()) << QString();
    QTest::newRow("an invalid entry uses its number up")
        << screen({women(), content(9, 1, QStringLiteral("both")), men()})
        << QStringLiteral("#1 20..29 female [20]");
    QTest::newRow("settings do not matter")
        << withValue(usual, "plugindata", QStringLiteral("x")) << table;
}

void tst_DetectionContent::screenMap()
{
    QFETCH(QVariantMap, screenMap);
    QFETCH(QString, expected);
    // Three sequences are linked, but an open event stands for as many as there are valid records.
    QCOMPARE(describe(detectionContents(screenMap, linkedStage({1, 2, 3}))), expected);
}

void tst_DetectionContent::identifiers_data()
{
    QTest::addColumn<QVariantList>("contents");
    QTest::addColumn<StageScreens>("stage");
    QTest::addColumn<QString>("expected");

    const QVariantList two{women(), men()};
    const QVariantList invalidThenMen{content(9, 1, QStringLiteral("both")), men()};
    const QString first = QStringLiteral("#1 20..29 female [20]");
    const QString second = QStringLiteral("#2 30..39 male [20]");
    const QString both = QStringLiteral("#1 20..29 female [20]; #2 30..39 male [20]");
    const QString none;
    const auto row = [&](const char *name, const QVariantList &ownEvents,
                         const QVariantList &otherEvents, const QString &expected) {
        QTest::newRow(name) << two
                            << StageScreens{{ScreenId, stageScreen(ownEvents)},
                                   {20, stageScreen(otherEvents)}}
                            << expected;
    };
    const auto ownRow = [&](const char *name, const QVariant &event, const QString &expected) {
        row(name, {event}, {link(1), link(2)}, expected);
    };
    const auto linkRow = [&](const char *name, const QVariant &event, const QString &expected) {
        row(name, {opening(QVariantList())}, {event}, expected);
    };

    // What this screen's own events open.
    ownRow("an empty list of sequences opens all", opening(QVariantList()), both);
    ownRow("a missing list of sequences opens all", without(opening(QVariantList()), "seq"), both);
    ownRow("a list that is nothing opens all", opening(QVariant()), both);
    ownRow("one listed sequence", opening(QVariantList{2}), second);
    ownRow("two listed sequences", opening(QVariantList{2, 1}), both);
    ownRow("a list of plain numbers", opening(QVariant::fromValue(QList<int>{2})), second);
    ownRow("listed sequences as text", opening(QVariantList{QStringLiteral("2")}), second);
    ownRow("a list of texts", opening(QStringList{QStringLiteral("1")}), first);
    ownRow("entries that are no numbers are passed over",
        opening(QVariantList{QStringLiteral("x"), 1, QVariant()}), first);
    ownRow("a list of non-numbers is not an empty list", opening(QVariantList{QStringLiteral("x")}),
        none);
    ownRow("listed sequences without content", opening(QVariantList{0, -1, 3}), none);
    ownRow("a sequence listed twice", opening(QVariantList{1, 1}), first);
    ownRow("type 2 is the lowest", opening(QVariantList(), 2), both);
    ownRow("type 1 opens nothing", opening(QVariantList(), 1), none);
    ownRow("type 0 opens nothing", opening(QVariantList(), 0), none);
    ownRow("a negative type opens nothing", opening(QVariantList(), -2), none);
    ownRow("a higher type", opening(QVariantList(), 1000), both);
    ownRow("a type as text", opening(QVariantList(), QStringLiteral("3")), both);
    ownRow("a type as letters opens nothing", opening(QVariantList(), QStringLiteral("x")), none);
    ownRow("no type opens nothing", without(opening(QVariantList()), "type"), none);
    ownRow("direction 0 opens nothing", opening(QVariantList(), 2, 0), none);
    ownRow("direction 2 opens nothing", opening(QVariantList(), 2, 2), none);
    ownRow("direction -1 opens nothing", opening(QVariantList(), 2, -1), none);
    ownRow("a direction as text", opening(QVariantList(), 2, QStringLiteral("1")), both);
    ownRow("a direction as letters opens nothing",
        opening(QVariantList(), 2, QStringLiteral("out")), none);
    ownRow("no direction opens nothing", without(opening(QVariantList()), "direction"), none);
    ownRow("event keys in other letter cases open nothing",
        QVariantMap{{QStringLiteral("Type"), 2}, {QStringLiteral("Direction"), 1}}, none);
    ownRow("an own event that is not a map", 5, none);
    row("no own events", {}, {link(1), link(2)}, none);
    row("two own events add up", {opening(QVariantList{1}), opening(QVariantList{2}, 5)},
        {link(1), link(2)}, both);
    row("an own event without effect takes nothing away",
        {opening(QVariantList{1}), opening(QVariantList{2}, 1), opening(QVariantList(), 2, 0)},
        {link(1), link(2)}, first);

    // What the other screens link to.
    linkRow("a link to the first sequence", link(1), first);
    linkRow("a link to the second sequence", link(2), second);
    linkRow("a link without a content", link(3), none);
    linkRow("a link to sequence 0", link(0), none);
    linkRow("a link's sequence as text", link(QStringLiteral("2")), second);
    linkRow("a link's sequence as letters", link(QStringLiteral("two")), none);
    linkRow("a link without a sequence", without(link(1), "screenseq"), none);
    linkRow("a link to another screen", link(1, 11), none);
    linkRow("a link's screen as text", link(1, QStringLiteral("10")), first);
    linkRow("a link's screen as letters", link(1, QStringLiteral("ten")), none);
    linkRow("a link without a screen", without(link(1), "id"), none);
    linkRow("a link of any type counts", link(1, ScreenId, 0), first);
    linkRow("a link of a negative type counts", link(1, ScreenId, -7), first);
    linkRow("a link's type as letters", link(1, ScreenId, QStringLiteral("x")), none);
    linkRow("a link without a type", without(link(1), "type"), none);
    linkRow("a link's direction does not matter", without(link(1), "direction"), first);
    linkRow("a link's own sequences do not matter", without(link(1), "seq"), first);
    linkRow("a link that is not a map", QStringLiteral("link"), none);
    row("one screen links twice to one sequence", {opening(QVariantList())}, {link(1), link(1)},
        first);
    row("one screen links to two sequences in turn", {opening(QVariantList())},
        {link(1), link(2), link(1), link(2), link(1)}, both);
    row("a link to a sequence that is not open", {opening(QVariantList{2})}, {link(1)}, none);
    row("no links", {opening(QVariantList())}, {}, none);

    QTest::newRow("an empty stage") << two << StageScreens() << none;
    QTest::newRow("our screen alone on the stage")
        << two << StageScreens{{ScreenId, stageScreen({opening(QVariantList())})}} << none;
    QTest::newRow("our screen is missing on the stage")
        << two << StageScreens{{20, stageScreen({link(1)})}} << none;
    QTest::newRow("a screen never links to itself")
        << two << StageScreens{{ScreenId, stageScreen({opening(QVariantList()), link(1), link(2)})}}
        << none;
    QTest::newRow("events that are not a list")
        << two
        << StageScreens{{ScreenId, stageScreen({opening(QVariantList())})},
               {20, {{QStringLiteral("event"), QStringLiteral("none")}}}}
        << none;
    QTest::newRow("a screen without events")
        << two
        << StageScreens{{ScreenId, stageScreen({opening(QVariantList())})}, {15, {}},
               {20, stageScreen({link(2)})}}
        << second;
    QTest::newRow("own events that are not a list")
        << two
        << StageScreens{{ScreenId, {{QStringLiteral("event"), 5}}}, {20, stageScreen({link(1)})}}
        << none;
    QTest::newRow("linked screens stand in the order of their ids")
        << two
        << StageScreens{{ScreenId, stageScreen({opening(QVariantList())})},
               {30, stageScreen({link(1)})}, {5, stageScreen({link(2), link(1)})},
               {-4, stageScreen({link(1)})}}
        << QStringLiteral("#1 20..29 female [-4 5 30]; #2 30..39 male [5]");
    const QVariantMap twice = stageScreen({link(2), link(1), link(2), link(1)});
    QTest::newRow("screens that link twice stand there once, in the order of their ids")
        << two
        << StageScreens{{ScreenId, stageScreen({opening(QVariantList())})}, {30, twice}, {5, twice},
               {-4, twice}}
        << QStringLiteral("#1 20..29 female [-4 5 30]; #2 30..39 male [-4 5 30]");
    QTest::newRow("an open event stands for as many sequences as there are valid records")
        << invalidThenMen << linkedStage({1, 2}) << none;
    QTest::newRow("a listed sequence opens whatever the number of records")
        << invalidThenMen
        << StageScreens{{ScreenId, stageScreen({opening(QVariantList{2})})},
               {20, stageScreen({link(2)})}}
        << second;
    QTest::newRow("one invalid content among three leaves two open sequences")
        << QVariantList{women(), content(9, 1, QStringLiteral("both")), men()}
        << linkedStage({1, 2, 3}) << first;
}

void tst_DetectionContent::identifiers()
{
    QFETCH(QVariantList, contents);
    QFETCH(StageScreens, stage);
    QFETCH(QString, expected);
    QCOMPARE(describe(detectionContents(screen(contents), stage)), expected);
}

void tst_DetectionContent::reasons_data()
{
    QTest::addColumn<QVariantMap>("screenMap");
    QTest::addColumn<StageScreens>("stage");
    QTest::addColumn<QString>("expected");

    const StageScreens linked = linkedStage({1, 2, 3});
    const auto row = [&](const char *name, const QVariantMap &entry, const char *reason) {
        QTest::newRow(name) << screen({men(), entry}) << linked
                            << QString(QStringLiteral("takes part, ") + QLatin1String(reason));
    };
    row("a usual content", women(), "takes part");
    row("an entry that is no map", {}, "no lowest age");
    row("no lowest age", content({}, 29, QStringLiteral("female")), "no lowest age");
    row("a lowest age of letters", content(QStringLiteral("young"), 29, QStringLiteral("female")),
        "no lowest age");
    row("a negative lowest age", content(-1, 29, QStringLiteral("female")), "no lowest age");
    row("no highest age", content(20, {}, QStringLiteral("female")), "no highest age");
    row("a negative highest age", content(20, -5, QStringLiteral("female")), "no highest age");
    row("a gender of another word", content(20, 29, QStringLiteral("woman")), "no gender");
    row("the ages in the wrong order", content(30, 29, QStringLiteral("female")), "reversed");
    row("several faults, the first counts", content({}, -1, QString()), "no lowest age");

    const QVariantMap two = screen({women(), men()});
    QTest::newRow("no screen id") << without(two, "id") << linked << QStringLiteral("no id, no id");
    QTest::newRow("no contents") << screen({}) << linked << QString();
    QTest::newRow("no other screen")
        << two << linkedStage({}) << QStringLiteral("no link, no link");
    QTest::newRow("a sequence that nobody follows")
        << two << linkedStage({2}) << QStringLiteral("no link, takes part");
    QTest::newRow("no event of the own screen")
        << two << StageScreens{{20, stageScreen({link(1), link(2)})}}
        << QStringLiteral("no event, no event");
    QTest::newRow("an event for one of them")
        << two
        << StageScreens{{ScreenId, stageScreen({opening(QVariantList{2})})},
               {20, stageScreen({link(1), link(2)})}}
        << QStringLiteral("no event, takes part");
    QTest::newRow("an invalid content shortens what an open event stands for")
        << screen({content({}, 29, QStringLiteral("female")), men(), women()}) << linked
        << QStringLiteral("no lowest age, takes part, no event");
}

void tst_DetectionContent::reasons()
{
    QFETCH(QVariantMap, screenMap);
    QFETCH(StageScreens, stage);
    QFETCH(QString, expected);
    const DetectionTable table = detectionTable(screenMap, stage);
    const auto name = [](EntryReason reason) {
        switch (reason) {
        case EntryReason::TakesPart:
            return QStringLiteral("takes part");
        case EntryReason::NoScreenId:
            return QStringLiteral("no id");
        case EntryReason::NoLowestAge:
            return QStringLiteral("no lowest age");
        case EntryReason::NoHighestAge:
            return QStringLiteral("no highest age");
        case EntryReason::NoGender:
            return QStringLiteral("no gender");
        case EntryReason::AgesReversed:
            return QStringLiteral("reversed");
        case EntryReason::NoOwnEvent:
            return QStringLiteral("no event");
        case EntryReason::NoLinkingScreen:
            return QStringLiteral("no link");
        }
        return QStringLiteral("?");
    };
    QStringList names;
    for (const EntryReason reason : table.reasons)
        names.append(name(reason));
    QCOMPARE(names.join(QStringLiteral(", ")), expected);
    QCOMPARE(table.contents.size(), table.reasons.count(EntryReason::TakesPart));
}

void tst_DetectionContent::manyContents()
{
    constexpr int Count = 10000;
    QVariantList entries;
    QList<int> sequences;
    for (int sequence = 1; sequence <= Count; ++sequence) {
        entries.append(women());
        sequences.append(sequence);
    }
    const DetectionContents contents = detectionContents(screen(entries), linkedStage(sequences));
    QCOMPARE(contents.size(), Count);
    QCOMPARE(describe(contents.last()), QStringLiteral("#10000 20..29 female [20]"));
}

/// Screens that all link to one sequence take about as long as if each had one of its own.
void tst_DetectionContent::manyLinkingScreens()
{
    constexpr int Count = 20000;
    constexpr int LinksPerScreen = 20;
    QVariantList entries;
    QList<int> identifiers;
    StageScreens spread = linkedStage({});
    StageScreens gathered = spread;
    for (int i = 0; i < Count; ++i) {
        const int identifier = 100 + i;
        entries.append(women());
        identifiers.append(identifier);
        spread.insert(identifier, stageScreen(repeatedLinks(LinksPerScreen, i + 1)));
        gathered.insert(identifier, stageScreen(repeatedLinks(LinksPerScreen, 1)));
    }

    QElapsedTimer timer;
    timer.start();
    QCOMPARE(detectionContents(screen(entries), spread).size(), Count);
    const qint64 usual = timer.restart();
    const DetectionContents contents = detectionContents(screen(entries), gathered);
    const qint64 elapsed = timer.elapsed();
    QCOMPARE(contents.size(), 1);
    QCOMPARE(contents.first().identifiers, identifiers);
    QVERIFY2(elapsed < 5 * usual + 100,
        qPrintable(QStringLiteral("%1 ms instead of %2 ms").arg(elapsed).arg(usual)));
}

void tst_DetectionContent::find_data()
{
    QTest::addColumn<qint64>("sequence");
    QTest::addColumn<QString>("expected");

    const QString nothing = QStringLiteral("#-1 -1..-1 nobody []");
    QTest::newRow("the first") << qint64(1) << QStringLiteral("#1 1..2 female []");
    QTest::newRow("of one number twice the first in the list")
        << qint64(3) << QStringLiteral("#3 3..4 male []");
    QTest::newRow("a gap") << qint64(2) << nothing;
    QTest::newRow("zero") << qint64(0) << nothing;
    QTest::newRow("negative") << qint64(-1) << nothing;
    QTest::newRow("one above the largest int") << Q_INT64_C(2147483648) << nothing;
    QTest::newRow("a number that would wrap to the first") << Q_INT64_C(4294967297) << nothing;
}

void tst_DetectionContent::find()
{
    QFETCH(qint64, sequence);
    QFETCH(QString, expected);
    const DetectionContents contents{
        {1, 1, 2, Female, false, {}},
        {3, 3, 4, Male, false, {}},
        {3, 5, 6, Male, false, {}},
    };
    QCOMPARE(describe(findContent(contents, sequence)), expected);
    QCOMPARE(findContent(contents, sequence).isValid(),
        expected != QLatin1String("#-1 -1..-1 nobody []"));
    QCOMPARE(describe(findContent({}, sequence)), QStringLiteral("#-1 -1..-1 nobody []"));
}

void tst_DetectionContent::newEntry_data()
{
    QTest::addColumn<QVariantMap>("entry");
    QTest::addColumn<QVariantMap>("expected");

    QTest::newRow("women as default")
        << contentEntry(QStringLiteral("20 - 30 (Female)"), 20, 30, Female, true)
        << entry({{QStringLiteral("name"), QStringLiteral("20 - 30 (Female)")},
               {QStringLiteral("age-min"), 20}, {QStringLiteral("age-max"), 30},
               {QStringLiteral("gender"), QStringLiteral("female")},
               {QStringLiteral("default"), QStringLiteral("true")}});
    QTest::newRow("men") << contentEntry(QStringLiteral("20 - 30 (Male)"), 20, 30, Male, false)
                         << entry({{QStringLiteral("name"), QStringLiteral("20 - 30 (Male)")},
                                {QStringLiteral("age-min"), 20}, {QStringLiteral("age-max"), 30},
                                {QStringLiteral("gender"), QStringLiteral("male")},
                                {QStringLiteral("default"), QStringLiteral("false")}});
}

void tst_DetectionContent::newEntry()
{
    QFETCH(QVariantMap, entry);
    QFETCH(QVariantMap, expected);
    QCOMPARE(entry, expected);
    // Hosts read the default as text, the ages as numbers.
    const QVariantMap params = entry.value(QStringLiteral("params")).toMap();
    QCOMPARE(int(params.value(QStringLiteral("default")).type()), int(QMetaType::QString));
    QCOMPARE(int(params.value(QStringLiteral("age-min")).type()), int(QMetaType::Int));
    QCOMPARE(int(entry.value(QStringLiteral("type")).type()), int(QMetaType::Int));
}

QTEST_GUILESS_MAIN(tst_DetectionContent)

#include "tst_detectioncontent.moc"
