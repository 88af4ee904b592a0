#include "demo/simulator/ScenarioWriter.h"

#include "demo/simulator/ScenarioFormat.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Simulation {

namespace {

double seconds(qint64 ms)
{
    return static_cast<double>(ms) / 1000;
}

/// Inserts @p value unless it is what a reader takes for granted.
template <typename T>
void insert(QJsonObject *object, const QString &key, const T &value, const T &granted)
{
    if (value != granted)
        object->insert(key, value);
}

void insertSeconds(QJsonObject *object, const QString &key, const std::optional<qint64> &ms)
{
    if (ms)
        object->insert(key, seconds(*ms));
}

/// Inserts a list or an object that holds something.
template <typename T>
void insertFilled(QJsonObject *object, const QString &key, const T &values)
{
    if (!values.isEmpty())
        object->insert(key, values);
}

template <typename T, typename Function>
QJsonArray toArray(const QVector<T> &values, const Function &toJson)
{
    QJsonArray array;
    for (const T &value : values)
        array.append(toJson(value));
    return array;
}

void insertPosition(QJsonObject *object, const Position &position, const Position &granted)
{
    insert(object, QStringLiteral("x"), position.x, granted.x);
    insert(object, QStringLiteral("y"), position.y, granted.y);
    insert(object, QStringLiteral("size"), position.size, granted.size);
}

void insertDirection(QJsonObject *object, const Direction &direction, const Direction &granted)
{
    insert(object, QStringLiteral("lr"), direction.lr, granted.lr);
    insert(object, QStringLiteral("ud"), direction.ud, granted.ud);
    insert(object, QStringLiteral("roll"), direction.roll, granted.roll);
}

QJsonObject toJson(const Confidence &confidence)
{
    const Confidence granted;
    QJsonObject object;
    insert(&object, QStringLiteral("face"), confidence.face, granted.face);
    insert(&object, QStringLiteral("direction"), confidence.direction, granted.direction);
    insert(&object, QStringLiteral("age"), confidence.age, granted.age);
    insert(&object, QStringLiteral("gender"), confidence.gender, granted.gender);
    return object;
}

QJsonObject toJson(const Noise &noise)
{
    const Noise granted;
    QJsonObject object;
    insert(&object, QStringLiteral("position"), noise.position, granted.position);
    insert(&object, QStringLiteral("size"), noise.size, granted.size);
    insert(&object, QStringLiteral("direction"), noise.direction, granted.direction);
    insert(&object, QStringLiteral("age"), noise.age, granted.age);
    insert(&object, QStringLiteral("confidence"), noise.confidence, granted.confidence);
    insert(&object, QStringLiteral("genderError"), noise.genderError, granted.genderError);
    insert(&object, QStringLiteral("miss"), noise.miss, granted.miss);
    return object;
}

QJsonArray pathToJson(const Viewer &viewer)
{
    Position before = viewer.position;
    return toArray(viewer.path, [&before](const Waypoint &waypoint) {
        QJsonObject object{{QStringLiteral("at"), seconds(waypoint.atMs)}};
        insertPosition(&object, waypoint.position, before);
        before = waypoint.position;
        return object;
    });
}

QJsonArray glancesToJson(const Viewer &viewer)
{
    return toArray(viewer.lookAway, [&viewer](const LookAway &glance) {
        QJsonObject object{{QStringLiteral("from"), seconds(glance.fromMs)},
            {QStringLiteral("to"), seconds(glance.toMs)}};
        insertDirection(&object, glance.direction, viewer.direction);
        insert(&object, QStringLiteral("lost"), glance.lost, false);
        return object;
    });
}

QJsonObject toJson(const Viewer &viewer)
{
    QJsonObject object;
    insert(&object, QStringLiteral("arrive"), seconds(viewer.arriveMs), 0.0);
    insertSeconds(&object, QStringLiteral("leave"), viewer.leaveMs);
    if (viewer.gender != Gender::Unknown) {
        object.insert(QStringLiteral("gender"),
            viewer.gender == Gender::Male ? QStringLiteral("male") : QStringLiteral("female"));
    }
    if (viewer.age)
        object.insert(QStringLiteral("age"), *viewer.age);
    insertPosition(&object, viewer.position, Position());
    insertFilled(&object, QStringLiteral("path"), pathToJson(viewer));
    insertDirection(&object, viewer.direction, Direction());
    insertFilled(&object, QStringLiteral("lookAway"), glancesToJson(viewer));
    insertSeconds(&object, QStringLiteral("ageMarkAfter"), viewer.ageMarkAfterMs);
    insertSeconds(&object, QStringLiteral("genderMarkAfter"), viewer.genderMarkAfterMs);
    insertFilled(&object, QStringLiteral("confidence"), toJson(viewer.confidence));
    insertFilled(&object, QStringLiteral("noise"), toJson(viewer.noise));
    return object;
}

QJsonObject toJson(const Fault &fault)
{
    const Fault granted;
    QJsonObject object{{QStringLiteral("kind"), faultNames().at(fault.kind)}};
    insert(&object, QStringLiteral("frame"), fault.frame, granted.frame);
    insert(&object, QStringLiteral("frames"), fault.frames, granted.frames);
    insert(&object, QStringLiteral("status"), fault.status, granted.status);
    insert(&object, QStringLiteral("pieces"), fault.pieces, granted.pieces);
    insert(&object, QStringLiteral("pause"), fault.pauseMs, granted.pauseMs);
    if (fault.lines != defaultLines(fault.kind)) {
        object.insert(QStringLiteral("lines"), toArray(fault.lines, [](const QByteArray &line) {
            return QString::fromUtf8(line.constData(), line.size()); // keeps NULs
        }));
    }
    return object;
}

QJsonObject toJson(const Scenario &scenario)
{
    const Scenario granted;
    QJsonObject object;
    insert(&object, QStringLiteral("seed"), qint64(scenario.seed), qint64(granted.seed));
    insert(&object, QStringLiteral("repeat"), seconds(scenario.repeatMs), 0.0);
    insertFilled(&object, QStringLiteral("absentPorts"),
        toArray(scenario.absentPorts, [](int port) { return port; }));
    insert(&object, QStringLiteral("ignoreStopKey"), scenario.ignoreStopKey, false);
    insert(&object, QStringLiteral("stopDelay"), scenario.stopDelayMs, granted.stopDelayMs);
    insertFilled(&object, QStringLiteral("viewers"),
        toArray(scenario.viewers, [](const Viewer &viewer) { return toJson(viewer); }));
    insertFilled(&object, QStringLiteral("faults"),
        toArray(scenario.faults, [](const Fault &fault) { return toJson(fault); }));
    return object;
}

} // namespace

QByteArray writeScenario(const Scenario &scenario, const QString &description)
{
    QJsonObject object = toJson(scenario);
    if (!description.isEmpty())
        object.insert(QStringLiteral("description"), description);
    return QJsonDocument(object).toJson();
}

} // namespace Simulation
