#include "demo/player/ViewPane.h"

#include "demo/desk/CoverageView.h"
#include "demo/desk/DecisionView.h"
#include "demo/desk/SensorView.h"
#include "demo/player/EventView.h"
#include "demo/player/LogDesk.h"
#include "demo/player/StageDesk.h"
#include "demo/player/StagePlayer.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QTabWidget>
#include <QVBoxLayout>

namespace Player {

using namespace Desk;

ViewPane::ViewPane(StagePlayer *player, StageDesk *desk, QWidget *parent)
    : QWidget(parent)
    , m_desk(desk)
{
    createPickedBar();
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("views"));
    m_tabs->setDocumentMode(true);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pickedBar);
    layout->addWidget(m_tabs, 1);

    addEvents(player);
    addSensorView();
    addDecisionView();
    addCoverageView();
    desk->shown().showAgain();
}

void ViewPane::showSensorView()
{
    m_desk->shown().follow();
    m_tabs->setCurrentWidget(m_sensorView);
    m_sensorView->setFocus();
}

void ViewPane::addEvents(StagePlayer *player)
{
    auto *const lists = new QStackedWidget(this);
    auto *const events = new EventView(&player->log(), lists);
    connect(events, &EventView::picked, m_desk, &StageDesk::pickFrameOf);
    lists->addWidget(events);
    lists->addWidget(createLogEvents());
    lists->setFocusProxy(events);
    connect(&m_desk->log(), &LogDesk::openChanged, lists, [lists](bool isOpen) {
        lists->setCurrentIndex(isOpen ? 1 : 0);
        lists->setFocusProxy(lists->currentWidget());
    });
    addView(lists, tr("&Events"));
}

QWidget *ViewPane::createLogEvents()
{
    LogDesk *const log = &m_desk->log();
    auto *const events = new EventView(&log->records(), this);
    events->setObjectName(QStringLiteral("logEvents"));
    events->setAccessibleName(tr("Records of the log"));
    const auto show = [log](const QModelIndex &index) { log->showFrameOfRow(index.row()); };
    connect(events, &QAbstractItemView::clicked, log, show);
    connect(events, &QAbstractItemView::activated, log, show);
    connect(log, &LogDesk::frameShown, events, [events, log] {
        const QModelIndex index = log->records().index(log->currentRow(), 0);
        events->setCurrentIndex(index);
        events->scrollTo(index, QAbstractItemView::PositionAtCenter);
    });
    return events;
}

void ViewPane::addSensorView()
{
    auto *const view = new SensorView(this);
    m_sensorView = view;
    view->setObjectName(QStringLiteral("sensor"));
    addFrameView(view, tr("Sens&or"));
    m_tabs->setCurrentWidget(view); // whoever sees this for the first time looks before he reads
    const auto showState = [this, view] {
        view->setState({m_desk->history().plan().settings.interval, m_desk->sensor().restarts(),
            !m_desk->shown().isPicked()});
    };
    connect(&m_desk->history(), &FrameHistory::planChanged, view, showState);
    connect(&m_desk->sensor(), &PluginFrames::programStarted, view, showState);
    connect(&m_desk->sensor(), &PluginFrames::programStopped, view, showState);
    connect(&m_desk->shown(), &ShownFrame::pickedChanged, view, showState);
    showState();
}

void ViewPane::addDecisionView()
{
    auto *const view = new DecisionView(this);
    connect(&m_desk->shown(), &ShownFrame::pickedChanged, view, &DecisionView::setPicked);
    addFrameView(view, tr("&Decision"));
}

void ViewPane::addCoverageView()
{
    auto *const view = new CoverageView(this);
    view->setObjectName(QStringLiteral("coverage"));
    addFrameView(view, tr("&Coverage"));
    connect(view, &CoverageView::contentActivated, this, &ViewPane::contentActivated);
}

void ViewPane::addView(QWidget *view, const QString &title)
{
    m_tabs->addTab(view, title);
    auto *const action = new QAction(title, this);
    action->setShortcut(QKeySequence(int(Qt::CTRL) | (int(Qt::Key_0) + m_tabs->count())));
    connect(action, &QAction::triggered, this, [this, view] {
        m_tabs->setCurrentWidget(view);
        view->setFocus();
    });
    m_tabActions << action;
}

/// Adds a view with the slots setPlan(), showFrame() and clear().
template <typename View>
void ViewPane::addFrameView(View *view, const QString &title)
{
    addView(view, title);
    connect(&m_desk->shown(), &ShownFrame::planShown, view, &View::setPlan);
    connect(&m_desk->shown(), &ShownFrame::frameShown, view, &View::showFrame);
    connect(&m_desk->shown(), &ShownFrame::nothingShown, view, &View::clear);
}

void ViewPane::createPickedBar()
{
    m_pickedBar = new QWidget(this);
    m_pickedBar->setObjectName(QStringLiteral("pickedBar"));
    m_picked = new QLabel(m_pickedBar);
    m_picked->setObjectName(QStringLiteral("picked"));
    auto *const button = new QPushButton(tr("&Back to now"), m_pickedBar);
    button->setObjectName(QStringLiteral("follow"));
    button->setToolTip(tr("Show the newest frame again (Esc)"));
    button->setShortcut(Qt::Key_Escape);
    auto *const layout = new QHBoxLayout(m_pickedBar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_picked, 1);
    layout->addWidget(button);
    m_pickedBar->hide();

    ShownFrame *const shown = &m_desk->shown();
    connect(button, &QPushButton::clicked, shown, &ShownFrame::follow);
    connect(shown, &ShownFrame::pickedChanged, m_pickedBar,
        [this, shown](bool isPicked) { m_pickedBar->setVisible(isPicked && !shown->isLogOpen()); });
    connect(shown, &ShownFrame::frameShown, this, [this, shown](const SeenFrame &frame) {
        if (shown->isPicked()) {
            m_picked->setText(tr("Shown: the frame of %1")
                                  .arg(frame.decision.time.toString(QStringLiteral("HH:mm:ss"))));
        }
    });
}

} // namespace Player
