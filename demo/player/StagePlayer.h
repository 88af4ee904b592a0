#pragma once

#include "EventLog.h"
#include "PluginHost.h"
#include "StageFile.h"
#include "StageScene.h"

#include <QObject>
#include <QString>

namespace Player {

/// One screen of a stage with its plug-in: what the program shows or prints.
class StagePlayer : public QObject
{
    Q_OBJECT

public:
    StagePlayer(const StageFile &stage, int screenId, QObject *parent = nullptr);
    ~StagePlayer() override; ///< ends playing

    bool loadPlugin(const QString &fileName); ///< see PluginHost::load()

    /// Initialises and starts the plug-in. @p logDirectory is created when missing.
    void begin(const QString &logDirectory);
    void end(); ///< stops the plug-in and deletes it; its sensor program has ended then

    const StageFile &stage() const { return m_stage; }
    int screenId() const { return m_screenId; }
    QString logDirectory() const { return m_logDirectory; } ///< empty: the plug-in writes no log
    PluginHost &host() { return m_host; }
    StageScene &scene() { return m_scene; }
    EventLog &log() { return m_log; }

    /// The playing sequence; number 0 before any.
    const StageContent &current() const { return m_current; }

signals:
    void currentChanged();

private:
    void note(PlayerEvent::Kind kind, const QString &details, const QString &signal = {});
    void onContentStarted(int seqIndex);
    QString describe(int seqIndex) const; // "#3  Women 20-39"

    StageFile m_stage;
    int m_screenId;
    QString m_logDirectory;
    QVector<StageContent> m_contents;
    StageContent m_current;
    EventLog m_log;
    StageScene m_scene; // goes after the plug-in, whose panel it shows
    PluginHost m_host;
};

} // namespace Player
