#pragma once

#include "tools/analysis/Decider.h"

namespace Analysis {

/// What the bonus of a face is made of.
struct Bonus
{
    double plain = 0; ///< of the fit
    double genderMark = 0; ///< on top of that
    double ageMark = 0; ///< on top of both
};

Bonus bonusOf(const DecidedFace &face, const PluginKrHvcP2::DetectionContents &contents);

/// Whether the content is the one that the face gets.
bool isTaken(PluginKrHvcP2::ContentReason reason);

} // namespace Analysis
