#include "demo/desk/PlacedViewer.h"

namespace Desk {

namespace {

Simulation::Noise toSimulation(PlacedViewer::Noise level)
{
    Simulation::Noise noise;
    switch (level) {
    case PlacedViewer::NoNoise:
        break;
    case PlacedViewer::SomeNoise: // a viewer who stands still in good light
        noise.position = 6;
        noise.size = 4;
        noise.direction = 3;
        noise.age = 1;
        noise.confidence = 40;
        noise.miss = 0.01;
        break;
    case PlacedViewer::MuchNoise:
        noise.position = 20;
        noise.size = 15;
        noise.direction = 10;
        noise.age = 6;
        noise.confidence = 150;
        noise.genderError = 0.1;
        noise.miss = 0.1;
        break;
    }
    return noise;
}

} // namespace

QRect PlacedViewer::area() const
{
    return {position.x - position.size / 2, position.y - position.size / 2, position.size,
        position.size};
}

Simulation::Viewer toSimulation(const PlacedViewer &viewer)
{
    Simulation::Viewer simulated;
    simulated.gender = viewer.gender;
    simulated.age = viewer.age;
    simulated.position = viewer.position;
    simulated.direction = viewer.direction;
    if (viewer.settled) {
        simulated.ageMarkAfterMs = 0;
        simulated.genderMarkAfterMs = 0;
    }
    simulated.noise = toSimulation(viewer.noise);
    return simulated;
}

Simulation::Scenario toSimulation(const QVector<PlacedViewer> &viewers)
{
    Simulation::Scenario scenario;
    for (const PlacedViewer &viewer : viewers)
        scenario.viewers.append(toSimulation(viewer));
    return scenario;
}

} // namespace Desk
