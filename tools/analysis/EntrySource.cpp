#include "tools/analysis/EntrySource.h"

#include "demo/support/UserFile.h"
#include "log/LogFormat.h"
#include "tools/analysis/LogReader.h"
#include "tools/analysis/RecordedFrames.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <numeric>
#include <utility>

namespace Analysis {

namespace LogFormat = PluginKrHvcP2::LogFormat;

namespace {

const QString PluginName = QStringLiteral("KrHvcP2"); // of its log directory, too
const QString BaseName = QStringLiteral("KrHvcP2Log");
const QString Extension = QStringLiteral("txt");
const QString StandardInput = QStringLiteral("-");
constexpr int StandardInputNumber = 0;
constexpr int PeekedBytes = 16384; // more than the records of a frame

bool isLogFileName(const QString &name)
{
    const QDate date
        = QDate::fromString(name.mid(BaseName.size() + 1, 8), QStringLiteral("yyyyMMdd"));
    return date.isValid() && name == LogFormat::logFileName(BaseName, date, Extension);
}

/// By date. Pipes and devices are not among them.
QStringList logFiles(const QString &path)
{
    const QDir directory(path);
    QStringList files;
    const QStringList names = directory.entryList(QDir::Files);
    for (const QString &name : names) {
        if (isLogFileName(name))
            files.append(directory.filePath(name));
    }
    std::sort(files.begin(), files.end());
    return files;
}

QStringList filesIn(const QString &path)
{
    QStringList files = logFiles(path);
    if (files.isEmpty())
        files = logFiles(QDir(path).filePath(PluginName));
    if (files.isEmpty())
        files = recordingsIn(path);
    return files;
}

std::unique_ptr<EntryReader> makeReader(QFile *file, const Position &start)
{
    const QByteArray bytes = file->peek(PeekedBytes);
    const bool isLog = isLogFileName(QFileInfo(start.file).fileName()) || LogReader::isLog(bytes);
    // What is neither is one stretch of foreign text to the reader of logs.
    if (!isLog && RecordedFrames::isRecording(bytes))
        return std::make_unique<RecordedFrames>(file, start);
    return std::make_unique<LogReader>(file, start);
}

} // namespace

std::unique_ptr<EntrySource> EntrySource::open(const QStringList &paths, QString *error)
{
    QStringList files;
    for (const QString &path : paths) {
        QStringList found{path};
        QString reason;
        if (QFileInfo(path).isDir()) {
            found = filesIn(path);
            if (found.isEmpty())
                reason = tr("holds neither log files of the plug-in nor recordings");
        } else if (path != StandardInput) {
            reason = Demo::UserFile::objection(path);
        }
        if (!reason.isEmpty()) {
            *error = QStringLiteral("%1: %2").arg(path, reason);
            return nullptr;
        }
        files += found;
    }
    return std::unique_ptr<EntrySource>(new EntrySource(files));
}

EntrySource::EntrySource(const QStringList &files)
    : m_files(files)
{ }

EntrySource::~EntrySource() = default;

std::optional<Entry> EntrySource::next()
{
    for (;;) {
        if (m_reader) {
            if (std::optional<Entry> entry = m_reader->next())
                return entry;
            if (std::optional<Entry> failure = closeFile())
                return failure;
        }
        if (m_nextFile == m_files.size())
            return std::nullopt;
        if (std::optional<Entry> failure = openNextFile())
            return failure;
    }
}

void EntrySource::resume(const QVector<Position> &positions)
{
    m_positions = positions;
}

QVector<Position> EntrySource::positions() const
{
    QVector<Position> positions;
    for (const Position &position : m_positions) {
        if (m_files.contains(position.file))
            positions.append(m_reader && position.file == m_reader->position().file
                    ? m_reader->position()
                    : position);
    }
    return positions;
}

qint64 EntrySource::totalBytes() const
{
    return std::accumulate(m_files.cbegin(), m_files.cend(), Q_INT64_C(0),
        [](qint64 sum, const QString &file) { return sum + QFileInfo(file).size(); });
}

qint64 EntrySource::readBytes() const
{
    return m_passedBytes + (m_reader ? m_reader->position().offset : 0);
}

/// Sets the reader, or returns why there is none.
std::optional<Entry> EntrySource::openNextFile()
{
    Position &position = filePosition(m_files.at(m_nextFile++));
    auto file = std::make_unique<QFile>(position.file);
    const bool isFile = position.file != StandardInput;
    const QString objection = isFile ? Demo::UserFile::objection(position.file) : QString();
    if (!objection.isEmpty())
        return problem(position, objection);
    const bool isOpen = isFile ? file->open(QIODevice::ReadOnly)
                               : file->open(StandardInputNumber, QIODevice::ReadOnly);
    if (!isOpen)
        return problem(position, tr("cannot be read: %1").arg(file->errorString()));
    if (!isFile || position.offset > file->size() || !file->seek(position.offset))
        position = {position.file, 1, 0};
    m_file = std::move(file);
    m_reader = makeReader(m_file.get(), position);
    return std::nullopt;
}

/// An entry when the file was not read to its end.
std::optional<Entry> EntrySource::closeFile()
{
    const Position end = m_reader->position();
    const bool hasFailed = m_file->error() != QFileDevice::NoError;
    const QString reason = m_file->errorString();
    filePosition(end.file) = end;
    m_passedBytes += end.offset;
    m_reader.reset();
    m_file.reset();
    if (!hasFailed)
        return std::nullopt;
    return problem(end, tr("cannot be read any further: %1").arg(reason));
}

Position &EntrySource::filePosition(const QString &file)
{
    const auto found = std::find_if(m_positions.begin(), m_positions.end(),
        [&](const Position &position) { return position.file == file; });
    if (found != m_positions.end())
        return *found;
    m_positions.append({file, 1, 0});
    return m_positions.last();
}

Entry EntrySource::problem(const Position &position, const QString &reason)
{
    Entry entry;
    entry.position = position;
    entry.text = reason;
    return entry;
}

} // namespace Analysis
