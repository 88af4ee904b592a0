#pragma once

#include <QCoreApplication>
#include <QWheelEvent>
#include <QWidget>

namespace KrTest {

/// Turns the wheel over @p view by @p eighths of a degree, 120 for a notch away from the user.
inline void turnWheel(QWidget *view, const QPointF &position, int eighths)
{
    QWheelEvent event(position, view->mapToGlobal(position.toPoint()), QPoint(), {0, eighths},
        Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view, &event);
}

} // namespace KrTest
