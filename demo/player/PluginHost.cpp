#include "demo/player/PluginHost.h"

#include "demo/stage/StageFile.h"
#include "demo/support/UserFile.h"
#include "host/KrPluginExtScreenInterface.h"
#include "host/KrPluginGraphicsItem.h"
#include "host/KrPluginGuiInterface.h"
#include "host/KrPluginKeys.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QThread>

namespace Player {

namespace Status = Kora::Status;

namespace {

constexpr int StatusInterval = 100; // ms; the plug-in has no signal for its status
constexpr int StopTimeout = 1000; // ms

bool isRunning(int status)
{
    // Pausing leaves the sensor program running.
    return status == Status::Starting || status == Status::Started || status == Status::Paused;
}

QString linesOf(const QJsonValue &value)
{
    if (!value.isArray())
        return value.toString();
    QStringList lines;
    const QJsonArray array = value.toArray();
    for (const QJsonValue &line : array)
        lines << line.toString();
    return lines.join(QLatin1Char('\n'));
}

} // namespace

PluginHost::PluginHost(QObject *parent)
    : QObject(parent)
{
    m_statusTimer.setInterval(StatusInterval);
    connect(&m_statusTimer, &QTimer::timeout, this, &PluginHost::updateStatus);
}

PluginHost::~PluginHost()
{
    shutDown();
}

bool PluginHost::load(const QString &fileName)
{
    if (Demo::UserFile::isNoFile(fileName)) {
        m_errorString = tr("The file is not a screen plug-in.");
        return false;
    }
    m_loader.setFileName(QFileInfo(fileName).absoluteFilePath());
    if (!m_loader.load()) {
        m_errorString = m_loader.errorString();
        return false;
    }
    m_object = m_loader.instance();
    m_plugin = qobject_cast<Kora::KrPluginExtScreenInterface *>(m_object.data());
    if (!m_plugin) {
        m_errorString = tr("The file is not a screen plug-in.");
        delete m_object;
        return false;
    }
    if (!connectSignals()) {
        m_errorString = tr("The plug-in lacks a signal of the screen interface.");
        shutDown();
        return false;
    }
    readInformation();
    return true;
}

bool PluginHost::setUp(const Stage::StageFile &stage, int screenId, const QString &logDirectory)
{
    if (!plugin())
        return false;
    m_plugin->setPath(QFileInfo(m_loader.fileName()).absolutePath());
    m_plugin->setLogSetting(logDirectory);

    handOver(stage, screenId);
    m_plugin->setParams(stage.screenParameters(screenId).value(Kora::Keys::PluginData).toMap());

    m_panel = m_plugin->graphicsItem();
    takeGui();
    m_statusTimer.start();
    return call(QStringLiteral("init"), &Kora::KrPluginExtScreenInterface::init);
}

bool PluginHost::update(const Stage::StageFile &stage, int screenId)
{
    if (!plugin())
        return false;
    const QPointer<PluginHost> guard(this); // see call()
    const int before = status();
    handOver(stage, screenId);
    bool ok = call(QStringLiteral("init"), &Kora::KrPluginExtScreenInterface::init);
    // A new initialisation ends the sensor program, also that of a paused plug-in.
    if (guard && isRunning(before))
        ok = start() && ok;
    if (guard && before == Status::Paused)
        ok = pause() && ok;
    return ok;
}

Kora::KrPluginGraphicsItem *PluginHost::panel() const
{
    return plugin() ? m_panel : nullptr;
}

Kora::KrPluginGuiInterface *PluginHost::gui() const
{
    return plugin() && m_guiObject ? m_gui : nullptr;
}

QVariantMap PluginHost::pluginData() const
{
    return plugin() ? m_plugin->pluginData().toMap() : QVariantMap();
}

QObject *PluginHost::object() const
{
    return plugin() ? m_plugin->object() : nullptr;
}

QVariantMap PluginHost::params() const
{
    return plugin() ? m_plugin->params().toMap() : QVariantMap();
}

bool PluginHost::start()
{
    return call(QStringLiteral("start"), &Kora::KrPluginExtScreenInterface::start);
}

bool PluginHost::stop()
{
    return call(QStringLiteral("stop"), &Kora::KrPluginExtScreenInterface::stop);
}

bool PluginHost::pause()
{
    return call(QStringLiteral("pause"), &Kora::KrPluginExtScreenInterface::pause);
}

bool PluginHost::reload()
{
    return call(QStringLiteral("reload"), &Kora::KrPluginExtScreenInterface::reload);
}

void PluginHost::requestSequence(int number)
{
    if (plugin())
        m_plugin->requestSequenceNumber(number); // nothing after it: this may have gone
}

bool PluginHost::restart()
{
    const int before = status();
    if (!isRunning(before))
        return true;
    const QPointer<PluginHost> guard(this); // see call()
    finish();
    bool ok = guard && start();
    if (guard && before == Status::Paused)
        ok = pause() && ok;
    return ok;
}

void PluginHost::finish()
{
    if (isRunning(status())) {
        stop();
        const QDeadlineTimer deadline(StopTimeout);
        while (status() == Status::Stopping && !deadline.hasExpired()) {
            QCoreApplication::processEvents();
            QThread::msleep(10);
        }
        // The sensor program ends with its QProcess, which the plug-in deletes later.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        updateStatus();
    }
}

void PluginHost::shutDown()
{
    finish();
    m_statusTimer.stop();
    m_panel = nullptr;
    m_gui = nullptr;
    m_plugin = nullptr;
    // The library stays loaded: Qt may still hold meta types that were registered from it.
    delete m_object;
}

int PluginHost::status() const
{
    return plugin() ? plugin()->status() : 0;
}

QString PluginHost::statusText(int status)
{
    switch (status) {
    case Status::Stopped:
        return tr("Stopped");
    case Status::Paused:
        return tr("Paused");
    case Status::Started:
        return tr("Started");
    case Status::Starting:
        return tr("Starting");
    case Status::Stopping:
        return tr("Stopping");
    case Status::Initializing:
        return tr("Initialising");
    case Status::Initialized:
        return tr("Initialised");
    case Status::Constructed:
        return tr("Loaded");
    case 0:
        return tr("No plug-in");
    default:
        return tr("Unknown");
    }
}

void PluginHost::onContentPaused(int seqIndex)
{
    emit contentSignalReceived(QStringLiteral("contentPaused"), seqIndex, QTime());
}

void PluginHost::onContentStopped(int seqIndex)
{
    emit contentSignalReceived(QStringLiteral("contnetStopped"), seqIndex, QTime());
}

void PluginHost::onContentFinished(int seqIndex)
{
    emit contentSignalReceived(QStringLiteral("contentFinished"), seqIndex, QTime());
}

void PluginHost::onContentHeadTransFinished(int seqIndex)
{
    emit contentSignalReceived(QStringLiteral("contentHeadTransFinished"), seqIndex, QTime());
}

void PluginHost::onContentTailTransStarted(int seqIndex)
{
    emit contentSignalReceived(QStringLiteral("contentTailTransStarted"), seqIndex, QTime());
}

void PluginHost::onContentTimeout(int seqIndex, const QTime &time)
{
    emit contentSignalReceived(QStringLiteral("contentTimeout"), seqIndex, time);
}

void PluginHost::updateStatus()
{
    const int now = status();
    if (now == m_status)
        return;
    m_status = now;
    emit statusChanged(now);
}

Kora::KrPluginExtScreenInterface *PluginHost::plugin() const
{
    return m_object ? m_plugin : nullptr;
}

void PluginHost::readInformation()
{
    const QJsonObject metaData = m_loader.metaData().value(QLatin1String("MetaData")).toObject();
    m_information.name = metaData.value(QLatin1String("Name")).toString();
    m_information.version = metaData.value(QLatin1String("Version")).toString();
    m_information.vendor = metaData.value(QLatin1String("Vendor")).toString();
    m_information.copyright = metaData.value(QLatin1String("Copyright")).toString();
    m_information.url = metaData.value(QLatin1String("Url")).toString();
    m_information.description = linesOf(metaData.value(QLatin1String("Description")));
    m_information.icon = m_plugin->icon();
}

void PluginHost::handOver(const Stage::StageFile &stage, int screenId)
{
    Kora::KrPluginStage description;
    description.setScreens(stage.screens());
    m_plugin->setStage(description);
    m_plugin->setPluginData(stage.screenParameters(screenId));
}

void PluginHost::takeGui()
{
    m_gui = m_plugin->gui();
    m_guiObject = m_gui ? m_gui->object() : nullptr;
    if (!m_guiObject)
        return;
    // By name, as in connectSignals(). Changes that nobody hears of would be lost.
    // clang-format off
    bool ok = connect(m_guiObject, SIGNAL(screenValuesUpdated(int,QList<int>)), this,
        SIGNAL(screenValuesUpdated(int,QList<int>)));
    ok = connect(m_guiObject, SIGNAL(requestAddContents(int,QMap<int,QVariant>)), this,
             SIGNAL(contentsRequested(int,QMap<int,QVariant>)))
        && ok;
    // clang-format on
    if (!ok)
        m_guiObject.clear();
}

bool PluginHost::connectSignals()
{
    // The interface is no QObject, so its signals have no address to connect to; "contnetStopped"
    // is spelt as plug-ins have it.
    // clang-format off
    const QObject *sender = m_plugin->object();
    bool ok = connect(sender, SIGNAL(throwLogMessage(QString,int)), this,
        SIGNAL(logMessageThrown(QString,int)));
    ok = connect(sender, SIGNAL(contentStarted(int)), this, SIGNAL(contentStarted(int))) && ok;
    ok = connect(sender, SIGNAL(contentPaused(int)), this, SLOT(onContentPaused(int))) && ok;
    ok = connect(sender, SIGNAL(contnetStopped(int)), this, SLOT(onContentStopped(int))) && ok;
    ok = connect(sender, SIGNAL(contentFinished(int)), this, SLOT(onContentFinished(int))) && ok;
    ok = connect(sender, SIGNAL(contentHeadTransFinished(int)), this,
             SLOT(onContentHeadTransFinished(int)))
        && ok;
    ok = connect(sender, SIGNAL(contentTailTransStarted(int)), this,
             SLOT(onContentTailTransStarted(int)))
        && ok;
    ok = connect(sender, SIGNAL(contentTimeout(int,QTime)), this,
             SLOT(onContentTimeout(int,QTime)))
        && ok;
    // clang-format on
    return ok;
}

bool PluginHost::call(
    const QString &operation, bool (Kora::KrPluginExtScreenInterface::*function)())
{
    if (!plugin())
        return false;
    const QPointer<PluginHost> guard(this); // a plug-in may run an event loop in its operations
    const bool result = (m_plugin->*function)();
    if (guard) {
        emit called(operation, result);
        updateStatus();
    }
    return result;
}

} // namespace Player
