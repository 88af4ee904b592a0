#include "tools/hvcp2/Interruption.h"

#include <csignal>

namespace Hvcp2 {

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void onInterruption(int signal)
{
    interrupted = 1;
    std::signal(signal, SIG_DFL);
}

} // namespace

void watchInterruption()
{
    std::signal(SIGINT, onInterruption);
}

bool isInterrupted()
{
    return interrupted != 0;
}

} // namespace Hvcp2
