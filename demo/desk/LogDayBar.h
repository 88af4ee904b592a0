#pragma once

#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QSlider;
class QTime;
class QToolButton;

namespace Desk {

class LogPlayhead;

/// What a log is looked through with: a slider over the day, playing in several speeds, and a time
/// to go to.
///
/// With the focus on the bar, Space plays and pauses, the left and right arrow keys step by a
/// frame, Page up and Page down by five minutes, Home and End lead to the first and last frame;
/// Ctrl+G, from anywhere in the window, leads to the field for a time.
class LogDayBar : public QWidget
{
    Q_OBJECT

public:
    static constexpr int PageMs = 300000;

    explicit LogDayBar(LogPlayhead *playhead, QWidget *parent = nullptr); ///< not owned

    /// Reading is @p percent done; the slider moves when that is 100. Call it for each new day.
    void showReading(int percent);

protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QToolButton *addButton(const QString &name, const QString &text);
    void createButtons();
    void createSlider();
    void createTimeField();
    void showFrame(qint64 number);
    void showDay();
    void takeSlider(int seconds);
    void goToGivenTime();

    LogPlayhead *m_playhead; // not owned
    bool m_isSliding = false; // the slider is what moves
    // children of this
    QToolButton *m_play = nullptr;
    QComboBox *m_speed = nullptr;
    QSlider *m_slider = nullptr;
    QLabel *m_begin = nullptr;
    QLabel *m_time = nullptr;
    QLabel *m_end = nullptr;
    QLineEdit *m_wanted = nullptr;
};

/// "9:30", "09:30" or "09:30:15"; an invalid time for anything else.
QTime timeOfDay(const QString &text);

} // namespace Desk
