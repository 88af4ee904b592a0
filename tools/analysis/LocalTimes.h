#pragma once

#include <QDateTime>

namespace Analysis {

/// Makes the moments of a log's local times. To ask the system for each of them would take longer
/// than to read the log; within an hour whose ends have the same offset from UTC it is asked once.
class LocalTimes
{
public:
    /// The moment, with its offset from UTC; date() and time() of it are @p date and @p time. Of
    /// the hour that comes twice a year it may be either.
    const QDateTime &at(const QDate &date, const QTime &time);

private:
    QDate m_date;
    int m_hour = -1; // of m_date; -1: none
    int m_offsetSeconds = 0;
    QTime m_time; // of m_moment
    QDateTime m_moment; // the last one
};

} // namespace Analysis
