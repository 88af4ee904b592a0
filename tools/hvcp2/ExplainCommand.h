#pragma once

#include "tools/hvcp2/Command.h"

namespace Hvcp2 {

Command explainCommand();

} // namespace Hvcp2
