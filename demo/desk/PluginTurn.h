#pragma once

#include "tools/analysis/Decider.h"

#include <QDateTime>
#include <QString>
#include <QVector>

namespace Desk {

/// One read of the sensor program's output.
struct SeenChunk
{
    QString text;
    QDateTime time; ///< at which it came, UTC
};

/// What a host saw of a plug-in in one turn of its event loop. A chunk and the starts that came of
/// it are in one turn.
struct PluginTurn
{
    QVector<SeenChunk> chunks;
    QVector<Analysis::SeenStart> starts; ///< also those that no viewer moved

    bool isEmpty() const { return chunks.isEmpty() && starts.isEmpty(); }
};

} // namespace Desk
