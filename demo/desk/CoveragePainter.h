#pragma once

#include "demo/desk/CoverageMap.h"

#include <QPalette>

class QPainter;

namespace Desk {

/// Draws a map that is laid out, in the painter's font.
class CoveragePainter
{
public:
    CoveragePainter(const Analysis::Plan &plan, const CoverageMap &map, const QPalette &palette,
        QPainter *painter);

    void drawMap();
    void drawMarks(const Analysis::Decision &decision);

private:
    void drawAxis();
    void drawGenders();
    void drawBand(const CoverageItem &item);
    void drawBandLabel(const CoverageItem &item);
    void drawFit(const QRectF &rect, const Analysis::Choice &choice, const QColor &color);
    void drawStripes(const QRectF &rect, const QColor &color, qreal width, qreal step);
    void drawDots(const QRectF &rect, const QColor &color);
    void drawKey();
    void drawContent(const CoverageItem &item);
    void drawMark(const QPointF &center, Analysis::DecidedFace::Outcome outcome);
    void drawText(const QRectF &rect, int flags, const QString &text, const QColor &color);

    const Analysis::Plan &m_plan;
    const CoverageMap &m_map;
    const QPalette &m_palette;
    QPainter *m_painter;
    const qreal m_em; // pixels
    const QColor m_text;
    const QColor m_faintText;
};

} // namespace Desk
