#pragma once

#include "tools/analysis/Plan.h"
#include "tools/hvcp2/FrameChoice.h"

#include <QString>

namespace Hvcp2 {

/// What the plug-in makes of the chosen frame, as a table for spreadsheets: a row for each face and
/// content.
QString frameCsv(const Analysis::Plan &plan, const FrameChoice &choice);

} // namespace Hvcp2
