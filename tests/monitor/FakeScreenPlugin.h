#pragma once

#include "host/KrPluginExtScreenInterface.h"

#include <QObject>
#include <QStringList>

#include <functional>

/// Notes what the panel asks of a screen plug-in; everything else answers nothing.
class FakeScreenPlugin : public QObject, public Kora::KrPluginExtScreenInterface
{
public:
    QStringList calls;
    std::function<void()> onCall; ///< what the host does inside each call; may be empty
    bool hasObject = true; ///< else object() is null

    void releaseGraphicsItem() override { note(QStringLiteral("releaseGraphicsItem()")); }
    bool start() override { return note(QStringLiteral("start()")); }
    bool stop() override { return note(QStringLiteral("stop()")); }
    void requestSequenceNumber(int number) override
    {
        note(QStringLiteral("requestSequenceNumber(%1)").arg(number));
    }
    QObject *object() override { return hasObject ? this : nullptr; }

    QString name() const override { return {}; }
    QString path() const override { return {}; }
    void setPath(const QString & /*path*/) override { }
    int apiLevel() const override { return 0; }
    QString identifier() const override { return {}; }
    QString version() const override { return {}; }
    bool hasGraphicsItem() const override { return true; }
    int kind() const override { return 0; }
    QVariant params() const override { return {}; }
    bool hasParams() const override { return false; }
    QString shortName() const override { return {}; }
    QString displayName() const override { return {}; }
    QString description() const override { return {}; }
    void throwLogMessage(const QString & /*message*/, int /*LogDivision*/) override { }
    Kora::KrPluginGraphicsItem *graphicsItem() override { return nullptr; }
    QWidget *propertyWidget() override { return nullptr; }
    void releasePropertyWidget() override { }
    Kora::KrPluginGuiInterface *gui() override { return nullptr; }
    void setParams(const QVariantMap & /*params*/) override { }
    bool writeXml(QXmlStreamWriter & /*writer*/) override { return false; }
    QList<QPair<QString, QVariant>> contentProperties(int /*index*/) const override { return {}; }
    bool canStart() const override { return true; }
    bool canStop() const override { return true; }
    bool canPause() const override { return false; }
    bool init() override { return true; }
    bool pause() override { return false; }
    bool reload() override { return false; }
    void onScreenEntered() override { }
    void onScreenLeft() override { }
    void requestSequenceIndex(int index) override
    {
        note(QStringLiteral("requestSequenceIndex(%1)").arg(index));
    }
    int currentSequenceNumber() const override { return 0; }
    int currentSequenceIndex() const override { return -1; }
    int sequenceControlLevel() const override { return 0; }
    int timeControlLevel() const override { return 0; }
    int status() const override { return 0; }
    bool makeDefaultPluginData(QVariant * /*data*/) override { return false; }
    QList<int> supportedTypes() const override { return {}; }
    QList<int> extraTypes() const override { return {}; }
    QImage icon() const override { return {}; }
    void contentStarted(int /*seqIndex*/) override { }
    void contentPaused(int /*seqIndex*/) override { }
    void contnetStopped(int /*seqIndex*/) override { }
    void contentFinished(int /*seqIndex*/) override { }
    void contentHeadTransFinished(int /*seqIndex*/) override { }
    void contentTailTransStarted(int /*seqIndex*/) override { }
    void contentTimeout(int /*seqIndex*/, const QTime & /*time*/) override { }

private:
    bool note(const QString &call)
    {
        calls << call;
        if (const std::function<void()> action = onCall)
            action();
        return true;
    }
};
