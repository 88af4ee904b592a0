#include "core/screen/ScreenSettings.h"

#include <QXmlStreamWriter>
#include <QtTest>

#include <limits>
#include <optional>

using namespace PluginKrHvcP2;

Q_DECLARE_METATYPE(PluginKrHvcP2::ScreenSettings)
Q_DECLARE_METATYPE(std::optional<QVariantMap>)

namespace {

/// The map of an object that nobody has changed, with @p key set to @p value.
QVariantMap defaultsWith(const QString &key, const QVariant &value)
{
    QVariantMap map{
        {QStringLiteral("display-monitoring"), false},
        {QStringLiteral("interval"), 500},
        {QStringLiteral("face-detection-confidence"), 0},
        {QStringLiteral("face-direction-confidence"), 0},
        {QStringLiteral("age-confidence"), 0},
        {QStringLiteral("gender-confidence"), 0},
        {QStringLiteral("concurrent"), 1},
        {QStringLiteral("event-sending-limit"), 5000},
    };
    if (!key.isEmpty())
        map.insert(key, value);
    return map;
}

QVariantMap defaults()
{
    return defaultsWith(QString(), QVariant());
}

/// Every setting different from its default.
ScreenSettings changedSettings()
{
    ScreenSettings settings;
    settings.displayMonitoring = true;
    settings.interval = 2;
    settings.faceDetectionConfidence = 3;
    settings.faceDirectionConfidence = 4;
    settings.ageConfidence = 5;
    settings.genderConfidence = 6;
    settings.concurrent = 7;
    settings.eventSendingLimit = 8;
    return settings;
}

QString xml(const ScreenSettings &settings)
{
    QString text;
    QXmlStreamWriter writer(&text);
    settings.writeXml(writer);
    return text;
}

/// Keys with types and values, which QVariant's own comparison would convert.
QStringList describe(const std::optional<QVariantMap> &map)
{
    if (!map)
        return {QStringLiteral("unchanged")};
    QStringList result;
    for (auto it = map->cbegin(); it != map->cend(); ++it) {
        const QString type = QString::fromLatin1(it->typeName());
        result.append(QStringLiteral("%1 %2 %3").arg(it.key(), type, it->toString()));
    }
    return result;
}

} // namespace

class tst_ScreenSettings : public QObject
{
    Q_OBJECT

private slots:
    void trueText_data();
    void trueText();
    void map();
    void update_data();
    void update();
    void updateKeepsWhatIsRefused();
    void updateIsIdempotent();
    void strangeValues_data();
    void strangeValues();
    void stored_data();
    void stored();
    void newScreen();
    void edited_data();
    void edited();
    void writeXml_data();
    void writeXml();
    void writeXmlNests();
};

void tst_ScreenSettings::trueText_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("expected");

    QTest::newRow("the word") << QVariant(QStringLiteral("true")) << true;
    QTest::newRow("the word in upper case") << QVariant(QStringLiteral("TRUE")) << true;
    QTest::newRow("the word in mixed case") << QVariant(QStringLiteral("tRuE")) << true;
    QTest::newRow("the bool") << QVariant(true) << true;
    QTest::newRow("the word as bytes") << QVariant(QByteArray("True")) << true;
    QTest::newRow("the bool false") << QVariant(false) << false;
    QTest::newRow("the word false") << QVariant(QStringLiteral("false")) << false;
    QTest::newRow("the word yes") << QVariant(QStringLiteral("yes")) << false;
    QTest::newRow("the integer 1") << QVariant(1) << false;
    QTest::newRow("the text 1") << QVariant(QStringLiteral("1")) << false;
    QTest::newRow("a blank behind the word") << QVariant(QStringLiteral("true ")) << false;
    QTest::newRow("nothing") << QVariant() << false;
    QTest::newRow("a list with the word")
        << QVariant(QVariantList{QStringLiteral("true"), 1}) << false;
    QTest::newRow("a map") << QVariant(QVariantMap{{QStringLiteral("true"), true}}) << false;
}

void tst_ScreenSettings::trueText()
{
    QFETCH(QVariant, value);
    QFETCH(bool, expected);
    QCOMPARE(isTrueText(value), expected);
}

