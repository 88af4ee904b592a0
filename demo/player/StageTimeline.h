#pragma once

class QWidget;

namespace Player {

class StageDesk;
class StagePlayer;

/// The strip of the last ten minutes below the stage: who stood before it over what played. A
/// moment that is chosen there is shown in the views. While a log is open it is the strip of that.
/// Neither @p player nor @p desk is owned.
QWidget *createTimeline(StagePlayer *player, StageDesk *desk, QWidget *parent);

} // namespace Player
