#include "demo/player/StageContent.h"
#include "demo/stage/StageFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

using namespace Player;
using namespace Stage;

class tst_StageFile : public QObject
{
    Q_OBJECT

private slots:
    void refusedText_data();
    void refusedText();
    void refusedFile_data();
    void refusedFile();
    void valuesAreLeftToThePlugin();
    void unknownKeysSurvive();
    void changedParameters();
    void equalValuesStayAsTheyAreWritten();
    void addedContent_data();
    void addedContent();
    void refusedContent_data();
    void refusedContent();
    void linkingScreens();
    void saved();
    void savedElsewhere();
    void unsaved_data();
    void unsaved();
    void screensAsAPluginSeesThem();
    void defaultScreen_data();
    void defaultScreen();
    void titles();
    void idleSequence();
    void contentCards();
    void longTexts();
    void shippedStage_data();
    void shippedStage();
};

namespace {

StageFile parse(const QByteArray &json)
{
    QString error;
    const std::optional<StageFile> stage
        = StageFile::fromJson(json, QStringLiteral("/stages/a.json"), &error);
    if (!stage)
        qWarning("%s", qUtf8Printable(error));
    return stage.value_or(StageFile());
}

} // namespace

void tst_StageFile::refusedText_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    // clang-format off
    QTest::newRow("no text at all") << QByteArray()
        << "s.json:1:1: illegal value";
    QTest::newRow("a name without its colon in line 3") << QByteArray("{\n  \"title\": \"x\",\n  \"screens\" []\n}")
        << "s.json:3:14: missing name separator";
    QTest::newRow("columns count characters, not bytes") << QByteArray("{ \"title\": \"\xc3\xbc\xc3\xbc\", \"screens\" []\n}")
        << "s.json:1:29: missing name separator";
    QTest::newRow("a list instead of an object") << QByteArray("[]")
        << "s.json:1:1: must be an object";
    QTest::newRow("a title that is a number") << QByteArray(R"({"title": 1, "screens": [{"id": 1}]})")
        << "s.json:1:2: title: must be a text";
    QTest::newRow("no screens") << QByteArray("{}")
        << "s.json:1:1: screens: is missing";
    QTest::newRow("screens that are no list") << QByteArray(R"({"screens": {}})")
        << "s.json:1:2: screens: must be a list";
    QTest::newRow("an empty list of screens") << QByteArray(R"({"screens": []})")
        << "s.json:1:2: screens: must hold at least one screen";
    QTest::newRow("a screen that is a number") << QByteArray(R"({"screens": [{"id": 1}, 2]})")
        << "s.json:1:25: screens[1]: must be an object";
    QTest::newRow("a screen without id") << QByteArray(R"({"screens": [{}]})")
        << "s.json:1:14: screens[0].id: is missing";
    QTest::newRow("an id that is a text") << QByteArray(R"({"screens": [{"id": "1"}]})")
        << "s.json:1:15: screens[0].id: must be a whole number";
    QTest::newRow("an id with a fraction") << QByteArray(R"({"screens": [{"id": 1.5}]})")
        << "s.json:1:15: screens[0].id: must be a whole number";
    QTest::newRow("an id beyond 32 bits") << QByteArray(R"({"screens": [{"id": 2147483648}]})")
        << "s.json:1:15: screens[0].id: must be a whole number";
    QTest::newRow("an id that is taken") << QByteArray(R"({"screens": [{"id": 1}, {"id": 2}, {"id": 1}]})")
        << "s.json:1:37: screens[2].id: 1 already belongs to screens[0]";
    QTest::newRow("a screen's name that is a list") << QByteArray(R"({"screens": [{"id": 1, "name": []}]})")
        << "s.json:1:24: screens[0].name: must be a text";
    QTest::newRow("plugindata that is a list") << QByteArray(R"({"screens": [{"id": 1, "plugindata": []}]})")
        << "s.json:1:24: screens[0].plugindata: must be an object";
    QTest::newRow("contents that are an object") << QByteArray(R"({"screens": [{"id": 1, "contents": {}}]})")
        << "s.json:1:24: screens[0].contents: must be a list";
    QTest::newRow("a content that is a text") << QByteArray(R"({"screens": [{"id": 1, "contents": ["x"]}]})")
        << "s.json:1:37: screens[0].contents[0]: must be an object";
    QTest::newRow("a content without params") << QByteArray(R"({"screens": [{"id": 0}, {"id": 1, "contents": [{"params": {}}, {"params": {}}, {"type": 8}]}]})")
        << "s.json:1:80: screens[1].contents[2].params: is missing";
    QTest::newRow("params that are a list") << QByteArray(R"({"screens": [{"id": 1, "contents": [{"params": []}]}]})")
        << "s.json:1:38: screens[0].contents[0].params: must be an object";
    QTest::newRow("a content's name that is a number") << QByteArray(R"({"screens": [{"id": 1, "contents": [{"name": 7, "params": {}}]}]})")
        << "s.json:1:38: screens[0].contents[0].name: must be a text";
    QTest::newRow("a card that is a text") << QByteArray(R"({"screens": [{"id": 1, "contents": [{"params": {}, "card": "red"}]}]})")
        << "s.json:1:52: screens[0].contents[0].card: must be an object";
    QTest::newRow("a card's title that is a number") << QByteArray(R"({"screens": [{"id": 1, "contents": [{"params": {}, "card": {"title": 1}}]}]})")
        << "s.json:1:61: screens[0].contents[0].card.title: must be a text";
    QTest::newRow("a card's picture that is a number") << QByteArray(R"({"screens": [{"id": 1, "contents": [{"params": {}, "card": {"picture": 1}}]}]})")
        << "s.json:1:61: screens[0].contents[0].card.picture: must be a text";
    QTest::newRow("a colour that does not exist") << QByteArray(R"({"screens": [{"id": 1, "contents": [{"params": {}, "card": {"color": "redd"}}]}]})")
        << "s.json:1:61: screens[0].contents[0].card.color: \"redd\" is not a colour";
    QTest::newRow("a duration that is a text") << QByteArray(R"({"screens": [{"id": 1, "contents": [{"params": {}, "card": {"duration": "1"}}]}]})")
        << "s.json:1:61: screens[0].contents[0].card.duration: must be a number from 0 to 86400";
    QTest::newRow("a negative duration") << QByteArray(R"({"screens": [{"id": 1, "contents": [{"params": {}, "card": {"duration": -1}}]}]})")
        << "s.json:1:61: screens[0].contents[0].card.duration: must be a number from 0 to 86400";
    QTest::newRow("an idle sequence that is a number") << QByteArray(R"({"screens": [{"id": 1, "idle": 1}]})")
        << "s.json:1:24: screens[0].idle: must be an object";
    QTest::newRow("no number of the idle sequence") << QByteArray(R"({"screens": [{"id": 1, "idle": {"after": 2}}]})")
        << "s.json:1:32: screens[0].idle.sequence: is missing";
    QTest::newRow("an idle sequence 0") << QByteArray(R"({"screens": [{"id": 1, "idle": {"sequence": 0}}]})")
        << "s.json:1:33: screens[0].idle.sequence: must be a whole number from 1 to 1000";
    QTest::newRow("an idle time with a fraction") << QByteArray(R"({"screens": [{"id": 1, "idle": {"sequence": 1, "after": 0.5}}]})")
        << "s.json:1:48: screens[0].idle.after: must be a whole number from 1 to 86400";
    QTest::newRow("events that are an object") << QByteArray(R"({"screens": [{"id": 1, "event": {}}]})")
        << "s.json:1:24: screens[0].event: must be a list";
    QTest::newRow("an event that is a number") << QByteArray(R"({"screens": [{"id": 1, "event": [{}, 3]}]})")
        << "s.json:1:38: screens[0].event[1]: must be an object";
    QTest::newRow("a screen to play that is a text") << QByteArray(R"({"screen": "1", "screens": [{"id": 1}]})")
        << "s.json:1:2: screen: must be a whole number";
    QTest::newRow("a screen to play that does not exist") << QByteArray(R"({"screen": 2, "screens": [{"id": 1}]})")
        << "s.json:1:2: screen: there is no screen 2";
    const QByteArray many = QByteArray("{},").repeated(1000);
    QTest::newRow("too many screens") << QByteArray(R"({"screens": [)" + many + "{}]}")
        << "s.json:1:2: screens: must not hold more than 1000 entries";
    QTest::newRow("too many contents") << QByteArray(R"({"screens": [{"id": 1, "contents": [)" + many + "{}]}]}")
        << "s.json:1:24: screens[0].contents: must not hold more than 1000 entries";
    QTest::newRow("too many events") << QByteArray(R"({"screens": [{"id": 1, "event": [)" + many + "{}]}]}")
        << "s.json:1:24: screens[0].event: must not hold more than 1000 entries";
    QTest::newRow("too large a file") << QByteArray(R"({"screens": [{"id": 1}]})").leftJustified(16 * 1024 * 1024 + 1)
        << "s.json: is larger than 16 MiB";
    // clang-format on
}

