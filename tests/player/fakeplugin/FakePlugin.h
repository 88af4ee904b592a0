#pragma once

#include "host/KrPluginExtScreenInterface.h"
#include "host/KrPluginGraphicsItem.h"
#include "host/KrPluginGuiInterface.h"

#include <QAction>
#include <QObject>

#include <QPointer>

/// A panel without any behaviour.
class FakePanel : public QObject, public Kora::KrPluginGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(Kora::KrPluginGraphicsItem)

public:
    ~FakePanel() override;
    void setItemSize(qreal width, qreal height) override { setItemSize(QSizeF(width, height)); }
    void setItemSize(const QSizeF &size) override { setRect(QRectF(rect().topLeft(), size)); }
};

/// Menu actions and dialogs that only write down that they were asked for.
class FakeGui : public QObject, public Kora::KrPluginGuiInterface
{
    Q_OBJECT

public:
    FakeGui();

    bool hasScreenPropertyWidget() const override { return false; }
    int screenPropertyKind() const override { return 1; }
    bool hasStagePropertyWidget() const override { return false; }
    bool hasScreenPropertyDialog() const override { return true; }
    QWidget *screenPropertyWidget() override { return nullptr; }
    int execScreenPropertyDialog(const QRect &anchor) override;
    bool hasPluginPropertyActions() const override { return true; }
    QList<QAction *> pluginPropertyActions() override { return {&m_properties}; }
    bool canEditContents() const override { return true; }
    int maximumContentCount() const override { return 20; }
    int contentKind() const override { return 2; }
    bool canReorderContents() const override { return false; }
    bool hasContentPropertyWidget() const override { return false; }
    QWidget *contentPropertyWidget() override { return nullptr; }
    void execContentPropertyDialog(int seqIndex, const QRect &anchor) override;
    bool canAddContents() const override { return true; }
    QList<QAction *> addContentActions() override { return {&m_add}; }
    QObject *object() override { return this; }

signals:
    // clang-format off
    void screenValuesUpdated(int screenId, QList<int> seqIndexList) override; // clazy:exclude=virtual-signal
    void stageValuesUpdated() override; // clazy:exclude=virtual-signal
    void requestAddContents(int screenId, QMap<int, QVariant> contents) override; // clazy:exclude=virtual-signal
    // clang-format on

private:
    QAction m_add;
    QAction m_properties;
};

/// Stands for the object that runs a sensor program.
class FakeController : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

signals:
    void dataReceived(const QString &data);
};

/// Writes every call of its host into the application's property "fakeCalls". The settings
/// "switches" (list of sequence indices) are sent as soon as it has been started. Stops a moment
/// after stop() has returned; a setting "refuses" makes start() fail, a setting "gui" gives it one.
/// So are the sensor program's "frames", one after another: maps of a "text" and, before it, the
/// index "start" of a sequence.
class FakePlugin : public QObject, public Kora::KrPluginExtScreenInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.velmora.kora.plugin.ExtScreenInterface/1.0" FILE "FakePlugin.json")
    Q_INTERFACES(Kora::KrPluginCommonInterface Kora::KrPluginExtScreenInterface)

public:
    ~FakePlugin() override;

    QString name() const override { return QStringLiteral("FakePlugin"); }
    QString path() const override { return m_path; }
    void setPath(const QString &path) override;
    int apiLevel() const override { return 1; }
    QString identifier() const override { return QStringLiteral("com.example.fake"); }
    QString version() const override { return QStringLiteral("3.2"); }
    bool hasGraphicsItem() const override { return true; }
    int kind() const override { return 3; }
    QVariant params() const override { return m_params; }
    bool hasParams() const override { return true; }
    QObject *object() override { return this; }
    QString shortName() const override { return QStringLiteral("fake"); }
    QString displayName() const override { return QStringLiteral("Fake"); }
    QString description() const override { return QStringLiteral("Fake"); }

    Kora::KrPluginGraphicsItem *graphicsItem() override;
    QWidget *propertyWidget() override { return nullptr; }
    void releaseGraphicsItem() override { m_graphicsItem = nullptr; }
    void releasePropertyWidget() override { }
    Kora::KrPluginGuiInterface *gui() override;
    void setParams(const QVariantMap &params) override;
    bool writeXml(QXmlStreamWriter & /*writer*/) override { return true; }
    QList<QPair<QString, QVariant>> contentProperties(int /*index*/) const override { return {}; }
    void setStage(const Kora::KrPluginStage &stage) override;
    void setPluginData(const QVariant &pluginData) override;
    bool canStart() const override { return true; }
    bool canStop() const override { return true; }
    bool canPause() const override { return true; }
    bool init() override;
    bool start() override;
    bool stop() override;
    bool pause() override;
    bool reload() override;
    void onScreenEntered() override { }
    void onScreenLeft() override { }
    void requestSequenceNumber(int number) override;
    void requestSequenceIndex(int /*index*/) override { }
    int currentSequenceNumber() const override { return 0; }
    int currentSequenceIndex() const override { return -1; }
    int sequenceControlLevel() const override { return 1; }
    int timeControlLevel() const override { return 0; }
    int status() const override { return m_status; }
    bool makeDefaultPluginData(QVariant * /*data*/) override { return true; }
    QList<int> supportedTypes() const override { return {2}; }
    QList<int> extraTypes() const override { return {}; }
    QImage icon() const override;
    void setLogSetting(const QString &logSetting) override;

signals:
    // clang-format off
    void throwLogMessage(const QString &message, int LogDivision) override; // clazy:exclude=virtual-signal
    void contentStarted(int seqIndex) override; // clazy:exclude=virtual-signal
    void contentPaused(int seqIndex) override; // clazy:exclude=virtual-signal
    void contnetStopped(int seqIndex) override; // clazy:exclude=virtual-signal
    void contentFinished(int seqIndex) override; // clazy:exclude=virtual-signal
    void contentHeadTransFinished(int seqIndex) override; // clazy:exclude=virtual-signal
    void contentTailTransStarted(int seqIndex) override; // clazy:exclude=virtual-signal
    void contentTimeout(int seqIndex, const QTime &time) override; // clazy:exclude=virtual-signal
    // clang-format on

private:
    void sendFrame(const QVariantMap &frame);

    QPointer<FakeGui> m_gui; // owned
    FakeController *m_controller = nullptr; // child of this; init() makes a new one
    QVariantMap m_params;
    int m_status = 199;
};
