#pragma once

#include "tools/analysis/Coverage.h"
#include "tools/analysis/Plan.h"

#include <QByteArray>

namespace Hvcp2 {

/// The map as a picture that needs nothing else: contents in the colours of their cards, light or
/// dark as the reader's system is set.
QByteArray coverageSvg(const Analysis::Plan &plan, const Analysis::Coverage &coverage);

} // namespace Hvcp2
