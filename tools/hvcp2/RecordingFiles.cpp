#include "tools/hvcp2/RecordingFiles.h"

#include "demo/simulator/RecordingReader.h"
#include "tools/analysis/RecordingTimes.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QVector>

namespace Hvcp2 {

namespace {

bool endsWithinLine(QFile &file)
{
    const qint64 size = file.size();
    char last = '\n';
    return size > 0 && file.seek(size - 1) && file.getChar(&last) && last != '\n';
}

/// Where frames begin in @p bytes.
QVector<int> findFrames(const QByteArray &bytes, bool isLineStart)
{
    QVector<int> frames;
    int line = isLineStart ? 0 : bytes.indexOf('\n') + 1;
    if (line == 0 && !isLineStart)
        return frames;
    while (line < bytes.size()) {
        const int next = bytes.indexOf('\n', line) + 1; // 0: there is none
        const int end = next > 0 ? next : bytes.size();
        if (Simulation::RecordingReader::isFaceCount(bytes.mid(line, end - line).trimmed()))
            frames.append(line);
        line = end;
    }
    return frames;
}

} // namespace

RecordingFiles::RecordingFiles(const QString &directory, const Limits &limits)
    : m_directory(directory)
    , m_limits(limits)
{ }

bool RecordingFiles::open()
{
    if (!QDir().mkpath(m_directory))
        return fail(m_directory, QStringLiteral("cannot be made"));
    m_lock
        = std::make_unique<QLockFile>(QDir(m_directory).filePath(QStringLiteral("recording.lock")));
    m_lock->setStaleLockTime(0); // the lock of a living process is never stale
    if (m_lock->tryLock(0))
        return true;
    return fail(m_directory,
        m_lock->error() == QLockFile::LockFailedError
            ? QStringLiteral("another program records there")
            : QStringLiteral("cannot be written"));
}

bool RecordingFiles::write(const QByteArray &bytes, qint64 timeMs)
{
    if (!m_failure.isEmpty() || (!m_file.isOpen() && !continueFile(timeMs)))
        return false;
    const int end = endOfFile(bytes);
    if (end < 0)
        return append(bytes, timeMs);
    return append(bytes.left(end), timeMs) && beginFile(timeMs) && append(bytes.mid(end), timeMs);
}

void RecordingFiles::close()
{
    m_file.close();
    m_times.close();
    m_lock.reset();
}

/// How many of @p bytes still belong to the present file; -1: all.
int RecordingFiles::endOfFile(const QByteArray &bytes) const
{
    if (m_size < m_limits.fileBytes)
        return -1;
    const QVector<int> frames = findFrames(bytes, m_isLineStart);
    if (!frames.isEmpty())
        return frames.first();
    return m_size >= m_limits.fileBytes + MaxFrameBytes ? 0 : -1;
}

bool RecordingFiles::append(const QByteArray &bytes, qint64 timeMs)
{
    if (bytes.isEmpty())
        return true;
    const QByteArray time = Analysis::recordedTime(m_size, timeMs);
    if (m_times.write(time) != time.size())
        return fail(m_times.fileName(), m_times.errorString());
    const qint64 written = m_file.write(bytes);
    if (written != bytes.size()) {
        const QString reason = m_file.errorString();
        // A number that is cut is another number: the last whole frame is the end.
        const QByteArray kept = bytes.left(static_cast<int>(qMax<qint64>(0, written)));
        const QVector<int> frames = findFrames(kept, m_isLineStart);
        m_file.resize(m_size + (frames.isEmpty() ? 0 : frames.last()));
        return fail(m_file.fileName(), reason);
    }
    m_size += bytes.size();
    m_isLineStart = bytes.endsWith('\n');
    return true;
}

bool RecordingFiles::beginFile(qint64 timeMs)
{
    const QStringList files = Analysis::recordingsIn(m_directory);
    for (int i = 0; i + m_limits.files <= files.size(); ++i) {
        QFile::remove(files.at(i));
        QFile::remove(Analysis::timesFileName(files.at(i)));
    }
    // Behind the one before, also when that is of the same moment or the clock was set back.
    const qint64 lastMs = files.isEmpty() ? -1 : Analysis::recordingTime(files.last()).value_or(-1);
    const QString name = Analysis::recordingFileName(qMax(timeMs, lastMs + 1));
    return openFiles(QDir(m_directory).filePath(name), QIODevice::WriteOnly | QIODevice::NewOnly);
}

/// Goes on in the newest file; a new one is begun where there is none to go on in.
bool RecordingFiles::continueFile(qint64 timeMs)
{
    const QStringList files = Analysis::recordingsIn(m_directory);
    if (files.isEmpty() || QFileInfo(files.last()).size() >= m_limits.fileBytes)
        return beginFile(timeMs);
    if (!openFiles(files.last(), QIODevice::ReadWrite))
        return false;
    const bool isCut = endsWithinLine(m_file);
    m_file.seek(m_size);
    return !isCut || append("\n", timeMs);
}

bool RecordingFiles::openFiles(const QString &fileName, QIODevice::OpenMode mode)
{
    m_file.close();
    m_file.setFileName(fileName);
    m_times.close();
    m_times.setFileName(Analysis::timesFileName(fileName));
    if (!m_file.open(mode | QIODevice::Unbuffered))
        return fail(m_file.fileName(), m_file.errorString());
    if (!m_times.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        return fail(m_times.fileName(), m_times.errorString());
    m_size = m_file.size();
    m_isLineStart = true;
    return true;
}

bool RecordingFiles::fail(const QString &fileName, const QString &reason)
{
    m_failure = QStringLiteral("%1: %2").arg(fileName, reason);
    m_file.close();
    m_times.close();
    QFile note(QDir(m_directory).filePath(QStringLiteral("recording-ended.txt")));
    if (note.open(QIODevice::WriteOnly | QIODevice::Text)) {
        note.write(QStringLiteral("%1 %2\n")
                       .arg(QDateTime::currentDateTime().toString(Qt::ISODate), m_failure)
                       .toUtf8());
    }
    return false;
}

} // namespace Hvcp2