void tst_StageFile::refusedText()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, error);

    QString actual;
    QVERIFY(!StageFile::fromJson(json, QStringLiteral("s.json"), &actual));
    QCOMPARE(actual, error);
}

void tst_StageFile::refusedFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");

    QTest::newRow("a missing file") << "missing.json"
                                    << "no such file";
    QTest::newRow("a directory") << "."
                                 << "is not a file";
}

void tst_StageFile::refusedFile()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);

    const QTemporaryDir directory;
    const QString fileName = directory.filePath(name);
    QString error;
    QVERIFY(!StageFile::read(fileName, &error));
    QCOMPARE(error, QStringLiteral("%1: %2").arg(fileName, reason));
}

void tst_StageFile::valuesAreLeftToThePlugin()
{
    const StageFile stage = parse(R"({"screens": [{"id": 1,
        "plugindata": {"interval": "soon", "concurrent": -7},
        "contents": [{"type": "x", "params": {"age-min": "young", "gender": 3}}],
        "event": [{"type": null, "seq": 4}]}]})");
    const QVariantMap parameters = stage.screenParameters(1);
    QCOMPARE(parameters.keys(),
        QStringList(
            {QStringLiteral("contents"), QStringLiteral("id"), QStringLiteral("plugindata")}));
    const QVariantMap settings = parameters.value(QStringLiteral("plugindata")).toMap();
    QCOMPARE(settings.value(QStringLiteral("interval")).toString(), QStringLiteral("soon"));
    QCOMPARE(settings.value(QStringLiteral("concurrent")).toInt(), -7);
    const QVariantMap content
        = parameters.value(QStringLiteral("contents")).toList().value(0).toMap();
    QCOMPARE(content.value(QStringLiteral("type")).toString(), QStringLiteral("x"));
    const QVariantMap params = content.value(QStringLiteral("params")).toMap();
    QCOMPARE(params.value(QStringLiteral("age-min")).toString(), QStringLiteral("young"));
    QCOMPARE(params.value(QStringLiteral("gender")).toInt(), 3);
}

