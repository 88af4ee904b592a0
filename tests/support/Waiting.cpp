#include "tests/support/Waiting.h"

#include <QElapsedTimer>
#include <QThread>

namespace KrTest {

bool waitWithoutEvents(const std::function<bool()> &condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(Patience))
            return false;
        QThread::msleep(5);
    }
    return true;
}

} // namespace KrTest
