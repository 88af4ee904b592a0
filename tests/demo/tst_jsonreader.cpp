#include "demo/support/JsonReader.h"

#include <QTest>

#include <limits>

using namespace Demo;

class tst_JsonReader : public QObject
{
    Q_OBJECT

private slots:
    void place_data();
    void place();
    void placeInATextThatDoesNotParse_data();
    void placeInATextThatDoesNotParse();
    void message_data();
    void message();
    void values();
    void absentValues();
    void problem_data();
    void problem();
    void firstProblemStays();
};

namespace {

/// A path as in "a[1].b", whose keys have none of these signs.
JsonPath pathFromText(const QString &text)
{
    JsonPath path;
    const QStringList steps
        = QString(text).replace(QLatin1Char('['), QLatin1String(".[")).split(QLatin1Char('.'));
    for (const QString &step : steps) {
        if (step.startsWith(QLatin1Char('[')))
            path = path.element(step.mid(1).chopped(1).toInt());
        else if (!step.isEmpty())
            path = path.key(step);
    }
    return path;
}

QString placeOf(const JsonPath &path, const QByteArray &json)
{
    JsonProblem problem;
    problem.placeAt(json, path.offsetIn(json));
    return QStringLiteral("%1:%2").arg(problem.line).arg(problem.column);
}

} // namespace

void tst_JsonReader::place_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected"); // line and column

    const auto row
        = [](const char *name, const QByteArray &json, const QString &path, const char *expected) {
              QTest::newRow(name) << json << path << QString::fromLatin1(expected);
          };
    const QString a = QStringLiteral("a");
    row("the whole text", "{}", QString(), "1:1");
    row("the whole text behind blanks", "\n\t {}", QString(), "2:3");
    row("a key", R"({"a": 1})", a, "1:2");
    row("a key with blanks around it", "{\n  \"b\" :\t1 ,\n  \"a\" : 2\n}", a, "3:3");
    row("a key behind line ends of another system", "{\r\n\"b\": 1,\r\n\"a\": 2}", a, "3:1");
    row("a key of an inner object", R"({"a": 1, "b": {"a": 2}})", QStringLiteral("b.a"), "1:16");
    row("an element", R"({"a": [1, {"a": 2}, 3]})", QStringLiteral("a[2]"), "1:21");
    row("a list in a list", "[[1, 2],\n [3, 4]]", QStringLiteral("[1][1]"), "2:6");
    row("a key behind values of every kind",
        R"({"b": [{}, []], "c": {"d": null}, "e": -1.5e3, "f": true, "g": "", "a": 0})", a, "1:68");
    row("signs of the language in texts", R"({"[{,": "}]\",\\", "a": 1})", a, "1:20");
    row("a key that is a text elsewhere", R"({"b": "a", "c": ["a"], "a": 1})", a, "1:24");
    row("a key in other letters", R"({"A": 1, "a": 2})", a, "1:10");
    row("a key that is written with escapes", R"({"\u0061": 1})", a, "1:2");
    row("a key beyond ASCII", "{\"b\": 1, \"\xc3\xa4\": 2}", QStringLiteral("\u00e4"), "1:10");
    row("columns count characters, not bytes", "{\"b\": \"\xc3\xa4\xc3\xb6\", \"a\": 2}", a,
        "1:13");
    row("a key behind a NUL", QByteArray("{\"b\": \"\0\", \"a\": 2}", 17), a, "1:12");
    row("a key with a NUL", QByteArray("{\"b\": 1, \"a\0\": 2}", 17), a + QChar(0), "1:10");
    row("of one key twice the last, which counts", R"({"a": 1, "a": 2})", a, "1:10");
    row("a byte order mark is no character", "\xef\xbb\xbf{\"a\": 1}", a, "1:2");
    row("a missing key: the object", R"({"b": {"c": 1}})", QStringLiteral("b.a"), "1:7");
    row("a missing key of an empty object", "{\n }", a, "1:1");
    row("a missing element: the list", R"({"a": [1]})", QStringLiteral("a[1]"), "1:7");
    row("an element of an empty list", R"({"a": []})", QStringLiteral("a[0]"), "1:7");
    row("a key of what is no object", R"({"b": [1]})", QStringLiteral("b.a"), "1:7");
    row("far inside", QByteArray("[").repeated(500) + QByteArray("]").repeated(500),
        QStringLiteral("[0]").repeated(499), "1:500");
}

