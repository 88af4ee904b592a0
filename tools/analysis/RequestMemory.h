#pragma once

#include "core/screen/DetectionContent.h"
#include "detection/SendRestriction.h"

#include <QDateTime>

namespace Analysis {

/// When something happened, as far as that is known: not before, and not after.
struct Moment
{
    QDateTime earliest;
    QDateTime latest;
};

/// When each sequence was started, as far as times of whole seconds and what may be missing between
/// them tell. SendRestriction is asked for the shortest and the longest time that can have passed.
class RequestMemory
{
public:
    enum class Answer {
        Open, ///< either may be
        Restricted, ///< whatever the times were
        Admitted, ///< likewise
    };

    explicit RequestMemory(const PluginKrHvcP2::DetectionContents &contents)
        : m_contents(contents)
    { }

    /// The times of earlier starts stay: they belong to the screens, not to the contents.
    void setContents(const PluginKrHvcP2::DetectionContents &contents) { m_contents = contents; }

    /// What a request for the sequence @p number comes to when @p limitMs milliseconds have to lie
    /// between two starts. A number that is no content's is admitted, and settles nothing.
    Answer ask(int number, const Moment &moment, int limitMs) const;
    /// It has come to @p answer.
    void settle(int number, const Moment &moment, int limitMs, Answer answer);

    /// The plug-in may be another one that remembers nothing, or its clock was set.
    void mayBeLost();
    void mayHaveStarted(const QDateTime &latest); ///< any sequences, up to then

private:
    QList<int> identifiers(int number) const;
    void settleRestricted(const QList<int> &identifiers, const Moment &moment, int limitMs);

    PluginKrHvcP2::DetectionContents m_contents;
    // When the last starts went to each screen: not before the one, and not after the other.
    PluginKrHvcP2::SendRestriction m_earliest;
    PluginKrHvcP2::SendRestriction m_latest;
};

} // namespace Analysis
