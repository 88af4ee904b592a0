#include "demo/player/EventView.h"

#include "demo/player/EventLog.h"

#include <QHeaderView>
#include <QScrollBar>

namespace Player {

EventView::EventView(EventLog *log, QWidget *parent)
    : QTreeView(parent)
    , m_log(log)
{
    setObjectName(QStringLiteral("events"));
    setAccessibleName(tr("Events"));
    setModel(log);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setFrameShape(QFrame::NoFrame);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.88);
    setFont(small);
    header()->setSectionResizeMode(QHeaderView::Interactive);
    header()->setStretchLastSection(true);
    const QFontMetrics metrics(small);
    header()->resizeSection(
        EventLog::TimeColumn, metrics.horizontalAdvance(QStringLiteral("00:00:00.0000")) + 8);
    header()->resizeSection(
        EventLog::NameColumn, metrics.horizontalAdvance(QStringLiteral("contentStarted")) + 14);

    // A click may be an activation as well; the second one picks the same.
    const auto pick = [this](const QModelIndex &index) { emit picked(m_log->at(index.row())); };
    connect(this, &QAbstractItemView::clicked, this, pick);
    connect(this, &QAbstractItemView::activated, this, pick);
    follow();
}

void EventView::follow()
{
    QScrollBar *const bar = verticalScrollBar();
    connect(m_log, &EventLog::rowsAboutToBeInserted, this,
        [this, bar] { m_follows = bar->value() >= bar->maximum(); });
    connect(bar, &QScrollBar::rangeChanged, this, [this, bar](int /*minimum*/, int maximum) {
        if (m_follows)
            bar->setValue(maximum);
    });
}

} // namespace Player
