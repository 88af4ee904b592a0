#include "demo/simulator/ScenarioReader.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QJsonValue>
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

namespace {

constexpr qint64 MaxMs = 86400 * qint64(1000); // a day
constexpr int MaxPauseMs = 60 * 1000;
constexpr int MaxEntries = 10000; // of a list

/// Keeps the first thing that is wrong; everything read after it is of no use.
class Problem
{
public:
    bool isSet() const { return !m_text.isEmpty(); }
    QString text() const { return m_text; }

    void set(const QString &path, const QString &reason)
    {
        if (!isSet())
            m_text = path.isEmpty() ? reason : path + QLatin1String(": ") + reason;
    }

private:
    QString m_text;
};

/// Takes the values of one JSON object key by key; what nobody took is an unknown key.
class ObjectReader
{
public:
    ObjectReader(const QJsonValue &value, const QString &path, Problem &problem)
        : m_object(value.toObject())
        , m_path(path)
        , m_problem(problem)
    {
        if (!value.isObject())
            m_problem.set(m_path, QStringLiteral("must be an object"));
    }

    bool contains(const QString &key) const { return m_object.contains(key); }

    QString pathOf(const QString &key) const
    {
        return m_path.isEmpty() ? key : m_path + QLatin1Char('.') + key;
    }

    void fail(const QString &key, const QString &reason) { m_problem.set(pathOf(key), reason); }

    QJsonValue take(const QString &key) { return m_object.take(key); }

    /// As take(), but the key has to be there.
    QJsonValue require(const QString &key)
    {
        if (!contains(key))
            fail(key, QStringLiteral("is missing"));
        return take(key);
    }

    int integer(const QString &key, int fallback, int min, int max)
    {
        return contains(key) ? int(wholeNumber(take(key), pathOf(key), min, max)) : fallback;
    }

    qint64 wholeNumber(const QJsonValue &value, const QString &path, qint64 min, qint64 max)
    {
        const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
        if (!(number >= double(min) && number <= double(max)) || std::floor(number) != number) {
            m_problem.set(
                path, QStringLiteral("must be a whole number from %1 to %2").arg(min).arg(max));
            return min;
        }
        return qint64(number);
    }

    double share(const QString &key, double fallback)
    {
        return contains(key) ? number(key, take(key), 1) : fallback;
    }

    /// A time of the scenario: seconds in the file, milliseconds here.
    qint64 milliseconds(const QString &key, const QJsonValue &value)
    {
        return std::llround(number(key, value, double(MaxMs) / 1000) * 1000);
    }

    std::optional<qint64> optionalMilliseconds(const QString &key)
    {
        if (!contains(key))
            return std::nullopt;
        return milliseconds(key, take(key));
    }

    bool boolean(const QString &key, bool fallback)
    {
        const QJsonValue value = take(key);
        if (!value.isUndefined() && !value.isBool())
            fail(key, QStringLiteral("must be true or false"));
        return value.toBool(fallback);
    }

    QString text(const QString &key)
    {
        const QJsonValue value = take(key);
        if (!value.isUndefined() && !value.isString())
            fail(key, QStringLiteral("must be a text"));
        return value.toString();
    }

    QJsonArray list(const QString &key)
    {
        const QJsonValue value = take(key);
        if (!value.isUndefined() && !value.isArray())
            fail(key, QStringLiteral("must be a list"));
        QJsonArray list = value.toArray();
        if (list.size() <= MaxEntries)
            return list;
        fail(key, QStringLiteral("must not hold more than %1 entries").arg(MaxEntries));
        return {};
    }

    QVector<QByteArray> lines(const QString &key)
    {
        QVector<QByteArray> lines;
        const QJsonArray texts = list(key);
        for (int i = 0; i < texts.size(); ++i) {
            if (!texts.at(i).isString())
                m_problem.set(elementPath(key, i), QStringLiteral("must be a text"));
            lines.append(texts.at(i).toString().toUtf8());
        }
        return lines;
    }

    QString elementPath(const QString &key, int i) const
    {
        return QStringLiteral("%1[%2]").arg(pathOf(key)).arg(i);
    }

    /// Reads each element of the list \a key with \a read.
    template <typename T>
    QVector<T> objects(const QString &key, const std::function<T(ObjectReader &)> &read)
    {
        QVector<T> values;
        const QJsonArray array = list(key);
        for (int i = 0; i < array.size() && !m_problem.isSet(); ++i) {
            ObjectReader element(array.at(i), elementPath(key, i), m_problem);
            values.append(read(element));
            element.finish();
        }
        return values;
    }

    /// The object \a key, or an empty one when it is not there.
    ObjectReader object(const QString &key)
    {
        return {contains(key) ? take(key) : QJsonValue(QJsonObject()), pathOf(key), m_problem};
    }