void tst_JsonReader::place()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, path);
    QFETCH(QString, expected);

    QCOMPARE(placeOf(pathFromText(path), json), expected);
}

void tst_JsonReader::placeInATextThatDoesNotParse_data()
{
    QTest::addColumn<QByteArray>("json");

    for (const char *const json : {"", " ", "{", "{\"", "{\"a", "{\"a\\", "{\"a\"", "{\"a\":",
             "{\"a\": \"\\", "{\"a\": [", "{\"a\": [1,", "{\"a\": [\"", "{a}", "{,}", "[[", "]"})
        QTest::newRow(*json ? json : "nothing") << QByteArray(json);
}

void tst_JsonReader::placeInATextThatDoesNotParse()
{
    QFETCH(QByteArray, json);

    for (const QString &path : {QStringLiteral("a"), QStringLiteral("a[1]"), QStringLiteral("[1]")})
        QVERIFY(pathFromText(path).offsetIn(json) <= json.size());
}

void tst_JsonReader::message_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("expected");

    QTest::newRow("a place and a key")
        << "viewers[2].path[0].at" << 3 << "s.json:3:14: viewers[2].path[0].at: is wrong";
    QTest::newRow("a place alone") << "" << 3 << "s.json:3:14: is wrong";
    QTest::newRow("a key alone") << "[1].a" << 0 << "s.json: [1].a: is wrong";
    QTest::newRow("neither") << "" << 0 << "s.json: is wrong";
}

void tst_JsonReader::message()
{
    QFETCH(QString, path);
    QFETCH(int, line);
    QFETCH(QString, expected);

    JsonProblem problem;
    problem.set(pathFromText(path), QStringLiteral("is wrong"));
    problem.line = line;
    problem.column = 14;
    QCOMPARE(problem.message(QStringLiteral("s.json")), expected);
}

void tst_JsonReader::values()
{
    const QByteArray json = R"({"text": "x", "truth": true, "id": -2147483648, "age": 7,
        "seed": 4294967295, "share": 0.25, "ports": [1, 2], "lines": ["a", ""],
        "inner": {"id": 3}, "list": [{"id": 4}, {"id": 5}], "null": null})";
    const JsonProblem problem = readJson(json, [](JsonReader &reader) {
        QCOMPARE(reader.values().size(), 11);
        QCOMPARE(reader.text(QStringLiteral("text")), QStringLiteral("x"));
        QCOMPARE(reader.values().size(), 10);
        QCOMPARE(reader.boolean(QStringLiteral("truth"), false), true);
        QCOMPARE(reader.integer(QStringLiteral("id")), std::numeric_limits<int>::min());
        QCOMPARE(reader.integer(QStringLiteral("age"), 1, 0, 7), 7);
        QCOMPARE(reader.unsignedInteger(QStringLiteral("seed"), 1), 4294967295U);
        QCOMPARE(reader.number(QStringLiteral("share"), 1, 0.25), 0.25);
        QCOMPARE(reader.integers(QStringLiteral("ports"), 2, 1, 2), QVector<int>({1, 2}));
        QCOMPARE(reader.texts(QStringLiteral("lines"), 2),
            QStringList({QStringLiteral("a"), QString()}));
        JsonReader inner = reader.object(QStringLiteral("inner"));
        QCOMPARE(inner.integer(QStringLiteral("id")), 3);
        inner.finish();
        QVector<int> ids;
        reader.objects(QStringLiteral("list"), 2,
            [&ids](JsonReader &element) { ids << element.integer(QStringLiteral("id")); });
        QCOMPARE(ids, QVector<int>({4, 5}));
        QVERIFY(reader.contains(QStringLiteral("null")));
        QVERIFY(reader.take(QStringLiteral("null")).isNull());
        QVERIFY(!reader.contains(QStringLiteral("null")));
        reader.finish();
    });
    QCOMPARE(problem.text(), QString());
    QVERIFY(!problem.isSet());
}

