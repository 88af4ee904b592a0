#pragma once

#include "tools/hvcp2/Command.h"

namespace Hvcp2 {

Command exportCommand();

} // namespace Hvcp2
