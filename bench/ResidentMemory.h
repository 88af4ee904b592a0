#pragma once

#include <QtGlobal>

namespace Bench {

/// Bytes of this process that are in the machine's memory; 0 when that cannot be told.
qint64 residentMemory();

} // namespace Bench
