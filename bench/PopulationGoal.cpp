#include "Events.h"
#include "Frames.h"
#include "Goals.h"
#include "HostedPlugin.h"
#include "Report.h"

#include <QElapsedTimer>

#include <algorithm>
#include <deque>

namespace Bench {

namespace {

constexpr int RunMs = 3000;
constexpr int SecondMs = 1000;
constexpr int SlideMs = 800; // how long a message takes to leave
constexpr int Allowance = 3;

void measureRate(Report &report, int rate)
{
    HostedPlugin plugin(2, HostedPlugin::ShownPanel);
    runEvents(SecondMs);

    const QString text = chunk(0); // one message for each frame
    int mostAlive = 0;
    int mostRecent = 0; // that have come within the time that one takes to leave
    std::deque<qint64> recent; // ms
    qint64 sent = 0;
    QElapsedTimer stopwatch;
    stopwatch.start();
    runEvents(RunMs, [&] {
        mostAlive = std::max(mostAlive, plugin.messageCount());
        const qint64 now = stopwatch.elapsed();
        // A turn that took long is made up for, which for a while is a greater rate.
        for (; sent < now * rate / SecondMs; ++sent) {
            plugin.receive(text);
            plugin.enterMessages();
            recent.push_back(now);
        }
        while (!recent.empty() && recent.front() <= now - SlideMs)
            recent.pop_front();
        mostRecent = std::max(mostRecent, static_cast<int>(recent.size()));
    });
    runEvents(SecondMs);

    const QString name = QStringLiteral("%1 messages a second").arg(rate);
    const int inSlide = mostRecent - 1; // they are the ends of one interval less
    report.add({QStringLiteral("P6"), name + QStringLiteral(", on the panel"),
        static_cast<double>(mostAlive), static_cast<double>(inSlide + Allowance), {}});
    report.add({QStringLiteral("P6"), name + QStringLiteral(", a second later"),
        static_cast<double>(plugin.messageCount()), 1.0, {}});
}

} // namespace

void measurePopulation(Report &report)
{
    for (const int rate : {1, 10, 40, 200})
        measureRate(report, rate);
}

} // namespace Bench
