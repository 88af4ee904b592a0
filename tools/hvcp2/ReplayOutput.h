#pragma once

#include "tools/analysis/Plan.h"
#include "tools/analysis/Replay.h"
#include "tools/hvcp2/Console.h"
#include "tools/hvcp2/ReplaySummary.h"

#include <optional>

namespace Hvcp2 {

/// What a replay knows besides its figures when it ends.
struct ReplayEnd
{
    const ReplaySummary &summary;
    std::optional<int> otherLimitMs; ///< restriction time of the log, when it is another one
    qint64 decisionsWithoutFrame = 0;
    qint64 unreadable = 0; ///< places of the input
};

/// Prints a replay while it goes on.
class ReplayOutput
{
public:
    /// Both have to outlive it.
    ReplayOutput(const Analysis::Plan &plan, Console &console)
        : m_plan(plan)
        , m_console(console)
    { }
    virtual ~ReplayOutput() = default;

    virtual void begin() = 0;
    virtual void add(const Analysis::ReplayedFrame &frame) = 0;
    virtual void end(const ReplayEnd &end) = 0;

protected:
    const Analysis::Plan &plan() const { return m_plan; }
    Console &console() { return m_console; }

private:
    Q_DISABLE_COPY(ReplayOutput)

    const Analysis::Plan &m_plan;
    Console &m_console;
};

/// A line for each start, and a summary.
class ReplayText : public ReplayOutput
{
public:
    using ReplayOutput::ReplayOutput;

    void begin() override;
    void add(const Analysis::ReplayedFrame &frame) override;
    void end(const ReplayEnd &end) override;

private:
    QString sequencesText(const ReplaySummary &summary);
    void printLog(const ReplayEnd &end);

    bool m_hasHeading = false;
};

/// A row for each face that got a content; no summary.
class ReplayCsv : public ReplayOutput
{
public:
    using ReplayOutput::ReplayOutput;

    void begin() override;
    void add(const Analysis::ReplayedFrame &frame) override;
    void end(const ReplayEnd &end) override;
};

/// One document, a start at a time, so that their number does not matter.
class ReplayJson : public ReplayOutput
{
public:
    using ReplayOutput::ReplayOutput;

    void begin() override;
    void add(const Analysis::ReplayedFrame &frame) override;
    void end(const ReplayEnd &end) override;

private:
    bool m_hasStart = false;
};

} // namespace Hvcp2