void tst_ScreenSettings::map()
{
    QCOMPARE(ScreenSettings().toMap(), defaults());

    const QVariantMap map = changedSettings().toMap();
    const QVariantMap expected{
        {QStringLiteral("display-monitoring"), true},
        {QStringLiteral("interval"), 2},
        {QStringLiteral("face-detection-confidence"), 3},
        {QStringLiteral("face-direction-confidence"), 4},
        {QStringLiteral("age-confidence"), 5},
        {QStringLiteral("gender-confidence"), 6},
        {QStringLiteral("concurrent"), 7},
        {QStringLiteral("event-sending-limit"), 8},
    };
    QCOMPARE(map, expected);
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const bool isSwitch = it.key() == QLatin1String("display-monitoring");
        QCOMPARE(int(it->type()), int(isSwitch ? QMetaType::Bool : QMetaType::Int));
    }
}

void tst_ScreenSettings::update_data()
{
    QTest::addColumn<QVariantMap>("params");
    QTest::addColumn<QVariantMap>("expected");

    const auto row = [](const char *name, const char *key, const QVariant &value,
                         const char *changedKey, const QVariant &changed) {
        QTest::newRow(name) << QVariantMap{{QString::fromLatin1(key), value}}
                            << defaultsWith(QString::fromLatin1(changedKey), changed);
    };
    const auto accepted = [&](const char *name, const char *key, const QVariant &value, int read) {
        row(name, key, value, key, read);
    };
    const auto refused = [&](const char *name, const char *key, const QVariant &value) {
        row(name, key, value, "", {});
    };

    QTest::newRow("an empty map changes nothing") << QVariantMap() << defaults();
    refused("an unknown key is ignored", "intervals", 7);
    refused("a key with a blank is unknown", "interval ", 7);
    refused("the key of the element is no setting", "plugindata",
        QVariantMap{{QStringLiteral("interval"), 7}});

    accepted("interval at its lower end", "interval", 0, 0);
    accepted("interval at its upper end", "interval", 60000, 60000);
    refused("interval above its range", "interval", 60001);
    refused("interval below its range", "interval", -1);
    refused("interval far below its range", "interval", std::numeric_limits<int>::min());
    refused("interval as letters", "interval", QStringLiteral("abc"));
    refused("interval as the empty text", "interval", QString());
    refused("interval as nothing", "interval", QVariant());
    refused("interval as a list", "interval", QVariantList{7});
    refused("interval with letters behind it", "interval", QStringLiteral("7ms"));
    accepted("interval as text", "interval", QStringLiteral("2000"), 2000);
    accepted("interval as a number with a fraction is rounded", "interval", 1999.6, 2000);
    row("a capital in the key", "Interval", 2000, "interval", 2000);
    row("a key in capitals", "INTERVAL", 2000, "interval", 2000);
    // Values beyond 32 bits wrap as QVariant converts them, and pass when they come out in range.
    accepted("interval beyond 32 bits wraps", "interval", QVariant(Q_INT64_C(4294967301)), 5);
    accepted("interval as text beyond 32 bits wraps", "interval", QStringLiteral("4294967301"), 5);

    for (const char *key : {"face-detection-confidence", "face-direction-confidence",
             "age-confidence", "gender-confidence"}) {
        const auto name = [&](const char *text) -> QByteArray { return QByteArray(key) + text; };
        accepted(name(" 0 is accepted"), key, QStringLiteral("0"), 0);
        accepted(name(" 1 is accepted"), key, 1, 1);
        accepted(name(" 1000 is accepted"), key, 1000, 1000);
        refused(name(" 1001 is refused"), key, 1001);
        refused(name(" -1 is refused"), key, -1);
        refused(name(" as letters is refused"), key, QStringLiteral("high"));
    }

    refused("concurrent 0 is refused", "concurrent", 0);
    refused("concurrent 21 is refused", "concurrent", 21);
    refused("concurrent -1 is refused", "concurrent", -1);
    refused("concurrent as letters is refused", "concurrent", QStringLiteral("all"));
    accepted("concurrent 1 is accepted", "concurrent", 1, 1);
    accepted("concurrent 2 is accepted", "concurrent", 2, 2);
    accepted("concurrent 20 is accepted", "concurrent", 20, 20);

    accepted("a restriction time of 0 is accepted", "event-sending-limit", 0, 0);
    accepted("a day is accepted", "event-sending-limit", 86400000, 86400000);
    accepted("there is no upper bound", "event-sending-limit", std::numeric_limits<int>::max(),
        std::numeric_limits<int>::max());
    refused("a restriction time of -1 is refused", "event-sending-limit", -1);
    refused("the lowest restriction time is refused", "event-sending-limit",
        std::numeric_limits<int>::min());
    refused(
        "a restriction time as letters is refused", "event-sending-limit", QStringLiteral("5s"));

    row("the panel is shown for TRUE", "display-monitoring", QStringLiteral("TRUE"),
        "display-monitoring", true);
    row("the panel is shown for the bool", "display-monitoring", true, "display-monitoring", true);
    row("the key of the panel in capitals", "Display-Monitoring", QStringLiteral("true"),
        "display-monitoring", true);

    QTest::newRow("all settings at once") << changedSettings().toMap() << changedSettings().toMap();
    QTest::newRow("of one key in two letter cases the later in order wins")
        << QVariantMap{{QStringLiteral("INTERVAL"), 10}, {QStringLiteral("interval"), 20}}
        << defaultsWith(QStringLiteral("interval"), 20);
    QTest::newRow("of one key in two letter cases the accepted one stays")
        << QVariantMap{{QStringLiteral("INTERVAL"), 10}, {QStringLiteral("interval"), -1}}
        << defaultsWith(QStringLiteral("interval"), 10);
    QTest::newRow("a refused value does not keep others out")
        << QVariantMap{{QStringLiteral("age-confidence"), -1}, {QStringLiteral("interval"), 20}}
        << defaultsWith(QStringLiteral("interval"), 20);
}

