#include "Host.h"

#include "Judgement.h"

#include "host/KrPluginExtScreenInterface.h"
#include "host/KrPluginGraphicsItem.h"
#include "host/KrPluginGuiInterface.h"
#include "host/KrPluginKeys.h"
#include "host/KrPluginStatus.h"
#include "tests/support/Files.h"
#include "tests/support/LinkedStage.h"
#include "tests/support/OwnProcess.h"
#include "tests/support/SensorProgram.h"

#include <QAbstractAnimation>
#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QGraphicsObject>
#include <QMouseEvent>
#include <QWidget>
#include <QXmlStreamWriter>

#include <algorithm>
#include <array>
#include <utility>

namespace Soak {

namespace Keys = Kora::Keys;

namespace {

constexpr int BeatMs = 10;
constexpr int RestartPauseMs = 20; // in which the program's end is noticed
constexpr int LongestQueuedMs = 20; // of a message: the panel asks for it after a millisecond
constexpr int LongestDisturbanceMs = 1000;
constexpr int CrowdIntervalMs = 100; // a busy machine lays out no more
constexpr int Contents = 20;
constexpr QSize ViewSize(640, 480);

const QString Start = QStringLiteral("start");
const QString Stop = QStringLiteral("stop");

/// @p value as a number of 0 to @p limit - 1.
int below(quint32 value, int limit)
{
    return static_cast<int>(value % static_cast<quint32>(limit));
}

int disturbanceMs(quint32 value)
{
    return 1 + below(value, LongestDisturbanceMs);
}

QString scenario(const QString &name)
{
    return QStringLiteral(KRHVC_SCENARIO_DIR "/%1.json").arg(name);
}

QString dayScenario()
{
    return QStringLiteral(KRHVC_SOAK_DIR "/day.json");
}

void send(QWidget *widget, QEvent::Type type, const QPoint &position, Qt::MouseButton button)
{
    const Qt::MouseButtons buttons = type == QEvent::MouseButtonPress ? button : Qt::NoButton;
    QMouseEvent event(
        type, position, widget->mapToGlobal(position), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &event);
}

} // namespace

Host::Host(int rate)
    : m_rate(rate)
    , m_loader(QStringLiteral(KRHVC_PLUGIN_FILE))
    , m_view(&m_scene)
{
    m_object = m_loader.instance();
    m_plugin = qobject_cast<Kora::KrPluginExtScreenInterface *>(m_object);
    if (m_plugin == nullptr)
        qFatal("%s", qUtf8Printable(m_loader.errorString()));
    const QString program = m_directory.filePath(QStringLiteral("HvcCon.exe"));
    if (!m_logDirectory.isValid() || !QFile::copy(QStringLiteral(KRHVC_SIMULATOR_FILE), program))
        qFatal("the sensor program cannot be installed");

    m_plugin->setPath(m_directory.path());
    m_plugin->setLogSetting(m_logDirectory.path());
    m_plugin->setParams({
        {Keys::EventSendingLimit, 0},
        {Keys::DisplayMonitoring, Keys::False},
    });
    connect(m_object, SIGNAL(contentStarted(int)), this, SLOT(onContentStarted(int)));
    m_view.resize(ViewSize);
    m_view.show();
    takePanel();
    changeRate(0);
    initialize(Contents);

    m_heart.setTimerType(Qt::PreciseTimer);
    connect(&m_heart, &QTimer::timeout, this, &Host::beat);
    m_sinceBeat.start();
    m_heart.start(BeatMs);
}

Host::~Host()
{
    m_object->disconnect(this);
    delete m_object; // and the panel
}

void Host::start()
{
    ++m_starts;
    m_plugin->start();
}

void Host::rest()
{
    m_plugin->stop();
    initialize(Contents);
    // Else the last report and notice would stay, or none, which differ from rest to rest; a report
    // of what has come in one piece may be of any size.
    QMetaObject::invokeMethod(m_object, "onDataReceived", Qt::DirectConnection,
        Q_ARG(QString, QStringLiteral("At rest.\n")));
    m_plugin->requestSequenceNumber(0); // is refused: there is none
}

void Host::perform(const Event &event)
{
    switch (event.deed) {
    case Deed::Restart:
        restart(m_sensor);
        break;
    case Deed::Initialize:
        initialize(1 + below(event.value, Contents));
        start();
        break;
    case Deed::ChangeRate:
        changeRate(event.value);
        restart(m_sensor);
        break;
    case Deed::EditSettings:
        editSettings(event.value);
        break;
    case Deed::AskAround:
        askAround(event.value);
        break;
    case Deed::ResizePanel:
        m_panel->setItemSize(250 + below(event.value, 400), 200 + below(event.value / 400, 300));
        break;
    case Deed::ShowPanel:
        showPanel(disturbanceMs(event.value));
        break;
    case Deed::ShowCrowd:
        showCrowd(disturbanceMs(event.value));
        break;
    case Deed::ReplacePanel:
        replacePanel();
        break;
    case Deed::ClickSequence:
        click(QStringLiteral("#%1").arg(1 + below(event.value, Contents)));
        break;
    case Deed::ClickRestart:
        clickRestart();
        break;
    case Deed::OpenDialog:
        openDialog(disturbanceMs(event.value));
        break;
    case Deed::KeepHostBusy:
        m_busyMs = disturbanceMs(event.value);
        break;
    case Deed::HoldLog:
        holdLog(disturbanceMs(event.value));
        break;
    case Deed::RemoveLog:
        QDir(m_plugin->logSetting()).removeRecursively();
        break;
    case Deed::RestartAtOnce:
        m_plugin->stop();
        start();
        break;
    case Deed::KillProgram:
        KrTest::endSensorPrograms();
        break;
    case Deed::CrashProgram:
        restart({scenario(QStringLiteral("crash")), m_sensor.intervalMs});
        break;
    }
}

bool Host::isStill() const
{
    const QSet<QObject *> all = objects();
    return std::none_of(all.cbegin(), all.cend(), [](QObject *object) {
        return qobject_cast<QAbstractAnimation *>(object);
    }) && KrTest::sensorProcessCount() == 0;
}

int Host::timerCount() const
{
    const auto *dispatcher = QAbstractEventDispatcher::instance();
    int count = 0;
    const QSet<QObject *> all = objects();
    for (QObject *object : all)
        count += dispatcher->registeredTimers(object).size();
    return count;
}

void Host::measure(Sample &sample)
{
    sample.timers = timerCount();
    sample.objects = objects().size();
    sample.chunks = m_chunks;
    sample.items = itemCount();
    sample.memory = KrTest::allocatedMemory();
    sample.residentMemory = KrTest::residentMemory();
    sample.descriptors = KrTest::openHandles();
    sample.children = KrTest::sensorProcessCount();
    sample.longestGapMs = std::exchange(m_longestGapMs, 0);
    sample.logBytes = 0;
    const QDir log(m_plugin->logSetting());
    const QFileInfoList files = log.entryInfoList(QDir::Files);
    for (const QFileInfo &file : files)
        sample.logBytes += file.size();
}

void Host::onDataReceived(const QString &data)
{
    const int frames = data.count(QLatin1String("Face result count:"));
    m_frames += frames;
    if (frames > 0)
        ++m_chunks;
}

void Host::onContentStarted(int /*index*/)
{
    const int ms = std::exchange(m_busyMs, 0);
    if (ms == 0)
        return;
    QEventLoop loop;
    later(ms, [&loop] { loop.quit(); });
    loop.exec();
}

void Host::beat()
{
    m_longestGapMs = std::max(m_longestGapMs, m_sinceBeat.restart());
}

void Host::later(int ms, const std::function<void()> &followUp)
{
    ++m_followUps;
    QTimer::singleShot(ms, this, [this, followUp] {
        followUp();
        --m_followUps;
    });
}

void Host::initialize(int contents)
{
    m_plugin->setStage(KrTest::linkedStage(contents));
    m_plugin->setPluginData(KrTest::linkedScreen(contents));
    m_plugin->init();
    // A host is not told of frames. What sends them to the plug-in is new after each init().
    const QObjectList children = m_object->children();
    for (QObject *child : children) {
        if (child->inherits("PluginKrHvcP2::KrHvcController"))
            connect(child, SIGNAL(dataReceived(QString)), this, SLOT(onDataReceived(QString)));
    }
}

/// For the next start of the sensor program.
void Host::choose(const Sensor &sensor) const
{
    qputenv("KRHVC_SCENARIO", QFile::encodeName(sensor.scenario));
    KrTest::writeFile(m_directory.filePath(QStringLiteral("setting.ini")),
        "[Main]\nInterval=" + QByteArray::number(sensor.intervalMs) + '\n');
}

void Host::restart(const Sensor &once)
{
    m_plugin->stop();
    later(RestartPauseMs, [this, once] {
        choose(once);
        start();
        choose(m_sensor);
    });
}

/// From half the rate to twice as much; mostly a day's viewers, sometimes those of a busy one.
void Host::changeRate(quint32 value)
{
    constexpr std::array<int, 4> percent{100, 50, 200, 100};
    const int rate = m_rate * percent.at(value % percent.size()) / 100;
    m_sensor.intervalMs = std::max(1, 1000 / std::max(1, rate));
    const bool isBusy = value / percent.size() % 8 == 1;
    m_sensor.scenario = isBusy ? scenario(QStringLiteral("busy-shop")) : dayScenario();
    choose(m_sensor);
}

void Host::editSettings(quint32 value)
{
    constexpr std::array<int, 4> limits{0, 100, 1000, 0};
    m_plugin->setParams({
        {Keys::Concurrent, 1 + below(value, 5)},
        {Keys::EventSendingLimit, limits.at(value / 5 % limits.size())},
        {Keys::Interval, below(value, 60000)},
        {Keys::GenderConfidence, below(value, 1000)},
    });
}

void Host::askAround(quint32 value)
{
    QString xml;
    QXmlStreamWriter writer(&xml);
    m_plugin->writeXml(writer);
    m_plugin->params();
    m_plugin->contentProperties(below(value, Contents));
    m_plugin->icon();
    m_plugin->onScreenLeft();
    m_plugin->onScreenEntered();
    m_plugin->pause();
    m_plugin->reload();
    m_plugin->requestSequenceNumber(below(value, Contents + 2));
}

void Host::takePanel()
{
    m_panel = m_plugin->graphicsItem();
    m_scene.addItem(m_panel);
}

/// The old one stays for a moment: by design a panel that goes leaves behind what is queued for it.
void Host::replacePanel()
{
    Kora::KrPluginGraphicsItem *old = m_panel;
    m_plugin->releaseGraphicsItem();
    takePanel();
    later(LongestQueuedMs, [old] { delete old; });
}

void Host::showPanel(int ms)
{
    m_panel->setVisible(true);
    later(ms, [this] { m_panel->setVisible(false); });
}

void Host::showCrowd(int ms)
{
    m_panel->setVisible(true);
    restart({scenario(QStringLiteral("faces-35")), CrowdIntervalMs});
    later(ms, [this] {
        m_panel->setVisible(false);
        restart(m_sensor);
    });
}

/// Moves the mouse to a button of the panel, presses and releases there; whoever does so sees it.
void Host::click(const QString &buttonName)
{
    const bool wasVisible = m_panel->isVisible();
    m_panel->setVisible(true);
    const QList<QGraphicsItem *> items = m_panel->childItems();
    for (QGraphicsItem *item : items) {
        const QGraphicsObject *button = item->toGraphicsObject();
        if (button == nullptr || button->property("buttonName").toString() != buttonName)
            continue;
        const QPoint position = m_view.mapFromScene(item->sceneBoundingRect().center());
        const QPointer<QWidget> area = m_view.viewport();
        send(area, QEvent::MouseMove, position, Qt::NoButton);
        send(area, QEvent::MouseButtonPress, position, Qt::LeftButton);
        send(area, QEvent::MouseButtonRelease, position, Qt::LeftButton);
        m_panel->setVisible(wasVisible);
        return; // the click may have changed the list
    }
    emit complained(QStringLiteral("the panel has no button \"%1\"").arg(buttonName));
}

void Host::clickRestart()
{
    const bool wasStarted = m_plugin->status() == Kora::Status::Started;
    const int starts = m_starts;
    click(Stop);
    // While it stops, its log may run events, and with them another deed that starts it again.
    const bool isStarted = m_plugin->status() == Kora::Status::Started && m_starts == starts;
    if (wasStarted && isStarted)
        emit complained(QStringLiteral("a click on \"Stop\" has not stopped the plug-in"));
    later(RestartPauseMs, [this] {
        ++m_starts;
        click(Start);
    });
}

/// The settings; their "Ok" and "Cancel" are nobody's business here.
void Host::openDialog(int ms)
{
    later(ms, [] {
        if (QWidget *dialog = QApplication::activeModalWidget())
            dialog->close();
    });
    m_plugin->gui()->execScreenPropertyDialog(QRect());
}

void Host::holdLog(int ms)
{
    const QString lock = logFile(QStringLiteral("KrHvcP2Log.lock"));
    QDir().mkpath(m_plugin->logSetting());
    KrTest::writeFile(lock);
    later(ms, [lock] { QFile::remove(lock); });
}

QString Host::logFile(const QString &name) const
{
    return QDir(m_plugin->logSetting()).filePath(name);
}

/// Of the plug-in, its panel and dialogs, the application and the event loop, whose single-shot
/// timers are objects as well.
QSet<QObject *> Host::objects() const
{
    QSet<QObject *> all;
    const auto add = [&all](QObject *object) {
        if (object == nullptr)
            return;
        all.insert(object);
        const QObjectList descendants = object->findChildren<QObject *>();
        for (QObject *descendant : descendants)
            all.insert(descendant);
    };
    add(m_object);
    add(qApp);
    add(QAbstractEventDispatcher::instance());
    add(dynamic_cast<QObject *>(m_panel));
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget *widget : widgets)
        add(widget);
    const QList<QGraphicsItem *> items = m_scene.items();
    for (QGraphicsItem *item : items)
        add(item->toGraphicsObject());
    return all;
}

} // namespace Soak
