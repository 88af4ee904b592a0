#include "demo/desk/DeskRecorder.h"

#include "demo/simulator/ScenarioWriter.h"
#include "demo/support/UserFile.h"

#include <QCoreApplication>
#include <QSaveFile>

#include <algorithm>

namespace Desk {

namespace {

using Simulation::Waypoint;

/// Between places that are told faster than this a viewer walks; else he has stood in between.
constexpr qint64 MaxStrideMs = 200;
constexpr qint64 MaxMs = Simulation::MaxSeconds * Q_INT64_C(1000);
constexpr int MaxWaypoints = 50000; // keeps the text below what a reader takes

} // namespace

void DeskRecorder::start(const QVector<PlacedViewer> &viewers, qint64 nowMs)
{
    *this = DeskRecorder();
    m_isRunning = true;
    m_startMs = nowMs;
    record(viewers, nowMs);
}

void DeskRecorder::record(const QVector<PlacedViewer> &viewers, qint64 nowMs)
{
    if (!m_isRunning || m_isFull)
        return;
    const qint64 ms = qMax(m_lastMs, nowMs - m_startMs);
    m_isFull = ms >= MaxMs || !hasRoom();
    if (m_isFull)
        return;
    if (ms > m_lastMs) {
        m_beforeMs = m_lastMs;
        m_lastMs = ms;
    }

    // Backwards, since the end of a stay takes it out.
    for (int i = m_present.size() - 1; i >= 0; --i) {
        const int id = m_present.at(i).viewer.id;
        const bool isThere = std::any_of(viewers.begin(), viewers.end(),
            [id](const PlacedViewer &viewer) { return viewer.id == id; });
        if (!isThere)
            end(i, ms);
    }
    for (const PlacedViewer &viewer : viewers)
        takeState(viewer, ms);
}

Simulation::Scenario DeskRecorder::scenario() const
{
    // Faces are numbered in this order: somebody who was changed keeps his place in it.
    QVector<Stay> stays = m_over + m_present;
    std::stable_sort(stays.begin(), stays.end(),
        [](const Stay &a, const Stay &b) { return a.viewer.id < b.viewer.id; });
    Simulation::Scenario scenario;
    for (const Stay &stay : stays)
        scenario.viewers.append(simulated(stay));
    return scenario;
}

bool DeskRecorder::save(const QString &fileName, const QString &description, QString *error) const
{
    if (Demo::UserFile::isNoFile(fileName)) {
        *error
            = QCoreApplication::translate("Desk::DeskRecorder", "%1: is not a file").arg(fileName);
        return false;
    }
    const QByteArray text = Simulation::writeScenario(scenario(), description);
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit())
        return true;
    *error = QCoreApplication::translate("Desk::DeskRecorder", "%1: cannot be written: %2")
                 .arg(fileName, file.errorString());
    return false;
}

bool DeskRecorder::hasRoom() const
{
    // One state changes everybody at most.
    constexpr int Most = Simulation::Sensor::MaxFaces;
    return m_over.size() + m_present.size() + Most <= Simulation::MaxEntries
        && m_waypoints + 2 * Most <= MaxWaypoints;
}

void DeskRecorder::takeState(const PlacedViewer &viewer, qint64 ms)
{
    const auto found = std::find_if(m_present.begin(), m_present.end(),
        [&viewer](const Stay &stay) { return stay.viewer.id == viewer.id; });
    if (found != m_present.end()) {
        if (found->viewer.isLike(viewer) && found->path.size() + 2 <= Simulation::MaxEntries) {
            move(&*found, viewer, ms);
            return;
        }
        end(static_cast<int>(found - m_present.begin()), ms);
    }
    begin(viewer, ms);
}

void DeskRecorder::end(int index, qint64 ms)
{
    Stay stay = m_present.takeAt(index);
    stay.toMs = ms;
    if (stay.toMs > stay.fromMs)
        m_over.append(stay);
    else // changed twice in one moment; there was nobody to see in between
        m_waypoints -= stay.path.size();
}

void DeskRecorder::begin(const PlacedViewer &viewer, qint64 ms)
{
    Stay stay;
    stay.viewer = viewer;
    stay.fromMs = ms;
    stay.path = {{ms, viewer.position}};
    m_present.append(stay);
    ++m_waypoints;
}

void DeskRecorder::move(Stay *stay, const PlacedViewer &viewer, qint64 ms)
{
    if (stay->viewer.position == viewer.position)
        return;
    QVector<Waypoint> &path = stay->path;
    const int before = path.size();
    const Waypoint last = path.constLast();
    // He was still there when the state before was told.
    const qint64 stoodUntilMs = ms - m_beforeMs > MaxStrideMs ? ms - 1 : m_beforeMs;
    if (last.atMs == ms)
        path.removeLast();
    else if (stoodUntilMs > last.atMs)
        path.append({stoodUntilMs, last.position});
    path.append({ms, viewer.position});
    stay->viewer = viewer;
    m_waypoints += path.size() - before;
}

Simulation::Viewer DeskRecorder::simulated(const Stay &stay)
{
    Simulation::Viewer viewer = toSimulation(stay.viewer);
    viewer.arriveMs = stay.fromMs;
    if (stay.toMs >= 0)
        viewer.leaveMs = stay.toMs;
    viewer.position = stay.path.constFirst().position;
    if (stay.path.size() > 1)
        viewer.path = stay.path;
    return viewer;
}

} // namespace Desk
