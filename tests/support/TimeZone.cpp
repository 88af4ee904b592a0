#include "tests/support/TimeZone.h"

#include "tests/support/OwnProcess.h"

namespace KrTest {

TimeZone::TimeZone(const QByteArray &name)
    : m_previous(qgetenv("TZ"))
{
    setTimeZone(name);
}

TimeZone::~TimeZone()
{
    setTimeZone(m_previous);
}

} // namespace KrTest
