#pragma once

#include "tools/hvcp2/Paint.h"

namespace Hvcp2 {

/// Makes the terminal take UTF-8 and colours, where there is one, and says which colours standard
/// output may have: none in a file or a pipe, and none where the variable NO_COLOR is set.
Paint::Depth prepareStandardOutput();

bool isStandardErrorTerminal();

} // namespace Hvcp2
