#include "tools/hvcp2/ReplaySummary.h"

#include <algorithm>

namespace Hvcp2 {

using namespace Analysis;

ReplaySummary::ReplaySummary(const Plan &plan)
{
    for (const PluginKrHvcP2::DetectionContent &content : plan.contents)
        m_known.insert(content.sequenceNumber);
}

void ReplaySummary::add(const ReplayedFrame &frame)
{
    ++m_frames;
    if (m_first.isNull())
        m_first = frame.decision.time;
    m_last = frame.decision.time;
    m_timeToleranceMs = std::max(m_timeToleranceMs, frame.timeToleranceMs);
    for (const DecidedFace &face : frame.decision.faces)
        count(face);
    if (frame.isLogged)
        compare(frame);
}

void ReplaySummary::count(const DecidedFace &face)
{
    if (face.outcome == DecidedFace::NothingFits)
        return;
    SequenceCounts &counts = m_counts[face.sequence];
    if (face.outcome == DecidedFace::Cut) {
        ++counts.cut;
        return;
    }
    if (face.outcome == DecidedFace::Sent) {
        ++counts.sent;
        ++m_sent;
    } else {
        ++counts.restricted;
    }
    if (face.evidence == DecidedFace::Log)
        ++m_toldByLog;
    else if (face.evidence == DecidedFace::Likelihood)
        ++m_unsure;
}

void ReplaySummary::compare(const ReplayedFrame &frame)
{
    ++m_loggedFrames;
    m_loggedRequests += frame.logged.size();
    m_mostAtOnce = std::max(m_mostAtOnce, frame.logged.size());
    for (const LoggedRequest &request : frame.logged) {
        if (!m_known.contains(request.number) && m_strangers.size() < NamedStrangers)
            m_strangers.insert(request.number);
    }
    if (frame.difference == Difference::Explainable)
        ++m_explainable;
    if (frame.difference == Difference::None || frame.difference == Difference::Explainable)
        return;
    ++m_differing;
    if (m_differences.size() == NamedDifferences)
        return;
    m_differences.append({frame.number, frame.position, frame.decision.time, frame.timeToleranceMs,
        expectedRequests(frame), frame.logged});
}

QVector<int> ReplaySummary::strangers() const
{
    QVector<int> numbers;
    for (const int number : m_strangers)
        numbers.append(number);
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

} // namespace Hvcp2
