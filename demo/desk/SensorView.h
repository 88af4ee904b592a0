#pragma once

#include "demo/desk/MarkMotion.h"
#include "demo/desk/SensorScreen.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QPixmap>
#include <QVariantAnimation>
#include <QWidget>

#include <functional>
#include <optional>

namespace Desk {

/// What the sensor sees: the faces of a frame in its picture, whom they are taken for, and which of
/// them decided. While nobody can see it, it keeps the newest frame and does nothing else.
class SensorView : public QWidget
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;

    explicit SensorView(QWidget *parent = nullptr);

    /// Where the sensor's picture lies in this widget.
    SensorGeometry sensorGeometry() const;
    /// What tells how old a frame is; without one the system's clock.
    void setClock(const Clock &clock) { m_clock = clock; }

    QSize sizeHint() const override { return {640, 500}; }
    QSize minimumSizeHint() const override { return {240, 190}; }

public slots:
    void setPlan(const Analysis::Plan &plan);
    void showFrame(const Desk::SeenFrame &frame);
    void setState(const Desk::SensorState &state);
    void clear(); ///< no frame has come yet; the plan stays

protected:
    void changeEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void startFade();
    void takeFrame();
    void layOut();
    void placeLabels();
    QPixmap emptyPixmap(const QSizeF &size) const;
    void forgetLayout();
    void watchAge();
    std::optional<qint64> ageMs() const;
    SensorMessage message() const;
    void paintFaces(QPainter &painter) const;
    void paintLabels(QPainter &painter, const QVector<MovingMark> &marks) const;

    Clock m_clock;
    Analysis::Plan m_plan;
    std::optional<SeenFrame> m_frame;
    SensorState m_state;

    FaceMarks m_marks; // of m_frame, unless m_isFrameNew
    MarkMotion m_motion; // towards m_marks
    bool m_isFrameNew = false;
    QVariantAnimation m_fade;
    QElapsedTimer m_sinceFrame;
    QBasicTimer m_ageTimer;

    struct Label
    {
        QPointF position; // where the face will be
        QPixmap picture;
    };

    // For the size and font at hand, unless the background is null.
    SensorLayout m_layout;
    QPixmap m_background;
    QVector<Label> m_labels; // by position in m_marks; text takes long to paint
};

} // namespace Desk
