#include "demo/player/StageChanges.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Player;

class tst_StageChanges : public QObject
{
    Q_OBJECT

private slots:
    void describe_data();
    void describe();
    void numbersOfAnyType();
};

void tst_StageChanges::describe_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QStringList>("lines");

    // clang-format off
    const auto lines = [](std::initializer_list<const char *> list) {
        QStringList texts;
        for (const char *const line : list)
            texts << QString::fromUtf8(line);
        return texts;
    };
    QTest::newRow("nothing")
        << QByteArray(R"({"id": 1, "plugindata": {"interval": 5}, "contents": [{"params": {}}]})")
        << QByteArray(R"({"id": 1, "plugindata": {"interval": 5}, "contents": [{"params": {}}]})")
        << QStringList();
    QTest::newRow("empty maps") << QByteArray("{}") << QByteArray("{}") << QStringList();
    QTest::newRow("a setting")
        << QByteArray(R"({"plugindata": {"concurrent": 1, "interval": 1000}})")
        << QByteArray(R"({"plugindata": {"concurrent": 1, "interval": 500}})")
        << lines({"settings: interval 1000 -> 500"});
    QTest::newRow("settings that are new, gone, and of another type")
        << QByteArray(R"({"plugindata": {"a": 1, "d": true, "n": null}})")
        << QByteArray(R"({"plugindata": {"b": "x", "d": "true", "n": [1]}})")
        << lines({"settings: a 1 -> (none), b (none) -> x, d true -> true, n null -> [1]"});
    QTest::newRow("settings where there were none")
        << QByteArray("{}") << QByteArray(R"({"plugindata": {"b": {"c": 2}}})")
        << lines({"settings: b (none) -> {\"c\":2}"});
    QTest::newRow("a content's own values, then its params")
        << QByteArray(R"({"contents": [{"params": {}}, {"type": 8, "params": {"age-max": 24, "gender": "male"}}]})")
        << QByteArray(R"({"contents": [{"params": {}}, {"type": 8, "name": "Men", "params": {"age-max": 29, "gender": "both"}}]})")
        << lines({"content #2: name (none) -> Men, age-max 24 -> 29, gender male -> both"});
    QTest::newRow("contents that came")
        << QByteArray(R"({"contents": [{"params": {}}]})")
        << QByteArray(R"({"contents": [{"params": {}}, {"params": {}}, {"params": {}}]})")
        << lines({"content #2 added", "content #3 added"});
    QTest::newRow("contents that went")
        << QByteArray(R"({"contents": [{"params": {}}, {"params": {}}]})") << QByteArray("{}")
        << lines({"content #1 removed", "content #2 removed"});
    QTest::newRow("settings come before contents")
        << QByteArray(R"({"plugindata": {"x": 1}, "contents": [{"params": {"y": 1}}]})")
        << QByteArray(R"({"plugindata": {"x": 2}, "contents": [{"params": {"y": 2}}]})")
        << lines({"settings: x 1 -> 2", "content #1: y 1 -> 2"});
    // clang-format on
}

void tst_StageChanges::describe()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QStringList, lines);

    const auto map = [](const QByteArray &json) {
        return QJsonDocument::fromJson(json).object().toVariantMap();
    };
    QCOMPARE(describeChanges(map(before), map(after)), lines);
}

void tst_StageChanges::numbersOfAnyType()
{
    const QString key = QStringLiteral("plugindata");
    const QVariantMap whole{{key, QVariantMap{{QStringLiteral("interval"), 500}}}};
    const QVariantMap real{{key, QVariantMap{{QStringLiteral("interval"), 500.0}}}};
    QCOMPARE(describeChanges(whole, real), QStringList());
}

QTEST_GUILESS_MAIN(tst_StageChanges)

#include "tst_stagechanges.moc"
