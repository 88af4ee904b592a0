#pragma once

#include "core/screen/Gender.h"
#include "tools/analysis/Coverage.h"

#include <QtGlobal>

#include <array>

namespace Analysis {

constexpr int UnknownAgeBand = 8;
constexpr int AgeBands = UnknownAgeBand + 1;

/// Ten years each, but the last one of those that are known, which has no end.
int ageBandOf(int age); ///< years; UnknownAgeBand when negative
AgeRange agesOfBand(int band); ///< but UnknownAgeBand; to the largest int in the last one

/// Faces by gender, as CoveredGenders, and age band.
using Audience = std::array<std::array<qint64, AgeBands>, CoveredGenders.size()>;

qint64 sumOf(const Audience &audience);
qint64 sumOf(const Audience &audience, PluginKrHvcP2::Gender gender);

/// The place of a face of @p gender and @p age, in years or negative, in @p audience.
qint64 &faceCount(Audience &audience, int gender, int age);

} // namespace Analysis
