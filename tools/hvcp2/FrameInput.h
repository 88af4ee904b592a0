#pragma once

#include "tools/analysis/EntrySource.h"
#include "tools/hvcp2/Command.h"
#include "tools/hvcp2/Progress.h"

#include <memory>
#include <optional>

namespace Hvcp2 {

/// What the FRAMES of a command line tell, one entry after another.
///
/// What cannot be read is named on standard error and left out. A bar on a terminal shows how far
/// the reading is, and Ctrl+C ends it.
class FrameInput
{
public:
    /// Null, after a refusal, when @p given names no FRAMES that can be read. @p command and
    /// @p console have to outlive it.
    static std::unique_ptr<FrameInput> open(
        const Command &command, const QCommandLineParser &given, Console &console);

    /// Never an Unknown one. Frames have a time: those of a recording without times come
    /// --interval milliseconds after each other, from the year 1970 on (UTC).
    std::optional<Analysis::Entry> next();

    /// Says on standard error how much could not be read, when there was more than was named.
    /// Returns Fine, or Interrupted after Ctrl+C.
    ExitStatus finish();

    void clearProgress() { m_progress.clear(); } ///< for a result on the same terminal

    Analysis::EntrySource &source() { return *m_source; }
    qint64 unreadable() const { return m_unreadable; } ///< so far: places that were left out

private:
    FrameInput(const Command &command, std::unique_ptr<Analysis::EntrySource> source,
        int intervalMs, Console &console);

    void report(const Analysis::Entry &problem);

    QString m_command;
    std::unique_ptr<Analysis::EntrySource> m_source;
    Console &m_console;
    Progress m_progress;
    qint64 m_totalBytes;
    int m_intervalMs;
    qint64 m_untimed = 0; // frames so far
    qint64 m_unreadable = 0;
    int m_untilLook = 0; // entries before the next look at progress and Ctrl+C
};

QCommandLineOption intervalOption(); ///< needed by FrameInput

} // namespace Hvcp2