void tst_StageFile::unknownKeysSurvive()
{
    const QByteArray json = R"({"author": {"name": "x", "tags": [1, null, true, 0.5]}, "screens": [
        {"id": 1, "transition": "fade", "plugindata": {"foreign": [[]]},
         "contents": [{"type": 8, "note": "n", "params": {"name": "A", "extra": {}},
                       "card": {"color": "red", "sound": "a.ogg"}}],
         "event": [{"type": 2, "comment": ""}]}]})";
    QCOMPARE(QJsonDocument::fromJson(parse(json).toJson()), QJsonDocument::fromJson(json));
}

void tst_StageFile::changedParameters()
{
    StageFile stage = parse(R"({"screens": [{"id": 1, "name": "One"},
        {"id": 2, "name": "Two", "foreign": 1, "plugindata": {"interval": 500},
         "contents": [{"type": 8, "params": {"name": "A"}, "card": {"title": "T"}}],
         "event": [{"type": 2}]}]})");
    QVariantMap parameters = stage.screenParameters(2);
    parameters.insert(QStringLiteral("id"), 77); // a screen's id is not the plug-in's to change
    parameters.insert(QStringLiteral("plugindata"),
        QVariantMap{
            {QStringLiteral("interval"), 900}, {QStringLiteral("display-monitoring"), true}});
    QVariantList contents = parameters.value(QStringLiteral("contents")).toList();
    contents << QVariantMap{{QStringLiteral("type"), 8},
        {QStringLiteral("params"), QVariantMap{{QStringLiteral("name"), QStringLiteral("B")}}}};
    parameters.insert(QStringLiteral("contents"), contents);
    stage.setScreenParameters(2, parameters);

    const QByteArray expected = R"({"screens": [{"id": 1, "name": "One"},
        {"id": 2, "name": "Two", "foreign": 1,
         "plugindata": {"interval": 900, "display-monitoring": true},
         "contents": [{"type": 8, "params": {"name": "A"}, "card": {"title": "T"}},
                      {"type": 8, "params": {"name": "B"}}],
         "event": [{"type": 2}]}]})";
    QCOMPARE(QJsonDocument::fromJson(stage.toJson()), QJsonDocument::fromJson(expected));

    const QByteArray before = stage.toJson();
    stage.setScreenParameters(3, parameters);
    QCOMPARE(stage.toJson(), before);
}

