#include "demo/player/StagePlayer.h"

#include "demo/player/StageChanges.h"
#include "host/KrPluginKeys.h"
#include "host/KrPluginLogLevel.h"
#include "host/KrPluginStatus.h"

#include <QDir>
#include <QPointer>
#include <QTimer>

#include <utility>

namespace Player {

namespace {

StageContent idleCard(const QString &title)
{
    StageContent card;
    card.name = title;
    card.title = StagePlayer::tr("Waiting for a viewer");
    card.subtitle = StagePlayer::tr("Nothing has been switched yet.");
    card.color = QColor(0x3b, 0x4a, 0x5c);
    return card;
}

/// As the proof of play has it.
QString reasonWord(StartReason reason)
{
    switch (reason) {
    case StartReason::Idle:
        return QStringLiteral("idle");
    case StartReason::Key:
        return QStringLiteral("key");
    case StartReason::Panel:
        return QStringLiteral("panel");
    case StartReason::Viewer:
        break;
    }
    return QStringLiteral("viewer");
}

QDateTime now()
{
    return QDateTime::currentDateTime();
}

} // namespace

StagePlayer::StagePlayer(const Stage::StageFile &stage, int screenId, QObject *parent)
    : QObject(parent)
    , m_stage(stage)
    , m_screenId(screenId)
    , m_contents(stageContents(stage, screenId))
    , m_current(idleCard(stage.title()))
    , m_savedStage(stage.toJson())
{
    connect(&m_host, &PluginHost::contentStarted, this, &StagePlayer::onContentStarted);
    connect(&m_playback, &Playback::started, this, &StagePlayer::play);
    connect(&m_playback, &Playback::postponed, this, &StagePlayer::notePostponed);
    connect(&m_host, &PluginHost::contentSignalReceived, this,
        [this](const QString &signalName, int seqIndex, const QTime &time) {
            QString details = describe(seqIndex);
            if (time.isValid())
                details += QLatin1String("  ") + time.toString(QStringLiteral("HH:mm:ss.zzz"));
            note(PlayerEvent::Signal, details, signalName);
        });
    connect(
        &m_host, &PluginHost::logMessageThrown, this, [this](const QString &message, int division) {
            note(PlayerEvent::Log,
                Kora::LogLevel::translatedName(division) + QLatin1String(": ") + message,
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
    connect(&m_host, &PluginHost::screenValuesUpdated, this, &StagePlayer::onScreenValuesUpdated);
    connect(&m_host, &PluginHost::contentsRequested, this, &StagePlayer::onContentsRequested);
    m_scene.showContent(m_current, m_contents.size());
}

StagePlayer::~StagePlayer()
{
    end();
}

void StagePlayer::setRules(const Programme::Rules &rules)
{
    m_rules = rules;
}

void StagePlayer::setProofOfPlay(const QString &fileName)
{
    m_proof.emplace(fileName);
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
    if (m_proof)
        m_proof->open();
    noteProof();
    m_host.setUp(m_stage, m_screenId, m_logDirectory);
    m_scene.setPanel(m_host.panel());
    m_hasBegun = true;
    if (!m_isResting)
        run();
}

void StagePlayer::run()
{
    m_playback.setRules(m_rules);
    m_playback.dropBehind(m_contents.size());
    m_playback.begin();
    if (m_host.status() != Kora::Status::Started)
        m_host.start();
}

void StagePlayer::rest()
{
    if (m_isResting)
        return;
    m_isResting = true;
    m_playback.end();
    endProof();
    m_host.finish();
}

void StagePlayer::resume()
{
    if (!m_isResting)
        return;
    showPast(0);
    m_isResting = false;
    if (m_hasBegun && !m_ended)
        run();
}

void StagePlayer::showPast(int number)
{
    if (!m_isResting)
        return;
    const bool isKnown = number > 0 && number <= m_contents.size();
    m_current = isKnown ? m_contents.at(number - 1) : idleCard(m_stage.title());
    m_scene.showContent(m_current, m_contents.size());
    emit currentChanged();
}

void StagePlayer::requestSequence(int number)
{
    const QPointer<StagePlayer> guard(this); // a plug-in may run an event loop
    m_requestedNumber = number;
    m_host.requestSequence(number);
    if (guard)
        m_requestedNumber = 0;
}

void StagePlayer::end()
{
    m_ended = true;
    m_host.finish();
    m_playback.end();
    endProof();
    m_scene.removePanel();
    m_host.shutDown();
}

bool StagePlayer::save(const QString &fileName, QString *error)
{
    if (!m_stage.save(fileName, error)) {
        note(PlayerEvent::Player, tr("Stage not saved: %1").arg(*error));
        return false;
    }
    m_savedStage = m_stage.toJson();
    takeContents(); // their pictures are those of the file's new place
    note(PlayerEvent::Player, tr("Stage saved in %1").arg(QDir::toNativeSeparators(fileName)));
    showStage();
    emit stageChanged();
    return true;
}

bool StagePlayer::isModified() const
{
    return m_stage.toJson() != m_savedStage;
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
    m_switching = true;
    m_playback.request({seqIndex + 1, reasonOf(seqIndex), m_contents.at(seqIndex).duration});
    m_switching = false;
}

/// The plug-in's signal says nothing about it, but comes while a request is being answered.
StartReason StagePlayer::reasonOf(int seqIndex) const
{
    if (m_requestedNumber == seqIndex + 1)
        return StartReason::Key;
    return m_scene.isHandlingClick() ? StartReason::Panel : StartReason::Viewer;
}

void StagePlayer::play(const Programme::Item &item)
{
    m_current = m_contents.at(item.sequence - 1);
    if (item.reason == StartReason::Idle)
        note(PlayerEvent::Play, tr("%1, idle").arg(describe(item.sequence - 1)));
    else if (!m_switching)
        note(PlayerEvent::Play, describe(item.sequence - 1));
    m_scene.showContent(m_current, m_contents.size());
    if (m_proof)
        m_proof->start({item.sequence, m_current.name, reasonWord(item.reason)}, now());
    noteProof();
    emit currentChanged();
}

void StagePlayer::endProof()
{
    if (m_proof)
        m_proof->end(now());
    noteProof();
}

/// Tells of trouble with the file, and of its end, once.
void StagePlayer::noteProof()
{
    const QString problem = m_proof ? m_proof->problem() : QString();
    if (problem == m_proofProblem)
        return;
    m_proofProblem = problem;
    note(PlayerEvent::Player,
        problem.isEmpty() ? tr("Proof of play is written again")
                          : tr("Proof of play not written: %1").arg(problem));
}

void StagePlayer::notePostponed(const Programme::Item &item)
{
    note(PlayerEvent::Play,
        tr("%1, in %2 s at the end of #%3")
            .arg(describe(item.sequence - 1),
                QString::number(static_cast<double>(m_playback.waitingTime()) / 1000, 'f', 1),
                QString::number(m_current.number)));
}

void StagePlayer::onScreenValuesUpdated(int screenId, const QList<int> & /*seqIndexList*/)
{
    if (isPlayed(screenId))
        applyEditsLater();
}

void StagePlayer::onContentsRequested(int screenId, const QMap<int, QVariant> &contents)
{
    if (!isPlayed(screenId))
        return;
    for (auto it = contents.cbegin(); it != contents.cend(); ++it)
        m_requestedContents.insert(it.key(), it.value());
    applyEditsLater();
}

bool StagePlayer::isPlayed(int screenId)
{
    if (screenId != m_screenId)
        note(PlayerEvent::Edit, tr("ignored, screen %1 is not played").arg(screenId));
    return screenId == m_screenId;
}

void StagePlayer::applyEditsLater()
{
    // The plug-in is still inside the dialog that tells of the change.
    if (!m_editsPending)
        QTimer::singleShot(0, this, &StagePlayer::applyEdits);
    m_editsPending = true;
}

void StagePlayer::applyEdits()
{
    m_editsPending = false;
    if (m_ended)
        return;
    // An operation of the plug-in may run an event loop; its newest edits wait until it is done.
    if (m_applyingEdits) {
        m_editsPending = true;
        return;
    }
    const QByteArray stageBefore = m_stage.toJson();
    const QVariantMap before = m_stage.screenParameters(m_screenId);
    m_stage.setScreenParameters(m_screenId, m_host.pluginData());
    QStringList changes = describeChanges(before, m_stage.screenParameters(m_screenId));
    changes += addRequestedContents();
    for (const QString &change : std::as_const(changes))
        note(PlayerEvent::Edit, change);
    if (m_stage.toJson() == stageBefore)
        return;
    const QVariantMap after = m_stage.screenParameters(m_screenId);
    takeContents();

    const QPointer<StagePlayer> guard(this);
    m_applyingEdits = true;
    m_host.update(m_stage, m_screenId);
    if (!guard)
        return;
    m_applyingEdits = false;
    if (before.value(Kora::Keys::PluginData) != after.value(Kora::Keys::PluginData))
        noteSettings();
    showStage();
    emit stageChanged();
    if (guard && std::exchange(m_editsPending, false))
        applyEditsLater();
}

/// Returns a line for each content that was asked for.
QStringList StagePlayer::addRequestedContents()
{
    QStringList lines;
    const QMap<int, QVariant> requested = std::exchange(m_requestedContents, {});
    for (auto it = requested.cbegin(); it != requested.cend(); ++it) {
        const QString number = QString::number(static_cast<qint64>(it.key()) + 1);
        QString error;
        if (!m_stage.addContent(m_screenId, it.key(), it.value(), &error)) {
            lines << tr("content #%1 not added: %2").arg(number, error);
            continue;
        }
        const QString name = stageContents(m_stage, m_screenId).constLast().name;
        lines << tr("content #%1 added: %2, %3").arg(number, name, describeLinks(it.key() + 1));
    }
    return lines;
}

void StagePlayer::takeContents()
{
    m_contents = stageContents(m_stage, m_screenId);
    m_playback.dropBehind(m_contents.size());
}

void StagePlayer::showStage()
{
    if (m_current.number > m_contents.size()) {
        m_current = idleCard(m_stage.title());
        endProof();
    } else if (m_current.number > 0) {
        m_current = m_contents.at(m_current.number - 1);
    }
    m_scene.adaptToPanel();
    m_scene.showContent(m_current, m_contents.size());
    emit currentChanged();
}

void StagePlayer::noteSettings()
{
    QStringList settings;
    const QVariantMap params = m_host.params();
    for (auto it = params.cbegin(); it != params.cend(); ++it)
        settings << it.key() + QLatin1Char(' ') + it.value().toString();
    note(PlayerEvent::Player, tr("Settings in use: %1").arg(settings.join(QLatin1String(", "))));
}

QString StagePlayer::describe(int seqIndex) const
{
    QString name = tr("(no such content)");
    if (seqIndex >= 0 && seqIndex < m_contents.size())
        name = m_contents.at(seqIndex).name;
    return QStringLiteral("#%1  %2").arg(QString::number(static_cast<qint64>(seqIndex) + 1), name);
}

QString StagePlayer::describeLinks(int number) const
{
    QStringList screens;
    const QList<int> ids = m_stage.linkingScreens(m_screenId, number);
    for (const int id : ids)
        screens << tr("screen %1 %2").arg(QString::number(id), m_stage.screenName(id)).trimmed();
    return screens.isEmpty() ? tr("linked by no screen")
                             : tr("linked by %1").arg(screens.join(QLatin1String(", ")));
}

} // namespace Player
