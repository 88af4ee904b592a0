#pragma once

#include "demo/desk/PlacedViewer.h"

#include <QString>
#include <QVector>

namespace Desk {

/// Remembers what was done on a desk and when, and makes a scenario of it that plays the same
/// again.
///
/// Whoever is changed in more than the place leaves, and somebody else arrives there in the same
/// moment. A drag becomes a path through every place that was told; who stands still for longer
/// does so in the scenario, too.
class DeskRecorder
{
public:
    /// Begins anew with those who are there at @p nowMs, milliseconds of any clock that does not
    /// jump.
    void start(const QVector<PlacedViewer> &viewers, qint64 nowMs);

    /// Takes the desk's state over after each change. A time before that of the last state counts
    /// as that. Nothing happens before start(), and when the recorder is full.
    void record(const QVector<PlacedViewer> &viewers, qint64 nowMs);

    /// True when no more fits into a scenario: after a day, or very many changes. What was done up
    /// to then is kept.
    bool isFull() const { return m_isFull; }

    /// The viewers in the order of their placing. Those who are there at last stay.
    Simulation::Scenario scenario() const;

    /// Saves the scenario with @p description. False with "file: reason" in @p error.
    bool save(const QString &fileName, const QString &description, QString *error) const;

private:
    /// Somebody as he was from his arrival to his first change, or until he left.
    struct Stay
    {
        PlacedViewer viewer; // as at last
        qint64 fromMs = 0;
        qint64 toMs = -1; // -1: is still there
        QVector<Simulation::Waypoint> path; // every place that was told
    };

    bool hasRoom() const;
    void takeState(const PlacedViewer &viewer, qint64 ms);
    void end(int index, qint64 ms);
    void begin(const PlacedViewer &viewer, qint64 ms);
    void move(Stay *stay, const PlacedViewer &viewer, qint64 ms);
    static Simulation::Viewer simulated(const Stay &stay);

    QVector<Stay> m_over; // in the order of their ends
    QVector<Stay> m_present;
    qint64 m_startMs = 0;
    qint64 m_lastMs = 0; // of the last state, since the start
    qint64 m_beforeMs = 0; // of the last one of an earlier moment
    int m_waypoints = 0; // in all paths
    bool m_isRunning = false;
    bool m_isFull = false;
};

} // namespace Desk
