#pragma once

#include "core/screen/DetectionContent.h"
#include "detection/CalculatedData.h"
#include "detection/FaceResult.h"

#include <QList>
#include <QVector>

namespace PluginKrHvcP2 {

/// The content that fits a viewer, and what the fit adds to the viewer's score.
struct ContentMatch
{
    int position = -1; ///< in the list of contents; -1: nothing fits
    double bonus = 0;

    bool isValid() const { return position >= 0; }
};

/// Chooses for the age and gender items of @p face: the first content that fits both, else the
/// last default of that gender, else the last one that fits the age alone.
ContentMatch matchContent(const FaceResult &face, const DetectionContents &contents);

/// How prominent each face of a frame is beside the others.
class Prominence
{
public:
    /// @p sizes and @p directionValues are those of the faces, in any order.
    Prominence(QVector<int> sizes, QVector<int> directionValues);

    int sizeRank(const FaceResult &face) const; ///< faces that are no larger, but the face itself
    int directionRank(const FaceResult &face) const; ///< faces that look no straighter, all told

    /// What a face's score begins with: large faces that look straight at the sensor go first.
    double score(const FaceResult &face) const;

private:
    QVector<int> m_sizes; // ascending
    QVector<int> m_directionValues; // ascending
};

/// Matches every face of a frame with a content, the most prominent viewer first: large faces that
/// look straight at the sensor. Faces that nothing fits are left out, but count in the ranking.
/// @p sizes and @p directionValues are those of @p faces, in any order.
QList<CalculatedData> determineSequences(const QList<FaceResult> &faces, QVector<int> sizes,
    QVector<int> directionValues, const DetectionContents &contents);

} // namespace PluginKrHvcP2
