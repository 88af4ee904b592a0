#pragma once

#include "tools/hvcp2/Command.h"

namespace Hvcp2 {

Command coverageCommand();

} // namespace Hvcp2
