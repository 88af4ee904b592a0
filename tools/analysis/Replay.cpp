#include "tools/analysis/Replay.h"

#include <algorithm>
#include <utility>

namespace Analysis {

using Answer = RequestMemory::Answer;

namespace {

constexpr int MaxRestricted = 100; // more than the plug-in ever logs in front of a decision

Moment momentOf(const Entry &entry)
{
    return {entry.time, entry.time.addMSecs(entry.timeToleranceMs)};
}

QVector<int> numbersOf(const QVector<LoggedRequest> &requests)
{
    QVector<int> numbers;
    for (const LoggedRequest &request : requests)
        numbers.append(request.number);
    return numbers;
}

} // namespace

QVector<LoggedRequest> expectedRequests(const ReplayedFrame &frame)
{
    QVector<LoggedRequest> requests;
    for (const DecidedFace &face : frame.decision.faces) {
        if (face.outcome == DecidedFace::Sent || face.outcome == DecidedFace::Restricted)
            requests.append({face.sequence, face.outcome == DecidedFace::Restricted});
    }
    if (frame.difference == Difference::Restriction)
        requests[frame.differing].isRestricted = !frame.logged.at(frame.differing).isRestricted;
    return requests;
}

Replay::Replay(const Plan &plan)
    : m_settings(plan.settings)
    , m_decider(plan)
    , m_loggedStarts(plan.contents)
{ }

std::optional<ReplayedFrame> Replay::take(const Entry &entry)
{
    std::optional<ReplayedFrame> frame;
    switch (entry.kind) {
    case Entry::Frame:
        frame = complete(nullptr);
        begin(entry);
        break;
    case Entry::Restricted:
        takeRestricted(entry);
        break;
    case Entry::Determined:
        if (m_frame)
            return complete(&entry);
        takeDecisionWithoutFrame(entry);
        break;
    case Entry::Started: // of another plug-in, may be, after the end of this one
        frame = cut();
        mayBeLost();
        break;
    case Entry::Stopped:
    case Entry::Error:
    case Entry::Unknown:
        break;
    }
    return frame;
}

std::optional<ReplayedFrame> Replay::finish()
{
    return cut();
}

void Replay::skip()
{
    m_isGap = true;
    m_isCut = true;
}

void Replay::begin(const Entry &frame)
{
    settleRestricted();
    m_frame = frame;
    ++m_frames;
    m_isGapBefore = std::exchange(m_isGap, false);
    m_isCut = false;
}

/// The frame that waits for its decision, with what is known of that.
std::optional<ReplayedFrame> Replay::cut()
{
    m_isCut = true;
    return complete(nullptr);
}

/// Without @p determined the plug-in has requested nothing for the frame.
std::optional<ReplayedFrame> Replay::complete(const Entry *determined)
{
    if (!m_frame)
        return std::nullopt;
    const Entry entry = *std::exchange(m_frame, std::nullopt);
    ReplayedFrame frame;
    frame.number = m_frames;
    frame.position = entry.position;
    frame.timeToleranceMs = entry.timeToleranceMs;
    frame.text = entry.text;
    frame.isLogged = !entry.isRecorded() && !m_isCut;

    // The requests come behind the record of the frame and in front of that of the decision.
    Moment moment = momentOf(entry);
    if (determined != nullptr) {
        moment.latest = std::max(moment.latest, momentOf(*determined).latest);
        frame.logged = takeRequests(determined->numbers);
    }
    settleRestricted();
    if (m_lastTime.isValid() && entry.time < m_lastTime)
        mayBeLost();
    m_lastTime = entry.time;
    if (std::exchange(m_isGapBefore, false) && !entry.isRecorded())
        bridgeGap(moment);

    const bool helps = frame.isLogged && m_followsLog;
    frame.decision
        = m_decider.decide(entry.text, moment, helps ? frame.logged : QVector<LoggedRequest>());
    if (!entry.isRecorded())
        judge(&frame, moment);
    return frame;
}

void Replay::judge(ReplayedFrame *frame, const Moment &moment)
{
    const int limit = m_settings.eventSendingLimit;
    const QVector<int> requested = numbersOf(expectedRequests(*frame));
    if (!frame->isLogged) {
        for (const int number : requested)
            m_loggedStarts.settle(number, moment, limit, m_loggedStarts.ask(number, moment, limit));
        return;
    }

    const bool isSame = requested == numbersOf(frame->logged);
    const bool isEqual = expectedRequests(*frame) == frame->logged;
    if (!isSame)
        frame->difference = Difference::Determined;
    for (int i = 0; i < frame->logged.size(); ++i) {
        const LoggedRequest &request = frame->logged.at(i);
        const Answer logged = request.isRestricted ? Answer::Restricted : Answer::Admitted;
        const Answer answer = m_loggedStarts.ask(request.number, moment, limit);
        if (frame->difference == Difference::None && answer != Answer::Open && answer != logged) {
            frame->difference = Difference::Restriction;
            frame->differing = i;
        }
        m_loggedStarts.settle(request.number, moment, limit, logged);
    }
    if (frame->difference == Difference::None && !isEqual)
        frame->difference = Difference::Explainable;
}

void Replay::takeRestricted(const Entry &restricted)
{
    m_followsLog = restricted.limitMs == m_settings.eventSendingLimit;
    if (!m_followsLog)
        m_otherLimitMs = restricted.limitMs;
    if (m_restricted.size() == MaxRestricted)
        m_restricted.removeFirst();
    m_restricted.append(restricted);
}

/// For viewers whose frame could not be read, and may be some of what came of their requests.
void Replay::takeDecisionWithoutFrame(const Entry &determined)
{
    ++m_decisionsWithoutFrame;
    const Moment moment = momentOf(determined);
    QVector<LoggedRequest> requests = takeRequests(determined.numbers);
    settleRestricted();
    if (std::exchange(m_isGap, false)) {
        bridgeGap(moment);
        requests.erase(std::remove_if(requests.begin(), requests.end(),
                           [](const LoggedRequest &request) { return !request.isRestricted; }),
            requests.end());
    }
    settle(requests, moment);
}

/// What the plug-in was asked for in other ways, by a button of its panel for example.
void Replay::settleRestricted()
{
    const QVector<Entry> restricted = std::exchange(m_restricted, {});
    for (const Entry &entry : restricted)
        settle({{entry.number, true}}, momentOf(entry));
}

void Replay::settle(const QVector<LoggedRequest> &requests, const Moment &moment)
{
    for (const LoggedRequest &request : requests) {
        m_decider.settle(request, moment);
        m_loggedStarts.settle(request.number, moment, m_settings.eventSendingLimit,
            request.isRestricted ? Answer::Restricted : Answer::Admitted);
    }
}

void Replay::bridgeGap(const Moment &moment)
{
    m_decider.mayHaveStarted(moment.latest);
    m_loggedStarts.mayHaveStarted(moment.latest);
}

void Replay::mayBeLost()
{
    m_decider.mayBeLost();
    m_loggedStarts.mayBeLost();
}

/// What became of the sequences @p determined. A restricted request is logged before its decision;
/// of two for one sequence the first one goes before.
QVector<LoggedRequest> Replay::takeRequests(const QVector<int> &determined)
{
    QVector<LoggedRequest> requests(determined.size());
    for (int i = determined.size() - 1; i >= 0; --i) {
        const bool isRestricted
            = !m_restricted.isEmpty() && m_restricted.last().number == determined.at(i);
        requests[i] = {determined.at(i), isRestricted};
        if (isRestricted)
            m_restricted.removeLast();
    }
    return requests;
}

} // namespace Analysis
