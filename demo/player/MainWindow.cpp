#include "demo/player/MainWindow.h"

#include "demo/player/HostPane.h"
#include "demo/player/SequenceMenu.h"
#include "demo/player/ShownText.h"
#include "demo/player/StageDesk.h"
#include "demo/player/StagePlayer.h"
#include "demo/player/StageTimeline.h"
#include "demo/player/StageView.h"
#include "demo/player/ViewPane.h"
#include "host/KrPluginGuiInterface.h"
#include "host/KrPluginStatus.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <QStyleFactory>
#include <QVBoxLayout>

namespace Player {

namespace {

constexpr int PaneWidth = 440;
constexpr int Margin = 14;
constexpr int EditMessageTimeout = 10000; // ms

QFont scaled(QFont font, qreal factor, int weight)
{
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setWeight(weight);
    return font;
}

QLabel *createLabel(const QString &objectName, QWidget *parent)
{
    auto *const label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText); // most texts come from files
    return label;
}

void makeFaint(QLabel *label)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, QColor(0x9a, 0xa5, 0xb1));
    label->setPalette(palette);
}

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

/// Opens a message box, whose text may come from a file and is no HTML; returns the answer.
int ask(QMessageBox::Icon icon, const QString &title, const QString &text,
    QMessageBox::StandardButtons buttons, QMessageBox::StandardButton defaultButton,
    QWidget *parent)
{
    QMessageBox box(icon, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(defaultButton);
    return box.exec();
}

QColor statusColor(int status)
{
    switch (status) {
    case Kora::Status::Started:
        return {0x2f, 0x9e, 0x5b};
    case Kora::Status::Starting:
    case Kora::Status::Stopping:
    case Kora::Status::Initializing:
        return {0xc9, 0x8a, 0x1b};
    case Kora::Status::Paused:
        return {0x3a, 0x78, 0xc2};
    default:
        return {0x55, 0x60, 0x6c};
    }
}

} // namespace

MainWindow::MainWindow(StagePlayer *player, QWidget *parent)
    : QMainWindow(parent)
    , m_player(player)
    , m_desk(new StageDesk(player, this))
{
    setPalette(darkPalette());
    createMenus();
    auto *const central = new QWidget(this);
    auto *const layout = new QHBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_stagePart = createStagePart();
    layout->addWidget(m_stagePart, 1);
    m_pane = createPane();
    layout->addWidget(m_pane);
    setCentralWidget(central);
    createLargeAction();

    m_files = createLabel(QStringLiteral("files"), this);
    makeFaint(m_files);
    m_files->setContentsMargins(Margin, 0, 0, 0);
    statusBar()->addWidget(m_files);
    statusBar()->setSizeGripEnabled(false);

    connect(&player->host(), &PluginHost::statusChanged, this, &MainWindow::showStatus);
    connect(player, &StagePlayer::currentChanged, this, &MainWindow::showCurrent);
    connect(player, &StagePlayer::stageChanged, this, &MainWindow::showStage);
    connect(&player->log(), &EventLog::appended, this, [this](const PlayerEvent &event) {
        if (event.kind == PlayerEvent::Edit) // too long for the list
            statusBar()->showMessage(event.details, EditMessageTimeout);
    });
    showStatus(player->host().status());
    showCurrent();
    showStage();
    resize(1480, 700 + menuBar()->sizeHint().height()); // the stage fills its side
}

void MainWindow::applyTheme()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

void MainWindow::showPluginInformation()
{
    const PluginInformation plugin = m_player->host().information();
    m_icon->setPixmap(QPixmap::fromImage(plugin.icon));
    m_name->setText(QStringLiteral("%1 %2").arg(plugin.name, plugin.version));
    m_vendor->setText(plugin.vendor);
    m_vendor->setToolTip(plugin.copyright + QLatin1Char('\n') + plugin.url);
    m_description->setText(plugin.description);

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
        m_controlPart->setVisible(!isLarge);
        m_pane->setMinimumWidth(isLarge ? 0 : PaneWidth);
        m_pane->setMaximumWidth(isLarge ? QWIDGETSIZE_MAX : PaneWidth);
    });
}

