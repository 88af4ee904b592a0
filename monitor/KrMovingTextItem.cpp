#include "monitor/KrMovingTextItem.h"

#include "host/KrPluginExtScreenInterface.h"
#include "monitor/KrTextItemButton_Private.h"
#include "monitor/KrTextItem_Private.h"
#include "monitor/SlidePath.h"

#include <QBrush>
#include <QElapsedTimer>
#include <QPen>
#include <QPropertyAnimation>
#include <QTextDocument>
#include <QTimer>
#include <QVector>

#include <limits>
#include <utility>

namespace PluginKrHvcP2 {

using Private::KrTextItem_Private;
using Private::KrTextItemButton_Private;

namespace {

constexpr int SlideMs = 800;
constexpr int SequenceButtonCount = 20;
constexpr int ButtonsPerRow = 10;
constexpr qreal Margin = 2;
constexpr char ButtonNameProperty[] = "buttonName";
constexpr qreal Topmost = std::numeric_limits<double>::max();

std::unique_ptr<OfflineTextDocument> messageDocument()
{
    auto document = Private::panelDocument();
    // On a page of no size nothing is laid out. The message is when it is shown, and then once; a
    // layout has timers, which must not outlast the panel together with a pending message.
    document->setPageSize(QSizeF(0, 0));
    return document;
}

SlidePath slidePathOf(const KrTextItem_Private &item, const QSizeF &panel)
{
    const QTextDocument &document = *item.document();
    return slidePath(normalizedDirection(item.direction()), panel, document.idealWidth(),
        document.size().height());
}

/// Moves a message, and can be ended in time by the clock, too. The ticks of animations come 16 ms
/// apart at best, and one that comes a little late lets a slide wait for another.
class Slide : public QPropertyAnimation
{
public:
    Slide(KrTextItem_Private *item, const QPointF &from, const QPointF &to, QObject *parent)
        : QPropertyAnimation(item, QByteArrayLiteral("pos"), parent)
    {
        setDuration(SlideMs);
        setEasingCurve(QEasingCurve::OutQuint);
        setStartValue(from);
        setEndValue(to);
        m_sinceStart.start();
    }

