#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QTime>

#include <deque>

namespace Player {

/// Something that happened, as one line tells it.
struct PlayerEvent
{
    enum Kind {
        Player, ///< the player itself did something
        Status, ///< the plug-in's status code changed
        Switch, ///< contentStarted: the stage is to switch
        Play, ///< the player switches by itself, or later than it was told to
        Signal, ///< any other signal of the plug-in but its log and edit messages
        Edit, ///< the stage was changed in a dialog of the plug-in
        Log ///< throwLogMessage
    };

    Kind kind = Player;
    QString signal; ///< name of the plug-in's signal; empty for kinds Player, Status, Play and Edit
    QString details;
    QTime time = QTime::currentTime();

    /// For example "12:00:01.250  switch  #3  Women 20-39"; without a line break.
    QString line() const;
};

/// The latest events, oldest first, in the columns of Column.
class EventLog : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { TimeColumn, NameColumn, DetailsColumn, ColumnCount };
    static constexpr int Limit = 1000; ///< events kept; older ones are dropped
    static constexpr int MaxDetails = 4000; ///< characters kept of an event's details

    explicit EventLog(QObject *parent = nullptr);

    void append(const PlayerEvent &event);
    void clear();
    const PlayerEvent &at(int row) const { return m_events.at(static_cast<size_t>(row)); }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

signals:
    void appended(const Player::PlayerEvent &event);

private:
    std::deque<PlayerEvent> m_events;
};

} // namespace Player
