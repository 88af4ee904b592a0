#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace Analysis {

/// "HvcCon_20180201_093000_250.out", for a recording of the sensor program that began at @p timeMs
/// since 1970 in UTC: by name, recordings are in their order.
QString recordingFileName(qint64 timeMs);
/// The inverse; nothing when @p fileName, which may have a path, is no such name.
std::optional<qint64> recordingTime(const QString &fileName);
QStringList recordingsIn(const QString &directory); ///< such files, the oldest first; whole paths

/// The file beside a recording that says when each piece of it arrived.
QString timesFileName(const QString &recording);

/// Its line for a piece: @p offset bytes of the recording lie before it; @p timeMs are milliseconds
/// since 1970 in UTC.
QByteArray recordedTime(qint64 offset, qint64 timeMs);

/// Reads the times of a recording's pieces, one line at a time.
class RecordingTimes
{
public:
    /// Without a file of that name nothing has a time.
    explicit RecordingTimes(const QString &fileName);

    /// When the byte behind the first @p offset ones arrived; nothing when no line tells. Offsets
    /// must not go back.
    std::optional<qint64> timeAt(qint64 offset);

    /// The number of the first line that was left out since the last call; 0: none was.
    qint64 takeUnreadableLine() { return std::exchange(m_unreadableLine, 0); }

private:
    struct Piece
    {
        qint64 offset = 0;
        qint64 timeMs = 0;
    };

    void readNext();

    QFile m_file;
    std::optional<Piece> m_piece; // the last one that began at or before the offset asked for
    std::optional<Piece> m_next;
    qint64 m_line = 0;
    qint64 m_unreadableLine = 0;
};

} // namespace Analysis
