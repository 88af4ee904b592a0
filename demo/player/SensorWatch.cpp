#include "demo/player/SensorWatch.h"

#include <QMetaObject>
#include <QProcess>

#include <algorithm>

namespace Player {

namespace {

bool keepsProgram(const QObject *object)
{
    const QMetaObject *const meta = object->metaObject();
    return meta->indexOfSignal("dataReceived(QString)") >= 0
        && meta->indexOfSignal("started()") >= 0;
}

QObject *findKeeper(const QObject *plugin)
{
    if (!plugin)
        return nullptr;
    const QObjectList children = plugin->children();
    const auto it = std::find_if(children.cbegin(), children.cend(), keepsProgram);
    return it == children.cend() ? nullptr : *it;
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
