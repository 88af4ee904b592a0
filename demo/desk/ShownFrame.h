#pragma once

#include "demo/desk/SeenFrame.h"
#include "tools/analysis/Plan.h"

#include <QObject>

#include <memory>

namespace Desk {

class FrameHistory;

/// Which frame of a history the views show: the newest one, until another is picked. While a log is
/// open they show its frames instead.
class ShownFrame : public QObject
{
    Q_OBJECT

public:
    /// @p history is not owned, and outlives this.
    explicit ShownFrame(const FrameHistory *history, QObject *parent = nullptr);

    /// Not the newest one is shown, but a frame of the past.
    bool isPicked() const { return m_isPicked || m_isLogOpen; }
    bool isLogOpen() const { return m_isLogOpen; }
    qint64 number() const { return m_number; } ///< 0: none is shown
    void showAgain(); ///< for a view that has just been connected

public slots:
    void pick(const Desk::SeenFrame &frame);
    void follow(); ///< shows the newest one again, and each that comes

    /// Frames of a log are shown from now on, none at first, which @p plan has decided.
    void openLog(const std::shared_ptr<const Analysis::Plan> &plan);
    void showLogged(const Desk::SeenFrame &frame);
    void closeLog(); ///< shows the newest frame of the history again

signals:
    /// Frames are shown by @p plan from now on. The one before belongs to another.
    void planShown(const Analysis::Plan &plan);
    void frameShown(const Desk::SeenFrame &frame);
    void nothingShown(); ///< there is no frame of the plan yet
    void pickedChanged(bool isPicked);

private:
    void show(const SeenFrame &frame);
    void showPlan(const std::shared_ptr<const Analysis::Plan> &plan);
    void showNewest();
    void showNothing();

    const FrameHistory *m_history;
    std::shared_ptr<const Analysis::Plan> m_plan; // the one shown
    SeenFrame m_picked;
    bool m_isPicked = false;
    bool m_isLogOpen = false;
    qint64 m_number = 0;
};

} // namespace Desk
