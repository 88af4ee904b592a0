#include "demo/player/SensorWatch.h"

#include "demo/desk/PluginFrames.h"

#include <QMetaObject>
#include <QProcess>

namespace Player {

namespace {

QObject *findKeeper(const QObject *plugin)
{
    QObject *const controller = Desk::findController(plugin);
    return controller && controller->metaObject()->indexOfSignal("started()") >= 0 ? controller
                                                                                   : nullptr;
}

} // namespace

SensorWatch::SensorWatch(QObject *parent)
    : QObject(parent)
{ }

void SensorWatch::watch(QObject *plugin)
{
    QObject *const keeper = findKeeper(plugin);
    if (m_keeper && m_keeper != keeper)
        m_keeper->disconnect(this);
    if (keeper && m_keeper != keeper) {
        // By name: its class is the plug-in's own.
        connect(keeper, SIGNAL(started()), this, SLOT(onStarted()));
        connect(keeper, &QObject::destroyed, this, &SensorWatch::changed);
    }
    m_keeper = keeper;
    countAnew();
}

void SensorWatch::countAnew()
{
    m_starts = 0;
    emit changed();
}

qint64 SensorWatch::processId() const
{
    const QProcess *const process = runningProcess();
    return process ? process->processId() : 0;
}

void SensorWatch::onStarted()
{
    ++m_starts;
    if (const QProcess *const process = runningProcess())
        connect(
            process, &QProcess::stateChanged, this, &SensorWatch::changed, Qt::UniqueConnection);
    emit changed();
}

const QProcess *SensorWatch::runningProcess() const
{
    if (!m_keeper)
        return nullptr;
    const auto processes = m_keeper->findChildren<QProcess *>();
    for (const QProcess *const process : processes) {
        if (process->state() == QProcess::Running)
            return process;
    }
    return nullptr;
}

} // namespace Player
