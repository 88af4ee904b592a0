#include "tools/hvcp2/Terminal.h"

#include <QtGlobal>

#include <unistd.h>

namespace Hvcp2 {

Paint::Depth prepareStandardOutput()
{
    if (isatty(STDOUT_FILENO) == 0 || !qEnvironmentVariableIsEmpty("NO_COLOR"))
        return Paint::None;
    const QByteArray terminal = qgetenv("TERM");
    if (terminal.isEmpty() || terminal == "dumb")
        return Paint::None;
    const QByteArray colors = qgetenv("COLORTERM");
    return colors == "truecolor" || colors == "24bit" ? Paint::Full : Paint::Basic;
}

bool isStandardErrorTerminal()
{
    return isatty(STDERR_FILENO) != 0;
}

} // namespace Hvcp2
