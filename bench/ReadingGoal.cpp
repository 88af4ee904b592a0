#include "Frames.h"
#include "Goals.h"
#include "Report.h"

#include "detection/SensorOutputParser.h"
#include "log/LogFormat.h"
#include "monitor/OfflineTextDocument.h"
#include "tools/analysis/EntrySource.h"
#include "tools/analysis/Totals.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstring>

namespace Bench {

using namespace Analysis;
using namespace PluginKrHvcP2;

namespace {

constexpr int FewPairs = 21; // each takes long
constexpr int Mebibytes = 16;
constexpr qint64 Bytes = qint64{Mebibytes} * 1024 * 1024;
constexpr int BlockBytes = 128 * 1024;
constexpr char FaceLine[] = "Index:";
constexpr int FaceLineBytes = sizeof(FaceLine) - 1;

/// What the plug-in logs of a frame with so many faces.
QString reportText(int faces, const QDateTime &time)
{
    OfflineTextDocument document;
    document.setHtml(SensorOutputParser::parse(chunk(faces), time).html);
    return document.toPlainText();
}

/// A frame each second, and its decision when there is a face. False when it cannot be written.
bool writeLog(QFile &file)
{
    QDateTime time(QDate(2018, 2, 1), QTime(0, 0));
    const QVector<int> faces{0, 0, 1, 3, 5};
    QStringList reports;
    for (const int count : faces)
        reports << reportText(count, time);
    const QString decision = QStringLiteral("The determined sequence number: #1");
    const QString level = QStringLiteral("Information");
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (int i = 0; file.pos() < Bytes; i = (i + 1) % faces.size()) {
        QString records = LogFormat::record(1, time, level, reports.at(i));
        if (faces.at(i) > 0)
            records += LogFormat::record(1, time, level, decision);
        if (file.write(records.toUtf8()) < 0)
            return false;
        time = time.addSecs(1);
    }
    return file.flush();
}

qint64 facesIn(const QString &fileName)
{
    QString error;
    const std::unique_ptr<EntrySource> source = EntrySource::open({fileName}, &error);
    TotalsCounter counter;
    while (const std::optional<Entry> entry = source->next())
        counter.add(*entry);
    return counter.totals().faces;
}

const char *find(const char *begin, const char *end, char wanted)
{
    const void *const found = std::memchr(begin, wanted, static_cast<std::size_t>(end - begin));
    return found == nullptr ? end : static_cast<const char *>(found);
}

bool isFaceLine(const char *begin, const char *end)
{
    for (const char *p = find(begin, end, *FaceLine); p != end; p = find(p + 1, end, *FaceLine)) {
        if (end - p >= FaceLineBytes && std::memcmp(p, FaceLine, FaceLineBytes) == 0)
            return true;
    }
    return false;
}

/// In [@p begin, @p end), which are whole lines.
qint64 faceLinesIn(const char *begin, const char *end)
{
    qint64 lines = 0;
    while (begin != end) {
        const char *const lineEnd = find(begin, end, '\n');
        lines += isFaceLine(begin, lineEnd) ? 1 : 0;
        begin = lineEnd + 1;
    }
    return lines;
}

qint64 faceLinesIn(const QString &fileName)
{
    QFile file(fileName);
    file.open(QIODevice::ReadOnly);
    QByteArray buffer;
    qint64 lines = 0;
    for (;;) {
        const QByteArray block = file.read(BlockBytes);
        if (block.isEmpty())
            return lines;
        buffer += block;
        const int end = buffer.lastIndexOf('\n') + 1;
        lines += faceLinesIn(buffer.constData(), buffer.constData() + end);
        buffer.remove(0, end);
    }
}

} // namespace

void measureReading(Report &report)
{
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("KrHvcP2Log_20180201.txt")));
    if (!writeLog(file))
        qFatal("P9: %s", qUtf8Printable(file.errorString()));
    const QString name = file.fileName();
    if (facesIn(name) != faceLinesIn(name))
        qFatal("P9: the numbers of faces differ");
    const Side ours{{[&] { facesIn(name); }}, {}};
    const Side theirs{{[&] { faceLinesIn(name); }}, {}};
    const Comparison worst = compare(ours, theirs, FewPairs).front();
    report.add({QStringLiteral("P9"), QStringLiteral("%1 MiB of log").arg(Mebibytes), worst.ratio(),
        {}, worst});
}

} // namespace Bench
