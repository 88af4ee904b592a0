#include "core/screen/DetectionContent.h"

#include "core/screen/ContentEntry.h"
#include "host/KrPluginKeys.h"

#include <QSet>

#include <algorithm>
#include <optional>

namespace PluginKrHvcP2 {

namespace Keys = Kora::Keys;

namespace {

constexpr int OutgoingDirection = 1;
constexpr int LowestSequenceType = 2;

std::optional<int> toInt(const QVariant &value)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    return ok ? std::optional<int>(number) : std::nullopt;
}

/// What keeps a content from being valid; TakesPart when nothing does.
EntryReason validity(const DetectionContent &content)
{
    if (content.ageMin < 0)
        return EntryReason::NoLowestAge;
    if (content.ageMax < 0)
        return EntryReason::NoHighestAge;
    if (content.genders == UnknownGender)
        return EntryReason::NoGender;
    return content.ageMin > content.ageMax ? EntryReason::AgesReversed : EntryReason::TakesPart;
}

QVariantList events(const QVariantMap &screen)
{
    return screen.value(QStringLiteral("event")).value<QVariantList>();
}

/// The sequences that this screen's own events open to links. @p contentCount bounds the events
/// that stand for all sequences.
QSet<int> openSequences(const QVariantMap &screen, int contentCount)
{
    QSet<int> sequences;
    bool allOpen = false;
    const QVariantList entries = events(screen);
    for (const QVariant &entry : entries) {
        const QVariantMap event = entry.toMap();
        const std::optional<int> type = toInt(event.value(QStringLiteral("type")));
        if (toInt(event.value(QStringLiteral("direction"))) != OutgoingDirection || !type
            || *type < LowestSequenceType)
            continue;

        // value(), unlike toList(), takes lists of plain ints as well.
        const auto listed = event.value(QStringLiteral("seq")).value<QVariantList>();
        allOpen = allOpen || listed.isEmpty();
        for (const QVariant &item : listed) {
            if (const std::optional<int> sequence = toInt(item))
                sequences.insert(*sequence);
        }
    }
    for (int sequence = 1; allOpen && sequence <= contentCount; ++sequence)
        sequences.insert(sequence);
    return sequences;
}

/// The ids of the screens linked to each of the @p open sequences of screen @p screenId.
QMap<int, QList<int>> linkedScreens(
    int screenId, const QSet<int> &open, const QMap<int, QVariantMap> &stageScreens)
{
    QMap<int, QList<int>> identifiers;
    for (auto it = stageScreens.cbegin(); it != stageScreens.cend(); ++it) {
        if (it.key() == screenId)
            continue;
        const QVariantList entries = events(it.value());
        for (const QVariant &entry : entries) {
            const QVariantMap event = entry.toMap();
            const std::optional<int> sequence = toInt(event.value(QStringLiteral("screenseq")));
            if (toInt(event.value(Keys::Id)) != screenId
                || !toInt(event.value(QStringLiteral("type"))) || !sequence
                || !open.contains(*sequence))
                continue;
            // The screens come in the order of their ids: one that is there already is the last.
            QList<int> &ids = identifiers[*sequence];
            if (ids.isEmpty() || ids.last() != it.key())
                ids.append(it.key());
        }
    }
    return identifiers;
}

} // namespace

bool DetectionContent::isValid() const
{
    return sequenceNumber >= 0 && validity(*this) == EntryReason::TakesPart;
}

DetectionTable detectionTable(const QVariantMap &screen, const QMap<int, QVariantMap> &stageScreens)
{
    const QVariantList entries = screen.value(Keys::Contents).toList();
    DetectionTable table;
    table.reasons.fill(EntryReason::NoScreenId, entries.size());
    const QVariant id = screen.value(Keys::Id);
    const std::optional<int> screenId = toInt(id);
    if (id.isNull() || !screenId)
        return table;

    DetectionContents valid;
    for (int position = 0; position < entries.size(); ++position) {
        const DetectionContent content
            = contentForDetection(entries.at(position).toMap(), position + 1);
        table.reasons[position] = validity(content);
        if (content.isValid())
            valid.append(content);
    }

    const QSet<int> open = openSequences(stageScreens.value(*screenId), valid.size());
    const QMap<int, QList<int>> identifiers = linkedScreens(*screenId, open, stageScreens);
    for (DetectionContent &content : valid) {
        const int number = content.sequenceNumber;
        content.identifiers = identifiers.value(number);
        if (!content.identifiers.isEmpty()) {
            table.contents.append(content);
        } else {
            table.reasons[number - 1]
                = open.contains(number) ? EntryReason::NoLinkingScreen : EntryReason::NoOwnEvent;
        }
    }
    return table;
}

DetectionContents detectionContents(
    const QVariantMap &screen, const QMap<int, QVariantMap> &stageScreens)
{
    return detectionTable(screen, stageScreens).contents;
}

DetectionContent findContent(const DetectionContents &contents, qint64 sequenceNumber)
{
    const auto it = std::find_if(contents.cbegin(), contents.cend(),
        [=](const DetectionContent &content) { return content.sequenceNumber == sequenceNumber; });
    return it != contents.cend() ? *it : DetectionContent();
}

} // namespace PluginKrHvcP2
