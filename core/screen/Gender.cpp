#include "core/screen/Gender.h"

#include "host/KrPluginKeys.h"

namespace PluginKrHvcP2 {

QString genderToText(int gender)
{
    switch (gender) {
    case Male:
        return Kora::Keys::Male;
    case Female:
        return Kora::Keys::Female;
    case BothGenders:
        return Kora::Keys::Both;
    default:
        return {};
    }
}

int genderFromText(const QString &text)
{
    for (const int gender : {Male, Female, BothGenders}) {
        if (text.compare(genderToText(gender), Qt::CaseInsensitive) == 0)
            return gender;
    }
    return UnknownGender;
}

} // namespace PluginKrHvcP2
