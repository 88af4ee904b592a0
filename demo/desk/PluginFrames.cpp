#include "demo/desk/PluginFrames.h"

#include <QMetaObject>

#include <algorithm>
#include <limits>
#include <utility>

namespace Desk {

namespace {

bool hasSignal(const QObject *object, const char *signature)
{
    return object->metaObject()->indexOfSignal(signature) >= 0;
}

} // namespace

QObject *findController(const QObject *plugin)
{
    if (!plugin)
        return nullptr;
    const QObjectList &children = plugin->children();
    const auto it = std::find_if(children.cbegin(), children.cend(),
        [](const QObject *child) { return hasSignal(child, "dataReceived(QString)"); });
    return it == children.cend() ? nullptr : *it;
}

PluginFrames::PluginFrames(QObject *parent)
    : QObject(parent)
{ }

void PluginFrames::watch(QObject *plugin)
{
    deliver();
    for (QObject *const object : {m_plugin.data(), m_controller.data()}) {
        if (object)
            disconnect(object, nullptr, this, nullptr);
    }
    m_plugin = plugin;
    m_controller = findController(plugin);
    m_starts = 0;
    if (plugin && hasSignal(plugin, "contentStarted(int)"))
        connect(plugin, SIGNAL(contentStarted(int)), this, SLOT(onContentStarted(int)));
    if (m_controller)
        listenToController();
}

void PluginFrames::onContentStarted(int seqIndex)
{
    if (seqIndex < 0 || seqIndex == std::numeric_limits<int>::max())
        return; // no content has it
    collect();
    m_turn.starts.append({seqIndex + 1, QDateTime::currentDateTimeUtc()});
}

void PluginFrames::onDataReceived(const QString &text)
{
    collect();
    m_turn.chunks.append({text, QDateTime::currentDateTimeUtc()});
}

void PluginFrames::onStarted()
{
    ++m_starts;
    emit programStarted();
}

void PluginFrames::onStopped()
{
    m_starts = 0;
    emit programStopped();
}

/// What is collected first in a turn has it delivered.
void PluginFrames::collect()
{
    if (m_turn.isEmpty())
        QMetaObject::invokeMethod(this, &PluginFrames::deliver, Qt::QueuedConnection);
}

void PluginFrames::deliver()
{
    const PluginTurn turn = std::exchange(m_turn, {});
    if (!turn.isEmpty())
        emit delivered(turn);
}

// By name: the plug-in's classes are not known here. Blanks within SIGNAL and SLOT would not be the
// normalised form.
// clang-format off
void PluginFrames::listenToController()
{
    connect(m_controller, SIGNAL(dataReceived(QString)), this, SLOT(onDataReceived(QString)));
    if (hasSignal(m_controller, "started()"))
        connect(m_controller, SIGNAL(started()), this, SLOT(onStarted()));
    if (hasSignal(m_controller, "stopped()"))
        connect(m_controller, SIGNAL(stopped()), this, SLOT(onStopped()));
    if (hasSignal(m_controller, "errorOccured(QString)"))
        connect(m_controller, SIGNAL(errorOccured(QString)), this, SIGNAL(programFailed(QString)));
}
// clang-format on

} // namespace Desk
