#pragma once

#include "demo/simulator/Scenario.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Simulation {

/// Reads the JSON form of a scenario, which README.md describes.
///
/// @p name stands for the text in @p error, "file:line:column: key: reason", which is set when
/// nothing is returned.
std::optional<Scenario> parseScenario(const QByteArray &json, const QString &name, QString *error);

/// The same for a scenario that is read while the program runs: it tells of viewers only.
std::optional<Scenario> parseLiveScenario(
    const QByteArray &json, const QString &name, QString *error);

/// The JSON text of the scenario that is compiled in.
QByteArray builtInScenario();

} // namespace Simulation
