#pragma once

#include "tools/analysis/Decider.h"

#include <QString>

namespace Desk {

/// One frame of the sensor as a host sees it, with what the plug-in makes of it and why.
struct SeenFrame
{
    qint64 number = 0; ///< counted from 1
    QString text; ///< the sensor program's output, as it came
    Analysis::Decision decision; ///< with the time at which it came
};

} // namespace Desk
