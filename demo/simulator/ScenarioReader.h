#pragma once

#include "demo/simulator/Scenario.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Simulation {

/// Reads the JSON form of a scenario, which README.md describes.
///
/// \a name stands for the text in \a error, which is set when nothing is returned: one line with
/// the place (a line number or the path of a key) and the reason.
std::optional<Scenario> parseScenario(const QByteArray &json, const QString &name, QString *error);

/// The JSON text of the scenario that is compiled in.
QByteArray builtInScenario();

} // namespace Simulation