    /// Call it when every known key has been taken.
    void finish()
    {
        if (!m_object.isEmpty())
            fail(m_object.begin().key(), QStringLiteral("unknown key"));
    }

private:
    double number(const QString &key, const QJsonValue &value, double max)
    {
        const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
        if (!(number >= 0 && number <= max)) {
            fail(key, QStringLiteral("must be a number from 0 to %1").arg(max));
            return 0;
        }
        return number;
    }

    QJsonObject m_object; // what has not been taken yet
    QString m_path;
    Problem &m_problem;
};

/// Takes the position's keys from the object that also holds others; an absent one is \a before.
Position readPosition(ObjectReader &reader, const Position &before)
{
    Position position;
    position.x = reader.integer(QStringLiteral("x"), before.x, 0, Sensor::MaxX);
    position.y = reader.integer(QStringLiteral("y"), before.y, 0, Sensor::MaxY);
    position.size = reader.integer(QStringLiteral("size"), before.size, 1, Sensor::MaxSize);
    return position;
}

Direction readDirection(ObjectReader &reader, const Direction &before)
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

Confidence readConfidence(ObjectReader &parent, const Confidence &before)
{
    ObjectReader reader = parent.object(QStringLiteral("confidence"));
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

Noise readNoise(ObjectReader &parent, const Noise &before)
{
    ObjectReader reader = parent.object(QStringLiteral("noise"));
    Noise noise;
    noise.position = reader.integer(QStringLiteral("position"), before.position, 0, Sensor::MaxX);
    noise.size = reader.integer(QStringLiteral("size"), before.size, 0, Sensor::MaxSize);
    noise.direction
        = reader.integer(QStringLiteral("direction"), before.direction, 0, Sensor::MaxAngle);
    noise.age = reader.integer(QStringLiteral("age"), before.age, 0, Sensor::MaxAge);
    noise.confidence
        = reader.integer(QStringLiteral("confidence"), before.confidence, 0, Sensor::MaxConfidence);
    noise.genderError = reader.share(QStringLiteral("genderError"), before.genderError);
    noise.miss = reader.share(QStringLiteral("miss"), before.miss);
    reader.finish();
    return noise;
}

Gender readGender(ObjectReader &reader)
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

QVector<Waypoint> readPath(ObjectReader &viewer, const Position &start)
{
    Waypoint last{-1, start};
    return viewer.objects<Waypoint>(QStringLiteral("path"), [&last](ObjectReader &reader) {
        const QString at = QStringLiteral("at");
        const qint64 atMs = reader.milliseconds(at, reader.require(at));
        if (atMs <= last.atMs)
            reader.fail(at, QStringLiteral("must be later than that of the waypoint before"));
        last = {atMs, readPosition(reader, last.position)};
        return last;
    });
}

QVector<LookAway> readLookAway(ObjectReader &viewer, const Direction &direction)
{
    return viewer.objects<LookAway>(QStringLiteral("lookAway"), [&direction](ObjectReader &reader) {
        const QString from = QStringLiteral("from");
        const QString to = QStringLiteral("to");
        LookAway entry;
        entry.fromMs = reader.milliseconds(from, reader.require(from));
        entry.toMs = reader.milliseconds(to, reader.require(to));
        if (entry.toMs <= entry.fromMs)
            reader.fail(to, QStringLiteral("must be later than \"from\""));
        entry.direction = readDirection(reader, direction);
        entry.lost = reader.boolean(QStringLiteral("lost"), false);
        return entry;
    });
}

/// \a pattern carries the confidence and noise of the scenario.
Viewer readViewer(ObjectReader &reader, const Viewer &pattern)
{
    Viewer viewer = pattern;
    reader.text(QStringLiteral("name")); // tells the reader of the file who is meant
    viewer.arriveMs = reader.optionalMilliseconds(QStringLiteral("arrive")).value_or(0);
    const QString leave = QStringLiteral("leave");
    viewer.leaveMs = reader.optionalMilliseconds(leave);
    if (viewer.leaveMs && *viewer.leaveMs <= viewer.arriveMs)
        reader.fail(leave, QStringLiteral("must be later than \"arrive\""));
    viewer.gender = readGender(reader);
    if (reader.contains(QStringLiteral("age")))
        viewer.age = reader.integer(QStringLiteral("age"), 0, 0, Sensor::MaxAge);
    viewer.position = readPosition(reader, viewer.position);
    viewer.path = readPath(reader, viewer.position);
    viewer.direction = readDirection(reader, viewer.direction);
    viewer.lookAway = readLookAway(reader, viewer.direction);
    viewer.ageMarkAfterMs = reader.optionalMilliseconds(QStringLiteral("ageMarkAfter"));
    viewer.genderMarkAfterMs = reader.optionalMilliseconds(QStringLiteral("genderMarkAfter"));
    viewer.confidence = readConfidence(reader, pattern.confidence);
    viewer.noise = readNoise(reader, pattern.noise);
    return viewer;
}

/// What the program prints as garbage when the scenario names no lines: things that a damaged
/// transmission leaves behind, bytes that are no UTF-8 and a NUL among them.
QVector<QByteArray> defaultGarbage()
{
    return {"Index:", "Index:x\tX:1 Y:2", "Age\tAge:4O Confidence:", "Gender\tGender:male",
        "Face Direction\tUD:7", "\t \t", QByteArray("\xff\xfe\x00\xc3(", 5), "Failed to execute."};
}

Fault::Kind readKind(ObjectReader &reader)
{
    static const QStringList names{QStringLiteral("crash"), QStringLiteral("exit"),
        QStringLiteral("silence"), QStringLiteral("garbage"), QStringLiteral("pieces"),
        QStringLiteral("flood"), QStringLiteral("errorOutput"), QStringLiteral("closeOutput")};
    const QString key = QStringLiteral("kind");
    const int kind = names.indexOf(reader.require(key).toString());
    if (kind < 0)
        reader.fail(key, QStringLiteral("must be one of %1").arg(names.join(QLatin1String(", "))));
    return Fault::Kind(qMax(kind, 0));
}

Fault readFault(ObjectReader &reader)
{
    constexpr int MaxFrames = std::numeric_limits<int>::max();
    Fault fault;
    fault.kind = readKind(reader);
    fault.frame = reader.integer(QStringLiteral("frame"), 0, 0, MaxFrames);
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
        fault.frames = reader.integer(QStringLiteral("frames"), 1, 0, MaxFrames);
        break;
    case Fault::Garbage:
    case Fault::ErrorOutput:
        fault.frames = reader.integer(QStringLiteral("frames"), 1, 0, MaxFrames);
        fault.lines = reader.lines(QStringLiteral("lines"));
        break;
    }
    if (fault.lines.isEmpty() && fault.kind == Fault::Garbage)
        fault.lines = defaultGarbage();
    if (fault.lines.isEmpty() && fault.kind == Fault::ErrorOutput)
        fault.lines = {"HvcCon: the sensor does not answer"};
    return fault;
}

Scenario readScenario(ObjectReader &reader)
{
    constexpr int MaxInt = std::numeric_limits<int>::max();
    Scenario scenario;
    reader.text(QStringLiteral("description"));
    if (reader.contains(QStringLiteral("seed"))) {
        const QString key = QStringLiteral("seed");
        scenario.seed = quint32(reader.wholeNumber(
            reader.take(key), reader.pathOf(key), 0, std::numeric_limits<quint32>::max()));
    }
    scenario.repeatMs = reader.optionalMilliseconds(QStringLiteral("repeat")).value_or(0);
    const QString absentPorts = QStringLiteral("absentPorts");
    const QJsonArray ports = reader.list(absentPorts);
    for (int i = 0; i < ports.size(); ++i) {
        scenario.absentPorts.append(
            int(reader.wholeNumber(ports.at(i), reader.elementPath(absentPorts, i), 0, MaxInt)));
    }
    scenario.ignoreStopKey = reader.boolean(QStringLiteral("ignoreStopKey"), false);
    scenario.stopDelayMs = reader.integer(QStringLiteral("stopDelay"), 0, 0, MaxPauseMs);
    Viewer pattern;
    pattern.confidence = readConfidence(reader, pattern.confidence);
    pattern.noise = readNoise(reader, pattern.noise);
    scenario.viewers = reader.objects<Viewer>(QStringLiteral("viewers"),
        [&pattern](ObjectReader &viewer) { return readViewer(viewer, pattern); });
    scenario.faults = reader.objects<Fault>(QStringLiteral("faults"), readFault);
    reader.finish();
    return scenario;
}

} // namespace

std::optional<Scenario> parseScenario(const QByteArray &json, const QString &name, QString *error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        // The offset lies at or behind the culprit, depending on the error: good for a line only.
        const int line = 1 + json.left(parseError.offset).count('\n');
        *error = QStringLiteral("%1:%2: %3")
                     .arg(name, QString::number(line), parseError.errorString());
        return std::nullopt;
    }
    Problem problem;
    const QJsonValue root
        = document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    ObjectReader reader(root, QString(), problem);
    const Scenario scenario = readScenario(reader);
    if (problem.isSet()) {
        *error = name + QLatin1String(": ") + problem.text();
        return std::nullopt;
    }
    return scenario;
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
