#include "log/LogFormat.h"
#include "tools/analysis/LogReader.h"

#include <QBuffer>
#include <QtTest>

#include <algorithm>
#include <cstring>
#include <random>
#include <utility>

using namespace Analysis;
using namespace PluginKrHvcP2;

namespace {

const QDateTime Time(QDate(2018, 2, 1), QTime(9, 30));
const QString Sentence = QStringLiteral("HvcCon process started.");
const QString Frame = QStringLiteral("Face result count:1\n\nIndex:0\nX:1\nAge\nAge:7\nGender\nb");
const QByteArray FrameLines("Frame Face result count:1|Index:0/X:1|Age/Age:7|Gender/b");
const QByteArray Header(">> 2018-02-01 09:30:00 [Notice]=========\n");
const QByteArray EndLine("===================================== <<\n");

QByteArray record(const QString &message, const QString &level = QStringLiteral("Notice"))
{
    return LogFormat::record(1, Time, level, message).toUtf8();
}

QByteArray toCrLf(QByteArray text)
{
    return text.replace('\n', "\r\n");
}

/// A pipe that hands out a few bytes at a time.
class Trickle : public QIODevice
{
public:
    Trickle(QByteArray bytes, int portion)
        : m_bytes(std::move(bytes))
        , m_portion(portion)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const qint64 size
            = std::min({maxSize, qint64{m_portion}, qint64{m_bytes.size() - m_position}});
        std::memcpy(data, m_bytes.constData() + m_position, static_cast<std::size_t>(size));
        m_position += static_cast<int>(size);
        return size;
    }
    qint64 writeData(const char * /*data*/, qint64 /*size*/) override { return -1; }

private:
    const QByteArray m_bytes;
    const int m_portion;
    int m_position = 0;
};

/// "3: Frame text", with '|' for line feeds and '/' for tabs.
QByteArray describe(const Entry &entry)
{
    static const char *const kinds[]
        = {"Unknown", "Frame", "Determined", "Restricted", "Started", "Stopped", "Error"};
    QByteArray text
        = QByteArray::number(entry.position.line) + ": " + kinds[static_cast<int>(entry.kind)];
    if (!entry.text.isEmpty())
        text += ' ' + entry.text.toUtf8().replace('\n', '|').replace('\t', '/');
    for (const int number : entry.numbers)
        text += " #" + QByteArray::number(number);
    return text;
}

QByteArrayList readAll(QIODevice *device, Position *end = nullptr)
{
    LogReader reader(device, {QStringLiteral("f"), 1, 0});
    QByteArrayList entries;
    while (const std::optional<Entry> entry = reader.next())
        entries << describe(*entry);
    if (end != nullptr)
        *end = reader.position();
    return entries;
}

QByteArrayList readAll(const QByteArray &bytes, Position *end = nullptr)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return readAll(&buffer, end);
}

} // namespace

class tst_LogReader : public QObject
{
    Q_OBJECT

private slots:
    void entries_data();
    void entries();
    void everyCut();
    void everyBitOfAHeader();
    void randomDamage();
    void resumed();
    void times_data();
    void times();
    void longTexts_data();
    void longTexts();
    void hugeFile_data();
    void hugeFile();
};

