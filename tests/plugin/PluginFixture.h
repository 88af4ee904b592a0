#pragma once

#include "host/KrPluginExtScreenInterface.h"
#include "host/KrPluginGraphicsItem.h"
#include "host/KrPluginStage.h"
#include "sensor/ProcessList.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFont>
#include <QGraphicsTextItem>
#include <QPluginLoader>
#include <QPointer>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QThread>
#include <QVector>

#include <memory>

/// What the tests of the loaded plug-in share: a host with directories of its own.
namespace PluginTest {

using Plugin = Kora::KrPluginExtScreenInterface;
using Item = Kora::KrPluginGraphicsItem;

constexpr int ScreenId = 10; // of the screen that the fixture's stages are about

// A loaded machine starts a program slowly, and one left by somebody else costs 5.1 s more.
constexpr int ProcessTimeoutMs = 30000;

/// Collects every message that slides over a panel, from the time of its construction on.
///
/// Messages leave the panel again after a second; it looks before each event, so that none is
/// missed however slow the machine is. Outlives the panel without harm.
class PanelRecorder : public QObject
{
public:
    explicit PanelRecorder(Item *panel)
        : m_panel(panel)
        , m_guard(dynamic_cast<QObject *>(panel))
    {
        const QList<QGraphicsItem *> children = panel->childItems();
        for (QGraphicsItem *child : children)
            remember(child);
        qApp->installEventFilter(this);
    }

    QStringList statusTexts() const { return texts(false); } ///< from below, as plain text
    QStringList noticeTexts() const { return texts(true); } ///< from the left, as plain text
    QStringList statusHtml() const { return html(false); } ///< as rendered() gives it
    QStringList noticeHtml() const { return html(true); } ///< as rendered() gives it

    bool eventFilter(QObject * /*watched*/, QEvent * /*event*/) override
    {
        if (!m_guard)
            return false;
        const QList<QGraphicsItem *> children = m_panel->childItems();
        for (QGraphicsItem *child : children) {
            if (const QGraphicsTextItem *item = remember(child)) {
                // Notices travel in front of the title and the buttons.
                m_messages.append({item->toPlainText(), item->toHtml(), child->zValue() > 0});
            }
        }
        return false;
    }

private:
    struct Message
    {
        QString text;
        QString html;
        bool notice = false;
    };

    /// The item, if it is a text that was not there before.
    const QGraphicsTextItem *remember(QGraphicsItem *child)
    {
        auto *item = dynamic_cast<QGraphicsTextItem *>(child);
        if (item == nullptr || m_seen.contains(item))
            return nullptr;
        m_seen.insert(item);
        connect(
            item, &QObject::destroyed, this, [this](QObject *object) { m_seen.remove(object); });
        return item;
    }

    QStringList texts(bool notice) const
    {
        QStringList result;
        for (const Message &message : m_messages) {
            if (message.notice == notice)
                result.append(message.text);
        }
        return result;
    }

    QStringList html(bool notice) const
    {
        QStringList result;
        for (const Message &message : m_messages) {
            if (message.notice == notice)
                result.append(message.html);
        }
        return result;
    }

    Item *m_panel;
    QPointer<QObject> m_guard;
    QSet<QObject *> m_seen;
    QVector<Message> m_messages;
};

namespace Detail {

inline void dressLikeMessage(QGraphicsTextItem &item)
{
    QFont font = item.font();
    font.setFamily(QStringLiteral("Yu Gothic"));
    font.setPointSize(11);
    item.setFont(font);
}

} // namespace Detail

/// What a panel message made of @p html answers when it is asked for its HTML.
inline QString rendered(const QString &html)
{
    QGraphicsTextItem item;
    Detail::dressLikeMessage(item);
    item.setHtml(html);
    return item.toHtml();
}

/// What a panel message made of the plain @p text answers when it is asked for its HTML.
inline QString renderedText(const QString &text)
{
    QGraphicsTextItem item;
    Detail::dressLikeMessage(item);
    item.setPlainText(text);
    return item.toHtml();
}

/// A framed log record; its time stamp is the pattern that LoadedPlugin::log() leaves.
inline QString record(const QString &level, const QString &message)
{
    const QString header = QStringLiteral(">> yyyy-MM-dd hh:mm:ss [%1]").arg(level);
    return header.leftJustified(40, QLatin1Char('=')) + QLatin1Char('\n') + message
        + QLatin1Char('\n') + QString(37, QLatin1Char('=')) + QStringLiteral(" <<\n\n");
}

/// The whole text of the log files of @p directory, days in order, time stamps replaced.
inline QString readLog(const QString &directory)
{
    QString text;
    const QDir dir(directory);
    const QStringList names
        = dir.entryList({QStringLiteral("KrHvcP2Log_????????.txt")}, QDir::Files, QDir::Name);
    for (const QString &name : names) {
        QFile file(dir.filePath(name));
        if (file.open(QIODevice::ReadOnly | QIODevice::Text))
            text += QString::fromUtf8(file.readAll());
    }
    static const QRegularExpression stamp(
        QStringLiteral("^>> \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d "),
        QRegularExpression::MultilineOption);
    return text.replace(stamp, QStringLiteral(">> yyyy-MM-dd hh:mm:ss "));
}

inline bool writeFile(const QString &name, const QByteArray &content)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

inline QByteArray readFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Waits for @p condition while this thread handles no events. QTRY_* would let the plug-in go on.
template <typename Condition>
bool waitWithoutEvents(Condition condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(ProcessTimeoutMs))
            return false;
        QThread::msleep(5);
    }
    return true;
}

