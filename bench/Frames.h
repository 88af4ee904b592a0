#pragma once

#include "core/screen/DetectionContent.h"
#include "host/KrPluginStage.h"

#include <QString>
#include <QVariantMap>
#include <QVector>

#include <random>

/// What is fed to both sides.
namespace Bench {

constexpr int ScreenId = 10;

inline const QVector<int> FaceCounts{0, 1, 3, 5, 10, 20, 35};
inline const QVector<int> ContentCounts{2, 20};

/// What the sensor program prints for a frame with so many faces.
QString chunk(int faces);

/// Lines of such a frame in any order, some of them damaged.
QString randomChunk(std::mt19937 &random);

/// The parameter map of the screen ScreenId.
QVariantMap screen(int contents);

/// A stage that has a screen for each of the contents, linked to it @p links times.
Kora::KrPluginStage stage(int contents, int links = 1);

/// The table that the two above make.
PluginKrHvcP2::DetectionContents contentTable(int contents);

/// "3 faces"
QString facesText(int faces);

} // namespace Bench
