#include "tools/analysis/Decider.h"

#include "detection/Determination.h"
#include "detection/SensorOutputParser.h"

#include <algorithm>

namespace Analysis {

using namespace PluginKrHvcP2;

namespace {

DecidedFace evaluatedFace(
    const FaceResult &face, const Prominence &prominence, const DetectionContents &contents)
{
    DecidedFace decided;
    decided.face = face;
    decided.evaluation = evaluateFace(face, contents);
    decided.sizeRank = prominence.sizeRank(face);
    decided.directionRank = prominence.directionRank(face);
    decided.prominence = prominence.score(face);
    const ContentMatch &match = decided.evaluation.match;
    if (match.isValid()) {
        decided.sequence = contents.at(match.position).sequenceNumber;
        decided.outcome = DecidedFace::Cut; // unless its turn comes
    }
    return decided;
}

/// Those that got a content, as the plug-in orders them, and the others behind.
void sort(QVector<DecidedFace> &faces, const QList<CalculatedData> &determined)
{
    // Faces may share a number; of those that also share the score the first one goes first.
    auto next = faces.begin();
    for (const CalculatedData &data : determined) {
        const auto it = std::find_if(next, faces.end(), [&](const DecidedFace &face) {
            return face.sequence != 0 && face.face.index == data.faceIndex
                && face.score() == data.score;
        });
        if (it == faces.end())
            continue;
        std::rotate(next, it, it + 1);
        ++next;
    }
}

} // namespace

Decider::Decider(const Plan &plan)
    : m_settings(plan.settings)
{
    m_requests.setContents(plan.contents);
}

Decision Decider::decide(const QString &text, const QDateTime &time)
{
    const SensorFrame frame = SensorOutputParser::parse(text, time);
    const Prominence prominence(frame.sizes, frame.directionValues);

    Decision decision;
    decision.time = time;
    decision.errorSeen = frame.errorSeen;
    decision.noFace = frame.noFace;
    for (const FaceResult &face : frame.faces)
        decision.faces.append(evaluatedFace(face, prominence, m_requests.contents()));

    const QList<CalculatedData> determined = determineSequences(
        frame.faces, frame.sizes, frame.directionValues, m_requests.contents());
    sort(decision.faces, determined);
    const int count = std::min(determined.size(), m_settings.concurrent);
    for (int i = 0; i < count; ++i)
        request(decision.faces[i], time);
    return decision;
}

void Decider::request(DecidedFace &face, const QDateTime &time)
{
    const int limit = m_settings.eventSendingLimit;
    face.remainingMs = m_requests.remainingMs(face.sequence, time, limit);
    const SequenceRequests::Answer answer = m_requests.request(face.sequence, time, limit);
    face.outcome = answer == SequenceRequests::Answer::Admitted ? DecidedFace::Sent
                                                                : DecidedFace::Restricted;
}

} // namespace Analysis
