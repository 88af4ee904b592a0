#pragma once

#include "core/screen/ScreenSettings.h"
#include "detection/CalculatedData.h"
#include "detection/SequenceRequests.h"
#include "host/KrPluginExtScreenInterface.h"
#include "log/LogDivision.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>

class QTextDocument;

namespace PluginKrHvcP2 {

class KrHvcController;
class KrHvcGui;
class KrMovingTextItem;
class OwnedMutex;
struct SensorFrame;

// moc answers for a base class under the name that the class head gives it, and hosts ask for the
// unqualified one.
using Kora::KrPluginExtScreenInterface;

/// The object that the host loads: it conducts sensor, detection, panel and log.
///
/// Everything runs on the thread that owns it, which must be the thread of the host's scene. Log
/// writes and signals towards the host may run event loops and host code, which may delete this
/// object: after each of them the functions below ask before they go on.
class KrHvcP2 : public QObject, public KrPluginExtScreenInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.velmora.kora.plugin.ExtScreenInterface/1.0" FILE "metadata.json")
    Q_INTERFACES(Kora::KrPluginCommonInterface Kora::KrPluginExtScreenInterface)

public:
    KrHvcP2();
    ~KrHvcP2() override;

    QString name() const override { return m_name; }
    QString path() const override { return m_path; }
    void setPath(const QString &path) override
    {
        m_path = path;
    } ///< "setting.ini" and the sensor program lie there
    int apiLevel() const override { return m_apiLevel; }
    QString identifier() const override { return m_identifier; }
    QString version() const override { return m_version; }
    bool hasGraphicsItem() const override { return true; }
    int kind() const override { return m_kind; }
    QVariant params() const override;
    bool hasParams() const override { return true; }
    QObject *object() override { return this; }
    QString shortName() const override { return QStringLiteral("krhvcp2"); }
    QString displayName() const override { return QStringLiteral("OMRON(R) HVC-P2 Plugin"); }
    QString description() const override;

    Kora::KrPluginGraphicsItem *graphicsItem() override;
    QWidget *propertyWidget() override { return m_propertyWidget; }
    void releaseGraphicsItem() override;
    void releasePropertyWidget() override { m_propertyWidget = nullptr; }
    Kora::KrPluginGuiInterface *gui() override;
    void setParams(const QVariantMap &params) override;
    bool writeXml(QXmlStreamWriter &writer) override;
    QList<QPair<QString, QVariant>> contentProperties(int index) const override;
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
    void requestSequenceIndex(int index) override;
    int currentSequenceNumber() const override { return m_currentSequenceIndex + 1; }
    int currentSequenceIndex() const override { return m_currentSequenceIndex; }
    int sequenceControlLevel() const override { return 1; }
    int timeControlLevel() const override { return 0; }
    int status() const override { return m_status; }
    bool makeDefaultPluginData(QVariant *data) override;
    QList<int> supportedTypes() const override { return {2}; }
    QList<int> extraTypes() const override { return {}; }
    QImage icon() const override;
    void setLogSetting(const QString &directory) override; ///< ignores a directory that is missing

    // Hosts connect by name and index: keep the order of signals and slots.
signals:
    void throwLogMessage(const QString &message, int LogDivision) override;
    void contentStarted(int seqIndex) override;
    void contentPaused(int seqIndex) override;
    void contnetStopped(int seqIndex) override;
    void contentFinished(int seqIndex) override;
    void contentHeadTransFinished(int seqIndex) override;
    void contentTailTransStarted(int seqIndex) override;
    void contentTimeout(int seqIndex, const QTime &time) override;

private slots:
    void onDataReceived(const QString &data);
    // Hosts invoke these two by the unqualified names of their arguments.
    // clang-format off
    void sendLogMessage(const QString &message, LogDivision logDivision); // clazy:exclude=fully-qualified-moc-types
    void sendStartedEvents(const QList<CalculatedData> &calcedList); // clazy:exclude=fully-qualified-moc-types
    // clang-format on
    void onScreenValuesUpdated(int screenId, const QList<int> &seqIndexList);
    void onFailedToStart(const QString &msg);
    void onErrorOccured(const QString &msg);
    void onCriticalErrorOccured(const QString &msg);
    void onStarted();
    void onStopped();

private:
    KrMovingTextItem *panel() const;
    void showLine(const QString &text) const;
    void showNotice(const QString &html) const;
    /// Shows @p frame, read from @p chunk, on the panel; returns its text for the log.
    QString showReport(const QString &chunk, const SensorFrame &frame) const;
    void createController();
    void createGui();
    void deleteGraphicsItem();
    void deletePropertyWidget();
    void requestDeferredEvents();
    void forgetFrames();
    void writeLog(const QString &message, LogDivision level) const;

    bool m_isBeingDestroyed = false;
    int m_status = Kora::Status::Constructed;
    KrHvcController *m_controller = nullptr; // child of this
    ScreenSettings m_settings;
    int m_currentSequenceIndex = -1; // last one sent; -1: none

    SequenceRequests m_requests;
    // Shared with the calls that hold it, so that it can be unlocked after this object has gone.
    std::shared_ptr<OwnedMutex> m_sendMutex;
    quint64 m_newestFrame = 0; // counts the frames that came, and what made them obsolete
    // Newest results that came while this thread was inside sendStartedEvents().
    std::optional<QList<CalculatedData>> m_deferredEvents;

    std::unique_ptr<KrHvcGui> m_gui; // created on first request
    std::unique_ptr<QTextDocument> m_reportDocument; // turns the HTML of a frame into plain text
};

} // namespace PluginKrHvcP2
