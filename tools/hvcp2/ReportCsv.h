#pragma once

#include "tools/hvcp2/TotalsReport.h"

#include <QString>

namespace Hvcp2 {

/// The figures of a report as a table for spreadsheets, with a row for each. What the cells in
/// front of its value name is what it counts; where one is empty, it counts all.
QString reportCsv(const Report &report);

} // namespace Hvcp2
