#include "demo/player/StageTimeline.h"

#include "demo/desk/TimelineView.h"
#include "demo/player/StageDesk.h"
#include "demo/player/StagePlayer.h"

#include <QDateTime>

namespace Player {

using namespace Desk;

QWidget *createTimeline(StagePlayer *player, StageDesk *desk, QWidget *parent)
{
    auto *const timeline = new TimelineView(parent);
    timeline->setObjectName(QStringLiteral("timeline"));

    const FrameHistory *const history = &desk->history();
    timeline->setPlan(history->plan());
    QObject::connect(history, &FrameHistory::planChanged, timeline,
        [timeline, history] { timeline->setPlan(history->plan()); });
    QObject::connect(history, &FrameHistory::frameAdded, timeline, &TimelineView::addFrame);
    QObject::connect(player, &StagePlayer::currentChanged, timeline, [timeline, player] {
        timeline->sequenceStarted(player->current().number, QDateTime::currentDateTime());
    });

    const ShownFrame *const shown = &desk->shown();
    QObject::connect(
        shown, &ShownFrame::frameShown, timeline, [timeline, shown](const SeenFrame &frame) {
            timeline->markMoment(shown->isPicked() ? frame.decision.time : QDateTime());
        });
    QObject::connect(timeline, &TimelineView::momentChosen, desk, &StageDesk::pickFrameAt);
    return timeline;
}

} // namespace Player
