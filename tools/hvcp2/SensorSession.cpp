#include "tools/hvcp2/SensorSession.h"

#include <QDateTime>

namespace Hvcp2 {

SensorSession::SensorSession(
    const RecordOptions &options, QTextStream *messages, const QString &speaker)
    : m_program(options.program)
    , m_messages(messages)
    , m_speaker(speaker)
    , m_files(options.directory, options.limits)
{ }

bool SensorSession::run(const QStringList &arguments, QString *error)
{
    if (!m_files.open())
        tellFailure();
    if (!m_process.begin(m_program, arguments)) {
        *error
            = QStringLiteral("%1: cannot be started: %2").arg(m_program, m_process.errorString());
        return false;
    }
    for (QByteArray bytes = m_process.readOutput(); !bytes.isEmpty();
         bytes = m_process.readOutput())
        passOn(bytes);
    m_files.close();
    return true;
}

void SensorSession::passOn(const QByteArray &bytes)
{
    const qint64 timeMs = QDateTime::currentMSecsSinceEpoch();
    if (!BoundProcess::writeOutput(bytes))
        m_process.kill();
    record(bytes, timeMs);
}

void SensorSession::record(const QByteArray &bytes, qint64 timeMs)
{
    const bool wasRecording = m_files.failure().isEmpty();
    if (!m_files.write(bytes, timeMs) && wasRecording)
        tellFailure();
}

void SensorSession::tellFailure()
{
    if (m_messages == nullptr)
        return;
    *m_messages << m_speaker << ": " << m_files.failure() << "; nothing is recorded any more\n";
    m_messages->flush();
}

} // namespace Hvcp2
