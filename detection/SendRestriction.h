#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>

namespace PluginKrHvcP2 {

/// Keeps what was just sent from being sent again too soon, by identifier.
class SendRestriction
{
public:
    /// True when a send at @p now lies at least @p limitMs milliseconds behind the last one for
    /// every one of @p identifiers, or is their first. Identifiers that pass are stamped with
    /// @p now even when another one does not. A clock that was set back restricts for that long.
    bool admit(const QList<int> &identifiers, const QDateTime &now, int limitMs);

    /// Milliseconds after @p now until admit() would be true; 0: it is now.
    qint64 remainingMs(const QList<int> &identifiers, const QDateTime &now, int limitMs) const;

private:
    QHash<int, QDateTime> m_lastSent; // by identifier
};

} // namespace PluginKrHvcP2
