#include "demo/player/MainWindow.h"

#include "demo/player/AskUser.h"
#include "demo/player/ControlPane.h"
#include "demo/player/LogDesk.h"
#include "demo/player/LogToolBar.h"
#include "demo/player/PaneLabels.h"
#include "demo/player/PlacingDesk.h"
#include "demo/player/SequenceMenu.h"
#include "demo/player/ShownText.h"
#include "demo/player/StageDesk.h"
#include "demo/player/StagePlayer.h"
#include "demo/player/StageTimeline.h"
#include "demo/player/StageView.h"
#include "demo/player/ViewPane.h"
#include "host/KrPluginGuiInterface.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QStyleFactory>
#include <QVBoxLayout>

namespace Player {

namespace {

constexpr int PaneWidth = 440;
constexpr int Margin = 14;
constexpr int WindowWidth = 1480;
constexpr int StageStretch = 255; // beside 1 of the views
constexpr int MessageTimeout = 10000; // ms

QPalette darkPalette()
{
    const QColor text(0xe4, 0xe8, 0xec);
    const QColor disabled(0x6b, 0x75, 0x80);
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x1b, 0x20, 0x26));
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, QColor(0x14, 0x18, 0x1d));
    palette.setColor(QPalette::AlternateBase, QColor(0x19, 0x1e, 0x24));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, QColor(0x2c, 0x34, 0x3d));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, QColor(0x2c, 0x34, 0x3d));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, QColor(0x3a, 0x78, 0xc2));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, disabled);
    palette.setColor(QPalette::Disabled, QPalette::Text, disabled);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, disabled);
    return palette;
}

} // namespace

MainWindow::MainWindow(StagePlayer *player, QWidget *parent)
    : QMainWindow(parent)
    , m_player(player)
    , m_desk(new StageDesk(player, this))
    , m_log(new LogToolBar(player, &m_desk->log(), this))
{
    setPalette(darkPalette());
    createMenus();
    createParts();
    createLargeAction();
    addToolBar(Qt::BottomToolBarArea, m_log);

    m_files = createLabel(QStringLiteral("files"), this);
    makeFaint(m_files);
    m_files->setContentsMargins(Margin, 0, 0, 0);
    statusBar()->addWidget(m_files);
    statusBar()->setSizeGripEnabled(false);

    connect(player, &StagePlayer::stageChanged, this, &MainWindow::showStage);
    connect(&player->log(), &EventLog::appended, this, [this](const PlayerEvent &event) {
        if (event.kind == PlayerEvent::Edit) // too long for the list
            statusBar()->showMessage(event.details, MessageTimeout);
    });
    showStage();
    resize(WindowWidth, 700 + menuBar()->sizeHint().height()); // the stage fills its side
}

void MainWindow::applyTheme()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

bool MainWindow::openLog(const QString &fileName)
{
    return m_log->open(fileName);
}

void MainWindow::showPluginInformation()
{
    m_controls->showPluginInformation();
    fillPluginMenu();
    showFiles();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(mayClose());
    if (event->isAccepted())
        emit closed();
}

