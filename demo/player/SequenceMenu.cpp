#include "demo/player/SequenceMenu.h"

#include "demo/player/ShownText.h"
#include "demo/player/StagePlayer.h"

#include <QAction>

namespace Player {

namespace {

constexpr int EntryCount = 20; // as the panel has buttons
constexpr int KeyCount = 10; // 0 stands for the last one

} // namespace

SequenceMenu::SequenceMenu(StagePlayer *player, QWidget *parent)
    : QMenu(tr("Se&quences"), parent)
    , m_player(player)
{
    setObjectName(QStringLiteral("sequenceMenu"));
    for (int number = 1; number <= EntryCount; ++number)
        addEntry(number);
    connect(player, &StagePlayer::stageChanged, this, &SequenceMenu::showContents);
    showContents();
}

void SequenceMenu::addEntry(int number)
{
    QAction *const action = addAction(QString());
    if (number <= KeyCount)
        action->setShortcut(Qt::Key_0 + number % KeyCount);
    action->setAutoRepeat(false); // one press, one request
    connect(action, &QAction::triggered, m_player,
        [player = m_player, number] { player->requestSequence(number); });
}

/// Keys without a content stay: what the plug-in says to them belongs to a demonstration.
void SequenceMenu::showContents()
{
    const QVector<StageContent> &contents = m_player->contents();
    const QList<QAction *> entries = actions();
    for (int i = 0; i < entries.size(); ++i) {
        const QString name = i < contents.size() ? contents.at(i).name : tr("(no such content)");
        entries.at(i)->setText(
            QStringLiteral("#%1  %2").arg(QString::number(i + 1), withoutMnemonic(name)));
        entries.at(i)->setVisible(i < contents.size() || i < KeyCount);
    }
}

} // namespace Player
