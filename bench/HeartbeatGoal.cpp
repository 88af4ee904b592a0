#include "Events.h"
#include "Frames.h"
#include "Goals.h"
#include "HostedPlugin.h"
#include "Report.h"

#include "tests/support/OwnProcess.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <utility>

namespace Bench {

namespace {

constexpr int BeatMs = 10;
constexpr int FrameMs = 25;
constexpr int LockMs = 5000;
constexpr int AfterwardsMs = 1000;
constexpr int Faces = 35;
constexpr double GapBarMs = 60;

struct Outcome
{
    double longestGapMs = 0;
    int lostRecords = 0;
};

int countRecords(const QString &directory, const QString &line)
{
    int count = 0;
    const QDir dir(directory);
    const QStringList names = dir.entryList({QStringLiteral("*.txt")}, QDir::Files);
    for (const QString &name : names) {
        QFile file(dir.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            count += QString::fromUtf8(file.readAll()).count(line);
    }
    return count;
}

/// Frames arrive while another process has the log.
Outcome holdLock()
{
    HostedPlugin plugin(20, HostedPlugin::ShownPanel);
    const QString text = chunk(Faces);
    plugin.receive(text); // makes the directory
    plugin.dropMessages();

    Outcome outcome;
    QElapsedTimer sinceBeat;
    QTimer beat;
    beat.setTimerType(Qt::PreciseTimer);
    // What the machine has lost to others meanwhile is no time of ours.
    double stolenBefore = KrTest::stolenSeconds();
    QObject::connect(&beat, &QTimer::timeout, &beat, [&] {
        const double stolen = KrTest::stolenSeconds();
        const double stolenMs = (stolen - std::exchange(stolenBefore, stolen)) * 1000;
        outcome.longestGapMs = std::max(outcome.longestGapMs,
            std::max(double{BeatMs}, static_cast<double>(sinceBeat.restart()) - stolenMs));
    });

    // Each frame has a timer of its own: one that is being handled does not come again.
    QObject source;
    int sent = 1;
    bool isOver = false;
    const std::function<void()> send = [&] {
        if (isOver)
            return;
        QTimer::singleShot(FrameMs, Qt::PreciseTimer, &source, send);
        ++sent;
        plugin.receive(text);
    };

    QFile lock(QDir(plugin.logDirectory()).filePath(QStringLiteral("KrHvcP2Log.lock")));
    if (!lock.open(QIODevice::WriteOnly))
        qFatal("P7: the lock file cannot be taken");
    lock.close();
    QTimer::singleShot(LockMs, &source, [&] { lock.remove(); });
    QTimer::singleShot(LockMs + AfterwardsMs, &source, [&] { isOver = true; });
    sinceBeat.start();
    beat.start(BeatMs);
    QTimer::singleShot(FrameMs, Qt::PreciseTimer, &source, send);
    runEvents(LockMs + 2 * AfterwardsMs);

    const QString line = QStringLiteral("Face result count:%1").arg(Faces);
    outcome.lostRecords = sent - countRecords(plugin.logDirectory(), line);
    return outcome;
}

} // namespace

void measureHeartbeat(Report &report)
{
    Outcome worst;
    for (int run = 0; run < Runs; ++run) {
        const Outcome next = holdLock();
        worst.longestGapMs = std::max(worst.longestGapMs, next.longestGapMs);
        worst.lostRecords = std::max(worst.lostRecords, next.lostRecords);
    }
    report.add({QStringLiteral("P7"), QStringLiteral("log locked, longest gap, ms"),
        worst.longestGapMs, GapBarMs, {}});
    report.add({QStringLiteral("P7"), QStringLiteral("log locked, records lost"),
        static_cast<double>(worst.lostRecords), 0.0, {}});
}

} // namespace Bench
