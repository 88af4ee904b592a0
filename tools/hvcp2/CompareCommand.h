#pragma once

#include "tools/hvcp2/Command.h"

namespace Hvcp2 {

Command compareCommand();

} // namespace Hvcp2
