#pragma once

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPluginLoader>
#include <QSet>
#include <QTemporaryDir>

namespace Kora {
class KrPluginExtScreenInterface;
class KrPluginGraphicsItem;
} // namespace Kora

namespace Bench {

/// The plug-in's own file in a host with a stage, a log and a shown view.
class HostedPlugin
{
public:
    enum Panel { ShownPanel, HiddenPanel };

    /// Every content starts as often as it fits: no restriction.
    HostedPlugin(int contents, Panel panel);
    ~HostedPlugin();
    Q_DISABLE_COPY(HostedPlugin)

    /// Hands a chunk of the sensor program's output over, as the controller does.
    void receive(const QString &chunk);

    /// Lets the messages of one frame enter the panel at once.
    void enterMessages();

    /// Deletes the messages that left when those of the last frame entered, instead of waiting for
    /// the end of their way, and lets the events run.
    void dropMessages();

    int messageCount() const { return messages().size(); } ///< on the panel
    QString logDirectory() const; ///< where the records are

private:
    QList<QGraphicsItem *> messages() const;

    QPluginLoader m_loader;
    QTemporaryDir m_directory;
    QGraphicsScene m_scene;
    QGraphicsView m_view;
    Kora::KrPluginExtScreenInterface *m_plugin = nullptr;
    QObject *m_object = nullptr; // the plug-in
    Kora::KrPluginGraphicsItem *m_panel = nullptr; // belongs to the plug-in
    QObject *m_panelObject = nullptr; // the panel
    QSet<QGraphicsItem *> m_furniture; // of the panel: title and buttons
    QSet<QGraphicsItem *> m_newest; // messages that will leave with the next frame
};

} // namespace Bench