void tst_LogReader::entries_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArrayList>("expected");

    const QByteArray frame = record(Frame);
    const QByteArray start = record(Sentence);
    const auto at = [](int line, const QByteArray &text) -> QByteArray {
        return QByteArray::number(line) + ": " + text;
    };
    const QByteArray foreign = "Unknown this is no record of the plug-in";
    const QByteArray cut = "Unknown the record is cut";

    QTest::newRow("nothing") << QByteArray() << QByteArrayList();
    QTest::newRow("blank lines") << QByteArray("\n\r\n\n") << QByteArrayList();
    QTest::newRow("two records") << frame + start
                                 << QByteArrayList({at(1, FrameLines), "12: Started"});
    QTest::newRow("a record without a text")
        << record(QString()) + start << QByteArrayList({"1: Frame", "5: Started"});
    QTest::newRow("a level of a length of its own") << record(Sentence,
        QStringLiteral("Nachricht vom Monitor")) << QByteArrayList({"1: Started"});
    QTest::newRow("a level of other letters")
        << record(Sentence, QStringLiteral("\u901a\u77e5")) << QByteArrayList({"1: Started"});
    QTest::newRow("sequences") << record(QStringLiteral("The determined sequence number: #5 #6"))
                               << QByteArrayList({"1: Determined #5 #6"});
    QTest::newRow("line ends of another system")
        << toCrLf(frame + start) << QByteArrayList({at(1, FrameLines), "12: Started"});
    QTest::newRow("a byte order mark") << "\xef\xbb\xbf" + start << QByteArrayList({"1: Started"});
    QTest::newRow("no line end at the end")
        << start.left(start.size() - 2) << QByteArrayList({"1: Started"});
    QTest::newRow("end lines of another length")
        << record(QStringLiteral(
               "Face result count:0\n==== <<\n====================================== <<"))
        << QByteArrayList({"1: Frame Face result count:0|==== <<|"
                           "====================================== <<"});
    QTest::newRow("text before the first record")
        << "a\nb\n" + start << QByteArrayList({at(1, foreign), "3: Started"});
    QTest::newRow("text between two records") << start + "a\n\nb\n"
            + start << QByteArrayList({"1: Started", at(5, foreign), "8: Started"});
    QTest::newRow("text behind the last record")
        << start + "a" << QByteArrayList({"1: Started", at(5, foreign)});
    QTest::newRow("text in the line of a header")
        << "a" + start << QByteArrayList({at(1, foreign), "1: Started"});
    QTest::newRow("the rest of a record")
        << frame.mid(80) + start << QByteArrayList({at(1, foreign), "6: Started"});
    QTest::newRow("zeros, as a loss of power leaves them") << start + QByteArray(5000, '\0')
            + start << QByteArrayList({"1: Started", at(5, foreign), "5: Started"});
    QTest::newRow("records in one line each")
        << LogFormat::record(0, Time, QStringLiteral("Notice"), Sentence).toUtf8()
        << QByteArrayList({at(1, foreign)});
    QTest::newRow("a date that is none") << QByteArray(start).replace("2018-02-01", "2018-02-30")
                                         << QByteArrayList({at(1, foreign)});
    QTest::newRow("a time that is none")
        << QByteArray(start).replace("09:30", "24:30") << QByteArrayList({at(1, foreign)});
    QTest::newRow("a header without its bracket")
        << QByteArray(start).replace(']', '=') << QByteArrayList({at(1, foreign)});
    QTest::newRow("a header that is too short") << QByteArray(start).replace(
        "=========\n", "========\n") << QByteArrayList({at(1, foreign)});
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe>\0>\0 \0", 8)
                            << QByteArrayList({at(1, foreign)});

    QTest::newRow("bytes that are no text") << QByteArray(frame).replace("Index",
                                                   "Ind\xff"
                                                   "x")
            + start << QByteArrayList({"1: Unknown the record is no UTF-8 text", "12: Started"});
    QTest::newRow("a character that stands for such bytes")
        << record(QStringLiteral("Face result count:0\n\ufffd"))
        << QByteArrayList({"1: Frame Face result count:0|\xef\xbf\xbd"});
    QTest::newRow("zeros in a text") << Header + QByteArray("Face result count:0\na\0b\n", 24)
            + EndLine << QByteArrayList({QByteArray("1: Frame Face result count:0|a\0b", 32)});

    QTest::newRow("cut within a line")
        << frame.left(73) + start << QByteArrayList({at(1, cut), "5: Started"});
    QTest::newRow("cut behind a line")
        << frame.left(frame.indexOf("Age\n")) + start << QByteArrayList({at(1, cut), "6: Started"});
    QTest::newRow("cut before the text")
        << Header + start << QByteArrayList({at(1, cut), "2: Started"});
    QTest::newRow("cut in front of the end line") << frame.left(frame.indexOf("=== <<")) + start
                                                  << QByteArrayList({at(1, cut), "10: Started"});
    QTest::newRow("cut three times") << frame.left(73) + frame.left(95) + frame.left(110)
            + start << QByteArrayList({at(1, cut), at(5, cut), at(14, cut), "23: Started"});
    QTest::newRow("cut at the end of the file")
        << start + frame.left(73) << QByteArrayList({"1: Started", at(5, cut)});
    QTest::newRow("cut in a header at the end of the file")
        << start + Header.left(20) << QByteArrayList({"1: Started", at(5, foreign)});

    const QString header = QString::fromUtf8(Header);
    QTest::newRow("a header in the text of a table")
        << record(QStringLiteral("Face result count:1\n\n%1\n\nAge\nAge:7").arg(header.trimmed()))
            + start
        << QByteArrayList({at(1, "Frame Face result count:1|" + Header.trimmed() + "|Age/Age:7"),
               "10: Started"});
    QTest::newRow("a header in the text of a program")
        << record(QStringLiteral("Face result count:1\nIndex:0\tX:1\n%1<b>").arg(header)) + start
        << QByteArrayList(
               {at(1, "Frame Face result count:1|Index:0/X:1|" + Header.trimmed() + "|<b>"),
                   "8: Started"});
    QTest::newRow("a header at the end of a text")
        << record(QStringLiteral("Face result count:1\n") + header) + start
        << QByteArrayList({at(1, "Frame Face result count:1|" + Header.trimmed()), "6: Started"});
    QTest::newRow("something like a header in a text")
        << record(QStringLiteral("Face result count:1\n>> 2018-02-01 09:30:00 [x\n>> y")) + start
        << QByteArrayList(
               {at(1, "Frame Face result count:1|>> 2018-02-01 09:30:00 [x|>> y"), "7: Started"});

    // The end line went to where the marker was.
    QTest::newRow("a marker in a text")
        << record(QStringLiteral("Failed %1 a")) + start
        << QByteArrayList({at(1, "Frame Failed " + EndLine.trimmed() + " a"), "5: Started"});
    QTest::newRow("a marker in a text of another system")
        << toCrLf(record(QStringLiteral("Failed %2 a")) + start)
        << QByteArrayList({at(1, "Frame Failed " + EndLine.trimmed() + " a"), "5: Started"});
    QTest::newRow("a marker in the last text")
        << record(QStringLiteral("Failed %1 a"))
        << QByteArrayList({at(1, "Frame Failed " + EndLine.trimmed() + " a")});
}

