#include "tests/oracle/PlainEditor.h"

namespace Oracle {

using namespace PluginKrHvcP2;

namespace {

QVariantMap params(const QVariant &entry)
{
    return entry.toMap().value(QStringLiteral("params")).toMap();
}

int age(const QVariantMap &params, const QString &key, int whenMissing)
{
    bool ok = false;
    const int number = params.value(key).toInt(&ok);
    return ok ? number : whenMissing;
}

QString genderText(int gender)
{
    if (gender == 1)
        return QStringLiteral("male");
    if (gender == 2)
        return QStringLiteral("female");
    return gender == 3 ? QStringLiteral("both") : QString();
}

int genderCode(const QString &text)
{
    for (int gender = 1; gender <= 3; ++gender) {
        if (text.compare(genderText(gender), Qt::CaseInsensitive) == 0)
            return gender;
    }
    return 0;
}

bool isWithin(int value, const Audience &range)
{
    return range.ageMin <= range.ageMax && range.ageMin <= value && value <= range.ageMax;
}

void addFree(qint64 ageMin, qint64 ageMax, int gender, QVector<Audience> &list)
{
    for (const Audience &range : qAsConst(list)) {
        if (range.ageMin == ageMin && range.ageMax == ageMax && range.gender == gender
            && !range.isDefault)
            return;
    }
    list.append({static_cast<int>(ageMin), static_cast<int>(ageMax), gender, false});
}

} // namespace

Audience audience(const QVariant &entry)
{
    const QVariantMap map = params(entry);
    Audience result;
    result.ageMin = age(map, QStringLiteral("age-min"), 0);
    result.ageMax = age(map, QStringLiteral("age-max"), 75);
    result.gender = genderCode(map.value(QStringLiteral("gender")).toString());
    result.isDefault = map.value(QStringLiteral("default"), false).toBool();
    return result;
}

QVector<Audience> contentRanges(const QVariantList &contents)
{
    QVector<Audience> ranges;
    for (const QVariant &entry : contents) {
        const Audience range = audience(entry);
        int position = ranges.size();
        while (position > 0
            && (range.ageMin < ranges.at(position - 1).ageMin
                || (range.ageMin == ranges.at(position - 1).ageMin
                    && range.ageMax < ranges.at(position - 1).ageMax)))
            --position;
        ranges.insert(position, range);
    }
    return ranges;
}

QVector<Audience> freeRanges(const QVector<Audience> &contents)
{
    QVector<Audience> list;
    for (int gender = 1; gender <= 3; ++gender) {
        QVector<Audience> ranges;
        for (const Audience &range : contents) {
            if ((range.gender & gender) != 0)
                ranges.append(range);
        }
        if (ranges.isEmpty())
            continue;
        const Audience first = ranges.takeFirst();
        if (first.ageMin > 0)
            addFree(0, first.ageMin - 1, gender, list);
        if (first.ageMax >= 75)
            continue;
        qint64 start = qint64{first.ageMax} + 1;
        for (const Audience &range : qAsConst(ranges)) {
            if (range.ageMin <= start && start <= range.ageMax) {
                start = qint64{range.ageMax} + 1;
            } else if (start < range.ageMin) {
                addFree(start, range.ageMin - 1, gender, list);
                start = qint64{range.ageMax} + 1;
            }
        }
        if (start <= 75)
            addFree(start, 75, gender, list);
    }
    return list;
}

std::optional<Audience> nextRange(const Audience &current, const QVector<Audience> &freeRanges)
{
    if (freeRanges.isEmpty())
        return std::nullopt;
    int bestPriority = -1;
    int bestIndex = -1;
    for (int i = 0; i < freeRanges.size(); ++i) {
        const Audience &range = freeRanges.at(i);
        if (!isWithin(current.ageMin, range) && !isWithin(current.ageMax, range))
            continue;
        int priority = range.gender == 2 ? 2 : 1;
        if (range.gender == current.gender)
            priority = 3;
        else if ((range.gender & current.gender) == 0)
            priority = 0;
        if (priority >= bestPriority) {
            bestPriority = priority;
            bestIndex = i;
        }
    }
    if (bestIndex >= 0)
        return freeRanges.at(bestIndex + 1 < freeRanges.size() ? bestIndex + 1 : 0);
    for (int gender = 3; gender >= 0; --gender) {
        for (int i = freeRanges.size() - 1; i >= 0; --i) {
            if (freeRanges.at(i).gender == gender)
                return freeRanges.at(i);
        }
    }
    return std::nullopt;
}

Refusal refusal(const QString &name, const Audience &entered, const QVariantList &others)
{
    bool rangeConflict = false;
    bool defaultConflict = false;
    for (const QVariant &other : others) {
        if (other.toMap().value(QStringLiteral("name")).toString() == name)
            return Refusal::NameInUse;
        const Audience range = audience(other);
        if ((range.gender & entered.gender) == 0)
            continue;
        if (entered.isDefault && range.isDefault)
            defaultConflict = true;
        if (isWithin(entered.ageMin, range) || isWithin(entered.ageMax, range))
            rangeConflict = true;
    }
    if (rangeConflict)
        return Refusal::AgesInUse;
    return defaultConflict ? Refusal::DefaultInUse : Refusal::None;
}

Edit edit(const QVariantMap &entry, const QString &name, const Audience &entered)
{
    const QString nameKey = QStringLiteral("name");
    const QString ageMinKey = QStringLiteral("age-min");
    const QString ageMaxKey = QStringLiteral("age-max");
    const QString genderKey = QStringLiteral("gender");
    const QString defaultKey = QStringLiteral("default");
    const QString trueText = QStringLiteral("true");

    Edit result{entry, entry.value(nameKey).toString() != name};
    result.entry.insert(nameKey, name);
    QVariantMap map = params(entry);
    const bool wasDefault
        = map.value(defaultKey).toString().compare(trueText, Qt::CaseInsensitive) == 0;
    if (age(map, ageMinKey, 0) != entered.ageMin || age(map, ageMaxKey, 75) != entered.ageMax
        || map.value(genderKey).toString() != genderText(entered.gender)
        || wasDefault != entered.isDefault)
        result.changed = true;
    map.insert(ageMinKey, entered.ageMin);
    map.insert(ageMaxKey, entered.ageMax);
    map.insert(genderKey, genderText(entered.gender));
    map.insert(defaultKey, entered.isDefault ? trueText : QStringLiteral("false"));
    result.entry.insert(QStringLiteral("params"), map);
    return result;
}

} // namespace Oracle
