#include "Schedule.h"

#include <algorithm>
#include <limits>
#include <random>

namespace Soak {

namespace {

constexpr int Unbounded = std::numeric_limits<int>::max();
constexpr int MostOfTheSlow = 20;

struct Frequency
{
    Deed deed;
    int every; // frames
    int most;
};

constexpr Frequency Frequencies[] = {
    {Deed::Restart, 1500, Unbounded},
    {Deed::Initialize, 1500, Unbounded},
    {Deed::ChangeRate, 1000, Unbounded},
    {Deed::EditSettings, 400, Unbounded},
    {Deed::AskAround, 400, Unbounded},
    {Deed::ResizePanel, 200, Unbounded},
    {Deed::ShowPanel, 1000, Unbounded},
    {Deed::ShowCrowd, 4000, Unbounded},
    {Deed::ReplacePanel, 2000, Unbounded},
    {Deed::ClickSequence, 100, Unbounded},
    {Deed::ClickRestart, 2000, Unbounded},
    {Deed::OpenDialog, 1000, Unbounded},
    {Deed::KeepHostBusy, 500, Unbounded},
    {Deed::HoldLog, 1000, Unbounded},
    {Deed::RemoveLog, 1500, Unbounded},
    {Deed::RestartAtOnce, 8000, MostOfTheSlow},
    {Deed::KillProgram, 8000, MostOfTheSlow},
    {Deed::CrashProgram, 8000, MostOfTheSlow},
};

} // namespace

QVector<Event> schedule(int frames, quint32 seed)
{
    // Without the standard's distributions, which differ from library to library.
    std::mt19937 random(seed);
    QVector<Event> events;
    for (const Frequency &frequency : Frequencies) {
        const int count = std::clamp(frames / frequency.every, 1, frequency.most);
        for (int i = 0; i < count; ++i) {
            const int length = i == 0 ? frames / 4 : frames;
            const auto frame
                = static_cast<int>(random() % static_cast<quint32>(std::max(1, length)));
            events.append({frequency.deed, frame, static_cast<quint32>(random())});
        }
    }
    std::stable_sort(events.begin(), events.end(),
        [](const Event &one, const Event &other) { return one.frame < other.frame; });
    return events;
}

} // namespace Soak