void tst_LogReader::entries()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArrayList, expected);

    QCOMPARE(readAll(bytes), expected);
    for (const int portion : {1, 2, 3, 7, 39, 64}) {
        Trickle trickle(bytes, portion);
        QCOMPARE(readAll(&trickle), expected);
    }
}

/// Wherever a record is cut, those around it are read, and it does not become another one.
void tst_LogReader::everyCut()
{
    const QByteArray before = record(QStringLiteral("HvcCon process stopped."));
    const QByteArray whole = record(Frame);
    const QByteArray behind = record(QStringLiteral("The determined sequence number: #5"));
    for (int size = 0; size < whole.size(); ++size) {
        const QByteArrayList entries = readAll(before + whole.left(size) + behind);
        const QByteArray place = "cut at " + QByteArray::number(size);
        const bool hasEnd = size == whole.size() - 1; // only the blank line is missing
        QVERIFY2(entries.size() == (size == 0 ? 2 : 3), place);
        QVERIFY2(entries.first() == "1: Stopped", place);
        QVERIFY2(entries.last().endsWith("Determined #5"), place);
        if (size > 0)
            QVERIFY2(entries.at(1).startsWith("5: Frame") == hasEnd, place);
    }
}

void tst_LogReader::everyBitOfAHeader()
{
    const QByteArray behind = record(QStringLiteral("The determined sequence number: #5"));
    for (int i = 0; i < Header.size() * 8; ++i) {
        QByteArray damaged = record(Sentence);
        damaged[i / 8] = static_cast<char>(damaged.at(i / 8) ^ (1 << (i % 8)));
        const QByteArrayList entries = readAll(damaged + behind);
        QVERIFY2(entries.size() <= 2 && entries.last().endsWith("Determined #5"), damaged);
    }
}

