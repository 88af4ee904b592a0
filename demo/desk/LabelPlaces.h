#pragma once

#include <QRectF>
#include <QSizeF>
#include <QVector>

#include <array>

namespace Desk {

/// How much a face's label says.
enum LabelDetail { FullLabel, ShortLabel, LeastLabel };
constexpr int LabelDetails = 3;

/// A label that has to find its place.
struct LabelWish
{
    QRectF face;
    std::array<QSizeF, LabelDetails> sizes; ///< by detail
    bool isImportant = false; ///< it says all, whatever it covers
};

struct LabelPlace
{
    LabelDetail detail = FullLabel;
    QRectF rect; ///< in the area, unless that is too small
};

/// Where the labels go, beside their faces and in @p area: the first ones choose first. Most say
/// the same, which is as much as they can without covering others and their faces.
QVector<LabelPlace> placeLabels(const QVector<LabelWish> &wishes, const QRectF &area);

} // namespace Desk