void tst_ScreenSettings::update()
{
    QFETCH(QVariantMap, params);
    QFETCH(QVariantMap, expected);
    ScreenSettings settings;
    settings.update(params);
    QCOMPARE(settings.toMap(), expected);
}

void tst_ScreenSettings::updateKeepsWhatIsRefused()
{
    ScreenSettings settings = changedSettings();
    settings.update({
        {QStringLiteral("interval"), 60001},
        {QStringLiteral("face-detection-confidence"), 1001},
        {QStringLiteral("face-direction-confidence"), -1},
        {QStringLiteral("age-confidence"), QStringLiteral("x")},
        {QStringLiteral("gender-confidence"), QVariant()},
        {QStringLiteral("concurrent"), 0},
        {QStringLiteral("event-sending-limit"), -1},
    });
    QCOMPARE(settings.toMap(), changedSettings().toMap());

    // The switch alone knows no refusal: whatever is not "true" turns it off.
    settings.update({{QStringLiteral("display-monitoring"), QStringLiteral("yes")}});
    QCOMPARE(settings.displayMonitoring, false);
    settings.displayMonitoring = true;
    settings.update({{QStringLiteral("display-monitoring"), 1}});
    QCOMPARE(settings.displayMonitoring, false);
}

void tst_ScreenSettings::updateIsIdempotent()
{
    ScreenSettings settings = changedSettings();
    settings.update(settings.toMap());
    QCOMPARE(settings.toMap(), changedSettings().toMap());
}

/// A list in a list in a list...
static QVariant nestedList(int depth)
{
    QVariant value;
    for (int i = 0; i < depth; ++i)
        value = QVariantList{value};
    return value;
}

void tst_ScreenSettings::strangeValues_data()
{
    QTest::addColumn<QVariant>("value");
    // What QVariant makes of the numbers depends on the machine.
    QTest::newRow("not a number") << QVariant(std::numeric_limits<double>::quiet_NaN());
    QTest::newRow("infinity") << QVariant(std::numeric_limits<double>::infinity());
    QTest::newRow("a number beyond all integers") << QVariant(-1e30);
    QTest::newRow("2^40") << QVariant(Q_INT64_C(1) << 40);
    QTest::newRow("a text of a megabyte") << QVariant(QString(1024 * 1024, QLatin1Char('9')));
    QTest::newRow("a thousand nested lists") << nestedList(1000);
    QTest::newRow("a null pointer") << QVariant::fromValue<QObject *>(nullptr);
}

