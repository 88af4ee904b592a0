#pragma once

#include <QColor>
#include <QString>
#include <QVector>

namespace Stage {
class StageFile;
} // namespace Stage

namespace Player {

/// What the stage shows for one sequence. Its texts have 500 characters at most.
struct StageContent
{
    int number = 0; ///< counted from 1; 0: the card shown while nothing plays
    QString name; ///< the entry's own name, else the one in its "params"
    QString title; ///< the name when the card has no title
    QString subtitle;
    QColor color; ///< always valid
    QString picture; ///< absolute path, empty when there is none
    qint64 duration = 10000; ///< milliseconds until it is over

    friend bool operator==(const StageContent &a, const StageContent &b)
    {
        return a.number == b.number && a.name == b.name && a.title == b.title
            && a.subtitle == b.subtitle && a.color == b.color && a.picture == b.picture
            && a.duration == b.duration;
    }
    friend bool operator!=(const StageContent &a, const StageContent &b) { return !(a == b); }
};

/// What @p stage shows for each content of a screen; at position p: sequence p + 1.
QVector<StageContent> stageContents(const Stage::StageFile &stage, int screenId);

} // namespace Player
