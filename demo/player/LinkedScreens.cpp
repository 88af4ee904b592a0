#include "demo/player/LinkedScreens.h"

#include <QMap>

#include <limits>

namespace Player {

using namespace PluginKrHvcP2;

void LinkedScreens::setContents(const DetectionContents &contents, int limit)
{
    m_contents = contents;
    m_limit = limit;
}

void LinkedScreens::start(qint64 sequence, const QDateTime &now)
{
    // The plug-in has admitted it; asked a moment later, the limit might just not have passed.
    constexpr int Anyway = std::numeric_limits<int>::min();
    m_restriction.admit(findContent(m_contents, sequence).identifiers, now, Anyway);
}

QVector<LinkedScreens::Screen> LinkedScreens::at(const QDateTime &now) const
{
    QMap<int, Screen> screens;
    for (const DetectionContent &content : m_contents) {
        for (const int id : content.identifiers)
            screens.insert(id, {id, m_restriction.remainingMs({id}, now, m_limit)});
    }
    QVector<Screen> list;
    for (const Screen &screen : qAsConst(screens))
        list << screen;
    return list;
}

} // namespace Player
