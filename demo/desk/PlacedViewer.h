#pragma once

#include "demo/simulator/Scenario.h"

#include <QRect>
#include <QVector>

#include <optional>

namespace Desk {

/// A person whom somebody has placed before the sensor.
struct PlacedViewer
{
    /// How far readings are off.
    enum Noise { NoNoise, SomeNoise, MuchNoise };

    int id = 0; ///< of the desk, on which no other has or had it; 0: nobody
    Simulation::Gender gender = Simulation::Gender::Female; ///< Unknown: the sensor cannot tell
    std::optional<int> age = 30; ///< years; none: the sensor cannot tell
    Simulation::Position position;
    Simulation::Direction direction;
    bool settled = true; ///< the sensor stands by age and gender
    Noise noise = NoNoise;

    bool isValid() const { return id > 0; }
    QRect area() const; ///< of the face, in pixels of the sensor's image

    friend bool operator==(const PlacedViewer &a, const PlacedViewer &b)
    {
        return a.id == b.id && a.position == b.position && a.isLike(b);
    }
    friend bool operator!=(const PlacedViewer &a, const PlacedViewer &b) { return !(a == b); }

    /// True for somebody who differs by no more than the place.
    bool isLike(const PlacedViewer &other) const
    {
        return gender == other.gender && age == other.age && direction == other.direction
            && settled == other.settled && noise == other.noise;
    }
};

/// The same person for the simulator: there from the start on, and for good.
Simulation::Viewer toSimulation(const PlacedViewer &viewer);

/// The same with several; faces are numbered in their order.
Simulation::Scenario toSimulation(const QVector<PlacedViewer> &viewers);

} // namespace Desk
