#include "tools/analysis/Bonus.h"

#include <cmath>

namespace Analysis {

using namespace PluginKrHvcP2;

namespace {

/// Without what the sum of binary fractions has added.
double rounded(double number)
{
    return std::round(number * 1e6) / 1e6;
}

} // namespace

Bonus bonusOf(const DecidedFace &face, const DetectionContents &contents)
{
    FaceResult unmarked = face.face;
    if (unmarked.age)
        unmarked.age->marked = false;
    const double withGenderMark = matchContent(unmarked, contents).bonus;
    if (unmarked.gender)
        unmarked.gender->marked = false;
    Bonus bonus;
    bonus.plain = matchContent(unmarked, contents).bonus;
    bonus.genderMark = rounded(withGenderMark - bonus.plain);
    bonus.ageMark = rounded(face.evaluation.match.bonus - withGenderMark);
    return bonus;
}

bool isTaken(ContentReason reason)
{
    return reason == ContentReason::FullFit || reason == ContentReason::DefaultFit
        || reason == ContentReason::AgeFit;
}

} // namespace Analysis
