#pragma once

namespace Soak {

struct Sample;

void printHeader();
void printLine(const Sample &sample); ///< figures that cannot be told as "-"

} // namespace Soak
