#include "core/screen/ContentEntry.h"

#include "core/screen/ScreenSettings.h"
#include "host/KrPluginKeys.h"

#include <tuple>

namespace PluginKrHvcP2 {

namespace Keys = Kora::Keys;

namespace {

const QLatin1String TypeKey("type");
const QLatin1String ParamsKey("params");

QVariantMap paramsOf(const QVariantMap &entry)
{
    return entry.value(ParamsKey).toMap();
}

int readAge(const QVariant &value, int fallback)
{
    bool ok = false;
    const int age = value.toInt(&ok);
    return ok ? age : fallback;
}

QVariantMap withAudience(QVariantMap params, const Audience &audience)
{
    params.insert(Keys::AgeMin, audience.ageMin);
    params.insert(Keys::AgeMax, audience.ageMax);
    params.insert(Keys::Gender, genderToText(audience.gender));
    params.insert(Keys::Default, audience.isDefault ? Keys::True : Keys::False);
    return params;
}

} // namespace

bool operator==(const Audience &a, const Audience &b)
{
    return std::tie(a.ageMin, a.ageMax, a.gender, a.isDefault)
        == std::tie(b.ageMin, b.ageMax, b.gender, b.isDefault);
}

DetectionContent contentForDetection(const QVariantMap &entry, int sequenceNumber)
{
    DetectionContent content;
    content.sequenceNumber = sequenceNumber;
    const QVariantMap params = paramsOf(entry);
    for (auto it = params.cbegin(); it != params.cend(); ++it) {
        const auto isKey
            = [&](const QString &key) { return it.key().compare(key, Qt::CaseInsensitive) == 0; };
        if (isKey(Keys::AgeMin))
            content.ageMin = readAge(it.value(), content.ageMin);
        else if (isKey(Keys::AgeMax))
            content.ageMax = readAge(it.value(), content.ageMax);
        else if (isKey(Keys::Gender))
            content.genders = genderFromText(it.value().toString());
        else if (isKey(Keys::Default))
            content.isDefault = isTrueText(it.value());
    }
    return content;
}

Audience audienceForEditing(const QVariant &entry)
{
    const QVariantMap params = paramsOf(entry.toMap());
    return {readAge(params.value(Keys::AgeMin), LowestAge),
        readAge(params.value(Keys::AgeMax), HighestAge),
        genderFromText(params.value(Keys::Gender).toString()),
        params.value(Keys::Default).toBool()};
}

bool isShownAsDefault(const QVariantMap &entry)
{
    return isTrueText(paramsOf(entry).value(Keys::Default));
}

QVariantMap contentEntry(const QString &name, int ageMin, int ageMax, int genders, bool isDefault)
{
    const QVariantMap params
        = withAudience({{Keys::Name, name}}, {ageMin, ageMax, genders, isDefault});
    return {{TypeKey, ContentEntryType}, {ParamsKey, params}};
}

QString nameForEditing(const QVariantMap &entry)
{
    return entry.value(Keys::Name).toString();
}

QVariantMap newEntry(const QString &name, const Audience &audience)
{
    return editedEntry({{TypeKey, ContentEntryType}}, name, audience);
}

QVariantMap editedEntry(const QVariantMap &entry, const QString &name, const Audience &audience)
{
    QVariantMap edited = entry;
    edited.insert(Keys::Name, name);
    edited.insert(ParamsKey, withAudience(paramsOf(entry), audience));
    return edited;
}

bool isChanged(const QVariantMap &entry, const QString &name, const Audience &audience)
{
    const Audience stored = audienceForEditing(entry);
    return nameForEditing(entry) != name || stored.ageMin != audience.ageMin
        || stored.ageMax != audience.ageMax
        || paramsOf(entry).value(Keys::Gender).toString() != genderToText(audience.gender)
        || isShownAsDefault(entry) != audience.isDefault;
}

} // namespace PluginKrHvcP2
