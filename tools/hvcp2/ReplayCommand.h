#pragma once

#include "tools/hvcp2/Command.h"

namespace Hvcp2 {

Command replayCommand();

} // namespace Hvcp2
