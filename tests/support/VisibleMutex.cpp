// Linked into a program under the thread sanitizer, which does not know the system calls that Qt's
// mutexes are made of: what one of them guards would look unguarded. These take the place of Qt's
// functions, call them and tell the sanitizer.

#include <QMutex>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

namespace {

/// Qt's function of that name, which the one here hides.
template <typename Function>
Function hidden(const char *mangledName)
{
    void *const address = ::dlsym(RTLD_NEXT, mangledName);
    if (address == nullptr)
        qFatal("%s is missing", mangledName);
    return reinterpret_cast<Function>(address);
}

} // namespace

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    static const auto lockHidden = hidden<void (*)(QMutex *)>("_ZN6QMutex4lockEv");
    __tsan_mutex_pre_lock(this, 0);
    lockHidden(this);
    __tsan_mutex_post_lock(this, 0, 0);
}

bool QMutex::tryLock(int timeout) QT_MUTEX_LOCK_NOEXCEPT
{
    static const auto tryLockHidden = hidden<bool (*)(QMutex *, int)>("_ZN6QMutex7tryLockEi");
    __tsan_mutex_pre_lock(this, __tsan_mutex_try_lock);
    const bool locked = tryLockHidden(this, timeout);
    __tsan_mutex_post_lock(
        this, __tsan_mutex_try_lock | (locked ? 0U : __tsan_mutex_try_lock_failed), 0);
    return locked;
}

void QMutex::unlock() noexcept
{
    static const auto unlockHidden = hidden<void (*)(QMutex *)>("_ZN6QMutex6unlockEv");
    __tsan_mutex_pre_unlock(this, 0);
    unlockHidden(this);
    __tsan_mutex_post_unlock(this, 0);
}
