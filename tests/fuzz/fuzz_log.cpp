// Any bytes as a log file or a recording: the same entries come however the bytes arrive and
// wherever a later reader goes on, in order and with their lines; what the plug-in wrote is read
// in the midst of foreign text.

#include "tests/fuzz/Finding.h"
#include "tests/fuzz/Target.h"

#include "detection/SensorOutputParser.h"
#include "log/LogFormat.h"
#include "tools/analysis/LogMessage.h"
#include "tools/analysis/LogReader.h"
#include "tools/analysis/RecordedFrames.h"

#include <QBuffer>
#include <QDebug>
#include <QVector>

#include <algorithm>
#include <ctime>
#include <iterator>
#include <memory>

using namespace Analysis;

namespace Analysis {

static bool operator==(const Entry &a, const Entry &b)
{
    return a.kind == b.kind && a.position.line == b.position.line
        && a.position.offset == b.position.offset && a.time == b.time && a.text == b.text
        && a.numbers == b.numbers && a.number == b.number && a.limitMs == b.limitMs;
}

static QDebug operator<<(QDebug debug, const Entry &entry)
{
    return debug << entry.kind << entry.position.line << entry.position.offset << entry.time
                 << entry.text << entry.numbers << entry.number << entry.limitMs;
}

} // namespace Analysis

namespace {

constexpr int MaxSeconds = 2; // of the processor's time
const QString File = QStringLiteral("f");
const QDateTime Time(QDate(2018, 2, 1), QTime(9, 30));

/// Gives a few bytes at a time, as a pipe may.
class Trickle : public QBuffer
{
public:
    explicit Trickle(int bytes)
        : m_bytes(bytes)
    { }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        return QBuffer::readData(data, qMin<qint64>(size, m_bytes));
    }

private:
    int m_bytes;
};

struct Reading
{
    QVector<Entry> entries;
    QVector<Position> positions; // behind each of them
};

using MakeReader = std::unique_ptr<EntryReader> (*)(QIODevice *, const Position &);

template <typename Reader>
std::unique_ptr<EntryReader> make(QIODevice *device, const Position &start)
{
    return std::make_unique<Reader>(device, start);
}

Reading readAll(MakeReader makeReader, QBuffer &device, const QByteArray &bytes,
    const Position &start = {File, 1, 0})
{
    device.setData(bytes);
    device.open(QIODevice::ReadOnly);
    device.seek(start.offset);
    const std::unique_ptr<EntryReader> reader = makeReader(&device, start);
    Reading reading;
    const std::clock_t begin = std::clock();
    while (const std::optional<Entry> entry = reader->next()) {
        reading.entries.append(*entry);
        reading.positions.append(reader->position());
    }
    Fuzz::expect(std::clock() - begin < MaxSeconds * CLOCKS_PER_SEC, "reading takes too long");
    return reading;
}

void checkOrder(const Reading &reading, const QByteArray &bytes)
{
    qint64 last = -1;
    for (const Entry &entry : reading.entries) {
        const qint64 offset = entry.position.offset;
        Fuzz::expect(offset >= last && offset <= bytes.size(), "entries out of order");
        last = offset;
        Fuzz::expectSame(entry.position.line, qint64(1) + bytes.left(int(offset)).count('\n'),
            "line of an entry");
    }
}

/// A reader that begins where another one stood gives the entries behind that place, but of foreign
/// text at the end its last line, which may become a record.
void checkResumption(MakeReader makeReader, const Reading &whole, const QByteArray &bytes)
{
    const int count = whole.entries.size();
    for (int i = 0; i < qMin(count, 8); ++i) {
        const Position &position = whole.positions.at((i * 5) % count);
        QBuffer buffer;
        QVector<Entry> rest = readAll(makeReader, buffer, bytes, position).entries;
        QVector<Entry> expected;
        std::copy_if(whole.entries.cbegin(), whole.entries.cend(), std::back_inserter(expected),
            [&](const Entry &entry) { return entry.position.offset >= position.offset; });
        if (expected.isEmpty() && rest.size() == 1 && rest.first().kind == Entry::Unknown)
            rest.clear();
        Fuzz::expectSame(rest, expected, "entries behind a place");
    }
}

bool isAllKnown(const Reading &reading)
{
    return std::none_of(reading.entries.cbegin(), reading.entries.cend(),
        [](const Entry &entry) { return entry.kind == Entry::Unknown; });
}

void checkReader(MakeReader makeReader, const QByteArray &bytes)
{
    QBuffer buffer;
    const Reading whole = readAll(makeReader, buffer, bytes);
    checkOrder(whole, bytes);
    for (const int size : {1, 7, 4096}) {
        Trickle trickle(size);
        Fuzz::expectSame(
            readAll(makeReader, trickle, bytes).entries, whole.entries, "entries in pieces");
    }
    // What is wrong with a time depends on those before it.
    if (makeReader == make<LogReader> || isAllKnown(whole))
        checkResumption(makeReader, whole, bytes);
    for (const Entry &entry : whole.entries) {
        if (entry.kind == Entry::Frame)
            PluginKrHvcP2::SensorOutputParser::parse(entry.text, Time);
    }
}

/// @p text as a record between two lines of foreign text.
void checkRecord(const QString &text)
{
    // Markers and frames in a record's text may be taken for what they are not.
    for (const char *const special : {"%", ">>", "<<", "\r"}) {
        if (text.contains(QLatin1String(special)))
            return;
    }
    const QString level = QStringLiteral("Information");
    const QByteArray record = PluginKrHvcP2::LogFormat::record(1, Time, level, text).toUtf8();
    QBuffer buffer;
    const Reading reading = readAll(make<LogReader>, buffer, "foreign\n" + record + "foreign\n");
    Fuzz::expectSame(reading.entries.size(), 3, "entries around a record");

    Entry expected;
    const QByteArray message = text.trimmed().toUtf8();
    readLogMessage(
        level.toUtf8(), QString::fromUtf8(message.constData(), message.size()), &expected);
    const Entry &entry = reading.entries.at(1);
    Fuzz::expectSame(int(entry.kind), int(expected.kind), "kind of a record");
    Fuzz::expectSame(entry.text, expected.text, "text of a record");
    Fuzz::expectSame(entry.numbers, expected.numbers, "numbers of a record");
    Fuzz::expectSame(entry.time.toMSecsSinceEpoch(), Time.toMSecsSinceEpoch(), "time of a record");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<int>(size));
    checkReader(make<LogReader>, bytes);
    checkReader(make<RecordedFrames>, bytes);
    checkRecord(QString::fromUtf8(bytes.constData(), bytes.size())); // with NULs
    return 0;
}
