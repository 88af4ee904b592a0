#pragma once

#include <QMetaType>

namespace PluginKrHvcP2 {

/// Level of a log record. A record is written when its level is not above the configured maximum.
enum LogDivision {
    NoLogging = 0,
    Critical = 1,
    Error = 2,
    Warning = 3,
    Notice = 4,
    Information = 5,
};

} // namespace PluginKrHvcP2

Q_DECLARE_METATYPE(PluginKrHvcP2::LogDivision)