void tst_ScreenSettings::strangeValues()
{
    QFETCH(QVariant, value);
    QVariantMap params = defaults();
    for (QVariant &entry : params)
        entry = value;

    ScreenSettings settings;
    settings.update(params);
    const QVariantMap read = settings.toMap();
    QCOMPARE(read.keys(), defaults().keys());
    const auto isBetween = [&read](const char *key, int lowest, int highest) {
        const int number = read.value(QString::fromLatin1(key)).toInt();
        return lowest <= number && number <= highest;
    };
    QVERIFY(isBetween("interval", 0, 60000));
    QVERIFY(isBetween("concurrent", 1, 20));
    QVERIFY(isBetween("event-sending-limit", 0, std::numeric_limits<int>::max()));
    for (const char *key : {"face-detection-confidence", "face-direction-confidence",
             "age-confidence", "gender-confidence"})
        QVERIFY2(isBetween(key, 0, 1000), key);
    QCOMPARE(ScreenSettings::fromStored(params).toMap().keys(), defaults().keys());
}

void tst_ScreenSettings::stored_data()
{
    QTest::addColumn<QVariantMap>("stored");
    QTest::addColumn<QVariantMap>("expected");

    const auto row = [](const char *name, const char *key, const QVariant &value,
                         const char *changedKey, const QVariant &changed) {
        QTest::newRow(name) << QVariantMap{{QString::fromLatin1(key), value}}
                            << defaultsWith(QString::fromLatin1(changedKey), changed);
    };

    QTest::newRow("missing keys give the defaults") << QVariantMap() << defaults();
    QTest::newRow("all settings at once") << changedSettings().toMap() << changedSettings().toMap();
    row("interval above the accepted range", "interval", 360000, "interval", 360000);
    row("interval below the accepted range", "interval", -1, "interval", -1);
    row("interval as letters reads as 0", "interval", QStringLiteral("abc"), "interval", 0);
    row("interval as text", "interval", QStringLiteral("250"), "interval", 250);
    row("interval as nothing reads as 0", "interval", QVariant(), "interval", 0);
    row("a key in capitals is missing", "Interval", 250, "", {});
    row("concurrent as letters reads as 0", "concurrent", QStringLiteral("x"), "concurrent", 0);
    row("concurrent above the accepted range", "concurrent", 21, "concurrent", 21);
    row("a confidence above the accepted range", "age-confidence", 1001, "age-confidence", 1001);
    row("a negative confidence", "gender-confidence", -5, "gender-confidence", -5);
    row("a negative restriction time", "event-sending-limit", -1, "event-sending-limit", -1);
    row("the panel is shown for True", "display-monitoring", QStringLiteral("True"),
        "display-monitoring", true);
    row("the panel is shown for the bool", "display-monitoring", true, "display-monitoring", true);
    row("the panel is hidden for the number 1", "display-monitoring", 1, "", {});
    row("the panel is hidden for nothing", "display-monitoring", QVariant(), "", {});
    row("other keys are ignored", "contents", QVariantList{1}, "", {});
}

void tst_ScreenSettings::stored()
{
    QFETCH(QVariantMap, stored);
    QFETCH(QVariantMap, expected);
    QCOMPARE(ScreenSettings::fromStored(stored).toMap(), expected);
}

