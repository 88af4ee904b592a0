#include "demo/desk/LogDayBar.h"

#include "demo/desk/LogDay.h"
#include "demo/desk/LogPlayhead.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QToolButton>

#include <array>

namespace Desk {

namespace {

constexpr int Margin = 6;
constexpr qint64 SecondMs = 1000;
constexpr std::array<int, 3> Speeds{1, 10, LogPlayhead::MaxSpeed};

/// Goes to where it is clicked.
class DaySlider : public QSlider
{
public:
    using QSlider::QSlider;

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        if (event->button() == Qt::LeftButton)
            setValue(valueAt(event->localPos().x()));
        QSlider::mousePressEvent(event); // takes hold of the handle, which is there now
    }

private:
    int valueAt(qreal x) const
    {
        QStyleOptionSlider option;
        initStyleOption(&option);
        const int handle
            = style()
                  ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this)
                  .width();
        return QStyle::sliderValueFromPosition(
            minimum(), maximum(), qRound(x) - handle / 2, width() - handle);
    }
};

} // namespace

QTime timeOfDay(const QString &text)
{
    const QString trimmed = text.trimmed();
    const QTime time = QTime::fromString(trimmed, QStringLiteral("H:mm"));
    return time.isValid() ? time : QTime::fromString(trimmed, QStringLiteral("H:mm:ss"));
}

LogDayBar::LogDayBar(LogPlayhead *playhead, QWidget *parent)
    : QWidget(parent)
    , m_playhead(playhead)
{
    setAccessibleName(tr("Day of the log"));
    setFocusPolicy(Qt::StrongFocus);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    createButtons();
    createSlider();
    createTimeField();
    connect(playhead, &LogPlayhead::moved, this, &LogDayBar::showFrame);
    connect(playhead, &LogPlayhead::playingChanged, this,
        [this](bool isPlaying) { m_play->setText(isPlaying ? tr("Pause") : tr("Play")); });
    showReading(0);
}

QToolButton *LogDayBar::addButton(const QString &name, const QString &text)
{
    auto *const button = new QToolButton(this);
    button->setObjectName(name);
    button->setText(text);
    button->setFocusPolicy(Qt::TabFocus);
    layout()->addWidget(button);
    return button;
}

void LogDayBar::createButtons()
{
    m_play = addButton(QStringLiteral("logPlay"), tr("Pause"));
    m_play->setMinimumWidth(m_play->sizeHint().width()); // the longer of both
    m_play->setText(tr("Play"));
    m_play->setToolTip(tr("Play or pause (Space)"));
    connect(m_play, &QToolButton::clicked, m_playhead,
        [this] { m_playhead->setPlaying(!m_playhead->isPlaying()); });

    m_speed = new QComboBox(this);
    m_speed->setObjectName(QStringLiteral("logSpeed"));
    m_speed->setAccessibleName(tr("Speed"));
    m_speed->setToolTip(tr("How many times as fast as it was"));
    for (const int speed : Speeds)
        m_speed->addItem(tr("%1x").arg(speed), speed);
    layout()->addWidget(m_speed);
    connect(m_speed, qOverload<int>(&QComboBox::currentIndexChanged), m_playhead,
        [this] { m_playhead->setSpeed(m_speed->currentData().toInt()); });

    QToolButton *const back = addButton(QStringLiteral("logBack"), QString());
    back->setArrowType(Qt::LeftArrow);
    back->setAccessibleName(tr("Frame before"));
    back->setToolTip(tr("Frame before (Left)"));
    connect(back, &QToolButton::clicked, m_playhead, [this] { m_playhead->step(-1); });
    QToolButton *const next = addButton(QStringLiteral("logNext"), QString());
    next->setArrowType(Qt::RightArrow);
    next->setAccessibleName(tr("Next frame"));
    next->setToolTip(tr("Next frame (Right)"));
    connect(next, &QToolButton::clicked, m_playhead, [this] { m_playhead->step(1); });
}

void LogDayBar::createSlider()
{
    m_begin = new QLabel(this);
    m_slider = new DaySlider(Qt::Horizontal, this);
    m_slider->setObjectName(QStringLiteral("logSlider"));
    m_slider->setAccessibleName(tr("Time of the day"));
    m_slider->setFocusPolicy(Qt::NoFocus); // the keys are those of the bar
    m_end = new QLabel(this);
    for (QWidget *const widget : {static_cast<QWidget *>(m_begin), static_cast<QWidget *>(m_slider),
             static_cast<QWidget *>(m_end)})
        layout()->addWidget(widget);
    connect(m_slider, &QSlider::valueChanged, this, &LogDayBar::takeSlider);
}

