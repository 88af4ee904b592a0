#pragma once

#include "core/screen/DetectionContent.h"
#include "detection/SendRestriction.h"

#include <QDateTime>
#include <QVector>

namespace Player {

/// How long the screens that follow the played one hold its sequences back, as far as a host can
/// know it: from the starts that it was told of. A request that the plug-in has held back for one
/// screen counts for the others as well, and the host does not hear of it.
class LinkedScreens
{
public:
    struct Screen
    {
        int id = 0;
        qint64 remaining = 0; ///< milliseconds; 0: it holds nothing back
    };

    /// The times of earlier starts stay, as they do in the plug-in. @p limit is in milliseconds.
    void setContents(const PluginKrHvcP2::DetectionContents &contents, int limit);
    void start(qint64 sequence, const QDateTime &now); ///< counted from 1

    QVector<Screen> at(const QDateTime &now) const; ///< every linked screen, by id

private:
    PluginKrHvcP2::DetectionContents m_contents;
    int m_limit = 0;
    PluginKrHvcP2::SendRestriction m_restriction;
};

} // namespace Player
