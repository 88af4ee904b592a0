#include "tools/analysis/Plan.h"

#include "demo/stage/StageFile.h"

#include <QtTest>

using namespace Analysis;
using namespace PluginKrHvcP2;

namespace {

Plan parse(const QByteArray &json, std::optional<int> screenId = {})
{
    QString error;
    const std::optional<Plan> plan = planFromJson(json, QStringLiteral("s.json"), screenId, &error);
    if (!plan)
        qWarning("%s", qUtf8Printable(error));
    return plan.value_or(Plan());
}

/// A stage whose screen 1 opens all sequences and whose screen 2 follows the first three. The
/// contents stand in line 2.
QByteArray linkedStage(const QByteArray &contents)
{
    return R"({"screens": [{"id": 1, "event": [{"type": 2, "direction": 1}], "contents": [)"
           "\n"
        + contents + "]},\n" + R"({"id": 2, "event": [{"type": 2, "id": 1, "screenseq": 1},
            {"type": 2, "id": 1, "screenseq": 2}, {"type": 2, "id": 1, "screenseq": 3}]}]})";
}

} // namespace

class tst_Plan : public QObject
{
    Q_OBJECT

private slots:
    void refused_data();
    void refused();
    void problems_data();
    void problems();
    void stageInMemory();
    void openEventsStandForValidContents();
    void describesTheScreen();
    void shippedStages_data();
    void shippedStages();
    void settings_data();
    void settings();
    void assignment_data();
    void assignment();
};

void tst_Plan::refused_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("screen"); // -1: not given
    QTest::addColumn<QString>("error");

    const QByteArray good = R"({"screens": [{"id": 1}]})";
    QTest::newRow("a text that does not parse")
        << QByteArray("{\n\"screens\": [}") << -1 << "s.json:2:14: object is missing after a comma";
    QTest::newRow("a stage without screens")
        << QByteArray("{}") << -1 << "s.json:1:1: screens: is missing";
    QTest::newRow("a content of a wrong kind")
        << QByteArray(R"({"screens": [{"id": 1, "contents": [{"params": 3}]}]})") << -1
        << "s.json:1:38: screens[0].contents[0].params: must be an object";
    QTest::newRow("a screen that is not there") << good << 2 << "s.json: there is no screen 2";
}

void tst_Plan::refused()
{
    QFETCH(QByteArray, json);
    QFETCH(int, screen);
    QFETCH(QString, error);

    QString actual;
    const std::optional<int> given = screen < 0 ? std::nullopt : std::make_optional(screen);
    QVERIFY(!planFromJson(json, QStringLiteral("s.json"), given, &actual));
    QCOMPARE(actual, error);
}

void tst_Plan::problems_data()
{
    QTest::addColumn<QByteArray>("params"); // of the first content
    QTest::addColumn<int>("reason");
    QTest::addColumn<QString>("message"); // empty: nothing is wrong

    const auto row = [](const char *name, const QByteArray &params, EntryReason reason,
                         const char *message) {
        QTest::newRow(name) << params << static_cast<int>(reason) << QString::fromUtf8(message);
    };
    // clang-format off
    row("a content that takes part", R"("age-min": 20, "age-max": 29, "gender": "female")",
        EntryReason::TakesPart, "");
    row("no lowest age", R"("age-max": 29, "gender": "female")",
        EntryReason::NoLowestAge, "s.json:2:12: screens[0].contents[0].params.age-min: the key is missing");
    row("a lowest age of letters", R"("age-min": "young", "age-max": 29, "gender": "female")",
        EntryReason::NoLowestAge, "s.json:2:13: screens[0].contents[0].params.age-min: \"young\" is no whole number");
    row("a lowest age below 0", R"("age-min": -5, "age-max": 29, "gender": "female")",
        EntryReason::NoLowestAge, "s.json:2:13: screens[0].contents[0].params.age-min: -5 is below 0");
    row("a lowest age that is null", R"("age-min": null, "age-max": 29, "gender": "female")",
        EntryReason::NoLowestAge, "s.json:2:13: screens[0].contents[0].params.age-min: \"\" is no whole number");
    row("a lowest age that is a list", R"("age-min": [20], "age-max": 29, "gender": "female")",
        EntryReason::NoLowestAge, "s.json:2:13: screens[0].contents[0].params.age-min: \"\" is no whole number");
    row("a long text for an age", R"("age-min": "a number that somebody wanted to write later on", "age-max": 29, "gender": "male")",
        EntryReason::NoLowestAge, "s.json:2:13: screens[0].contents[0].params.age-min: \"a number that somebody wanted to write \u2026\" is no whole number");
    row("no highest age", R"("age-min": 20, "gender": "female")",
        EntryReason::NoHighestAge, "s.json:2:12: screens[0].contents[0].params.age-max: the key is missing");
    row("a key in capitals", R"("age-min": 20, "AGE-MAX": "old", "gender": "female")",
        EntryReason::NoHighestAge, "s.json:2:28: screens[0].contents[0].params.AGE-MAX: \"old\" is no whole number");
    row("a key twice, the last one counts", R"("AGE-MIN": 20, "age-min": -1, "age-max": 30, "gender": "female")",
        EntryReason::NoLowestAge, "s.json:2:28: screens[0].contents[0].params.age-min: -1 is below 0");
    row("no gender", R"("age-min": 20, "age-max": 29)",
        EntryReason::NoGender, "s.json:2:12: screens[0].contents[0].params.gender: the key is missing");
    row("another word for the gender", R"("age-min": 20, "age-max": 29, "gender": "woman")",
        EntryReason::NoGender, "s.json:2:43: screens[0].contents[0].params.gender: \"woman\" is none of \"female\", \"male\" and \"both\"");
    row("ages in the wrong order", R"("age-max": 20, "age-min": 29, "gender": "both")",
        EntryReason::AgesReversed, "s.json:2:28: screens[0].contents[0].params.age-min: 29 is above the highest age, 20");
    // clang-format on
}

