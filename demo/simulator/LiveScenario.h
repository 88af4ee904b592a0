#pragma once

#include "demo/simulator/Scenario.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

namespace Simulation {

/// The viewers of a file that somebody may replace at any time. What cannot be read changes
/// nothing: the last good ones stay, and there are none before.
class LiveScenario
{
public:
    explicit LiveScenario(const QString &fileName);

    /// Takes the file over when it has changed, and returns what there is to tell about it: once
    /// what is wrong, "file:line:column: key: reason", and once that nothing is any more.
    QString update(const QDateTime &now);

    const Scenario &scenario() const { return m_scenario; }

private:
    /// By which a change shows, unless it follows too soon for the file system's clock.
    struct Stamp
    {
        qint64 size = -1; // there is no file
        qint64 newestMs = 0; // since the epoch; of content and name

        friend bool operator==(const Stamp &a, const Stamp &b)
        {
            return a.size == b.size && a.newestMs == b.newestMs;
        }
    };

    static Stamp stampOf(const QString &fileName);
    QString read(); ///< returns what is wrong

    QString m_fileName;
    Stamp m_stamp;
    bool m_stampTells = false; // while it stays the same, so does the content
    std::optional<QByteArray> m_text; // what was read last, good or not
    QString m_textProblem;
    QString m_toldProblem;
    Scenario m_scenario;
};

} // namespace Simulation
