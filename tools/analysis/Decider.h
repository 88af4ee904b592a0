#pragma once

#include "detection/FaceEvaluation.h"
#include "detection/SequenceRequests.h"
#include "tools/analysis/Plan.h"

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

    PluginKrHvcP2::FaceResult face;
    PluginKrHvcP2::FaceEvaluation evaluation;
    int sizeRank = 0; ///< as Prominence has it
    int directionRank = 0; ///< likewise
    double prominence = 0; ///< what the two come to
    int sequence = 0; ///< of the content that was chosen; 0: none was
    Outcome outcome = NothingFits;
    qint64 remainingMs = 0; ///< Restricted: until the sequence would have been admitted

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

/// Decides frame after frame as the plug-in does for one screen, and remembers when each sequence
/// was started.
class Decider
{
public:
    explicit Decider(const Plan &plan);

    /// @p text is one chunk of the sensor program's output, which arrived at @p time. Times must
    /// not go back.
    Decision decide(const QString &text, const QDateTime &time);

private:
    void request(DecidedFace &face, const QDateTime &time);

    PluginKrHvcP2::ScreenSettings m_settings;
    PluginKrHvcP2::SequenceRequests m_requests;
};

} // namespace Analysis
