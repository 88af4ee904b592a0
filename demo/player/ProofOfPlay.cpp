#include "demo/player/ProofOfPlay.h"

#include "demo/support/CsvRow.h"
#include "demo/support/UserFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>

namespace Player {

namespace {

constexpr char LineEnd[] = "\r\n"; // RFC 4180 asks for it

QString tr(const char *text)
{
    return QCoreApplication::translate("Player::ProofOfPlay", text);
}

QByteArray csvLine(const QStringList &fields)
{
    return Demo::csvRow(fields).toUtf8() + LineEnd;
}

/// With the offset from UTC: an hour of each autumn comes twice.
QString timeText(const QDateTime &time)
{
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

QByteArray header()
{
    return csvLine({QStringLiteral("time"), QStringLiteral("sequence"), QStringLiteral("name"),
        QStringLiteral("until"), QStringLiteral("why")});
}

/// What has to come before the next line of @p file.
QByteArray gap(QFile *file)
{
    if (file->size() == 0)
        return header();
    const bool isCut = file->seek(file->size() - 1) && file->read(1) != "\n";
    return isCut ? QByteArray(LineEnd) : QByteArray();
}

} // namespace

ProofOfPlay::ProofOfPlay(const QString &fileName)
    : m_fileName(fileName)
{ }

void ProofOfPlay::open()
{
    write();
}

void ProofOfPlay::start(const Start &start, const QDateTime &now)
{
    end(now);
    m_playing = start;
    m_startTime = now;
}

void ProofOfPlay::end(const QDateTime &now)
{
    if (!m_playing)
        return;
    if (m_unwritten.size() == MaxKept)
        m_unwritten.removeFirst();
    m_unwritten << csvLine({timeText(m_startTime), QString::number(m_playing->sequence),
        m_playing->name, timeText(now), m_playing->reason});
    m_playing.reset();
    write();
}

void ProofOfPlay::write()
{
    const QString reason = append();
    m_problem = reason.isEmpty() ? QString() : QStringLiteral("%1: %2").arg(m_fileName, reason);
    if (reason.isEmpty())
        m_unwritten.clear();
}

/// Returns what has kept the lines from being written; then the file is as it was.
QString ProofOfPlay::append() const
{
    if (Demo::UserFile::isNoFile(m_fileName))
        return tr("is not a file");
    QFile file(m_fileName);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered))
        return file.errorString();
    const qint64 size = file.size();
    const QByteArray text = gap(&file) + m_unwritten.join();
    if (file.write(text) == text.size())
        return {};
    QString reason = file.errorString();
    file.resize(size); // half a line would spoil the next one
    return reason;
}

} // namespace Player
