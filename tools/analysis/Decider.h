#pragma once

#include "detection/FaceEvaluation.h"
#include "detection/SensorOutputParser.h"
#include "detection/SequenceRequests.h"
#include "tools/analysis/Plan.h"
#include "tools/analysis/RequestMemory.h"

#include <QDateTime>
#include <QString>
#include <QVector>

namespace Analysis {

/// What a frame's decision made of one face, and why.
struct DecidedFace
{
    enum Outcome {
        NothingFits, ///< no content does
        Cut, ///< not among the first faces that "concurrent" lets have a sequence
        Restricted, ///< the sequence was started too recently
        Sent, ///< the host was asked to start the sequence
    };

    /// What the outcome of a request rests on.
    enum Evidence {
        Times, ///< of this request and those before
        Log, ///< of the plug-in; the times leave it open
        Likelihood, ///< the times leave it open, and nothing else tells
    };

    PluginKrHvcP2::FaceResult face;
    PluginKrHvcP2::FaceEvaluation evaluation;
    int sizeRank = 0; ///< as Prominence has it
    int directionRank = 0; ///< likewise
    double prominence = 0; ///< what the two come to
    int sequence = 0; ///< of the content that was chosen; 0: none was
    Outcome outcome = NothingFits;
    Evidence evidence = Times;
    /// Restricted: until the sequence would have been admitted. Cut: likewise; 0: it would have
    /// been.
    qint64 remainingMs = 0;

    double score() const { return prominence + evaluation.match.bonus; }
};

/// What the plug-in makes of one frame.
struct Decision
{
    QDateTime time;
    bool errorSeen = false; ///< the sensor program reported a failure
    bool noFace = false; ///< the sensor program counted no face
    QVector<DecidedFace> faces; ///< in the order of the decision; those that nothing fits behind
};

/// A request of which a log tells.
struct LoggedRequest
{
    int number = 0; ///< of the sequence
    bool isRestricted = false;

    friend bool operator==(const LoggedRequest &a, const LoggedRequest &b)
    {
        return a.number == b.number && a.isRestricted == b.isRestricted;
    }
};

/// A start that a plug-in has asked its host for.
struct SeenStart
{
    int number = 0; ///< of the sequence
    QDateTime time;
};

/// Decides frame after frame as the plug-in does for one screen, and remembers when each sequence
/// was started.
class Decider
{
public:
    explicit Decider(const Plan &plan);

    /// The screen has changed. The times of earlier starts stay, as in the plug-in.
    void setPlan(const Plan &plan);

    /// @p text is one chunk of the sensor program's output, which arrived at @p time.
    Decision decide(const QString &text, const QDateTime &time);
    /// The same of a chunk that has been parsed.
    Decision decide(const PluginKrHvcP2::SensorFrame &frame, const QDateTime &time);
    /// The same when that is not known better. @p logged is what a log tells about the requests; it
    /// counts where the times leave open what came of one.
    Decision decide(
        const QString &text, const Moment &moment, const QVector<LoggedRequest> &logged);
    /// The same for a host, which hears of the starts and not of what was held back: the requests
    /// take those of @p starts that are theirs, and without one are restricted.
    Decision decide(const QString &text, const QDateTime &time, QVector<SeenStart> *starts);

    /// Takes over a request for viewers of whom nothing is known.
    void settle(const LoggedRequest &request, const Moment &moment);
    void mayBeLost(); ///< as RequestMemory has it
    void mayHaveStarted(const QDateTime &latest); ///< likewise

private:
    struct Candidates;
    Decision decide(const PluginKrHvcP2::SensorFrame &frame, const Moment &moment,
        const QVector<LoggedRequest> &logged);
    Candidates evaluate(const PluginKrHvcP2::SensorFrame &frame, const QDateTime &time) const;
    void request(DecidedFace &face, const Moment &moment, const LoggedRequest &logged);
    void request(DecidedFace &face, const QDateTime &time, QVector<SeenStart> *starts);
    void measureCut(Candidates *candidates) const;

    PluginKrHvcP2::ScreenSettings m_settings;
    PluginKrHvcP2::SequenceRequests m_requests; // by the earliest times
    RequestMemory m_memory;
};

} // namespace Analysis