void tst_StageFile::equalValuesStayAsTheyAreWritten()
{
    const QByteArray json = R"({"screens": [{"id": 1,
        "plugindata": {"interval": 500, "big": 9007199254740991, "small": 0.1, "none": null},
        "contents": [{"type": 8, "params": {"list": [1, null, {"a": 1e300}]}}]}]})";
    StageFile stage = parse(json);
    stage.setScreenParameters(1, stage.screenParameters(1));
    QCOMPARE(QJsonDocument::fromJson(stage.toJson()), QJsonDocument::fromJson(json));

    QVariantMap parameters = stage.screenParameters(1);
    QVariantMap settings = parameters.value(QStringLiteral("plugindata")).toMap();
    settings.insert(QStringLiteral("interval"), 250);
    settings.remove(QStringLiteral("none"));
    settings.insert(QStringLiteral("empty"), QVariant());
    parameters.insert(QStringLiteral("plugindata"), settings);
    stage.setScreenParameters(1, parameters);
    const QByteArray expected = R"({"screens": [{"id": 1,
        "plugindata": {"interval": 250, "big": 9007199254740991, "small": 0.1, "empty": null},
        "contents": [{"type": 8, "params": {"list": [1, null, {"a": 1e300}]}}]}]})";
    QCOMPARE(QJsonDocument::fromJson(stage.toJson()), QJsonDocument::fromJson(expected));
}

void tst_StageFile::addedContent_data()
{
    QTest::addColumn<QByteArray>("events"); // of screen 1, which has two contents
    QTest::addColumn<QByteArray>("others"); // the other screens
    QTest::addColumn<QByteArray>("expectedEvents");
    QTest::addColumn<QByteArray>("expectedOthers");

    // clang-format off
    // It stands for as many sequences as the screen has valid contents, which only the plug-in knows.
    const QByteArray open = R"([{"type": 2, "direction": 1, "seq": []}])";
    const QByteArray listed = R"([{"type": 2, "direction": 1, "seq": []}, {"type": 2, "direction": 1, "seq": [3]}])";
    const QByteArray linked = R"(, {"id": 2, "event": [{"type": 2, "id": 1, "screenseq": 3}]})";
    QTest::newRow("an event for all sequences may stand for too few")
        << open << linked << listed << linked;
    QTest::newRow("an event without a list may stand for too few")
        << QByteArray(R"([{"type": 2, "direction": 1}])") << linked
        << QByteArray(R"([{"type": 2, "direction": 1}, {"type": 2, "direction": 1, "seq": [3]}])") << linked;
    QTest::newRow("an event that lists it already opens it")
        << QByteArray(R"([{"type": 5, "direction": "1", "seq": [1, "3"]}])") << linked
        << QByteArray(R"([{"type": 5, "direction": "1", "seq": [1, "3"]}])") << linked;
    QTest::newRow("the first opening event takes it into its list")
        << QByteArray(R"([{"x": 1}, {"type": 3, "direction": 1, "seq": [1], "note": "n"}, {"type": 2, "direction": 1, "seq": [2]}])") << linked
        << QByteArray(R"([{"x": 1}, {"type": 3, "direction": 1, "seq": [1, 3], "note": "n"}, {"type": 2, "direction": 1, "seq": [2]}])") << linked;
    QTest::newRow("an event for all sequences gets no list, which would shut out the others")
        << QByteArray(R"([{"type": 2, "direction": 1, "seq": []}, {"type": 2, "direction": 1, "seq": [1]}])") << linked
        << QByteArray(R"([{"type": 2, "direction": 1, "seq": []}, {"type": 2, "direction": 1, "seq": [1, 3]}])") << linked;
    QTest::newRow("an event of type 1 does not open")
        << QByteArray(R"([{"type": 1, "direction": 1, "seq": []}])") << linked
        << QByteArray(R"([{"type": 1, "direction": 1, "seq": []}, {"type": 2, "direction": 1, "seq": [3]}])") << linked;
    QTest::newRow("an event of another direction does not open")
        << QByteArray(R"([{"type": 2, "direction": 0, "seq": [3]}])") << linked
        << QByteArray(R"([{"type": 2, "direction": 0, "seq": [3]}, {"type": 2, "direction": 1, "seq": [3]}])") << linked;
    QTest::newRow("no events at all")
        << QByteArray("[]") << linked
        << QByteArray(R"([{"type": 2, "direction": 1, "seq": [3]}])") << linked;
    QTest::newRow("the only screen cannot be linked to")
        << open << QByteArray() << listed << QByteArray();
    QTest::newRow("the link follows that to the nearest sequence, on its screen")
        << open << QByteArray(R"(, {"id": 2, "event": [{"type": 2, "direction": 0, "id": 1, "screenseq": 1}]},
            {"id": 3, "event": [{"type": 4, "direction": 2, "seq": [7], "id": 1, "screenseq": 2, "note": "n"}, {"last": true}]})")
        << listed << QByteArray(R"(, {"id": 2, "event": [{"type": 2, "direction": 0, "id": 1, "screenseq": 1}]},
            {"id": 3, "event": [{"type": 4, "direction": 2, "seq": [7], "id": 1, "screenseq": 2, "note": "n"}, {"last": true},
                                {"type": 4, "direction": 2, "seq": [7], "id": 1, "screenseq": 3}]})");
    QTest::newRow("a link that says less is followed in that")
        << open << QByteArray(R"(, {"id": 2, "event": [{"type": 2, "id": 1, "screenseq": 1}]})")
        << listed << QByteArray(R"(, {"id": 2, "event": [{"type": 2, "id": 1, "screenseq": 1}, {"type": 2, "id": 1, "screenseq": 3}]})");
    QTest::newRow("without a link to follow the first other screen gets one")
        << open << QByteArray(R"(, {"id": 9}, {"id": 8, "event": [{"type": 2, "id": 7, "screenseq": 3}, {"id": 1, "screenseq": 3}]})")
        << listed << QByteArray(R"(, {"id": 9, "event": [{"type": 2, "direction": 0, "seq": [], "id": 1, "screenseq": 3}]},
            {"id": 8, "event": [{"type": 2, "id": 7, "screenseq": 3}, {"id": 1, "screenseq": 3}]})");
    QTest::newRow("the screen's own event is no link")
        << QByteArray(R"([{"type": 2, "direction": 1, "seq": [3], "id": 1, "screenseq": 3}])") << QByteArray(R"(, {"id": 2})")
        << QByteArray(R"([{"type": 2, "direction": 1, "seq": [3], "id": 1, "screenseq": 3}])")
        << QByteArray(R"(, {"id": 2, "event": [{"type": 2, "direction": 0, "seq": [], "id": 1, "screenseq": 3}]})");
    // clang-format on
}

