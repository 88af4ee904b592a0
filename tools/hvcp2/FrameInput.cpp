#include "tools/hvcp2/FrameInput.h"

#include "tools/hvcp2/ConsoleText.h"
#include "tools/hvcp2/Interruption.h"

#include <utility>

namespace Hvcp2 {

using Analysis::Entry;
using Analysis::EntrySource;

namespace {

constexpr int NamedProblems = 10; // a foreign file has as many as it likes
constexpr int EntriesBetweenLooks = 256;
const QString Interval = QStringLiteral("interval");
const QString DefaultInterval = QStringLiteral("500");

/// Nothing when it is no interval.
std::optional<int> intervalOf(const QCommandLineParser &given)
{
    bool ok = false;
    const int interval = given.value(Interval).toInt(&ok);
    return ok && interval > 0 ? std::make_optional(interval) : std::nullopt;
}

} // namespace

QCommandLineOption intervalOption()
{
    return {Interval,
        QStringLiteral("Time between frames that have none (default: %1).").arg(DefaultInterval),
        QStringLiteral("MS"), DefaultInterval};
}

std::unique_ptr<FrameInput> FrameInput::open(
    const Command &command, const QCommandLineParser &given, Console &console)
{
    const QStringList paths = givenFrames(given);
    const std::optional<int> interval = intervalOf(given);
    QString error;
    std::unique_ptr<EntrySource> source;
    if (paths.isEmpty())
        error = QStringLiteral("FRAMES are needed: a log directory, files or -.");
    else if (!interval)
        error = QStringLiteral("--interval: \"%1\" is no number of milliseconds")
                    .arg(given.value(Interval));
    else
        source = EntrySource::open(paths, &error);
    if (!source) {
        refuse(command, error, console);
        return nullptr;
    }
    watchInterruption();
    return std::unique_ptr<FrameInput>(
        new FrameInput(command, std::move(source), *interval, console));
}

FrameInput::FrameInput(
    const Command &command, std::unique_ptr<EntrySource> source, int intervalMs, Console &console)
    : m_command(command.name)
    , m_source(std::move(source))
    , m_console(console)
    , m_progress(console.error, console.isErrorTerminal)
    , m_totalBytes(m_source->totalBytes())
    , m_intervalMs(intervalMs)
{ }

std::optional<Entry> FrameInput::next()
{
    for (;;) {
        if (m_untilLook-- == 0) {
            m_untilLook = EntriesBetweenLooks;
            m_progress.show(m_source->readBytes(), m_totalBytes);
        }
        if (isInterrupted())
            return std::nullopt;
        std::optional<Entry> entry = m_source->next();
        if (entry && entry->kind == Entry::Unknown) {
            report(*entry);
            continue;
        }
        if (entry && entry->kind == Entry::Frame && entry->time.isNull())
            entry->time = QDateTime::fromMSecsSinceEpoch(m_intervalMs * m_untimed++, Qt::UTC);
        return entry;
    }
}

void FrameInput::report(const Entry &problem)
{
    if (++m_unreadable > NamedProblems)
        return;
    m_progress.clear();
    m_console.error << "hvcp2 " << m_command << ": "
                    << printable(QStringLiteral("%1:%2: %3")
                                     .arg(problem.position.file,
                                         QString::number(problem.position.line), problem.text))
                    << '\n';
}

ExitStatus FrameInput::finish()
{
    m_progress.clear();
    if (m_unreadable > NamedProblems) {
        m_console.error << "hvcp2 " << m_command << ": and " << m_unreadable - NamedProblems
                        << " more places that cannot be read\n";
    }
    if (!isInterrupted())
        return Fine;
    m_console.error << "hvcp2 " << m_command << ": interrupted\n";
    return Interrupted;
}

} // namespace Hvcp2
