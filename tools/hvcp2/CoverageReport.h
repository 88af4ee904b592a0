#pragma once

#include "tools/analysis/Coverage.h"
#include "tools/analysis/Plan.h"
#include "tools/hvcp2/Paint.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace Hvcp2 {

/// What deserves a look, a sentence for each; none when everybody gets a content and each content
/// somebody.
QStringList coverageFindings(const Analysis::Plan &plan, const Analysis::Coverage &coverage);

QString coverageText(
    const Analysis::Plan &plan, const Analysis::Coverage &coverage, const Paint &paint);
/// A row for each band of ages of a gender.
QString coverageCsv(const Analysis::Plan &plan, const Analysis::Coverage &coverage);
QJsonObject coverageJson(const Analysis::Plan &plan, const Analysis::Coverage &coverage);

} // namespace Hvcp2
