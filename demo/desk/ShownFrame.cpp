#include "demo/desk/ShownFrame.h"

#include "demo/desk/FrameHistory.h"

namespace Desk {

ShownFrame::ShownFrame(const FrameHistory *history, QObject *parent)
    : QObject(parent)
    , m_history(history)
{
    connect(history, &FrameHistory::frameAdded, this, [this](const SeenFrame &frame) {
        if (!isPicked())
            show(frame);
    });
    connect(history, &FrameHistory::planChanged, this, [this] {
        if (!isPicked())
            showNewest();
    });
}

void ShownFrame::showAgain()
{
    m_plan.reset();
    if (m_isPicked)
        show(m_picked);
    else
        showNewest();
}

void ShownFrame::pick(const SeenFrame &frame)
{
    if (m_isLogOpen)
        return;
    const bool wasPicked = m_isPicked;
    m_isPicked = true;
    m_picked = frame;
    if (!wasPicked)
        emit pickedChanged(true);
    show(frame);
}

void ShownFrame::follow()
{
    if (!m_isPicked || m_isLogOpen)
        return;
    m_isPicked = false;
    emit pickedChanged(false);
    showNewest();
}

void ShownFrame::openLog(const std::shared_ptr<const Analysis::Plan> &plan)
{
    m_isLogOpen = true;
    m_isPicked = false;
    emit pickedChanged(true);
    showPlan(plan);
    showNothing();
}

void ShownFrame::showLogged(const SeenFrame &frame)
{
    if (!m_isLogOpen)
        return;
    m_number = frame.number;
    emit frameShown(frame);
}

void ShownFrame::closeLog()
{
    if (!m_isLogOpen)
        return;
    m_isLogOpen = false;
    emit pickedChanged(false);
    showNewest();
}

void ShownFrame::show(const SeenFrame &frame)
{
    showPlan(m_history->planOf(frame.number));
    m_number = frame.number;
    emit frameShown(frame);
}

void ShownFrame::showPlan(const std::shared_ptr<const Analysis::Plan> &plan)
{
    if (m_plan == plan)
        return;
    m_plan = plan;
    emit planShown(*plan);
}

void ShownFrame::showNewest()
{
    const std::shared_ptr<const Analysis::Plan> plan = m_history->currentPlan();
    if (!m_history->isEmpty() && m_history->planOf(m_history->newest().number) == plan) {
        show(m_history->newest());
        return;
    }
    showPlan(plan);
    showNothing();
}

void ShownFrame::showNothing()
{
    m_number = 0;
    emit nothingShown();
}

} // namespace Desk
