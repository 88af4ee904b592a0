#include "detection/FaceResult.h"

#include <QVariantMap>

#include <algorithm>
#include <cstdlib>

namespace PluginKrHvcP2 {

namespace {

const QString X = QStringLiteral("X");
const QString Y = QStringLiteral("Y");
const QString Size = QStringLiteral("Size");
const QString LeftRight = QStringLiteral("LR");
const QString UpDown = QStringLiteral("UD");
const QString Roll = QStringLiteral("Roll");
const QString DirectionValue = QStringLiteral("DirectionValue");

FaceBox toBox(const QVariantMap &map)
{
    return {map.value(X).toInt(), map.value(Y).toInt(), map.value(Size).toInt()};
}

QVariantMap toMap(const FaceBox &box)
{
    return {{X, box.x}, {Y, box.y}, {Size, box.size}};
}

FaceAngles toAngles(const QVariantMap &map)
{
    const auto angle = [&](const QString &key) {
        return map.contains(key) ? std::optional<int>(map.value(key).toInt()) : std::nullopt;
    };
    return {angle(LeftRight), angle(UpDown), angle(Roll),
        map.value(DirectionValue, UnknownDirectionValue).toInt()};
}

QVariantMap toMap(const FaceAngles &angles)
{
    QVariantMap map{{DirectionValue, angles.directionValue}};
    const auto insert = [&](const QString &key, const std::optional<int> &angle) {
        if (angle)
            map.insert(key, *angle);
    };
    insert(LeftRight, angles.leftRight);
    insert(UpDown, angles.upDown);
    insert(Roll, angles.roll);
    return map;
}

template <typename T, typename Convert>
FaceResultItem toItem(int kind, const std::optional<Measured<T>> &measured, Convert convert)
{
    if (!measured)
        return {};
    return {kind, QVariant(convert(measured->value)), measured->confidence, measured->marked};
}

} // namespace

void FaceResult::setItem(const FaceResultItem &item)
{
    if (!item.isValid())
        return;
    switch (item.kind) {
    case FaceResultItem::Detection:
        box = {toBox(item.value.toMap()), item.confidence, item.marked};
        break;
    case FaceResultItem::Direction:
        angles = {toAngles(item.value.toMap()), item.confidence, item.marked};
        break;
    case FaceResultItem::Age:
        age = {item.value.toInt(), item.confidence, item.marked};
        break;
    case FaceResultItem::Gender:
        gender = {item.value.toInt(), item.confidence, item.marked};
        break;
    default:
        break;
    }
}

FaceResultItem FaceResult::item(int kind) const
{
    const auto number = [](int value) { return value; };
    const auto map = [](const auto &value) { return toMap(value); };
    switch (kind) {
    case FaceResultItem::Detection:
        return toItem(kind, box, map);
    case FaceResultItem::Direction:
        return toItem(kind, angles, map);
    case FaceResultItem::Age:
        return toItem(kind, age, number);
    case FaceResultItem::Gender:
        return toItem(kind, gender, number);
    default:
        return {};
    }
}

void FaceResult::reset()
{
    *this = FaceResult();
}

int directionValue(int leftRight, int upDown)
{
    const qint64 sum = std::abs(qint64{leftRight}) + std::abs(qint64{upDown});
    return static_cast<int>(std::min<qint64>(sum, UnknownDirectionValue));
}

} // namespace PluginKrHvcP2
