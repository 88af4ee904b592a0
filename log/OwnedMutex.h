#pragma once

#include <QMutex>
#include <QThread>

#include <atomic>

namespace PluginKrHvcP2 {

/// A non-recursive mutex that knows which thread holds it. Code that spins an event loop or runs
/// host code while it holds the mutex can be called again on the same thread; it asks
/// isHeldByCurrentThread() instead of locking itself out for ever.
///
/// Works with std::unique_lock.
class OwnedMutex
{
public:
    void lock()
    {
        m_mutex.lock();
        m_owner = QThread::currentThreadId();
    }

    /// Waits at most @p timeoutMs milliseconds; false when the mutex could not be had by then.
    bool tryLock(int timeoutMs)
    {
        if (!m_mutex.tryLock(timeoutMs))
            return false;
        m_owner = QThread::currentThreadId();
        return true;
    }

    void unlock()
    {
        m_owner = nullptr;
        m_mutex.unlock();
    }

    bool isHeldByCurrentThread() const { return m_owner == QThread::currentThreadId(); }

private:
    QMutex m_mutex;
    std::atomic<Qt::HANDLE> m_owner{nullptr};
};

} // namespace PluginKrHvcP2
