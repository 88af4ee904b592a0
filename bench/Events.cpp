#include "Events.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

namespace Bench {

void runEvents(int ms, const Step &afterEach)
{
    QTimer turn; // its timeouts end the waits
    turn.setTimerType(Qt::PreciseTimer);
    turn.start(5);
    QElapsedTimer stopwatch;
    stopwatch.start();
    while (stopwatch.elapsed() < ms) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (afterEach)
            afterEach();
    }
}

} // namespace Bench
