#include "tools/analysis/Silence.h"

#include <algorithm>

namespace Analysis {

void Silences::add(const Silence &silence)
{
    ++count;
    ms += silence.ms();
    longest.append(silence);
    if (longest.size() <= MaxListed)
        return;
    longest.erase(std::min_element(longest.begin(), longest.end(),
        [](const Silence &a, const Silence &b) { return a.ms() < b.ms(); }));
}

} // namespace Analysis