/// Whatever is in a file: how it comes in does not matter, and from any entry on it reads the same.
void tst_LogReader::randomDamage()
{
    const QByteArrayList pieces{record(Frame), record(Sentence), record(QString()), Header, EndLine,
        record(QStringLiteral("Failed %1")), QByteArray(60, '\0'), "\n", "\r\n", "\t", "foreign",
        ">> ", "\n%3\n\n", toCrLf(record(Frame))};
    std::mt19937 random(1);
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<std::mt19937::result_type>(limit));
    };
    for (int file = 0; file < 300; ++file) {
        QByteArray bytes;
        for (int count = below(12); count > 0; --count) {
            const QByteArray &piece = pieces.at(below(pieces.size()));
            bytes += below(3) > 0 ? piece : piece.left(below(piece.size() + 1));
        }
        for (int count = bytes.isEmpty() ? 0 : below(4); count > 0; --count)
            bytes[below(bytes.size())] = static_cast<char>(below(256));

        const QByteArrayList expected = readAll(bytes);
        Trickle trickle(bytes, 1 + below(50));
        QCOMPARE(readAll(&trickle), expected);

        QBuffer buffer;
        buffer.setData(bytes);
        buffer.open(QIODevice::ReadOnly);
        LogReader reader(&buffer, {QStringLiteral("f"), 1, 0});
        for (int i = 0; i < expected.size(); ++i) {
            const std::optional<Entry> entry = reader.next();
            QVERIFY(entry);
            QBuffer rest;
            rest.setData(bytes);
            rest.open(QIODevice::ReadOnly);
            rest.seek(entry->position.offset);
            LogReader again(&rest, entry->position);
            const std::optional<Entry> same = again.next();
            QVERIFY(same);
            QCOMPARE(describe(*same), expected.at(i));
            QCOMPARE(again.position().offset, reader.position().offset);
        }
        QVERIFY(!reader.next());
    }
}

/// A file is read while the plug-in writes it: whatever is there, nothing is lost or comes twice.
void tst_LogReader::resumed()
{
    const QByteArray whole = "\xef\xbb\xbf" + record(Frame) + "foreign\n" + record(Sentence)
        + record(QStringLiteral("Failed %1")) + record(Frame);
    const QByteArrayList expected = readAll(whole);
    QCOMPARE(expected.size(), 5);
    for (int size = 0; size <= whole.size(); ++size) {
        QBuffer first;
        first.setData(whole.left(size));
        first.open(QIODevice::ReadOnly);
        LogReader reader(&first, {QStringLiteral("f"), 1, 0});
        QByteArrayList entries;
        while (const std::optional<Entry> entry = reader.next()) {
            const Position &end = reader.position();
            if (entry->position.offset < end.offset)
                entries << describe(*entry);
        }

        QBuffer second;
        second.setData(whole);
        second.open(QIODevice::ReadOnly);
        second.seek(reader.position().offset);
        LogReader next(&second, reader.position());
        while (const std::optional<Entry> entry = next.next())
            entries << describe(*entry);
        QVERIFY2(entries == expected, entries.join('\n'));
        QCOMPARE(next.position().offset, qint64{whole.size()});
        QCOMPARE(next.position().line, qint64{whole.count('\n') + 1});
    }
}

