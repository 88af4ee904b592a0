#pragma once

#include "tools/analysis/Audience.h"
#include "tools/analysis/Decider.h"
#include "tools/analysis/Plan.h"

#include <QDateTime>
#include <QVector>

#include <array>

namespace Analysis {

/// The time that was watched: from frame to frame, less what lies between two of them that are far
/// from each other, as over night.
class WatchedTime
{
public:
    void add(const QDateTime &frame);
    qint64 ms() const { return m_ms; }

private:
    QDateTime m_last;
    qint64 m_ms = 0;
};

/// How far things lie from each other.
class Spacing
{
public:
    void add(qint64 atMs); ///< when the next one happened
    int count() const { return m_count; } ///< of distances
    qint64 meanMs() const { return m_count == 0 ? 0 : m_sumMs / m_count; }
    qint64 shortestMs() const { return m_shortestMs; }
    qint64 longestMs() const { return m_longestMs; }

private:
    qint64 m_lastMs = -1; // -1: nothing happened yet
    int m_count = 0;
    qint64 m_sumMs = 0;
    qint64 m_shortestMs = 0;
    qint64 m_longestMs = 0;
};

/// What became of one content.
struct ContentOutcome
{
    int number = 0;
    qint64 started = 0;
    qint64 restricted = 0; ///< requests that came too soon
    qint64 cut = 0; ///< faces that were not among the first ones
    Spacing starts;
};

/// Whom a plan serves, counted by faces: the same person is one in each frame.
class PlanOutcome
{
public:
    explicit PlanOutcome(const Plan &plan);

    void add(const Decision &decision);

    qint64 frames() const { return m_frames; }
    qint64 faces() const { return m_faces; }
    qint64 faces(DecidedFace::Outcome outcome) const { return m_outcomes.at(outcome); }
    qint64 watchedMs() const { return m_watched.ms(); }
    /// Of the faces that were held back those whose content was the last one started: it was on.
    qint64 alreadyOn() const { return m_alreadyOn; }
    qint64 served() const { return starts() + alreadyOn(); }
    qint64 starts() const { return faces(DecidedFace::Sent); }
    qint64 switches() const { return m_switches; } ///< starts of another content than the last one
    const Spacing &switchSpacing() const { return m_switchSpacing; }
    const QVector<ContentOutcome> &contents() const { return m_contents; } ///< that take part
    const Audience &leftOut() const { return m_leftOut; } ///< the faces that nothing fits

private:
    void add(const DecidedFace &face);
    void addStart(ContentOutcome &content);
    void addRestricted(ContentOutcome &content);

    qint64 m_frames = 0;
    qint64 m_faces = 0;
    std::array<qint64, 4> m_outcomes{}; // by DecidedFace::Outcome
    qint64 m_alreadyOn = 0;
    WatchedTime m_watched;
    int m_lastStarted = 0;
    qint64 m_switches = 0;
    Spacing m_switchSpacing;
    QVector<ContentOutcome> m_contents;
    QVector<int> m_positions; // in m_contents, by sequence number
    Audience m_leftOut{};
};

} // namespace Analysis