void MainWindow::createMenus()
{
    QMenu *const file = menuBar()->addMenu(tr("&File"));
    file->setObjectName(QStringLiteral("fileMenu"));
    const auto add = [file](const QString &name, const QString &text, const QKeySequence &keys) {
        QAction *const action = file->addAction(text);
        action->setObjectName(name);
        action->setShortcut(keys);
        return action;
    };
    connect(add(QStringLiteral("save"), tr("&Save stage"), QKeySequence::Save), &QAction::triggered,
        this, &MainWindow::save);
    connect(add(QStringLiteral("saveAs"), tr("Save stage &as..."), tr("Ctrl+Shift+S")),
        &QAction::triggered, this, &MainWindow::saveAs);
    file->addSeparator();
    file->addActions(m_log->menuActions());
    file->addSeparator();
    connect(add(QStringLiteral("close"), tr("&Close"), tr("Ctrl+Q")), &QAction::triggered, this,
        &QWidget::close);

    m_viewMenu = menuBar()->addMenu(tr("&View"));
    m_viewMenu->setObjectName(QStringLiteral("viewMenu"));
    // Alt+P belongs to a button.
    m_pluginMenu = menuBar()->addMenu(tr("Plug-&in"));
    m_pluginMenu->setObjectName(QStringLiteral("pluginMenu"));
    m_pluginMenu->setEnabled(false);
    // Of this, not of the menu above: that one is filled anew.
    m_editMenu = new QMenu(tr("&Edit content"), this);
    m_editMenu->setObjectName(QStringLiteral("editMenu"));
    QMenu *const sequences = new SequenceMenu(m_player, this);
    menuBar()->addMenu(sequences);
    for (QWidget *const menu : {file, m_viewMenu, m_pluginMenu, m_editMenu, sequences})
        menu->setPalette(darkPalette()); // windows of their own do not inherit it
}

void MainWindow::fillPluginMenu()
{
    m_pluginMenu->clear(); // deletes no action that belongs to somebody else
    Kora::KrPluginGuiInterface *const gui = m_player->host().gui();
    m_pluginMenu->setEnabled(gui);
    if (!gui)
        return;
    if (gui->canAddContents())
        m_pluginMenu->addActions(gui->addContentActions());
    if (gui->canEditContents())
        m_pluginMenu->addMenu(m_editMenu);
    if (gui->hasPluginPropertyActions()) {
        m_pluginMenu->addSeparator();
        m_pluginMenu->addActions(gui->pluginPropertyActions());
    }
}

void MainWindow::showStage()
{
    setWindowTitle(tr("%1[*] - Stage Player").arg(m_player->stage().title()));
    setWindowModified(m_player->isModified());
    showFiles();

    const QVector<StageContent> &contents = m_player->contents();
    while (m_editActions.size() > contents.size())
        m_editActions.takeLast()->deleteLater(); // it may just have been chosen
    for (int i = 0; i < contents.size(); ++i) {
        if (i == m_editActions.size()) {
            m_editActions << m_editMenu->addAction(QString());
            m_editActions.last()->setObjectName(QStringLiteral("edit%1").arg(i + 1));
            connect(
                m_editActions.last(), &QAction::triggered, this, [this, i] { editFromMenu(i); });
        }
        m_editActions.at(i)->setText(
            tr("Edit content #%1  %2")
                .arg(QString::number(i + 1), withoutMnemonic(contents.at(i).name)));
    }
    m_editMenu->setEnabled(!contents.isEmpty());
}

void MainWindow::showFiles()
{
    const Stage::StageFile &stage = m_player->stage();
    const QString logs = m_player->logDirectory();
    m_files->setText(
        tr("Stage %1, screen %2")
            .arg(QFileInfo(stage.fileName()).fileName(), QString::number(m_player->screenId())));
    m_files->setToolTip(
        plainToolTip(tr("Stage: %1\nLogs: %2")
                         .arg(QDir::toNativeSeparators(stage.fileName()),
                             logs.isEmpty() ? tr("none") : QDir::toNativeSeparators(logs))));
}

void MainWindow::editFromMenu(int index)
{
    QRect anchor = m_editMenu->actionGeometry(m_editActions.at(index));
    anchor.moveTopLeft(m_editMenu->mapToGlobal(anchor.topLeft()));
    editContent(index, anchor); // nothing after it: this may have gone
}

/// The dialog appears beside @p anchor, a place on the screen.
void MainWindow::editContent(int index, const QRect &anchor)
{
    Kora::KrPluginGuiInterface *const gui = m_player->host().gui();
    if (gui && gui->canEditContents() && index < m_player->contents().size())
        gui->execContentPropertyDialog(index, anchor); // nothing after it: this may have gone
}

bool MainWindow::save()
{
    return saveInto(m_player->stage().fileName());
}

