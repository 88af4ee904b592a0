#pragma once

#include <QString>

namespace PluginKrHvcP2 {

struct SensorFrame;

/// Whether Qt lays out the table of @p frame in a bounded time.
///
/// The sensor program's text goes into the table unescaped, and a garbled or hostile one can keep
/// QTextDocument busy for minutes or for ever. What a program may sensibly print passes: emphasis,
/// colours, fonts, links, images, lists, small tables, a '<' that opens nothing. The answer may be
/// false without need; true is measured (see the limits in the source).
bool isLayoutBounded(const SensorFrame &frame);

/// As much of @p text as Qt lays out in a bounded time when it is plain text: the first 65,536
/// characters, with lines of more than 4,096 broken.
QString boundedPlainText(const QString &text);

} // namespace PluginKrHvcP2
