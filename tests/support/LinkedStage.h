#pragma once

#include "host/KrPluginStage.h"

#include <QVariantMap>

namespace KrTest {

/// The parameter map of a screen whose contents share out genders and ages between them; the first
/// of each gender is its default.
QVariantMap linkedScreen(int contents);

/// A stage with that screen and one more for each of its contents, linked to it @p links times.
Kora::KrPluginStage linkedStage(int contents, int links = 1);

} // namespace KrTest
