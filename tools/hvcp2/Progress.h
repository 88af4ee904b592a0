#pragma once

#include <QElapsedTimer>
#include <QTextStream>

namespace Hvcp2 {

/// A bar on a terminal for what takes longer than a second; leaves nothing behind.
class Progress
{
public:
    /// Without @p isTerminal it does nothing. @p stream has to outlive it.
    Progress(QTextStream &stream, bool isTerminal);
    ~Progress();

    /// @p done of @p total; 0 in all when that is not known.
    void show(qint64 done, qint64 total);
    void clear(); ///< for another text; the next show() brings it back

private:
    Q_DISABLE_COPY(Progress)

    QTextStream &m_stream;
    bool m_isTerminal;
    bool m_isShown = false;
    qint64 m_nextMs = 1000;
    QElapsedTimer m_time;
};

/// "[##########----------]  50 %"; without @p total only that work goes on.
QString progressText(qint64 done, qint64 total);

} // namespace Hvcp2
