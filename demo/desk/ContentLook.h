#pragma once

#include "tools/analysis/Plan.h"

#include <QColor>
#include <QString>
#include <QStringList>

/// How the views name and colour contents.
namespace Desk {

/// Of the content's card, opaque; grey for a number that @p plan does not have.
QColor contentColor(const Analysis::Plan &plan, int number);
QColor contentInk(const QColor &color); ///< black or white, whichever is read better on it

QString contentTitle(const Analysis::Plan &plan, int number); ///< "#3 Women 20-39"

/// @p lines as a tool tip, the first one as its heading. They are shown letter by letter: tool tips
/// take what looks like HTML for HTML.
QString toolTipOf(const QStringList &lines);

} // namespace Desk
