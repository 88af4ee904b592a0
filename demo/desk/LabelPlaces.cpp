#include "demo/desk/LabelPlaces.h"

#include <algorithm>

namespace Desk {

namespace {

constexpr qreal Gap = 3; // between a face and its label
constexpr qreal BearableShare = 0.12; // of a label that lies over others
constexpr qreal ShortenedShare = 0.15; // of the labels that may say less than the rest
// What it costs to cover a label, a face, and the face that the label belongs to.
constexpr qreal LabelWeight = 3;
constexpr qreal FaceWeight = 1;
constexpr qreal OwnFaceWeight = 0.1;

qreal overlap(const QRectF &a, const QRectF &b)
{
    const QRectF common = a.intersected(b);
    return common.width() * common.height();
}

QRectF keptInside(QRectF rect, const QRectF &area)
{
    rect.moveLeft(std::max(area.left(), std::min(rect.left(), area.right() - rect.width())));
    rect.moveTop(std::max(area.top(), std::min(rect.top(), area.bottom() - rect.height())));
    return rect;
}

/// Below, above, right and left of the face.
std::array<QRectF, 4> candidates(const QRectF &face, const QSizeF &size)
{
    const qreal left = face.center().x() - size.width() / 2;
    const qreal top = face.center().y() - size.height() / 2;
    return {QRectF({left, face.bottom() + Gap}, size),
        QRectF({left, face.top() - Gap - size.height()}, size),
        QRectF({face.right() + Gap, top}, size),
        QRectF({face.left() - Gap - size.width(), top}, size)};
}

class Placing
{
public:
    Placing(const QVector<LabelWish> &wishes, const QRectF &area)
        : m_wishes(wishes)
        , m_area(area)
    { }

    /// Places in which the labels say as much as @p detail; less where that would cover too much.
    QVector<LabelPlace> run(LabelDetail detail)
    {
        m_places.clear();
        m_shortened = 0;
        for (int i = 0; i < m_wishes.size(); ++i) {
            const LabelDetail wanted = m_wishes.at(i).isImportant ? FullLabel : detail;
            m_places.append(placed(i, wanted));
            m_shortened += m_places.last().detail != wanted ? 1 : 0;
        }
        return m_places;
    }

    bool isCrowded() const { return m_shortened > m_wishes.size() * ShortenedShare; }

private:
    struct Offer
    {
        QRectF rect;
        qreal cost = 0; // the area that is covered
    };

    LabelPlace placed(int i, LabelDetail most) const
    {
        const LabelWish &wish = m_wishes.at(i);
        for (const LabelDetail detail : {FullLabel, ShortLabel}) {
            if (detail < most)
                continue;
            const Offer offer = best(i, wish.sizes.at(detail));
            const qreal bearable = offer.rect.width() * offer.rect.height() * BearableShare;
            if (wish.isImportant || offer.cost <= bearable)
                return {detail, offer.rect};
        }
        return {LeastLabel, best(i, wish.sizes.at(LeastLabel)).rect};
    }

    /// The first of the cheapest candidates.
    Offer best(int i, const QSizeF &size) const
    {
        std::array<Offer, 4> offers;
        const std::array<QRectF, 4> rects = candidates(m_wishes.at(i).face, size);
        std::transform(rects.cbegin(), rects.cend(), offers.begin(), [&](const QRectF &rect) {
            const QRectF inside = keptInside(rect, m_area);
            return Offer{inside, cost(i, inside)};
        });
        return *std::min_element(offers.cbegin(), offers.cend(),
            [](const Offer &a, const Offer &b) { return a.cost < b.cost; });
    }

    qreal cost(int i, const QRectF &rect) const
    {
        qreal sum = 0;
        for (const LabelPlace &place : m_places)
            sum += overlap(rect, place.rect) * LabelWeight;
        for (int j = 0; j < m_wishes.size(); ++j)
            sum += overlap(rect, m_wishes.at(j).face) * (j == i ? OwnFaceWeight : FaceWeight);
        return sum;
    }

    const QVector<LabelWish> &m_wishes;
    QRectF m_area;
    QVector<LabelPlace> m_places;
    int m_shortened = 0;
};

} // namespace

QVector<LabelPlace> placeLabels(const QVector<LabelWish> &wishes, const QRectF &area)
{
    // Labels that say as much as each other are easier to compare.
    Placing placing(wishes, area);
    for (const LabelDetail detail : {FullLabel, ShortLabel}) {
        const QVector<LabelPlace> places = placing.run(detail);
        if (!placing.isCrowded())
            return places;
    }
    return placing.run(LeastLabel);
}

} // namespace Desk
