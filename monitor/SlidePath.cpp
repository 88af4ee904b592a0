#include "monitor/SlidePath.h"

namespace PluginKrHvcP2 {

int normalizedDirection(int direction)
{
    constexpr int horizontal = Leftwards | Rightwards;
    constexpr int vertical = Upwards | Downwards;
    int normalized = direction;
    if ((normalized & horizontal) == horizontal)
        normalized &= ~horizontal;
    if ((normalized & vertical) == vertical)
        normalized &= ~vertical;
    return normalized;
}

bool movesOnlyHorizontally(int normalizedDirection)
{
    return (normalizedDirection & (Leftwards | Rightwards)) != 0
        && (normalizedDirection & (Upwards | Downwards)) == 0;
}

SlidePath slidePath(
    int normalizedDirection, const QSizeF &panel, qreal idealWidth, qreal textHeight)
{
    SlidePath path;
    if ((normalizedDirection & Leftwards) != 0) {
        path.start.setX(panel.width());
        path.exit.setX(-idealWidth);
    } else if ((normalizedDirection & Rightwards) != 0) {
        path.start.setX(-idealWidth);
        path.rest.setX(panel.width() - idealWidth);
        path.exit.setX(panel.width());
    }

    const qreal centredY = (panel.height() - textHeight) / 2;
    if ((normalizedDirection & Upwards) != 0) {
        path.start.setY(panel.height());
        path.rest.setY(centredY);
        path.exit.setY(-textHeight);
    } else if ((normalizedDirection & Downwards) != 0) {
        path.rest.setY(centredY);
        path.exit.setY(panel.height());
    }
    return path;
}

} // namespace PluginKrHvcP2