QWidget *MainWindow::createPane()
{
    auto *const pane = new QWidget(this);
    pane->setFixedWidth(PaneWidth);
    auto *const layout = new QVBoxLayout(pane);
    layout->setContentsMargins(Margin, Margin, Margin, Margin / 2);
    layout->setSpacing(Margin * 2 / 3);
    m_controlPart = createControlPart();
    layout->addWidget(m_controlPart);
    layout->addWidget(createViews(), 1);
    return pane;
}

QWidget *MainWindow::createControlPart()
{
    auto *const part = new QWidget(this);
    auto *const layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Margin * 2 / 3);
    layout->addWidget(createHeader());
    layout->addWidget(createStatusRow());
    layout->addWidget(new HostPane(m_player, m_desk, part));
    layout->addWidget(createControls());
    return part;
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
    return views;
}

QWidget *MainWindow::createHeader()
{
    auto *const header = new QWidget(this);
    m_icon = createLabel(QStringLiteral("icon"), header);
    m_icon->setFixedSize(44, 44);
    m_icon->setAlignment(Qt::AlignCenter);
    // The plug-in's icon may be dark.
    m_icon->setStyleSheet(QStringLiteral("background-color: #e4e8ec; border-radius: 8px;"));
    m_name = createLabel(QStringLiteral("name"), header);
    m_name->setFont(scaled(m_name->font(), 1.35, QFont::Bold));
    m_vendor = createLabel(QStringLiteral("vendor"), header);
    makeFaint(m_vendor);
    m_description = createLabel(QStringLiteral("description"), header);
    m_description->setWordWrap(true);
    m_description->setFont(scaled(m_description->font(), 0.85, QFont::Normal));
    makeFaint(m_description);

    auto *const names = new QVBoxLayout;
    names->setSpacing(0);
    names->addWidget(m_name);
    names->addWidget(m_vendor);
    auto *const top = new QHBoxLayout;
    top->setSpacing(Margin);
    top->addWidget(m_icon);
    top->addLayout(names, 1);
    auto *const layout = new QVBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(top);
    layout->addWidget(m_description);
    return header;
}

QWidget *MainWindow::createStatusRow()
{
    auto *const row = new QWidget(this);
    m_status = createLabel(QStringLiteral("status"), row);
    m_status->setFont(scaled(m_status->font(), 1.0, QFont::DemiBold));
    m_current = createLabel(QStringLiteral("current"), row);
    m_current->setFont(scaled(m_current->font(), 1.1, QFont::DemiBold));
    m_current->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Margin);
    layout->addWidget(m_status);
    layout->addWidget(m_current, 1);
    return row;
}

QWidget *MainWindow::createControls()
{
    auto *const row = new QWidget(this);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    PluginHost *const host = &m_player->host();
    const auto add = [&](const QString &name, const QString &text, bool (PluginHost::*call)()) {
        auto *const button = new QPushButton(text, row);
        button->setObjectName(name);
        connect(button, &QPushButton::clicked, host, [host, call] { (host->*call)(); });
        layout->addWidget(button);
    };
    add(QStringLiteral("start"), tr("&Start"), &PluginHost::start);
    add(QStringLiteral("stop"), tr("S&top"), &PluginHost::stop);
    add(QStringLiteral("pause"), tr("&Pause"), &PluginHost::pause);
    add(QStringLiteral("reload"), tr("&Reload"), &PluginHost::reload);
    return row;
}

void MainWindow::showStatus(int status)
{
    m_status->setText(
        QStringLiteral("%1  %2").arg(QString::number(status), PluginHost::statusText(status)));
    m_status->setStyleSheet(
        QStringLiteral("background-color: %1; color: white; border-radius: 9px; padding: 3px 10px;")
            .arg(statusColor(status).name()));
}

void MainWindow::showCurrent()
{
    const StageContent &content = m_player->current();
    m_current->setText(content.number == 0
            ? tr("Nothing switched yet")
            : QStringLiteral("#%1  %2").arg(QString::number(content.number), content.name));
    m_current->setToolTip(plainToolTip(m_current->text()));
}

} // namespace Player
