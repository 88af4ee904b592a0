#include "tools/hvcp2/Pace.h"

#include "tools/hvcp2/Interruption.h"

#include <QThread>

#include <algorithm>

namespace Hvcp2 {

namespace {

constexpr double LongestNapMs = 50; // Ctrl+C waits for it

} // namespace

void Pace::waitFor(const QDateTime &time)
{
    if (m_begin.isNull()) {
        m_begin = time;
        m_elapsed.start();
        return;
    }
    const double due = static_cast<double>(m_begin.msecsTo(time)) / m_speed;
    while (!isInterrupted()) {
        const double left = due - static_cast<double>(m_elapsed.elapsed());
        if (left < 1)
            return;
        QThread::msleep(static_cast<unsigned long>(std::min(left, LongestNapMs)));
    }
}

} // namespace Hvcp2
