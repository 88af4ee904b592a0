#pragma once

#include "core/screen/ContentEntry.h"

#include <QString>
#include <QVariant>
#include <QVector>

#include <optional>

namespace PluginKrHvcP2 {

/// The ranges of all entries of a "contents" list, sorted by lowest and then by highest age.
QVector<Audience> contentRanges(const QVariantList &contents);

/// The ages that no content covers yet, for each gender that has a content at all.
/// @p sortedContents is sorted as by contentRanges().
QVector<Audience> freeRanges(const QVector<Audience> &sortedContents);

/// The free range to propose after @p current: the one behind the best match that touches it, or
/// the last one of the widest gender. Nothing when there is no free range.
std::optional<Audience> nextRange(const Audience &current, const QVector<Audience> &freeRanges);

/// What keeps a content from being stored beside others.
struct RangeConflicts
{
    bool ages = false; ///< one of its ends lies within another range of a shared gender
    bool defaults = false; ///< another one is the default of a shared gender already
};

/// A range that merely encloses another one does not conflict with it.
RangeConflicts findConflicts(const Audience &entered, const QVector<Audience> &others);

/// Why a content is not stored, the most important reason first.
enum class Refusal {
    None,
    NameInUse, ///< another one has the same name, in the same letter case
    AgesInUse, ///< RangeConflicts::ages
    DefaultInUse, ///< RangeConflicts::defaults
};

/// The first reason against storing @p entered as @p name beside @p others, entries of the same
/// "contents" list.
Refusal findRefusal(const QString &name, const Audience &entered, const QVariantList &others);

} // namespace PluginKrHvcP2
