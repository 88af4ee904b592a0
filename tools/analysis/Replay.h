#pragma once

#include "tools/analysis/Decider.h"
#include "tools/analysis/Entry.h"

#include <optional>

namespace Analysis {

/// Where a log tells otherwise than the plan would have it.
enum class Difference {
    None,
    Determined, ///< other sequences were requested, or in another order
    Restriction, ///< the same ones were, but of one another thing came
    Explainable, ///< likewise, but other starts before or whole seconds can be the reason
};

/// One frame, what a plan makes of it, and what a log tells about that.
struct ReplayedFrame
{
    qint64 number = 0; ///< counted from 1
    Position position;
    int timeToleranceMs = 0; ///< of the decision's time
    QString text; ///< the lines of the sensor program
    Decision decision;

    bool isLogged = false; ///< whether a log tells about its requests
    QVector<LoggedRequest> logged;
    Difference difference = Difference::None;
    int differing = -1; ///< Restriction: which request
};

/// What the plan requests for @p frame. Where the log differs in what came of one request, that has
/// the outcome that it would have had behind the starts that the log tells of.
QVector<LoggedRequest> expectedRequests(const ReplayedFrame &frame);

/// Replays the frames of logs and recordings under a plan, and holds the records of a log against
/// that.
///
/// A log has its times in whole seconds. Where these leave it open whether a request was restricted
/// the log's own record counts; whether the two agree is judged by what the log tells of the
/// starts before, so that one difference does not make others.
class Replay
{
public:
    explicit Replay(const Plan &plan);

    /// The frame that @p entry completes: the one before it, or its own when it is a decision.
    std::optional<ReplayedFrame> take(const Entry &entry);
    std::optional<ReplayedFrame> finish(); ///< the last frame, when it is not yet complete

    /// Before the next entry something could not be read.
    void skip();

    /// The restriction time that the log names, when it is another one than the plan's.
    std::optional<int> otherLimitMs() const { return m_otherLimitMs; }
    qint64 decisionsWithoutFrame() const { return m_decisionsWithoutFrame; }

private:
    void begin(const Entry &frame);
    std::optional<ReplayedFrame> complete(const Entry *determined);
    std::optional<ReplayedFrame> cut();
    void judge(ReplayedFrame *frame, const Moment &moment);
    void takeRestricted(const Entry &restricted);
    void takeDecisionWithoutFrame(const Entry &determined);
    void settleRestricted();
    void settle(const QVector<LoggedRequest> &requests, const Moment &moment);
    void bridgeGap(const Moment &moment);
    void mayBeLost();
    QVector<LoggedRequest> takeRequests(const QVector<int> &determined);

    PluginKrHvcP2::ScreenSettings m_settings;
    Decider m_decider;
    RequestMemory m_loggedStarts; // by what the log tells

    std::optional<Entry> m_frame; // whose decision may still come
    QVector<Entry> m_restricted; // in front of their decision
    QDateTime m_lastTime; // of a frame
    qint64 m_frames = 0;
    qint64 m_decisionsWithoutFrame = 0;
    std::optional<int> m_otherLimitMs;
    bool m_followsLog = true; // its restriction time is the plan's, as far as it has told
    bool m_isGap = true; // in front of the next frame or decision there may have been others
    bool m_isGapBefore = false; // likewise, in front of m_frame
    bool m_isCut = false; // behind m_frame something could not be read
};

} // namespace Analysis
