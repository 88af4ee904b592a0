#pragma once

#include "host/KrPluginExtScreenInterface.h"
#include "host/KrPluginGraphicsItem.h"
#include "host/KrPluginStage.h"

#include <QMap>
#include <QMetaType>
#include <QPluginLoader>
#include <QPointer>
#include <QSet>
#include <QTemporaryDir>
#include <QVariant>
#include <QVector>

#include <memory>

class QGraphicsItem;
class QGraphicsTextItem;

/// What the tests of the loaded plug-in share: a host with directories of its own.
namespace PluginTest {

using Plugin = Kora::KrPluginExtScreenInterface;
using Item = Kora::KrPluginGraphicsItem;

constexpr int ScreenId = 10; // of the screen that the fixture's stages are about
constexpr int AnHour = 3600000; // milliseconds

inline const QString Male = QStringLiteral("male");
inline const QString Female = QStringLiteral("female");
inline const QString Both = QStringLiteral("both");

/// Collects every message that slides over a panel, from the time of its construction on.
///
/// Messages leave the panel again after a second; it looks before each event, so that none is
/// missed however slow the machine is. Outlives the panel without harm.
class PanelRecorder : public QObject
{
public:
    explicit PanelRecorder(Item *panel);

    QStringList statusTexts() const { return texts(false); } ///< from below, as plain text
    QStringList noticeTexts() const { return texts(true); } ///< from the left, as plain text
    QStringList statusHtml() const { return html(false); } ///< as rendered() gives it
    QStringList noticeHtml() const { return html(true); } ///< as rendered() gives it

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Message
    {
        QString text;
        QString html;
        bool notice = false;
    };

    const QGraphicsTextItem *remember(QGraphicsItem *child);
    QStringList texts(bool notice) const;
    QStringList html(bool notice) const;

    Item *m_panel;
    QPointer<QObject> m_guard;
    QSet<QObject *> m_seen;
    QVector<Message> m_messages;
};

/// What a panel message made of @p html answers when it is asked for its HTML.
QString rendered(const QString &html);

/// What a panel message made of the plain @p text answers when it is asked for its HTML.
QString renderedText(const QString &text);

/// A framed log record; its time stamp is the pattern that LoadedPlugin::log() leaves.
QString record(const QString &level, const QString &message);

struct Content
{
    int ageMin = 0;
    int ageMax = 0;
    QString gender;
    bool isDefault = false;
};

/// The parameter map of the screen ScreenId.
QVariant screenData(const QVector<Content> &contents, const QVariantMap &settings = {});

/// The settings that decide what is sent: how many at once, and how long after the last time.
QVariantMap settings(int concurrent, int limitMs);

/// A stage whose screen ScreenId opens all its sequences; @p links has, by the id of each other
/// screen, the sequence numbers that this screen follows.
Kora::KrPluginStage linkedStage(const QMap<int, QList<int>> &links);

/// The sensor program's text about one face; everything that decides is an argument.
QString faceLines(int index, int size, int age, const QString &gender);

/// The table rows of faceLines(), as the panel gets them.
QString faceRows(int index, int size, int age, const QString &gender);

QString table(const QString &rows);

/// The plain text that the log has of a table.
QString plainReport(const QString &html);

/// A host with one fresh plug-in, which has an empty directory and an own log.
class LoadedPlugin
{
public:
    enum Log { OwnLog, NoLog };

    explicit LoadedPlugin(Log log = OwnLog);
    ~LoadedPlugin() { destroy(); }
    Q_DISABLE_COPY(LoadedPlugin)

    Plugin *operator->() const { return m_plugin; }
    Plugin *get() const { return m_plugin; }
    QObject *object() const { return m_object; } ///< null once the plug-in has gone

    void destroy();

    /// Creates the panel, unless there is one, and records its messages from now on.
    PanelRecorder &panel();

    QString path(const QString &name) const { return m_directory.filePath(name); }
    QString logRoot() const { return m_logDirectory.path(); }
    QString logDirectory() const { return m_logDirectory.filePath(QStringLiteral("KrHvcP2")); }
    /// The whole text of the log files, days in order, time stamps replaced.
    QString log() const;

    /// Takes the log's lock file, as another process would. Returns its name.
    QString takeLogLock() const;

    /// Prepares screen and stage and initializes the plug-in. Every content is followed by a screen
    /// of its own, so that none restricts another one.
    void init(const QVector<Content> &contents, const QVariantMap &params = {});
    void init(const QVector<Content> &contents, const QMap<int, QList<int>> &links,
        const QVariantMap &params);

    /// Hands a chunk of sensor output to the plug-in, as its controller does.
    bool receive(const QString &chunk);

    QObjectList controllers() const;

private:
    QPluginLoader m_loader;
    QTemporaryDir m_directory;
    QTemporaryDir m_logDirectory;
    QPointer<QObject> m_object;
    Plugin *m_plugin = nullptr;
    std::unique_ptr<PanelRecorder> m_recorder;
};

} // namespace PluginTest

Q_DECLARE_METATYPE(PluginTest::Content)
