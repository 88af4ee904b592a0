#pragma once

#include "demo/simulator/Scenario.h"

#include <QByteArray>
#include <QStringList>
#include <QVector>

/// What reader and writer of a scenario file share.
namespace Simulation {

/// The words for the kinds of faults, in the order of Fault::Kind.
QStringList faultNames();

/// What a fault prints that names no lines; none for a fault that prints nothing.
QVector<QByteArray> defaultLines(Fault::Kind kind);

} // namespace Simulation
