#pragma once

#include "demo/desk/PluginTurn.h"

#include <QObject>
#include <QPointer>
#include <QString>

namespace Desk {

/// The child of @p plugin that runs the sensor program, known by its signal dataReceived(QString).
/// Null when there is none, and for no plug-in.
QObject *findController(const QObject *plugin);

/// Listens to a plug-in as any host could: to its signal contentStarted(int), and to its child
/// object with the signal dataReceived(QString), which runs the sensor program.
///
/// Whether the plug-in's own slots for a chunk run before or behind this one's depends on who
/// connected first: on the first way the starts come before their chunk, on the other one behind
/// it. Both are collected and delivered together when control is back in the event loop. What
/// runs a loop of its own between the two, as a wait for the log's lock file does, parts them; then
/// the frame counts as restricted by its own start.
class PluginFrames : public QObject
{
    Q_OBJECT

public:
    explicit PluginFrames(QObject *parent = nullptr);

    /// Delivers what is collected and listens to @p plugin, null for none, and to the child that it
    /// has now. Call it after each init(), which makes a new one.
    void watch(QObject *plugin);
    bool isWatching() const { return !m_controller.isNull(); } ///< there is such a child
    /// How often the sensor program of this child has started again without having been stopped.
    int restarts() const { return qMax(0, m_starts - 1); }

signals:
    void delivered(const Desk::PluginTurn &turn);
    void programStarted(); ///< the sensor program runs; see restarts()
    void programStopped(); ///< somebody stopped it
    void programFailed(const QString &message);

private slots:
    void onContentStarted(int seqIndex);
    void onDataReceived(const QString &text);
    void onStarted();
    void onStopped();

private:
    void collect();
    void deliver();
    void listenToController();

    QPointer<QObject> m_plugin;
    QPointer<QObject> m_controller;
    PluginTurn m_turn;
    int m_starts = 0;
};

} // namespace Desk
