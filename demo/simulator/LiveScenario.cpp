#include "demo/simulator/LiveScenario.h"

#include "demo/simulator/ScenarioReader.h"
#include "demo/support/JsonReader.h"
#include "demo/support/UserFile.h"

#include <QFileInfo>

namespace Simulation {

namespace {

constexpr qint64 ClockStepMs = 2000; // the coarsest of a file system, FAT's

} // namespace

LiveScenario::LiveScenario(const QString &fileName)
    : m_fileName(fileName)
{ }

QString LiveScenario::update(const QDateTime &now)
{
    const Stamp stamp = stampOf(m_fileName);
    if (m_stampTells && stamp == m_stamp)
        return {};
    m_stamp = stamp;
    const QString problem = read();
    // A second change within one step of the clock would leave the stamp as it is.
    m_stampTells = problem.isEmpty() && now.toMSecsSinceEpoch() - m_stamp.newestMs > ClockStepMs;
    if (problem == m_toldProblem)
        return {};
    m_toldProblem = problem;
    return problem.isEmpty() ? QStringLiteral("%1: is in order now").arg(m_fileName) : problem;
}

LiveScenario::Stamp LiveScenario::stampOf(const QString &fileName)
{
    const QFileInfo file(fileName);
    if (!file.exists())
        return {};
    // A file that is renamed keeps the time of its content.
    const QDateTime renamed = file.metadataChangeTime();
    const qint64 modifiedMs = file.lastModified().toMSecsSinceEpoch();
    return {file.size(),
        renamed.isValid() ? qMax(modifiedMs, renamed.toMSecsSinceEpoch()) : modifiedMs};
}

QString LiveScenario::read()
{
    QString problem;
    const std::optional<QByteArray> text
        = Demo::UserFile::read(m_fileName, Demo::MaxJsonMebibytes, &problem);
    if (!text)
        return problem;
    if (text == m_text)
        return m_textProblem;
    m_text = text;
    m_textProblem.clear();
    if (const auto scenario = parseLiveScenario(*text, m_fileName, &m_textProblem))
        m_scenario = *scenario;
    return m_textProblem;
}

} // namespace Simulation
