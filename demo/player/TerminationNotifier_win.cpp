#include "demo/player/TerminationNotifier.h"

#include <mutex>

#include <windows.h>

namespace Player {

namespace {

// The handler runs on a thread of its own.
std::mutex mutex;
TerminationNotifier *receiver = nullptr; // guarded by mutex
bool asked = false; // guarded by mutex

constexpr DWORD ClosingTime = 10000; // ms; the system grants less

BOOL WINAPI onConsoleEvent(DWORD event)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!receiver || asked)
            return FALSE;
        asked = true;
        QMetaObject::invokeMethod(receiver, "requested", Qt::QueuedConnection);
    }
    // After these events the process is ended as soon as the handler returns.
    if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT)
        Sleep(ClosingTime);
    return TRUE;
}

} // namespace

class TerminationNotifier::Backend
{
public:
    explicit Backend(TerminationNotifier *owner)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        receiver = owner;
        asked = false;
        SetConsoleCtrlHandler(onConsoleEvent, TRUE);
    }

    ~Backend()
    {
        SetConsoleCtrlHandler(onConsoleEvent, FALSE);
        const std::lock_guard<std::mutex> lock(mutex);
        receiver = nullptr;
    }

    Backend(const Backend &) = delete;
    Backend &operator=(const Backend &) = delete;
};

TerminationNotifier::TerminationNotifier(QObject *parent)
    : QObject(parent)
    , m_backend(std::make_unique<Backend>(this))
{ }

TerminationNotifier::~TerminationNotifier() = default;

} // namespace Player
