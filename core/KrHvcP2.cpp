#include "core/KrHvcP2.h"

#include "core/screen/DetectionContent.h"
#include "core/screen/NewScreen.h"
#include "detection/Determination.h"
#include "detection/LayoutBound.h"
#include "detection/SensorOutputParser.h"
#include "gui/KrHvcGui.h"
#include "host/KrPluginKeys.h"
#include "host/KrPluginLogLevel.h"
#include "log/OwnedMutex.h"
#include "log/PluginLogger.h"
#include "monitor/KrMovingTextItem.h"
#include "monitor/OfflineTextDocument.h"
#include "monitor/SlidePath.h"
#include "sensor/KrHvcController.h"
#include "sensor/SensorIni.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QGraphicsScene>
#include <QWidget>

#include <algorithm>
#include <limits>
#include <mutex>
#include <utility>

namespace PluginKrHvcP2 {

namespace Keys = Kora::Keys;
namespace LogLevel = Kora::LogLevel;
namespace Status = Kora::Status;

namespace {

constexpr int StatusDirection = Upwards;
constexpr int NoticeDirection = Rightwards;
constexpr int IconHeight = 24;
constexpr int LastRecordTimeoutMs = 1000;

QVariantMap subMap(const QVariant &map, const QString &key)
{
    return map.toMap().value(key).toMap();
}

} // namespace

KrHvcP2::KrHvcP2()
    : m_sendMutex(std::make_shared<OwnedMutex>())
    , m_reportDocument(std::make_unique<OfflineTextDocument>())
{
    qRegisterMetaType<LogDivision>("LogDivision");
    qRegisterMetaType<CalculatedData>("CalculatedData");
    qRegisterMetaType<QList<CalculatedData>>("QList<CalculatedData>");

    m_name = QStringLiteral("KrHvcP2");
    m_identifier = QStringLiteral("com.velmora.kora.plugin.KrHvcP2");
    m_version = QStringLiteral("1.0");
    m_apiLevel = 1;
    m_kind = 3;
}

KrHvcP2::~KrHvcP2()
{
    m_isBeingDestroyed = true;
    if (m_controller != nullptr) {
        // What arrives while the stop key is written must not reach the host any more.
        disconnect(m_controller, SIGNAL(dataReceived(QString)), this, nullptr);
        m_controller->stop();
        delete m_controller;
        m_controller = nullptr;
    }
    if (QCoreApplication::instance() == nullptr) {
        // The end of the process: items and widgets outlive their application, but their
        // destructors need it.
        static_cast<void>(m_gui.release());
        return;
    }
    deleteGraphicsItem();
    deletePropertyWidget();
    m_gui.reset(); // it points to members of this
}

QVariant KrHvcP2::params() const
{
    return m_settings.toMap();
}

QString KrHvcP2::description() const
{
    // The lines of the metadata block.
    return QStringLiteral(
        "This plug-in is intended to use \"OMRON(R) Human Vision Conponents\" on Parvista.\n"
        "To use PC, one of the following equipment must be installed.\n\n"
        "B5T-007001-010, B5T-007001-010");
}

Kora::KrPluginGraphicsItem *KrHvcP2::graphicsItem()
{
    if (m_graphicsItem == nullptr) {
        auto *item = new KrMovingTextItem;
        item->setPlugin(this);
        m_graphicsItem = item;
    }
    return m_graphicsItem;
}

void KrHvcP2::releaseGraphicsItem()
{
    // A released panel must not take this plug-in's next one away when it is deleted.
    if (KrMovingTextItem *released = panel())
        released->setReleased();
    m_graphicsItem = nullptr;
}

Kora::KrPluginGuiInterface *KrHvcP2::gui()
{
    if (!m_gui)
        createGui();
    return m_gui.get();
}

void KrHvcP2::setParams(const QVariantMap &params)
{
    m_settings.update(params);
}

bool KrHvcP2::writeXml(QXmlStreamWriter &writer)
{
    m_settings.writeXml(writer);
    return true;
}

QList<QPair<QString, QVariant>> KrHvcP2::contentProperties(int index) const
{
    QList<QPair<QString, QVariant>> properties;
    const QVariantMap entry
        = m_pluginData.toMap().value(Keys::Contents).toList().value(index).toMap();
    for (auto it = entry.cbegin(); it != entry.cend(); ++it)
        properties.append({it.key(), it.value()});
    return properties;
}

bool KrHvcP2::init()
{
    forgetFrames(); // their numbers are those of the old contents
    m_status = Status::Initializing;
    graphicsItem();
    if (panel() != nullptr) {
        delete m_controller;
        createController();
        showLine(tr("KrHvcP2 Plugin initialized."));
    }
    if (m_graphicsItem != nullptr)
        m_graphicsItem->setVisible(m_settings.displayMonitoring);
    m_requests.setContents(detectionContents(m_pluginData.toMap(), m_stage.screens()));
    m_status = Status::Initialized;
    return true;
}

bool KrHvcP2::start()
{
    if (m_controller == nullptr) {
        showLine(tr("Start failed. You should call init() before start."));
        return false;
    }

    m_status = Status::Starting;
    showLine(tr("Starting..."));
    const SensorParameters parameters
        = readSensorIni(QDir(m_path).absoluteFilePath(QStringLiteral("setting.ini")),
            {m_settings.interval, m_controller->speed(), m_controller->port()});
    m_controller->setInterval(parameters.interval);
    m_controller->setSpeed(parameters.speed);
    m_controller->setPort(parameters.port);

    const QPointer<KrHvcP2> self(this);
    m_controller->start();
    if (!self)
        return true;
    showLine(tr("Started."));
    m_status = Status::Started;
    return true;
}

bool KrHvcP2::stop()
{
    forgetFrames();
    if (m_controller == nullptr)
        return true;
    m_status = Status::Stopping;
    showLine(tr("Stopping..."));
    m_controller->stop(); // last: its receivers may delete this
    return true;
}

bool KrHvcP2::pause()
{
    showLine(tr("Paused."));
    m_status = Status::Paused;
    return true;
}

bool KrHvcP2::reload()
{
    showLine(tr("Reloaded."));
    return true;
}

void KrHvcP2::requestSequenceNumber(int number)
{
    // The smallest int has no predecessor; no content has either number.
    requestSequenceIndex(number == std::numeric_limits<int>::min() ? number : number - 1);
}

void KrHvcP2::requestSequenceIndex(int index)
{
    const qint64 number = qint64{index} + 1;
    const int limit = m_settings.eventSendingLimit;
    switch (m_requests.request(number, QDateTime::currentDateTimeUtc(), limit)) {
    case SequenceRequests::Answer::Unknown:
        showNotice(tr("<span style=\"color:yellow\">Sequence #%1 is invalid.</span>").arg(number));
        return;
    case SequenceRequests::Answer::Restricted:
        showNotice(
            tr("<span style=\"color:yellow\">#%1 is not sent now (within restricted).</span>")
                .arg(number));
        writeLog(tr("#%1 is not sent now because it is within the limited min-time(%2 msec.).")
                     .arg(number)
                     .arg(limit),
            Notice);
        return;
    case SequenceRequests::Answer::Admitted:
        break;
    }

    if (KrMovingTextItem *item = panel())
        item->addText(tr("A switch to #%1 has been sent.").arg(number), NoticeDirection);
    m_currentSequenceIndex = index;
    emit contentStarted(index); // last: the host may delete this
}

bool KrHvcP2::makeDefaultPluginData(QVariant *data)
{
    if (data == nullptr)
        return false;

    *data = newScreen(data->toMap());
    return true;
}

QImage KrHvcP2::icon() const
{
    return QImage(QStringLiteral(":/images/human.svg"))
        .scaledToHeight(IconHeight, Qt::SmoothTransformation);
}

void KrHvcP2::setLogSetting(const QString &directory)
{
    m_logSetting.clear();
    if (directory.isEmpty() || !QDir(directory).exists())
        return;

    m_logSetting = QDir(directory).absoluteFilePath(name());
    PluginLogger &logger = PluginLogger::instance();
    LogSettings settings = logger.settings();
    settings.directory = m_logSetting;
    settings.style = 1;
    settings.maxLevel = Information;
    settings.retentionDays = 30;
    settings.baseName = QStringLiteral("%1Log").arg(name());
    for (auto name = settings.levelNames.begin(); name != settings.levelNames.end(); ++name)
        *name = LogLevel::translatedName(name.key());
    logger.setSettings(settings);
}

void KrHvcP2::onDataReceived(const QString &data)
{
    const SensorFrame frame = SensorOutputParser::parse(data, QDateTime::currentDateTime());
    const QString report = showReport(data, frame);

    if (frame.hasRows)
        ++m_newestFrame;
    const quint64 number = m_newestFrame;
    const QPointer<KrHvcP2> self(this);
    writeLog(report, frame.errorSeen ? Error : (frame.noFace ? Notice : Information));
    // A newer frame that was handled in the wait has decided already.
    if (!self || number != m_newestFrame)
        return;
    sendStartedEvents(
        determineSequences(frame.faces, frame.sizes, frame.directionValues, m_requests.contents()));
}

void KrHvcP2::sendLogMessage(const QString &message, LogDivision logDivision)
{
    emit throwLogMessage(message, logDivision);
}

void KrHvcP2::sendStartedEvents(const QList<CalculatedData> &calcedList)
{
    const std::shared_ptr<OwnedMutex> mutex = m_sendMutex;
    if (mutex->isHeldByCurrentThread()) {
        m_deferredEvents = calcedList; // older viewers are worthless by then
        return;
    }

    const QPointer<KrHvcP2> self(this);
    {
        const std::unique_lock<OwnedMutex> lock(*mutex);
        m_deferredEvents.reset();
        QString message = tr("The determined sequence number:");
        const int count = std::min(calcedList.size(), m_settings.concurrent);
        if (count < 1)
            return;
        const QList<CalculatedData> best = calcedList.mid(0, count);
        for (const CalculatedData &entry : best) {
            if (entry.seqNumber < 1)
                continue;
            requestSequenceIndex(entry.seqNumber - 1);
            if (!self)
                return;
            message += QStringLiteral(" #%1").arg(entry.seqNumber);
        }
        writeLog(message, Information);
    }
    if (self && m_deferredEvents)
        QMetaObject::invokeMethod(this, &KrHvcP2::requestDeferredEvents, Qt::QueuedConnection);
}

void KrHvcP2::requestDeferredEvents()
{
    if (const auto events = std::exchange(m_deferredEvents, std::nullopt))
        sendStartedEvents(*events);
}

void KrHvcP2::onScreenValuesUpdated(int /*screenId*/, const QList<int> & /*seqIndexList*/)
{
    m_settings = ScreenSettings::fromStored(subMap(m_pluginData, Keys::PluginData));
}

void KrHvcP2::onFailedToStart(const QString &msg)
{
    writeLog(msg, Critical);
}

void KrHvcP2::onErrorOccured(const QString &msg)
{
    writeLog(msg, Error);
}

void KrHvcP2::onCriticalErrorOccured(const QString &msg)
{
    writeLog(msg, Critical);
}

void KrHvcP2::onStarted()
{
    writeLog(tr("HvcCon process started."), Notice);
}

void KrHvcP2::onStopped()
{
    showLine(tr("Stopped."));
    m_status = Status::Stopped;
    writeLog(tr("HvcCon process stopped."), Notice);
}

KrMovingTextItem *KrHvcP2::panel() const
{
    return dynamic_cast<KrMovingTextItem *>(m_graphicsItem);
}

/// Nothing that was seen until now starts a sequence any more.
void KrHvcP2::forgetFrames()
{
    ++m_newestFrame;
    m_deferredEvents.reset();
}

void KrHvcP2::writeLog(const QString &message, LogDivision level) const
{
    PluginLogger &logger = PluginLogger::instance();
    // Below the destructor an event could make the host delete this once more.
    if (m_isBeingDestroyed)
        logger.writeWithoutEvents(message, level, LastRecordTimeoutMs);
    else
        logger.write(message, level, PluginLogger::DefaultTimeoutMs);
}

void KrHvcP2::showLine(const QString &text) const
{
    if (KrMovingTextItem *item = panel())
        item->addText(text, StatusDirection);
}

QString KrHvcP2::showReport(const QString &chunk, const SensorFrame &frame) const
{
    KrMovingTextItem *item = panel();
    if (!isLayoutBounded(frame)) {
        QString text = SensorOutputParser::plainText(chunk);
        if (item != nullptr)
            item->addText(boundedPlainText(text), StatusDirection);
        return text;
    }

    if (item != nullptr)
        item->addHtml(frame.html, StatusDirection);
    m_reportDocument->clear();
    m_reportDocument->setHtml(frame.html);
    return m_reportDocument->toPlainText();
}

void KrHvcP2::showNotice(const QString &html) const
{
    if (KrMovingTextItem *item = panel())
        item->addHtml(html, NoticeDirection);
}

// Blanks within SIGNAL and SLOT would not be the normalised form.
// clang-format off
void KrHvcP2::createController()
{
    m_controller = new KrHvcController(m_path, this);
    bool ok = connect(m_controller, SIGNAL(dataReceived(QString)),
                      this, SLOT(onDataReceived(QString)));
    ok = connect(m_controller, SIGNAL(startingFailed(QString)),
                 this, SLOT(onFailedToStart(QString))) && ok;
    ok = connect(m_controller, SIGNAL(errorOccured(QString)),
                 this, SLOT(onErrorOccured(QString))) && ok;
    ok = connect(m_controller, SIGNAL(criticalErrorOccured(QString)),
                 this, SLOT(onCriticalErrorOccured(QString))) && ok;
    ok = connect(m_controller, SIGNAL(started()), this, SLOT(onStarted())) && ok;
    ok = connect(m_controller, SIGNAL(stopped()), this, SLOT(onStopped())) && ok;
    Q_ASSERT_X(ok, Q_FUNC_INFO, "a signature does not match");
    Q_UNUSED(ok)
}

void KrHvcP2::createGui()
{
    m_gui = std::make_unique<KrHvcGui>();
    m_gui->setPluginData(&m_pluginData); // the editors change the stored map in place
    m_gui->setStage(&m_stage);
    const bool ok = connect(m_gui.get(), SIGNAL(screenValuesUpdated(int,QList<int>)),
                            this, SLOT(onScreenValuesUpdated(int,QList<int>)));
    Q_ASSERT_X(ok, Q_FUNC_INFO, "a signature does not match");
    Q_UNUSED(ok)
}
// clang-format on

void KrHvcP2::deleteGraphicsItem()
{
    Kora::KrPluginGraphicsItem *item = m_graphicsItem;
    if (item == nullptr)
        return;
    if (item->parentItem() != nullptr)
        item->setParentItem(nullptr);
    if (item->scene() != nullptr)
        item->scene()->removeItem(item);
    delete item;
    m_graphicsItem = nullptr;
}

void KrHvcP2::deletePropertyWidget()
{
    if (m_propertyWidget == nullptr)
        return;
    if (m_propertyWidget->parentWidget() != nullptr)
        m_propertyWidget->setParent(nullptr);
    delete m_propertyWidget;
    m_propertyWidget = nullptr;
}

} // namespace PluginKrHvcP2
