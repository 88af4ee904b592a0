#include "detection/FaceResult.h"

#include <QVariantMap>

#include <algorithm>
#include <cstdlib>

namespace PluginKrHvcP2 {

void FaceResult::setItem(const FaceResultItem &item)
{
    if (!item.isValid())
        return;
    const auto it = std::find_if(m_items.begin(), m_items.end(),
        [&](const FaceResultItem &stored) { return stored.kind == item.kind; });
    if (it != m_items.end())
        *it = item;
    else
        m_items.append(item);
}

FaceResultItem FaceResult::item(int kind) const
{
    const auto it = std::find_if(m_items.cbegin(), m_items.cend(),
        [=](const FaceResultItem &stored) { return stored.kind == kind; });
    return it != m_items.cend() ? *it : FaceResultItem();
}

void FaceResult::reset()
{
    *this = FaceResult();
}

int FaceResult::size() const
{
    return item(FaceResultItem::Detection).value.toMap().value(QStringLiteral("Size")).toInt();
}

int FaceResult::directionValue() const
{
    return item(FaceResultItem::Direction)
        .value.toMap()
        .value(QStringLiteral("DirectionValue"), UnknownDirectionValue)
        .toInt();
}

int directionValue(int leftRight, int upDown)
{
    const qint64 sum = std::abs(qint64{leftRight}) + std::abs(qint64{upDown});
    return static_cast<int>(std::min<qint64>(sum, UnknownDirectionValue));
}

} // namespace PluginKrHvcP2
