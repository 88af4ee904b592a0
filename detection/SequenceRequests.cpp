#include "detection/SequenceRequests.h"

namespace PluginKrHvcP2 {

SequenceRequests::Answer SequenceRequests::request(qint64 number, const QDateTime &now, int limitMs)
{
    const DetectionContent content = findContent(m_contents, number);
    if (!content.isValid())
        return Answer::Unknown;
    return m_restriction.admit(content.identifiers, now, limitMs) ? Answer::Admitted
                                                                  : Answer::Restricted;
}

qint64 SequenceRequests::remainingMs(qint64 number, const QDateTime &now, int limitMs) const
{
    return m_restriction.remainingMs(findContent(m_contents, number).identifiers, now, limitMs);
}

} // namespace PluginKrHvcP2
