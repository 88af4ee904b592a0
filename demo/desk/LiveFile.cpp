#include "demo/desk/LiveFile.h"

#include "demo/desk/ViewerDesk.h"
#include "demo/simulator/ScenarioWriter.h"
#include "demo/support/SharedFile.h"

#include <QFile>

namespace Desk {

namespace {

constexpr int PauseMs = 50;
constexpr int SlowPauseMs = 1000; // when it keeps failing
/// A simulator that is reading can be in the way for a moment, on Windows.
constexpr int PatientFailures = 10;

} // namespace

LiveFile::LiveFile(const ViewerDesk *desk, QObject *parent)
    : QObject(parent)
    , m_desk(desk)
{
    if (m_directory.isValid())
        m_fileName = m_directory.filePath(QStringLiteral("viewers.json"));
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &LiveFile::takeTime);
    connect(m_desk, &ViewerDesk::changed, this, &LiveFile::takeChange);
    write();
}

void LiveFile::takeChange()
{
    m_isStale = true;
    if (!m_timer.isActive())
        write();
}

void LiveFile::takeTime()
{
    if (m_isStale)
        write();
}

void LiveFile::write()
{
    const QString reason = tryToWrite();
    m_isStale = !reason.isEmpty();
    m_failures = m_isStale ? qMin(m_failures + 1, PatientFailures + 1) : 0;
    m_timer.start(m_failures >= PatientFailures ? SlowPauseMs : PauseMs);
    if (m_failures == PatientFailures)
        emit failed(reason);
}

QString LiveFile::tryToWrite() const
{
    if (!m_directory.isValid())
        return m_directory.errorString();
    // No QSaveFile: it waits for the disk, and the view that somebody drags in with it.
    const QByteArray text = Simulation::writeScenario(toSimulation(m_desk->viewers()));
    QFile file(m_fileName + QLatin1String(".new"));
    QString reason;
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush()) {
        reason = file.errorString();
    } else {
        file.close();
        if (Demo::renameOver(file.fileName(), m_fileName, &reason))
            return {};
    }
    return tr("%1: cannot be written: %2").arg(m_fileName, reason);
}

} // namespace Desk