/// Number of living processes with the sensor program's name.
inline int sensorProcessCount()
{
    return static_cast<int>(PluginKrHvcP2::ProcessList::find("HvcCon.exe").size());
}

/// Puts a sensor program into @p directory that does what @p commands say; they are those of
/// ../sensor/standin/Standin.cpp.
inline bool installStandIn(const QString &directory, const QByteArray &commands)
{
    const QString program = QDir(directory).filePath(QStringLiteral("HvcCon.exe"));
    return (QFile::exists(program) || QFile::copy(QStringLiteral(KRHVC_STANDIN_FILE), program))
        && writeFile(program + QLatin1String(".do"), commands);
}

struct Content
{
    int ageMin = 0;
    int ageMax = 0;
    QString gender;
    bool isDefault = false;
};

inline QVariantMap contentEntry(const Content &content)
{
    return {
        {QStringLiteral("type"), 8},
        {QStringLiteral("params"),
            QVariantMap{
                {QStringLiteral("name"), QStringLiteral("content")},
                {QStringLiteral("age-min"), content.ageMin},
                {QStringLiteral("age-max"), content.ageMax},
                {QStringLiteral("gender"), content.gender},
                {QStringLiteral("default"),
                    content.isDefault ? QStringLiteral("true") : QStringLiteral("false")},
            }},
    };
}

/// The parameter map of the screen ScreenId.
inline QVariant screenData(const QVector<Content> &contents, const QVariantMap &settings = {})
{
    QVariantList entries;
    for (const Content &content : contents)
        entries.append(contentEntry(content));
    return QVariantMap{
        {QStringLiteral("id"), ScreenId},
        {QStringLiteral("plugindata"), settings},
        {QStringLiteral("contents"), entries},
    };
}

/// A stage whose screen ScreenId opens all its sequences; @p links has, by the id of each other
/// screen, the sequence numbers that this screen follows.
inline Kora::KrPluginStage linkedStage(const QMap<int, QList<int>> &links)
{
    const auto event = [](int direction, int type, const QVariant &screenSequence) {
        return QVariantMap{
            {QStringLiteral("type"), type},
            {QStringLiteral("direction"), direction},
            {QStringLiteral("seq"), QVariantList()},
            {QStringLiteral("id"), ScreenId},
            {QStringLiteral("screenseq"), screenSequence},
        };
    };
    const QString events = QStringLiteral("event");
    QMap<int, QVariantMap> screens{{ScreenId, {{events, QVariantList{event(1, 2, QVariant())}}}}};
    for (auto link = links.cbegin(); link != links.cend(); ++link) {
        QVariantList list;
        for (const int number : link.value())
            list.append(event(2, 1, number));
        screens.insert(link.key(), {{events, list}});
    }
    Kora::KrPluginStage stage;
    stage.setScreens(screens);
    return stage;
}

/// The sensor program's text about one face; everything that decides is an argument.
inline QString faceLines(int index, int size, int age, const QString &gender)
{
    return QStringLiteral("Index:%1\tX:320 Y:240 Size:%2 Confidence:800\n"
                          "Face Direction\tLR:0 UD:0 Roll:0 Confidence:700\n"
                          "Age\tAge:%3 Confidence:500\n"
                          "Gender\tGender:%4 Confidence:900\n")
        .arg(index)
        .arg(size)
        .arg(age)
        .arg(gender);
}

