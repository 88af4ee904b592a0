#include "tools/analysis/RecordingTimes.h"

#include "demo/support/UserFile.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QList>

namespace Analysis {

namespace {

constexpr int MaxLineBytes = 64; // two numbers have 40 at most
const QString NameForm = QStringLiteral("'HvcCon_'yyyyMMdd_HHmmss_zzz'.out'");

} // namespace

QString recordingFileName(qint64 timeMs)
{
    return QDateTime::fromMSecsSinceEpoch(timeMs, Qt::UTC).toString(NameForm);
}

std::optional<qint64> recordingTime(const QString &fileName)
{
    QDateTime time = QDateTime::fromString(QFileInfo(fileName).fileName(), NameForm);
    time.setTimeSpec(Qt::UTC);
    return time.isValid() ? std::make_optional(time.toMSecsSinceEpoch()) : std::nullopt;
}

QStringList recordingsIn(const QString &directory)
{
    const QDir folder(directory);
    QStringList files;
    const QStringList names = folder.entryList(QDir::Files); // not pipes and devices
    for (const QString &name : names) {
        if (recordingTime(name))
            files.append(folder.filePath(name));
    }
    files.sort();
    return files;
}

QString timesFileName(const QString &recording)
{
    return recording + QLatin1String(".times");
}

QByteArray recordedTime(qint64 offset, qint64 timeMs)
{
    return QByteArray::number(offset) + ' ' + QByteArray::number(timeMs) + '\n';
}

RecordingTimes::RecordingTimes(const QString &fileName)
    : m_file(fileName)
{
    if (Demo::UserFile::objection(fileName).isEmpty() && m_file.open(QIODevice::ReadOnly))
        readNext();
}

std::optional<qint64> RecordingTimes::timeAt(qint64 offset)
{
    while (m_next && m_next->offset <= offset) {
        m_piece = m_next;
        readNext();
    }
    return m_piece ? std::make_optional(m_piece->timeMs) : std::nullopt;
}

void RecordingTimes::readNext()
{
    m_next.reset();
    while (!m_next && m_file.isOpen() && !m_file.atEnd()) {
        const QList<QByteArray> words = m_file.readLine(MaxLineBytes).trimmed().split(' ');
        ++m_line;
        bool isOffset = false;
        bool isTime = false;
        const Piece piece{words.first().toLongLong(&isOffset), words.last().toLongLong(&isTime)};
        const bool isBehind = !m_piece || piece.offset >= m_piece->offset;
        if (words.size() == 2 && isOffset && isTime && isBehind)
            m_next = piece;
        else if (m_unreadableLine == 0)
            m_unreadableLine = m_line;
    }
}

} // namespace Analysis