void tst_StageFile::addedContent()
{
    QFETCH(QByteArray, events);
    QFETCH(QByteArray, others);
    QFETCH(QByteArray, expectedEvents);
    QFETCH(QByteArray, expectedOthers);

    const QByteArray start = R"({"kept": 1, "screens": [{"id": 1, "kept": 2, "contents": [
        {"params": {}, "kept": 3}, {"params": {}})";
    const QByteArray added = R"(, {"type": 8, "name": "New", "params": {"age-min": 3}})";
    StageFile stage = parse(start + R"(], "event": )" + events + '}' + others + "]}");
    QString error;
    const QVariantMap entry{{QStringLiteral("type"), 8},
        {QStringLiteral("name"), QStringLiteral("New")},
        {QStringLiteral("params"), QVariantMap{{QStringLiteral("age-min"), 3}}}};
    QVERIFY(stage.addContent(1, 2, entry, &error));
    QCOMPARE(error, QString());
    QCOMPARE(QJsonDocument::fromJson(stage.toJson()),
        QJsonDocument::fromJson(
            start + added + R"(], "event": )" + expectedEvents + '}' + expectedOthers + "]}"));
    const StageContent content = stageContents(stage, 1).value(2);
    QCOMPARE(content.number, 3);
    QCOMPARE(content.title, QStringLiteral("New"));
    QVERIFY(content.color.isValid());
}

void tst_StageFile::refusedContent_data()
{
    QTest::addColumn<int>("screen");
    QTest::addColumn<int>("index");
    QTest::addColumn<QVariant>("entry");
    QTest::addColumn<QString>("error");

    const QVariant good = QVariantMap{{QStringLiteral("params"), QVariantMap()}};
    QTest::newRow("a screen that does not exist") << 7 << 1 << good << "there is no screen 7";
    QTest::newRow("an index that is taken") << 1 << 0 << good << "the next content is #2";
    QTest::newRow("an index behind a gap") << 1 << 2 << good << "the next content is #2";
    QTest::newRow("a negative index") << 1 << -1 << good << "the next content is #2";
    QTest::newRow("an entry that is no map")
        << 1 << 1 << QVariant(3) << "contents[1]: must be an object";
    QTest::newRow("no entry") << 1 << 1 << QVariant() << "contents[1]: must be an object";
    QTest::newRow("an entry without params")
        << 1 << 1 << QVariant(QVariantMap{{QStringLiteral("type"), 8}})
        << "contents[1].params: is missing";
}

