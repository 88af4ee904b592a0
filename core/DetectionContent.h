#pragma once

#include "core/Gender.h"

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

/// The valid contents of the screen whose parameter map is @p screen that at least one other
/// screen of @p stageScreens (by screen id) is linked to, in the order of the map.
///
/// A content's sequence number is its position in the map's list; invalid ones use theirs up.
DetectionContents detectionContents(
    const QVariantMap &screen, const QMap<int, QVariantMap> &stageScreens);

/// The content of @p sequenceNumber; an invalid one when there is none.
DetectionContent findContent(const DetectionContents &contents, qint64 sequenceNumber);

/// The "type" that the plug-in gives its entries of a screen's "contents" list; the host's code.
constexpr int ContentEntryType = 8;

/// One entry for a screen's "contents" list.
QVariantMap contentEntry(const QString &name, int ageMin, int ageMax, int genders, bool isDefault);

} // namespace PluginKrHvcP2