/// The table rows of faceLines(), as the panel gets them.
inline QString faceRows(int index, int size, int age, const QString &gender)
{
    const QString colour
        = gender == QLatin1String("Male") ? QStringLiteral("skyblue") : QStringLiteral("deeppink");
    return QStringLiteral(
        "<tr><td style=\"font-weight:bold;\">Index:%1</td>"
        "<td>X:320 Y:240 Size:%2 Confidence:800 </td></tr>"
        "<tr><td>Face Direction</td><td>LR:0 UD:0 Roll:0 Confidence:700 </td></tr>"
        "<tr><td>Age</td>"
        "<td>Age:<span style=\"color:yellow;\">%3</span> Confidence:500 </td></tr>"
        "<tr><td>Gender</td><td>Gender:<span style=\"color:%4;\">%5 </span>"
        "Confidence:900 </td></tr><tr><td></td></tr>")
        .arg(index)
        .arg(size)
        .arg(age)
        .arg(colour, gender);
}

inline QString table(const QString &rows)
{
    return QStringLiteral("<table>") + rows + QStringLiteral("</table>");
}

/// The plain text that the log has of a table.
inline QString plainReport(const QString &html)
{
    QTextDocument document;
    document.setHtml(html);
    return document.toPlainText().trimmed();
}

/// A host with one fresh plug-in, which has an empty directory and an own log.
class LoadedPlugin
{
public:
    enum Log { OwnLog, NoLog };

    explicit LoadedPlugin(Log log = OwnLog)
    {
        m_loader.setFileName(QStringLiteral(KRHVC_PLUGIN_FILE));
        m_object = m_loader.instance();
        if (m_object.isNull())
            qFatal("%s", qPrintable(m_loader.errorString()));
        m_plugin = qobject_cast<Plugin *>(m_object.data());
        if (m_plugin == nullptr || !m_directory.isValid() || !m_logDirectory.isValid())
            qFatal("the plug-in cannot be set up");
        m_plugin->setPath(m_directory.path());
        if (log == OwnLog)
            m_plugin->setLogSetting(m_logDirectory.path());
    }
    ~LoadedPlugin() { destroy(); }
    Q_DISABLE_COPY(LoadedPlugin)

    Plugin *operator->() const { return m_plugin; }
    Plugin *get() const { return m_plugin; }
    QObject *object() const { return m_object; } ///< null once the plug-in has gone

    void destroy()
    {
        QObject *object = m_object;
        m_object.clear();
        m_plugin = nullptr;
        delete object;
    }

    /// Creates the panel, unless there is one, and records its messages from now on.
    PanelRecorder &panel()
    {
        m_recorder = std::make_unique<PanelRecorder>(m_plugin->graphicsItem());
        return *m_recorder;
    }

    QString path(const QString &name) const { return m_directory.filePath(name); }
    QString logRoot() const { return m_logDirectory.path(); }
    QString logDirectory() const { return m_logDirectory.filePath(QStringLiteral("KrHvcP2")); }
    QString log() const { return readLog(logDirectory()); }

    /// Takes the log's lock file, as another process would. Returns its name.
    QString takeLogLock() const
    {
        const QString lock = logDirectory() + QStringLiteral("/KrHvcP2Log.lock");
        if (!QDir().mkpath(logDirectory()) || !writeFile(lock, {}))
            qFatal("the log cannot be locked");
        return lock;
    }

    /// Prepares screen and stage and initializes the plug-in. Every content is followed by a screen
    /// of its own, so that none restricts another one.
    void init(const QVector<Content> &contents, const QVariantMap &params = {})
    {
        QMap<int, QList<int>> links;
        for (int number = 1; number <= contents.size(); ++number)
            links.insert(100 + number, {number});
        init(contents, links, params);
    }
    void init(const QVector<Content> &contents, const QMap<int, QList<int>> &links,
        const QVariantMap &params)
    {
        m_plugin->setStage(linkedStage(links));
        m_plugin->setPluginData(screenData(contents));
        m_plugin->setParams(params);
        m_plugin->init();
    }

    /// Hands a chunk of sensor output to the plug-in, as its controller does.
    bool receive(const QString &chunk)
    {
        return QMetaObject::invokeMethod(
            m_object, "onDataReceived", Qt::DirectConnection, Q_ARG(QString, chunk));
    }

    QObjectList controllers() const
    {
        QObjectList result;
        const QObjectList children = m_object->children();
        for (QObject *child : children) {
            if (child->inherits("PluginKrHvcP2::KrHvcController"))
                result.append(child);
        }
        return result;
    }

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
