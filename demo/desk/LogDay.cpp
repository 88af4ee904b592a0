#include "demo/desk/LogDay.h"

#include "demo/support/UserFile.h"
#include "tools/analysis/EntrySource.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>

namespace Desk {

using namespace Analysis;

namespace {

constexpr qint64 DayMs = 86400000;
constexpr qint64 SecondMs = 1000;
constexpr size_t KeptPages = 4;

/// What the clock on the wall showed; two such times differ by what people would say.
qint64 clockMsOf(const QDateTime &time)
{
    return QDateTime(time.date(), time.time(), Qt::UTC).toMSecsSinceEpoch();
}

QString placed(const Entry &problem)
{
    return QStringLiteral("%1:%2: %3")
        .arg(problem.position.file, QString::number(problem.position.line), problem.text);
}

/// A frame without a time is none of a log.
bool isReadable(const Entry &entry)
{
    return entry.kind != Entry::Unknown && !entry.time.isNull();
}

std::unique_ptr<EntrySource> sourceAt(const Position &position)
{
    QString error;
    std::unique_ptr<EntrySource> source = EntrySource::open({position.file}, &error);
    if (source)
        source->resume({position});
    return source;
}

/// What was started for the frame: as the log tells, else as the plan has it.
QVector<LoggedRequest> requestsOf(const ReplayedFrame &frame)
{
    return frame.isLogged ? frame.logged : expectedRequests(frame);
}

} // namespace

QString LogDay::objection(const QString &fileName)
{
    const QString path = QFileInfo(fileName).absoluteFilePath();
    const QString objection = Demo::UserFile::objection(path);
    if (!objection.isEmpty())
        return QStringLiteral("%1: %2").arg(path, objection);
    const std::unique_ptr<EntrySource> source = sourceAt({path, 1, 0});
    QString problem = tr("%1: the log is empty").arg(path);
    bool isFirst = true;
    while (const std::optional<Entry> entry = source ? source->next() : std::nullopt) {
        if (entry->kind != Entry::Unknown) {
            return entry->isRecorded()
                ? tr("%1: is a recording of the sensor program, not a log").arg(path)
                : QString();
        }
        if (isFirst)
            problem = placed(*entry);
        isFirst = false;
    }
    return problem;
}

std::unique_ptr<LogDay> LogDay::open(const QString &fileName, const Plan &plan, QString *error)
{
    *error = objection(fileName);
    if (!error->isEmpty())
        return nullptr;
    const QString path = QFileInfo(fileName).absoluteFilePath();
    std::unique_ptr<EntrySource> source = EntrySource::open({path}, error);
    return source ? std::unique_ptr<LogDay>(new LogDay(std::move(source), path, plan)) : nullptr;
}

LogDay::LogDay(std::unique_ptr<EntrySource> source, const QString &fileName, const Plan &plan)
    : m_fileName(fileName)
    , m_source(std::move(source))
    , m_replay(plan)
{
    m_timeline.setInterval(plan.settings.interval);
    m_pageStarts.push_back({{m_fileName, 1, 0}, m_replay});
}

LogDay::~LogDay() = default;

bool LogDay::read(int entries)
{
    for (; m_source && entries > 0; --entries) {
        const std::optional<Entry> entry = m_source->next();
        if (entry) {
            take(*entry);
            continue;
        }
        if (const std::optional<ReplayedFrame> frame = m_replay.finish())
            append(*frame);
        spreadLastSecond();
        m_source.reset();
        m_pages.clear(); // the last ones have grown
    }
    return !isRead();
}

int LogDay::percentRead() const
{
    if (isRead())
        return 100;
    const qint64 total = std::max<qint64>(1, m_source->totalBytes());
    return static_cast<int>(std::min<qint64>(100, 100 * m_source->readBytes() / total));
}

void LogDay::take(const Entry &entry)
{
    if (!isReadable(entry)) {
        takeProblem(entry);
        m_replay.skip();
        return;
    }
    if (entry.kind == Entry::Frame && m_begun++ > 0 && (m_begun - 1) % FramesOfPage == 0)
        m_pageStarts.push_back({entry.position, m_replay});
    if (const std::optional<ReplayedFrame> frame = m_replay.take(entry))
        append(*frame);
}

void LogDay::takeProblem(const Entry &entry)
{
    if (++m_problemCount <= NamedProblems)
        m_problems.append(placed(entry));
}

void LogDay::append(const ReplayedFrame &frame)
{
    const QDateTime &time = frame.decision.time;
    const qint64 passedMs = passedAt(time);
    if (!m_frames.empty() && passedMs > lengthMs()) {
        const qint64 before = lengthMs();
        spreadLastSecond();
        if (passedMs / StripMs != before / StripMs)
            m_strips.push_back({count(), m_timeline});
    }
    const QVector<LoggedRequest> requests = requestsOf(frame);
    m_timeline.addFrame({frame.number, frame.text, frame.decision});
    for (const LoggedRequest &request : requests) {
        if (request.isRestricted)
            continue;
        m_playing = request.number;
        m_timeline.sequenceStarted(request.number, time);
    }
    m_frames.push_back({passedMs, clockMsOf(time), m_playing});
}

/// It never gets less. A clock that goes on by more than a day was set.
qint64 LogDay::passedAt(const QDateTime &time)
{
    const qint64 momentMs = time.toMSecsSinceEpoch();
    const qint64 passedMs = momentMs - m_clockLeadMs;
    if (m_frames.empty())
        m_clockLeadMs = momentMs;
    else if (passedMs < lengthMs())
        m_clockLeadMs = momentMs - lengthMs();
    else if (passedMs > lengthMs() + DayMs)
        m_clockLeadMs = momentMs - lengthMs() - SecondMs;
    return momentMs - m_clockLeadMs;
}

/// A log has whole seconds; the frames of one came one after another.
void LogDay::spreadLastSecond()
{
    if (m_frames.empty())
        return;
    const qint64 second = lengthMs();
    auto first = m_frames.end();
    while (first != m_frames.begin() && std::prev(first)->passedMs == second)
        --first;
    const qint64 frames = std::distance(first, m_frames.end());
    for (qint64 i = 0; i < frames; ++i)
        (first++)->passedMs += i * SecondMs / frames;
}

QDateTime LogDay::time(qint64 number) const
{
    return QDateTime::fromMSecsSinceEpoch(at(number).clockMs, Qt::UTC);
}

const TimelineModel &LogDay::timeline(qint64 number) const
{
    const auto strip = std::lower_bound(m_strips.cbegin(), m_strips.cend(), number,
        [](const Strip &s, qint64 wanted) { return s.lastFrame < wanted; });
    return strip == m_strips.cend() ? m_timeline : strip->model;
}

qint64 LogDay::frameAt(qint64 passedMs) const
{
    const auto behind = std::upper_bound(m_frames.cbegin(), m_frames.cend(), passedMs,
        [](qint64 ms, const Mark &mark) { return ms < mark.passedMs; });
    return std::min(count(), std::max<qint64>(1, std::distance(m_frames.cbegin(), behind)));
}

qint64 LogDay::frameAtTime(const QTime &time) const
{
    if (m_frames.empty())
        return 0;
    const qint64 first = m_frames.front().clockMs;
    qint64 wanted = first - first % DayMs + QTime(0, 0).msecsTo(time);
    // Of a log that goes on behind midnight the first day that has the time.
    if (wanted < first && m_frames.back().clockMs >= wanted + DayMs)
        wanted += DayMs;
    const auto found = std::find_if(m_frames.cbegin(), m_frames.cend(),
        [wanted](const Mark &mark) { return mark.clockMs >= wanted; });
    return std::min<qint64>(count(), std::distance(m_frames.cbegin(), found) + 1);
}

qint64 LogDay::frameAtMoment(const QDateTime &moment) const
{
    const qint64 wanted = clockMsOf(moment);
    const auto nearest = std::min_element(
        m_frames.cbegin(), m_frames.cend(), [wanted](const Mark &a, const Mark &b) {
            return qAbs(a.clockMs - wanted) < qAbs(b.clockMs - wanted);
        });
    return nearest == m_frames.cend() ? 0 : std::distance(m_frames.cbegin(), nearest) + 1;
}

std::shared_ptr<const LogPage> LogDay::page(qint64 number, QString *error)
{
    const auto known = std::find_if(m_pages.begin(), m_pages.end(),
        [number](const auto &page) { return page->contains(number); });
    if (known != m_pages.end()) {
        std::rotate(m_pages.begin(), known, std::next(known));
        return m_pages.front();
    }
    std::shared_ptr<const LogPage> page
        = readPage(static_cast<size_t>((number - 1) / FramesOfPage), error);
    if (!page)
        return nullptr;
    m_pages.push_front(page);
    if (m_pages.size() > KeptPages)
        m_pages.pop_back();
    return page;
}

std::optional<SeenFrame> LogDay::frame(qint64 number, QString *error)
{
    const std::shared_ptr<const LogPage> found = page(number, error);
    if (!found)
        return std::nullopt;
    return found->frames.at(static_cast<int>(number - found->frames.first().number));
}

std::shared_ptr<const LogPage> LogDay::readPage(size_t index, QString *error) const
{
    const Start &start = m_pageStarts.at(index);
    const qint64 first = static_cast<qint64>(index) * FramesOfPage + 1;
    const qint64 last = std::min(count(), first + FramesOfPage - 1);
    const std::unique_ptr<EntrySource> source = sourceAt(start.position);
    Replay replay = start.replay;
    LogPage page;
    qint64 begun = first - 1;
    const auto add = [&page, first, last](const std::optional<ReplayedFrame> &frame) {
        if (frame && frame->number >= first && frame->number <= last)
            page.frames.append({frame->number, frame->text, frame->decision});
    };
    while (begun <= last) {
        const std::optional<Entry> entry = source ? source->next() : std::nullopt;
        if (!entry) {
            add(replay.finish());
            break;
        }
        if (entry->kind == Entry::Frame && isReadable(*entry))
            ++begun;
        else
            page.records.append({begun, *entry});
        if (isReadable(*entry))
            add(replay.take(*entry));
        else
            replay.skip();
    }
    const bool isSame = page.frames.size() == last - first + 1
        && clockMsOf(page.frames.first().decision.time) == at(first).clockMs
        && clockMsOf(page.frames.last().decision.time) == at(last).clockMs;
    if (isSame)
        return std::make_shared<const LogPage>(page);
    *error = tr("%1: is not any more what was read").arg(m_fileName);
    return nullptr;
}

} // namespace Desk
