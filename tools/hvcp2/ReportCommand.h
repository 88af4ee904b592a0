#pragma once

#include "tools/hvcp2/Command.h"

namespace Hvcp2 {

Command reportCommand();

} // namespace Hvcp2
