#include "detection/SendRestriction.h"

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

} // namespace PluginKrHvcP2
