#pragma once

#include <QMenu>

namespace Player {

class StagePlayer;

/// An entry for each sequence, which asks the plug-in for it as a button of its panel does; the
/// first ten have the number keys.
class SequenceMenu : public QMenu
{
    Q_OBJECT

public:
    explicit SequenceMenu(StagePlayer *player, QWidget *parent = nullptr); ///< not owned

private:
    void addEntry(int number);
    void showContents();

    StagePlayer *m_player; // not owned
};

} // namespace Player
