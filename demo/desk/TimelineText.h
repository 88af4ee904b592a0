#pragma once

#include "demo/desk/TimelineModel.h"
#include "tools/analysis/Plan.h"

#include <QStringList>

namespace Desk {

/// What the timeline tells of @p bucket, a line each; the time of day first.
QStringList bucketLines(const Analysis::Plan &plan, const TimelineBucket &bucket, bool isSilent);

} // namespace Desk
