#pragma once

#include "KrPluginCommonInterface.h"
#include "KrPluginStage.h"
#include "KrPluginStatus.h"

#include <QImage>
#include <QList>
#include <QPair>
#include <QTime>
#include <QVariantMap>

class QWidget;
class QXmlStreamWriter;

namespace Kora {

class KrPluginGraphicsItem;
class KrPluginGuiInterface;

/// A plug-in that attaches behaviour to one screen of the stage.
///
/// The order of the virtual functions and of the data members, and the exact parameter types, are
/// the binary contract between host and plug-in: never sort, insert or "improve" them. The signals
/// among them are sent by object(); a host connects to them by name.
class KrPluginExtScreenInterface : public KrPluginCommonInterface
{
public:
    /// The item for the stage, created on first call. The plug-in owns it until
    /// releaseGraphicsItem() is called.
    virtual KrPluginGraphicsItem *graphicsItem() = 0;
    virtual QWidget *propertyWidget() = 0; ///< null when there is none
    virtual void releaseGraphicsItem() = 0; ///< hands the item over to the caller
    virtual void releasePropertyWidget() = 0; ///< hands the widget over to the caller
    virtual KrPluginGuiInterface *gui() = 0; ///< owned by the plug-in; null when there is none

    virtual void setParams(const QVariantMap &params) = 0; ///< unfit values are ignored
    virtual bool writeXml(QXmlStreamWriter &writer) = 0; ///< writes one "plugindata" element

    /// Keys and values of the content entry at the zero-based @p index; empty when there is none.
    virtual QList<QPair<QString, QVariant>> contentProperties(int index) const = 0;

    virtual void setStage(const KrPluginStage &stage) { m_stage = stage; }
    virtual void setPluginData(const QVariant &pluginData) { m_pluginData = pluginData; }
    virtual QVariant pluginData() const { return m_pluginData; } ///< the screen's parameter map

    virtual bool canStart() const = 0;
    virtual bool canStop() const = 0;
    virtual bool canPause() const = 0;

    virtual bool init() = 0; ///< call again after the screen or the stage has changed
    virtual bool start() = 0; ///< false before init()
    virtual bool stop() = 0;
    virtual bool pause() = 0;
    virtual bool reload() = 0;
    virtual void onScreenEntered() = 0; ///< notification from the host
    virtual void onScreenLeft() = 0; ///< notification from the host

    virtual void requestSequenceNumber(int number) = 0; ///< counted from 1
    virtual void requestSequenceIndex(int index) = 0; ///< counted from 0
    virtual int currentSequenceNumber() const = 0; ///< 0 before any sequence was sent
    virtual int currentSequenceIndex() const = 0; ///< -1 before any sequence was sent
    virtual int sequenceControlLevel() const = 0;
    virtual int timeControlLevel() const = 0;
    virtual int status() const = 0; ///< a Status::Code

    /// Fills a new screen's parameter map with defaults, keeping foreign keys. False for null.
    virtual bool makeDefaultPluginData(QVariant *data) = 0;

    virtual QList<int> supportedTypes() const = 0;
    virtual QList<int> extraTypes() const = 0;
    virtual QImage icon() const = 0;
    virtual QString logSetting() const { return m_logSetting; }
    virtual void setLogSetting(const QString &logSetting) { m_logSetting = logSetting; }

    /// Signal: the host is asked to start the sequence with this zero-based index.
    virtual void contentStarted(int seqIndex) = 0;
    virtual void contentPaused(int seqIndex) = 0; ///< signal
    virtual void contnetStopped(int seqIndex) = 0; ///< signal; hosts connect to it as it is spelt
    virtual void contentFinished(int seqIndex) = 0; ///< signal
    virtual void contentHeadTransFinished(int seqIndex) = 0; ///< signal
    virtual void contentTailTransStarted(int seqIndex) = 0; ///< signal
    virtual void contentTimeout(int seqIndex, const QTime &time) = 0; ///< signal

protected:
    KrPluginGraphicsItem *m_graphicsItem = nullptr;
    QWidget *m_propertyWidget = nullptr;
    KrPluginStage m_stage;
    QVariant m_pluginData;
    QString m_logSetting;
};

} // namespace Kora

Q_DECLARE_INTERFACE(
    Kora::KrPluginExtScreenInterface, "com.velmora.kora.plugin.ExtScreenInterface/1.0")
