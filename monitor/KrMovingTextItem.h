#pragma once

#include "host/KrPluginGraphicsItem.h"

#include <QList>
#include <QMap>
#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

namespace Kora {
class KrPluginExtScreenInterface;
}

namespace PluginKrHvcP2 {

// moc answers for a base class under the name that the class head gives it, and hosts ask for the
// unqualified one.
using Kora::KrPluginGraphicsItem;

class OfflineTextDocument;

namespace Private {
class KrTextItem_Private;
class KrTextItemButton_Private;
} // namespace Private

/// The monitoring panel on the host's stage: a title, buttons and messages that slide in from one
/// side while the previous message of that direction slides out.
///
/// Belongs to the plug-in until that releases it; afterwards to the host.
class KrMovingTextItem : public QObject, public KrPluginGraphicsItem
{
    Q_OBJECT

public:
    explicit KrMovingTextItem(QObject *parent = nullptr);
    ~KrMovingTextItem() override;

    /// The plug-in that the buttons act on; not owned, null for none. It may go before the panel
    /// when it has an object(), which is watched.
    void setPlugin(Kora::KrPluginExtScreenInterface *plugin);

    /// The plug-in has handed the panel over and may hold another one now.
    void setReleased() { m_released = true; }

    /// Queues a message; @p direction is a set of MoveDirection bits. Nothing is shown for
    /// directions that cancel each other out.
    void addText(const QString &text, int direction);
    void addHtml(const QString &html, int direction); ///< as addText(); loads no resources

    void setItemSize(qreal width, qreal height) override;
    void setItemSize(const QSizeF &size) override;

public slots:
    void moveTextItem(); ///< shows the next message of the queue
    void buttonClicked(QObject *button); ///< acts on the "buttonName" property of @p button

private:
    using TextItem = Private::KrTextItem_Private;

    bool hasPlugin() const;
    void addTitle();
    void addButtons();
    void enqueue(std::unique_ptr<OfflineTextDocument> document, int direction);
    TextItem *takePending();
    void enter(TextItem *item);
    void leave(TextItem *item);
    void slide(TextItem *item, const QPointF &from, const QPointF &to, bool deleteAtEnd);
    void endSlidesInTime();

    Kora::KrPluginExtScreenInterface *m_plugin = nullptr; // may dangle: ask hasPlugin()
    QPointer<QObject> m_pluginObject;
    bool m_pluginIsWatched = false; // it had an object
    bool m_released = false;

    QList<TextItem *> m_pending; // without parent until they are shown
    QMutex m_queueMutex; // guards m_pending
    QMap<int, QPointer<TextItem>> m_current; // by direction as set; children of this
    QMutex m_currentMutex; // guards m_current
    TextItem *m_title = nullptr; // child of this
    QList<Private::KrTextItemButton_Private *> m_buttons; // children of this
};

} // namespace PluginKrHvcP2
