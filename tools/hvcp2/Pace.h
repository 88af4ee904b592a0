#pragma once

#include <QDateTime>
#include <QElapsedTimer>

namespace Hvcp2 {

/// Lets times come to pass again.
class Pace
{
public:
    explicit Pace(double speed) ///< 1: as it was, 10: ten times as fast
        : m_speed(speed)
    { }

    /// Returns when it is time for @p time, or at Ctrl+C; at once the first time.
    void waitFor(const QDateTime &time);

private:
    double m_speed;
    QDateTime m_begin; // null until the first time
    QElapsedTimer m_elapsed;
};

} // namespace Hvcp2
