#include "demo/player/StageTimeline.h"

#include "demo/desk/TimelineView.h"
#include "demo/player/LogDesk.h"
#include "demo/player/StageDesk.h"
#include "demo/player/StagePlayer.h"

#include <QDateTime>
#include <QStackedWidget>

namespace Player {

using namespace Desk;

namespace {

TimelineView *createLiveTimeline(StagePlayer *player, StageDesk *desk, QWidget *parent)
{
    auto *const timeline = new TimelineView(parent);
    timeline->setObjectName(QStringLiteral("timeline"));

    const FrameHistory *const history = &desk->history();
    timeline->setPlan(history->plan());
    QObject::connect(history, &FrameHistory::planChanged, timeline,
        [timeline, history] { timeline->setPlan(history->plan()); });
    QObject::connect(history, &FrameHistory::frameAdded, timeline, &TimelineView::addFrame);
    QObject::connect(player, &StagePlayer::currentChanged, timeline, [timeline, player] {
        if (!player->isResting())
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

/// The strip of the log around the frame that is shown.
TimelineView *createLogTimeline(StageDesk *desk, QWidget *parent)
{
    auto *const timeline = new TimelineView(parent);
    timeline->setObjectName(QStringLiteral("logTimeline"));
    timeline->setAccessibleName(TimelineView::tr("Timeline: ten minutes of the log"));
    timeline->setFollowsClock(false);
    LogDesk *const log = &desk->log();
    const FrameHistory *const history = &desk->history();
    timeline->setPlan(history->plan());
    QObject::connect(history, &FrameHistory::planChanged, timeline,
        [timeline, history] { timeline->setPlan(history->plan()); });
    QObject::connect(log, &LogDesk::openChanged, timeline, &TimelineView::clear);
    QObject::connect(log, &LogDesk::frameShown, timeline, [timeline, log](const SeenFrame &frame) {
        timeline->showModel(log->day().timeline(frame.number));
        timeline->markMoment(frame.decision.time);
    });
    QObject::connect(timeline, &TimelineView::momentChosen, log, &LogDesk::showMoment);
    return timeline;
}

} // namespace

QWidget *createTimeline(StagePlayer *player, StageDesk *desk, QWidget *parent)
{
    auto *const timelines = new QStackedWidget(parent);
    TimelineView *const live = createLiveTimeline(player, desk, timelines);
    timelines->setSizePolicy(live->sizePolicy());
    timelines->addWidget(live);
    timelines->addWidget(createLogTimeline(desk, timelines));
    QObject::connect(&desk->log(), &LogDesk::openChanged, timelines,
        [timelines](bool isOpen) { timelines->setCurrentIndex(isOpen ? 1 : 0); });
    return timelines;
}

} // namespace Player
