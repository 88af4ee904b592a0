#pragma once

#include "demo/simulator/Scenario.h"

#include <QByteArray>
#include <QString>

namespace Simulation {

/// The JSON form of @p scenario, from which parseScenario() gets the same one again: what it can
/// return can be written. Values that a reader takes for granted are left out.
/// @p description, unless it is empty, tells the reader of the file what it is for.
QByteArray writeScenario(const Scenario &scenario, const QString &description = QString());

} // namespace Simulation
