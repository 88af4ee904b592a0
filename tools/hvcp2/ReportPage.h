#pragma once

#include "tools/hvcp2/TotalsReport.h"

#include <QByteArray>

namespace Hvcp2 {

/// The report as a page that needs nothing else, neither files nor scripts nor a network: for a
/// desk, a phone and paper, light or dark as the reader's system is set. It is HTML and XML.
QByteArray reportPage(const Report &report);

} // namespace Hvcp2