void tst_JsonReader::absentValues()
{
    const JsonProblem problem = readJson("{}", [](JsonReader &reader) {
        const QString key = QStringLiteral("a");
        QCOMPARE(reader.text(key), QString());
        QCOMPARE(reader.boolean(key, true), true);
        QCOMPARE(reader.integer(key), 0);
        QCOMPARE(reader.integer(key, 9, 0, 1), 9);
        QCOMPARE(reader.unsignedInteger(key, 9), 9U);
        QCOMPARE(reader.number(key, 9, 1), 9.0);
        QCOMPARE(reader.integers(key, 1, 0, 1), QVector<int>());
        QCOMPARE(reader.texts(key, 1), QStringList());
        reader.object(key).finish();
        reader.objects(key, 1, [](JsonReader & /*element*/) { QFAIL("there is no element"); });
        QVERIFY(reader.take(key).isUndefined());
        reader.finish();
    });
    QCOMPARE(problem.text(), QString());
}

void tst_JsonReader::problem_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("expected");

    // clang-format off
    QTest::newRow("nothing") << QByteArray() << "f:1:1: illegal value";
    QTest::newRow("no JSON") << QByteArray("{\n\"text\" 1}") << "f:2:9: missing name separator";
    QTest::newRow("a list") << QByteArray("[{}]") << "f:1:1: must be an object";
    QTest::newRow("too deep") << QByteArray("[").repeated(2000) << "f:1:1026: too deeply nested document";
    QTest::newRow("no text") << QByteArray(R"({"text": 1})") << "f:1:2: text: must be a text";
    QTest::newRow("no whole number") << QByteArray(R"({"id": 0.5})") << "f:1:2: id: must be a whole number";
    QTest::newRow("an integer that is too large") << QByteArray(R"({"id": 2147483648})") << "f:1:2: id: must be a whole number";
    QTest::newRow("a number out of range") << QByteArray(R"({"age": 121})") << "f:1:2: age: must be a whole number from 0 to 120";
    QTest::newRow("a text for a number") << QByteArray(R"({"age": "1"})") << "f:1:2: age: must be a whole number from 0 to 120";
    QTest::newRow("an element that is no object") << QByteArray("{\"list\": [\n  {\"key\": 1},\n  []\n]}") << "f:3:3: list[1]: must be an object";
    QTest::newRow("an element without a key") << QByteArray("{\"list\": [\n  {\"key\": 1},\n  {}\n]}") << "f:3:3: list[1].key: is missing";
    QTest::newRow("an element with a key too many") << QByteArray("{\"list\": [\n  {\"key\": 1, \"kex\": 1}\n]}") << "f:2:14: list[0].kex: unknown key";
    QTest::newRow("a list that is too long") << QByteArray("{\"list\": [{}, {}, {}]}") << "f:1:2: list: must not hold more than 2 entries";
    QTest::newRow("no list") << QByteArray("{\"list\": {}}") << "f:1:2: list: must be a list";
    QTest::newRow("an unknown key with signs of a path") << QByteArray(R"({"age": 1, "list[0].key": 1})") << "f:1:12: list[0].key: unknown key";
    QTest::newRow("too large") << QByteArray("{}").leftJustified(16 * 1024 * 1024 + 1) << "f: is larger than 16 MiB";
    // clang-format on
}

void tst_JsonReader::problem()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, expected);

    const JsonProblem problem = readJson(json, [](JsonReader &reader) {
        reader.text(QStringLiteral("text"));
        reader.integer(QStringLiteral("id"));
        reader.integer(QStringLiteral("age"), 0, 0, 120);
        reader.objects(QStringLiteral("list"), 2, [](JsonReader &element) {
            element.require(QStringLiteral("key"));
            element.integer(QStringLiteral("key"));
            element.finish();
        });
        reader.finish();
    });
    QCOMPARE(problem.message(QStringLiteral("f")), expected);
}

void tst_JsonReader::firstProblemStays()
{
    const JsonProblem problem = readJson(R"({"a": 1, "b": 2})", [](JsonReader &reader) {
        reader.text(QStringLiteral("b"));
        reader.fail(QStringLiteral("a"), QStringLiteral("is of no use"));
        reader.finish();
    });
    QCOMPARE(problem.message(QStringLiteral("f")), QStringLiteral("f:1:10: b: must be a text"));
}

QTEST_GUILESS_MAIN(tst_JsonReader)

#include "tst_jsonreader.moc"
