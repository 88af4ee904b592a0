#pragma once

#include <QByteArray>

namespace KrTest {

/// Lets this process live in another time zone.
class TimeZone
{
public:
    explicit TimeZone(const QByteArray &name); ///< as the variable TZ has it
    ~TimeZone();
    Q_DISABLE_COPY(TimeZone)

private:
    const QByteArray m_previous;
};

} // namespace KrTest
