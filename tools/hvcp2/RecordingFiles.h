#pragma once

#include <QByteArray>
#include <QFile>
#include <QLockFile>
#include <QString>

#include <memory>

namespace Hvcp2 {

/// A directory of recordings, one after another, each with a file beside it that holds the times.
/// The newest is continued until it is large enough; the oldest go. Together they hold what was
/// written, byte by byte; only what a program left in the middle of a line gets a line end before
/// the next program's output.
///
/// The first failure ends the recording: the file ends with the last frame that could be written,
/// and "recording-ended.txt" beside it says why, if the disk still takes it.
class RecordingFiles
{
public:
    struct Limits
    {
        qint64 fileBytes = Q_INT64_C(64) * 1024 * 1024; ///< the next frame begins a new file
        int files = 8;
    };

    static constexpr qint64 MaxFrameBytes
        = Q_INT64_C(1024) * 1024; ///< of one that goes on into a new file

    RecordingFiles(const QString &directory, const Limits &limits);

    bool open(); ///< makes the directory. False when that fails, or somebody else writes there
    /// Goes on behind what was written before with @p bytes, which arrived at @p timeMs since 1970.
    /// False after a failure: nothing is written any more.
    bool write(const QByteArray &bytes, qint64 timeMs);

    void close(); ///< lets others write there

    QString failure() const { return m_failure; } ///< "file: reason"; empty while there is none

private:
    int endOfFile(const QByteArray &bytes) const;
    bool append(const QByteArray &bytes, qint64 timeMs);
    bool beginFile(qint64 timeMs);
    bool continueFile(qint64 timeMs);
    bool openFiles(const QString &fileName, QIODevice::OpenMode mode);
    bool fail(const QString &fileName, const QString &reason);

    const QString m_directory;
    const Limits m_limits;
    std::unique_ptr<QLockFile> m_lock;
    QFile m_file; // not open before the first bytes and after a failure
    QFile m_times; // likewise
    qint64 m_size = 0; // of m_file
    bool m_isLineStart = true; // behind m_file's last byte
    QString m_failure;
};

} // namespace Hvcp2
