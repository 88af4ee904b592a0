#pragma once

#include "tools/analysis/Entry.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>
#include <QVector>

#include <memory>
#include <optional>

namespace Analysis {

class EntryReader;

/// What logs and recordings tell, one entry after another, in constant memory.
class EntrySource
{
    Q_DECLARE_TR_FUNCTIONS(EntrySource)

public:
    /// Each of @p paths is
    /// - a directory of the plug-in's log files, or the log directory of the host that it is in, or
    ///   one of recordings: its files by date;
    /// - a log file or a recording; by its name ("..._yyyyMMdd.txt" of the plug-in), else its first
    ///   bytes;
    /// - "-": standard input, either of them. A live one is read in blocks, so that entries come
    ///   late.
    ///
    /// Nothing, and "path: reason" in @p error, when there is nothing to read in one of them. A
    /// file that cannot be read any more later is an Unknown entry.
    static std::unique_ptr<EntrySource> open(const QStringList &paths, QString *error);
    ~EntrySource();

    std::optional<Entry> next(); ///< nothing at the end

    /// Leaves out what lies before @p positions, of one file each; for before the first next(). A
    /// file that has become shorter is read from its start.
    void resume(const QVector<Position> &positions);
    /// Where a later source goes on in each of the files that were read so far. What had no end yet
    /// comes again, with the same position.
    QVector<Position> positions() const;

    QStringList files() const { return m_files; } ///< in the order of reading
    qint64 totalBytes() const; ///< of all files; standard input counts as 0
    qint64 readBytes() const; ///< as many of them have been passed; never more than a window late

private:
    explicit EntrySource(const QStringList &files);
    Q_DISABLE_COPY(EntrySource)

    std::optional<Entry> openNextFile();
    std::optional<Entry> closeFile();
    Position &filePosition(const QString &file);
    static Entry problem(const Position &position, const QString &reason);

    QStringList m_files;
    QVector<Position> m_positions; // where to go on; of the files that were read, of others may be
    int m_nextFile = 0;
    qint64 m_passedBytes = 0; // of files that have been read
    std::unique_ptr<QFile> m_file; // null between two files
    std::unique_ptr<EntryReader> m_reader;
};

} // namespace Analysis
