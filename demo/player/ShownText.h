#pragma once

#include <QString>

namespace Player {

/// @p text as a tool tip that shows it letter by letter. Tool tips take what looks like HTML for
/// HTML, and a few nested tables take for ever.
QString plainToolTip(const QString &text);

/// @p text for a menu, which takes a "&" for the mark of a key.
QString withoutMnemonic(QString text);

/// @p text with a blank for each line break and control character.
QString oneLine(QString text);

} // namespace Player