void tst_Plan::problems()
{
    QFETCH(QByteArray, params);
    QFETCH(int, reason);
    QFETCH(QString, message);

    const Plan plan = parse(linkedStage("{\"params\": {" + params + "}}"));
    QCOMPARE(plan.entries.size(), 1);
    const PlannedContent &entry = plan.entries.constFirst();
    QCOMPARE(static_cast<int>(entry.reason), reason);
    QCOMPARE(entry.problem.isSet() ? entry.problem.message(plan.fileName) : QString(), message);
    QCOMPARE(entry.takesPart(), message.isEmpty());
    QCOMPARE(plan.takesPartEntirely(), message.isEmpty());
    QCOMPARE(plan.contents.size(), message.isEmpty() ? 1 : 0);
}

/// What is wrong with the events, not with a content.
void tst_Plan::stageInMemory()
{
    const QByteArray json
        = linkedStage(R"({"params": {"age-min": 20, "age-max": 29, "gender": "female"}},
            {"name": "Old", "params": {"age-min": 40, "gender": "female"}})");
    QString error;
    std::optional<Stage::StageFile> stage
        = Stage::StageFile::fromJson(json, QStringLiteral("s.json"), &error);
    QVERIFY2(stage, qUtf8Printable(error));
    stage->setScreenParameters(
        1, {{QStringLiteral("plugindata"), QVariantMap{{QStringLiteral("concurrent"), 3}}}});

    const Plan plan = planOf(*stage, 1);
    QCOMPARE(plan.fileName, QStringLiteral("s.json"));
    QCOMPARE(plan.settings.concurrent, 3);
    QCOMPARE(plan.contents.size(), 1);
    QCOMPARE(plan.contents.at(0).identifiers, QList<int>{2});
    QCOMPARE(plan.name(2), QStringLiteral("Old"));
    const PlannedContent &old = plan.entries.at(1);
    QCOMPARE(old.reason, EntryReason::NoHighestAge);
    QCOMPARE(old.problem.message(plan.fileName),
        QStringLiteral("s.json: screens[0].contents[1].params.age-max: the key is missing"));
    QVERIFY(planOf(*stage, 7).entries.isEmpty());
}

void tst_Plan::openEventsStandForValidContents()
{
    const QByteArray women = R"({"params": {"age-min": 20, "age-max": 29, "gender": "female"}})";
    const Plan plan = parse(linkedStage("{\"params\": {}},\n" + women + ",\n" + women));
    QCOMPARE(plan.entries.at(1).reason, EntryReason::TakesPart);
    QCOMPARE(plan.entries.at(2).reason, EntryReason::NoOwnEvent);
    QCOMPARE(plan.entries.at(2).problem.message(plan.fileName),
        QStringLiteral("s.json:1:24: screens[0].event: no event of direction 1 and of type 2 or"
                       " above opens sequence 3; one without a list opens as many as contents are"
                       " valid, here 1 to 2"));

    const QByteArray alone = R"({"screens": [{"id": 7, "contents": [)" + women + "]}]}";
    QCOMPARE(parse(alone).entries.at(0).problem.message(QStringLiteral("s.json")),
        QStringLiteral("s.json:1:14: screens[0].event: no event of direction 1 and of type 2 or"
                       " above opens sequence 1"));

    const Plan unlinked = parse(linkedStage(women + ',' + women + ',' + women + ",\n" + women));
    QCOMPARE(unlinked.entries.at(3).reason, EntryReason::NoLinkingScreen);
    QCOMPARE(unlinked.entries.at(3).problem.message(unlinked.fileName),
        QStringLiteral("s.json:3:1: screens[0].contents[3]: no other screen has an event with"
                       " \"id\" 1 and \"screenseq\" 4"));
    QCOMPARE(unlinked.contents.size(), 3);
}