void tst_StageFile::refusedContent()
{
    QFETCH(int, screen);
    QFETCH(int, index);
    QFETCH(QVariant, entry);
    QFETCH(QString, error);

    StageFile stage = parse(R"({"screens": [{"id": 1, "contents": [{"params": {}}]}, {"id": 2}]})");
    const QByteArray before = stage.toJson();
    QString actual;
    QVERIFY(!stage.addContent(screen, index, entry, &actual));
    QCOMPARE(actual, error);
    QCOMPARE(stage.toJson(), before);
}

void tst_StageFile::linkingScreens()
{
    const StageFile stage
        = parse(R"({"screens": [{"id": 1, "event": [{"type": 2, "id": 1, "screenseq": 1}]},
        {"id": 5, "event": [{"type": 2, "id": 1, "screenseq": 1}, {"type": 2, "id": 1, "screenseq": 1}]},
        {"id": 4, "event": [{"type": "2", "id": "1", "screenseq": "1"}]},
        {"id": 3, "event": [{"id": 1, "screenseq": 1}, {"type": 2, "id": 1, "screenseq": 2}]}]})");
    QCOMPARE(stage.linkingScreens(1, 1), QList<int>({5, 4}));
    QCOMPARE(stage.linkingScreens(1, 2), QList<int>({3}));
    QCOMPARE(stage.linkingScreens(1, 3), QList<int>());
}

void tst_StageFile::saved()
{
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("s.json"));
    const QByteArray json = R"({"author": {"tags": [1, null, true, 0.5]}, "screens": [
        {"id": 1, "transition": "fade", "plugindata": {"foreign": [[]], "interval": 7},
         "contents": [{"type": 8, "note": "n", "params": {"name": "\u00c4", "extra": {}},
                       "card": {"color": "red", "sound": "a.ogg", "picture": "p/a.svg"}}],
         "event": [{"type": 2, "comment": ""}]}]})";
    QString error;
    StageFile stage = StageFile::fromJson(json, fileName, &error).value_or(StageFile());
    QVERIFY(stage.save(fileName, &error));
    QCOMPARE(error, QString());

    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray written = file.readAll();
    QCOMPARE(QJsonDocument::fromJson(written), QJsonDocument::fromJson(json));
    QVERIFY(written.contains("\n    \"screens\": [\n"));
    const std::optional<StageFile> again = StageFile::read(fileName, &error);
    QVERIFY2(again, qUtf8Printable(error));
    QCOMPARE(again->toJson(), stage.toJson());
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files), QStringList{QStringLiteral("s.json")});
}

void tst_StageFile::savedElsewhere()
{
    const QTemporaryDir directory;
    QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("deep")));
    QString error;
    StageFile stage = StageFile::fromJson(R"({"screens": [{"id": 1}, {"id": 2, "contents": [
            {"params": {}, "card": {"picture": "p/a.svg"}}, {"params": {}, "card": {}},
            {"params": {}, "card": {"picture": ":/b.svg"}}, {"params": {}}]}]})",
        directory.filePath(QStringLiteral("a.json")), &error)
                          .value_or(StageFile());
    const QString picture = stageContents(stage, 2).value(0).picture;
    QCOMPARE(picture, directory.filePath(QStringLiteral("p/a.svg")));

    const QString fileName = directory.filePath(QStringLiteral("deep/b.json"));
    QVERIFY(stage.save(fileName, &error));
    QCOMPARE(stage.fileName(), fileName);
    QCOMPARE(stage.title(), QStringLiteral("b"));
    QCOMPARE(QFileInfo(stageContents(stage, 2).value(0).picture).absoluteFilePath(),
        QFileInfo(picture).absoluteFilePath());
    const QByteArray expected = R"({"screens": [{"id": 1}, {"id": 2, "contents": [
        {"params": {}, "card": {"picture": "../p/a.svg"}}, {"params": {}, "card": {}},
        {"params": {}, "card": {"picture": ":/b.svg"}}, {"params": {}}]}]})";
    QCOMPARE(QJsonDocument::fromJson(stage.toJson()), QJsonDocument::fromJson(expected));
}

void tst_StageFile::unsaved_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("content"); // what a plug-in made of the only one; empty: nothing
    QTest::addColumn<QString>("error"); // %1: the file; empty: the system's

    QTest::newRow("a directory that does not exist") << "none/s.json"
                                                     << ""
                                                     << "";
    QTest::newRow("a name that is a directory's") << "."
                                                  << ""
                                                  << "%1: Filename refers to a directory";
    QTest::newRow("a content that could not be read again")
        << "s.json"
        << "text"
        << "%1: screens[0].contents[0]: must be an object";
    QTest::newRow("a content that would make the file too large to be read again")
        << "s.json" << QString(16 * 1024 * 1024, QLatin1Char('x')) << "%1: is larger than 16 MiB";
}

