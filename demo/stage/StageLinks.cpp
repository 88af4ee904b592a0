#include "demo/stage/StageLinks.h"

#include "demo/stage/StageKeys.h"
#include "host/KrPluginKeys.h"

#include <QJsonObject>

#include <algorithm>
#include <optional>

namespace Stage::StageLinks {

namespace Keys = Kora::Keys;

namespace {

constexpr int LinkType = 2; // lowest type of an event between screens
constexpr int Incoming = 1;
constexpr int Outgoing = 0;

// Plug-ins read events through QVariant, so that a number may also be written as a text.
std::optional<int> toInteger(const QJsonValue &value)
{
    bool ok = false;
    const int number = value.toVariant().toInt(&ok);
    return ok ? std::make_optional(number) : std::nullopt;
}

int idOf(const QJsonObject &screen)
{
    return screen.value(Keys::Id).toInt();
}

QJsonArray eventsOf(const QJsonObject &screen)
{
    return screen.value(StageKeys::Event).toArray();
}

bool isOpening(const QJsonObject &event)
{
    return toInteger(event.value(StageKeys::Direction)) == Incoming
        && toInteger(event.value(StageKeys::Type)).value_or(0) >= LinkType;
}

bool lists(const QJsonObject &event, int number)
{
    const QJsonArray sequences = event.value(StageKeys::Sequences).toArray();
    return std::any_of(sequences.begin(), sequences.end(),
        [number](const QJsonValue &sequence) { return toInteger(sequence) == number; });
}

/// The sequence of the screen that the event links to; nothing when it is no such event.
std::optional<int> linkedSequence(const QJsonObject &event, int screenId)
{
    if (toInteger(event.value(Keys::Id)) != screenId || !toInteger(event.value(StageKeys::Type)))
        return std::nullopt;
    return toInteger(event.value(StageKeys::TargetSequence));
}

bool linksTo(const QJsonObject &screen, int screenId, int number)
{
    const QJsonArray events = eventsOf(screen);
    return std::any_of(events.begin(), events.end(), [=](const QJsonValue &event) {
        return linkedSequence(event.toObject(), screenId) == number;
    });
}

/// An event for a sequence, and the position of the screen that is to get it; -1: no screen.
struct Link
{
    int position = -1;
    QJsonObject event;
};

/// As the link to the nearest sequence before @p number; without any, a plain one of the first
/// screen but this.
Link nearestLink(const QJsonArray &screens, int screenId, int number)
{
    Link link;
    link.event = {{StageKeys::Type, LinkType}, {StageKeys::Direction, Outgoing},
        {StageKeys::Sequences, QJsonArray()}};
    int nearest = 0;
    for (int i = 0; i < screens.size(); ++i) {
        const QJsonObject screen = screens.at(i).toObject();
        if (idOf(screen) == screenId)
            continue;
        if (link.position < 0)
            link.position = i;
        const QJsonArray events = eventsOf(screen);
        for (const QJsonValue &value : events) {
            const QJsonObject model = value.toObject();
            const int sequence = linkedSequence(model, screenId).value_or(0);
            if (sequence <= nearest || sequence > number)
                continue;
            nearest = sequence;
            link.position = i;
            for (const QString &key : {StageKeys::Type, StageKeys::Direction, StageKeys::Sequences})
                link.event.insert(key, model.value(key)); // an undefined value removes the key
        }
    }
    return link;
}

} // namespace

QJsonArray opened(QJsonArray events, int number)
{
    int first = -1;
    for (int i = 0; i < events.size(); ++i) {
        const QJsonObject event = events.at(i).toObject();
        if (!isOpening(event) || event.value(StageKeys::Sequences).toArray().isEmpty())
            continue;
        if (lists(event, number))
            return events;
        if (first < 0)
            first = i;
    }
    if (first < 0) {
        events.append(QJsonObject{{StageKeys::Type, LinkType}, {StageKeys::Direction, Incoming},
            {StageKeys::Sequences, QJsonArray{number}}});
        return events;
    }
    QJsonObject event = events.at(first).toObject();
    QJsonArray sequences = event.value(StageKeys::Sequences).toArray();
    sequences.append(number);
    event.insert(StageKeys::Sequences, sequences);
    events.replace(first, event);
    return events;
}

QList<int> linkingScreens(const QJsonArray &screens, int screenId, int number)
{
    QList<int> ids;
    for (const QJsonValue &value : screens) {
        const QJsonObject screen = value.toObject();
        if (idOf(screen) != screenId && linksTo(screen, screenId, number))
            ids << idOf(screen);
    }
    return ids;
}

QJsonArray linked(QJsonArray screens, int screenId, int number)
{
    if (!linkingScreens(screens, screenId, number).isEmpty())
        return screens;
    Link link = nearestLink(screens, screenId, number);
    if (link.position < 0)
        return screens; // the only screen

    link.event.insert(Keys::Id, screenId);
    link.event.insert(StageKeys::TargetSequence, number);
    QJsonObject screen = screens.at(link.position).toObject();
    QJsonArray events = eventsOf(screen);
    events.append(link.event);
    screen.insert(StageKeys::Event, events);
    screens.replace(link.position, screen);
    return screens;
}

} // namespace Stage::StageLinks
