#include "tools/analysis/RequestMemory.h"

#include <limits>

namespace Analysis {

using namespace PluginKrHvcP2;

namespace {

constexpr int Anyway = std::numeric_limits<int>::min(); // a limit that restricts nothing

/// Of two starts the later one cannot lie before the other, so that nothing is shorter than no
/// time.
const QDateTime &soonest(const Moment &moment, int limitMs)
{
    return limitMs > 0 ? moment.earliest : moment.latest;
}

} // namespace

RequestMemory::Answer RequestMemory::ask(int number, const Moment &moment, int limitMs) const
{
    const QList<int> screens = identifiers(number);
    if (m_latest.remainingMs(screens, soonest(moment, limitMs), limitMs) == 0)
        return Answer::Admitted;
    if (m_earliest.remainingMs(screens, moment.latest, limitMs) > 0)
        return Answer::Restricted;
    return Answer::Open;
}

void RequestMemory::settle(int number, const Moment &moment, int limitMs, Answer answer)
{
    const QList<int> screens = identifiers(number);
    switch (answer) {
    case Answer::Admitted:
        m_earliest.admit(screens, moment.earliest, Anyway);
        m_latest.admit(screens, moment.latest, Anyway);
        break;
    case Answer::Restricted:
        settleRestricted(screens, moment, limitMs);
        break;
    case Answer::Open:
        m_latest.admit(screens, moment.latest, Anyway);
        break;
    }
}

/// Some of the screens held it back; the others count as reached.
void RequestMemory::settleRestricted(
    const QList<int> &identifiers, const Moment &moment, int limitMs)
{
    QList<int> reached;
    QList<int> unknown;
    for (const int screen : identifiers) {
        if (m_latest.remainingMs({screen}, soonest(moment, limitMs), limitMs) == 0)
            reached.append(screen);
        else if (m_earliest.remainingMs({screen}, moment.latest, limitMs) == 0)
            unknown.append(screen);
    }
    if (reached.size() == identifiers.size()) { // a start that is not known did
        m_latest.admit(identifiers, moment.latest, Anyway);
        return;
    }
    m_earliest.admit(reached, moment.earliest, Anyway);
    m_latest.admit(reached, moment.latest, Anyway);
    const bool isTheOne = unknown.size() == 1 && reached.size() + 1 == identifiers.size();
    if (!isTheOne)
        m_latest.admit(unknown, moment.latest, Anyway);
}

void RequestMemory::mayBeLost()
{
    m_earliest = SendRestriction();
}

void RequestMemory::mayHaveStarted(const QDateTime &latest)
{
    for (const DetectionContent &content : qAsConst(m_contents))
        m_latest.admit(content.identifiers, latest, Anyway);
}

QList<int> RequestMemory::identifiers(int number) const
{
    return findContent(m_contents, number).identifiers;
}

} // namespace Analysis
