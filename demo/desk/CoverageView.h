#pragma once

#include "demo/desk/CoverageMap.h"
#include "demo/desk/SeenFrame.h"

#include <QPixmap>
#include <QWidget>

namespace Desk {

/// The map of who gets which content, with a mark for each face of the newest frame.
///
/// The arrow keys, Home and End move between its parts.
class CoverageView : public QWidget
{
    Q_OBJECT

public:
    explicit CoverageView(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    const CoverageMap &map() const { return m_map; } ///< as it lies in the view

public slots:
    void setPlan(const Analysis::Plan &plan);
    void showFrame(const Desk::SeenFrame &frame);
    void clear(); ///< of faces; the plan stays

signals:
    /// Somebody clicked content @p number, counted from 1, or chose it by Enter.
    void contentActivated(int number);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    void layOutMap();
    void setCurrent(int item);
    void setHovered(int item);
    void activate(int item);
    QStringList linesAt(const QPointF &point) const;
    const QPixmap &picture();
    void drawOutlines(QPainter *painter) const;

    Analysis::Plan m_plan;
    Analysis::Decision m_decision;
    CoverageMap m_map;
    QPixmap m_picture; // without the faces; null: to be drawn anew
    int m_current = -1; // chosen item
    int m_hovered = -1; // item
    int m_pressed = -1; // item
};

} // namespace Desk
