#include "HostedPlugin.h"

#include "Frames.h"

#include "host/KrPluginExtScreenInterface.h"
#include "host/KrPluginGraphicsItem.h"
#include "host/KrPluginKeys.h"
#include "tests/support/LinkedStage.h"

#include <QCoreApplication>

namespace Bench {

namespace {

constexpr int MessagesOfAFrame = 2; // its report and the sequence that was started

QSet<QGraphicsItem *> toSet(const QList<QGraphicsItem *> &items)
{
    QSet<QGraphicsItem *> set;
    for (QGraphicsItem *item : items)
        set.insert(item);
    return set;
}

} // namespace

HostedPlugin::HostedPlugin(int contents, Panel panel)
    : m_loader(QStringLiteral(KRHVC_PLUGIN_FILE))
    , m_view(&m_scene)
{
    m_object = m_loader.instance();
    m_plugin = qobject_cast<Kora::KrPluginExtScreenInterface *>(m_object);
    if (m_plugin == nullptr)
        qFatal("%s", qUtf8Printable(m_loader.errorString()));

    m_plugin->setPath(m_directory.path());
    m_plugin->setLogSetting(m_directory.path());
    m_plugin->setStage(KrTest::linkedStage(contents));
    m_plugin->setPluginData(KrTest::linkedScreen(contents));
    m_plugin->setParams({
        {Kora::Keys::EventSendingLimit, 0},
        {Kora::Keys::DisplayMonitoring, panel == ShownPanel ? Kora::Keys::True : Kora::Keys::False},
    });
    m_panel = m_plugin->graphicsItem();
    m_panelObject = dynamic_cast<QObject *>(m_panel);
    m_furniture = toSet(m_panel->childItems());
    m_scene.addItem(m_panel);
    m_plugin->init();
    m_view.show();
}

HostedPlugin::~HostedPlugin()
{
    delete m_object; // and the panel
}

void HostedPlugin::receive(const QString &chunk)
{
    QMetaObject::invokeMethod(
        m_object, "onDataReceived", Qt::DirectConnection, Q_ARG(QString, chunk));
}

void HostedPlugin::enterMessages()
{
    for (int i = 0; i < MessagesOfAFrame; ++i)
        QMetaObject::invokeMethod(m_panelObject, "moveTextItem", Qt::DirectConnection);
}

void HostedPlugin::dropMessages()
{
    QCoreApplication::processEvents();
    // Ended slides; outside of an event loop nothing else sends these.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const QList<QGraphicsItem *> present = messages();
    const QSet<QGraphicsItem *> leaving = m_newest;
    m_newest.clear();
    for (QGraphicsItem *message : present) {
        if (leaving.contains(message))
            delete message;
        else
            m_newest.insert(message);
    }
}

QString HostedPlugin::logDirectory() const
{
    return m_plugin->logSetting();
}

QList<QGraphicsItem *> HostedPlugin::messages() const
{
    QList<QGraphicsItem *> messages;
    const QList<QGraphicsItem *> children = m_panel->childItems();
    for (QGraphicsItem *child : children) {
        if (!m_furniture.contains(child))
            messages.append(child);
    }
    return messages;
}

} // namespace Bench
