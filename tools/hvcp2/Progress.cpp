#include "tools/hvcp2/Progress.h"

#include <QtGlobal>

namespace Hvcp2 {

namespace {

constexpr int PeriodMs = 100;
constexpr int BarColumns = 40;
constexpr int LineColumns = 60; // more than any text has
constexpr qint64 Mebibyte = Q_INT64_C(1024) * 1024; // bytes

} // namespace

QString progressText(qint64 done, qint64 total)
{
    if (total <= 0)
        return QStringLiteral("%1 MiB read").arg(done / Mebibyte);
    const double share = qBound(0.0, static_cast<double>(done) / static_cast<double>(total), 1.0);
    const int columns = static_cast<int>(share * BarColumns);
    return QStringLiteral("[%1%2] %3 %")
        .arg(QString(columns, QLatin1Char('#')), QString(BarColumns - columns, QLatin1Char('-')),
            QString::number(static_cast<int>(share * 100)).rightJustified(3));
}

Progress::Progress(QTextStream &stream, bool isTerminal)
    : m_stream(stream)
    , m_isTerminal(isTerminal)
{
    m_time.start();
}

Progress::~Progress()
{
    clear();
}

void Progress::show(qint64 done, qint64 total)
{
    if (!m_isTerminal || m_time.elapsed() < m_nextMs)
        return;
    m_nextMs = m_time.elapsed() + PeriodMs;
    m_isShown = true;
    m_stream << '\r' << progressText(done, total);
    m_stream.flush();
}

void Progress::clear()
{
    if (!m_isShown)
        return;
    m_isShown = false;
    m_stream << '\r' << QString(LineColumns, QLatin1Char(' ')) << '\r';
    m_stream.flush();
}

} // namespace Hvcp2
