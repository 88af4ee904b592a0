#include "demo/desk/FrameHistory.h"

#include "detection/SensorOutputParser.h"

#include <algorithm>

namespace Desk {

using namespace Analysis;

namespace {

bool isFrame(const QString &text, const Decision &decision)
{
    return !decision.faces.isEmpty() || decision.noFace || decision.errorSeen
        || !PluginKrHvcP2::SensorOutputParser::plainText(text).isEmpty();
}

} // namespace

FrameHistory::FrameHistory(const Plan &plan, QObject *parent)
    : QObject(parent)
    , m_decider(plan)
    , m_plans{{1, std::make_shared<const Plan>(plan)}}
{ }

void FrameHistory::setPlan(const Plan &plan)
{
    m_decider.setPlan(plan);
    if (m_plans.back().number > m_lastNumber) // no frame was decided by it
        m_plans.pop_back();
    m_plans.push_back({m_lastNumber + 1, std::make_shared<const Plan>(plan)});
    emit planChanged();
}

void FrameHistory::take(const QString &chunk, const QDateTime &time)
{
    append({chunk, time}, m_decider.decide(chunk, time));
}

void FrameHistory::take(const PluginTurn &turn)
{
    QVector<SeenStart> starts = turn.starts;
    QVector<Decision> decisions;
    for (const SeenChunk &chunk : turn.chunks)
        decisions.append(m_decider.decide(chunk.text, chunk.time, &starts));
    for (const SeenStart &start : qAsConst(starts))
        m_decider.settle({start.number, false}, {start.time, start.time});
    for (int i = 0; i < decisions.size(); ++i)
        append(turn.chunks.at(i), decisions.at(i));
}

std::optional<SeenFrame> FrameHistory::nearest(const QDateTime &time, qint64 withinMs) const
{
    const auto distance
        = [&time](const SeenFrame &frame) { return qAbs(time.msecsTo(frame.decision.time)); };
    auto it = std::lower_bound(m_frames.cbegin(), m_frames.cend(), time,
        [](const SeenFrame &frame, const QDateTime &at) { return frame.decision.time < at; });
    if (it != m_frames.cbegin()
        && (it == m_frames.cend() || distance(*std::prev(it)) <= distance(*it)))
        --it;
    return it != m_frames.cend() && distance(*it) <= withinMs ? std::optional<SeenFrame>(*it)
                                                              : std::nullopt;
}

std::shared_ptr<const Plan> FrameHistory::planOf(qint64 number) const
{
    auto it = std::upper_bound(m_plans.cbegin(), m_plans.cend(), number,
        [](qint64 frame, const PlanFrom &plan) { return frame < plan.number; });
    return it == m_plans.cbegin() ? it->plan : std::prev(it)->plan;
}

void FrameHistory::append(const SeenChunk &chunk, const Decision &decision)
{
    if (!isFrame(chunk.text, decision))
        return;
    SeenFrame frame{++m_lastNumber, chunk.text, decision};
    // As people read it. What counts was decided before, by a time that no clock change repeats.
    frame.decision.time = chunk.time.toLocalTime();
    dropFramesAfter(frame.decision.time);
    m_characters += frame.text.size();
    m_frames.push_back(frame);
    dropOldFrames();
    emit frameAdded(frame);
}

/// The clock was set back.
void FrameHistory::dropFramesAfter(const QDateTime &time)
{
    while (!m_frames.empty() && m_frames.back().decision.time > time) {
        m_characters -= m_frames.back().text.size();
        m_frames.pop_back();
    }
}

void FrameHistory::dropOldFrames()
{
    const QDateTime oldest = m_frames.back().decision.time.addMSecs(-KeptMs);
    while (m_frames.size() > 1
        && (m_frames.size() > MaxFrames || m_characters > MaxCharacters
            || m_frames.front().decision.time < oldest)) {
        m_characters -= m_frames.front().text.size();
        m_frames.pop_front();
    }
    while (m_plans.size() > 1 && m_plans.at(1).number <= m_frames.front().number)
        m_plans.pop_front();
}

} // namespace Desk
