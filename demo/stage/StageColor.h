#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

namespace Stage {

/// A colour of a card. Each part is from 0 to 255.
struct StageColor
{
    int red = 0;
    int green = 0;
    int blue = 0;
    int alpha = 255; ///< 255: opaque

    QString name() const; ///< "#rrggbb", without the alpha
};

/// A colour as stage files have it: "#rgb", "#rrggbb", "#aarrggbb", "#rrrgggbbb", "#rrrrggggbbbb",
/// or one of the names of SVG 1.0 in any letter case. Nothing for other texts.
///
/// What QColor says, for programs that do without Qt Gui.
std::optional<StageColor> colorFromText(const QString &text);

/// Black or white, whichever is read more easily on @p background.
StageColor inkOn(const StageColor &background);

/// The colour of @p entry, sequence @p number of its screen: the one of its card, else one of eight
/// that take turns.
StageColor contentColor(const QJsonObject &entry, int number);

} // namespace Stage
