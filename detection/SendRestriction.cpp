#include "detection/SendRestriction.h"

namespace PluginKrHvcP2 {

bool SendRestriction::admit(const QList<int> &identifiers, const QDateTime &now, int limitMs)
{
    bool admitted = true;
    for (const int identifier : identifiers) {
        const auto it = m_lastSent.constFind(identifier);
        if (it == m_lastSent.constEnd() || it->msecsTo(now) >= limitMs)
            m_lastSent.insert(identifier, now);
        else
            admitted = false;
    }
    return admitted;
}

} // namespace PluginKrHvcP2
