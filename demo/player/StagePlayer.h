#pragma once

#include "demo/player/EventLog.h"
#include "demo/player/Playback.h"
#include "demo/player/PluginHost.h"
#include "demo/player/ProofOfPlay.h"
#include "demo/player/StageContent.h"
#include "demo/player/StageScene.h"
#include "demo/stage/StageFile.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <optional>

namespace Player {

/// One screen of a stage with its plug-in: what the program shows or prints.
///
/// What the plug-in's dialogs change goes into the stage as soon as control is back in the event
/// loop, and the plug-in is initialised with it again.
class StagePlayer : public QObject
{
    Q_OBJECT

public:
    StagePlayer(const Stage::StageFile &stage, int screenId, QObject *parent = nullptr);
    ~StagePlayer() override; ///< ends playing

    bool loadPlugin(const QString &fileName); ///< see PluginHost::load()
    // Before begin()
    void setRules(const Programme::Rules &rules);
    void setProofOfPlay(const QString &fileName); ///< a CSV file of what has played

    /// Initialises and starts the plug-in. @p logDirectory is created when missing. While the
    /// player rests it is not started.
    void begin(const QString &logDirectory);
    /// Stops the plug-in and switches nothing by itself until resume(), which begins anew.
    void rest();
    void resume();
    bool isResting() const { return m_isResting; }
    void showPast(int number); ///< a sequence that played, while the player rests; 0: none
    void requestSequence(int number); ///< as PluginHost has it
    void end(); ///< stops the plug-in and deletes it; its sensor program has ended then

    /// Writes the stage into @p fileName, which becomes its file. False with the reason in
    /// @p error when that fails.
    bool save(const QString &fileName, QString *error);
    bool isModified() const; ///< the stage has changes that were not saved

    const Stage::StageFile &stage() const { return m_stage; }
    int screenId() const { return m_screenId; }
    const QVector<StageContent> &contents() const { return m_contents; }
    QString logDirectory() const { return m_logDirectory; } ///< empty: the plug-in writes no log
    PluginHost &host() { return m_host; }
    StageScene &scene() { return m_scene; }
    EventLog &log() { return m_log; }
    const Playback &playback() const { return m_playback; }

    /// The playing sequence; number 0 before any.
    const StageContent &current() const { return m_current; }

signals:
    void currentChanged();
    void stageChanged(); ///< its contents, settings, file or isModified()

private:
    void run();
    void note(PlayerEvent::Kind kind, const QString &details, const QString &signal = {});
    void onContentStarted(int seqIndex);
    StartReason reasonOf(int seqIndex) const;
    void play(const Programme::Item &item);
    void notePostponed(const Programme::Item &item);
    void endProof();
    void noteProof();
    void onScreenValuesUpdated(int screenId, const QList<int> &seqIndexList);
    void onContentsRequested(int screenId, const QMap<int, QVariant> &contents);
    bool isPlayed(int screenId);
    void applyEditsLater();
    void applyEdits();
    QStringList addRequestedContents();
    void takeContents();
    void showStage();
    void noteSettings();
    QString describe(int seqIndex) const; // "#3  Women 20-39"
    QString describeLinks(int number) const; // "linked by screen 2 Counter"

    Stage::StageFile m_stage;
    int m_screenId;
    QString m_logDirectory;
    QVector<StageContent> m_contents;
    StageContent m_current;
    EventLog m_log;
    Playback m_playback;
    StageScene m_scene; // goes after the plug-in, whose panel it shows
    PluginHost m_host;
    Programme::Rules m_rules;
    std::optional<ProofOfPlay> m_proof;
    QString m_proofProblem; // last one told
    QByteArray m_savedStage;
    QMap<int, QVariant> m_requestedContents; // by index, not yet added
    int m_requestedNumber = 0; // of the sequence that is being asked for; 0: none is
    bool m_switching = false; // at the signal of the plug-in
    bool m_editsPending = false;
    bool m_applyingEdits = false;
    bool m_hasBegun = false;
    bool m_isResting = false;
    bool m_ended = false;
};

} // namespace Player
