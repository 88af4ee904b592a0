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

/// A frame whose sequences are chosen and not yet requested.
struct Decider::Candidates
{
    Decision decision;
    int requests = 0; // of the first faces
    int chosen = 0; // faces with a sequence
};

Decider::Decider(const Plan &plan)
    : m_memory(plan.contents)
{
    setPlan(plan);
}

void Decider::setPlan(const Plan &plan)
{
    m_settings = plan.settings;
    m_requests.setContents(plan.contents);
    m_memory.setContents(plan.contents);
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
    Candidates candidates = evaluate(frame, moment.earliest);
    for (int i = 0; i < candidates.requests; ++i)
        request(candidates.decision.faces[i], moment, logged.value(i));
    measureCut(&candidates);
    return candidates.decision;
}

Decision Decider::decide(const QString &text, const QDateTime &time, QVector<SeenStart> *starts)
{
    Candidates candidates = evaluate(SensorOutputParser::parseUnseen(text, time), time);
    for (int i = 0; i < candidates.requests; ++i)
        request(candidates.decision.faces[i], time, starts);
    measureCut(&candidates);
    return candidates.decision;
}

Decider::Candidates Decider::evaluate(const SensorFrame &frame, const QDateTime &time) const
{
    const Prominence prominence(frame.sizes, frame.directionValues);

    Candidates candidates;
    Decision &decision = candidates.decision;
    decision.time = time;
    decision.errorSeen = frame.errorSeen;
    decision.noFace = frame.noFace;
    for (const FaceResult &face : frame.faces)
        decision.faces.append(evaluatedFace(face, prominence, m_requests.contents()));

    const QList<CalculatedData> determined = determineSequences(
        frame.faces, frame.sizes, frame.directionValues, m_requests.contents());
    sort(decision.faces, determined);
    candidates.chosen = determined.size();
    candidates.requests = std::min(candidates.chosen, m_settings.concurrent);
    return candidates;
}

/// How long the faces behind the requests would have had to wait.
void Decider::measureCut(Candidates *candidates) const
{
    Decision &decision = candidates->decision;
    for (int i = std::max(0, candidates->requests); i < candidates->chosen; ++i) {
        decision.faces[i].remainingMs = m_requests.remainingMs(
            decision.faces.at(i).sequence, decision.time, m_settings.eventSendingLimit);
    }
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

void Decider::request(DecidedFace &face, const QDateTime &time, QVector<SeenStart> *starts)
{
    const auto start = std::find_if(starts->begin(), starts->end(),
        [&face](const SeenStart &seen) { return seen.number == face.sequence; });
    const bool isRestricted = start == starts->end();
    if (isRestricted) {
        face.outcome = DecidedFace::Restricted;
        face.remainingMs
            = m_requests.remainingMs(face.sequence, time, m_settings.eventSendingLimit);
        settle({face.sequence, true}, {time, time});
        return;
    }
    face.outcome = DecidedFace::Sent;
    settle({face.sequence, false}, {start->time, start->time});
    starts->erase(start);
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
