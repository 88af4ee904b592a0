#include "demo/player/LogToolBar.h"

#include "demo/desk/LogDayBar.h"
#include "demo/player/AskUser.h"
#include "demo/player/LogDesk.h"
#include "demo/player/ShownText.h"
#include "demo/player/StagePlayer.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>

namespace Player {

LogToolBar::LogToolBar(StagePlayer *player, LogDesk *log, QWidget *parent)
    : QToolBar(tr("Log"), parent)
    , m_player(player)
    , m_log(log)
    , m_open(createAction(QStringLiteral("openLog"), tr("&Open log...")))
    , m_close(createAction(QStringLiteral("closeLog"), tr("Close &log")))
{
    setObjectName(QStringLiteral("log"));
    setMovable(false);
    toggleViewAction()->setVisible(false); // it comes and goes with the log
    m_open->setShortcut(QKeySequence::Open);
    m_close->setToolTip(tr("Back to what the plug-in does now"));
    m_close->setEnabled(false);
    connect(m_open, &QAction::triggered, this, &LogToolBar::openChosen);
    connect(m_close, &QAction::triggered, log, &LogDesk::close);

    auto *const bar = new Desk::LogDayBar(&log->playhead(), this);
    m_bar = bar;
    m_problems = new QLabel(this);
    m_problems->setObjectName(QStringLiteral("logProblems"));
    m_problems->setTextFormat(Qt::PlainText);
    addWidget(bar);
    addWidget(m_problems);
    addAction(m_close);
    hide();

    connect(log, &LogDesk::openChanged, this, &LogToolBar::onOpenChanged);
    connect(log, &LogDesk::reading, bar, &Desk::LogDayBar::showReading);
    connect(log, &LogDesk::reading, this, &LogToolBar::onReading);
    connect(log, &LogDesk::failed, m_problems, &QLabel::setText);
}

QAction *LogToolBar::createAction(const QString &name, const QString &text)
{
    auto *const action = new QAction(text, this);
    action->setObjectName(name);
    return action;
}

bool LogToolBar::open(const QString &fileName)
{
    QString error;
    if (m_log->open(fileName, &error))
        return true;
    ask(QMessageBox::Critical, tr("Log Not Opened"), error, QMessageBox::Ok, QMessageBox::Ok, this);
    return false;
}

void LogToolBar::openChosen()
{
    const QDir logs(m_player->logDirectory());
    QFileDialog dialog(this, tr("Open Log"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters({tr("Logs (*.txt)"), tr("All files (*)")});
    dialog.setDirectory(m_log->isOpen() ? QFileInfo(m_log->day().fileName()).path()
                                        : logs.filePath(QStringLiteral("KrHvcP2")));
    if (dialog.exec() == QDialog::Accepted)
        open(dialog.selectedFiles().value(0));
}

void LogToolBar::onOpenChanged(bool isOpen)
{
    setVisible(isOpen);
    m_close->setEnabled(isOpen);
    if (isOpen)
        m_bar->setFocus();
}

void LogToolBar::onReading(int percent)
{
    const Desk::LogDay &day = m_log->day();
    m_bar->setToolTip(plainToolTip(QDir::toNativeSeparators(day.fileName())));
    const bool hasProblems = percent == 100 && day.problemCount() > 0;
    m_problems->setText(
        hasProblems ? tr("Places not readable: %1").arg(day.problemCount()) : QString());
    m_problems->setToolTip(
        hasProblems ? plainToolTip(day.problems().join(QLatin1Char('\n'))) : QString());
}

} // namespace Player
