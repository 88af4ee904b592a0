#pragma once

#include "tools/analysis/Plan.h"
#include "tools/hvcp2/Paint.h"

#include <QJsonObject>
#include <QString>

namespace Hvcp2 {

/// The contents of a plan: for whom they are, and why some of them take no part.
QString contentTableText(const Analysis::Plan &plan, const Paint &paint);
QString contentTableCsv(const Analysis::Plan &plan); ///< a row for each content
QJsonObject contentTableJson(const Analysis::Plan &plan);

} // namespace Hvcp2