void tst_StageFile::unsaved()
{
    QFETCH(QString, name);
    QFETCH(QString, content);
    QFETCH(QString, error);

    const QTemporaryDir directory;
    StageFile stage = parse(R"({"screens": [{"id": 1, "contents": [
        {"params": {}, "card": {"picture": "p/a.svg"}}]}]})");
    if (!content.isEmpty())
        stage.setScreenParameters(1, {{QStringLiteral("contents"), QVariantList{content}}});
    const QByteArray before = stage.toJson();
    const QString fileName = directory.path() + QLatin1Char('/') + name;
    if (error.isEmpty()) {
        QFile file(fileName);
        QVERIFY(!file.open(QIODevice::WriteOnly));
        error = QLatin1String("%1: ") + file.errorString();
    }
    QString actual;
    QVERIFY(!stage.save(fileName, &actual));
    QCOMPARE(actual, error.arg(fileName));
    QCOMPARE(stage.toJson(), before);
    QCOMPARE(stage.fileName(), QStringLiteral("/stages/a.json"));
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files), QStringList());
}

void tst_StageFile::screensAsAPluginSeesThem()
{
    const StageFile stage = parse(R"({"screens": [
        {"id": 7, "event": [{"type": 2, "direction": 1, "seq": [1, 2]}]}, {"id": -3, "x": 1}]})");
    QCOMPARE(stage.screenIds(), QList<int>({7, -3}));
    QVERIFY(stage.hasScreen(-3));
    QVERIFY(!stage.hasScreen(3));
    const QMap<int, QVariantMap> screens = stage.screens();
    QCOMPARE(screens.keys(), QList<int>({-3, 7}));
    QCOMPARE(screens.value(-3).value(QStringLiteral("x")).toInt(), 1);
    const QVariantMap event
        = screens.value(7).value(QStringLiteral("event")).toList().value(0).toMap();
    QCOMPARE(event.value(QStringLiteral("direction")).toInt(), 1);
    QCOMPARE(event.value(QStringLiteral("seq")).toList().size(), 2);
}

void tst_StageFile::defaultScreen_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("screen");

    QTest::newRow("the one that the stage names") << QByteArray(
        R"({"screen": 5, "screens": [{"id": 4, "contents": [{"params": {}}]}, {"id": 5}]})")
                                                  << 5;
    QTest::newRow("the first with contents") << QByteArray(
        R"({"screens": [{"id": 4, "contents": []}, {"id": 5, "contents": [{"params": {}}]}]})")
                                             << 5;
    QTest::newRow("the first when none has contents")
        << QByteArray(R"({"screens": [{"id": 4}, {"id": 5}]})") << 4;
}

void tst_StageFile::defaultScreen()
{
    QFETCH(QByteArray, json);
    QFETCH(int, screen);

    QCOMPARE(parse(json).defaultScreenId(), screen);
}

void tst_StageFile::titles()
{
    const StageFile named = parse(R"({"title": "Shop", "screens": [{"id": 1, "name": "Door"}]})");
    QCOMPARE(named.title(), QStringLiteral("Shop"));
    QCOMPARE(named.screenName(1), QStringLiteral("Door"));
    const StageFile nameless = parse(R"({"screens": [{"id": 1}]})");
    QCOMPARE(nameless.title(), QStringLiteral("a"));
    QCOMPARE(nameless.screenName(1), QString());
}

void tst_StageFile::idleSequence()
{
    const StageFile stage = parse(R"({"screens": [{"id": 1},
        {"id": 2, "idle": {"sequence": 3, "note": "kept"}},
        {"id": 4, "idle": {"sequence": 1, "after": 5}}]})");
    QCOMPARE(stage.idleSequence(1).sequence, 0);
    QCOMPARE(stage.idleSequence(2).sequence, 3);
    QCOMPARE(stage.idleSequence(2).after, 20);
    QCOMPARE(stage.idleSequence(4).sequence, 1);
    QCOMPARE(stage.idleSequence(4).after, 5);
    QCOMPARE(stage.idleSequence(7).sequence, 0); // there is no such screen
    QVERIFY(stage.toJson().contains("kept"));
}

