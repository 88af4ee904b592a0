#pragma once

#include <QString>

namespace PluginKrHvcP2 {

/// Genders as a bit set. Two of them conflict when they share a bit.
enum Gender {
    UnknownGender = 0,
    Male = 1,
    Female = 2,
    BothGenders = Male | Female,
};

QString genderToText(int gender); ///< "male", "female", "both"; empty for any other value
int genderFromText(const QString &text); ///< in any letter case; UnknownGender for other texts

} // namespace PluginKrHvcP2
