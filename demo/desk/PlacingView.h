#pragma once

#include "demo/desk/SensorGeometry.h"

#include <QPoint>
#include <QWidget>

namespace Desk {

struct PlacedViewer;
struct SensorLayout;
class ViewerDesk;

/// Lies over a sensor's picture and lets people be placed in it. It is transparent, and takes the
/// picture to be where a sensor view of its own size and font has it.
///
/// A click on free ground adds somebody, a drag moves, the wheel brings nearer. The arrow keys, +
/// and - do the same with the selected one, Tab selects the next one, Insert adds and Delete
/// removes.
class PlacingView : public QWidget
{
    Q_OBJECT

public:
    /// @p desk has to outlive this.
    explicit PlacingView(ViewerDesk *desk, QWidget *parent = nullptr);

    /// Where the sensor's picture lies in this widget.
    SensorGeometry sensorGeometry() const;

signals:
    void detailsWanted(); ///< of the selected one, by the keyboard

protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void showDesk();
    QPoint toSensor(const QPointF &position) const;
    bool isLastOne(bool forward) const;
    bool handleKey(int key);
    bool moveByKey(int key);
    void showCursorAt(const QPointF &position);
    void paintViewer(
        QPainter &painter, const SensorGeometry &geometry, const PlacedViewer &viewer) const;
    void paintHint(QPainter &painter, const SensorLayout &layout) const;

    ViewerDesk *m_desk;
    int m_dragged = 0; // 0: nobody
    QPoint m_grip; // from the centre of the dragged one, in pixels of the sensor
};

} // namespace Desk
