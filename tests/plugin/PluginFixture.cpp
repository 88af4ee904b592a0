#include "PluginFixture.h"

#include "tests/support/Files.h"

#include <QCoreApplication>
#include <QDir>
#include <QFont>
#include <QGraphicsTextItem>
#include <QRegularExpression>
#include <QTextDocument>

using namespace KrTest;

namespace PluginTest {

namespace {

void dressLikeMessage(QGraphicsTextItem &item)
{
    QFont font = item.font();
    font.setFamily(QStringLiteral("Yu Gothic"));
    font.setPointSize(11);
    item.setFont(font);
}

QVariantMap contentEntry(const Content &content)
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

} // namespace

PanelRecorder::PanelRecorder(Item *panel)
    : m_panel(panel)
    , m_guard(dynamic_cast<QObject *>(panel))
{
    const QList<QGraphicsItem *> children = panel->childItems();
    for (QGraphicsItem *child : children)
        remember(child);
    qApp->installEventFilter(this);
}

bool PanelRecorder::eventFilter(QObject * /*watched*/, QEvent * /*event*/)
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

/// The item, if it is a text that was not there before.
const QGraphicsTextItem *PanelRecorder::remember(QGraphicsItem *child)
{
    auto *item = dynamic_cast<QGraphicsTextItem *>(child);
    if (item == nullptr || m_seen.contains(item))
        return nullptr;
    m_seen.insert(item);
    connect(item, &QObject::destroyed, this, [this](QObject *object) { m_seen.remove(object); });
    return item;
}

QStringList PanelRecorder::texts(bool notice) const
{
    QStringList result;
    for (const Message &message : m_messages) {
        if (message.notice == notice)
            result.append(message.text);
    }
    return result;
}

QStringList PanelRecorder::html(bool notice) const
{
    QStringList result;
    for (const Message &message : m_messages) {
        if (message.notice == notice)
            result.append(message.html);
    }
    return result;
}

QString rendered(const QString &html)
{
    QGraphicsTextItem item;
    dressLikeMessage(item);
    item.setHtml(html);
    return item.toHtml();
}

QString renderedText(const QString &text)
{
    QGraphicsTextItem item;
    dressLikeMessage(item);
    item.setPlainText(text);
    return item.toHtml();
}

QString record(const QString &level, const QString &message)
{
    const QString header = QStringLiteral(">> yyyy-MM-dd hh:mm:ss [%1]").arg(level);
    return header.leftJustified(40, QLatin1Char('=')) + QLatin1Char('\n') + message
        + QLatin1Char('\n') + QString(37, QLatin1Char('=')) + QStringLiteral(" <<\n\n");
}

QVariant screenData(const QVector<Content> &contents, const QVariantMap &settings)
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

QVariantMap settings(int concurrent, int limitMs)
{
    return {
        {QStringLiteral("concurrent"), concurrent},
        {QStringLiteral("event-sending-limit"), limitMs},
    };
}

Kora::KrPluginStage linkedStage(const QMap<int, QList<int>> &links)
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

QString faceLines(int index, int size, int age, const QString &gender)
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

QString faceRows(int index, int size, int age, const QString &gender)
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

QString table(const QString &rows)
{
    return QStringLiteral("<table>") + rows + QStringLiteral("</table>");
}

QString plainReport(const QString &html)
{
    QTextDocument document;
    document.setHtml(html);
    return document.toPlainText().trimmed();
}

LoadedPlugin::LoadedPlugin(Log log)
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

void LoadedPlugin::destroy()
{
    QObject *object = m_object;
    m_object.clear();
    m_plugin = nullptr;
    delete object;
}

PanelRecorder &LoadedPlugin::panel()
{
    m_recorder = std::make_unique<PanelRecorder>(m_plugin->graphicsItem());
    return *m_recorder;
}

QString LoadedPlugin::log() const
{
    QString text;
    const QDir dir(logDirectory());
    const QStringList names
        = dir.entryList({QStringLiteral("KrHvcP2Log_????????.txt")}, QDir::Files, QDir::Name);
    for (const QString &name : names)
        text += readText(dir.filePath(name));
    static const QRegularExpression stamp(
        QStringLiteral("^>> \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d "),
        QRegularExpression::MultilineOption);
    return text.replace(stamp, QStringLiteral(">> yyyy-MM-dd hh:mm:ss "));
}

QString LoadedPlugin::takeLogLock() const
{
    const QString lock = logDirectory() + QStringLiteral("/KrHvcP2Log.lock");
    if (!QDir().mkpath(logDirectory()) || !writeFile(lock))
        qFatal("the log cannot be locked");
    return lock;
}

void LoadedPlugin::init(const QVector<Content> &contents, const QVariantMap &params)
{
    QMap<int, QList<int>> links;
    for (int number = 1; number <= contents.size(); ++number)
        links.insert(100 + number, {number});
    init(contents, links, params);
}

void LoadedPlugin::init(
    const QVector<Content> &contents, const QMap<int, QList<int>> &links, const QVariantMap &params)
{
    m_plugin->setStage(linkedStage(links));
    m_plugin->setPluginData(screenData(contents));
    m_plugin->setParams(params);
    m_plugin->init();
}

bool LoadedPlugin::receive(const QString &chunk)
{
    return QMetaObject::invokeMethod(
        m_object, "onDataReceived", Qt::DirectConnection, Q_ARG(QString, chunk));
}

QObjectList LoadedPlugin::controllers() const
{
    QObjectList result;
    const QObjectList children = m_object->children();
    for (QObject *child : children) {
        if (child->inherits("PluginKrHvcP2::KrHvcController"))
            result.append(child);
    }
    return result;
}

} // namespace PluginTest
