#include "demo/desk/SensorView.h"

#include "demo/desk/FaceLabel.h"
#include "demo/desk/FacePainter.h"
#include "demo/desk/FaceTray.h"

#include <QEvent>
#include <QPainter>
#include <QTimerEvent>
#include <QtMath>

#include <algorithm>

namespace Desk {

namespace {

constexpr int LongestFadeMs = 300;
constexpr int ShortestFadeMs = 40; // faster frames are shown at once
constexpr int SecondMs = 1000;
constexpr int TimerSlackMs = 20; // so that a second is over when it is counted
constexpr qreal HaloRadius = 1.08; // of what decided, in radii of the head
constexpr QRgb Veil = 0xa8171c22; // over faces that may not be there any more

/// Of the head, in the widget.
qreal radiusOf(const MarkPlace &place, const SensorGeometry &geometry)
{
    return geometry.toWidget(place.size) / 2;
}

QRectF squareAround(const QPointF &center, qreal radius)
{
    return {center - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius)};
}

/// Without a place it takes none.
LabelWish labelWish(const FaceMark &mark, const SensorGeometry &geometry, const FaceLabel &label)
{
    LabelWish wish;
    wish.sizes.fill(QSizeF(0, 0));
    wish.isImportant = mark.hasDecided();
    if (!mark.place)
        return wish;
    const qreal radius = radiusOf(*mark.place, geometry);
    wish.face = squareAround(
        geometry.toWidget(mark.place->center), mark.hasDecided() ? radius * HaloRadius : radius);
    for (const LabelDetail detail : {FullLabel, ShortLabel, LeastLabel})
        wish.sizes.at(detail) = label.size(mark, detail);
    return wish;
}

} // namespace

SensorView::SensorView(QWidget *parent)
    : QWidget(parent)
    , m_fade(this)
{
    setAttribute(Qt::WA_OpaquePaintEvent); // the background covers all of it
    setAccessibleName(tr("Sensor view"));
    m_fade.setStartValue(0.0);
    m_fade.setEndValue(1.0);
    m_fade.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_fade, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

SensorGeometry SensorView::sensorGeometry() const
{
    return SensorLayout::of(size(), font(), 0).geometry;
}

void SensorView::setPlan(const Analysis::Plan &plan)
{
    m_plan = plan;
    m_isFrameNew = m_frame.has_value();
    update();
}

void SensorView::showFrame(const SeenFrame &frame)
{
    m_frame = frame;
    m_isFrameNew = true;
    if (isVisible()) {
        takeFrame();
        startFade();
        watchAge();
    }
    m_sinceFrame.start();
}

void SensorView::setState(const SensorState &state)
{
    if (state == m_state)
        return;
    m_state = state;
    watchAge();
    update();
}

void SensorView::clear()
{
    m_frame.reset();
    m_isFrameNew = false;
    m_marks = {};
    m_motion = {};
    m_labels.clear();
    m_fade.stop();
    m_sinceFrame.invalidate();
    watchAge();
    update();
}

void SensorView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange
        || event->type() == QEvent::StyleChange)
        forgetLayout();
    QWidget::changeEvent(event);
}

void SensorView::hideEvent(QHideEvent *event)
{
    m_fade.stop();
    m_ageTimer.stop();
    QWidget::hideEvent(event);
}

void SensorView::showEvent(QShowEvent *event)
{
    if (m_isFrameNew)
        takeFrame();
    watchAge();
    QWidget::showEvent(event);
}

void SensorView::resizeEvent(QResizeEvent *event)
{
    forgetLayout();
    QWidget::resizeEvent(event);
}

void SensorView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_ageTimer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    setAccessibleDescription(spokenText(m_marks, message()));
    watchAge();
    update();
}

/// In less than half of the time since the frame before, so that it is over before the next one.
void SensorView::startFade()
{
    const qint64 duration = m_sinceFrame.isValid()
        ? std::min<qint64>(m_sinceFrame.elapsed() / 2, LongestFadeMs)
        : LongestFadeMs;
    m_fade.stop();
    if (duration >= ShortestFadeMs) {
        m_fade.setDuration(static_cast<int>(duration));
        m_fade.start();
    }
    update();
}

void SensorView::takeFrame()
{
    const FaceMarks before = m_marks;
    m_marks = faceMarks(*m_frame, m_plan);
    m_motion = MarkMotion(before.faces, m_marks.faces);
    m_isFrameNew = false;
    if (!m_background.isNull())
        layOut();
    setAccessibleDescription(spokenText(m_marks, message()));
}

void SensorView::layOut()
{
    m_layout = SensorLayout::of(size(), font(), m_marks.count());
    if (m_background.isNull()) {
        m_background = emptyPixmap(size());
        QPainter painter(&m_background);
        paintBackground(painter, m_layout, palette());
    }
    placeLabels();
}

