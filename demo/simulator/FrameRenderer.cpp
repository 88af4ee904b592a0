#include "demo/simulator/FrameRenderer.h"

#include <QString>
#include <QtMath>

#include <algorithm>

namespace Simulation {

const char *const EndPrompt = "Press Space Key to end:";

namespace {

/// What the sensor measured of one viewer.
struct Reading
{
    Position position;
    Direction direction;
    Confidence confidence;
    std::optional<int> age;
    Gender gender = Gender::Unknown;
    bool ageMarked = false;
    bool genderMarked = false;
};

/// Chance for one viewer in one frame. It hashes (SplitMix64) instead of drawing from a generator,
/// so that a frame never depends on the frames before it, nor on the standard library's.
class Chance
{
public:
    Chance(quint32 seed, qint64 frame, int viewer)
        : m_state(
            hash(hash(hash(seed) + static_cast<quint64>(frame)) + static_cast<quint64>(viewer)))
    { }

    /// @p value moved by at most @p deviation, kept in [min, max].
    int around(int value, int deviation, int min, int max)
    {
        const quint64 steps = 2 * static_cast<quint64>(deviation) + 1;
        return std::clamp(value - deviation + static_cast<int>(next() % steps), min, max);
    }

    bool happens(double probability)
    {
        return static_cast<double>(next() % 1000000) < probability * 1e6;
    }

private:
    static quint64 hash(quint64 z)
    {
        z += Q_UINT64_C(0x9e3779b97f4a7c15);
        z = (z ^ (z >> 30)) * Q_UINT64_C(0xbf58476d1ce4e5b9);
        z = (z ^ (z >> 27)) * Q_UINT64_C(0x94d049bb133111eb);
        return z ^ (z >> 31);
    }

    quint64 next() { return m_state = hash(m_state); }

    quint64 m_state;
};

int between(int from, int to, double share)
{
    return from + qRound((to - from) * share);
}

Position positionAt(const Viewer &viewer, qint64 ms)
{
    if (viewer.path.isEmpty())
        return viewer.position;
    const auto next = std::find_if(viewer.path.begin(), viewer.path.end(),
        [ms](const Waypoint &waypoint) { return waypoint.atMs > ms; });
    if (next == viewer.path.begin())
        return next->position;
    const Waypoint &last = *std::prev(next);
    if (next == viewer.path.end())
        return last.position;
    const double share
        = static_cast<double>(ms - last.atMs) / static_cast<double>(next->atMs - last.atMs);
    return {between(last.position.x, next->position.x, share),
        between(last.position.y, next->position.y, share),
        between(last.position.size, next->position.size, share)};
}

std::optional<Reading> measure(const Viewer &viewer, qint64 ms, Chance chance)
{
    if (ms < viewer.arriveMs || (viewer.leaveMs && ms >= *viewer.leaveMs))
        return std::nullopt;
    if (chance.happens(viewer.noise.miss))
        return std::nullopt;

    Direction direction = viewer.direction;
    const auto away = std::find_if(viewer.lookAway.begin(), viewer.lookAway.end(),
        [ms](const LookAway &entry) { return ms >= entry.fromMs && ms < entry.toMs; });
    if (away != viewer.lookAway.end()) {
        if (away->lost)
            return std::nullopt;
        direction = away->direction;
    }

    const Noise &noise = viewer.noise;
    const auto angle = [&](int value) {
        return chance.around(value, noise.direction, -Sensor::MaxAngle, Sensor::MaxAngle);
    };
    const auto confidence = [&](int value) {
        return chance.around(value, noise.confidence, 0, Sensor::MaxConfidence);
    };
    const auto marked = [&](const std::optional<qint64> &afterMs) {
        return afterMs && ms - viewer.arriveMs >= *afterMs;
    };

    const Position position = positionAt(viewer, ms);
    Reading reading;
    reading.position.x = chance.around(position.x, noise.position, 0, Sensor::MaxX);
    reading.position.y = chance.around(position.y, noise.position, 0, Sensor::MaxY);
    reading.position.size = chance.around(position.size, noise.size, 1, Sensor::MaxSize);
    reading.direction.lr = angle(direction.lr);
    reading.direction.ud = angle(direction.ud);
    reading.direction.roll = angle(direction.roll);
    reading.confidence.face = confidence(viewer.confidence.face);
    reading.confidence.direction = confidence(viewer.confidence.direction);
    if (viewer.age) {
        reading.age = chance.around(*viewer.age, noise.age, 0, Sensor::MaxAge);
        reading.confidence.age = confidence(viewer.confidence.age);
        reading.ageMarked = marked(viewer.ageMarkAfterMs);
    }
    if (viewer.gender != Gender::Unknown) {
        const bool mistaken = chance.happens(noise.genderError);
        reading.gender
            = (viewer.gender == Gender::Male) != mistaken ? Gender::Male : Gender::Female;
        reading.confidence.gender = confidence(viewer.confidence.gender);
        reading.genderMarked = marked(viewer.genderMarkAfterMs);
    }
    return reading;
}

QString mark(bool marked)
{
    return marked ? QStringLiteral(" *") : QString();
}

QString ageLine(const Reading &reading)
{
    // A value that is no number, as the sensor has none, is still a well-formed line.
    if (!reading.age)
        return QStringLiteral("Age\tAge:- Confidence:0\n");
    return QStringLiteral("Age\tAge:%1 Confidence:%2%3\n")
        .arg(QString::number(*reading.age), QString::number(reading.confidence.age),
            mark(reading.ageMarked));
}

QString genderLine(const Reading &reading)
{
    if (reading.gender == Gender::Unknown)
        return QStringLiteral("Gender\tGender:- Confidence:0\n");
    return QStringLiteral("Gender\tGender:%1 Confidence:%2%3\n")
        .arg(reading.gender == Gender::Male ? QStringLiteral("Male") : QStringLiteral("Female"),
            QString::number(reading.confidence.gender), mark(reading.genderMarked));
}

QString faceLines(int index, const Reading &reading)
{
    return QStringLiteral("Index:%1\tX:%2 Y:%3 Size:%4 Confidence:%5\n")
               .arg(index)
               .arg(reading.position.x)
               .arg(reading.position.y)
               .arg(reading.position.size)
               .arg(reading.confidence.face)
        + QStringLiteral("Face Direction\tLR:%1 UD:%2 Roll:%3 Confidence:%4\n")
              .arg(reading.direction.lr)
              .arg(reading.direction.ud)
              .arg(reading.direction.roll)
              .arg(reading.confidence.direction)
        + ageLine(reading) + genderLine(reading);
}

} // namespace

QByteArray renderFrame(const Scenario &scenario, qint64 frame, int intervalMs)
{
    const qint64 elapsedMs = frame * intervalMs;
    const qint64 ms = scenario.repeatMs > 0 ? elapsedMs % scenario.repeatMs : elapsedMs;

    QString faces;
    int count = 0;
    for (int i = 0; i < scenario.viewers.size() && count < Sensor::MaxFaces; ++i) {
        const Chance chance(scenario.seed, frame, i);
        if (const std::optional<Reading> reading = measure(scenario.viewers.at(i), ms, chance))
            faces += faceLines(count++, *reading);
    }
    const QString block = QStringLiteral("Face result count:%1\n").arg(count) + faces
        + QLatin1String(EndPrompt) + QLatin1Char('\n');
    return block.toLatin1();
}

} // namespace Simulation
