#include "demo/player/HostPane.h"

#include "demo/player/ShownText.h"
#include "demo/player/StageDesk.h"
#include "demo/player/StagePlayer.h"

#include <QDateTime>
#include <QFormLayout>
#include <QLabel>

#include <algorithm>

namespace Player {

namespace {

constexpr int RefreshInterval = 100; // ms

QString secondsText(qint64 milliseconds)
{
    return QString::number(static_cast<double>(milliseconds) / 1000, 'f', 1);
}

bool isRunningDown(const LinkedScreens::Screen &screen)
{
    return screen.remaining > 0;
}

void setText(QLabel *label, const QString &text)
{
    label->setText(text);
    label->setToolTip(plainToolTip(text)); // there may be many screens
}

} // namespace

HostPane::HostPane(StagePlayer *player, StageDesk *desk, QWidget *parent)
    : QWidget(parent)
    , m_player(player)
{
    auto *const layout = new QFormLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setVerticalSpacing(2);
    m_sensorLabel = addRow(layout, tr("Sensor program"), QStringLiteral("sensorProgram"));
    m_screensLabel = addRow(layout, tr("Held back"), QStringLiteral("heldBack"));
    m_nextLabel = addRow(layout, tr("Next"), QStringLiteral("next"));

    m_timer.setInterval(RefreshInterval);
    connect(&m_timer, &QTimer::timeout, this, &HostPane::showTimes);
    connect(&m_sensor, &SensorWatch::changed, this, &HostPane::showSensor);
    connect(&player->host(), &PluginHost::called, this, &HostPane::onCalled);
    connect(&player->host(), &PluginHost::contentStarted, this, [this](int seqIndex) {
        m_screens.start(qint64(seqIndex) + 1, QDateTime::currentDateTimeUtc());
        showTimes();
    });
    connect(player, &StagePlayer::currentChanged, this, &HostPane::showTimes);
    const Desk::FrameHistory *const history = &desk->history();
    connect(history, &Desk::FrameHistory::planChanged, this,
        [this, history] { takePlan(history->plan()); });
    showSensor();
    showTimes();
}

QString HostPane::sensorText(bool isKnown, qint64 processId, int restarts)
{
    if (!isKnown)
        return tr("not known");
    QString state = processId == 0 ? tr("does not run") : tr("process %1").arg(processId);
    if (restarts == 0)
        return state;
    return restarts == 1 ? tr("%1, restarted once").arg(state)
                         : tr("%1, restarted %2 times").arg(state, QString::number(restarts));
}

void HostPane::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    showTimes();
}

QLabel *HostPane::addRow(QFormLayout *layout, const QString &title, const QString &objectName)
{
    auto *const label = new QLabel(this);
    label->setObjectName(objectName);
    label->setAccessibleName(title);
    label->setTextFormat(Qt::PlainText); // screens have names from files
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    layout->addRow(title, label);
    return label;
}

void HostPane::onCalled(const QString &operation)
{
    if (operation == QLatin1String("stop"))
        m_sensor.countAnew();
    if (operation == QLatin1String("init"))
        m_sensor.watch(m_player->host().object());
}

void HostPane::takePlan(const Analysis::Plan &plan)
{
    m_screens.setContents(plan.contents, plan.settings.eventSendingLimit);
    showTimes();
}

void HostPane::showSensor()
{
    setText(
        m_sensorLabel, sensorText(m_sensor.isKnown(), m_sensor.processId(), m_sensor.restarts()));
}

void HostPane::showTimes()
{
    const QVector<LinkedScreens::Screen> screens = m_screens.at(QDateTime::currentDateTimeUtc());
    setText(m_screensLabel, screensText(screens));
    const Playback &playback = m_player->playback();
    const std::optional<Programme::Item> next = playback.programme().waiting();
    setText(m_nextLabel,
        next ? tr("#%1 in %2 s")
                   .arg(QString::number(next->sequence), secondsText(playback.waitingTime()))
             : tr("nothing waits"));

    const bool isMoving = next || std::any_of(screens.cbegin(), screens.cend(), isRunningDown);
    if (!isMoving || !isVisible())
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start();
}

QString HostPane::screensText(const QVector<LinkedScreens::Screen> &screens) const
{
    if (screens.isEmpty())
        return tr("no screen is linked");
    QStringList texts;
    for (const LinkedScreens::Screen &screen : screens) {
        if (!isRunningDown(screen))
            continue;
        const QString name = m_player->stage().screenName(screen.id);
        texts << tr("%1 for %2 s")
                     .arg(name.isEmpty() ? tr("screen %1").arg(screen.id) : name,
                         secondsText(screen.remaining));
    }
    return texts.isEmpty() ? tr("by no screen") : texts.join(QLatin1String(", "));
}

} // namespace Player
