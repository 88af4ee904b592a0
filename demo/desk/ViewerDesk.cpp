#include "demo/desk/ViewerDesk.h"

#include <QtMath>

#include <algorithm>

namespace Desk {

namespace {

namespace Sensor = Simulation::Sensor;

constexpr double SizeStep = 1.1;
constexpr double MostSteps = 100; // beyond any size
// Of the places that are looked at for somebody new, on each side of the middle.
constexpr int Columns = 3;
constexpr int ColumnStep = 240; // pixels

PlacedViewer limited(PlacedViewer viewer)
{
    viewer.position.x = qBound(0, viewer.position.x, Sensor::MaxX);
    viewer.position.y = qBound(0, viewer.position.y, Sensor::MaxY);
    viewer.position.size = qBound(ViewerDesk::MinSize, viewer.position.size, ViewerDesk::MaxSize);
    if (viewer.age)
        viewer.age = qBound(0, *viewer.age, Sensor::MaxAge);
    for (int *angle : {&viewer.direction.lr, &viewer.direction.ud, &viewer.direction.roll})
        *angle = qBound(-Sensor::MaxAngle, *angle, Sensor::MaxAngle);
    return viewer;
}

} // namespace

ViewerDesk::ViewerDesk(QObject *parent)
    : QObject(parent)
{ }

PlacedViewer ViewerDesk::viewer(int id) const
{
    const int index = indexOf(id);
    return index < 0 ? PlacedViewer() : m_viewers.at(index);
}

int ViewerDesk::add(const QPoint &center)
{
    PlacedViewer viewer = m_pattern;
    viewer.position.x = center.x();
    viewer.position.y = center.y();
    if (!place(viewer))
        return 0;
    const int id = m_lastId;
    emit changed();
    select(id);
    return id;
}

void ViewerDesk::addGroup(ViewerGroup group)
{
    bool placed = false;
    const QVector<PlacedViewer> people = placeGroup(group, m_viewers);
    for (const PlacedViewer &viewer : people)
        placed = place(viewer) || placed;
    if (placed)
        emit changed();
}

void ViewerDesk::remove(int id)
{
    const int index = indexOf(id);
    if (index < 0)
        return;
    m_viewers.removeAt(index);
    const bool wasSelected = m_selected == id;
    if (wasSelected)
        m_selected = 0;
    emit changed();
    if (wasSelected)
        emit selectionChanged();
}

void ViewerDesk::clear()
{
    if (m_viewers.isEmpty())
        return;
    m_viewers.clear();
    const bool wasSelected = m_selected != 0;
    m_selected = 0;
    emit changed();
    if (wasSelected)
        emit selectionChanged();
}

void ViewerDesk::moveTo(int id, const QPoint &center)
{
    PlacedViewer moved = viewer(id);
    moved.position.x = center.x();
    moved.position.y = center.y();
    change(moved);
}

void ViewerDesk::moveBy(int id, const QPoint &offset)
{
    const Simulation::Position position = viewer(id).position;
    moveTo(id, QPoint(position.x, position.y) + offset);
}

void ViewerDesk::bringNearer(int id, double steps)
{
    PlacedViewer moved = viewer(id);
    const int size = moved.position.size;
    moved.position.size = qRound(size * qPow(SizeStep, qBound(-MostSteps, steps, MostSteps)));
    // However slowly a wheel is turned, it turns something.
    if (moved.position.size == size && steps != 0)
        moved.position.size += steps > 0 ? 1 : -1;
    change(moved);
}

void ViewerDesk::change(const PlacedViewer &viewer)
{
    const int index = indexOf(viewer.id);
    if (index < 0)
        return;
    const PlacedViewer next = limited(viewer);
    if (m_viewers.at(index) == next)
        return;
    m_viewers[index] = next;
    m_pattern = next;
    emit changed();
}

void ViewerDesk::select(int id)
{
    const int next = indexOf(id) < 0 ? 0 : id;
    if (m_selected == next)
        return;
    m_selected = next;
    emit selectionChanged();
}

void ViewerDesk::selectNext(int steps)
{
    const int count = m_viewers.size();
    if (count == 0)
        return;
    const int from = indexOf(m_selected);
    // From nobody the first step leads to the first one, or backwards to the last.
    const int start = from < 0 && steps > 0 ? -1 : qMax(from, 0);
    const int to = ((start + steps) % count + count) % count;
    select(m_viewers.at(to).id);
}

int ViewerDesk::viewerAt(const QPoint &point) const
{
    const QVector<PlacedViewer> order = farthestFirst();
    const auto hit = std::find_if(order.rbegin(), order.rend(),
        [&point](const PlacedViewer &viewer) { return viewer.area().contains(point); });
    return hit == order.rend() ? 0 : hit->id;
}

QPoint ViewerDesk::freePlace() const
{
    const QPoint middle(Sensor::MaxX / 2, Sensor::MaxY / 2);
    const QRect image(0, 0, Sensor::MaxX, Sensor::MaxY);
    std::optional<QPoint> best;
    const auto distance = [](const QPoint &a) { return QPoint::dotProduct(a, a); };
    for (int right = -Columns; right <= Columns; ++right) {
        for (int down = -Columns; down <= Columns; ++down) {
            const QPoint offset = QPoint(right, down) * ColumnStep;
            const bool isNearer = !best || distance(offset) < distance(*best);
            if (isNearer && image.contains(middle + offset) && viewerAt(middle + offset) == 0)
                best = offset;
        }
    }
    return middle + best.value_or(QPoint());
}

QVector<PlacedViewer> ViewerDesk::farthestFirst() const
{
    QVector<PlacedViewer> order = m_viewers;
    std::stable_sort(order.begin(), order.end(), [](const PlacedViewer &a, const PlacedViewer &b) {
        return a.position.size < b.position.size;
    });
    return order;
}

int ViewerDesk::indexOf(int id) const
{
    const auto found = std::find_if(m_viewers.begin(), m_viewers.end(),
        [id](const PlacedViewer &viewer) { return viewer.id == id; });
    return found == m_viewers.end() ? -1 : static_cast<int>(found - m_viewers.begin());
}

bool ViewerDesk::place(PlacedViewer viewer)
{
    if (isFull())
        return false;
    viewer.id = ++m_lastId;
    m_viewers.append(limited(viewer));
    return true;
}

} // namespace Desk