void tst_Plan::describesTheScreen()
{
    const QByteArray json = R"({"title": "Shop", "screen": 5, "screens": [
        {"id": 3, "event": [{"type": 2, "id": 5, "screenseq": 2}]},
        {"id": 5, "name": "Door", "event": [{"type": 2, "direction": 1, "seq": [2]}], "contents": [
            {"params": {"name": "No ages"}},
            {"name": "Women", "params": {"age-min": 20, "age-max": "29", "gender": "FEMALE",
             "default": "true"}, "card": {"color": "gold"}}]}]})";
    const Plan plan = parse(json);
    QCOMPARE(plan.title, QStringLiteral("Shop"));
    QCOMPARE(plan.screenId, 5);
    QCOMPARE(plan.screenName, QStringLiteral("Door"));
    QCOMPARE(plan.name(1), QStringLiteral("No ages"));
    QCOMPARE(plan.name(2), QStringLiteral("Women"));
    QCOMPARE(plan.name(0), QString());
    QCOMPARE(plan.name(3), QString());
    const PlannedContent &women = plan.entries.at(1);
    QCOMPARE(women.number, 2);
    QCOMPARE(women.color.name(), QStringLiteral("#ffd700"));
    QCOMPARE(women.content.ageMin, 20);
    QCOMPARE(women.content.ageMax, 29);
    QCOMPARE(women.content.genders, int(Female));
    QVERIFY(women.content.isDefault);
    QCOMPARE(women.content.identifiers, QList<int>({3}));
    QVERIFY(!plan.takesPartEntirely());
    QCOMPARE(plan.contents.size(), 1);

    const Plan other = parse(json, 3);
    QCOMPARE(other.screenId, 3);
    QVERIFY(other.entries.isEmpty());
    QVERIFY(other.takesPartEntirely());
}

void tst_Plan::shippedStages_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<int>("count");

    QTest::newRow("the shop window") << KRHVC_STAGE_DIR "/shop-window.json" << 8;
    QTest::newRow("the station concourse") << KRHVC_STAGE_DIR "/station-concourse.json" << 6;
}

void tst_Plan::shippedStages()
{
    QFETCH(QString, fileName);
    QFETCH(int, count);

    QString error;
    const std::optional<Plan> plan = readPlan(fileName, {}, &error);
    QVERIFY2(plan, qUtf8Printable(error));
    QCOMPARE(plan->contents.size(), count);
    QVERIFY(plan->takesPartEntirely());
}

void tst_Plan::settings_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<int>("concurrent");
    QTest::addColumn<int>("limit");

    QTest::newRow("none") << QByteArray("{}") << 1 << 5000;
    QTest::newRow("given") << QByteArray(R"({"concurrent": 3, "event-sending-limit": "0"})") << 3
                           << 0;
    QTest::newRow("what the plug-in does not take from a host")
        << QByteArray(R"({"concurrent": 21, "event-sending-limit": -1})") << 1 << 5000;
}

void tst_Plan::settings()
{
    QFETCH(QByteArray, settings);
    QFETCH(int, concurrent);
    QFETCH(int, limit);

    const Plan plan = parse(R"({"screens": [{"id": 1, "plugindata": )" + settings + "}]}");
    QCOMPARE(plan.settings.concurrent, concurrent);
    QCOMPARE(plan.settings.eventSendingLimit, limit);
}

void tst_Plan::assignment_data()
{
    QTest::addColumn<QString>("assignment");
    QTest::addColumn<int>("concurrent");
    QTest::addColumn<QString>("error"); // its beginning; empty: taken over

    QTest::newRow("a value") << "concurrent=3" << 3 << "";
    QTest::newRow("capitals and blanks") << " Concurrent = 20 " << 20 << "";
    QTest::newRow("a switch") << "display-monitoring=true" << 2 << "";
    QTest::newRow("no value") << "concurrent" << 2 << "\"concurrent\" is not of the form KEY=VALUE";
    QTest::newRow("no key") << "=3" << 2 << "\"=3\" is not of the form KEY=VALUE";
    QTest::newRow("another key") << "parallel=3" << 2
                                 << "\"parallel\" is no setting; there are age-confidence, ";
    QTest::newRow("a value out of range")
        << "concurrent=21" << 2 << "\"21\" is no value for concurrent";
    QTest::newRow("no number") << "concurrent=two" << 2 << "\"two\" is no value for concurrent";
    QTest::newRow("no switch") << "display-monitoring=yes" << 2
                               << "\"yes\" is no value for display-monitoring";
}

void tst_Plan::assignment()
{
    QFETCH(QString, assignment);
    QFETCH(int, concurrent);
    QFETCH(QString, error);

    ScreenSettings settings;
    settings.concurrent = 2;
    QString actual;
    QCOMPARE(assignSetting(assignment, &settings, &actual), error.isEmpty());
    QCOMPARE(settings.concurrent, concurrent);
    QCOMPARE(actual.left(error.size()), error);
    QCOMPARE(actual.isEmpty(), error.isEmpty());
}

QTEST_GUILESS_MAIN(tst_Plan)

#include "tst_plan.moc"
