#include "Events.h"
#include "Frames.h"
#include "Goals.h"
#include "HostedPlugin.h"
#include "Report.h"

#include <QElapsedTimer>

#include <algorithm>

namespace Bench {

namespace {

constexpr int RunMs = 3000;
constexpr int SecondMs = 1000;
constexpr double SlideS = 0.8; // how long a message takes to leave
constexpr double Allowance = 3;

void measureRate(Report &report, int rate)
{
    HostedPlugin plugin(2, HostedPlugin::ShownPanel);
    runEvents(SecondMs);

    const QString text = chunk(0); // one message for each frame
    int sent = 0;
    int most = 0;
    QElapsedTimer stopwatch;
    stopwatch.start();
    runEvents(RunMs, [&] {
        const qint64 due = stopwatch.elapsed() * rate / SecondMs;
        for (; sent < due; ++sent)
            plugin.receive(text);
        most = std::max(most, plugin.messageCount());
    });
    runEvents(SecondMs);

    const QString name = QStringLiteral("%1 messages a second").arg(rate);
    report.add({QStringLiteral("P6"), name + QStringLiteral(", on the panel"),
        static_cast<double>(most), SlideS * rate + Allowance, {}});
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
