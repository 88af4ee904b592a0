#include "Events.h"
#include "Frames.h"
#include "Goals.h"
#include "HostedPlugin.h"
#include "Report.h"

#include "tests/support/OwnProcess.h"

#include <QStringList>

namespace Bench {

namespace {

constexpr int FramesBefore = 5000;
constexpr int FramesInAll = 20000;
constexpr int SettleMs = 2000; // until all slides have ended
constexpr double BarMebibytes = 1;
constexpr double Mebibyte = 1024 * 1024;

/// Always with the same few messages on the panel: how many there are at most is another goal, and
/// the greatest crowd, say, after a moment without the processor, would decide what stays.
void receive(HostedPlugin &plugin, int frames)
{
    const QStringList chunks{chunk(0), chunk(1), chunk(3)};
    for (int i = 0; i < frames; ++i) {
        plugin.receive(chunks.at(i % chunks.size()));
        plugin.enterMessages();
        plugin.dropMessages();
    }
    runEvents(SettleMs);
}

} // namespace

void measureMemory(Report &report)
{
    HostedPlugin plugin(20, HostedPlugin::HiddenPanel);
    receive(plugin, FramesBefore);
    const qint64 before = KrTest::residentMemory();
    receive(plugin, FramesInAll - FramesBefore);
    const double growth = static_cast<double>(KrTest::residentMemory() - before) / Mebibyte;
    report.add({QStringLiteral("P8"),
        QStringLiteral("from %1 to %2 frames, MiB").arg(FramesBefore).arg(FramesInAll), growth,
        BarMebibytes, {}});
}

} // namespace Bench
