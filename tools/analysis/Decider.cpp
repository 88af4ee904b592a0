#include "tools/analysis/Decider.h"

#include "detection/Determination.h"

#include <algorithm>
#include <limits>

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
    , m_memory(plan.contents)
{
    m_requests.setContents(plan.contents);
}

Decision Decider::decide(const QString &text, const QDateTime &time)
{
    return decide(text, {time, time}, {});
}

Decision Decider::decide(const SensorFrame &frame, const QDateTime &time)
{
    return decide(frame, {time, time}, {});
}

Decision Decider::decide(
    const QString &text, const Moment &moment, const QVector<LoggedRequest> &logged)
{
    return decide(SensorOutputParser::parseUnseen(text, moment.earliest), moment, logged);
}

Decision Decider::decide(
    const SensorFrame &frame, const Moment &moment, const QVector<LoggedRequest> &logged)
{
    const Prominence prominence(frame.sizes, frame.directionValues);

    Decision decision;
    decision.time = moment.earliest;
    decision.errorSeen = frame.errorSeen;
    decision.noFace = frame.noFace;
    for (const FaceResult &face : frame.faces)
        decision.faces.append(evaluatedFace(face, prominence, m_requests.contents()));

    const QList<CalculatedData> determined = determineSequences(
        frame.faces, frame.sizes, frame.directionValues, m_requests.contents());
    sort(decision.faces, determined);
    const int count = std::min(determined.size(), m_settings.concurrent);
    for (int i = 0; i < count; ++i)
        request(decision.faces[i], moment, logged.value(i));
    for (int i = count; i < determined.size(); ++i) {
        decision.faces[i].remainingMs = m_requests.remainingMs(
            decision.faces.at(i).sequence, moment.earliest, m_settings.eventSendingLimit);
    }
    return decision;
}

void Decider::request(DecidedFace &face, const Moment &moment, const LoggedRequest &logged)
{
    const int limit = m_settings.eventSendingLimit;
    face.remainingMs = m_requests.remainingMs(face.sequence, moment.earliest, limit);
    RequestMemory::Answer answer = m_memory.ask(face.sequence, moment, limit);
    bool isRestricted = answer == RequestMemory::Answer::Restricted;
    if (answer == RequestMemory::Answer::Open) {
        const bool isLogged = logged.number == face.sequence;
        face.evidence = isLogged ? DecidedFace::Log : DecidedFace::Likelihood;
        isRestricted = isLogged ? logged.isRestricted : face.remainingMs > 0;
    }
    face.outcome = isRestricted ? DecidedFace::Restricted : DecidedFace::Sent;
    if (!isRestricted)
        face.remainingMs = 0;
    settle({face.sequence, isRestricted}, moment);
}

void Decider::settle(const LoggedRequest &request, const Moment &moment)
{
    const int limit = m_settings.eventSendingLimit;
    const QDateTime &time = moment.earliest;
    m_memory.settle(request.number, moment, limit,
        request.isRestricted ? RequestMemory::Answer::Restricted : RequestMemory::Answer::Admitted);
    const bool restrictsByTime = m_requests.remainingMs(request.number, time, limit) > 0;
    if (request.isRestricted == restrictsByTime)
        m_requests.request(request.number, time, limit);
    else if (!request.isRestricted)
        m_requests.request(request.number, time, std::numeric_limits<int>::min());
}

void Decider::mayBeLost()
{
    m_memory.mayBeLost();
}

void Decider::mayHaveStarted(const QDateTime &latest)
{
    m_memory.mayHaveStarted(latest);
}

} // namespace Analysis
