#include "demo/player/StageDesk.h"

#include "demo/player/StagePlayer.h"

#include <QDateTime>

namespace Player {

using namespace Desk;

namespace {

constexpr qint64 PickToleranceMs = 1000; // between a frame and what came of it

/// The last time that it was @p time.
QDateTime lastTime(const QTime &time)
{
    const QDateTime now = QDateTime::currentDateTime();
    const QDateTime today(now.date(), time);
    return today > now ? today.addDays(-1) : today;
}

} // namespace

StageDesk::StageDesk(StagePlayer *player, QObject *parent)
    : QObject(parent)
    , m_player(player)
    , m_history(Analysis::planOf(player->stage(), player->screenId()))
    , m_shown(&m_history)
    , m_log(player, &m_history, &m_shown)
{
    connect(&m_frames, &PluginFrames::delivered, &m_history,
        qOverload<const PluginTurn &>(&FrameHistory::take));
    connect(&player->host(), &PluginHost::called, this, &StageDesk::onCalled);
}

bool StageDesk::pickFrameOf(const PlayerEvent &event)
{
    return pickFrameAt(lastTime(event.time));
}

bool StageDesk::pickFrameAt(const QDateTime &time)
{
    const auto frame = m_history.nearest(time, PickToleranceMs);
    if (frame)
        m_shown.pick(*frame);
    return frame.has_value();
}

/// Contents and the child that runs the sensor program are new with each initialisation.
void StageDesk::onCalled(const QString &operation)
{
    if (operation != QLatin1String("init"))
        return;
    m_frames.watch(m_player->host().object()); // first: the frames until now had the old plan
    Analysis::Plan plan = Analysis::planOf(m_player->stage(), m_player->screenId());
    // What is stored is not always what the plug-in takes over.
    plan.settings = PluginKrHvcP2::ScreenSettings::fromStored(m_player->host().params());
    m_history.setPlan(plan);
}

} // namespace Player