bool MainWindow::saveAs()
{
    QFileDialog dialog(this, tr("Save Stage"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({tr("Stages (*.json)"), tr("All files (*)")});
    dialog.setDefaultSuffix(QStringLiteral("json"));
    dialog.selectFile(m_player->stage().fileName());
    return dialog.exec() == QDialog::Accepted && saveInto(dialog.selectedFiles().value(0));
}

bool MainWindow::saveInto(const QString &fileName)
{
    QString error;
    if (m_player->save(fileName, &error))
        return true;
    ask(QMessageBox::Critical, tr("Stage Not Saved"), error, QMessageBox::Ok, QMessageBox::Ok,
        this);
    return false;
}

bool MainWindow::mayClose()
{
    if (!m_player->isModified())
        return true;
    if (m_asking)
        return false;
    m_asking = true;
    const int answer = ask(QMessageBox::Question, tr("Unsaved Changes"),
        tr("The stage \"%1\" has been changed.\nDo you want to save it?")
            .arg(m_player->stage().title()),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save, this);
    m_asking = false;
    if (answer == QMessageBox::Save)
        return save();
    return answer == QMessageBox::Discard;
}

/// The stage is what gets larger with the window, and the views where there is no stage.
void MainWindow::createParts()
{
    m_parts = new QSplitter(this);
    m_parts->setObjectName(QStringLiteral("parts"));
    m_parts->setChildrenCollapsible(false);
    m_stagePart = createStagePart();
    m_parts->addWidget(m_stagePart);
    m_parts->addWidget(createPane());
    m_parts->addWidget(m_placing->pane());
    m_parts->setStretchFactor(0, StageStretch);
    m_parts->setStretchFactor(1, 1);
    m_parts->setSizes({WindowWidth - PaneWidth, PaneWidth, 0});
    setCentralWidget(m_parts);
}

QWidget *MainWindow::createStagePart()
{
    auto *const part = new QWidget(this);
    auto *const layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(new StageView(&m_player->scene(), part), 1);
    layout->addWidget(createTimeline(m_player, m_desk, part));
    return part;
}

/// The views take the place of the stage as well.
void MainWindow::createLargeAction()
{
    m_viewMenu->addSeparator();
    QAction *const large = m_viewMenu->addAction(tr("&Large"));
    large->setObjectName(QStringLiteral("large"));
    large->setShortcut(Qt::Key_F11);
    large->setCheckable(true);
    connect(large, &QAction::toggled, this, [this](bool isLarge) {
        m_stagePart->setVisible(!isLarge);
        m_controls->setVisible(!isLarge);
    });
}

QWidget *MainWindow::createPane()
{
    auto *const pane = new QWidget(this);
    auto *const layout = new QVBoxLayout(pane);
    layout->setContentsMargins(Margin, Margin, Margin, Margin / 2);
    layout->setSpacing(Margin * 2 / 3);
    m_controls = new ControlPane(m_player, m_desk, pane);
    layout->addWidget(m_controls);
    layout->addWidget(createViews(), 1);
    return pane;
}

QWidget *MainWindow::createViews()
{
    auto *const views = new ViewPane(m_player, m_desk, this);
    m_viewMenu->addActions(views->tabActions());
    // Queued: the dialog runs events, in which the view may go that has sent this.
    connect(
        views, &ViewPane::contentActivated, this,
        [this, views](int number) {
            editContent(number - 1, {views->mapToGlobal(QPoint()), views->size()});
        },
        Qt::QueuedConnection);
    m_placing = new PlacingDesk(m_player, views, this);
    m_placing->menu()->setPalette(palette());
    menuBar()->addMenu(m_placing->menu());
    connect(&m_desk->log(), &LogDesk::openChanged, m_placing,
        [placing = m_placing](bool isOpen) { placing->setAvailable(!isOpen); });
    connect(m_placing, &PlacingDesk::told, this,
        [this](const QString &message) { statusBar()->showMessage(message, MessageTimeout); });
    return views;
}

} // namespace Player
