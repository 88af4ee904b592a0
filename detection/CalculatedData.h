#pragma once

#include <QDateTime>
#include <QList>
#include <QMetaType>

namespace PluginKrHvcP2 {

/// One face of a frame with the content that fits it.
struct CalculatedData
{
    int faceIndex = -1; ///< the sensor's number of the face
    double score = 0; ///< prominence of the face plus the bonus of its match; higher goes first
    int seqNumber = 0; ///< of the chosen content, counted from 1
    QList<int> restrictionKeys; ///< the identifiers by which sending is restricted
    QDateTime time; ///< when the frame arrived
};

} // namespace PluginKrHvcP2

Q_DECLARE_METATYPE(PluginKrHvcP2::CalculatedData)
