#pragma once

#include <QImage>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPluginLoader>
#include <QPointer>
#include <QString>
#include <QTime>
#include <QTimer>
#include <QVariantMap>

namespace Kora {
class KrPluginExtScreenInterface;
class KrPluginGraphicsItem;
class KrPluginGuiInterface;
} // namespace Kora

namespace Stage {
class StageFile;
} // namespace Stage

namespace Player {

/// What a plug-in file tells about itself.
struct PluginInformation
{
    QString name;
    QString version;
    QString vendor;
    QString copyright;
    QString url;
    QString description; ///< may hold several lines
    QImage icon;
};

/// Loads the plug-in file, drives the plug-in as a host does and owns it.
class PluginHost : public QObject
{
    Q_OBJECT

public:
    explicit PluginHost(QObject *parent = nullptr);
    ~PluginHost() override; ///< shuts down

    /// False when the file is no screen plug-in; see errorString().
    bool load(const QString &fileName);
    QString errorString() const { return m_errorString; }
    PluginInformation information() const { return m_information; }

    /// Hands over directories, stage and screen and initialises the plug-in. Call once, after
    /// load(). An empty @p logDirectory leaves the plug-in's log off.
    bool setUp(const Stage::StageFile &stage, int screenId, const QString &logDirectory);
    /// Hands over a changed stage and initialises again; what ran before runs again.
    bool update(const Stage::StageFile &stage, int screenId);

    /// Null before setUp() and after the plug-in has gone. The plug-in owns it.
    Kora::KrPluginGraphicsItem *panel() const;
    /// Null likewise, and when the plug-in has no settings dialogs. The plug-in owns it.
    Kora::KrPluginGuiInterface *gui() const;

    /// The screen's parameter map as the plug-in holds it; its dialogs edit it in place.
    QVariantMap pluginData() const;
    QObject *object() const; ///< sends the signals; null when the plug-in has gone
    QVariantMap params() const; ///< the settings that the plug-in works with

    bool start();
    bool stop();
    bool pause();
    bool reload();
    /// Asks the plug-in for a sequence, counted from 1, as the buttons of its panel do. It answers
    /// by contentStarted() unless there is no such sequence or it is held back.
    void requestSequence(int number);

    /// Stops a running plug-in and starts it again, with a new sensor program; a paused one is
    /// paused again. Does nothing otherwise. As finish() it lets events pass.
    bool restart();

    /// Stops a running plug-in and lets events pass until it says so. Does nothing otherwise.
    void finish();
    /// Finishes and deletes the plug-in together with its panel: take that off its scene first.
    void shutDown();

    int status() const; ///< the plug-in's code; 0 without a plug-in
    static QString statusText(int status);

signals:
    void contentStarted(int seqIndex);
    /// One of the other content signals; @p time is null but for "contentTimeout".
    void contentSignalReceived(const QString &signalName, int seqIndex, const QTime &time);
    void logMessageThrown(const QString &message, int logDivision);
    void statusChanged(int status);
    void called(const QString &operation, bool result); ///< a lifecycle operation has returned
    /// A dialog has changed the settings (empty list) or these contents. Sent from inside the
    /// dialog: take the changes in later.
    void screenValuesUpdated(int screenId, const QList<int> &seqIndexList);
    /// A dialog has new contents for the screen, by zero-based index. Likewise.
    void contentsRequested(int screenId, const QMap<int, QVariant> &contents);

private slots:
    void onContentPaused(int seqIndex);
    void onContentStopped(int seqIndex);
    void onContentFinished(int seqIndex);
    void onContentHeadTransFinished(int seqIndex);
    void onContentTailTransStarted(int seqIndex);
    void onContentTimeout(int seqIndex, const QTime &time);
    void updateStatus();

private:
    Kora::KrPluginExtScreenInterface *plugin() const; // null when the plug-in has gone
    void readInformation();
    void handOver(const Stage::StageFile &stage, int screenId);
    void takeGui();
    bool connectSignals();
    bool call(const QString &operation, bool (Kora::KrPluginExtScreenInterface::*function)());

    QPluginLoader m_loader;
    QPointer<QObject> m_object; // owned, but somebody else may delete it first
    Kora::KrPluginExtScreenInterface *m_plugin = nullptr; // the same object
    Kora::KrPluginGraphicsItem *m_panel = nullptr; // the plug-in's
    Kora::KrPluginGuiInterface *m_gui = nullptr; // the plug-in's
    QPointer<QObject> m_guiObject; // tells that the GUI has gone
    PluginInformation m_information;
    QString m_errorString;
    QTimer m_statusTimer;
    int m_status = 0; // last one announced
};

} // namespace Player
