#include "tests/oracle/PlainScreen.h"

#include <QStringList>

namespace Oracle {

using namespace PluginKrHvcP2;

namespace {

constexpr int NoMaximum = -1;

bool isKey(const QString &key, const char *name)
{
    return key.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
}

bool isTrue(const QVariant &value)
{
    return value.toString().compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

int genderMask(const QString &text)
{
    if (isKey(text, "male"))
        return 1;
    if (isKey(text, "female"))
        return 2;
    return isKey(text, "both") ? 3 : 0;
}

void readAge(const QVariant &value, int &age)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    if (ok)
        age = number;
}

DetectionContent record(const QVariant &entry, int sequenceNumber)
{
    DetectionContent content;
    content.sequenceNumber = sequenceNumber;
    content.ageMin = -1;
    content.ageMax = -1;
    content.genders = 0;
    content.isDefault = false;
    const QVariantMap params = entry.toMap().value(QStringLiteral("params")).toMap();
    const QStringList keys = params.keys();
    for (const QString &key : keys) {
        const QVariant value = params.value(key);
        if (isKey(key, "age-min"))
            readAge(value, content.ageMin);
        else if (isKey(key, "age-max"))
            readAge(value, content.ageMax);
        else if (isKey(key, "gender"))
            content.genders = genderMask(value.toString());
        else if (isKey(key, "default"))
            content.isDefault = isTrue(value);
    }
    return content;
}

EntryReason reasonAgainst(const DetectionContent &content)
{
    if (content.ageMin < 0)
        return EntryReason::NoLowestAge;
    if (content.ageMax < 0)
        return EntryReason::NoHighestAge;
    if (content.genders == 0)
        return EntryReason::NoGender;
    if (content.ageMin > content.ageMax)
        return EntryReason::AgesReversed;
    return EntryReason::TakesPart;
}

/// Of any kind of list, also of one of plain numbers.
QVariantList listOf(const QVariant &value)
{
    return value.value<QVariantList>();
}

void addOnce(QList<int> &list, int value)
{
    if (!list.contains(value))
        list.append(value);
}

/// The types of the own events of a screen, by sequence.
QMap<int, QList<int>> sequenceTypes(const QVariantMap &screen, int count)
{
    QMap<int, QList<int>> types;
    const QVariantList events = listOf(screen.value(QStringLiteral("event")));
    for (int i = events.size() - 1; i >= 0; --i) {
        const QVariantMap event = events.at(i).toMap();
        bool isDirection = false;
        bool isType = false;
        const int direction = event.value(QStringLiteral("direction")).toInt(&isDirection);
        const int type = event.value(QStringLiteral("type")).toInt(&isType);
        if (!isDirection || direction != 1 || !isType || type < 2)
            continue;
        QVariantList sequences = listOf(event.value(QStringLiteral("seq")));
        if (sequences.isEmpty()) {
            for (int sequence = 1; sequence <= count; ++sequence)
                sequences.append(sequence);
        }
        for (const QVariant &entry : qAsConst(sequences)) {
            bool ok = false;
            const int sequence = entry.toInt(&ok);
            if (ok)
                addOnce(types[sequence], type);
        }
    }
    return types;
}

QMap<int, QList<int>> linkingScreens(
    int screenId, const QMap<int, QList<int>> &types, const QMap<int, QVariantMap> &stageScreens)
{
    QMap<int, QList<int>> identifiers;
    const QList<int> ids = stageScreens.keys();
    for (const int id : ids) {
        if (id == screenId)
            continue;
        const QVariantList events = listOf(stageScreens.value(id).value(QStringLiteral("event")));
        for (const QVariant &entry : events) {
            const QVariantMap event = entry.toMap();
            bool isTarget = false;
            bool isType = false;
            bool isSequence = false;
            const int target = event.value(QStringLiteral("id")).toInt(&isTarget);
            event.value(QStringLiteral("type")).toInt(&isType);
            const int sequence = event.value(QStringLiteral("screenseq")).toInt(&isSequence);
            if (isTarget && target == screenId && isType && isSequence
                && !types.value(sequence).isEmpty())
                addOnce(identifiers[sequence], id);
        }
    }
    return identifiers;
}

struct Setting
{
    const char *key;
    int ScreenSettings::*member;
    int minimum;
    int maximum;
    int whenMissing;
};

const QList<Setting> &numbers()
{
    static const QList<Setting> settings{
        {"interval", &ScreenSettings::interval, 0, 60000, 500},
        {"face-detection-confidence", &ScreenSettings::faceDetectionConfidence, 0, 1000, 0},
        {"face-direction-confidence", &ScreenSettings::faceDirectionConfidence, 0, 1000, 0},
        {"age-confidence", &ScreenSettings::ageConfidence, 0, 1000, 0},
        {"gender-confidence", &ScreenSettings::genderConfidence, 0, 1000, 0},
        {"concurrent", &ScreenSettings::concurrent, 1, 20, 1},
        {"event-sending-limit", &ScreenSettings::eventSendingLimit, 0, NoMaximum, 5000},
    };
    return settings;
}

} // namespace

DetectionTable detectionTable(const QVariantMap &screen, const QMap<int, QVariantMap> &stageScreens)
{
    const QVariantList entries = screen.value(QStringLiteral("contents")).toList();
    DetectionTable table;
    const QVariant id = screen.value(QStringLiteral("id"));
    bool isId = false;
    const int screenId = id.toInt(&isId);
    if (id.isNull() || !isId) {
        for (int i = 0; i < entries.size(); ++i)
            table.reasons.append(EntryReason::NoScreenId);
        return table;
    }

    DetectionContents kept;
    for (int i = 0; i < entries.size(); ++i) {
        const DetectionContent content = record(entries.at(i), i + 1);
        table.reasons.append(reasonAgainst(content));
        if (table.reasons.last() == EntryReason::TakesPart)
            kept.append(content);
    }
    const QMap<int, QList<int>> types = sequenceTypes(stageScreens.value(screenId), kept.size());
    const QMap<int, QList<int>> identifiers = linkingScreens(screenId, types, stageScreens);
    for (DetectionContent content : qAsConst(kept)) {
        const int number = content.sequenceNumber;
        content.identifiers = identifiers.value(number);
        if (!content.identifiers.isEmpty())
            table.contents.append(content);
        else if (types.value(number).isEmpty())
            table.reasons[number - 1] = EntryReason::NoOwnEvent;
        else
            table.reasons[number - 1] = EntryReason::NoLinkingScreen;
    }
    return table;
}

ScreenSettings storedSettings(const QVariantMap &stored)
{
    ScreenSettings settings;
    settings.displayMonitoring
        = isTrue(stored.value(QStringLiteral("display-monitoring"), QStringLiteral("false")));
    for (const Setting &number : numbers()) {
        const QString key = QLatin1String(number.key);
        settings.*number.member
            = stored.contains(key) ? stored.value(key).toInt() : number.whenMissing;
    }
    return settings;
}

ScreenSettings updated(ScreenSettings settings, const QVariantMap &params)
{
    const QStringList keys = params.keys();
    for (const QString &key : keys) {
        const QVariant value = params.value(key);
        if (isKey(key, "display-monitoring"))
            settings.displayMonitoring = isTrue(value);
        for (const Setting &number : numbers()) {
            bool ok = false;
            const int read = value.toInt(&ok);
            if (isKey(key, number.key) && ok && read >= number.minimum
                && (number.maximum == NoMaximum || read <= number.maximum))
                settings.*number.member = read;
        }
    }
    return settings;
}

std::optional<QVariantMap> edited(const QVariantMap &stored, const ScreenSettings &entered)
{
    QVariantMap map = stored;
    bool changed = false;
    for (const Setting &number : numbers()) {
        const QString key = QLatin1String(number.key);
        const int value = entered.*number.member;
        if (!stored.contains(key) || stored.value(key).toInt() != value) {
            map.insert(key, value);
            changed = true;
        }
    }
    const QString monitoring = QStringLiteral("display-monitoring");
    if (isTrue(stored.value(monitoring, QStringLiteral("false"))) != entered.displayMonitoring) {
        map.insert(monitoring,
            entered.displayMonitoring ? QStringLiteral("true") : QStringLiteral("false"));
        changed = true;
    }
    return changed ? std::optional<QVariantMap>(map) : std::nullopt;
}

} // namespace Oracle
