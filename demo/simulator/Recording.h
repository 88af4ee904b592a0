#pragma once

#include "demo/simulator/FramePlan.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace Simulation {

/// The program's output of an earlier run, cut into the blocks that it is played in.
///
/// With time stamps, lines of the form "@<milliseconds>", a block is what follows one. Without,
/// a block begins at a "Face result count:" line and the caller's interval is the rhythm.
struct Recording
{
    struct Block
    {
        qint64 timeMs = 0; ///< 0 throughout when the recording has no time stamps
        QByteArray text; ///< as recorded, line ends included
    };

    QVector<Block> blocks;
    bool timed = false;

    /// Plays block @p frame, counted from 0, and begins anew after the last one; needs a block.
    FramePlan planFrame(qint64 frame, int intervalMs) const;
};

/// @p name stands for the recording in @p error, which is set when nothing is returned.
std::optional<Recording> parseRecording(
    const QByteArray &text, const QString &name, QString *error);

/// The form in which a block is recorded.
QByteArray recordedBlock(qint64 timeMs, const QByteArray &text);

} // namespace Simulation
