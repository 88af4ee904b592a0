#include "demo/simulator/Platform.h"

#include <cstdlib>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Simulation {

bool standardInputIsStream()
{
    struct stat status
    { };
    if (fstat(STDIN_FILENO, &status) != 0)
        return false;
    return S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode) || isatty(STDIN_FILENO) == 1;
}

void crash()
{
    const rlimit noDump{0, 0};
    setrlimit(RLIMIT_CORE, &noDump);
    std::abort();
}

} // namespace Simulation
