#pragma once

#include "tools/analysis/EntryReader.h"
#include "tools/analysis/LocalTimes.h"
#include "tools/analysis/SlidingBuffer.h"

#include <QByteArray>
#include <QCoreApplication>

#include <cstddef>

class QIODevice;

namespace Analysis {

/// Reads the records of a log file of the plug-in.
///
/// A record ends at its end line; a line in its text that looks like the header of another one is
/// text. Only where that cannot be, because a frame's text has no such line or a sentence of the
/// plug-in's own would go on, the record was cut and the other one is read.
///
/// Whatever else is in the file becomes one Unknown entry for each stretch of it, named by its
/// first line. Needs 1.5 MiB, whatever the file holds.
class LogReader : public EntryReader
{
    Q_DECLARE_TR_FUNCTIONS(LogReader)

public:
    /// The plug-in's own records have 6 KiB for the sensor's 35 faces.
    static constexpr int MaxTextBytes = 1024 * 1024;

    /// The next byte of @p device, which has to outlive this, is the one at @p start.
    LogReader(QIODevice *device, const Position &start);

    std::optional<Entry> next() override;
    /// Behind the last entry; before it when the file ended within it.
    Position position() const override { return m_position; }

    /// Whether there is a record's header in @p bytes, the beginning of a file.
    static bool isLog(const QByteArray &bytes);

    /// ">> 2018-02-01 09:30:00 [Notice]=========" with its line break.
    struct Header
    {
        QDate date;
        QTime time;
        int levelSize = 0; // bytes of the name between the brackets
        int size = 0; // bytes; 0: no header

        explicit operator bool() const { return size > 0; }
    };

private:
    void skipByteOrderMark();
    void skipBlankLines();
    Entry readRecord(const Header &header);
    Entry readForeignText(const QString &reason);
    Entry cutRecord(const Header &header);
    Entry newEntry(const Header &header);
    Entry readText(const Header &header, const char *begin, const char *end);
    void pass(std::ptrdiff_t count);

    SlidingBuffer m_buffer;
    Position m_position;
    LocalTimes m_times;
};

} // namespace Analysis
