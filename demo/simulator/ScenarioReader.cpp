#include "demo/simulator/ScenarioReader.h"

#include "demo/simulator/ScenarioFormat.h"
#include "demo/support/JsonReader.h"

#include <QFile>
#include <QStringList>

#include <cmath>
#include <functional>
#include <limits>

// At file scope, as Qt asks: the macro declares a function of the global namespace.
static void initSimulationResource()
{
    Q_INIT_RESOURCE(simulation);
}

namespace Simulation {

using Demo::JsonProblem;
using Demo::JsonReader;

namespace {

constexpr int MaxPauseMs = 60 * 1000;
constexpr int MaxInt = std::numeric_limits<int>::max();

/// A time of the scenario: seconds in the file, milliseconds here.
qint64 milliseconds(JsonReader &reader, const QString &key)
{
    return std::llround(reader.number(key, 0, MaxSeconds) * 1000);
}

std::optional<qint64> optionalMilliseconds(JsonReader &reader, const QString &key)
{
    return reader.contains(key) ? std::make_optional(milliseconds(reader, key)) : std::nullopt;
}

/// Reads each element of the list @p key with @p read, which takes all keys that are known.
template <typename T>
QVector<T> readObjects(
    JsonReader &parent, const QString &key, const std::function<T(JsonReader &)> &read)
{
    QVector<T> values;
    parent.objects(key, MaxEntries, [&](JsonReader &reader) {
        values.append(read(reader));
        reader.finish();
    });
    return values;
}

QVector<QByteArray> readLines(JsonReader &reader)
{
    QVector<QByteArray> lines;
    const QStringList texts = reader.texts(QStringLiteral("lines"), MaxEntries);
    for (const QString &text : texts)
        lines.append(text.toUtf8());
    return lines;
}

/// Takes the position's keys from the object that also holds others; an absent one is @p before.
Position readPosition(JsonReader &reader, const Position &before)
{
    Position position;
    position.x = reader.integer(QStringLiteral("x"), before.x, 0, Sensor::MaxX);
    position.y = reader.integer(QStringLiteral("y"), before.y, 0, Sensor::MaxY);
    position.size = reader.integer(QStringLiteral("size"), before.size, 1, Sensor::MaxSize);
    return position;
}

Direction readDirection(JsonReader &reader, const Direction &before)
{
    const auto angle = [&reader](const QString &key, int fallback) {
        return reader.integer(key, fallback, -Sensor::MaxAngle, Sensor::MaxAngle);
    };
    Direction direction;
    direction.lr = angle(QStringLiteral("lr"), before.lr);
    direction.ud = angle(QStringLiteral("ud"), before.ud);
    direction.roll = angle(QStringLiteral("roll"), before.roll);
    return direction;
}

Confidence readConfidence(JsonReader &parent, const Confidence &before)
{
    JsonReader reader = parent.object(QStringLiteral("confidence"));
    const auto value = [&reader](const QString &key, int fallback) {
        return reader.integer(key, fallback, 0, Sensor::MaxConfidence);
    };
    Confidence confidence;
    confidence.face = value(QStringLiteral("face"), before.face);
    confidence.direction = value(QStringLiteral("direction"), before.direction);
    confidence.age = value(QStringLiteral("age"), before.age);
    confidence.gender = value(QStringLiteral("gender"), before.gender);
    reader.finish();
    return confidence;
}

Noise readNoise(JsonReader &parent, const Noise &before)
{
    JsonReader reader = parent.object(QStringLiteral("noise"));
    Noise noise;
    noise.position = reader.integer(QStringLiteral("position"), before.position, 0, Sensor::MaxX);
    noise.size = reader.integer(QStringLiteral("size"), before.size, 0, Sensor::MaxSize);
    noise.direction
        = reader.integer(QStringLiteral("direction"), before.direction, 0, Sensor::MaxAngle);
    noise.age = reader.integer(QStringLiteral("age"), before.age, 0, Sensor::MaxAge);
    noise.confidence
        = reader.integer(QStringLiteral("confidence"), before.confidence, 0, Sensor::MaxConfidence);
    noise.genderError = reader.number(QStringLiteral("genderError"), before.genderError, 1);
    noise.miss = reader.number(QStringLiteral("miss"), before.miss, 1);
    reader.finish();
    return noise;
}

Gender readGender(JsonReader &reader)
{
    const QString key = QStringLiteral("gender");
    if (!reader.contains(key))
        return Gender::Unknown;
    const QString text = reader.text(key);
    if (text == QLatin1String("male"))
        return Gender::Male;
    if (text == QLatin1String("female"))
        return Gender::Female;
    reader.fail(key, QStringLiteral("must be \"male\" or \"female\""));
    return Gender::Unknown;
}

QVector<Waypoint> readPath(JsonReader &viewer, const Position &start)
{
    Waypoint last{-1, start};
    return readObjects<Waypoint>(viewer, QStringLiteral("path"), [&last](JsonReader &reader) {
        const QString at = QStringLiteral("at");
        reader.require(at);
        const qint64 atMs = milliseconds(reader, at);
        if (atMs <= last.atMs)
            reader.fail(at, QStringLiteral("must be later than that of the waypoint before"));
        last = {atMs, readPosition(reader, last.position)};
        return last;
    });
}

QVector<LookAway> readLookAway(JsonReader &viewer, const Direction &direction)
{
    return readObjects<LookAway>(viewer, QStringLiteral("lookAway"), [&](JsonReader &reader) {
        const QString from = QStringLiteral("from");
        const QString to = QStringLiteral("to");
        LookAway entry;
        reader.require(from);
        entry.fromMs = milliseconds(reader, from);
        reader.require(to);
        entry.toMs = milliseconds(reader, to);
        if (entry.toMs <= entry.fromMs)
            reader.fail(to, QStringLiteral("must be later than \"from\""));
        entry.direction = readDirection(reader, direction);
        entry.lost = reader.boolean(QStringLiteral("lost"), false);
        return entry;
    });
}

/// @p pattern carries the confidence and noise of the scenario.
Viewer readViewer(JsonReader &reader, const Viewer &pattern)
{
    Viewer viewer = pattern;
    reader.text(QStringLiteral("name")); // tells the reader of the file who is meant
    viewer.arriveMs = milliseconds(reader, QStringLiteral("arrive"));
    const QString leave = QStringLiteral("leave");
    viewer.leaveMs = optionalMilliseconds(reader, leave);
    if (viewer.leaveMs && *viewer.leaveMs <= viewer.arriveMs)
        reader.fail(leave, QStringLiteral("must be later than \"arrive\""));
    viewer.gender = readGender(reader);
    if (reader.contains(QStringLiteral("age")))
        viewer.age = reader.integer(QStringLiteral("age"), 0, 0, Sensor::MaxAge);
    viewer.position = readPosition(reader, viewer.position);
    viewer.path = readPath(reader, viewer.position);
    viewer.direction = readDirection(reader, viewer.direction);
    viewer.lookAway = readLookAway(reader, viewer.direction);
    viewer.ageMarkAfterMs = optionalMilliseconds(reader, QStringLiteral("ageMarkAfter"));
    viewer.genderMarkAfterMs = optionalMilliseconds(reader, QStringLiteral("genderMarkAfter"));
    viewer.confidence = readConfidence(reader, pattern.confidence);
    viewer.noise = readNoise(reader, pattern.noise);
    return viewer;
}

Fault::Kind readKind(JsonReader &reader)
{
    const QStringList names = faultNames();
    const QString key = QStringLiteral("kind");
    reader.require(key);
    const int kind = names.indexOf(reader.take(key).toString());
    if (kind < 0)
        reader.fail(key, QStringLiteral("must be one of %1").arg(names.join(QLatin1String(", "))));
    return static_cast<Fault::Kind>(qMax(kind, 0));
}

Fault readFault(JsonReader &reader)
{
    Fault fault;
    fault.kind = readKind(reader);
    fault.frame = reader.integer(QStringLiteral("frame"), 0, 0, MaxInt);
    switch (fault.kind) {
    case Fault::Crash:
    case Fault::CloseOutput:
        break;
    case Fault::Exit:
        fault.status = reader.integer(QStringLiteral("status"), 0, 0, 255);
        break;
    case Fault::Pieces:
        fault.pieces = reader.integer(QStringLiteral("pieces"), fault.pieces, 2, 10000);
        fault.pauseMs = reader.integer(QStringLiteral("pause"), fault.pauseMs, 0, MaxPauseMs);
        Q_FALLTHROUGH();
    case Fault::Silence:
    case Fault::Flood:
        fault.frames = reader.integer(QStringLiteral("frames"), 1, 0, MaxInt);
        break;
    case Fault::Garbage:
    case Fault::ErrorOutput:
        fault.frames = reader.integer(QStringLiteral("frames"), 1, 0, MaxInt);
        fault.lines = readLines(reader);
        break;
    }
    if (fault.lines.isEmpty())
        fault.lines = defaultLines(fault.kind);
    return fault;
}

Scenario readScenario(JsonReader &reader)
{
    Scenario scenario;
    reader.text(QStringLiteral("description")); // tells the reader of the file what it is for
    scenario.seed = reader.unsignedInteger(QStringLiteral("seed"), scenario.seed);
    scenario.repeatMs = milliseconds(reader, QStringLiteral("repeat"));
    scenario.absentPorts = reader.integers(QStringLiteral("absentPorts"), MaxEntries, 0, MaxInt);
    scenario.ignoreStopKey = reader.boolean(QStringLiteral("ignoreStopKey"), false);
    scenario.stopDelayMs = reader.integer(QStringLiteral("stopDelay"), 0, 0, MaxPauseMs);
    Viewer pattern;
    pattern.confidence = readConfidence(reader, pattern.confidence);
    pattern.noise = readNoise(reader, pattern.noise);
    scenario.viewers = readObjects<Viewer>(reader, QStringLiteral("viewers"),
        [&pattern](JsonReader &viewer) { return readViewer(viewer, pattern); });
    scenario.faults = readObjects<Fault>(reader, QStringLiteral("faults"), readFault);
    reader.finish();
    return scenario;
}

/// What concerns the program cannot come and go with the viewers.
void refuseProgramKeys(JsonReader &reader)
{
    for (const QString &key : {QStringLiteral("absentPorts"), QStringLiteral("ignoreStopKey"),
             QStringLiteral("stopDelay"), QStringLiteral("faults")}) {
        if (reader.contains(key))
            reader.fail(key, QStringLiteral("has no place in a live file"));
    }
}

std::optional<Scenario> parse(const QByteArray &json, const QString &name, QString *error,
    const std::function<Scenario(JsonReader &)> &read)
{
    Scenario scenario;
    const JsonProblem problem
        = Demo::readJson(json, [&](JsonReader &reader) { scenario = read(reader); });
    if (!problem.isSet())
        return scenario;
    *error = problem.message(name);
    return std::nullopt;
}

} // namespace

std::optional<Scenario> parseScenario(const QByteArray &json, const QString &name, QString *error)
{
    return parse(json, name, error, readScenario);
}

std::optional<Scenario> parseLiveScenario(
    const QByteArray &json, const QString &name, QString *error)
{
    return parse(json, name, error, [](JsonReader &reader) {
        refuseProgramKeys(reader);
        return readScenario(reader);
    });
}

QByteArray builtInScenario()
{
    initSimulationResource();
    QFile file(QStringLiteral(":/simulation/everyday.json"));
    const bool opened = file.open(QIODevice::ReadOnly);
    Q_ASSERT_X(opened, Q_FUNC_INFO, "the scenario is not compiled in");
    Q_UNUSED(opened)
    return file.readAll();
}

} // namespace Simulation