    bool isOver() const { return m_sinceStart.elapsed() >= SlideMs; }
    void end() { setCurrentTime(SlideMs); }

private:
    QElapsedTimer m_sinceStart;
};

} // namespace

KrMovingTextItem::KrMovingTextItem(QObject *parent)
    : QObject(parent)
{
    setRect(0, 0, 512, 384);
    setBrush(QColor(0, 0, 0, 200));
    setPen(QPen(QColor(0, 0, 0, 0), 0));
    setFlag(ItemClipsChildrenToShape); // sliding text is cut at the panel's edge
    addTitle();
    addButtons();
}

KrMovingTextItem::~KrMovingTextItem()
{
    if (!m_released && hasPlugin())
        m_plugin->releaseGraphicsItem();
}

void KrMovingTextItem::setPlugin(Kora::KrPluginExtScreenInterface *plugin)
{
    m_plugin = plugin;
    m_pluginObject = plugin != nullptr ? plugin->object() : nullptr;
    m_pluginIsWatched = m_pluginObject != nullptr;
}

void KrMovingTextItem::addText(const QString &text, int direction)
{
    auto document = messageDocument();
    document->setPlainText(text);
    enqueue(std::move(document), direction);
}

void KrMovingTextItem::addHtml(const QString &html, int direction)
{
    auto document = messageDocument();
    document->setHtml(html);
    enqueue(std::move(document), direction);
}

void KrMovingTextItem::setItemSize(qreal width, qreal height)
{
    setItemSize(QSizeF(width, height));
}

void KrMovingTextItem::setItemSize(const QSizeF &size)
{
    setRect(QRectF(rect().topLeft(), size));
    m_title->setTextWidth(size.width());

    // Full rows from the bottom right; the buttons left over share the top row.
    const int leftOver = m_buttons.size() % ButtonsPerRow;
    const int inFullRows = m_buttons.size() - leftOver;
    const qreal rowWidth = size.width() - Margin;
    qreal buttonWidth = rowWidth / ButtonsPerRow;
    qreal x = rowWidth;
    qreal rowOffset = 0;
    qreal greatestHeight = 0;
    int placed = 0;
    for (auto it = m_buttons.crbegin(); it != m_buttons.crend(); ++it) {
        KrTextItemButton_Private *button = *it;
        button->setTextWidth(buttonWidth);
        x -= button->documentWidth();
        button->setPos(x, size.height() - (button->documentHeight() + rowOffset) - Margin);
        greatestHeight = qMax(greatestHeight, button->documentHeight());

        ++placed;
        if (placed % ButtonsPerRow != 0)
            continue;
        rowOffset += greatestHeight;
        x = rowWidth;
        if (placed == inFullRows && leftOver > 0)
            buttonWidth = rowWidth / leftOver;
    }
}

void KrMovingTextItem::moveTextItem()
{
    TextItem *item = takePending();
    if (item == nullptr)
        return;
    if (normalizedDirection(item->direction()) == 0) {
        delete item; // would never be shown
        return;
    }

    m_currentMutex.lock();
    const QPointer<TextItem> previous = m_current.value(item->direction());
    m_currentMutex.unlock();
    if (previous)
        leave(previous);
    enter(item);
    endSlidesInTime();
}

void KrMovingTextItem::buttonClicked(QObject *button)
{
    if (button == nullptr || !hasPlugin())
        return;

    // Each of these may run host code that deletes the panel, so nothing may follow them.
    const QString name = button->property(ButtonNameProperty).toString();
    if (name.compare(QLatin1String("start"), Qt::CaseInsensitive) == 0) {
        m_plugin->start();
    } else if (name.compare(QLatin1String("stop"), Qt::CaseInsensitive) == 0) {
        m_plugin->stop();
    } else if (name.startsWith(QLatin1Char('#'))) {
        bool ok = false;
        const int number = QString(name).remove(QLatin1Char('#')).toInt(&ok, 10);
        if (ok)
            m_plugin->requestSequenceNumber(number);
    }
}

bool KrMovingTextItem::hasPlugin() const
{
    return m_plugin != nullptr && (m_pluginObject || !m_pluginIsWatched);
}

void KrMovingTextItem::addTitle()
{
    m_title = new KrTextItem_Private(tr("HVC-P2 Monitoring"), this);
    m_title->setTextWidth(rect().width());
    m_title->setPos(0, 0);
    m_title->setZValue(Topmost);
    m_title->setBackgroundColor(QColor(0, 0, 0, 127));
    m_title->setDefaultTextColor(Qt::cyan);
    m_title->setVisible(true);
    m_title->setFont(Private::panelFont(10, QFont::Bold));
}

void KrMovingTextItem::addButtons()
{
    QVector<std::pair<QString, QString>> labelsAndNames{
        {tr("Start"), QStringLiteral("start")},
        {tr("Stop"), QStringLiteral("stop")},
    };
    for (int number = 1; number <= SequenceButtonCount; ++number) {
        const QString label = QStringLiteral("#%1").arg(number);
        labelsAndNames.append({label, label});
    }

    qreal x = 0;
    for (const auto &[label, name] : qAsConst(labelsAndNames)) {
        auto *button = new KrTextItemButton_Private(label, this);
        button->setProperty(ButtonNameProperty, name);
        button->setTextWidth(rect().width() / labelsAndNames.size());
        button->setPos(x, rect().height() - button->documentHeight() - 1);
        button->setZValue(Topmost);
        button->setVisible(true);
        connect(button, &KrTextItemButton_Private::clicked, this, &KrMovingTextItem::buttonClicked);
        m_buttons.append(button);
        x += button->documentWidth();
    }
}

void KrMovingTextItem::enqueue(std::unique_ptr<OfflineTextDocument> document, int direction)
{
    auto *item = new KrTextItem_Private(std::move(document));
    item->setDirection(direction);
    {
        const QMutexLocker locker(&m_queueMutex);
        m_pending.append(item);
    }
    // By name: a pending timer that holds code of this library would outlast its unloading.
    QTimer::singleShot(1, this, SLOT(moveTextItem()));
}

KrMovingTextItem::TextItem *KrMovingTextItem::takePending()
{
    const QMutexLocker locker(&m_queueMutex);
    return m_pending.isEmpty() ? nullptr : m_pending.takeFirst();
}

void KrMovingTextItem::enter(TextItem *item)
{
    if (movesOnlyHorizontally(normalizedDirection(item->direction())))
        item->setZValue(m_title->zValue() + 0.1);
    {
        const QMutexLocker locker(&m_currentMutex);
        m_current[item->direction()] = item;
    }

    const QSizeF panel = rect().size();
    item->setTextWidth(panel.width());
    const SlidePath path = slidePathOf(*item, panel);
    item->setParentItem(this);
    item->setPos(path.start);
    item->setVisible(true);
    slide(item, path.start, path.rest, false);
}

void KrMovingTextItem::leave(TextItem *item)
{
    {
        const QMutexLocker locker(&m_currentMutex);
        m_current[item->direction()] = nullptr;
    }
    slide(item, item->pos(), slidePathOf(*item, rect().size()).exit, true);
}

void KrMovingTextItem::slide(
    TextItem *item, const QPointF &from, const QPointF &to, bool deleteAtEnd)
{
    auto *animation = new Slide(item, from, to, this);
    if (deleteAtEnd)
        connect(animation, &QAbstractAnimation::finished, item, &QObject::deleteLater);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

/// So that, however many messages come, only those of the last 0.8 s are on the panel.
void KrMovingTextItem::endSlidesInTime()
{
    QVector<QPointer<Slide>> over;
    const QObjectList oldestFirst = children();
    for (QObject *child : oldestFirst) {
        auto *slide = dynamic_cast<Slide *>(child);
        if (slide == nullptr)
            continue;
        if (!slide->isOver())
            break;
        if (slide->state() == QAbstractAnimation::Running)
            over.append(slide);
    }
    // Who watches an item may delete any of them, and the panel.
    for (const QPointer<Slide> &slide : qAsConst(over)) {
        if (slide)
            slide->end();
    }
}

} // namespace PluginKrHvcP2
