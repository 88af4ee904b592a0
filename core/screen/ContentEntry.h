#pragma once

#include "core/screen/DetectionContent.h"

#include <QString>
#include <QVariantMap>

// The form of one entry of a screen's "contents" list: {"name", "type", "params"}, where "params"
// holds "age-min", "age-max", "gender" and "default".
namespace PluginKrHvcP2 {

constexpr int LowestAge = 0; ///< years
constexpr int HighestAge = 75; ///< years; stands for older viewers too

/// The viewers that a content is meant for, as people edit them.
struct Audience
{
    int ageMin = LowestAge; ///< years, inclusive
    int ageMax = HighestAge; ///< years, inclusive
    int gender = UnknownGender; ///< set of Gender bits
    bool isDefault = false; ///< also for viewers of the gender whom nothing else fits

    bool contains(int age) const { return ageMin <= age && age <= ageMax; }
    bool sharesGenderWith(const Audience &other) const { return (gender & other.gender) != 0; }
};

bool operator==(const Audience &a, const Audience &b);

/// The "type" that the plug-in gives its entries; the host's code.
constexpr int ContentEntryType = 8;

// The detection and the editor read the same entry by different rules, both on purpose: what is not
// said keeps a content out of the detection, and is proposed by the editor.

/// For the detection: keys in any letter case, an age that is missing or no number is -1.
DetectionContent contentForDetection(const QVariantMap &entry, int sequenceNumber);

/// For the editor: keys as they are written, ages that are missing or no numbers leave their side
/// open, a default of any form that stands for true.
Audience audienceForEditing(const QVariant &entry);

/// Whether the editor shows an entry as the default of its gender: exactly the text "true", in any
/// letter case.
bool isShownAsDefault(const QVariantMap &entry);

/// An entry as a new screen gets it: named in its "params".
QVariantMap contentEntry(const QString &name, int ageMin, int ageMax, int genders, bool isDefault);

/// The name by which the editor knows an entry.
QString nameForEditing(const QVariantMap &entry);

/// An entry as the editor makes it.
QVariantMap newEntry(const QString &name, const Audience &audience);

/// @p entry with the values of the editor; keeps foreign keys.
QVariantMap editedEntry(const QVariantMap &entry, const QString &name, const Audience &audience);

/// True when the values of the editor say something else than @p entry.
bool isChanged(const QVariantMap &entry, const QString &name, const Audience &audience);

} // namespace PluginKrHvcP2
