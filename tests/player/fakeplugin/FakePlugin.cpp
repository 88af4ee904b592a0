#include "FakePlugin.h"

#include <QCoreApplication>
#include <QGraphicsScene>
#include <QTimer>

namespace {

void record(const QString &call)
{
    const QStringList calls = qApp->property("fakeCalls").toStringList();
    qApp->setProperty("fakeCalls", calls + QStringList{call});
}

} // namespace

FakePanel::~FakePanel()
{
    record(scene() ? QStringLiteral("panel deleted on a scene") : QStringLiteral("panel deleted"));
}

FakeGui::FakeGui()
    : m_add(QStringLiteral("Add"))
    , m_properties(QStringLiteral("Properties"))
{
    m_add.setObjectName(QStringLiteral("fakeAdd"));
    m_properties.setObjectName(QStringLiteral("fakeProperties"));
    connect(&m_add, &QAction::triggered, this, [] { record(QStringLiteral("add")); });
    connect(
        &m_properties, &QAction::triggered, this, [this] { execScreenPropertyDialog(QRect()); });
}

int FakeGui::execScreenPropertyDialog(const QRect & /*anchor*/)
{
    record(QStringLiteral("screen dialog"));
    return 1;
}

void FakeGui::execContentPropertyDialog(int seqIndex, const QRect &anchor)
{
    record((anchor.isNull() ? QStringLiteral("content dialog %1")
                            : QStringLiteral("content dialog %1 beside something"))
               .arg(seqIndex));
}

FakePlugin::~FakePlugin()
{
    record(QStringLiteral("deleted with status %1").arg(m_status));
    delete m_gui;
    delete m_graphicsItem;
}

void FakePlugin::setPath(const QString &path)
{
    m_path = path;
    record(QStringLiteral("setPath"));
}

Kora::KrPluginGraphicsItem *FakePlugin::graphicsItem()
{
    record(QStringLiteral("graphicsItem"));
    if (!m_graphicsItem)
        m_graphicsItem = new FakePanel;
    return m_graphicsItem;
}

Kora::KrPluginGuiInterface *FakePlugin::gui()
{
    record(QStringLiteral("gui"));
    if (!m_gui && m_params.contains(QStringLiteral("gui"))) {
        m_gui = new FakeGui;
        m_gui->setPluginData(&m_pluginData);
    }
    return m_gui;
}

void FakePlugin::setParams(const QVariantMap &params)
{
    m_params = params;
    record(QStringLiteral("setParams with %1 settings").arg(params.size()));
}

void FakePlugin::setStage(const Kora::KrPluginStage &stage)
{
    KrPluginExtScreenInterface::setStage(stage);
    record(QStringLiteral("setStage with %1 screens").arg(stage.screens().size()));
}

void FakePlugin::setPluginData(const QVariant &pluginData)
{
    KrPluginExtScreenInterface::setPluginData(pluginData);
    record(QStringLiteral("setPluginData with %1")
               .arg(QStringList(pluginData.toMap().keys()).join(QLatin1Char(','))));
}

bool FakePlugin::init()
{
    record(QStringLiteral("init"));
    delete m_controller;
    m_controller = new FakeController(this);
    m_status = 110;
    return true;
}

bool FakePlugin::start()
{
    record(QStringLiteral("start"));
    if (m_params.contains(QStringLiteral("refuses")))
        return false;
    m_status = 102;
    const QVariantList switches = m_params.value(QStringLiteral("switches")).toList();
    for (const QVariant &index : switches)
        QTimer::singleShot(0, this, [this, index] { emit contentStarted(index.toInt()); });
    const QVariantList frames = m_params.value(QStringLiteral("frames")).toList();
    for (const QVariant &frame : frames)
        QTimer::singleShot(0, m_controller, [this, frame] { sendFrame(frame.toMap()); });
    return true;
}

void FakePlugin::sendFrame(const QVariantMap &frame)
{
    const QVariant start = frame.value(QStringLiteral("start"));
    if (start.isValid())
        emit contentStarted(start.toInt());
    emit m_controller->dataReceived(frame.value(QStringLiteral("text")).toString());
}

bool FakePlugin::stop()
{
    record(QStringLiteral("stop"));
    m_status = 104;
    QTimer::singleShot(0, this, [this] { m_status = 100; });
    return true;
}

bool FakePlugin::pause()
{
    record(QStringLiteral("pause"));
    m_status = 101;
    return true;
}

bool FakePlugin::reload()
{
    record(QStringLiteral("reload"));
    return true;
}

void FakePlugin::requestSequenceNumber(int number)
{
    record(QStringLiteral("requestSequenceNumber %1").arg(number));
    emit contentStarted(number - 1);
}

QImage FakePlugin::icon() const
{
    QImage image(24, 24, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

void FakePlugin::setLogSetting(const QString &logSetting)
{
    KrPluginExtScreenInterface::setLogSetting(logSetting);
    record(QStringLiteral("setLogSetting %1").arg(logSetting));
}
