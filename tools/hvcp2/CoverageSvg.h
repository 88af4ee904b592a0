#pragma once

#include "tools/analysis/Coverage.h"
#include "tools/analysis/Plan.h"

#include <QByteArray>

class QXmlStreamWriter;

namespace Hvcp2 {

/// The map as a picture that needs nothing else: contents in the colours of their cards, light or
/// dark as the reader's system is set.
QByteArray coverageSvg(const Analysis::Plan &plan, const Analysis::Coverage &coverage);

/// The same as an element of a page, whose ids begin with "coverage-".
void writeCoverage(
    const Analysis::Plan &plan, const Analysis::Coverage &coverage, QXmlStreamWriter &writer);

} // namespace Hvcp2
