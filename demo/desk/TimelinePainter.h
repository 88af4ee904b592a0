#pragma once

#include "demo/desk/TimelineGeometry.h"
#include "demo/desk/TimelineModel.h"
#include "tools/analysis/Plan.h"

#include <QColor>
#include <QPalette>
#include <QVector>

class QPainter;

namespace Desk {

/// Draws a timeline in the painter's font.
class TimelinePainter
{
public:
    TimelinePainter(const Analysis::Plan &plan, const TimelineModel &model,
        const TimelineGeometry &geometry, const QPalette &palette, QPainter *painter);

    static QString heldBackText(); ///< the name of the marks

    void draw();
    void drawPointer(int position, const QColor &color); ///< around a bucket
    void drawMoment(const QDateTime &time); ///< a line, when it is one of the last ten minutes

private:
    void drawNames();
    void drawScale();
    void drawSilences();
    void drawViewers();
    void drawMarks();
    void drawPlayed();
    void drawTimes();
    void drawText(const QRectF &rect, int flags, const QString &text, const QColor &color);

    const Analysis::Plan &m_plan;
    const TimelineModel &m_model;
    const TimelineGeometry &m_geometry;
    QPainter *m_painter;
    const qreal m_em; // pixels
    const int m_highest; // viewers that reach to the top
    const QColor m_text;
    const QColor m_faintText;
};

} // namespace Desk