void tst_ScreenSettings::newScreen()
{
    const QVariantMap expected{
        {QStringLiteral("display-monitoring"), false},
        {QStringLiteral("interval"), 1000},
        {QStringLiteral("face-detection-confidence"), 0},
        {QStringLiteral("face-direction-confidence"), 0},
        {QStringLiteral("age-confidence"), 0},
        {QStringLiteral("gender-confidence"), 0},
        {QStringLiteral("concurrent"), 1},
    };
    const QVariantMap map = ScreenSettings::newScreenMap();
    QCOMPARE(map, expected);
    QCOMPARE(int(map.value(QStringLiteral("display-monitoring")).type()), int(QMetaType::Bool));
    QCOMPARE(int(map.value(QStringLiteral("interval")).type()), int(QMetaType::Int));

    // Its restriction time is not stored, but holds.
    QCOMPARE(ScreenSettings::ofNewScreen().toMap(), defaultsWith(QStringLiteral("interval"), 1000));
}

void tst_ScreenSettings::edited_data()
{
    QTest::addColumn<QVariantMap>("stored");
    QTest::addColumn<ScreenSettings>("entered");
    QTest::addColumn<std::optional<QVariantMap>>("expected");

    using Map = std::optional<QVariantMap>;
    const Map unchanged;
    const ScreenSettings all = changedSettings();
    const auto with = [](const char *key, const QVariant &value) {
        QVariantMap map = changedSettings().toMap();
        map.insert(QString::fromLatin1(key), value);
        return map;
    };
    const auto without = [](const char *key) {
        QVariantMap map = changedSettings().toMap();
        map.remove(QString::fromLatin1(key));
        return map;
    };
    const QString True = QStringLiteral("true");
    const QString False = QStringLiteral("false");

    QTest::newRow("what is stored already is no change") << all.toMap() << all << unchanged;
    QVariantMap numbers = defaults();
    numbers.remove(QStringLiteral("display-monitoring"));
    QTest::newRow("every missing number is written, also a default; a switch that is off is not")
        << QVariantMap() << ScreenSettings() << Map(numbers);

    const auto number = [&](const char *key, int ScreenSettings::*member) {
        ScreenSettings entered = changedSettings();
        entered.*member = 9;
        QTest::newRow(QByteArray(key).append(" differs"))
            << all.toMap() << entered << Map(with(key, 9));
        QTest::newRow(QByteArray(key).append(" is missing"))
            << without(key) << entered << Map(with(key, 9));
    };
    number("interval", &ScreenSettings::interval);
    number("face-detection-confidence", &ScreenSettings::faceDetectionConfidence);
    number("face-direction-confidence", &ScreenSettings::faceDirectionConfidence);
    number("age-confidence", &ScreenSettings::ageConfidence);
    number("gender-confidence", &ScreenSettings::genderConfidence);
    number("concurrent", &ScreenSettings::concurrent);
    number("event-sending-limit", &ScreenSettings::eventSendingLimit);

    QTest::newRow("a text of the same number stays a text")
        << with("interval", QStringLiteral("2")) << all << unchanged;
    ScreenSettings hidden = all;
    hidden.displayMonitoring = false;
    QVariantMap textAndHidden = with("interval", QStringLiteral("2"));
    textAndHidden.insert(QStringLiteral("display-monitoring"), False);
    QTest::newRow("a text of the same number stays a text beside a change")
        << with("interval", QStringLiteral("2")) << hidden << Map(textAndHidden);
    QTest::newRow("a text of another number becomes a number")
        << with("interval", QStringLiteral("3")) << all << Map(all.toMap());
    QTest::newRow("a text that is no number counts as 0 and is replaced")
        << with("interval", QStringLiteral("fast")) << all << Map(all.toMap());
    ScreenSettings zero = all;
    zero.interval = 0;
    QTest::newRow("a text that is no number counts as 0 and stays")
        << with("interval", QStringLiteral("fast")) << zero << unchanged;
    QTest::newRow("nothing under a key counts as 0 and stays")
        << with("interval", QVariant()) << zero << unchanged;
    QTest::newRow("ranges are not asked about")
        << with("concurrent", 99) << all << Map(all.toMap());
    ScreenSettings negative = all;
    negative.interval = -1;
    QTest::newRow("a missing number is written whatever it is")
        << without("interval") << negative << Map(with("interval", -1));

    const auto monitoring
        = [&](const char *name, const QVariant &stored, bool entered, const Map &expected) {
              ScreenSettings settings = all;
              settings.displayMonitoring = entered;
              QTest::newRow(name) << with("display-monitoring", stored) << settings << expected;
          };
    monitoring("a shown panel stays TRUE", QStringLiteral("TRUE"), true, unchanged);
    monitoring("a hidden panel is written as a text", QStringLiteral("TRUE"), false,
        with("display-monitoring", False));
    monitoring("a hidden panel is written over a bool as a text", true, false,
        with("display-monitoring", False));
    monitoring("a hidden panel stays a bool", false, false, unchanged);
    monitoring("a shown panel is written as a text", false, true, with("display-monitoring", True));
    monitoring("the number 1 means hidden and stays", 1, false, unchanged);
    monitoring(
        "the number 1 means hidden and is replaced", 1, true, with("display-monitoring", True));
    QTest::newRow("a missing switch is written when the panel is shown")
        << without("display-monitoring") << all << Map(with("display-monitoring", True));
    QTest::newRow("a missing switch is not written when the panel is hidden")
        << without("display-monitoring") << hidden << unchanged;

    QVariantMap foreign = with("display-monitoring", False);
    foreign.insert(QStringLiteral("colour"), QStringLiteral("red"));
    foreign.insert(QStringLiteral("Interval"), 77);
    QVariantMap foreignAndShown = foreign;
    foreignAndShown.insert(QStringLiteral("display-monitoring"), True);
    QTest::newRow("foreign keys are no change") << foreign << hidden << unchanged;
    QTest::newRow("foreign keys stay beside a change") << foreign << all << Map(foreignAndShown);
}

