#pragma once

#include "demo/desk/SeenFrame.h"
#include "demo/desk/TimelineGeometry.h"
#include "demo/desk/TimelineModel.h"

#include <QBasicTimer>
#include <QWidget>

namespace Desk {

/// A strip of the last ten minutes: who stood there over what played.
///
/// The left and right arrow keys, Home and End move between the moments at which frames came.
class TimelineView : public QWidget
{
    Q_OBJECT

public:
    explicit TimelineView(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    const TimelineModel &model() const { return m_model; }
    TimelineGeometry geometryOfParts() const;

    /// Whether time goes on by the system's clock while the view is visible, as it does at first.
    void setFollowsClock(bool follows);

public slots:
    void setPlan(const Analysis::Plan &plan);
    void addFrame(const Desk::SeenFrame &frame);
    void sequenceStarted(int number, const QDateTime &time); ///< 0: none plays any more
    void setNow(const QDateTime &time);
    void showModel(const Desk::TimelineModel &model); ///< instead of all that came before
    /// Marks the moment that other views show; an invalid one for none.
    void markMoment(const QDateTime &time);
    void clear(); ///< of everything but the plan

signals:
    /// Somebody clicked a moment or chose it by Enter: the time of the frame with the most viewers.
    void momentChosen(const QDateTime &time);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    int positionAt(const QPointF &point) const; ///< -1: beside the buckets
    QStringList linesOf(int position) const;
    void moveCursor(int key);
    void setCursorPosition(int position);
    void choose(int position);
    void setHovered(int position);
    void updateTimer();

    Analysis::Plan m_plan;
    TimelineModel m_model;
    bool m_followsClock = true;
    QBasicTimer m_timer;
    qint64 m_cursor = -1; // index of a bucket; -1: none
    int m_hovered = -1; // position
    QDateTime m_marked;
};

} // namespace Desk
