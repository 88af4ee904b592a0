#include "tools/analysis/PlanOutcome.h"

#include "tools/analysis/Silence.h"

#include <algorithm>

namespace Analysis {

using namespace PluginKrHvcP2;

void WatchedTime::add(const QDateTime &frame)
{
    const qint64 gap = m_last.isValid() ? m_last.msecsTo(frame) : 0;
    if (gap > 0 && gap <= LongestFrameGapMs)
        m_ms += gap;
    m_last = frame;
}

void Spacing::add(qint64 atMs)
{
    if (m_lastMs >= 0) {
        const qint64 distance = atMs - m_lastMs;
        m_shortestMs = m_count == 0 ? distance : std::min(m_shortestMs, distance);
        m_longestMs = std::max(m_longestMs, distance);
        m_sumMs += distance;
        ++m_count;
    }
    m_lastMs = atMs;
}

PlanOutcome::PlanOutcome(const Plan &plan)
    : m_positions(plan.entries.size() + 1, -1)
{
    for (const DetectionContent &content : plan.contents) {
        m_positions[content.sequenceNumber] = m_contents.size();
        ContentOutcome outcome;
        outcome.number = content.sequenceNumber;
        m_contents.append(outcome);
    }
}

void PlanOutcome::add(const Decision &decision)
{
    ++m_frames;
    m_watched.add(decision.time);
    for (const DecidedFace &face : decision.faces)
        add(face);
}

void PlanOutcome::add(const DecidedFace &face)
{
    ++m_faces;
    ++m_outcomes.at(face.outcome);
    if (face.outcome == DecidedFace::NothingFits) {
        ++faceCount(m_leftOut, face.evaluation.gender, face.evaluation.age);
        return;
    }
    ContentOutcome &content = m_contents[m_positions.at(face.sequence)];
    if (face.outcome == DecidedFace::Sent)
        addStart(content);
    else if (face.outcome == DecidedFace::Restricted)
        addRestricted(content);
    else
        ++content.cut;
}

void PlanOutcome::addStart(ContentOutcome &content)
{
    ++content.started;
    content.starts.add(m_watched.ms());
    if (content.number == m_lastStarted)
        return;
    m_lastStarted = content.number;
    ++m_switches;
    m_switchSpacing.add(m_watched.ms());
}

void PlanOutcome::addRestricted(ContentOutcome &content)
{
    ++content.restricted;
    if (content.number == m_lastStarted)
        ++m_alreadyOn;
}

} // namespace Analysis