void tst_ScreenSettings::edited()
{
    QFETCH(QVariantMap, stored);
    QFETCH(ScreenSettings, entered);
    QFETCH(std::optional<QVariantMap>, expected);
    QCOMPARE(describe(editedSettings(stored, entered)), describe(expected));
}

void tst_ScreenSettings::writeXml_data()
{
    QTest::addColumn<QVariantMap>("params");
    QTest::addColumn<QString>("expected");

    QTest::newRow("after construction")
        << QVariantMap()
        << QStringLiteral("<plugindata display-monitoring=\"false\" interval=\"500\""
                          " face-detection-confidence=\"0\" face-direction-confidence=\"0\""
                          " age-confidence=\"0\" gender-confidence=\"0\" concurrent=\"1\""
                          " event-sending-limit=\"5000\"/>");
    QTest::newRow("every setting changed")
        << changedSettings().toMap()
        << QStringLiteral("<plugindata display-monitoring=\"true\" interval=\"2\""
                          " face-detection-confidence=\"3\" face-direction-confidence=\"4\""
                          " age-confidence=\"5\" gender-confidence=\"6\" concurrent=\"7\""
                          " event-sending-limit=\"8\"/>");
    QTest::newRow("large numbers have no group separators")
        << QVariantMap{{QStringLiteral("interval"), 60000},
               {QStringLiteral("event-sending-limit"), std::numeric_limits<int>::max()}}
        << QStringLiteral("<plugindata display-monitoring=\"false\" interval=\"60000\""
                          " face-detection-confidence=\"0\" face-direction-confidence=\"0\""
                          " age-confidence=\"0\" gender-confidence=\"0\" concurrent=\"1\""
                          " event-sending-limit=\"2147483647\"/>");
}

void tst_ScreenSettings::writeXml()
{
    QFETCH(QVariantMap, params);
    QFETCH(QString, expected);
    ScreenSettings settings;
    settings.update(params);
    QCOMPARE(xml(settings), expected);
}

void tst_ScreenSettings::writeXmlNests()
{
    // The element is closed, so that the caller's own elements go on around it.
    QString text;
    QXmlStreamWriter writer(&text);
    writer.writeStartElement(QStringLiteral("screen"));
    ScreenSettings().writeXml(writer);
    writer.writeEmptyElement(QStringLiteral("next"));
    writer.writeEndElement();
    const QString expected
        = QStringLiteral("<screen>") + xml(ScreenSettings()) + QStringLiteral("<next/></screen>");
    QCOMPARE(text, expected);
}

QTEST_GUILESS_MAIN(tst_ScreenSettings)

#include "tst_screensettings.moc"
