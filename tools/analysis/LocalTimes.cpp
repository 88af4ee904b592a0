#include "tools/analysis/LocalTimes.h"

namespace Analysis {

const QDateTime &LocalTimes::at(const QDate &date, const QTime &time)
{
    if (date == m_date && time == m_time)
        return m_moment;
    if (date != m_date || time.hour() != m_hour) {
        const int first = QDateTime(date, QTime(time.hour(), 0)).offsetFromUtc();
        const int last = QDateTime(date, QTime(time.hour(), 59, 59)).offsetFromUtc();
        const bool isOne = first == last;
        m_hour = isOne ? time.hour() : -1;
        m_offsetSeconds = isOne ? first : QDateTime(date, time).offsetFromUtc();
    }
    m_date = date;
    m_time = time;
    m_moment = QDateTime(date, time, Qt::OffsetFromUTC, m_offsetSeconds);
    return m_moment;
}

} // namespace Analysis
