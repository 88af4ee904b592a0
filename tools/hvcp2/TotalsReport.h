#pragma once

#include "tools/analysis/Plan.h"
#include "tools/analysis/Totals.h"
#include "tools/hvcp2/Paint.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace Hvcp2 {

/// What a report tells, in any form.
struct Report
{
    QStringList files; ///< that were read
    std::optional<Analysis::Plan> plan;
    qint64 silenceMs = 0; ///< more than this between two frames is a silence
    Analysis::Totals totals;
};

/// A sequence number that was requested, or is one of the plan's contents.
struct ReportedSequence
{
    int number = 0;
    QString word; ///< "#3 Women 20-39", or the number alone
    Analysis::Tally determined;
    Analysis::Tally restricted;
};

QVector<ReportedSequence> reportedSequences(const Report &report); ///< by rising number

QString bandKey(int band); ///< "30-39", "70+", "unknown"
/// "30", "70", "unknown": what no spreadsheet takes for a date.
QString bandStart(int band);
QString bandWord(int band); ///< the same, but "70 and over"
QString hourWord(int hour); ///< "09:00": the hour that begins then
QString weekdayWord(int day); ///< 0: Monday
/// "12.5 %"; "-" when there is no @p whole.
QString shareWord(qint64 part, qint64 whole);
/// Of an entry of the report, by the tolerance of its times.
QString reportTime(const Report &report, const QDateTime &time);

/// What the figures cannot tell, a sentence or two for each.
QStringList reportNotes(const Report &report);

QString reportText(const Report &report, const Paint &paint);
QJsonObject reportJson(const Report &report);

} // namespace Hvcp2