/// It stays where it was put, also between two frames.
void LogDayBar::takeSlider(int seconds)
{
    if (m_isSliding)
        return;
    m_isSliding = true;
    m_playhead->moveTo(seconds * SecondMs);
    m_isSliding = false;
}

void LogDayBar::createTimeField()
{
    m_time = new QLabel(this);
    m_time->setObjectName(QStringLiteral("logTime"));
    QFont font = m_time->font();
    font.setBold(true);
    m_time->setFont(font);
    layout()->addWidget(m_time);

    m_wanted = new QLineEdit(this);
    m_wanted->setObjectName(QStringLiteral("logGoTo"));
    m_wanted->setAccessibleName(tr("Go to a time"));
    m_wanted->setPlaceholderText(QStringLiteral("09:30"));
    m_wanted->setToolTip(tr("Go to a time such as 09:30 or 09:30:15 (Ctrl+G)"));
    m_wanted->setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("00:00:00")) * 3 / 2);
    layout()->addWidget(m_wanted);
    connect(m_wanted, &QLineEdit::returnPressed, this, &LogDayBar::goToGivenTime);
    auto *const key = new QShortcut(QKeySequence(int(Qt::CTRL) | int(Qt::Key_G)), this);
    connect(key, &QShortcut::activated, m_wanted, [this] {
        m_wanted->setFocus(Qt::ShortcutFocusReason);
        m_wanted->selectAll();
    });
}

void LogDayBar::showReading(int percent)
{
    const bool isRead = percent >= 100;
    const auto children = findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *const child : children)
        child->setEnabled(isRead);
    if (isRead)
        showDay();
    else
        m_time->setText(tr("Reading the log: %1 %").arg(percent));
}

void LogDayBar::showDay()
{
    const LogDay *const day = m_playhead->day();
    const bool hasFrames = day && day->count() > 0;
    const QString form = QStringLiteral("HH:mm");
    m_begin->setText(hasFrames ? day->time(1).toString(form) : QString());
    m_end->setText(hasFrames ? day->time(day->count()).toString(form) : QString());
    if (!hasFrames) {
        m_time->setText(tr("There is no frame in this log."));
        return;
    }
    const QSignalBlocker blocker(m_slider);
    m_slider->setMaximum(static_cast<int>((day->lengthMs() + SecondMs - 1) / SecondMs));
    m_slider->setPageStep(PageMs / SecondMs);
    if (m_playhead->number() > 0)
        showFrame(m_playhead->number());
}

void LogDayBar::showFrame(qint64 number)
{
    const LogDay &day = *m_playhead->day();
    if (!day.isRead())
        return;
    if (!m_isSliding) {
        const QSignalBlocker blocker(m_slider);
        m_slider->setValue(static_cast<int>(day.passedMs(number) / SecondMs));
    }
    m_time->setText(day.time(number).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    m_time->setToolTip(
        tr("Frame %1 of %2").arg(QString::number(number), QString::number(day.count())));
    setAccessibleDescription(m_time->text());
}

void LogDayBar::goToGivenTime()
{
    const QTime time = timeOfDay(m_wanted->text());
    if (!time.isValid() || !m_playhead->day()) {
        m_wanted->selectAll();
        return;
    }
    m_playhead->showFrame(m_playhead->day()->frameAtTime(time));
    m_wanted->clear();
    setFocus();
}

void LogDayBar::keyPressEvent(QKeyEvent *event)
{
    const LogDay *const day = m_playhead->day();
    if (!day || !day->isRead()) {
        QWidget::keyPressEvent(event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_Space:
        m_playhead->setPlaying(!m_playhead->isPlaying());
        break;
    case Qt::Key_Left:
        m_playhead->step(-1);
        break;
    case Qt::Key_Right:
        m_playhead->step(1);
        break;
    case Qt::Key_PageUp:
        m_playhead->moveBy(-PageMs);
        break;
    case Qt::Key_PageDown:
        m_playhead->moveBy(PageMs);
        break;
    case Qt::Key_Home:
        m_playhead->showFrame(1);
        break;
    case Qt::Key_End:
        m_playhead->showFrame(day->count());
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void LogDayBar::focusInEvent(QFocusEvent * /*event*/)
{
    update();
}

void LogDayBar::focusOutEvent(QFocusEvent * /*event*/)
{
    update();
}

void LogDayBar::paintEvent(QPaintEvent * /*event*/)
{
    if (!hasFocus())
        return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace Desk
