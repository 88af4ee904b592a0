#include "StagePlayer.h"

#include <QDir>

namespace Player {

namespace {

QString divisionName(int division)
{
    switch (division) {
    case 0:
        return QStringLiteral("NoLogging");
    case 1:
        return QStringLiteral("Critical");
    case 2:
        return QStringLiteral("Error");
    case 3:
        return QStringLiteral("Warning");
    case 4:
        return QStringLiteral("Notice");
    case 5:
        return QStringLiteral("Information");
    default:
        return QString::number(division);
    }
}

StageContent idleCard(const QString &title)
{
    StageContent card;
    card.name = title;
    card.title = StagePlayer::tr("Waiting for a viewer");
    card.subtitle = StagePlayer::tr("Nothing has been switched yet.");
    card.color = QColor(0x3b, 0x4a, 0x5c);
    return card;
}

} // namespace

StagePlayer::StagePlayer(const StageFile &stage, int screenId, QObject *parent)
    : QObject(parent)
    , m_stage(stage)
    , m_screenId(screenId)
    , m_contents(stage.contents(screenId))
    , m_current(idleCard(stage.title()))
{
    connect(&m_host, &PluginHost::contentStarted, this, &StagePlayer::onContentStarted);
    connect(&m_host, &PluginHost::contentSignalReceived, this,
        [this](const QString &signalName, int seqIndex, const QTime &time) {
            QString details = describe(seqIndex);
            if (time.isValid())
                details += QLatin1String("  ") + time.toString(QStringLiteral("HH:mm:ss.zzz"));
            note(PlayerEvent::Signal, details, signalName);
        });
    connect(
        &m_host, &PluginHost::logMessageThrown, this, [this](const QString &message, int division) {
            note(PlayerEvent::Log, divisionName(division) + QLatin1String(": ") + message,
                QStringLiteral("throwLogMessage"));
        });
    connect(&m_host, &PluginHost::statusChanged, this, [this](int status) {
        note(PlayerEvent::Status,
            QStringLiteral("%1  %2").arg(QString::number(status), PluginHost::statusText(status)));
    });
    connect(&m_host, &PluginHost::called, this, [this](const QString &operation, bool result) {
        if (!result)
            note(PlayerEvent::Player, tr("%1() was refused").arg(operation));
    });
    m_scene.showContent(m_current, m_contents.size());
}

StagePlayer::~StagePlayer()
{
    end();
}

bool StagePlayer::loadPlugin(const QString &fileName)
{
    return m_host.load(fileName);
}

void StagePlayer::begin(const QString &logDirectory)
{
    const PluginInformation plugin = m_host.information();
    note(PlayerEvent::Player, tr("Plug-in %1 %2").arg(plugin.name, plugin.version));
    note(PlayerEvent::Player,
        tr("Stage \"%1\", screen %2 with %3 contents")
            .arg(m_stage.title(), QString::number(m_screenId), QString::number(m_contents.size())));
    if (!logDirectory.isEmpty() && QDir().mkpath(logDirectory)) {
        m_logDirectory = logDirectory;
        note(PlayerEvent::Player, tr("Logs below %1").arg(QDir::toNativeSeparators(logDirectory)));
    } else {
        note(PlayerEvent::Player, tr("No log directory, so the plug-in writes no log"));
    }
    m_host.setUp(m_stage, m_screenId, m_logDirectory);
    m_scene.setPanel(m_host.panel());
    m_host.start();
}

void StagePlayer::end()
{
    m_host.finish();
    m_scene.removePanel();
    m_host.shutDown();
}

void StagePlayer::note(PlayerEvent::Kind kind, const QString &details, const QString &signal)
{
    PlayerEvent event;
    event.kind = kind;
    event.signal = signal;
    event.details = details;
    m_log.append(event);
}

void StagePlayer::onContentStarted(int seqIndex)
{
    note(PlayerEvent::Switch, describe(seqIndex), QStringLiteral("contentStarted"));
    if (seqIndex < 0 || seqIndex >= m_contents.size())
        return;
    m_current = m_contents.at(seqIndex);
    m_scene.showContent(m_current, m_contents.size());
    emit currentChanged();
}

QString StagePlayer::describe(int seqIndex) const
{
    QString name = tr("(no such content)");
    if (seqIndex >= 0 && seqIndex < m_contents.size())
        name = m_contents.at(seqIndex).name;
    return QStringLiteral("#%1  %2").arg(QString::number(qint64(seqIndex) + 1), name);
}

} // namespace Player
