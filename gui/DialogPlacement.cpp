#include "gui/DialogPlacement.h"

namespace PluginKrHvcP2 {

namespace {

constexpr int VerticalRoom = 300;

} // namespace

QRect cursorAnchor(const QPoint &cursor)
{
    return {cursor.x() - 100, cursor.y() + 10, 1, 1};
}

QPoint dialogPosition(const QRect &anchor, const QRect &screen, int horizontalRoom)
{
    int x = anchor.left();
    if (x < screen.left())
        x = screen.left();
    if (x + horizontalRoom > screen.right())
        x = screen.right() - horizontalRoom;

    int y = anchor.top() - VerticalRoom;
    if (y < screen.top())
        y = anchor.bottom() <= screen.top() ? screen.top() + anchor.height() : anchor.bottom();
    if (y + VerticalRoom > screen.bottom())
        y = screen.bottom() - VerticalRoom;
    return {x, y};
}

} // namespace PluginKrHvcP2
