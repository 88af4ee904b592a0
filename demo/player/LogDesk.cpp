#include "demo/player/LogDesk.h"

#include "demo/desk/FrameHistory.h"
#include "demo/desk/ShownFrame.h"
#include "demo/player/LogRecordEvent.h"
#include "demo/player/StagePlayer.h"

#include <QElapsedTimer>

#include <algorithm>
#include <iterator>
#include <utility>

namespace Player {

using namespace Desk;

namespace {

constexpr int TurnMs = 20;
constexpr int EntriesAtOnce = 16;
constexpr qint64 NoPage = -1;

} // namespace

LogDesk::LogDesk(
    StagePlayer *player, const FrameHistory *history, ShownFrame *shown, QObject *parent)
    : QObject(parent)
    , m_player(player)
    , m_history(history)
    , m_shown(shown)
{
    m_turns.setInterval(0);
    connect(&m_turns, &QTimer::timeout, this, &LogDesk::readOn);
    connect(&m_playhead, &LogPlayhead::moved, this, &LogDesk::show);
    connect(history, &FrameHistory::planChanged, this, &LogDesk::decideAnew);
}

bool LogDesk::open(const QString &fileName, QString *error)
{
    std::unique_ptr<LogDay> day = LogDay::open(fileName, m_history->plan(), error);
    if (!day)
        return false;
    m_player->rest();
    m_wanted = 1;
    begin(std::move(day));
    emit openChanged(true);
    return true;
}

void LogDesk::close()
{
    if (!isOpen())
        return;
    m_turns.stop();
    m_playhead.setDay(nullptr);
    m_day.reset();
    m_records.clear();
    m_shown->closeLog();
    emit openChanged(false);
    m_player->resume();
}

void LogDesk::begin(std::unique_ptr<LogDay> day)
{
    m_playhead.setDay(day.get()); // before the old one goes
    m_day = std::move(day);
    m_recordPage = NoPage;
    m_recordFrames.clear();
    m_records.clear();
    m_shown->openLog(m_history->currentPlan());
    m_turns.start();
    emit reading(0);
}

/// By the plan that has changed; what was looked at is shown again.
void LogDesk::decideAnew()
{
    if (!isOpen())
        return;
    QString error;
    std::unique_ptr<LogDay> day = LogDay::open(m_day->fileName(), m_history->plan(), &error);
    if (!day) {
        emit failed(error);
        return;
    }
    begin(std::move(day));
}

void LogDesk::readOn()
{
    QElapsedTimer watch;
    watch.start();
    while (m_day->read(EntriesAtOnce)) {
        if (watch.elapsed() >= TurnMs)
            break;
    }
    const bool isRead = m_day->isRead();
    if (isRead)
        m_turns.stop();
    const qint64 shown = m_playhead.number();
    if (shown == 0 && (isRead || m_day->count() >= m_wanted))
        m_playhead.showFrame(m_wanted);
    else if (shown > 0 && isRead)
        show(shown); // with what was not there when it was first shown
    const int percent = isRead ? 100 : std::min(99, m_day->percentRead());
    emit reading(percent);
}

void LogDesk::show(qint64 number)
{
    m_wanted = number;
    if (!m_day->isRead())
        m_recordPage = NoPage;
    QString error;
    const std::optional<SeenFrame> frame = m_day->frame(number, &error);
    if (!frame || !takeRecords(number, &error)) {
        m_playhead.setPlaying(false);
        emit failed(error);
        return;
    }
    m_player->showPast(m_day->playing(number));
    m_shown->showLogged(*frame);
    emit frameShown(*frame);
}

/// Those of the frame's page and of the ones beside it.
bool LogDesk::takeRecords(qint64 number, QString *error)
{
    const qint64 page = (number - 1) / LogDay::FramesOfPage;
    if (page == m_recordPage)
        return true;
    QVector<LogRecord> records;
    for (qint64 beside = page - 1; beside <= page + 1; ++beside) {
        const qint64 first = beside * LogDay::FramesOfPage + 1;
        if (first < 1 || first > m_day->count())
            continue;
        const std::shared_ptr<const LogPage> read = m_day->page(first, error);
        if (!read)
            return false;
        records += read->records;
    }
    const int before = static_cast<int>(std::distance(records.cbegin(),
        std::upper_bound(records.cbegin(), records.cend(), number,
            [](qint64 wanted, const LogRecord &record) { return wanted < record.frame; })));
    const int surplus = records.size() - EventLog::Limit;
    if (surplus > 0)
        records = records.mid(qBound(0, before - EventLog::Limit / 2, surplus), EventLog::Limit);
    m_recordPage = surplus > 0 ? NoPage : page; // of fewer they are taken for each frame
    m_records.clear();
    m_recordFrames.clear();
    for (const LogRecord &record : qAsConst(records)) {
        m_records.append(eventOf(record.entry, m_history->plan()));
        m_recordFrames.append(record.frame);
    }
    return true;
}

int LogDesk::currentRow() const
{
    const auto behind
        = std::upper_bound(m_recordFrames.cbegin(), m_recordFrames.cend(), m_playhead.number());
    return static_cast<int>(std::distance(m_recordFrames.cbegin(), behind)) - 1;
}

void LogDesk::showFrameOfRow(int row)
{
    if (row >= 0 && row < m_recordFrames.size())
        m_playhead.showFrame(m_recordFrames.at(row));
}

void LogDesk::showMoment(const QDateTime &moment)
{
    if (isOpen())
        m_playhead.showFrame(m_day->frameAtMoment(moment));
}

} // namespace Player
