#pragma once

#include <QString>

namespace Player {

/// @p text, or its beginning and an ellipsis when it has more than @p limit characters (1 or more).
/// To lay out a text of a megabyte takes seconds.
QString shortened(const QString &text, int limit);

/// @p text as a tool tip that shows it letter by letter. Tool tips take what looks like HTML for
/// HTML, and a few nested tables take for ever.
QString plainToolTip(const QString &text);

} // namespace Player
