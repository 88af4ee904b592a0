#include "detection/SendRestriction.h"

#include <algorithm>

namespace PluginKrHvcP2 {

bool SendRestriction::admit(const QList<int> &identifiers, const QDateTime &now, int limitMs)
{
    bool admitted = true;
    for (const int identifier : identifiers) {
        QDateTime &lastSent = m_lastSent[identifier]; // invalid: never
        if (!lastSent.isValid() || lastSent.msecsTo(now) >= limitMs)
            lastSent = now;
        else
            admitted = false;
    }
    return admitted;
}

qint64 SendRestriction::remainingMs(
    const QList<int> &identifiers, const QDateTime &now, int limitMs) const
{
    qint64 remaining = 0;
    for (const int identifier : identifiers) {
        const QDateTime lastSent = m_lastSent.value(identifier);
        if (lastSent.isValid())
            remaining = std::max(remaining, limitMs - lastSent.msecsTo(now));
    }
    return remaining;
}

} // namespace PluginKrHvcP2
