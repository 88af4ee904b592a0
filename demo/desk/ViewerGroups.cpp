#include "demo/desk/ViewerGroups.h"

#include <QCoreApplication>

#include <algorithm>
#include <limits>

namespace Desk {

namespace {

using Simulation::Gender;
using Simulation::Position;

namespace Sensor = Simulation::Sensor;

constexpr QRect Image{0, 0, Sensor::MaxX + 1, Sensor::MaxY + 1};
constexpr int ShiftStep = 100; // pixels

PlacedViewer person(Gender gender, int age, const Position &position, int lr = 0, int ud = 0)
{
    PlacedViewer viewer;
    viewer.gender = gender;
    viewer.age = age;
    viewer.position = position;
    viewer.direction.lr = lr;
    viewer.direction.ud = ud;
    return viewer;
}

QVector<PlacedViewer> family()
{
    return {
        person(Gender::Male, 41, {620, 470, 190}, 4, -6),
        person(Gender::Female, 38, {960, 490, 190}, -4, -5),
        person(Gender::Female, 9, {720, 720, 150}, 2, 9),
        person(Gender::Male, 6, {880, 760, 140}, -3, 12),
    };
}

QVector<PlacedViewer> schoolClass()
{
    QVector<PlacedViewer> viewers{person(Gender::Female, 44, {240, 480, 160}, 12, -4)};
    int number = 0;
    for (int row = 0; row < 3; ++row) {
        const int size = 90 + 15 * row; // the last row first, the first one nearest
        for (int place = 0; place < 7; ++place, ++number) {
            const int x = 420 + 150 * place + (row % 2) * 60;
            const Gender gender = (number * 5) % 7 < 4 ? Gender::Female : Gender::Male;
            viewers.append(person(gender, 9 + number % 2, {x, 540 + 140 * row, size},
                (place - 3) * -3, 6 + number % 4));
        }
    }
    return viewers;
}

QVector<PlacedViewer> rushHour()
{
    QVector<PlacedViewer> viewers{
        person(Gender::Male, 34, {300, 560, 230}, 35, -4),
        person(Gender::Female, 27, {560, 620, 260}, 8, -2),
        person(Gender::Male, 52, {860, 540, 240}, -5, -6),
        person(Gender::Female, 61, {1140, 600, 220}, -20, 2),
        person(Gender::Male, 19, {1380, 620, 210}, -45, 10),
        person(Gender::Female, 16, {430, 370, 130}, 15),
        person(Gender::Female, 43, {670, 400, 120}, 3, -3),
        person(Gender::Male, 29, {1000, 350, 125}, -28, 4),
        person(Gender::Male, 70, {1260, 415, 130}, -12, -5),
        person(Gender::Female, 33, {180, 390, 110}, 50),
        person(Gender::Male, 12, {720, 860, 180}, 4, 14),
        person(Gender::Female, 24, {560, 330, 80}, 6, -2),
        person(Gender::Male, 47, {820, 320, 75}, -40, 3),
        person(Gender::Female, 56, {1120, 330, 80}, -8),
        person(Gender::Male, 38, {1420, 380, 100}, -60),
        person(Gender::Female, 21, {320, 320, 70}, 22, 5),
    };
    // They pass: the sensor sees nobody for long, and does not always see well.
    for (PlacedViewer &viewer : viewers) {
        viewer.settled = false;
        viewer.noise = PlacedViewer::SomeNoise;
    }
    return viewers;
}

QVector<PlacedViewer> people(ViewerGroup group)
{
    switch (group) {
    case ViewerGroup::Family:
        return family();
    case ViewerGroup::SchoolClass:
        return schoolClass();
    case ViewerGroup::RushHour:
        return rushHour();
    }
    return {};
}

QRect extent(const QVector<PlacedViewer> &viewers)
{
    QRect rect;
    for (const PlacedViewer &viewer : viewers)
        rect |= viewer.area();
    return rect;
}

/// Pixels of @p present that @p viewers cover, those shifted by @p shift.
qint64 covered(
    const QVector<PlacedViewer> &viewers, const QPoint &shift, const QVector<PlacedViewer> &present)
{
    qint64 pixels = 0;
    for (const PlacedViewer &viewer : viewers) {
        for (const PlacedViewer &other : present) {
            const QRect common = viewer.area().translated(shift) & other.area();
            pixels += qint64(common.width()) * common.height();
        }
    }
    return pixels;
}

/// Places within the image, the group's own first.
QVector<QPoint> shifts(const QRect &group)
{
    QVector<QPoint> found;
    for (int x = -Image.width(); x <= Image.width(); x += ShiftStep) {
        for (int y = -Image.height(); y <= Image.height(); y += ShiftStep) {
            const QPoint shift(x, y);
            if (Image.contains(group.translated(shift)))
                found.append(shift);
        }
    }
    std::stable_sort(found.begin(), found.end(),
        [](const QPoint &a, const QPoint &b) { return a.manhattanLength() < b.manhattanLength(); });
    return found;
}

} // namespace

QVector<ViewerGroup> viewerGroups()
{
    return {ViewerGroup::Family, ViewerGroup::RushHour, ViewerGroup::SchoolClass};
}

QString groupName(ViewerGroup group)
{
    const auto tr
        = [](const char *text) { return QCoreApplication::translate("Desk::ViewerGroups", text); };
    switch (group) {
    case ViewerGroup::Family:
        return tr("A family");
    case ViewerGroup::SchoolClass:
        return tr("A school class");
    case ViewerGroup::RushHour:
        return tr("Rush hour");
    }
    return {};
}

QVector<PlacedViewer> placeGroup(ViewerGroup group, const QVector<PlacedViewer> &present)
{
    QVector<PlacedViewer> viewers = people(group);
    QPoint best;
    qint64 fewest = std::numeric_limits<qint64>::max();
    const auto candidates = shifts(extent(viewers));
    for (const QPoint &shift : candidates) {
        const qint64 pixels = covered(viewers, shift, present);
        if (pixels < fewest) {
            fewest = pixels;
            best = shift;
        }
    }
    for (PlacedViewer &viewer : viewers) {
        viewer.position.x += best.x();
        viewer.position.y += best.y();
    }
    return viewers;
}

} // namespace Desk
