#pragma once

#include "core/screen/DetectionContent.h"
#include "detection/SendRestriction.h"

#include <QDateTime>

namespace PluginKrHvcP2 {

/// Answers whether a sequence may be started: by the contents that there are and by when a start
/// last went to the screens that follow them.
class SequenceRequests
{
public:
    enum class Answer {
        Unknown, ///< no valid content has that number
        Restricted, ///< it was started too recently
        Admitted, ///< and counts as started now
    };

    const DetectionContents &contents() const { return m_contents; }
    /// The times of earlier starts stay: they belong to the screens, not to the contents.
    void setContents(const DetectionContents &contents) { m_contents = contents; }

    /// Asks for the sequence @p number, counted from 1, at @p now; between two starts that the same
    /// screen follows lie at least @p limitMs milliseconds.
    Answer request(qint64 number, const QDateTime &now, int limitMs);

    /// Milliseconds after @p now until the sequence @p number would be admitted; 0: it is now, or
    /// is unknown.
    qint64 remainingMs(qint64 number, const QDateTime &now, int limitMs) const;

private:
    DetectionContents m_contents;
    SendRestriction m_restriction;
};

} // namespace PluginKrHvcP2
