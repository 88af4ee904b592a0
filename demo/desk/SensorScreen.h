#pragma once

#include "demo/desk/SensorGeometry.h"
#include "demo/desk/SensorState.h"

#include <QFont>
#include <QPalette>
#include <QRectF>

class QPainter;

namespace Desk {

/// How a sensor view of a size is divided, and its fonts.
struct SensorLayout
{
    SensorGeometry geometry;
    QRectF footer; ///< the line below the picture
    QFont footerFont;
    QFont labelFont; ///< grows with the picture, and is smaller where there are many faces
    qreal labelWidth = 0; ///< that the text of a label may have

    static SensorLayout of(const QSizeF &size, const QFont &font, int faces);
};

/// What is around the faces, and over them.
void paintBackground(QPainter &painter, const SensorLayout &layout, const QPalette &palette);
void paintFooter(QPainter &painter, const SensorLayout &layout, const QPalette &palette,
    const FaceMarks &marks, const SensorState &state);
void paintMessage(
    QPainter &painter, const SensorLayout &layout, const SensorMessage &message, bool hasFaces);

} // namespace Desk
