#include "demo/player/EventLog.h"

#include "demo/player/ShownText.h"
#include "demo/stage/StageText.h"

#include <QColor>

namespace Player {

namespace {

QString kindName(PlayerEvent::Kind kind)
{
    switch (kind) {
    case PlayerEvent::Player:
        return QStringLiteral("player");
    case PlayerEvent::Status:
        return QStringLiteral("status");
    case PlayerEvent::Switch:
        return QStringLiteral("switch");
    case PlayerEvent::Play:
        return QStringLiteral("play");
    case PlayerEvent::Signal:
        return QStringLiteral("signal");
    case PlayerEvent::Edit:
        return QStringLiteral("edit");
    case PlayerEvent::Log:
        break;
    }
    return QStringLiteral("log");
}

QColor kindColor(PlayerEvent::Kind kind)
{
    switch (kind) {
    case PlayerEvent::Player:
        return {0x9a, 0xa5, 0xb1};
    case PlayerEvent::Status:
        return {0x7f, 0xc8, 0xf8};
    case PlayerEvent::Switch:
        return {0xff, 0xc8, 0x57};
    case PlayerEvent::Play:
        return {0xff, 0x9d, 0x6b};
    case PlayerEvent::Signal:
        return {0x9b, 0xe1, 0x9d};
    case PlayerEvent::Edit:
        return {0xc3, 0xb1, 0xff};
    case PlayerEvent::Log:
        break;
    }
    return {0xe6, 0x9a, 0xc8};
}

QString timeText(const QTime &time)
{
    return time.toString(QStringLiteral("HH:mm:ss.zzz"));
}

} // namespace

QString PlayerEvent::line() const
{
    QString text = timeText(time) + QLatin1String("  ") + kindName(kind).leftJustified(6)
        + QLatin1String("  ");
    if (kind == Signal)
        text += signal + QLatin1String("  ");
    return text + oneLine(details);
}

EventLog::EventLog(QObject *parent)
    : QAbstractTableModel(parent)
{ }

void EventLog::append(const PlayerEvent &event)
{
    PlayerEvent kept = event;
    kept.details = Stage::shortened(event.details, MaxDetails);
    if (m_events.size() >= Limit) {
        beginRemoveRows(QModelIndex(), 0, 0);
        m_events.pop_front();
        endRemoveRows();
    }
    const int row = rowCount();
    beginInsertRows(QModelIndex(), row, row);
    m_events.push_back(kept);
    endInsertRows();
    emit appended(kept);
}

void EventLog::clear()
{
    beginResetModel();
    m_events.clear();
    endResetModel();
}

int EventLog::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_events.size());
}

int EventLog::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant EventLog::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const PlayerEvent &event = at(index.row());
    if (role == Qt::ForegroundRole && index.column() == NameColumn)
        return kindColor(event.kind);
    if (role == Qt::ForegroundRole && index.column() == TimeColumn)
        return kindColor(PlayerEvent::Player);
    if (role == Qt::ToolTipRole)
        return plainToolTip(event.details);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case TimeColumn:
        return timeText(event.time);
    case NameColumn:
        return event.signal.isEmpty() ? kindName(event.kind) : event.signal;
    default:
        return oneLine(event.details);
    }
}

QVariant EventLog::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case TimeColumn:
        return tr("Time");
    case NameColumn:
        return tr("Event");
    default:
        return tr("Details");
    }
}

} // namespace Player
