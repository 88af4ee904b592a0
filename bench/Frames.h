#pragma once

#include "core/screen/DetectionContent.h"

#include <QString>
#include <QVector>

#include <random>

/// What is fed to both sides.
namespace Bench {

inline const QVector<int> FaceCounts{0, 1, 3, 5, 10, 20, 35};
inline const QVector<int> ContentCounts{2, 20};

/// What the sensor program prints for a frame with so many faces.
QString chunk(int faces);

/// Lines of such a frame in any order, some of them damaged.
QString randomChunk(std::mt19937 &random);

/// The table of so many contents, each linked to.
PluginKrHvcP2::DetectionContents contentTable(int contents);

/// "3 faces"
QString facesText(int faces);

} // namespace Bench
