#pragma once

#include "core/screen/DetectionContent.h"
#include "detection/CalculatedData.h"

#include <QDateTime>
#include <QList>
#include <QString>

/// The parser and the determination as one would write them first: lists of strings, maps, one
/// search after another. A yardstick, and a second opinion on what comes out.
namespace Bench::SplitVersion {

struct Outcome
{
    QString html;
    QList<PluginKrHvcP2::CalculatedData> sequences; ///< the most prominent viewer first
};

Outcome decide(
    const QString &chunk, const QDateTime &time, const PluginKrHvcP2::DetectionContents &contents);

} // namespace Bench::SplitVersion
