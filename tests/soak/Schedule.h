#pragma once

#include <QVector>

/// A long run of the loaded plug-in with everything mixed in that such a run meets.
namespace Soak {

/// What a host, the people before it and its machine do to the plug-in while frames flow.
enum class Deed {
    Restart, ///< stopped, and started a moment later
    Initialize, ///< another screen and stage, init() and start()
    ChangeRate, ///< another interval and other viewers from the next start on, which follows
    EditSettings,
    AskAround, ///< the calls that change little
    ResizePanel,
    ShowPanel, ///< for a while; it is hidden else, as to paint messages takes most of the time
    ShowCrowd, ///< as many faces as can be, with the panel shown, for a while
    ReplacePanel,
    ClickSequence, ///< on one of the panel's numbers
    ClickRestart, ///< on its "Stop" and "Start"
    OpenDialog, ///< for a while
    KeepHostBusy, ///< in its answer to the next sequence, for a while
    HoldLog, ///< somebody else has the log's lock for a while
    RemoveLog,
    // After each of these no frame comes for 5 s.
    RestartAtOnce, ///< the program is still ending when it is started again
    KillProgram,
    CrashProgram,
};

struct Event
{
    Deed deed = Deed::Restart;
    int frame = 0; ///< the number of frames that have gone before
    quint32 value = 0; ///< decides what the deed leaves open
};

/// Everything that happens in a run of @p frames frames, in order; the same for the same @p seed.
/// Each deed the more often the longer the run is, those that cost time no more than 20 times, and
/// for the first time within the first quarter: what is made only once is there by half time.
QVector<Event> schedule(int frames, quint32 seed);

} // namespace Soak
