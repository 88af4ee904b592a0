#pragma once

#include "tools/hvcp2/Paint.h"

#include <QTextStream>

namespace Hvcp2 {

/// Where results and messages go.
struct Console
{
    QTextStream &out;
    QTextStream &error;
    Paint paint; ///< of what goes to out
    bool isErrorTerminal = false; ///< whether somebody watches what goes to error
};

} // namespace Hvcp2