void tst_LogReader::times_data()
{
    QTest::addColumn<QDateTime>("time");

    QTest::newRow("the first second of a day") << QDateTime(QDate(2018, 2, 1), QTime(0, 0));
    QTest::newRow("the last one") << QDateTime(QDate(2018, 2, 1), QTime(23, 59, 59));
    QTest::newRow("a day in summer") << QDateTime(QDate(2018, 7, 1), QTime(12, 0, 1));
    QTest::newRow("before the clock is put forward")
        << QDateTime(QDate(2018, 3, 25), QTime(1, 59, 59));
    QTest::newRow("after it") << QDateTime(QDate(2018, 3, 25), QTime(3, 0));
    QTest::newRow("after the clock was put back") << QDateTime(QDate(2018, 10, 28), QTime(3, 0));
}

void tst_LogReader::times()
{
    QFETCH(QDateTime, time);

    const QByteArray text = LogFormat::record(1, time, QStringLiteral("Notice"), Sentence).toUtf8();
    QBuffer buffer;
    buffer.setData(text + text);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    LogReader reader(&buffer, {QStringLiteral("f"), 1, 0});
    for (int i = 0; i < 2; ++i) {
        const std::optional<Entry> entry = reader.next();
        QVERIFY(entry);
        QCOMPARE(entry->time, time);
        QCOMPARE(entry->time.time(), time.time());
        QCOMPARE(entry->timeToleranceMs, 999);
    }
}

void tst_LogReader::longTexts_data()
{
    QTest::addColumn<int>("size"); // of the text
    QTest::addColumn<bool>("isRead");

    QTest::newRow("two windows' pieces") << 600000 << true;
    QTest::newRow("as long as it may be") << LogReader::MaxTextBytes - 1 << true;
    QTest::newRow("longer") << LogReader::MaxTextBytes << false;
    QTest::newRow("much longer") << 5 * LogReader::MaxTextBytes << false;
}

void tst_LogReader::longTexts()
{
    QFETCH(int, size);
    QFETCH(bool, isRead);

    QString text = QStringLiteral("Face result count:0\n");
    text += QString(size - text.size(), QLatin1Char('<'));
    const QByteArrayList entries = readAll(record(Sentence) + record(text) + record(Sentence));
    QCOMPARE(entries.size(), 3);
    QCOMPARE(entries.first(), QByteArray("1: Started"));
    QCOMPARE(entries.last(), QByteArray("10: Started"));
    if (isRead)
        QCOMPARE(entries.at(1).size(), size + QByteArray("5: Frame ").size());
    else
        QCOMPARE(entries.at(1), QByteArray("5: Unknown the record is longer than 1048576 bytes"));
}

void tst_LogReader::hugeFile_data()
{
    QTest::addColumn<QByteArray>("pattern");
    QTest::newRow("one line") << QByteArray("x");
    QTest::newRow("zeros") << QByteArray(1, '\0');
    QTest::newRow("almost headers") << Header.left(30);
    QTest::newRow("almost end lines") << EndLine.left(39);
}

/// A few hundred MiB of nothing: one entry, and no end of the memory.
void tst_LogReader::hugeFile()
{
    QFETCH(QByteArray, pattern);

    class Endless : public QIODevice
    {
    public:
        explicit Endless(const QByteArray &pattern)
            : m_pattern(pattern.repeated(65536 / pattern.size()))
        {
            open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        }
        bool isSequential() const override { return true; }

    protected:
        qint64 readData(char *data, qint64 maxSize) override
        {
            const qint64 size = std::min({maxSize, qint64{m_pattern.size()}, m_left});
            std::memcpy(data, m_pattern.constData(), static_cast<std::size_t>(size));
            m_left -= size;
            return size;
        }
        qint64 writeData(const char * /*data*/, qint64 /*size*/) override { return -1; }

    private:
        const QByteArray m_pattern;
        qint64 m_left = 64 * Q_INT64_C(1048576);
    };

    Endless endless(pattern);
    Position end;
    QCOMPARE(
        readAll(&endless, &end), QByteArrayList({"1: Unknown this is no record of the plug-in"}));
    QVERIFY(end.offset > 63 * Q_INT64_C(1048576));
}

QTEST_GUILESS_MAIN(tst_LogReader)

#include "tst_logreader.moc"
