#pragma once

#include "demo/desk/PlacedViewer.h"
#include "demo/desk/ViewerGroups.h"

#include <QObject>
#include <QPoint>
#include <QVector>

namespace Desk {

/// The people before the sensor who are placed by hand, and which of them is selected. Places are
/// in pixels of the sensor's image, 1600 x 1200. Every value is kept in the sensor's range.
class ViewerDesk : public QObject
{
    Q_OBJECT

public:
    static constexpr int MaxViewers = Simulation::Sensor::MaxFaces; ///< the sensor reports no more
    static constexpr int MinSize = 40; ///< pixels; the farthest
    static constexpr int MaxSize = 800; ///< the nearest

    explicit ViewerDesk(QObject *parent = nullptr);

    QVector<PlacedViewer> viewers() const { return m_viewers; } ///< in the order of their placing
    PlacedViewer viewer(int id) const; ///< not valid when there is none
    bool isFull() const { return m_viewers.size() >= MaxViewers; }

    /// Places and selects somebody like the last one who was changed. Returns the id; 0 when the
    /// desk is full.
    int add(const QPoint &center);
    void addGroup(ViewerGroup group); ///< as many of it as there is room for
    void remove(int id);
    void clear();

    void moveTo(int id, const QPoint &center);
    void moveBy(int id, const QPoint &offset);
    /// By so many steps of a tenth, fractions too; farther when they are negative.
    void bringNearer(int id, double steps);
    /// Takes all values of @p viewer over for the one with its id.
    void change(const PlacedViewer &viewer);

    int selected() const { return m_selected; } ///< 0: none
    void select(int id); ///< 0, or whoever is not there: none
    void selectNext(int steps = 1); ///< round the order of their placing, backwards too

    /// Who is seen at @p point: the nearest one whose face it hits, of equals the last one placed;
    /// 0: nobody.
    int viewerAt(const QPoint &point) const;
    /// The place nearest to the middle of the image where nobody is seen; the middle itself when
    /// there is none.
    QPoint freePlace() const;
    QVector<PlacedViewer> farthestFirst() const; ///< the order of painting, which viewerAt() turns

signals:
    void changed(); ///< somebody came, went or was changed
    void selectionChanged();

private:
    int indexOf(int id) const; // -1: none
    bool place(PlacedViewer viewer);

    QVector<PlacedViewer> m_viewers;
    PlacedViewer m_pattern; // of the next one
    int m_selected = 0;
    int m_lastId = 0;
};

} // namespace Desk