void tst_StageFile::contentCards()
{
    const StageFile stage = parse(R"({"screens": [{"id": 1, "contents": [
        {"params": {"name": "From params"}},
        {"name": "Own", "params": {"name": "From params"},
         "card": {"title": "T", "subtitle": "S", "color": "#102030", "picture": "p/x.svg",
                  "duration": 2.5}},
        {"params": {}}]}]})");
    const QVector<StageContent> contents = stageContents(stage, 1);
    QCOMPARE(contents.size(), 3);

    QCOMPARE(contents.at(0).number, 1);
    QCOMPARE(contents.at(0).name, QStringLiteral("From params"));
    QCOMPARE(contents.at(0).title, QStringLiteral("From params"));
    QCOMPARE(contents.at(0).subtitle, QString());
    QVERIFY(contents.at(0).color.isValid());
    QCOMPARE(contents.at(0).picture, QString());
    QCOMPARE(contents.at(0).duration, qint64(10000));

    QCOMPARE(contents.at(1).number, 2);
    QCOMPARE(contents.at(1).name, QStringLiteral("Own"));
    QCOMPARE(contents.at(1).title, QStringLiteral("T"));
    QCOMPARE(contents.at(1).subtitle, QStringLiteral("S"));
    QCOMPARE(contents.at(1).color, QColor(0x10, 0x20, 0x30));
    QCOMPARE(contents.at(1).duration, qint64(2500));
    QCOMPARE(
        contents.at(1).picture, QFileInfo(QStringLiteral("/stages/p/x.svg")).absoluteFilePath());

    QCOMPARE(contents.at(2).number, 3);
    QCOMPARE(contents.at(2).name, QString());
    QVERIFY(contents.at(2).color != contents.at(0).color);
}

void tst_StageFile::longTexts()
{
    const QByteArray most(500, 'x');
    const QByteArray more(1000 * 1000, 'x');
    StageFile stage = parse(R"({"title": ")" + more + R"(", "screens": [{"id": 1, "name": ")" + more
        + R"(", "contents": [
            {"name": ")"
        + more + R"(", "params": {}, "card": {"subtitle": ")" + more + R"("}},
            {"params": {"name": ")"
        + more + R"("}, "card": {"title": ")" + most + R"("}}]}]})");
    const QByteArray before = stage.toJson();
    QVERIFY(before.size() > 5 * more.size()); // the file keeps them

    const QString shown = QString(499, QLatin1Char('x')) + QChar(0x2026);
    QCOMPARE(stage.title(), shown);
    QCOMPARE(stage.screenName(1), shown);
    const QVector<StageContent> contents = stageContents(stage, 1);
    QCOMPARE(contents.at(0).name, shown);
    QCOMPARE(contents.at(0).title, shown);
    QCOMPARE(contents.at(0).subtitle, shown);
    QCOMPARE(contents.at(1).name, shown);
    QCOMPARE(contents.at(1).title, QString::fromLatin1(most));
}

void tst_StageFile::shippedStage_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<int>("count");

    QTest::newRow("the shop window") << KRHVC_STAGE_DIR "/shop-window.json" << 8;
    QTest::newRow("the station concourse") << KRHVC_STAGE_DIR "/station-concourse.json" << 6;
}

void tst_StageFile::shippedStage()
{
    QFETCH(QString, fileName);
    QFETCH(int, count);

    QString error;
    const std::optional<StageFile> stage = StageFile::read(fileName, &error);
    QVERIFY2(stage, qUtf8Printable(error));
    const int screen = stage->defaultScreenId();
    const QVector<StageContent> contents = stageContents(*stage, screen);
    QCOMPARE(contents.size(), count);
    for (const StageContent &content : contents) {
        QVERIFY(!content.name.isEmpty());
        QVERIFY2(QFile::exists(content.picture), qUtf8Printable(content.picture));
    }

    // A sequence can only be chosen when another screen links to it.
    QSet<int> linked;
    const QMap<int, QVariantMap> screens = stage->screens();
    for (auto it = screens.cbegin(); it != screens.cend(); ++it) {
        const QVariantList events = it.value().value(QStringLiteral("event")).toList();
        for (const QVariant &event : events) {
            const QVariantMap map = event.toMap();
            if (it.key() != screen && map.value(QStringLiteral("id")).toInt() == screen)
                linked << map.value(QStringLiteral("screenseq")).toInt();
        }
    }
    QSet<int> all;
    for (int number = 1; number <= count; ++number)
        all << number;
    QCOMPARE(linked, all);
}

QTEST_GUILESS_MAIN(tst_StageFile)

#include "tst_stagefile.moc"
