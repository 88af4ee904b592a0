#include "demo/desk/TimelineText.h"

#include "demo/desk/ContentLook.h"
#include "demo/desk/CoverageText.h"
#include "tools/analysis/Words.h"

#include <QCoreApplication>
#include <QLocale>

#include <numeric>

namespace Desk {

using namespace Analysis;

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Desk::TimelineText", text);
}

QString ageText(int position)
{
    if (position == TimelineUnknownAge)
        return tr("age unknown");
    const AgeRange &ages = TimelineAges.at(static_cast<std::size_t>(position));
    return position == TimelineUnknownAge - 1 ? tr("%1 and older").arg(ages.from) : agesWord(ages);
}

/// "Female 3: 0-12, 20-39 (2)"
QString genderLine(int position, const std::array<int, TimelineUnknownAge + 1> &counts)
{
    QStringList ages;
    for (int i = 0; i <= TimelineUnknownAge; ++i) {
        const int count = counts.at(static_cast<std::size_t>(i));
        if (count == 1)
            ages << ageText(i);
        else if (count > 1)
            ages << QStringLiteral("%1 (%2)").arg(ageText(i), QString::number(count));
    }
    const int sum = std::accumulate(counts.cbegin(), counts.cend(), 0);
    const PluginKrHvcP2::Gender gender = CoveredGenders.at(static_cast<std::size_t>(position));
    return QStringLiteral("%1 %2: %3")
        .arg(genderName(gender), QString::number(sum), ages.join(QLatin1String(", ")));
}

QStringList viewerLines(const TimelineBucket &bucket)
{
    if (bucket.viewers == 0)
        return {tr("Nobody")};
    QStringList lines;
    for (int i = 0; i < static_cast<int>(bucket.counts.size()); ++i) {
        const auto &counts = bucket.counts.at(static_cast<std::size_t>(i));
        if (std::accumulate(counts.cbegin(), counts.cend(), 0) > 0)
            lines << genderLine(i, counts);
    }
    return lines;
}

} // namespace

QStringList bucketLines(const Plan &plan, const TimelineBucket &bucket, bool isSilent)
{
    const qint64 timeMs = bucket.frames > 0 ? bucket.momentMs : bucket.beginMs;
    QStringList lines{QLocale().toString(
        QDateTime::fromMSecsSinceEpoch(timeMs).time(), QStringLiteral("HH:mm:ss"))};
    if (bucket.frames > 0)
        lines << viewerLines(bucket);
    else if (isSilent)
        lines << tr("No frames from the sensor");
    if (bucket.playing != 0)
        lines << tr("Plays %1").arg(contentTitle(plan, bucket.playing));
    if (bucket.starts > 1)
        lines << tr("Starts: %1, this is the last one").arg(bucket.starts);
    if (bucket.restricted > 0)
        lines << tr("Held back, started too recently: %1").arg(bucket.restricted);
    return lines;
}

} // namespace Desk
