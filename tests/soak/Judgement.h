#pragma once

#include <QStringList>
#include <QVector>

#include <optional>

namespace Soak {

/// What was found at one moment of a run. Below `liveItems` everything is as the plug-in has it
/// when it has been stopped and nothing moves any more.
struct Sample
{
    int frame = 0;
    int chunks = 0; ///< in which the frames came
    double seconds = 0; ///< since the run's beginning
    qint64 longestGapMs = 0; ///< of the heartbeat, since the sample before
    qint64 logBytes = 0;
    int liveItems = 0; ///< in the scene while frames flowed

    qint64 memory = 0; ///< bytes allocated; 0: cannot be told
    qint64 residentMemory = 0; ///< bytes, what lies free between those included; 0 likewise
    int items = 0; ///< in the scene
    int objects = 0; ///< of plug-in, panel, dialogs, application and event loop
    int timers = 0; ///< of those objects
    int descriptors = 0; ///< open files and the like
    int children = 0; ///< running sensor programs
};

/// What has grown in the second half of a run, a sentence for each figure; empty: nothing has.
///
/// Of memory, the median of the last quarter may be @p memoryAllowance MiB above that of the second
/// one: caches fill, and a peak that has gone again adds nothing up. None: memory is not looked at.
/// Everything else is counted exactly, and at the end there must be no more than at half time.
QStringList growth(const QVector<Sample> &samples, std::optional<double> memoryAllowance);

} // namespace Soak
