#pragma once

#include "tools/hvcp2/BoundProcess.h"
#include "tools/hvcp2/RecordOptions.h"
#include "tools/hvcp2/RecordingFiles.h"

#include <QStringList>
#include <QTextStream>

namespace Hvcp2 {

/// One run of the sensor program with its output passed on and recorded.
///
/// Every piece is passed on as soon as it is there, and recorded after that. While the reader
/// takes nothing, nothing is read: the program waits as it would without this in between. When
/// nobody is left to read, the program is ended.
class SensorSession
{
public:
    /// What ends the recording is told to @p messages, if any, under the name @p speaker.
    SensorSession(const RecordOptions &options, QTextStream *messages, const QString &speaker);

    /// Returns when the program has ended. False, and "file: reason" in @p error, when it did not
    /// start.
    bool run(const QStringList &arguments, QString *error);

    const QProcess &process() const { return m_process; }

private:
    void passOn(const QByteArray &bytes);
    void record(const QByteArray &bytes, qint64 timeMs);
    void tellFailure();

    const QString m_program;
    QTextStream *const m_messages;
    const QString m_speaker;
    BoundProcess m_process;
    RecordingFiles m_files;
};

} // namespace Hvcp2
