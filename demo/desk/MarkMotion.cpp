#include "demo/desk/MarkMotion.h"

#include <QLineF>

#include <algorithm>
#include <cmath>

namespace Desk {

namespace {

constexpr qreal SameNumberFactor = 0.5; // on the distance
constexpr qreal LeastReach = 60; // pixels of the sensor; of tiny faces

struct Pair
{
    int from = 0;
    int to = 0;
    qreal cost = 0;
};

/// What it takes to be the same face: at most its own size away, with the same number twice that.
std::optional<qreal> cost(const FaceMark &from, const FaceMark &to)
{
    if (!from.place || !to.place)
        return std::nullopt;
    const qreal factor = from.index == to.index ? SameNumberFactor : 1;
    const qreal cost = QLineF(from.place->center, to.place->center).length() * factor;
    const qreal reach = std::max({from.place->size, to.place->size, LeastReach});
    return cost <= reach ? std::optional<qreal>(cost) : std::nullopt;
}

qreal between(qreal from, qreal to, qreal progress)
{
    return from + (to - from) * progress;
}

QPointF between(const QPointF &from, const QPointF &to, qreal progress)
{
    return from + (to - from) * progress;
}

/// The shorter way round.
qreal turned(qreal from, qreal to, qreal progress)
{
    return from + std::remainder(to - from, 360.0) * progress;
}

FaceMark moved(const FaceMark &from, FaceMark to, qreal progress)
{
    if (from.place && to.place) {
        to.place->center = between(from.place->center, to.place->center, progress);
        to.place->size = between(from.place->size, to.place->size, progress);
    }
    if (from.gaze && to.gaze)
        to.gaze->tip = between(from.gaze->tip, to.gaze->tip, progress);
    to.roll = turned(from.roll, to.roll, progress);
    return to;
}

} // namespace

MarkMotion::MarkMotion(const QVector<FaceMark> &from, const QVector<FaceMark> &to)
{
    const QVector<int> origins = matched(from, to);
    for (int i = 0; i < from.size(); ++i) {
        if (!origins.contains(i))
            m_ways.append(Way{{from.at(i), 1, -1}, {from.at(i), 0, -1}});
    }

    const int leaving = m_ways.size();
    for (int i = 0; i < to.size(); ++i) {
        const int origin = origins.at(i);
        const MovingMark start
            = origin < 0 ? MovingMark{to.at(i), 0, i} : MovingMark{from.at(origin), 1, i};
        m_ways.append(Way{start, {to.at(i), 1, i}});
    }
    std::stable_sort(m_ways.begin() + leaving, m_ways.end(),
        [](const Way &a, const Way &b) { return a.to.mark.rank > b.to.mark.rank; });
}

QVector<MovingMark> MarkMotion::at(qreal progress) const
{
    QVector<MovingMark> marks;
    marks.reserve(m_ways.size());
    for (const Way &way : m_ways) {
        if (progress >= 1) {
            if (way.to.target >= 0)
                marks.append(way.to);
            continue;
        }
        marks.append({moved(way.from.mark, way.to.mark, progress),
            between(way.from.opacity, way.to.opacity, progress), way.to.target});
    }
    return marks;
}

QVector<int> MarkMotion::matched(const QVector<FaceMark> &from, const QVector<FaceMark> &to)
{
    QVector<Pair> pairs;
    for (int i = 0; i < from.size(); ++i) {
        for (int j = 0; j < to.size(); ++j) {
            if (const std::optional<qreal> found = cost(from.at(i), to.at(j)))
                pairs.append({i, j, *found});
        }
    }
    std::stable_sort(
        pairs.begin(), pairs.end(), [](const Pair &a, const Pair &b) { return a.cost < b.cost; });

    QVector<int> origins(to.size(), -1);
    for (const Pair &pair : qAsConst(pairs)) {
        if (origins.at(pair.to) < 0 && !origins.contains(pair.from))
            origins[pair.to] = pair.from;
    }
    return origins;
}

} // namespace Desk
