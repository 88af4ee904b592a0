#pragma once

#include "core/screen/Gender.h"

#include <QList>
#include <QMap>
#include <QVariantMap>
#include <QVector>

namespace PluginKrHvcP2 {

/// Whom one sequence of the screen is meant for, and which screens its start reaches.
struct DetectionContent
{
    int sequenceNumber = -1; ///< counted from 1
    int ageMin = -1; ///< years, inclusive
    int ageMax = -1; ///< years, inclusive
    int genders = UnknownGender; ///< set of Gender bits
    bool isDefault = false; ///< fallback for viewers of its genders
    /// Ids of the screens linked to the sequence; sending is restricted by them.
    QList<int> identifiers;

    bool isValid() const;
    bool coversAge(int age) const { return ageMin <= age && age <= ageMax; }
};

using DetectionContents = QVector<DetectionContent>;

/// Whether an entry of a screen's "contents" list takes part in the detection, and if not, what
/// first keeps it from that.
enum class EntryReason {
    TakesPart,
    NoScreenId, ///< the screen's own "id" is missing or no integer: nothing takes part
    NoLowestAge, ///< "age-min" is missing, no integer or negative
    NoHighestAge, ///< "age-max" is missing, no integer or negative
    NoGender, ///< "gender" is missing or no word for one
    AgesReversed, ///< "age-min" is above "age-max"
    NoOwnEvent, ///< no event of the screen opens the sequence to others
    NoLinkingScreen, ///< no event of another screen follows the sequence
};

/// The contents that take part in the detection, and what became of all others.
struct DetectionTable
{
    DetectionContents contents; ///< in the order of the list
    QVector<EntryReason> reasons; ///< one for each entry of the list
};

/// The valid contents of the screen whose parameter map is @p screen that at least one other
/// screen of @p stageScreens (by screen id) is linked to, in the order of the map.
///
/// A content's sequence number is its position in the map's list; invalid ones use theirs up.
DetectionTable detectionTable(
    const QVariantMap &screen, const QMap<int, QVariantMap> &stageScreens);

/// The contents of detectionTable() alone.
DetectionContents detectionContents(
    const QVariantMap &screen, const QMap<int, QVariantMap> &stageScreens);

/// The content of @p sequenceNumber; an invalid one when there is none.
DetectionContent findContent(const DetectionContents &contents, qint64 sequenceNumber);

} // namespace PluginKrHvcP2
