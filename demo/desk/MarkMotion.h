#pragma once

#include "demo/desk/FaceMarks.h"

#include <QVector>

namespace Desk {

/// A face on its way from one frame to the next.
struct MovingMark
{
    FaceMark mark; ///< where it is now; what it says is that of the newer frame, if it is in that
    qreal opacity = 1; ///< 0 to 1
    int target = -1; ///< its position in the newer frame; -1: it is leaving
};

/// How the faces of one frame become those of the next: who is in both moves, who has come fades
/// in, who has gone fades out.
class MarkMotion
{
public:
    MarkMotion() = default;
    MarkMotion(const QVector<FaceMark> &from, const QVector<FaceMark> &to);

    /// In the order to be painted: who is leaving first, the most prominent face last.
    /// @p progress is from 0 to 1; at 1 nobody is leaving.
    QVector<MovingMark> at(qreal progress) const;

    /// For each face of @p to the position in @p from of the same face; -1: it is new. The sensor
    /// numbers the faces of each frame anew, so that nearness counts beside the number.
    static QVector<int> matched(const QVector<FaceMark> &from, const QVector<FaceMark> &to);

private:
    struct Way
    {
        MovingMark from;
        MovingMark to;
    };

    QVector<Way> m_ways;
};

} // namespace Desk
