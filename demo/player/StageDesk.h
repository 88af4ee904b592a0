#pragma once

#include "demo/desk/FrameHistory.h"
#include "demo/desk/PluginFrames.h"
#include "demo/desk/ShownFrame.h"
#include "demo/player/LogDesk.h"

#include <QObject>
#include <QString>

namespace Player {

class StagePlayer;
struct PlayerEvent;

/// The frames of a player's plug-in and what was decided for them, by the stage as it is now.
class StageDesk : public QObject
{
    Q_OBJECT

public:
    /// @p player is not owned, and outlives this. It need not have begun.
    explicit StageDesk(StagePlayer *player, QObject *parent = nullptr);

    const Desk::FrameHistory &history() const { return m_history; }
    const Desk::PluginFrames &sensor() const { return m_frames; }
    Desk::ShownFrame &shown() { return m_shown; }
    LogDesk &log() { return m_log; } ///< what is shown instead of the frames, when it is open

    /// Shows the frame that came with @p event. False when none is kept of that time.
    bool pickFrameOf(const PlayerEvent &event);
    bool pickFrameAt(const QDateTime &time); ///< likewise

private:
    void onCalled(const QString &operation);

    StagePlayer *m_player; // not owned
    Desk::PluginFrames m_frames;
    Desk::FrameHistory m_history;
    Desk::ShownFrame m_shown;
    LogDesk m_log;
};

} // namespace Player
