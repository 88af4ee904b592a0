#include "demo/desk/DecisionView.h"

#include <QDateTime>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

namespace Desk {

namespace {

constexpr int Margin = 6;
constexpr int TimerInterval = 100; // ms: times are shown in tenths of a second

QLabel *createLabel(const QString &objectName, QWidget *parent)
{
    auto *const label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText); // names come from files
    label->setWordWrap(true);
    return label;
}

} // namespace

DecisionView::DecisionView(QWidget *parent)
    : QWidget(parent)
{
    m_heading = createLabel(QStringLiteral("decisionHeading"), this);
    m_summary = createLabel(QStringLiteral("decisionSummary"), this);
    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("decisionTable"));
    m_table->setAccessibleName(tr("Decision"));
    m_table->setAccessibleDescription(tr("What the plug-in made of each face of a frame, and why"));
    m_table->setModel(&m_model);
    m_table->setFrameShape(QFrame::NoFrame);
    m_table->setAlternatingRowColors(true);
    m_table->setShowGrid(false);
    m_table->setTabKeyNavigation(false); // the key leads on to the next widget
    m_table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->verticalHeader()->setTextElideMode(Qt::ElideRight);
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, Margin, 0, Margin);
    layout->addWidget(m_heading);
    layout->addWidget(m_table, 1);
    layout->addWidget(m_summary);
    setFocusProxy(m_table);

    m_timer = new QTimer(this);
    m_timer->setInterval(TimerInterval);
    connect(m_timer, &QTimer::timeout, this, &DecisionView::letTimeRun);
    fit();
}

void DecisionView::setPlan(const Analysis::Plan &plan)
{
    m_newPlan = plan;
    clear();
}

void DecisionView::showFrame(const SeenFrame &frame)
{
    m_frame = frame;
    if (isVisible())
        refresh();
}

void DecisionView::clear()
{
    showFrame(SeenFrame());
}

void DecisionView::setPicked(bool isPicked)
{
    m_isPicked = isPicked;
    if (isVisible())
        refresh();
}

void DecisionView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    refresh();
}

void DecisionView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_timer->stop();
}

void DecisionView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fit();
}

/// Sizes that measure no cell: there may be hundreds, many times a second.
void DecisionView::fit()
{
    const QFontMetrics metrics(m_table->font());
    m_table->horizontalHeader()->setDefaultSectionSize(
        metrics.horizontalAdvance(QStringLiteral("restricted")) + 2 * Margin);
    m_table->verticalHeader()->setDefaultSectionSize(metrics.height() + Margin / 2);
    m_table->verticalHeader()->setMaximumWidth(metrics.averageCharWidth() * 24);
}

void DecisionView::refresh()
{
    if (m_newPlan)
        m_model.setPlan(*std::exchange(m_newPlan, std::nullopt));
    m_model.setFrame(m_frame);
    const QString time = m_frame.decision.time.toString(QStringLiteral("HH:mm:ss.zzz"));
    m_heading->setText(m_frame.number == 0
            ? tr("No frame yet")
            : tr("Frame %1, %2").arg(QString::number(m_frame.number), time));
    m_summary->setText(m_model.summary());
    m_timer->stop();
    letTimeRun();
}

void DecisionView::letTimeRun()
{
    if (!m_isPicked && m_frame.number > 0) {
        m_model.setElapsed(
            qMax(qint64{0}, m_frame.decision.time.msecsTo(QDateTime::currentDateTime())));
    }
    if (m_isPicked || !m_model.isRunningDown())
        m_timer->stop();
    else if (!m_timer->isActive())
        m_timer->start();
}

} // namespace Desk
