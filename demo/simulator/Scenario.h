#pragma once

#include <QByteArray>
#include <QVector>

#include <optional>
#include <tuple>

namespace Simulation {

/// What the sensor itself can report; readings and their noise never leave these ranges.
namespace Sensor {
constexpr int MaxFaces = 35;
constexpr int MaxX = 1599; ///< pixels of the sensor's 1600 x 1200 image
constexpr int MaxY = 1199;
constexpr int MaxSize = 1200;
constexpr int MaxAngle = 180; ///< degrees, either way
constexpr int MaxAge = 120; ///< years
constexpr int MaxConfidence = 1000;
} // namespace Sensor

constexpr int MaxSeconds = 86400; ///< a scenario knows no later time
constexpr int MaxEntries = 10000; ///< of a list of viewers, waypoints, ...

enum class Gender { Unknown, Male, Female };

/// Centre and edge length of a face in the sensor's image, in pixels.
struct Position
{
    int x = 800;
    int y = 600;
    int size = 200;

    friend bool operator==(const Position &a, const Position &b)
    {
        return std::tie(a.x, a.y, a.size) == std::tie(b.x, b.y, b.size);
    }
};

/// Where a face looks, in degrees; all 0 is straight at the sensor.
struct Direction
{
    int lr = 0;
    int ud = 0;
    int roll = 0;

    friend bool operator==(const Direction &a, const Direction &b)
    {
        return std::tie(a.lr, a.ud, a.roll) == std::tie(b.lr, b.ud, b.roll);
    }
};

/// A position at a moment; between two of them the viewer moves in a straight line.
struct Waypoint
{
    qint64 atMs = 0;
    Position position;

    friend bool operator==(const Waypoint &a, const Waypoint &b)
    {
        return std::tie(a.atMs, a.position) == std::tie(b.atMs, b.position);
    }
};

/// The viewer looks elsewhere in [fromMs, toMs).
struct LookAway
{
    qint64 fromMs = 0;
    qint64 toMs = 0;
    Direction direction;
    bool lost = false; ///< turned so far that the sensor finds no face

    friend bool operator==(const LookAway &a, const LookAway &b)
    {
        return std::tie(a.fromMs, a.toMs, a.direction, a.lost)
            == std::tie(b.fromMs, b.toMs, b.direction, b.lost);
    }
};

/// How sure the sensor is, 0 to Sensor::MaxConfidence.
struct Confidence
{
    int face = 800;
    int direction = 700;
    int age = 500;
    int gender = 900;

    friend bool operator==(const Confidence &a, const Confidence &b)
    {
        return std::tie(a.face, a.direction, a.age, a.gender)
            == std::tie(b.face, b.direction, b.age, b.gender);
    }
};

/// Largest deviation of a reading from the truth, either way; every value in between is as likely.
struct Noise
{
    int position = 0; ///< pixels, x and y
    int size = 0; ///< pixels
    int direction = 0; ///< degrees, all three angles
    int age = 0; ///< years
    int confidence = 0; ///< all four confidences
    double genderError = 0; ///< share of frames with the other gender, 0 to 1
    double miss = 0; ///< share of frames in which the face is not found, 0 to 1

    friend bool operator==(const Noise &a, const Noise &b)
    {
        return std::tie(a.position, a.size, a.direction, a.age, a.confidence, a.genderError, a.miss)
            == std::tie(
                b.position, b.size, b.direction, b.age, b.confidence, b.genderError, b.miss);
    }
};

/// A person who is before the sensor in [arriveMs, leaveMs).
struct Viewer
{
    qint64 arriveMs = 0;
    std::optional<qint64> leaveMs; ///< none: stays
    Gender gender = Gender::Unknown;
    std::optional<int> age; ///< none: the sensor cannot tell
    Position position; ///< used when there is no path
    QVector<Waypoint> path; ///< ascending in time
    Direction direction;
    QVector<LookAway> lookAway; ///< the first that fits counts
    std::optional<qint64> ageMarkAfterMs; ///< since the arrival; none: never marked
    std::optional<qint64> genderMarkAfterMs;
    Confidence confidence;
    Noise noise;

    friend bool operator==(const Viewer &a, const Viewer &b)
    {
        return std::tie(a.arriveMs, a.leaveMs, a.gender, a.age, a.position, a.path, a.direction,
                   a.lookAway, a.ageMarkAfterMs, a.genderMarkAfterMs, a.confidence, a.noise)
            == std::tie(b.arriveMs, b.leaveMs, b.gender, b.age, b.position, b.path, b.direction,
                b.lookAway, b.ageMarkAfterMs, b.genderMarkAfterMs, b.confidence, b.noise);
    }
};

/// One kind of misbehaviour over a run of frames.
struct Fault
{
    enum Kind { Crash, Exit, Silence, Garbage, Pieces, Flood, ErrorOutput, CloseOutput };

    Kind kind = Crash;
    qint64 frame = 0; ///< the first frame that it concerns, counted from 0
    qint64 frames = 1; ///< 0: all that follow
    int status = 0; ///< Exit
    int pieces = 4; ///< Pieces
    int pauseMs = 20; ///< Pieces: between two of them
    QVector<QByteArray> lines; ///< Garbage, ErrorOutput; without line ends

    bool concerns(qint64 number) const
    {
        return number >= frame && (frames == 0 || number - frame < frames);
    }

    friend bool operator==(const Fault &a, const Fault &b)
    {
        return std::tie(a.kind, a.frame, a.frames, a.status, a.pieces, a.pauseMs, a.lines)
            == std::tie(b.kind, b.frame, b.frames, b.status, b.pieces, b.pauseMs, b.lines);
    }
};

/// Everything that decides what the simulated program does.
struct Scenario
{
    quint32 seed = 1;
    qint64 repeatMs = 0; ///< the viewers' time starts anew after this; 0: never
    QVector<int> absentPorts;
    bool ignoreStopKey = false;
    int stopDelayMs = 0; ///< between the stop key and the end
    QVector<Viewer> viewers;
    QVector<Fault> faults;

    friend bool operator==(const Scenario &a, const Scenario &b)
    {
        return std::tie(a.seed, a.repeatMs, a.absentPorts, a.ignoreStopKey, a.stopDelayMs,
                   a.viewers, a.faults)
            == std::tie(b.seed, b.repeatMs, b.absentPorts, b.ignoreStopKey, b.stopDelayMs,
                b.viewers, b.faults);
    }
};

} // namespace Simulation
