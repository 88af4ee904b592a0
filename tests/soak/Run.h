#pragma once

#include "Host.h"
#include "Judgement.h"
#include "Schedule.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QVector>

namespace Soak {

struct Options
{
    int frames = 172800; ///< a day's, two a second
    int rate = 200; ///< frames a second
    quint32 seed = 1;
};

/// Lets frames flow through a host, does to it what the schedule says, and prints what it finds.
class Run : public QObject
{
    Q_OBJECT

public:
    explicit Run(const Options &options);

    void start();

    const QVector<Sample> &samples() const { return m_samples; }
    const QStringList &complaints() const { return m_complaints; } ///< empty: all went well

signals:
    void finished();

private:
    enum State { Flowing, ComingToRest, Resting };

    void step();
    void watch();
    void flow();
    void comeToRest();
    void rest();
    void complain(const QString &reason);
    void finish();

    const Options m_options;
    const QVector<Event> m_events;
    int m_nextEvent = 0;
    Host m_host;
    QTimer m_timer;
    QElapsedTimer m_clock;
    QElapsedTimer m_sinceFrame;
    QElapsedTimer m_sinceStill; // invalid while something moves
    int m_lastFrames = 0;
    int m_liveItems = 0; // before the rest
    State m_state = Flowing;
    QVector<Sample> m_samples;
    QStringList m_complaints;
};

} // namespace Soak
