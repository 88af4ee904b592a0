// A screen's parameter map, the stage and what is entered in the dialogs, with values of any type,
// beside a literal version of the rules: the same contents take part for the same reasons, the same
// settings are read, the same is refused, and who changes nothing has nothing changed.
//
// The input is lines (see VariantLines.h) with the keys "screen", "stage" (by screen id: "+10"),
// "params" (from the host), "entry" (a position), "name" and "entered" (a content's "params").

#include "tests/fuzz/Finding.h"
#include "tests/fuzz/Target.h"
#include "tests/fuzz/VariantLines.h"

#include "core/screen/ContentEntry.h"
#include "core/screen/DetectionContent.h"
#include "core/screen/NewScreen.h"
#include "core/screen/ScreenSettings.h"
#include "gui/AudienceRules.h"
#include "tests/oracle/PlainEditor.h"
#include "tests/oracle/PlainScreen.h"

#include <QXmlStreamWriter>

#include <algorithm>

using namespace PluginKrHvcP2;

namespace {

QMap<int, QVariantMap> stageFrom(const QVariantMap &map)
{
    QMap<int, QVariantMap> stage;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        stage.insert(it.key().toInt(), it.value().toMap());
    return stage;
}

bool isSame(const QVariant &a, const QVariant &b);

bool isSame(const QVariantMap &a, const QVariantMap &b)
{
    return a.keys() == b.keys()
        && std::equal(a.cbegin(), a.cend(), b.cbegin(),
            [](const QVariant &left, const QVariant &right) { return isSame(left, right); });
}

/// QVariant converts before it compares: to it a number and its text are the same.
bool isSame(const QVariant &a, const QVariant &b)
{
    if (a.userType() != b.userType())
        return false;
    if (a.userType() == QMetaType::QVariantMap)
        return isSame(a.toMap(), b.toMap());
    return a == b || Fuzz::described(a) == Fuzz::described(b); // NaN is not what it is
}

void expectSameMap(const QVariantMap &ours, const QVariantMap &expected, const char *what)
{
    if (!isSame(ours, expected))
        Fuzz::expectSame(Fuzz::described(ours), Fuzz::described(expected), what);
}

QString describe(const DetectionContent &content)
{
    return QStringLiteral("#%1 %2-%3 gender %4 default %5 screens %6")
        .arg(QString::number(content.sequenceNumber), QString::number(content.ageMin),
            QString::number(content.ageMax), QString::number(content.genders),
            QString::number(int{content.isDefault}), Fuzz::described(content.identifiers));
}

QString describe(const Audience &audience)
{
    return QStringLiteral("%1-%2 gender %3 default %4")
        .arg(QString::number(audience.ageMin), QString::number(audience.ageMax),
            QString::number(audience.gender), QString::number(int{audience.isDefault}));
}

QString describe(const std::optional<Audience> &audience)
{
    return audience ? describe(*audience) : QStringLiteral("none");
}

template <typename T>
QStringList describeAll(const QVector<T> &values)
{
    QStringList texts;
    for (const T &value : values)
        texts.append(describe(value));
    return texts;
}

void expectSameSettings(
    const ScreenSettings &ours, const ScreenSettings &expected, const char *what)
{
    expectSameMap(ours.toMap(), expected.toMap(), what);
}

QList<int> numbers(const QVector<EntryReason> &reasons)
{
    QList<int> codes;
    for (const EntryReason reason : reasons)
        codes.append(static_cast<int>(reason));
    return codes;
}

void checkTable(const QVariantMap &screen, const QMap<int, QVariantMap> &stage)
{
    const DetectionTable table = detectionTable(screen, stage);
    const DetectionTable expected = Oracle::detectionTable(screen, stage);
    Fuzz::expectSame(describeAll(table.contents), describeAll(expected.contents), "contents");
    Fuzz::expectSame(numbers(table.reasons), numbers(expected.reasons), "reasons");
    Fuzz::expectSame(describeAll(detectionContents(screen, stage)), describeAll(table.contents),
        "contents alone");
    for (const DetectionContent &content : table.contents) {
        Fuzz::expect(content.isValid(), "a content of the table is not valid");
        Fuzz::expectSame(describe(findContent(table.contents, content.sequenceNumber)),
            describe(content), "content that was found");
    }
    Fuzz::expect(!findContent(table.contents, 0).isValid(), "there is a content #0");
}

QByteArray xml(const ScreenSettings &settings)
{
    QByteArray text;
    QXmlStreamWriter writer(&text);
    settings.writeXml(writer);
    return text;
}

QByteArray expectedXml(const ScreenSettings &settings)
{
    const auto attribute = [](const char *name, int value) -> QByteArray {
        return QByteArray(" ") + name + "=\"" + QByteArray::number(value) + '"';
    };
    return QByteArray("<plugindata display-monitoring=\"")
        + (settings.displayMonitoring ? "true\"" : "false\"")
        + attribute("interval", settings.interval)
        + attribute("face-detection-confidence", settings.faceDetectionConfidence)
        + attribute("face-direction-confidence", settings.faceDirectionConfidence)
        + attribute("age-confidence", settings.ageConfidence)
        + attribute("gender-confidence", settings.genderConfidence)
        + attribute("concurrent", settings.concurrent)
        + attribute("event-sending-limit", settings.eventSendingLimit) + "/>";
}

void checkSettings(const QVariantMap &stored, const QVariantMap &params)
{
    ScreenSettings settings = ScreenSettings::fromStored(stored);
    const ScreenSettings expected = Oracle::storedSettings(stored);
    expectSameSettings(settings, expected, "stored settings");
    expectSameSettings(ScreenSettings::fromStored(settings.toMap()), settings, "stored again");

    settings.update(params);
    expectSameSettings(settings, Oracle::updated(expected, params), "settings from the host");
    ScreenSettings same = settings;
    same.update(settings.toMap());
    expectSameSettings(same, settings, "settings set to what they are");
    Fuzz::expectSame(xml(settings), expectedXml(settings), "element");

    const std::optional<QVariantMap> edited = editedSettings(stored, settings);
    const std::optional<QVariantMap> expectedEdit = Oracle::edited(stored, settings);
    Fuzz::expectSame(edited.has_value(), expectedEdit.has_value(), "settings are changed");
    expectSameMap(edited.value_or(stored), expectedEdit.value_or(stored), "edited settings");
    Fuzz::expect(!editedSettings(edited.value_or(stored), settings), "the edit is not complete");
}

void checkNewScreen(const QVariantMap &screen)
{
    const QVariantMap made = newScreen(screen);
    expectSameMap(newScreen(made), made, "new screen anew");
    QVariantMap foreign = made;
    QVariantMap expected = screen;
    for (const QString &key : {QStringLiteral("contents"), QStringLiteral("plugindata")}) {
        foreign.remove(key);
        expected.remove(key);
    }
    expectSameMap(foreign, expected, "foreign keys of a new screen");
}

void checkEdit(const QVariantMap &entry, const QString &name, const Audience &entered)
{
    const Oracle::Edit expected = Oracle::edit(entry, name, entered);
    const QVariantMap edited = editedEntry(entry, name, entered);
    expectSameMap(edited, expected.entry, "edited content");
    Fuzz::expectSame(isChanged(entry, name, entered), expected.changed, "is changed");

    // What was stored is read as it was entered, and left alone the next time.
    Fuzz::expect(!isChanged(edited, name, entered), "an edited content is changed again");
    Fuzz::expectSame(nameForEditing(edited), name, "name");
    Fuzz::expectSame(describe(audienceForEditing(edited)), describe(entered), "edited audience");
    Fuzz::expectSame(isShownAsDefault(edited), entered.isDefault, "default");
}

void checkEditor(
    const QVariantList &contents, int position, const QString &name, const Audience &entered)
{
    QVariantList others = contents;
    if (position >= 0 && position < contents.size())
        others.removeAt(position);
    for (const QVariant &entry : contents) {
        Fuzz::expectSame(describe(audienceForEditing(entry)), describe(Oracle::audience(entry)),
            "audience in the editor");
        checkEdit(entry.toMap(), name, entered);
    }
    checkEdit({}, name, entered);

    const QVector<Audience> ranges = contentRanges(contents);
    Fuzz::expectSame(
        describeAll(ranges), describeAll(Oracle::contentRanges(contents)), "ranges of contents");
    const QVector<Audience> free = freeRanges(ranges);
    Fuzz::expectSame(describeAll(free), describeAll(Oracle::freeRanges(ranges)), "free ranges");
    Fuzz::expectSame(describe(nextRange(entered, free)), describe(Oracle::nextRange(entered, free)),
        "next range");
    Fuzz::expectSame(static_cast<int>(findRefusal(name, entered, others)),
        static_cast<int>(Oracle::refusal(name, entered, others)), "refusal");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray lines(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const QVariantMap input = Fuzz::fromLines(lines).toMap();
    const QVariantMap screen = input.value(QStringLiteral("screen")).toMap();
    const QVariantMap stored = screen.value(QStringLiteral("plugindata")).toMap();
    const QVariantMap params = input.value(QStringLiteral("params")).toMap();
    const Audience entered = audienceForEditing(
        QVariantMap{{QStringLiteral("params"), input.value(QStringLiteral("entered"))}});

    checkTable(screen, stageFrom(input.value(QStringLiteral("stage")).toMap()));
    checkSettings(stored, params);
    checkNewScreen(screen);
    checkEditor(screen.value(QStringLiteral("contents")).toList(),
        input.value(QStringLiteral("entry"), -1).toInt(),
        input.value(QStringLiteral("name")).toString(), entered);
    return 0;
}