void SensorView::forgetLayout()
{
    m_background = {};
}

void SensorView::placeLabels()
{
    const SensorGeometry &geometry = m_layout.geometry;
    const FaceLabel label(m_layout.labelFont, m_layout.labelWidth);
    QVector<LabelWish> wishes;
    for (const FaceMark &mark : qAsConst(m_marks.faces))
        wishes.append(labelWish(mark, geometry, label));
    QRectF area = geometry.area();
    area.setHeight(area.height() - FaceTray(m_marks, m_layout).area().height());
    const QVector<LabelPlace> places = Desk::placeLabels(wishes, area);

    m_labels.clear();
    for (int i = 0; i < places.size(); ++i) {
        const LabelPlace &place = places.at(i);
        m_labels.append({place.rect.topLeft(), QPixmap()});
        if (!m_marks.faces.at(i).place)
            continue;
        m_labels.last().picture = emptyPixmap(place.rect.size());
        QPainter painter(&m_labels.last().picture);
        painter.setRenderHint(QPainter::Antialiasing);
        label.paint(painter, m_marks.faces.at(i), place.detail, {{}, place.rect.size()});
    }
}

QPixmap SensorView::emptyPixmap(const QSizeF &size) const
{
    const QSizeF pixels = size * devicePixelRatioF();
    QPixmap pixmap(qCeil(pixels.width()), qCeil(pixels.height()));
    pixmap.setDevicePixelRatio(devicePixelRatioF());
    pixmap.fill(Qt::transparent);
    return pixmap;
}

void SensorView::watchAge()
{
    m_ageTimer.stop();
    const std::optional<qint64> age = ageMs();
    if (!isVisible() || !m_state.isLive || !age)
        return;
    const qint64 patience = m_state.patienceMs();
    const qint64 wait = *age < patience ? patience - *age : SecondMs - *age % SecondMs;
    m_ageTimer.start(static_cast<int>(wait) + TimerSlackMs, this);
}

std::optional<qint64> SensorView::ageMs() const
{
    if (!m_frame)
        return std::nullopt;
    const QDateTime now = m_clock ? m_clock() : QDateTime::currentDateTimeUtc();
    return std::max<qint64>(0, m_frame->decision.time.msecsTo(now));
}

SensorMessage SensorView::message() const
{
    return sensorMessage(m_marks, m_state, ageMs());
}

void SensorView::paintEvent(QPaintEvent * /*event*/)
{
    if (m_isFrameNew)
        takeFrame();
    if (!qFuzzyCompare(m_background.devicePixelRatioF(), devicePixelRatioF()))
        forgetLayout(); // it was moved to another screen
    if (m_background.isNull())
        layOut();

    QPainter painter(this);
    painter.drawPixmap(0, 0, m_background);
    painter.setRenderHint(QPainter::Antialiasing);
    const SensorMessage said = message();
    paintFooter(painter, m_layout, palette(), m_marks, m_state);
    painter.setClipRect(m_layout.geometry.area());
    paintFaces(painter);
    if (said.kind == SensorMessage::Stale)
        painter.fillRect(m_layout.geometry.area(), QColor::fromRgba(Veil));
    paintMessage(painter, m_layout, said, m_marks.count() > 0);
}

void SensorView::paintFaces(QPainter &painter) const
{
    const bool isFading = m_fade.state() == QAbstractAnimation::Running;
    const QVector<MovingMark> marks = m_motion.at(isFading ? m_fade.currentValue().toReal() : 1);
    FacePainter face(&painter, m_layout.labelFont);
    for (const MovingMark &moving : marks) {
        if (!moving.mark.place)
            continue;
        painter.setOpacity(moving.opacity);
        face.paint(moving.mark, m_layout.geometry.toWidget(moving.mark.place->center),
            radiusOf(*moving.mark.place, m_layout.geometry));
    }
    painter.setOpacity(1);
    paintLabels(painter, marks);
    FaceTray(m_marks, m_layout).paint(painter);
}

/// They move with their faces; what decided lies over the others.
void SensorView::paintLabels(QPainter &painter, const QVector<MovingMark> &marks) const
{
    const SensorGeometry &geometry = m_layout.geometry;
    for (const bool decided : {false, true}) {
        for (const MovingMark &moving : marks) {
            if (moving.target < 0 || !moving.mark.place || moving.mark.hasDecided() != decided)
                continue;
            const QPointF target = m_marks.faces.at(moving.target).place->center;
            const QPointF offset
                = geometry.toWidget(moving.mark.place->center) - geometry.toWidget(target);
            const Label &label = m_labels.at(moving.target);
            painter.setOpacity(moving.opacity);
            painter.drawPixmap(label.position + offset, label.picture);
        }
    }
    painter.setOpacity(1);
}

} // namespace Desk
