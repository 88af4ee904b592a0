#include "demo/player/PlacingDesk.h"

#include "demo/desk/LiveFile.h"
#include "demo/desk/PlacingView.h"
#include "demo/desk/SensorView.h"
#include "demo/desk/ViewerForm.h"
#include "demo/player/AskUser.h"
#include "demo/player/PaneLabels.h"
#include "demo/player/Platform.h"
#include "demo/player/StagePlayer.h"
#include "demo/player/ViewPane.h"
#include "demo/support/SimulatorVariables.h"

#include <QAction>
#include <QActionGroup>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QVBoxLayout>

namespace Player {

using namespace Desk;

namespace {

constexpr int Margin = 14;

} // namespace

PlacingDesk::PlacingDesk(StagePlayer *player, ViewPane *views, QWidget *window)
    : QObject(window)
    , m_player(player)
    , m_views(views)
    , m_window(window)
    , m_ownLiveFile(qEnvironmentVariable(Demo::LiveVariable))
{
    createMenu();
    createPane();
    createView();
    connect(&m_viewers, &ViewerDesk::changed, this, &PlacingDesk::takeChange);
}

PlacingDesk::~PlacingDesk()
{
    if (m_liveFile)
        setPathVariable(Demo::LiveVariable, m_ownLiveFile);
}

QAction *PlacingDesk::addAction(const QString &name, const QString &text)
{
    QAction *const action = m_menu->addAction(text);
    action->setObjectName(name);
    return action;
}

void PlacingDesk::createMenu()
{
    m_menu = new QMenu(tr("Vie&wers"), m_window);
    m_menu->setObjectName(QStringLiteral("viewersMenu"));
    m_place = addAction(QStringLiteral("placeViewers"), tr("&Place viewers"));
    m_place->setShortcut(tr("Ctrl+P"));
    m_place->setCheckable(true);
    m_switches = new QActionGroup(this);
    m_switches->setExclusive(false);
    m_switches->addAction(m_place);
    connect(m_place, &QAction::toggled, this, &PlacingDesk::setPlacing);
    m_menu->addSeparator();
    const QVector<ViewerGroup> groups = viewerGroups();
    for (int i = 0; i < groups.size(); ++i) {
        const ViewerGroup group = groups.at(i);
        QAction *const action = addAction(QStringLiteral("group%1").arg(i + 1), groupName(group));
        connect(action, &QAction::triggered, this, [this, group] { addGroup(group); });
        m_switches->addAction(action);
    }
    m_removeAll = addAction(QStringLiteral("removeViewers"), tr("&Remove all"));
    m_removeAll->setEnabled(false);
    connect(m_removeAll, &QAction::triggered, &m_viewers, &ViewerDesk::clear);
    m_menu->addSeparator();
    m_save = addAction(QStringLiteral("saveScenario"), tr("&Save as scenario..."));
    m_save->setEnabled(false);
    connect(m_save, &QAction::triggered, this, &PlacingDesk::saveScenario);
}

void PlacingDesk::setAvailable(bool isAvailable)
{
    m_switches->setEnabled(isAvailable);
    if (!isAvailable)
        m_place->setChecked(false); // nothing after it: this may have gone
}

void PlacingDesk::createPane()
{
    m_pane = new QWidget(m_window);
    m_pane->setObjectName(QStringLiteral("placingPane"));
    auto *const title = createLabel(QStringLiteral("placingTitle"), m_pane);
    title->setText(tr("Selected viewer"));
    title->setFont(scaled(title->font(), 1.1, QFont::DemiBold));
    auto *const help = createLabel(QStringLiteral("placingHelp"), m_pane);
    help->setText(tr("Click: add\nDrag, arrow keys: move\nWheel, + and -: nearer, farther\n"
                     "Tab: the next one\nInsert, Delete: add, remove\nEnter: this form"));
    makeFaint(help);
    auto *const layout = new QVBoxLayout(m_pane);
    layout->setContentsMargins(0, Margin, Margin, Margin / 2);
    layout->addWidget(title);
    layout->addWidget(new ViewerForm(&m_viewers, m_pane));
    layout->addStretch();
    layout->addWidget(help);
    m_pane->hide();
}

void PlacingDesk::createView()
{
    SensorView *const sensor = m_views->sensorView();
    m_view = new PlacingView(&m_viewers, sensor);
    m_view->setObjectName(QStringLiteral("placing"));
    m_view->hide();
    auto *const layout = new QVBoxLayout(sensor);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);
    connect(m_view, &PlacingView::detailsWanted, m_pane,
        [pane = m_pane] { pane->findChild<QWidget *>(QStringLiteral("age"))->setFocus(); });
}

void PlacingDesk::setPlacing(bool on)
{
    if (on)
        begin();
    else
        end();
    m_view->setVisible(on);
    m_pane->setVisible(on);
    m_views->sensorView()->setFocusProxy(on ? m_view : nullptr);
    if (on)
        m_views->showSensorView();
    m_player->host().restart(); // nothing after it: this may have gone
}

void PlacingDesk::begin()
{
    m_liveFile = std::make_unique<LiveFile>(&m_viewers);
    connect(m_liveFile.get(), &LiveFile::failed, this, &PlacingDesk::told);
    setPathVariable(Demo::LiveVariable, m_liveFile->fileName());
    m_clock.start();
    m_recorder.start(m_viewers.viewers(), m_clock.elapsed());
    m_isRecordingFull = false;
    m_save->setEnabled(true);
}

/// Those who were placed stay for the next time.
void PlacingDesk::end()
{
    setPathVariable(Demo::LiveVariable, m_ownLiveFile);
    m_liveFile.reset();
}

void PlacingDesk::addGroup(ViewerGroup group)
{
    m_viewers.addGroup(group);
    m_place->setChecked(true); // nothing after it: this may have gone
}

void PlacingDesk::takeChange()
{
    m_removeAll->setEnabled(!m_viewers.viewers().isEmpty());
    if (!m_liveFile)
        return;
    m_recorder.record(m_viewers.viewers(), m_clock.elapsed());
    if (m_recorder.isFull() && !m_isRecordingFull)
        emit told(tr("No more fits into a scenario. What was done until now can be saved."));
    m_isRecordingFull = m_recorder.isFull();
}

void PlacingDesk::saveScenario()
{
    QFileDialog dialog(m_window, tr("Save Scenario"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({tr("Scenarios (*.json)"), tr("All files (*)")});
    dialog.setDefaultSuffix(QStringLiteral("json"));
    dialog.selectFile(QStringLiteral("viewers.json"));
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QString fileName = dialog.selectedFiles().value(0);
    QString error;
    if (m_recorder.save(fileName, tr("Placed by hand in the stage player"), &error)) {
        emit told(tr("Saved: %1").arg(QDir::toNativeSeparators(fileName)));
        return;
    }
    ask(QMessageBox::Critical, tr("Scenario Not Saved"), error, QMessageBox::Ok, QMessageBox::Ok,
        m_window);
}

} // namespace Player
