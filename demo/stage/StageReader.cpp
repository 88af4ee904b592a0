#include "demo/stage/StageReader.h"

#include "demo/stage/IdleSequence.h"
#include "demo/stage/StageColor.h"
#include "demo/stage/StageKeys.h"
#include "demo/support/JsonReader.h"
#include "host/KrPluginKeys.h"

#include <QCoreApplication>
#include <QHash>

namespace Stage::StageReader {

using Demo::JsonPath;
using Demo::JsonProblem;
using Demo::JsonReader;

namespace Keys = Kora::Keys;

namespace {

constexpr int MaxEntries = 1000; // of a list that programs go through

QString tr(const char *text)
{
    return QCoreApplication::translate("Stage::StageReader", text);
}

void checkCard(JsonReader &card)
{
    card.text(StageKeys::Title);
    card.text(StageKeys::Subtitle);
    const QString color = card.text(StageKeys::Color);
    card.text(StageKeys::Picture);
    card.number(StageKeys::Duration, DefaultDuration, MaxDuration);
    if (!color.isEmpty() && !colorFromText(color))
        card.fail(StageKeys::Color, tr("\"%1\" is not a colour").arg(color));
}

void checkEntry(JsonReader &content)
{
    content.require(StageKeys::Params);
    content.object(StageKeys::Params);
    content.text(Keys::Name);
    JsonReader card = content.object(StageKeys::Card);
    checkCard(card);
}

void checkIdle(JsonReader &screen)
{
    if (!screen.contains(StageKeys::Idle))
        return;
    JsonReader idle = screen.object(StageKeys::Idle);
    idle.require(StageKeys::Sequence);
    idle.integer(StageKeys::Sequence, 1, 1, MaxEntries);
    idle.integer(StageKeys::After, IdleSequence::DefaultAfter, IdleSequence::MinAfter,
        IdleSequence::MaxAfter);
}

void checkScreen(JsonReader &screen)
{
    screen.text(Keys::Name);
    screen.object(Keys::PluginData);
    screen.objects(Keys::Contents, MaxEntries, checkEntry);
    screen.objects(StageKeys::Event, MaxEntries, [](JsonReader & /*event*/) {});
    checkIdle(screen);
}

void checkStage(JsonReader &stage)
{
    stage.text(StageKeys::Title);
    stage.require(StageKeys::Screens);
    QHash<int, int> positions; // by id
    stage.objects(StageKeys::Screens, MaxEntries, [&positions](JsonReader &screen) {
        screen.require(Keys::Id);
        const int id = screen.integer(Keys::Id);
        checkScreen(screen);
        if (positions.contains(id)) {
            const JsonPath owner = JsonPath().key(StageKeys::Screens).element(positions.value(id));
            screen.fail(Keys::Id,
                tr("%1 already belongs to %2").arg(QString::number(id), owner.toString()));
        }
        positions.insert(id, positions.size());
    });
    if (positions.isEmpty())
        stage.fail(StageKeys::Screens, tr("must hold at least one screen"));
    if (!stage.contains(StageKeys::Screen))
        return;
    const int played = stage.integer(StageKeys::Screen);
    if (!positions.contains(played))
        stage.fail(StageKeys::Screen, tr("there is no screen %1").arg(played));
}

} // namespace

JsonProblem read(const QByteArray &json, QJsonObject *stage)
{
    return Demo::readJson(json, [stage](JsonReader &reader) {
        *stage = reader.values();
        checkStage(reader);
    });
}

JsonProblem checkContent(const QJsonValue &content, int index)
{
    JsonProblem problem;
    JsonReader reader(content, JsonPath().key(Keys::Contents).element(index), problem);
    checkEntry(reader);
    return problem;
}

} // namespace Stage::StageReader
